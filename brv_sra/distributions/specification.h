// The distribution specification record: one distribution of one variable, shared by fitting, design,
// simulation and the variable properties.
#pragma once

#include <cstdint>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt::sra {

// How lists of codes, proportions and the like are written, number after number.
inline constexpr const char* kListedNumberFormat = "%.12g";

struct DistributionSpecification {
  DistributionCode code = DistributionCode::kNormal;
  std::vector<double> values;  // the parameters in catalogue order; kNotSet if not given
  double truncationMinimum = kNotSet;
  double truncationMaximum = kNotSet;
  double offset = kNotSet;
  bool truncateBelow = false;
  bool truncateAbove = false;
};

}  // namespace brenvolt::sra
