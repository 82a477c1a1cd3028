// How far a distribution reaches beyond its data in ways that a simulation shows.
#pragma once

#include <cstdint>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

struct Reach {
  // The probabilities of values below and above 0; kNotSet if the data have such values themselves.
  double belowZero = kNotSet;
  double aboveZero = kNotSet;
  // The order of the lowest moment that is infinite: 1 the mean, 2 the variance. kNotSetCount if neither is.
  std::int32_t infiniteMoment = kNotSetCount;
};

// Of a distribution within its bounds in force, fitted to data of these extremes. Discrete distributions are
// those of counts or of the data themselves and reach nowhere.
Reach ReachOf(const DistributionSpecification& specification, double minimum, double maximum);

}  // namespace brenvolt::sra
