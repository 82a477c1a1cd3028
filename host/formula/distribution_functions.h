// The functions of formulas that belong to distributions. Functions and parameters:
// host/numeric/distributions/common/distribution.h. Invalid parameters and probabilities give missing values.
//
// Each distribution has three functions named after it, such as NormalDensity(x, location, scale), NormalCdf(x,
// location, scale), NormalQuantile(p, location, scale). A threshold comes last and may be left out:
//
// The formulas that draw fitted distributions use short names instead (Normal, iNormal), for densities and, where they
// begin with i or I, distribution functions. The facts of each distribution hold them with its parameters.
//
// A discrete distribution's density is the probability of x, 0 between whole numbers.
#pragma once

#include <span>

#include "host/formula/block.h"

namespace brenvolt {

// Names are case-sensitive.
std::span<const NamedKernel> DistributionFunctions();

}  // namespace brenvolt
