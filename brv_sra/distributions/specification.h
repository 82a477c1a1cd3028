// The distribution specification record: one distribution of one variable, shared by fitting, design,
// simulation and the variable properties.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/almost_equal.h"

namespace brenvolt::sra {

// Persisted and visible to automation: the values must not change.
enum class DistributionCode : std::int32_t {
  kNormal = 0,
  kLogNormal,
  kFoldedNormal,
  kHalfNormal,
  kRayleigh,
  kWeibull,
  kGaussianMixture,
  kJohnson,
  kGeneralExtremeValue,
  kGeneralPareto,
  kTriangular,
  kBinomial,
  kPoisson,
  kGeometric,
  kBernoulli,
  kHistogram
};

inline constexpr int kDistributionCount = 16;
inline constexpr int kContinuousCount = 11;  // codes 0 to 10; 11 to 15 are discrete

struct DistributionSpecification {
  DistributionCode code = DistributionCode::kNormal;
  std::vector<double> values;  // the parameters in catalogue order; kNotSet where not given
  double truncationMinimum = kNotSet;
  double truncationMaximum = kNotSet;
  double offset = kNotSet;
  bool truncateBelow = false;
  bool truncateAbove = false;
};

}  // namespace brenvolt::sra
