// A simulation design: which variables are simulated, from which distributions, and how.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

enum class SimulationMethod : std::int32_t {
  kMonteCarlo = 0,
  kLatinHypercube = 1,
  kImanConover = 2,
  kLatinHypercubeImanConover = 3,
  kNormalToAnything = 4
};

inline bool InducesCorrelation(SimulationMethod method) {
  return method == SimulationMethod::kImanConover || method == SimulationMethod::kLatinHypercubeImanConover;
}
inline bool UsesLatinHypercube(SimulationMethod method) {
  return method == SimulationMethod::kLatinHypercube ||
         method == SimulationMethod::kLatinHypercubeImanConover;
}

// Where the distributions of a design come from.
enum class ParameterSource : std::int32_t {
  kFitted,        // the best fitted distribution; its truncation limits do not count
  kUserSpecified  // the distribution specified for the simulation, with its truncation limits
};

struct SimulationVariable {
  int variableNumber = 0;  // in the input spreadsheet, from 1
  std::string name;
  DistributionSpecification specification;
  std::map<double, std::string> labels;  // texts of the levels of a user-defined discrete distribution
};

struct SimulationDesign {
  std::vector<SimulationVariable> variables;  // continuous ones first
  std::vector<std::int32_t> excluded;         // indices of variables that take no part
  std::int64_t numberOfSamples = 0;           // Latin hypercube sampling has 2^31 - 1 at most
  SimulationMethod method = SimulationMethod::kMonteCarlo;
  ParameterSource source = ParameterSource::kUserSpecified;
  bool truncate = false;  // keep to the range between the probabilities 0.005 and 0.995
  // k x k, row-major, over all variables, NaN if missing; for the methods that induce correlation only.
  std::vector<double> correlations;

  bool IsExcluded(std::size_t variable) const {
    return std::ranges::find(excluded, static_cast<std::int32_t>(variable)) != excluded.end();
  }
  // The indices of the variables that take part, in order.
  std::vector<std::size_t> ActiveVariables() const {
    std::vector<std::size_t> active;
    for (std::size_t j = 0; j < variables.size(); ++j)
      if (!IsExcluded(j)) active.push_back(j);
    return active;
  }
};

}  // namespace brenvolt::sra
