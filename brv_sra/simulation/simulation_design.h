// A simulation design: which variables are simulated, from which distributions, and how.
#pragma once

#include <algorithm>
#include <cstdint>
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

enum class SimulationStatus : std::int32_t { kSuccess, kMemoryFailure, kDistributionFailure };

struct SimulationVariable {
  int variableNumber = 0;  // in the input spreadsheet, from 1
  std::string name;
  DistributionSpecification specification;
};

struct SimulationDesign {
  std::vector<SimulationVariable> variables;  // continuous ones first
  std::vector<std::int32_t> excluded;         // indices of variables that take no part
  std::int32_t numberOfSamples = 0;
  SimulationMethod method = SimulationMethod::kMonteCarlo;
  bool truncate = false;  // keep to the range between the probabilities 0.005 and 0.995

  bool IsExcluded(std::size_t variable) const {
    return std::ranges::find(excluded, static_cast<std::int32_t>(variable)) != excluded.end();
  }
};

}  // namespace brenvolt::sra
