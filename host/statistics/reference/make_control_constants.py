#!/usr/bin/env python3
"""Writes control_constants.inc: n, d2, d3 and c4 by mpmath, from the distribution function of the range and from the gamma
function."""
import os

import mpmath as mp

mp.mp.dps = 20


def range_moments(n):
    density = lambda x: mp.npdf(x)
    cdf = lambda w: n * mp.quad(lambda x: density(x) * ((mp.erfc(-(x + w) / mp.sqrt(2)) - mp.erfc(-x / mp.sqrt(2))) / 2) ** (n - 1),
                                [-10 - w, -w, -w / 2, 0, 10])
    rule = mp.calculus.quadrature.GaussLegendre(mp.mp)
    ends = (0, 1, 2, 3, 4, 5, 6, 8, 11, 16)
    nodes = [node for low, high in zip(ends, ends[1:]) for node in rule.get_nodes(low, high, 4, 80)]
    above = [(w, weight, 1 - cdf(w)) for w, weight in nodes]
    mean = sum(weight * p for w, weight, p in above)
    square = sum(2 * w * weight * p for w, weight, p in above)
    return mean, mp.sqrt(square - mean ** 2)


with open(os.path.join(os.path.dirname(__file__), "control_constants.inc"), "w") as file:
    file.write("// make_control_constants.py\n")
    for n in (2, 3, 4, 5, 7, 10, 15, 25, 60):
        d2, d3 = range_moments(n)
        c4 = mp.sqrt(mp.mpf(2) / (n - 1)) * mp.gamma(mp.mpf(n) / 2) / mp.gamma(mp.mpf(n - 1) / 2)
        file.write(f"{{{n}, {mp.nstr(d2, 15)}, {mp.nstr(d3, 15)}, {mp.nstr(c4, 15)}}},\n")
