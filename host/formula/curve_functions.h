// The functions of formulas that draw fitted distributions: densities and, under names that begin with i or
// I, distribution functions. Names are case-sensitive. Functions and parameters:
// host/numeric/distributions.h.
//
//   Normal, iNormal (x, location, scale)            Lognorm, iLognorm (x, scale, shape)
//   FoldedNormal, FoldeNormal, iFoldedNormal        HalfNormal, iHalfNormal (x, scale)
//     (x, location, scale)                          Rayl, IRayl (x, scale)
//   weibull, iWeibull (x, scale, shape, offset)     Johnson, iJohnson (x, type, gamma, delta, lambda, xi)
//   GEV, IGEV (x, location, scale, shape)           GPD, IGPD (x, offset, scale, shape)
//   Triangular, iTriangular (x, min, max, mode)     Binom, iBinom (x, proportion, trials)
//   Poisson, iPoisson (x, mean)                     Geom, iGeom (x, proportion)
//
// A discrete type's density is the probability of x, 0 between whole numbers. Invalid parameters give NaN, so
// that nothing is drawn.
#pragma once

namespace mu {
class Parser;
}

namespace brenvolt {

void DefineCurveFunctions(mu::Parser& parser);

}  // namespace brenvolt
