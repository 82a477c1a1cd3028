#!/usr/bin/env python3
"""Writes likelihood.inc: the log-likelihood of single censored values with its first and second derivatives by the
parameters, those that are positive by their logarithm, from the distribution functions themselves, by mpmath."""
import pathlib
from mpmath import mp, mpf, exp, log, sqrt, erfc, diff, pi

mp.dps = 60
NONE = None


def normal_tails(z):
    return erfc(-z / sqrt(mpf(2))) / 2, erfc(z / sqrt(mpf(2))) / 2


def normal(x, location, scale):
    z = (x - location) / scale
    return exp(-z * z / 2) / (scale * sqrt(2 * pi)), *normal_tails(z)


def lognormal(x, location, scale):
    density, below, above = normal(log(x), location, scale)
    return density / x, below, above


def half_normal(x, scale):
    density, below, above = normal(x, 0, scale)
    return 2 * density, 1 - 2 * above, 2 * above


def weibull(x, scale, shape):
    hazard = (x / scale) ** shape
    return shape / x * hazard * exp(-hazard), 1 - exp(-hazard), exp(-hazard)


def rayleigh(x, scale):
    return x / scale**2 * exp(-x * x / (2 * scale**2)), 1 - exp(-x * x / (2 * scale**2)), exp(-x * x / (2 * scale**2))


def extreme(x, location, scale, shape):
    z = (x - location) / scale
    # At a shape of 0 by the series of ln(1 + k z) / k, whose derivatives there are those of the limit.
    w = z - shape * z**2 / 2 + shape**2 * z**3 / 3 if abs(shape) < mpf(10) ** -25 else log(1 + shape * z) / shape
    t = exp(-w)
    return t * exp(-shape * w - t) / scale, exp(-t), 1 - exp(-t)


# name, function, which parameters count by their logarithm
KINDS = {
    "kNormal": (normal, [False, True]),
    "kLogNormal": (lognormal, [False, True]),
    "kHalfNormal": (half_normal, [True]),
    "kRayleigh": (rayleigh, [True]),
    "kWeibull": (weibull, [True, True]),
    "kGeneralExtremeValue": (extreme, [False, True, False]),
}
BOUNDS = [(1, 1), (1, NONE), (NONE, 1), (1, 3), (1, "1.000001")]
CASES = {
    "kNormal": [(("0.5", "1.5"), BOUNDS + [(40, NONE), (NONE, -40), (19, 20), (-20, -19), (1000, NONE)])],
    "kLogNormal": [(("0.3", "0.7"), BOUNDS + [(5000, NONE), (NONE, "0.001")])],
    "kHalfNormal": [(("1.7",), BOUNDS + [(40, NONE), (NONE, "0.001")])],
    "kRayleigh": [(("1.3",), BOUNDS + [(20, NONE), (NONE, "0.001")])],
    "kWeibull": [(("2.5", "1.8"), BOUNDS + [(12, NONE), (NONE, "0.001")])],
    "kGeneralExtremeValue": [
        (("0.4", "1.2", "0.3"), BOUNDS + [(-2, -2), (1000, NONE)]),
        (("0.4", "1.2", "-0.3"), BOUNDS + [("4.399", "4.399"), ("4.399", NONE), (-5, -5), (NONE, -5)]),
        (("0.4", "1.2", "0.02"), BOUNDS),
        (("0.4", "1.2", "0"), BOUNDS + [(30, NONE)]),
        (("0.4", "1.2", "-0.00001"), BOUNDS),
        (("-2", "3", "-0.9"), [(1, 1), (1, NONE), (NONE, 1), (1, "1.3")]),
    ],
}


def contribution(kind, bounds, parameters):
    function = KINDS[kind][0]
    low, high = bounds
    if low == high:
        return log(function(mpf(low), *parameters)[0])
    if high is NONE:
        return log(function(mpf(low), *parameters)[2])
    if low is NONE:
        return log(function(mpf(high), *parameters)[1])
    return log(function(mpf(high), *parameters)[1] - function(mpf(low), *parameters)[1])


def row(kind, parameters, bounds):
    logarithmic = KINDS[kind][1]
    start = [log(p) if of_log else p for p, of_log in zip(parameters, logarithmic)]

    def likelihood(*at):
        return contribution(kind, bounds, [exp(u) if of_log else u for u, of_log in zip(at, logarithmic)])

    n = len(start)
    def derivative(*places):
        return diff(likelihood, tuple(start), tuple(places.count(i) for i in range(n)), h=mpf(10) ** -15)

    first = [derivative(i) for i in range(n)]
    second = [derivative(i, j) for i in range(n) for j in range(i + 1)]
    text = lambda numbers: "{" + ", ".join(mp.nstr(x, 17) for x in numbers) + "}"
    low, high = bounds
    return (
        f"{{DistributionCode::{kind}, {text(parameters)}, "
        f"{'-kInfinity' if low is NONE else low}, {'kInfinity' if high is NONE else high}, "
        f"{mp.nstr(likelihood(*start), 17)}, {text(first)}, {text(second)}}},"
    )


def main():
    lines = ["// make_likelihood_table.py"]
    for kind, groups in CASES.items():
        for parameters, all_bounds in groups:
            for bounds in all_bounds:
                lines.append(row(kind, [mpf(p) for p in parameters], bounds))
    folder = pathlib.Path(__file__).parent
    (folder / "likelihood.inc").write_text("\n".join(lines) + "\n", encoding="ascii")


main()
