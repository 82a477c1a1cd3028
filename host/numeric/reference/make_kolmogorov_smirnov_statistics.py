#!/usr/bin/env python3
"""Writes kolmogorov_smirnov_statistics.csv beside this script: D = sup |F_n(x) - F(x)| for every tested distribution.

Run by hand (needs NumPy and SciPy); the table is committed. Continuous distributions: scipy.stats.kstest. Discrete ones:
brute force, both functions and both their left limits at every point at which either may jump. Johnson SL, SB, SU and SN
and mixtures are sums and transforms of scipy.stats.norm.

Columns: test code, parameters, offset, data, statistic; parameters and data are separated by blanks.
"""
import csv
import pathlib

import numpy as np
from scipy import stats

FOLDER = pathlib.Path(__file__).parent
LIVES = [0.31, 0.84, 0.97, 1.12, 1.12, 1.58, 1.83, 2.04, 2.41, 2.77, 2.77, 2.77, 3.35, 4.02, 4.9, 6.63, 9.81]
SIGNED = [-4.4, -2.1, -1.7, -0.9, -0.25, -0.1, 0.0, 0.0, 0.3, 0.65, 0.8, 1.4, 1.9, 2.2, 3.7, 5.1]
FRACTIONS = [2.05, 2.2, 2.21, 2.55, 2.9, 3.3, 3.75, 4.0, 4.0, 4.4, 4.95]
COUNTS = [0, 0, 1, 1, 1, 2, 3, 3, 4, 4, 4, 4, 5, 7, 9, 12]
GAPPED = [3, 3, 3, 11, 11, 26]
BETWEEN = [-1.0, 0.5, 1.0, 1.25, 4.0, 4.0]
BITS = [0] * 5 + [1] * 8
MANY = sorted(round(float(x), 3) for x in np.random.default_rng(5).weibull(1.7, 2500) * 3)


def mixture(*components):
    return lambda x: sum(w * stats.norm.cdf(x, m, s) for w, m, s in zip(*[iter(components)] * 3))


def johnson(family, gamma, delta, scale, xi):
    transform = {1: np.log, 2: np.arcsinh, 3: lambda y: np.log(y / (1 - y)), 4: lambda y: y}[family]
    return lambda x: stats.norm.cdf(gamma + delta * transform((x - xi) / scale))


def gpd(*p):
    threshold, scale, shape = p if len(p) == 3 else (0.0, *p)
    return stats.genpareto(shape, threshold, scale).cdf


CONTINUOUS = {
    1: lambda mean, deviation: stats.norm(mean, deviation).cdf,
    9: lambda scale, shape, threshold=0.0: stats.lognorm(shape, threshold, np.exp(scale)).cdf,
    10: lambda scale, shape, threshold=0.0: stats.weibull_min(shape, threshold, scale).cdf,
    12: lambda scale, threshold=0.0: stats.rayleigh(threshold, scale).cdf,
    13: lambda location, scale, threshold=0.0: stats.foldnorm(abs(location) / scale, threshold, scale).cdf,
    14: lambda scale, threshold=0.0: stats.halfnorm(threshold, scale).cdf,
    15: mixture,
    16: johnson,
    17: lambda location, scale, shape: stats.genextreme(-shape, location, scale).cdf,
    18: gpd,
    19: lambda low, high, mode: stats.triang((mode - low) / (high - low), low, high - low).cdf,
}
CONTINUOUS_CASES = [
    (1, (0.2, 2.3), 0, SIGNED), (1, (1.0, 2.3), -0.75, SIGNED), (1, (100.0, 1.0), 0, SIGNED),
    (9, (0.8, 0.9), 0, LIVES), (9, (0.8, 0.9), -0.5, LIVES), (9, (0.5, 1.1, 0.25), 0, LIVES),
    (10, (3.0, 1.4), 0, LIVES), (10, (3.0, 1.4, 0.3), 0, LIVES), (10, (3.0, 1.4), 0.25, LIVES),
    (10, (3.0, 1.7), 0, MANY),
    (12, (2.1,), 0, LIVES), (12, (2.1,), -1.0, LIVES), (12, (1.9, 0.2), 0, LIVES),
    (13, (1.5, 2.0), 0, LIVES), (13, (-1.5, 2.0), 0.25, LIVES), (13, (0.0, 3.0, -0.5), 0, LIVES),
    (14, (3.3,), 0, LIVES), (14, (3.3,), 0.31, LIVES), (14, (3.0, 0.5), 0, LIVES),
    (15, (1.0, 0.1, 2.0), 0, SIGNED), (15, (0.3, -2.0, 1.0, 0.7, 1.0, 1.5), 0, SIGNED),
    (15, (0.2, -2.0, 0.3, 0.0, 0.0, 1.0, 0.8, 1.0, 1.75), 1.0, SIGNED),
    (16, (1, -0.4, 1.2, 1.0, 0.1), 0, LIVES), (16, (2, -0.6, 1.3, 1.8, -0.4), 0, SIGNED),
    (16, (3, 0.2, 0.9, 3.5, 1.75), 0, FRACTIONS), (16, (4, -0.3, 0.5, 1.0, 0.0), 0, SIGNED),
    (17, (1.6, 1.2, 0.3), 0, LIVES), (17, (-0.5, 2.0, -0.25), 0, SIGNED), (17, (0.0, 2.0, 0.0), 0.5, SIGNED),
    (18, (2.0, 0.3), 0, LIVES), (18, (2.0, 0.3), 0.25, LIVES), (18, (0.3, 2.0, 0.3), 0, LIVES),
    (18, (-1.0, 15.0, -0.5), 0.5, LIVES), (18, (0.25, 2.5, 0.0), 0, LIVES),
    (19, (2.0, 5.0, 2.8), 0, FRACTIONS), (19, (2.0, 5.0, 2.0), 0, FRACTIONS), (19, (1.5, 4.5, 4.5), 0.5, FRACTIONS),
]


def histogram_mass(*classes):
    codes, shares = classes[::2], classes[1::2]
    return [(c, w / sum(shares)) for c, w in zip(codes, shares)]


def mass_of(distribution, last):
    return [(k, float(distribution.pmf(k))) for k in range(last + 1)]


LAST = 400
DISCRETE = {
    20: lambda mean: mass_of(stats.poisson(mean), LAST),
    21: lambda proportion, trials: mass_of(stats.binom(int(trials), proportion), min(int(trials), LAST)),
    22: lambda proportion: mass_of(stats.geom(proportion, -1), LAST),
    23: lambda proportion: mass_of(stats.bernoulli(proportion), 1),
    24: histogram_mass,
}
DISCRETE_CASES = [
    *[(20, (mean,), 0, data) for mean in (0.3, 3.5, 9.5) for data in (COUNTS, GAPPED, BETWEEN)],
    *[(21, p, 0, data) for p in ((0.25, 12.0), (0.02, 200.0), (0.75, 30.0)) for data in (COUNTS, GAPPED, BETWEEN)],
    *[(21, (p, 1.0), 0, BITS) for p in (0.0, 0.5, 1.0)], (21, (0.5, 12.0), -3.0, COUNTS),
    *[(22, (p,), 0, data) for p in (0.2, 0.07, 1.0) for data in (COUNTS, GAPPED, BETWEEN)],
    *[(23, (p,), 0, data) for p in (0.0, 0.6, 1.0) for data in (BITS, BETWEEN, [0] * 4, [1] * 3)],
    (24, (0.0, 0.25, 1.0, 0.5, 4.0, 0.25), 0, COUNTS), (24, (4.0, 0.3, 1.25, 0.2, -1.0, 0.4, 1.25, 0.1), 0, BETWEEN),
    (24, (11.0, 0.2, 7.0, 0.3, 3.0, 0.1, 26.0, 0.05, 19.0, 0.35), 0, GAPPED), (24, (2.5, 1.0), 0.5, GAPPED),
    (24, (11.0, 0.5, 9.0, 0.0, 3.0, 0.5), 0, GAPPED),
]


def brute_force(mass, data):
    n = len(data)
    worst = 0.0
    for point in {k for k, _ in mass} | set(data):
        at = sum(w for k, w in mass if k <= point)
        before = sum(w for k, w in mass if k < point)
        worst = max(worst, abs(at - sum(x <= point for x in data) / n), abs(before - sum(x < point for x in data) / n))
    return worst


def main():
    with open(FOLDER / "kolmogorov_smirnov_statistics.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["test code", "parameters", "offset", "data", "statistic"])
        for code, parameters, offset, data in CONTINUOUS_CASES + DISCRETE_CASES:
            shifted = [x - offset for x in data]
            if code in CONTINUOUS:
                statistic = stats.kstest(shifted, CONTINUOUS[code](*parameters)).statistic
            else:
                statistic = brute_force(DISCRETE[code](*parameters), shifted)
            writer.writerow([code, " ".join(map(repr, map(float, parameters))), repr(float(offset)),
                             " ".join(map(repr, map(float, data))), repr(float(statistic))])


if __name__ == "__main__":
    main()
