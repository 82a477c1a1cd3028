#!/usr/bin/env python3
"""Makes weibull_fits.csv and pareto_fits.csv: samples with their maximum-likelihood estimates.

The likelihood equations are solved and the second derivatives of the log-likelihood inverted with mpmath at 50 digits.

Weibull: 25 values about 1 whose standard deviation is from 1e-8 % to 300 % of their mean: up to 30 % normal scores,
beyond log-normal ones. Columns: variation, shape, scale, the standard errors of the two, their covariance, the values.

General Pareto: plotting positions of heavy tails, shapes of 0.5 to 20. All maxima of the likelihood over shape / scale
are found on a grid of 40 points for each decade; the greatest stands in the table. Columns: the shape of the sample,
the scale and shape of the estimate, its log-likelihood, the values.

Run: host/numeric/estimation/reference/make_fits.py
"""
import pathlib
import statistics

from mpmath import exp, findroot, log, mp, mpf, sqrt

mp.dps = 50
HERE = pathlib.Path(__file__).parent
SCORES = [statistics.NormalDist().inv_cdf((i + 0.5) / 25) for i in range(25)]


def variation_of(values):
    return statistics.stdev(values) / statistics.mean(values)


def weibull_sample(variation):
    if variation <= 0.3:
        spread = variation / statistics.stdev(SCORES)
        return [1 + spread * z for z in SCORES]
    low, high = 0.1, 20.0
    for _ in range(60):
        middle = (low + high) / 2
        low, high = (middle, high) if variation_of([float(exp(middle * z)) for z in SCORES]) < variation else (low, middle)
    return [float(exp(low * z)) for z in SCORES]


def weibull_fit(values):
    logs = [log(mpf(x)) for x in values]
    n = len(values)
    mean = sum(logs) / n

    def equation(c):
        powers = [exp(c * (l - max(logs))) for l in logs]
        return mean + 1 / c - sum(p * l for p, l in zip(powers, logs)) / sum(powers)

    c = mpf(1)
    while equation(2 * c) > 0:
        c *= 2
    shape = findroot(equation, (c, 2 * c), solver="anderson", tol=mpf(10) ** -80)
    scale = exp(log(sum(exp(shape * l) for l in logs) / n) / shape)
    # The observed information, from the second derivatives of the log-likelihood in closed form.
    u = [(l - log(scale)) for l in logs]
    by_shape = n / shape**2 + sum(exp(shape * x) * x**2 for x in u)
    by_scale = n * shape**2 / scale**2
    mixed = -shape / scale * sum(exp(shape * x) * x for x in u)
    determinant = by_shape * by_scale - mixed**2
    return shape, scale, sqrt(by_scale / determinant), sqrt(by_shape / determinant), -mixed / determinant


def pareto_sample(shape, count=40):
    return [float(((1 - (mpf(i) + mpf(13) / 20) / count) ** -mpf(shape) - 1) / shape) for i in range(count)]


def pareto_fit(values):
    y = [mpf(x) for x in values]
    n = len(y)

    def profile(r):
        shape = sum(log(1 + r * x) for x in y) / n
        return -n * (log(shape / r) + shape + 1)

    def slope(r):
        shape = sum(log(1 + r * x) for x in y) / n
        by_ratio = sum(x / (1 + r * x) for x in y) / n
        return 1 / r - by_ratio / shape - by_ratio

    decades = int(log(max(y) / min(y), 10)) + 6
    grid = [10 ** (mpf(j) / 40) / (1000 * max(y)) for j in range(40 * decades)]
    slopes = [slope(r) for r in grid]
    roots = [findroot(slope, (grid[i - 1], grid[i]), solver="anderson", tol=mpf(10) ** -60)
             for i in range(1, len(grid)) if slopes[i - 1] > 0 >= slopes[i]]
    best = max(roots, key=profile)
    shape = sum(log(1 + best * x) for x in y) / n
    return shape / best, shape, profile(best)


def write(name, heading, rows):
    with open(HERE / name, "w") as file:
        file.write(heading + "\n")
        for asked, fit, values in rows:
            numbers = [repr(float(asked)), *(mp.nstr(x, 17) for x in fit)]
            file.write(",".join([*numbers, " ".join(map(repr, values))]) + "\n")


if __name__ == "__main__":
    samples = [(v, weibull_sample(v)) for v in (1e-10, 1e-9, 1e-8, 1e-6, 1e-4, 1e-3, 0.01, 0.05, 0.3, 1, 3)]
    write("weibull_fits.csv", "variation,shape,scale,shape error,scale error,covariance,values",
          [(v, weibull_fit(x), x) for v, x in samples])
    samples = [(k, pareto_sample(k)) for k in (0.5, 2, 5, 8, 12, 20)]
    write("pareto_fits.csv", "shape of the sample,scale,shape,log-likelihood,values",
          [(k, pareto_fit(x), x) for k, x in samples])
