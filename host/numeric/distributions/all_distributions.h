// The list of all distributions, in the order of their codes.
#pragma once

#include <cstddef>
#include <span>

#include "host/numeric/distributions/bernoulli.h"
#include "host/numeric/distributions/binomial.h"
#include "host/numeric/distributions/folded_normal.h"
#include "host/numeric/distributions/gaussian_mixture.h"
#include "host/numeric/distributions/general_extreme_value.h"
#include "host/numeric/distributions/general_pareto.h"
#include "host/numeric/distributions/geometric.h"
#include "host/numeric/distributions/half_normal.h"
#include "host/numeric/distributions/histogram.h"
#include "host/numeric/distributions/johnson.h"
#include "host/numeric/distributions/log_normal.h"
#include "host/numeric/distributions/normal.h"
#include "host/numeric/distributions/poisson.h"
#include "host/numeric/distributions/rayleigh.h"
#include "host/numeric/distributions/triangular.h"
#include "host/numeric/distributions/weibull.h"

namespace brenvolt {

template <class... D>
struct DistributionList {
  static constexpr std::size_t kCount = sizeof...(D);
};

using AllDistributions = DistributionList<Normal, LogNormal, FoldedNormal, HalfNormal, Rayleigh, Weibull,
                                          GaussianMixture, Johnson, GeneralExtremeValue, GeneralPareto,
                                          Triangular, Binomial, Poisson, Geometric, Bernoulli, Histogram>;

}  // namespace brenvolt
