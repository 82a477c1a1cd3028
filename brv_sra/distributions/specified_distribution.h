// The functions of a specified distribution.
#pragma once

#include "brv_sra/distributions/specification.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {

// A view of a specification, which must outlive it. An offset that is not set counts as 0.
class SpecifiedDistribution : public AnyDistribution {
 public:
  explicit SpecifiedDistribution(const DistributionSpecification& specification)
      : SpecifiedDistribution(specification.code, specification.values, specification.offset) {}
  SpecifiedDistribution(DistributionCode code, std::span<const double> values, double offset)
      : AnyDistribution(code, values, IsNotSet(offset) ? 0.0 : offset) {}
};

}  // namespace brenvolt::sra
