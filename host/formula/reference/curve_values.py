#!/usr/bin/env python3
"""Writes curve_values.inc: the functions of curve formulas at x = 2 by SciPy, in its own parameters.

    curve_values.py > curve_values.inc
"""
import numpy as np
from scipy import optimize, stats

X = 2.0
ROWS = (
    # density, distribution function, arguments, SciPy's distribution
    (("Normal",), "iNormal", "x,1.5,0.7", stats.norm(1.5, 0.7)),
    (("Lognorm",), "iLognorm", "x,0.4,0.6", stats.lognorm(0.6, scale=np.exp(0.4))),
    (("Lognorm",), "iLognorm", "x--1.25,0.4,0.6", stats.lognorm(0.6, -1.25, np.exp(0.4))),
    (("FoldedNormal", "FoldeNormal"), "iFoldedNormal", "x,1.2,0.8", stats.foldnorm(1.2 / 0.8, scale=0.8)),
    (("HalfNormal",), "iHalfNormal", "x-0.5,1.3", stats.halfnorm(0.5, 1.3)),
    (("Rayl",), "IRayl", "x,1.3", stats.rayleigh(scale=1.3)),
    (("weibull",), "iWeibull", "x,3,1.7,-1", stats.weibull_min(1.7, -1, 3)),
    (("Johnson",), "iJohnson", "x,2,0.5,1.5,2,-3", stats.johnsonsu(0.5, 1.5, -3, 2)),
    (("Johnson",), "iJohnson", "x,3,0.5,1.5,6,-3", stats.johnsonsb(0.5, 1.5, -3, 6)),
    (("GEV",), "IGEV", "x,1,2,0.2", stats.genextreme(-0.2, 1, 2)),
    (("GPD",), "IGPD", "x,0.5,2,0.2", stats.genpareto(0.2, 0.5, 2)),
    (("Triangular",), "iTriangular", "x,1,5,2.5", stats.triang((2.5 - 1) / (5 - 1), 1, 4)),
    (("Binom",), "iBinom", "x,0.3,8", stats.binom(8, 0.3)),
    (("Poisson",), "iPoisson", "x,2.5", stats.poisson(2.5)),
    (("Geom",), "iGeom", "x,0.3", stats.geom(0.3, -1)),
)

# The functions with long names; a quantile is taken at a probability that varies with x.
LONG = (
    ("Normal", "1.5,0.7", stats.norm(1.5, 0.7)),
    ("LogNormal", "0.4,0.6", stats.lognorm(0.6, scale=np.exp(0.4))),
    ("LogNormal", "0.4,0.6,-1.25", stats.lognorm(0.6, -1.25, np.exp(0.4))),
    ("FoldedNormal", "1.2,0.8,0.5", stats.foldnorm(1.2 / 0.8, 0.5, 0.8)),
    ("HalfNormal", "1.3,0.5", stats.halfnorm(0.5, 1.3)),
    ("Rayleigh", "1.3", stats.rayleigh(scale=1.3)),
    ("Weibull", "3,1.7", stats.weibull_min(1.7, 0, 3)),
    ("Weibull", "3,1.7,-1", stats.weibull_min(1.7, -1, 3)),
    ("Johnson", "2,0.5,1.5,2,-3", stats.johnsonsu(0.5, 1.5, -3, 2)),
    ("GeneralizedExtremeValue", "1,2,0.2", stats.genextreme(-0.2, 1, 2)),
    ("GeneralizedPareto", "2,0.2,0.5", stats.genpareto(0.2, 0.5, 2)),
    ("Triangular", "1,5,2.5", stats.triang((2.5 - 1) / (5 - 1), 1, 4)),
    ("Binomial", "0.3,8", stats.binom(8, 0.3)),
    ("Poisson", "2.5", stats.poisson(2.5)),
    ("Geometric", "0.3", stats.geom(0.3, -1)),
)
MIXTURE = ((0.3, 1.0, 0.5), (0.7, 3.0, 1.5))


def density_of(distribution):
    return distribution.pdf(X) if isinstance(distribution.dist, stats.rv_continuous) else distribution.pmf(X)


print("// Made by curve_values.py with SciPy 1.10.")
for densities, cumulative, arguments, distribution in ROWS:
    for name in densities:
        print(f'{{"{name}({arguments})", {float(density_of(distribution))!r}}},')
    print(f'{{"{cumulative}({arguments})", {float(distribution.cdf(X))!r}}},')
for name, arguments, distribution in LONG:
    print(f'{{"{name}Density(x,{arguments})", {float(density_of(distribution))!r}}},')
    print(f'{{"{name}Cdf(x,{arguments})", {float(distribution.cdf(X))!r}}},')
    print(f'{{"{name}Quantile(x/3,{arguments})", {float(distribution.ppf(X / 3))!r}}},')
parts = ",".join(f"{c!r},{m!r},{s!r}" for c, m, s in MIXTURE)
mixed = {"Density": sum(c * stats.norm(m, s).pdf(X) for c, m, s in MIXTURE),
         "Cdf": sum(c * stats.norm(m, s).cdf(X) for c, m, s in MIXTURE),
         "Quantile": optimize.brentq(lambda x: sum(c * stats.norm(m, s).cdf(x) for c, m, s in MIXTURE) - X / 3, 0, 9,
                                     xtol=1e-15, rtol=1e-15)}
for function, value in mixed.items():
    argument = "x/3" if function == "Quantile" else "x"
    print(f'{{"GaussianMixture{function}({argument},{parts})", {float(value)!r}}},')
