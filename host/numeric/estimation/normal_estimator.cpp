// The values are scaled by a power of two, which is exact, so that neither sums nor squares overflow; sums are
// compensated and deviations are taken from the mean, so that a large common shift costs no digits of the standard
// deviation.
#include "host/numeric/estimation/normal_estimator.h"

#include <algorithm>
#include <cmath>

#include "host/numeric/estimation/estimator_support.h"

namespace brenvolt {

using estimation::CheckSample;
using estimation::CompensatedSum;

EstimationResult<NormalEstimate> EstimateNormal(std::span<const double> data) {
  if (auto checked = CheckSample(data, 2); !checked) return checked.Reason();
  const auto [least, greatest] = std::minmax_element(data.begin(), data.end());
  if (*least == *greatest) return Fault{EstimationFault::kNoSpread};
  const int exponent = std::ilogb(std::max(std::abs(*least), std::abs(*greatest)));
  const auto scaled = [exponent](double x) { return std::scalbn(x, -exponent); };
  const auto n = static_cast<double>(data.size());

  CompensatedSum total;
  for (const double x : data) total.Add(scaled(x));
  const double centre = total.Value() / n;

  // The mean was rounded once; what the deviations still sum to corrects both results (Chan, Golub & LeVeque
  // 1983).
  CompensatedSum deviations;
  CompensatedSum squares;
  for (const double x : data) {
    const double deviation = scaled(x) - centre;
    deviations.Add(deviation);
    squares.Add(deviation * deviation);
  }
  const double shift = deviations.Value() / n;
  return NormalEstimate{std::scalbn(centre + shift, exponent),
                        std::scalbn(std::sqrt(squares.Value() / n - shift * shift), exponent)};
}

}  // namespace brenvolt
