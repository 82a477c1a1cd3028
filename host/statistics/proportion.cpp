#include "host/statistics/proportion.h"

#include <boost/math/special_functions/beta.hpp>

namespace brenvolt {

// The sum of the binomial tail is an incomplete beta function of the probability, whose inverse gives the limits.
ConfidenceInterval ProportionInterval(std::int64_t hits, std::int64_t count, double confidence) {
  if (count < 1) return {};
  const double tail = (1 - confidence) / 2;
  const auto hit = static_cast<double>(hits);
  const auto missed = static_cast<double>(count - hits);
  return {hits == 0 ? 0 : boost::math::ibeta_inv(hit, missed + 1, tail),
          hits == count ? 1 : boost::math::ibetac_inv(hit + 1, missed, tail)};
}

}  // namespace brenvolt
