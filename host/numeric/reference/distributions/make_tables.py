#!/usr/bin/env python3
"""Writes the reference tables of the normal, lognormal and Weibull distributions: <name>.csv and <name>_moments.csv beside
this script.

Run by hand (needs mpmath); the tables are committed. Every argument is a double, taken exactly; every value is computed
with at least 50 digits and rounded once to the nearest double. The functions are written down independently of the
library's own methods: densities from their definitions, tails as erfc and exp, quantiles by root finding.

Columns: function, region, argument, the parameters, value. The region is `tail` where the smaller of the two tail
probabilities is below 1e-6, otherwise `body`.
"""
from mpmath import erfc, exp, expm1, gamma, log, log1p, mpf, pi, sqrt

from table_rows import normal_lower_quantile, write_moments, write_table


class Normal:
    name, parameters = "normal", ["location", "scale"]
    sets = [(0.0, 1.0), (10.0, 0.1), (-3.7, 25.0), (1e6, 1e-3), (0.0, 1e-9), (2.5, 1e9), (-444.0, 3.25)]
    moment_sets = [(m, s) for m in (0.0, -3.5, 10.0, 1e6, -444.0) for s in (1.0, 0.1, 1e-9, 3e8)]

    def __init__(self, location, scale):
        self.location, self.scale = mpf(location), mpf(scale)

    def is_inside(self, x):
        return True

    def z(self, x):
        return (mpf(x) - self.location) / self.scale

    def log_density(self, x):
        return -self.z(x) ** 2 / 2 - log(self.scale) - log(2 * pi) / 2

    def cdf(self, x):
        return erfc(-self.z(x) / sqrt(2)) / 2

    def complement(self, x):
        return erfc(self.z(x) / sqrt(2)) / 2

    def quantile(self, p):
        return self.location + self.scale * normal_lower_quantile(p)

    def complement_quantile(self, q):
        return self.location - self.scale * normal_lower_quantile(q)

    def mean(self):
        return self.location

    def variance(self):
        return self.scale ** 2


class LogNormal:
    name, parameters = "log_normal", ["scale", "shape", "threshold"]
    sets = [(0.0, 1.0, 0.0), (10.0, 0.01, 0.0), (-2.0, 0.5, 0.0), (3.0, 0.25, 100.0), (1.5, 3.0, -5.0),
            (-20.0, 1.0, 0.0), (12.5, 0.1, -1e4)]
    moment_sets = [(m, s, t) for m in (0.0, -20.0, 12.5, 3.0) for s in (1.0, 1e-8, 0.01, 3.0) for t in (0.0, -50.0)]

    def __init__(self, scale, shape, threshold):
        self.scale, self.shape, self.threshold = mpf(scale), mpf(shape), mpf(threshold)

    def is_inside(self, x):
        return x > self.threshold

    def z(self, x):
        return (log(mpf(x) - self.threshold) - self.scale) / self.shape

    def log_density(self, x):
        return -self.z(x) ** 2 / 2 - log(self.shape) - log(mpf(x) - self.threshold) - log(2 * pi) / 2

    def cdf(self, x):
        return erfc(-self.z(x) / sqrt(2)) / 2

    def complement(self, x):
        return erfc(self.z(x) / sqrt(2)) / 2

    def quantile(self, p):
        return self.threshold + exp(self.scale + self.shape * normal_lower_quantile(p))

    def complement_quantile(self, q):
        return self.threshold + exp(self.scale - self.shape * normal_lower_quantile(q))

    def mean(self):
        return self.threshold + exp(self.scale + self.shape ** 2 / 2)

    def variance(self):
        return exp(2 * self.scale + self.shape ** 2) * expm1(self.shape ** 2)


class Weibull:
    name, parameters = "weibull", ["scale", "shape", "threshold"]
    sets = [(1.0, 1.0, 0.0), (100.0, 2.5, 0.0), (0.003, 0.7, 0.0), (5e6, 3.6, 0.0), (12.0, 1.5, 40.0),
            (2.0, 25.0, -7.0), (1e-8, 5.0, 0.0)]
    moment_sets = [(s, k, t) for k in (0.05, 0.7, 1.0, 1.5, 2.5, 3.6, 6.0, 7.0, 25.0, 1e3, 1e8)
                   for s, t in ((1.0, 0.0), (5e3, -40.0))]

    def __init__(self, scale, shape, threshold):
        self.scale, self.shape, self.threshold = mpf(scale), mpf(shape), mpf(threshold)

    def is_inside(self, x):
        return x > self.threshold

    def hazard(self, x):
        return ((mpf(x) - self.threshold) / self.scale) ** self.shape

    def log_density(self, x):
        u = (mpf(x) - self.threshold) / self.scale
        return log(self.shape / self.scale) + (self.shape - 1) * log(u) - u ** self.shape

    def cdf(self, x):
        return -expm1(-self.hazard(x))

    def complement(self, x):
        return exp(-self.hazard(x))

    def quantile(self, p):
        return self.threshold + self.scale * (-log1p(-mpf(p))) ** (1 / self.shape)

    def complement_quantile(self, q):
        return self.threshold + self.scale * (-log(mpf(q))) ** (1 / self.shape)

    def mean(self):
        return self.threshold + self.scale * gamma(1 + 1 / self.shape)

    def variance(self):
        return self.scale ** 2 * (gamma(1 + 2 / self.shape) - gamma(1 + 1 / self.shape) ** 2)


def main():
    for kind in (Normal, LogNormal, Weibull):
        write_table(kind)
        write_moments(kind)


if __name__ == "__main__":
    main()
