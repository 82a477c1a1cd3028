#!/usr/bin/env python3
"""Writes capability_intervals.inc and percentile_ranks.inc beside this script (needs SciPy).

Capability: the intervals of Cp from quantiles of chi-square and of Cpk by Bissell (1990), by scipy.stats.

Percentiles: for every pair of limits the probability of missing the percentile is a binomial sum; the narrowest ranks
with (1 - confidence)/2 at most on either side are found by trying all.
"""
import pathlib

from scipy import stats

FOLDER = pathlib.Path(__file__).parent

lines = ["// Made by make_interval_tables.py: confidence, count, degrees, index, its Cp interval, its Cpk interval."]
for confidence in (0.9, 0.95, 0.99):
    for count, degrees in ((2, 1.0), (5, 4.0), (20, 19.0), (30, 17.752), (5000, 3025.25), (100000, 99999.0)):
        for index in (0.5, 1.33, -0.2):
            tail = (1 - confidence) / 2
            chi2 = stats.chi2(degrees)
            z = stats.norm.ppf(1 - tail)
            reach = z * (1 / (9 * count) + index**2 / (2 * degrees)) ** 0.5
            values = [confidence, count, degrees, index, index * (chi2.ppf(tail) / degrees) ** 0.5,
                      index * (chi2.isf(tail) / degrees) ** 0.5, index - reach, index + reach]
            lines.append("{" + ", ".join(repr(float(v)) if i != 1 else str(v) for i, v in enumerate(values)) + "},")
(FOLDER / "capability_intervals.inc").write_text("\n".join(lines) + "\n")

lines = ["// Made by make_interval_tables.py: count, percent, confidence, ranks of the limits (0: none), coverage."]
for n in (1, 5, 6, 20, 50, 100, 1000):
    for percent in (0.135, 5.0, 50.0, 90.0):
        for confidence in (0.9, 0.95):
            tail = (1 - confidence) / 2
            distribution = stats.binom(n, percent / 100)
            lower = max((rank for rank in range(1, n + 1) if distribution.cdf(rank - 1) <= tail), default=0)
            upper = min((rank for rank in range(1, n + 1) if distribution.sf(rank - 1) <= tail), default=0)
            coverage = (distribution.cdf(upper - 1) if upper else 1.0) - (distribution.cdf(lower - 1) if lower else 0.0)
            lines.append(f"{{{n}, {percent!r}, {confidence!r}, {lower}, {upper}, {float(coverage)!r}}},")
(FOLDER / "percentile_ranks.inc").write_text("\n".join(lines) + "\n")
