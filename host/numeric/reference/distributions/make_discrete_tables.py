#!/usr/bin/env python3
"""Writes the reference tables of the discrete distributions beside this script: <name>.csv, <name>_moments.csv.

Run by hand (needs mpmath, and gmpy2 unless you have hours); the tables are committed. Every argument and parameter is a
double, taken exactly; every value is computed with at least 50 digits and rounded once to the nearest double.
Probabilities come from their definitions, tails from sums of positive terms; those of binomial distributions too wide for a sum
from the integral of the incomplete beta function, which must agree with the sum where both can be had.

Columns: function, region, argument, the parameters, value. The region is `tail` where the smaller of the two tail
probabilities is below 1e-6, otherwise `body`. Arguments of quantiles lie halfway up a jump, close to both its ends (2e-13,
in tails 2e-10), at round numbers, and at the very end of a jump where the distribution function is a double there.

With the argument `moments`, writes the tables of the moments only, which takes no time.
"""
import csv
import math
import pathlib
import random
import sys

from mpmath import exp, expm1, floor, inf, log, log1p, loggamma, mp, mpf, quad, sqrt

mp.dps = 60
FOLDER = pathlib.Path(__file__).parent
TAIL, SMALLEST = mpf("1e-6"), mpf("1e-300")
NEGLIGIBLE = mpf("1e-55")
STEPS = [-36, -25, -15, -8, -5.5, -4, -3, -2.2, -1.5, -0.8, -0.3, -0.01, 0, 0.02, 0.4, 1, 1.8, 2.6, 3.5, 5, 7, 12, 20, 34]
ROUND = [1e-300, 1e-100, 1e-20, 1e-9, 1e-5, 0.001, 0.01, 0.05, 0.1, 0.25, 0.5, 0.75, 0.9, 0.99, 0.9999, 0.9999999]
LAST_BELOW_ONE = 1 - 2.0 ** -53


def sum_of_ratios(ratio):
    """1 + r(1) + r(1) r(2) + ..., until the ratios, which fall, end it or make it negligible."""
    total, term, i = mpf(1), mpf(1), 1
    while term > total * NEGLIGIBLE:
        term *= ratio(i)
        total += term
        i += 1
    return total


class Counts:
    """A distribution on 0, 1, 2, ... `lower` and `upper` are P(N <= k) below the mean and P(N > k) from it on; half a count from
    the mean, neither is near 1."""

    def tails(self, k):
        if k < 0:
            return mpf(0), mpf(1)
        if k >= self.last:
            return mpf(1), mpf(0)
        if k + mpf(1) / 2 < self.mean:
            low = self.lower(k)
            return low, 1 - low
        high = self.upper(k)
        return 1 - high, high

    def points(self):
        near = {int(floor(self.mean + step * sqrt(self.variance))) for step in STEPS}
        near |= {0, 1, 2, 3, 5, 9, 14, 22, 40, 90, 140}
        if self.last < inf:
            near |= {int(self.last) - i for i in (0, 1, 2, 3, 5, 9)}
        return sorted(k for k in near if 0 <= k <= self.last and float(k) == k)

    def is_quick(self):
        return self.variance < 1e6

    def smallest(self, is_reached):
        low, high = -1, 1
        while not is_reached(high):
            low, high = high, 2 * high
        while high - low > 1:
            middle = (low + high) // 2
            low, high = (low, middle) if is_reached(middle) else (middle, high)
        return high


class Binomial(Counts):
    name, columns = "binomial", ["proportion", "trials"]
    sets = [(0.3, 1), (0.5, 10), (0.1, 20), (0.5, 40), (0.9, 45), (1 / 3, 100), (1e-300, 5), (1e-300, 2 ** 31), (0.02, 5000),
            (LAST_BELOW_ONE, 10), (LAST_BELOW_ONE, 2 ** 31), (LAST_BELOW_ONE, 2 ** 53), (0.45, 1000), (0.93, 7000), (0.5, 100000),
            (0.7, 123457), (1e-6, 2 ** 31), (0.3, 2 ** 31), (1e-12, 2 ** 53), (0.5, 2 ** 53), (0.9999, 10 ** 12)]

    def __init__(self, proportion, trials):
        self.p, self.n = mpf(proportion), int(trials)
        self.q = 1 - self.p
        self.mean, self.variance, self.last = self.n * self.p, self.n * self.p * self.q, self.n

    def log_density(self, k):
        with mp.workdps(100):
            n = mpf(self.n)
            return loggamma(n + 1) - loggamma(mpf(k) + 1) - loggamma(n - k + 1) + k * log(self.p) + (n - k) * log1p(-self.p)

    def ratios(self, k, p, q):
        """P(N <= k) / P(N = k)."""
        if self.variance < 1e10:
            return sum_of_ratios(lambda i: q / p * (k - i + 1) / (self.n - k + i) if i <= k else mpf(0))
        return self.integral(k, p, q)

    def integral(self, k, p, q):
        a, b = self.n - k - 1, k
        with mp.workdps(100):
            def integrand(t):
                return exp(a * log1p(-t / q) + b * log1p(t / p))
            reach = min(q, 18 * sqrt(p * q / self.n))
            return (self.n - k) / q * quad(integrand, [reach * i / 8 for i in range(9)], method="gauss-legendre")

    def lower(self, k):
        return exp(self.log_density(k)) * self.ratios(k, self.p, self.q)

    def upper(self, k):
        k += 1
        return exp(self.log_density(k)) * self.ratios(self.n - k, self.q, self.p)


class Poisson(Counts):
    name, columns = "poisson", ["mean"]
    sets = [(1e-10,), (0.01,), (0.5,), (1.0,), (3.7,), (20.0,), (150.0,), (1234.5,), (19000.0,), (1e5,), (2.5e7,), (1e9,)]
    moment_sets = sets + [(10.0 ** k,) for k in (-300, -150, -30, -5, 3, 6, 12, 30, 150)]
    last = inf

    def __init__(self, mean):
        self.mean = self.variance = mpf(mean)

    def log_density(self, k):
        with mp.workdps(100):
            return k * log(self.mean) - self.mean - loggamma(mpf(k) + 1)

    def lower(self, k):
        return exp(self.log_density(k)) * sum_of_ratios(lambda i: (k - i + 1) / self.mean if i <= k else mpf(0))

    def upper(self, k):
        return exp(self.log_density(k + 1)) * sum_of_ratios(lambda i: self.mean / (k + 1 + i))


class Geometric(Counts):
    name, columns = "geometric", ["proportion"]
    sets = [(1e-300,), (1e-17,), (2.5e-9,), (0.0001,), (0.03,), (0.25,), (0.4,), (0.5,), (0.73,), (0.999,), (LAST_BELOW_ONE,)]
    moment_sets = sets + [(10.0 ** k,) for k in (-150, -100, -50, -6, -3, -1)] + [(1 - 10.0 ** -k,) for k in (1, 5, 9, 13)]
    last = inf

    def __init__(self, proportion):
        self.p = mpf(proportion)
        self.mean, self.variance = (1 - self.p) / self.p, (1 - self.p) / self.p ** 2

    def log_density(self, k):
        return log(self.p) + k * log1p(-self.p)

    def tails(self, k):
        return (-expm1((k + 1) * log1p(-self.p)), exp((k + 1) * log1p(-self.p))) if k >= 0 else (mpf(0), mpf(1))

    def is_quick(self):
        return True

    def points(self):
        shares = [1e-290, 1e-150, 1e-60, 1e-20, 1e-10, 1e-7, 1e-5, 0.001, 0.02, 0.1, 0.3, 0.5, 0.6, 0.8, 0.95, 0.999]
        counts = {int(float(floor(f / log1p(-self.p)))) for s in shares for f in (log(mpf(s)), log1p(-mpf(s)))}
        return sorted(counts | set(range(12)))


class Bernoulli:
    name, columns = "bernoulli", ["proportion"]
    sets = [(p,) for p in sorted({1e-300, 1e-17, 2.0 ** -53, LAST_BELOW_ONE, *(2.0 ** -k for k in range(1, 20, 2)),
                                  *(10.0 ** -k for k in range(2, 60, 4)), *(1 - 10.0 ** -k for k in range(2, 16)),
                                  *(i / 61 for i in range(1, 61))})]

    def __init__(self, proportion):
        self.classes = [(0.0, 1 - mpf(proportion)), (1.0, mpf(proportion))]
        self.mean, self.variance = mpf(proportion), mpf(proportion) * (1 - mpf(proportion))


def histograms():
    yield (0.0, 0.25, 1.0, 0.5, 4.0, 0.25)
    yield (5.0, 0.125, -2.5, 0.5, 1e9, 0.125, 5.0, 0.125, 0.0, 0.125)
    yield (1.0, 1e-300, 2.0, 0.5, 3.0, 0.5, 4.0, 1e-200, 5.0, 0.0, 6.0, 1e-250)
    yield (7.0, 1.0)
    dice = random.Random(3)
    for i in range(24):
        codes = dice.sample([dice.choice((1, 0.5, 1e-3)) * k for k in range(-9, 40)], 9)
        shares = [dice.random() ** dice.choice((1, 8, 30)) for _ in codes]
        total = sum(shares) * (1 + dice.uniform(-1.9e-5, 1.9e-5))
        yield tuple(x for c, s in zip(codes, shares) for x in (float(c), float("%.9g" % (s / total))))


class Histogram:
    name, columns = "histogram", ["classes"]
    sets = list(histograms())

    def __init__(self, *values):
        total = sum(map(mpf, values[1::2]))
        merged = {}
        for code, share in zip(values[::2], values[1::2]):
            if share > 0:
                merged[code] = merged.get(code, mpf(0)) + mpf(share) / total
        self.classes = sorted(merged.items())
        self.mean = sum(mpf(c) * s for c, s in self.classes)
        self.variance = sum((mpf(c) - self.mean) ** 2 * s for c, s in self.classes)


def region(low, high):
    return "tail" if min(low, high) < TAIL else "body"


def margin(where):
    """Twice the accuracy promised for the ends of a jump."""
    return mpf("2e-13") if where == "body" else mpf("2e-10")


def is_clear(p, below, at, where):
    return below * (1 + margin(where) * mpf("0.7")) < p < at * (1 - margin(where) * mpf("0.7"))


def quantile_rows(function, value, below, at, where):
    """Arguments that lie on one jump, from `below` to `at`, of the distribution function or its complement."""
    for p in (float((below + at) / 2), float(below * (1 + margin(where))), float(at * (1 - margin(where)))):
        if is_clear(mpf(p), below, at, where):
            yield function, where, p, value


def end_of_jump(function, value, end):
    if TAIL < end < 1 and mpf(float(end)) == end:
        yield function, "body", float(end), value


def probability_rows(x, density, log_density, low, high):
    where = region(low, high)
    yield "Density", where, x, density
    yield "LogDensity", where, x, log_density
    yield "Cdf", where, x, low
    yield "Complement", where, x, high


def count_rows(distribution):
    for k in distribution.points():
        log_density = distribution.log_density(k)
        density = exp(log_density)
        if density < SMALLEST:
            continue
        low, high = distribution.tails(k)
        x = float(k)
        yield from probability_rows(x, density, log_density, low, high)
        where = region(low, high)
        if k + mpf(1) / 2 < distribution.mean:
            yield from quantile_rows("Quantile", x, low - density, low, where)
        else:
            yield from quantile_rows("Quantile", x, 1 - high - density, 1 - high, where)
        yield from quantile_rows("ComplementQuantile", x, high, high + density, where)
        yield from end_of_jump("Quantile", x, low)
        yield from end_of_jump("ComplementQuantile", x, high)
    for p in ROUND if distribution.is_quick() else []:
        where = region(p, 1 - mpf(p))
        k = distribution.smallest(lambda k: distribution.tails(k)[0] >= p)
        if is_clear(mpf(p), distribution.tails(k - 1)[0], distribution.tails(k)[0], where):
            yield "Quantile", where, p, float(k)
        k = distribution.smallest(lambda k: distribution.tails(k)[1] <= p)
        if is_clear(mpf(p), distribution.tails(k)[1], distribution.tails(k - 1)[1], where):
            yield "ComplementQuantile", where, p, float(k)


def class_rows(distribution):
    low = mpf(0)
    for i, (code, share) in enumerate(distribution.classes):
        below, low = low, low + share
        high = sum(s for _, s in distribution.classes[i + 1:])
        yield from probability_rows(code, share, log(share), low, high)
        following = distribution.classes[i + 1][0] if i + 1 < len(distribution.classes) else code + 2.0
        yield "Cdf", region(low, high), (code + following) / 2, low
        yield "Complement", region(low, high), (code + following) / 2, high
        where = region(low, high)
        yield from quantile_rows("Quantile", code, below, low, where)
        yield from quantile_rows("ComplementQuantile", code, high, high + share, where)
        yield from end_of_jump("Quantile", code, low)
        yield from end_of_jump("ComplementQuantile", code, high)
    yield "Complement", "body", distribution.classes[0][0] - 0.5, mpf(1)


def check_integral():
    for proportion, trials, k in ((0.3, 10 ** 6, 299000), (0.3, 10 ** 6, 299999), (0.9, 10 ** 7, 8990000)):
        distribution = Binomial(proportion, trials)
        assert abs(distribution.integral(k, distribution.p, distribution.q) / distribution.ratios(k, distribution.p, distribution.q) - 1) < 1e-50


def parameters_text(kind, values):
    texts = [repr(float(v)) for v in values]
    return [" ".join(texts)] if kind.columns == ["classes"] else texts


def write_probabilities(kind):
    with open(FOLDER / f"{kind.name}.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["function", "region", "argument", *kind.columns, "value"])
        for values in kind.sets:
            distribution = kind(*values)
            for function, where, argument, value in count_rows(distribution) if isinstance(distribution, Counts) else class_rows(distribution):
                number = float(value)
                if "Quantile" not in function and (number == 0.0 or abs(number) < 1e-300 or math.isinf(number)):
                    continue
                writer.writerow([function, where, repr(argument), *parameters_text(kind, values), repr(number)])


def write_moments(kind):
    with open(FOLDER / f"{kind.name}_moments.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["function", *kind.columns, "value"])
        for values in getattr(kind, "moment_sets", kind.sets):
            distribution = kind(*values)
            for function, value in ("Mean", distribution.mean), ("Variance", distribution.variance):
                writer.writerow([function, *parameters_text(kind, values), repr(float(value))])


def main():
    kinds = (Bernoulli, Histogram, Geometric, Poisson, Binomial)
    for kind in kinds:
        write_moments(kind)
    if sys.argv[1:] == ["moments"]:
        return
    check_integral()
    for kind in kinds:
        write_probabilities(kind)


if __name__ == "__main__":
    main()
