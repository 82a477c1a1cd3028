#!/usr/bin/env python3
"""How often intervals by the profile likelihood hold the true quantile: prints docs/evidence/quantile-profiles.md.

An interval by the profile likelihood (Coles 2001, An Introduction to Statistical Modeling of Extreme Values, section
3.3.3) holds a value of the quantile if the greatest likelihood of all General Extreme Value distributions with that
quantile lies within half of the chi-square limit below the greatest of all. So the true quantile tells at once, and no
interval needs to be computed. Needs SciPy.
"""
import numpy
from scipy.optimize import minimize
from scipy.stats import chi2, genextreme

SAMPLES = 1000
CONFIDENCE = 0.95
PROBABILITIES = (0.01, 0.1, 0.5, 0.9, 0.99)
LOCATION, SCALE = 10, 2
LEAST_SHAPE = -1  # below which the likelihood has no maximum
HEAD = """# Intervals of quantiles by the profile likelihood

How often 95 % intervals of quantiles of General Extreme Value by the profile likelihood hold the true quantile.
`bench/quantile_profiles.py` prints this page by SciPy alone: {samples} samples of each kind; the standard error of a share
is 0.7 %. Those that Brenvolt computes are [here](quantile-intervals.md).

| shape | values | quantile | by profile likelihood |
|---|---|---|---|"""


def quantile(location, scale, shape, p):
    y = -numpy.log(p)
    if abs(shape) < 1e-8:
        return location - scale * numpy.log(y)
    return location + scale * (y ** -shape - 1) / shape


def minus_log_likelihood(values, sample):
    location, log_scale, shape = values
    z = (sample - location) / numpy.exp(log_scale)
    if abs(shape) < 1e-8:
        return len(sample) * log_scale + z.sum() + numpy.exp(-z).sum()
    t = 1 + shape * z
    if t.min() <= 0 or shape < LEAST_SHAPE:
        return 1e10
    logs = numpy.log(t)
    return len(sample) * log_scale + (1 + 1 / shape) * logs.sum() + numpy.exp(-logs / shape).sum()


def least(function, starts):
    """The least of what a search from each start finds."""
    options = {"xatol": 1e-6, "fatol": 1e-7, "maxiter": 2000}
    return min((minimize(function, start, method="Nelder-Mead", options=options) for start in starts),
               key=lambda found: found.fun)


def held(sample, shape, fit):
    """For each probability, whether the interval holds the true quantile."""
    limit = chi2.ppf(CONFIDENCE, 1)
    for p in PROBABILITIES:
        true = quantile(LOCATION, SCALE, shape, p)

        def with_quantile(values):
            log_scale, own = values
            return minus_log_likelihood((true - quantile(0, numpy.exp(log_scale), own, p), log_scale, own), sample)
        constrained = least(with_quantile, (fit.x[1:], (numpy.log(SCALE), shape)))
        yield 2 * (constrained.fun - fit.fun) <= limit


def print_rows(shape, count):
    stream = numpy.random.default_rng(7)
    found = []
    for _ in range(SAMPLES):
        sample = genextreme.rvs(-shape, loc=LOCATION, scale=SCALE, size=count, random_state=stream)
        start = numpy.median(sample) - 0.37 * sample.std(), numpy.log(0.78 * sample.std())
        fit = least(lambda values: minus_log_likelihood(values, sample), [(*start, own) for own in (shape, 0, -0.3)])
        found.append(tuple(held(sample, shape, fit)))
    for p, share in zip(PROBABILITIES, numpy.mean(found, axis=0)):
        print(f"| {shape} | {count} | {100 * p:g} % | {100 * share:.1f} % |", flush=True)


if __name__ == "__main__":
    print(HEAD.format(samples=SAMPLES))
    for shape in (0.1, -0.1):
        print_rows(shape, 50)
