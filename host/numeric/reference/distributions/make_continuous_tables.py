#!/usr/bin/env python3
"""Writes the reference tables of the further continuous distributions: <name>.csv and <name>_moments.csv beside this script.

Run by hand (needs mpmath; four minutes); the tables are committed. The rules are those of make_tables.py: arguments are
doubles, taken exactly; values have at least 50 digits before they are rounded; functions come from the definitions,
quantiles without closed form from bracketed root finding.
"""
import math

from mpmath import (asinh, chop, cosh, erf, erfc, erfinv, euler, exp, expm1, gamma, inf, log, log1p, mp, mpf, pi,
                    quad, sinh, sqrt)

from table_rows import normal_lower_quantile, root, write_moments, write_table

HALF = mpf(1) / 2


def normal_cdf(z):
    return erfc(-z / sqrt(2)) / 2


def shapes_with(shapes, *others):
    return [(*others, shape) for shape in shapes]


class FoldedNormal:
    name, parameters = "folded_normal", ["location", "scale", "threshold"]
    sets = [(0.0, 1.0, 0.0), (1.0, 1.0, 0.0), (-2.5, 0.5, 10.0), (8.0, 1.0, 0.0), (0.3, 20.0, -100.0), (30.0, 1.0, 0.0),
            (1e-9, 1e-9, 0.0), (-4e6, 1e6, 0.0), (100.0, 0.25, 5.0), (1e-3, 2.0, 1e6)]
    moment_sets = sets + [(m, s, t) for m in (0.01, -0.7, 3.0, 12.0, 45.0) for s, t in ((1.0, 0.0), (7.5, -3.0))]

    def __init__(self, location, scale, threshold):
        self.location, self.scale, self.threshold = abs(mpf(location)), mpf(scale), mpf(threshold)

    def is_inside(self, x):
        return x > self.threshold

    def log_density(self, x):
        y = mpf(x) - self.threshold
        near, far = (y - self.location) / self.scale, (y + self.location) / self.scale
        return log(exp(-near ** 2 / 2) + exp(-far ** 2 / 2)) - log(self.scale) - log(2 * pi) / 2

    def lower(self, y):
        with mp.workdps(420):  # the two terms cancel near 0
            return (erf((y - self.location) / self.scale / sqrt(2)) + erf((y + self.location) / self.scale / sqrt(2))) / 2

    def upper(self, y):
        return normal_cdf((self.location - y) / self.scale) + normal_cdf(-(y + self.location) / self.scale)

    def cdf(self, x):
        return self.lower(mpf(x) - self.threshold)

    def complement(self, x):
        return self.upper(mpf(x) - self.threshold)

    def from_lower(self, p):
        middle = log(self.location + 2 * self.scale)
        return exp(root(lambda t: log(self.lower(exp(t))) - log(p), middle - 1600, middle))

    def from_upper(self, q):
        return root(lambda y: log(q) - log(self.upper(y)), mpf(0), self.location + 40 * self.scale)

    def quantile(self, p):
        p = mpf(p)
        return self.threshold + (self.from_lower(p) if p < HALF else self.from_upper(1 - p))

    def complement_quantile(self, q):
        q = mpf(q)
        return self.threshold + (self.from_upper(q) if q < HALF else self.from_lower(1 - q))

    def unshifted_mean(self):
        d = self.location / self.scale
        return self.scale * (sqrt(2 / pi) * exp(-d ** 2 / 2) + d * erf(d / sqrt(2)))

    def mean(self):
        return self.threshold + self.unshifted_mean()

    def variance(self):
        return self.location ** 2 + self.scale ** 2 - self.unshifted_mean() ** 2


class HalfNormal:
    name, parameters = "half_normal", ["scale", "threshold"]
    sets = [(1.0, 0.0), (0.1, 10.0), (25.0, -3.7), (1e-9, 0.0), (1e9, 2.5), (3.25, -444.0), (1e-3, 1e6), (1e150, 0.0),
            (1e-150, 0.0)]
    moment_sets = [(s, t) for s in (1.0, 0.3, 1e-9, 7e8, 41.7) for t in (0.0, 5.0, -12.5, 1e6)]

    def __init__(self, scale, threshold):
        self.scale, self.threshold = mpf(scale), mpf(threshold)

    def is_inside(self, x):
        return x > self.threshold

    def z(self, x):
        return (mpf(x) - self.threshold) / self.scale

    def log_density(self, x):
        return log(2 / pi) / 2 - self.z(x) ** 2 / 2 - log(self.scale)

    def cdf(self, x):
        return erf(self.z(x) / sqrt(2))

    def complement(self, x):
        return erfc(self.z(x) / sqrt(2))

    def upper_z(self, q):
        return -normal_lower_quantile(q / 2)

    def quantile(self, p):
        p = mpf(p)
        z = sqrt(2) * erfinv(p) if p < HALF else self.upper_z(1 - p)
        return self.threshold + self.scale * z

    def complement_quantile(self, q):
        return self.threshold + self.scale * self.upper_z(mpf(q))

    def mean(self):
        return self.threshold + self.scale * sqrt(2 / pi)

    def variance(self):
        return self.scale ** 2 * (1 - 2 / pi)


class Rayleigh:
    name, parameters = "rayleigh", ["scale", "threshold"]
    sets = [(1.0, 0.0), (0.1, 10.0), (25.0, -3.7), (1e-9, 0.0), (1e9, 2.5), (3.25, -444.0), (1e-3, 1e6), (1e150, 0.0),
            (1e-150, 0.0)]
    moment_sets = HalfNormal.moment_sets

    def __init__(self, scale, threshold):
        self.scale, self.threshold = mpf(scale), mpf(threshold)

    def is_inside(self, x):
        return x > self.threshold

    def z(self, x):
        return (mpf(x) - self.threshold) / self.scale

    def log_density(self, x):
        return log(self.z(x) / self.scale) - self.z(x) ** 2 / 2

    def cdf(self, x):
        return -expm1(-self.z(x) ** 2 / 2)

    def complement(self, x):
        return exp(-self.z(x) ** 2 / 2)

    def quantile(self, p):
        return self.threshold + self.scale * sqrt(-2 * log1p(-mpf(p)))

    def complement_quantile(self, q):
        return self.threshold + self.scale * sqrt(-2 * log(mpf(q)))

    def mean(self):
        return self.threshold + self.scale * sqrt(pi / 2)

    def variance(self):
        return self.scale ** 2 * (4 - pi) / 2


class GaussianMixture:
    name, parameters = "gaussian_mixture", ["components"]
    sets = [((1.0, 0.0, 1.0),), ((0.5, -1.0, 1.0, 0.5, 1.0, 1.0),), ((0.3, 0.0, 1.0, 0.7, 50.0, 2.0),),
            ((0.999999, 0.0, 1.0, 1e-6, 1000.0, 0.01),), ((0.2, 5.0, 0.1, 0.5, 5.0, 10.0, 0.3, -20.0, 3.0),),
            ((0.33333, 1.0, 0.5, 0.33333, 2.0, 0.5, 0.33333, 3.0, 0.5),), ((0.0, 7.0, 1.0, 1.0, 1e6, 1e-3),),
            ((0.25, 1e-8, 1e-9, 0.75, 2e-8, 5e-9),), ((0.13, -1e4, 100.0, 0.33, 0.0, 1e-3, 0.54, 3e5, 2e4),)]
    moment_sets = sets + [((w, a, s, 1 - w, a + d, 2 * s),) for w in (0.5, 0.125, 1e-9) for a in (0.0, -30.0)
                          for d, s in ((1.0, 3.0), (1e5, 0.01))]

    def __init__(self, components):
        c = [mpf(v) for v in components]
        total = sum(c[0::3])
        self.components = [(w / total, m, s) for w, m, s in zip(c[0::3], c[1::3], c[2::3]) if w > 0]

    def is_inside(self, x):
        return True

    def log_density(self, x):
        x = mpf(x)
        return log(sum(w / s * exp(-((x - m) / s) ** 2 / 2) for w, m, s in self.components)) - log(2 * pi) / 2

    def cdf(self, x):
        return sum(w * normal_cdf((mpf(x) - m) / s) for w, m, s in self.components)

    def complement(self, x):
        return sum(w * normal_cdf((m - mpf(x)) / s) for w, m, s in self.components)

    def bracket(self, z):
        ends = [m + s * z for _, m, s in self.components]
        return min(ends) - mpf("1e-40"), max(ends) + mpf("1e-40")

    def from_lower(self, p):
        return root(lambda x: log(self.cdf(x)) - log(p), *self.bracket(normal_lower_quantile(p)))

    def from_upper(self, q):
        return root(lambda x: log(q) - log(self.complement(x)), *self.bracket(-normal_lower_quantile(q)))

    def quantile(self, p):
        p = mpf(p)
        return chop(self.from_lower(p) if p < HALF else self.from_upper(1 - p))

    def complement_quantile(self, q):
        q = mpf(q)
        return chop(self.from_upper(q) if q < HALF else self.from_lower(1 - q))

    def mean(self):
        return sum(w * m for w, m, _ in self.components)

    def variance(self):
        return sum(w * (s ** 2 + (m - self.mean()) ** 2) for w, m, s in self.components)


class Johnson:
    name, parameters = "johnson", ["family", "gamma", "delta", "lambda", "xi"]
    sets = [(1.0, 0.0, 1.0, 1.0, 0.0), (1.0, -2.0, 0.5, 1.0, 3.0), (1.0, -46.0, 20.0, 1.0, -50.0),
            (1.0, 4.0, 3.0, 250.0, 1e3),
            (2.0, 0.0, 1.0, 1.0, 0.0), (2.0, -3.0, 2.0, 0.1, 10.0), (2.0, 1.5, 0.6, 40.0, -7.0),
            (2.0, 60.0, 25.0, 3.0, 12.0), (2.0, 1e-3, 1.2, 1e-6, 1e3),
            (3.0, 0.0, 1.0, 1.0, 0.0), (3.0, 2.0, 0.7, 50.0, 10.0), (3.0, -1.0, 5.0, 1e-4, 2.0),
            (3.0, 25.0, 8.0, 900.0, -20.0), (3.0, 0.5, 0.05, 2.0, 1.0),
            (4.0, 0.0, 1.0, 1.0, 0.0), (4.0, -1000.0, 0.7, 1.0, 0.0), (4.0, 3.0, 2.0, 15.0, -4.0)]
    moment_sets = sets + [(3.0, g, d, l, x) for g in (0.0, 0.3, -4.0, 15.0) for d in (0.002, 0.0049, 0.006, 0.04, 0.3, 2.0, 40.0)
                          for l, x in ((1.0, 0.0), (30.0, -7.5))]

    def __init__(self, family, gamma, delta, lam, xi):
        self.family, self.gamma, self.delta = int(family), mpf(gamma), mpf(delta)
        self.lam, self.xi = mpf(lam), mpf(xi)
        end = float(self.xi + self.lam)
        if self.family == 3:
            self.extra_points = [math.nextafter(xi, math.inf), math.nextafter(end, -math.inf), xi + lam / 3]

    def is_inside(self, x):
        u = (x - self.xi) / self.lam
        return {1: u > 0, 2: True, 3: 0 < u < 1, 4: True}[self.family]

    def z(self, x):
        u = (mpf(x) - self.xi) / self.lam
        g = {1: lambda: log(u), 2: lambda: asinh(u), 3: lambda: log(u / (1 - u)), 4: lambda: u}[self.family]()
        return self.gamma + self.delta * g

    def log_density(self, x):
        u = (mpf(x) - self.xi) / self.lam
        slope = {1: lambda: 1 / u, 2: lambda: 1 / sqrt(1 + u ** 2), 3: lambda: 1 / (u * (1 - u)), 4: lambda: mpf(1)}
        return -self.z(x) ** 2 / 2 + log(slope[self.family]() * self.delta / self.lam) - log(2 * pi) / 2

    def cdf(self, x):
        return normal_cdf(self.z(x))

    def complement(self, x):
        return normal_cdf(-self.z(x))

    def unit(self, z):
        g = (z - self.gamma) / self.delta
        return {1: lambda: exp(g), 2: lambda: sinh(g), 3: lambda: 1 / (1 + exp(-g)), 4: lambda: g}[self.family]()

    def quantile(self, p):
        return self.xi + self.lam * self.unit(normal_lower_quantile(p))

    def complement_quantile(self, q):
        return self.xi + self.lam * self.unit(-normal_lower_quantile(q))

    def expected(self, f):
        """The mean of f(u). Pieces between points so close that each is smooth; those far below all others vanish."""
        g, d = self.gamma, self.delta
        points = {mpf(k) for k in range(-24, 42)} | {-mpf(k) for k in range(-24, 42)}
        points |= {g + d * k for k in (-120, -60, -30, -15, -8, -4, -2, 0, 2, 4, 8, 15, 30, 60, 120)}
        points = sorted(p for p in points if abs(p) <= 41)
        return quad(lambda z: f(self.unit(z)) * exp(-z ** 2 / 2) / sqrt(2 * pi), points)

    def unit_mean(self):
        omega, shift = exp(1 / self.delta ** 2), self.gamma / self.delta
        return {1: lambda: sqrt(omega) * exp(-shift), 2: lambda: -sqrt(omega) * sinh(shift),
                3: lambda: self.expected(lambda u: u), 4: lambda: -shift}[self.family]()

    def mean(self):
        return self.xi + self.lam * self.unit_mean()

    def variance(self):
        omega, shift = exp(1 / self.delta ** 2), self.gamma / self.delta
        if self.family == 3:
            mean = self.unit_mean()
        unit = {1: lambda: (omega - 1) * omega * exp(-2 * shift),
                2: lambda: (omega - 1) * (omega * cosh(2 * shift) + 1) / 2,
                3: lambda: self.expected(lambda u: (u - mean) ** 2), 4: lambda: 1 / self.delta ** 2}
        return self.lam ** 2 * unit[self.family]()


SHAPES = [0.0, 1e-12, -1e-12, 1e-5, -1e-5, 0.3, -0.3, 1.0, -1.0, 2.0, -0.999, 10.0, -10.0]
MOMENT_SHAPES = [0.0, 1e-300, 1e-12, -1e-12, 1e-5, -1e-5, 0.01, -0.01, 0.07, -0.1, 0.14, -0.15, 0.16, 0.3, -0.3, 0.49,
                 0.4999, 0.5, 0.6, 0.99, 1.0, -0.5, -1.0, 2.0, -0.999, -2.0, -10.0, -40.0]


class Gev:
    name, parameters = "general_extreme_value", ["location", "scale", "shape"]
    sets = shapes_with(SHAPES, 0.0, 1.0) + shapes_with(SHAPES, 50.0, 3.0) + [
        (1e6, 1e-3, 0.1), (1e6, 1.0, -0.2), (-2e5, 0.5, 1e-9), (0.0, 1e-9, 0.05), (-3.0, 2e9, -0.5),
        (0.0, 1e150, 0.3), (0.0, 1e-150, -0.3)]
    moment_sets = shapes_with(MOMENT_SHAPES, 0.0, 1.0) + shapes_with(MOMENT_SHAPES, 1e6, 0.25)

    def __init__(self, location, scale, shape):
        self.location, self.scale, self.shape = mpf(location), mpf(scale), mpf(shape)
        if shape != 0.0:
            end = location - scale / shape
            self.extra_points = [math.nextafter(end, math.inf), math.nextafter(end, -math.inf)]

    def is_inside(self, x):
        """Below w = -1000 everything underflows beyond what can be computed."""
        return 1 + self.shape * (x - self.location) / self.scale > 0 and self.w(x) > -1000

    def w(self, x):
        z = (mpf(x) - self.location) / self.scale
        return z if self.shape == 0 else log1p(self.shape * z) / self.shape

    def at(self, w):
        return self.location + self.scale * (w if self.shape == 0 else expm1(self.shape * w) / self.shape)

    def log_density(self, x):
        return -(1 + self.shape) * self.w(x) - exp(-self.w(x)) - log(self.scale)

    def cdf(self, x):
        return exp(-exp(-self.w(x)))

    def complement(self, x):
        return -expm1(-exp(-self.w(x)))

    def quantile(self, p):
        return self.at(-log(-log(mpf(p))))

    def complement_quantile(self, q):
        return self.at(-log(-log1p(-mpf(q))))

    def mean(self):
        k = self.shape
        if k >= 1:
            return inf
        with mp.workdps(800):
            return self.location + self.scale * (euler if k == 0 else (gamma(1 - k) - 1) / k)

    def variance(self):
        k = self.shape
        if k >= HALF:
            return inf
        with mp.workdps(800):
            return self.scale ** 2 * (pi ** 2 / 6 if k == 0 else (gamma(1 - 2 * k) - gamma(1 - k) ** 2) / k ** 2)


class Gpd:
    name, parameters = "general_pareto", ["scale", "shape", "threshold"]
    sets = [(1.0, k, 0.0) for k in SHAPES] + [(3.0, k, 50.0) for k in SHAPES] + [
        (1e-3, 0.1, 1e6), (1.0, -0.2, 1e6), (0.5, 1e-9, -2e5), (1e-9, 0.05, 0.0), (2e9, -0.5, -3.0),
        (1e150, 0.3, 0.0), (1e-150, -0.3, 0.0)]
    moment_sets = [(1.0, k, 0.0) for k in MOMENT_SHAPES] + [(0.25, k, 1e6) for k in MOMENT_SHAPES]

    def __init__(self, scale, shape, threshold):
        self.scale, self.shape, self.threshold = mpf(scale), mpf(shape), mpf(threshold)
        if shape < 0.0:
            self.extra_points = [math.nextafter(threshold - scale / shape, -math.inf)]

    def is_inside(self, x):
        return x > self.threshold and 1 + self.shape * (x - self.threshold) / self.scale > 0

    def w(self, x):
        z = (mpf(x) - self.threshold) / self.scale
        return z if self.shape == 0 else log1p(self.shape * z) / self.shape

    def at(self, w):
        return self.threshold + self.scale * (w if self.shape == 0 else expm1(self.shape * w) / self.shape)

    def log_density(self, x):
        return -(1 + self.shape) * self.w(x) - log(self.scale)

    def cdf(self, x):
        return -expm1(-self.w(x))

    def complement(self, x):
        return exp(-self.w(x))

    def quantile(self, p):
        return self.at(-log1p(-mpf(p)))

    def complement_quantile(self, q):
        return self.at(-log(mpf(q)))

    def mean(self):
        return inf if self.shape >= 1 else self.threshold + self.scale / (1 - self.shape)

    def variance(self):
        return inf if self.shape >= HALF else self.scale ** 2 / (1 - self.shape) ** 2 / (1 - 2 * self.shape)


class Triangular:
    name, parameters = "triangular", ["min", "max", "mode"]
    sets = [(0.0, 1.0, 0.5), (0.0, 1.0, 0.0), (0.0, 1.0, 1.0), (-3.0, 7.0, 6.9), (10.0, 11.0, 10.001), (0.0, 1e-9, 3e-10),
            (-1e9, 1e9, 1.0), (1e6, 1000001.5, 1e6), (-5.0, -1.0, -1.0), (0.0, 1.0, 1e-200), (1.0, 2.0, 1.0000000001),
            (0.0, 1e150, 1e149)]
    moment_sets = sets + [(a, a + w, a + w * f) for a in (0.0, -2.5, 1e6) for w in (1.0, 75.0) for f in (0.0, 0.25, 1.0)]

    def __init__(self, low, high, mode):
        self.low, self.high, self.mode = mpf(low), mpf(high), mpf(mode)
        self.extra_points = [math.nextafter(low, math.inf), math.nextafter(high, -math.inf), mode,
                             math.nextafter(mode, -math.inf), math.nextafter(mode, math.inf)]
        self.width = self.high - self.low

    def is_inside(self, x):
        return self.low < x < self.high

    def log_density(self, x):
        x = mpf(x)
        share = 1 if x == self.mode else ((x - self.low) / (self.mode - self.low) if x < self.mode else
                                          (self.high - x) / (self.high - self.mode))
        return log(2 * share / self.width)

    def cdf(self, x):
        x = mpf(x)
        if x <= self.mode:
            return (x - self.low) ** 2 / self.width / (self.mode - self.low) if x > self.low else mpf(0)
        with mp.workdps(700):
            return 1 - self.complement(x)

    def complement(self, x):
        x = mpf(x)
        if x >= self.mode:
            return (self.high - x) ** 2 / self.width / (self.high - self.mode) if x < self.high else mpf(0)
        with mp.workdps(700):
            return 1 - self.cdf(x)

    def quantile(self, p):
        with mp.workdps(700):
            p = mpf(p)
            if p * self.width <= self.mode - self.low:
                return self.low + sqrt(p * self.width * (self.mode - self.low))
            return self.high - sqrt((1 - p) * self.width * (self.high - self.mode))

    def complement_quantile(self, q):
        with mp.workdps(700):
            q = mpf(q)
            if q * self.width <= self.high - self.mode:
                return self.high - sqrt(q * self.width * (self.high - self.mode))
            return self.low + sqrt((1 - q) * self.width * (self.mode - self.low))

    def mean(self):
        return (self.low + self.high + self.mode) / 3

    def variance(self):
        a, b, c = self.low, self.high, self.mode
        return (a * a + b * b + c * c - a * b - a * c - b * c) / 18


KINDS = (FoldedNormal, HalfNormal, Rayleigh, GaussianMixture, Johnson, Gev, Gpd, Triangular)


def main():
    for kind in KINDS:
        write_table(kind)
        write_moments(kind)


if __name__ == "__main__":
    main()
