// Every distribution, and the ways to truncate it: the tables over which sampling is tested.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/simulation/sampling/simulation_design.h"

namespace brenvolt::sra {

inline SimulationVariable VariableOf(DistributionCode code, std::vector<double> values,
                                     double offset = kNotSet) {
  SimulationVariable variable;
  variable.specification.code = code;
  variable.specification.values = std::move(values);
  variable.specification.offset = offset;
  return variable;
}

inline std::vector<SimulationVariable> SampledDistributions() {
  using enum DistributionCode;
  return {VariableOf(kNormal, {3, 0.5}),
          VariableOf(kLogNormal, {1, 0.3}, -2),
          VariableOf(kFoldedNormal, {1.5, 2}, 1),
          VariableOf(kHalfNormal, {2}, -1),
          VariableOf(kRayleigh, {2}, 4),
          VariableOf(kWeibull, {80, 2.2}, 5),
          VariableOf(kGaussianMixture, {0.25, -1, 0.5, 0.45, 2, 1.5, 0.3, 9, 1}),
          VariableOf(kJohnson, {2, 0.5, 1.5, 2, 1}),
          VariableOf(kGeneralExtremeValue, {1, 2, 0.15}),
          VariableOf(kGeneralPareto, {2, -0.25}, 1),
          VariableOf(kTriangular, {-1, 4, 1}),
          VariableOf(kBinomial, {0.25, 12}),
          VariableOf(kBinomial, {0.4, 3000}),
          VariableOf(kPoisson, {4.5}),
          VariableOf(kPoisson, {60}),
          VariableOf(kGeometric, {0.2}),
          VariableOf(kBernoulli, {0.3}),
          VariableOf(kHistogram, {7, 0.25, 1, 0.1, 4, 0.4, 9, 0.25})};
}

struct SampledTruncation {
  const char* name;
  bool band;     // between the probabilities 0.005 and 0.995
  double below;  // user limits at these probabilities; 0 and 1 for none
  double above;
};
inline constexpr SampledTruncation kTruncations[] = {{"none", false, 0, 1},
                                                     {"band", true, 0, 1},
                                                     {"limits", false, 0.1, 0.9},
                                                     {"one limit and band", true, 0, 0.8},
                                                     {"far limit", false, 0.995, 1}};

// The variable with user limits; a discrete distribution's lie between its values, so that inversion and rejection
// agree on what lies within.
inline SimulationVariable Truncated(SimulationVariable variable, const SampledTruncation& truncation) {
  DistributionSpecification& s = variable.specification;
  const bool isDiscrete = static_cast<int>(s.code) >= kContinuousCount;
  const double between = isDiscrete ? 0.5 : 0;
  if (truncation.below > 0) {
    s.truncateBelow = true;
    s.truncationMinimum = SpecifiedDistribution(s).Quantile(truncation.below) - between;
  }
  if (truncation.above < 1) {
    s.truncateAbove = true;
    s.truncationMaximum = SpecifiedDistribution(s).Quantile(truncation.above) + between;
  }
  return variable;
}

}  // namespace brenvolt::sra
