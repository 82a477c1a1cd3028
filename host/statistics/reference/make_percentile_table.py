#!/usr/bin/env python3
"""Writes percentiles.inc: indices by percentiles (ISO 22514-2) of fitted distributions, and the parts per million beyond the
limits, by SciPy's distributions. Of a limit that is not given there is no index."""
import math
import pathlib

from scipy import stats

# code, values, SciPy's distribution
DISTRIBUTIONS = [
    ("kNormal", (10, 2), stats.norm(10, 2)),
    ("kLogNormal", (0.5, 0.4), stats.lognorm(0.4, scale=math.exp(0.5))),
    ("kHalfNormal", (3,), stats.halfnorm(scale=3)),
    ("kRayleigh", (2,), stats.rayleigh(scale=2)),
    ("kWeibull", (100, 2), stats.weibull_min(2, scale=100)),
    ("kGeneralExtremeValue", (10, 2, 0.1), stats.genextreme(-0.1, 10, 2)),
    ("kGeneralExtremeValue", (10, 2, -0.1), stats.genextreme(0.1, 10, 2)),
]
NONE = math.nan


def row(code, values, distribution, lower, upper):
    low, median, high = distribution.ppf([0.00135, 0.5, 0.99865])
    pp = (upper - lower) / (high - low)
    ppl = (median - lower) / (median - low)
    ppu = (upper - median) / (high - median)
    least = ppl if math.isnan(ppu) else ppu if math.isnan(ppl) else min(ppl, ppu)
    below = NONE if math.isnan(lower) else 1e6 * distribution.cdf(lower)
    above = NONE if math.isnan(upper) else 1e6 * distribution.sf(upper)
    text = lambda x: "kNone" if math.isnan(x) else repr(float(x))
    numbers = ", ".join(text(x) for x in (lower, upper, pp, ppl, ppu, least, below, above))
    return f"{{DistributionCode::{code}, {{{', '.join(map(str, values))}}}, {numbers}}},"


def main():
    lines = ["// make_percentile_table.py"]
    for code, values, distribution in DISTRIBUTIONS:
        lower, upper = (float(f"{x:.4g}") for x in distribution.ppf([0.0005, 0.9999]))
        for limits in ((lower, upper), (NONE, upper), (lower, NONE)):
            lines.append(row(code, values, distribution, *limits))
    (pathlib.Path(__file__).parent / "percentiles.inc").write_text("\n".join(lines) + "\n", encoding="ascii")


main()
