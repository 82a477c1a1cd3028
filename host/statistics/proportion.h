// The confidence interval of a proportion.
#pragma once

#include <cstdint>

#include "host/base/almost_equal.h"

namespace brenvolt {

struct ConfidenceInterval {
  double lower = kNotSet;
  double upper = kNotSet;
};

// Of the probability with which each of `count` independent cases hits, `hits` of which did: the exact interval
// of Clopper & Pearson (1934), either side of which misses the probability with (1 - confidence)/2 at most. It
// reaches to 0 if nothing was hit, and to 1 if everything was. Not set if there are no cases.
ConfidenceInterval ProportionInterval(std::int64_t hits, std::int64_t count, double confidence);

}  // namespace brenvolt
