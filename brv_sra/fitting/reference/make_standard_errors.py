#!/usr/bin/env python3
"""Prints the maxima, covariances and log-likelihoods that estimation_test.cpp holds fits to: the likelihood
equations solved and the negative Hessian inverted with mpmath at 30 digits."""
import pathlib

import mpmath as mp

mp.mp.dps = 30
EXAMPLES = pathlib.Path(__file__).parents[3] / "examples"
LOSSES = [mp.mpf(x) for x in (EXAMPLES / "danish_fire_losses.csv").read_text().split()[1:]]
LARGE = [x for x in LOSSES if x > 10]
FOLDED = [mp.mpf(x) / 10 for x in (3, 11, 7, 25, 18, 1, 14, 9, 31, 22, 5, 16, 12, 28, 8, 19, 2, 13)]


def pareto(scale, shape):
    return sum(-mp.log(scale) - (1 + 1 / shape) * mp.log(1 + shape * (x - 10) / scale) for x in LARGE)


def folded(location, scale):
    return sum(mp.log(mp.npdf(x, location, scale) + mp.npdf(x, -location, scale)) for x in FOLDED)


def report(name, likelihood, start):
    slopes = lambda a, b: [mp.diff(likelihood, (a, b), (1, 0)), mp.diff(likelihood, (a, b), (0, 1))]
    at = tuple(mp.findroot(slopes, start))
    mixed = -mp.diff(likelihood, at, (1, 1))
    information = mp.matrix([[-mp.diff(likelihood, at, (2, 0)), mixed],
                             [mixed, -mp.diff(likelihood, at, (0, 2))]])
    print(name, [mp.nstr(x, 17) for x in at], mp.nstr(information**-1, 15), mp.nstr(likelihood(*at), 17))


report("general Pareto above 10", pareto, (6.97, 0.497))
report("folded normal", folded, (1.3, 0.9))
