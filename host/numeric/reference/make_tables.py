#!/usr/bin/env python3
"""Writes the reference tables of the distribution types: <type>.csv beside this script.

Run by hand (needs mpmath); the tables are committed. Every argument is a double, taken exactly; every value is computed
with at least 50 digits and rounded once to the nearest double. The functions are written down independently of the
library's own methods: densities from their definitions, tails as erfc, exp and sums of series, quantiles by root finding.

Columns: function, region, argument, the parameters, value. The region is `tail` where the smaller of the two tail
probabilities is below 1e-6, else `body`.
"""
from mpmath import erfc, exp, expm1, floor, gamma, log, log1p, loggamma, mp, mpf, pi, sqrt

from table_rows import normal_lower_quantile, probability_rows, region, write_moments, write_table


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
    name, parameters = "lognormal", ["scale", "shape", "threshold"]
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


class Poisson:
    name, parameters = "poisson", ["mean"]
    sets = [(0.01,), (0.5,), (1.0,), (3.7,), (20.0,), (150.0,), (1234.5,), (1e5,), (2.5e7,), (1e9,)]

    def __init__(self, mean):
        self.mean = mpf(mean)

    def log_density(self, k):
        with mp.workdps(90):
            return mpf(k) * log(self.mean) - self.mean - loggamma(mpf(k) + 1)

    def lower_sum(self, k):
        """P(N <= k) as the density at k times 1 + k/m + k(k-1)/m^2 + ..."""
        total = term = mpf(1)
        while k > 0 and term > total * mpf("1e-55"):
            term = term * k / self.mean
            k -= 1
            total += term
        return total

    def upper_sum(self, k):
        """P(N > k) as the density at k times m/(k+1) + m^2/((k+1)(k+2)) + ..."""
        total, term = mpf(0), mpf(1)
        while term > total * mpf("1e-55"):
            k += 1
            term = term * self.mean / k
            total += term
        return total

    def tails(self, k):
        if k < 0:
            return mpf(0), mpf(1)
        density = exp(self.log_density(k))
        if k < self.mean:
            low = density * self.lower_sum(int(k))
            return low, 1 - low
        high = density * self.upper_sum(int(k))
        return 1 - high, high


def discrete_rows(law, values):
    deviation = sqrt(law.mean)
    steps = [-37, -30, -20, -12, -8, -5.5, -4, -3.5, -3, -2.6, -2.2, -1.8, -1.5, -1.2, -1, -0.8, -0.6, -0.3, -0.1, 0, 0.2, 0.5, 0.8, 1.2, 1.6, 2, 2.5, 3, 3.5, 4,
             5, 7, 10, 15, 20, 28, 37]
    points = {int(floor(law.mean + s * deviation)) for s in steps} | {0, 1, 2, 3, 4, 5, 6, 7, 9, 11, 13, 16, 20, 28, 40, 60, 80, 110, 140}
    for k in sorted(points):
        if k < 0 or abs(k - law.mean) > 60 * deviation + 140:
            continue
        low, high = law.tails(k)
        density = exp(law.log_density(k))
        if density < mpf("1e-300"):
            continue
        where = region(low, high)
        yield from probability_rows(where, float(k), law.log_density(k), low, high, values)
        below = low - density if k < law.mean else 1 - (high + density)
        if low < 1 and density > low * mpf("1e-9") and below >= 0:
            yield "Quantile", where, float((low + below) / 2), values, mpf(k)
        if density > high * mpf("1e-9") and high > 0:
            yield "ComplementQuantile", where, float(high + density / 2), values, mpf(k)


def main():
    for kind in (Normal, LogNormal, Weibull):
        write_table(kind)
        write_moments(kind)
    write_table(Poisson, discrete_rows)


if __name__ == "__main__":
    main()
