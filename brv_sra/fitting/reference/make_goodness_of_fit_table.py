#!/usr/bin/env python3
"""Writes goodness_of_fit.csv beside this script: the three tests of given distributions on real data, by others.

Run by hand (needs numpy, scipy, mpmath and R with the package goftest); the table is committed.

Kolmogorov-Smirnov: scipy.stats.kstest, its exact p-values (which beyond 140 values are good to
1e-6); for counts the largest distance over all whole numbers.
Anderson-Darling: the textbook sum over ln z_i + ln(1 - z_(n+1-i)) by mpmath at 40 digits from SciPy's probabilities;
p-values by goftest's pAD (Marsaglia & Marsaglia 2004).
Chi-square: scipy.stats.chisquare on counts by numpy.histogram over bins made and merged here by the rules that
chi_square.h states, with TWO_PARAMETERS taken for estimated whatever the type.

Columns: file, column, take (the first values that count, 0 for all), code, offset, values, then the results; an empty
field where a test does not apply.
"""
import csv
import math
import pathlib
import subprocess

import numpy
from mpmath import log, mp, mpf
from scipy import stats

mp.dps = 40
FOLDER = pathlib.Path(__file__).parent
EXAMPLES = FOLDER.parent.parent.parent / "examples"
TWO_PARAMETERS = 2


class Mixture:
    def __init__(self, parts):
        self.parts = [(w, stats.norm(m, s)) for w, m, s in parts]

    def cdf(self, x):
        return sum(w * part.cdf(x) for w, part in self.parts)

    def ppf(self, p):
        from scipy.optimize import brentq
        return brentq(lambda x: self.cdf(x) - p, -100, 1000, xtol=1e-13, rtol=1e-14)


def law_of(code, v):
    return {
        0: lambda: stats.norm(v[0], v[1]),
        1: lambda: stats.lognorm(v[1], scale=math.exp(v[0])),
        2: lambda: stats.foldnorm(abs(v[0]) / v[1], scale=v[1]),
        3: lambda: stats.halfnorm(scale=v[0]),
        4: lambda: stats.rayleigh(scale=v[0]),
        5: lambda: stats.weibull_min(v[1], scale=v[0]),
        6: lambda: Mixture([v[i:i + 3] for i in range(0, len(v), 3)]),
        7: lambda: stats.johnsonsu(v[1], v[2], loc=v[4], scale=v[3]),
        8: lambda: stats.genextreme(-v[2], loc=v[0], scale=v[1]),
        9: lambda: stats.genpareto(v[1], scale=v[0]),
        10: lambda: stats.triang((v[2] - v[0]) / (v[1] - v[0]), loc=v[0], scale=v[1] - v[0]),
        11: lambda: stats.binom(v[1], v[0]),
        12: lambda: stats.poisson(v[0]),
        13: lambda: stats.geom(v[0], loc=-1),
    }[code]()


CASES = [
    ("portpirie_sea_level.csv", 0, 0, 8, None, [3.8748, 0.1980, -0.0501]),
    ("portpirie_sea_level.csv", 0, 0, 0, None, [3.98, 0.24]),
    ("portpirie_sea_level.csv", 0, 0, 4, 3.5, [0.38]),
    ("portpirie_sea_level.csv", 0, 0, 3, 3.5, [0.5]),
    ("portpirie_sea_level.csv", 0, 0, 2, 3.0, [0.97, 0.25]),
    ("groundbeef.csv", 0, 0, 5, None, [83.348, 2.1859]),
    ("groundbeef.csv", 0, 0, 5, 5.0, [77.5, 1.95]),
    ("groundbeef.csv", 0, 0, 1, None, [4.17, 0.54]),
    ("danish_fire_losses.csv", 0, 0, 1, None, [0.78695, 0.71655]),
    ("danish_fire_losses.csv", 0, 0, 9, 0.875, [1.5, 0.45]),
    ("faithful.csv", 0, 0, 6, None, [0.348, 2.019, 0.236, 0.652, 4.273, 0.437]),
    ("faithful.csv", 0, 0, 10, None, [1.6, 5.1, 4.5]),
    ("faithful.csv", 0, 0, 0, None, [3.4878, 1.1414]),
    ("faithful.csv", 1, 0, 7, None, [2.0, 1.2, 2.5, 25.0, 85.0]),
    ("faithful.csv", 1, 0, 0, None, [70.897, 13.595]),
    ("groundbeef.csv", 0, 1, 0, None, [73.65, 35.88]),
    ("groundbeef.csv", 0, 2, 0, None, [73.65, 35.88]),
    ("groundbeef.csv", 0, 7, 0, None, [73.65, 35.88]),
    ("groundbeef.csv", 0, 40, 0, None, [73.65, 35.88]),
    ("toxocara.csv", 0, 0, 12, None, [8.679245283018868]),
    ("toxocara.csv", 0, 0, 13, None, [0.1033]),
    ("toxocara.csv", 0, 0, 11, None, [0.115, 75]),
]


def read(file, column, take):
    with open(EXAMPLES / file, newline="") as handle:
        values = [float(row[column]) for row in list(csv.reader(handle))[1:]]
    return numpy.array(sorted(values[:take] if take else values))


def anderson_darling(z):
    n = len(z)
    floor = mpf(2) ** -53
    low = [max(mpf(float(p)), floor) for p in z]
    high = [max(1 - mpf(float(p)), floor) for p in z]
    total = sum((2 * i + 1) * (log(low[i]) + log(high[n - 1 - i])) for i in range(n))
    return float(-n - total / n)


def goftest(n, statistic):
    call = f"library(goftest); cat(format(1 - pAD({statistic!r}, n={n}), digits=15))"
    return float(subprocess.run(["Rscript", "-e", call], capture_output=True, text=True, check=True).stdout)


def round_range(low, high):
    """The coarsest step of 1, 2, 5 times a power of ten with 20 to 50 steps."""
    for exponent in range(9, -9, -1):
        for digit in (5, 2, 1):
            step = digit * 10.0 ** exponent
            first, last = math.floor(low / step + 1e-9), math.ceil(high / step - 1e-9)
            if last - first >= 20:
                return first * step, last * step, last - first
    raise ValueError


def merge(observed, expected):
    """From both tails to the bin around the median; what is left in the middle joins the smaller neighbour."""
    middle = int(numpy.searchsorted(numpy.cumsum(expected), sum(expected) / 2))
    groups = {"lower": [], "upper": []}
    rest = [observed[middle], expected[middle]]
    for side, order in (("lower", range(middle)), ("upper", range(len(expected) - 1, middle, -1))):
        o = e = 0.0
        for i in order:
            o, e = o + observed[i], e + expected[i]
            if e >= 5:
                groups[side].append([o, e])
                o = e = 0.0
        rest = [rest[0] + o, rest[1] + e]
    lower, upper = groups["lower"], groups["upper"][::-1]
    if rest[1] >= 5 or not lower + upper:
        return lower + [rest] + upper
    if lower and (not upper or lower[-1][1] <= upper[0][1]):
        target = lower[-1]
    else:
        target = upper[0]
    target[0], target[1] = target[0] + rest[0], target[1] + rest[1]
    return lower + upper


def chi_square(distribution, x, inner):
    edges = numpy.concatenate(([-numpy.inf], inner, [numpy.inf]))
    # A bin holds its upper boundary, within rounding: numpy.histogram's hold the lower one, so the axis is turned
    # round.
    observed = numpy.histogram(-x, bins=-edges[::-1] - 1e-12)[0][::-1]
    below = numpy.array([0.0] + [distribution.cdf(b) for b in inner] + [1.0])
    bins = merge(observed, len(x) * numpy.diff(below))
    if len(bins) < 2:
        return ["", "", ""]
    observed, expected = numpy.array(bins).T
    df = max(1, len(bins) - 1 - TWO_PARAMETERS)
    result = stats.chisquare(observed, expected, ddof=len(bins) - 1 - df)
    return [repr(float(result.statistic)), df, repr(float(result.pvalue))]


def results(code, distribution, x):
    n = len(x)
    if code > 10:
        k = numpy.arange(-1, 400)
        d = max(abs(numpy.searchsorted(x, k, side="right") / n - distribution.cdf(k)))
        whole = chi_square(distribution, x, numpy.arange(x[0], x[-1])) if x[-1] - x[0] < 50 else chi_square_grouped(distribution, x)
        return [repr(float(d)), repr(float(stats.kstwo.sf(d, n))), "", ""] + whole + whole
    d, p = stats.kstest(x, distribution.cdf, mode="exact")
    a2 = anderson_darling(distribution.cdf(x))
    low, high, k = round_range(x[0], x[-1]) if n > 1 else (0, 1, 20)
    equal_probabilities = chi_square(distribution, x, [distribution.ppf(i / k) for i in range(1, k)])
    equal_intervals = chi_square(distribution, x, [low + (high - low) / k * i for i in range(1, k)])
    return [repr(float(d)), repr(float(p)), repr(a2), goftest(n, a2)] + equal_probabilities + equal_intervals


def chi_square_grouped(distribution, x):
    low, high, k = round_range(x[0], x[-1])
    return chi_square(distribution, x, [low + (high - low) / k * i for i in range(k)])


def main():
    with open(FOLDER / "goodness_of_fit.csv", "w", newline="") as handle:
        writer = csv.writer(handle, lineterminator="\n")
        writer.writerow(["file", "column", "take", "code", "offset", "values", "ks", "ks_p", "ad", "ad_p",
                         "equal_probabilities", "df", "p", "equal_intervals", "df", "p"])
        for file, column, take, code, offset, values in CASES:
            x = read(file, column, take) - (offset or 0.0)
            writer.writerow([file, column, take, code, "" if offset is None else offset,
                             " ".join(map(repr, values))] + results(code, law_of(code, values), x))


if __name__ == "__main__":
    main()
