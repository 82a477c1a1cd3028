"""What the scripts that make the tables of the distributions share: arguments, regions, rows, files.

A distribution is a class with `name`, `parameters` (names of columns), `sets` of parameters, and the methods log_density, cdf,
complement, quantile, complement_quantile; `is_inside(x)` says whether the density lives at x. A distribution with `moment_sets`
also has mean and variance. A column may hold several numbers: a tuple, written apart by blanks.
"""
import csv
import functools
import math
import pathlib
import sys

from mpmath import erfc, exp, inf, isinf, log, mp, mpf, sqrt

mp.dps = 60
FOLDER = pathlib.Path(__file__).parent
SMALL = ["1e-300", "1e-250", "3e-200", "1e-150", "7e-100", "1e-60", "1e-30", "4e-20", "1e-15", "1e-10", "1e-7"]
MIDDLE = ["1e-5", "0.001", "0.01", "0.05", "0.074", "0.076", "0.2", "0.35", "0.45", "0.499", "0.5", "0.5000001",
          "0.6", "0.75", "0.9", "0.925", "0.95", "0.99", "0.999", "0.99999", "0.999999999"]
PROBABILITIES = [float(p) for p in SMALL + MIDDLE]
TAIL = mpf("1e-6")


def region(low, high):
    return "tail" if min(low, high) < TAIL else "body"


def root(f, low, high):
    """The zero of an f that increases from low to high. The Illinois method, every fourth step a bisection."""
    low, high = mpf(low), mpf(high)
    f_low, f_high = f(low), f(high)
    if not f_low <= 0 <= f_high:
        raise ValueError("the bracket holds no zero")
    for step in range(1, 2000):
        width = high - low
        if f_low == 0 or width <= abs(low) * mpf(10) ** -55:
            return low
        if f_high == 0:
            return high
        middle = (low + high) / 2
        x = high - f_high * width / (f_high - f_low) if step % 4 and f_high != f_low else middle
        if not low < x < high:
            x = middle
        f_x = f(x)
        if f_x == 0:
            return x
        if f_x < 0:
            if step > 1 and kept == "high":
                f_high /= 2
            low, f_low, kept = x, f_x, "high"
        else:
            if step > 1 and kept == "low":
                f_low /= 2
            high, f_high, kept = x, f_x, "low"
    raise ArithmeticError("no zero found")


@functools.lru_cache(maxsize=None)
def normal_lower_quantile(p):
    """The z with P(Z <= z) = p."""
    p = mpf(p)
    if p > mpf(1) / 2:
        return -normal_lower_quantile(1 - p)
    if p == mpf(1) / 2:
        return mpf(0)
    # Mills: the tail at z lies below exp(-z^2 / 2) / 2.
    return root(lambda z: log(erfc(-z / sqrt(2)) / 2) - log(p), -sqrt(-2 * log(2 * p)) - mpf("1e-40"), mpf(0))


def probability_rows(where, x, log_density, low, high, values):
    yield "Density", where, x, values, exp(log_density)
    yield "LogDensity", where, x, values, log_density
    yield "Cdf", where, x, values, low
    yield "Complement", where, x, values, high


def continuous_rows(distribution, values):
    points = set(getattr(distribution, "extra_points", []))
    quantiles = []
    for p in PROBABILITIES:
        where = region(mpf(p), 1 - mpf(p))
        for function, value in ("Quantile", distribution.quantile(p)), ("ComplementQuantile", distribution.complement_quantile(p)):
            quantiles.append((function, where, p, values, value))
            points.add(float(value))
    for x in sorted(points):
        if math.isinf(x) or not distribution.is_inside(mpf(x)):
            continue
        low, high, log_density = distribution.cdf(x), distribution.complement(x), distribution.log_density(x)
        yield from probability_rows(region(low, high), x, log_density, low, high, values)
    yield from quantiles


def is_subnormal(x):
    return 0.0 < abs(x) < sys.float_info.min


def text(value):
    return " ".join(map(repr, value)) if isinstance(value, tuple) else repr(value)


def write(name, header, rows):
    with open(FOLDER / name, "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(header)
        writer.writerows(rows)


def write_table(kind):
    """<name>.csv: function, region, argument, the parameters, value. Values that a double cannot hold are left out."""
    rows = []
    for values in kind.sets:
        for function, where, argument, parameters, value in continuous_rows(kind(*values), values):
            number = float(value)
            is_quantile = function.endswith("Quantile")
            if isinf(value) or abs(number) in (0.0, inf) or abs(number) < 1e-300 and not is_quantile:
                continue
            if is_subnormal(number) or is_subnormal(argument):
                continue
            rows.append([function, where, repr(argument), *map(text, parameters), repr(number)])
    write(f"{kind.name}.csv", ["function", "region", "argument", *kind.parameters, "value"], rows)


def write_moments(kind):
    """<name>_moments.csv: function, the parameters, value; infinite moments are `inf`."""
    rows = []
    for values in kind.moment_sets:
        distribution = kind(*values)
        for function, value in ("Mean", distribution.mean()), ("Variance", distribution.variance()):
            rows.append([function, *map(text, values), repr(float(value))])
    write(f"{kind.name}_moments.csv", ["function", *kind.parameters, "value"], rows)
