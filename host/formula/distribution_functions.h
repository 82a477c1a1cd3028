// The functions of formulas that belong to distributions. Functions and parameters:
// host/numeric/distributions/shared/distribution.h. Invalid parameters and probabilities give missing values.
//
// Every type has three functions named after it, such as NormalDensity(x, location, scale), NormalCdf(x,
// location, scale), NormalQuantile(p, location, scale). A threshold comes last and may be left out:
//
//   Normal (location, scale)                        Weibull (scale, shape, threshold)
//   LogNormal (scale, shape, threshold)             Rayleigh (scale, threshold)
//   FoldedNormal (location, scale, threshold)       GeneralizedExtremeValue (location, scale, shape)
//   HalfNormal (scale, threshold)                   GeneralizedPareto (scale, shape, threshold)
//   GaussianMixture (coefficient, mean,             Triangular (minimum, maximum, mode)
//     standard deviation, repeated)                 Binomial (proportion, trials)
//   Johnson (type, gamma, delta, lambda, xi)        Poisson (mean), Geometric (proportion)
//
// The formulas that draw fitted distributions use short names instead, for densities and, where they begin
// with i or I, distribution functions:
//
//   Normal, iNormal (x, location, scale)            Lognorm, iLognorm (x, scale, shape)
//   FoldedNormal, FoldeNormal, iFoldedNormal        HalfNormal, iHalfNormal (x, scale)
//     (x, location, scale)                          Rayl, IRayl (x, scale)
//   weibull, iWeibull (x, scale, shape, offset)     Johnson, iJohnson (x, type, gamma, delta, lambda, xi)
//   GEV, IGEV (x, location, scale, shape)           GPD, IGPD (x, offset, scale, shape)
//   Triangular, iTriangular (x, min, max, mode)     Binom, iBinom (x, proportion, trials)
//   Poisson, iPoisson (x, mean)                     Geom, iGeom (x, proportion)
//
// A discrete type's density is the probability of x, 0 between whole numbers.
#pragma once

#include <span>

#include "host/formula/block.h"

namespace brenvolt {

// Names are case-sensitive.
std::span<const NamedKernel> DistributionFunctions();

}  // namespace brenvolt
