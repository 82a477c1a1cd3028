// Both estimators are the moments of a sample: of the values, or of their logarithms. The values are scaled
// by a power of two, which is exact, so that neither sums nor squares overflow; sums are compensated and
// deviations are taken from the mean, so that a large common shift costs no digits of the standard deviation.
#include "host/numeric/estimation/estimators.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"

namespace brenvolt {
namespace {

using estimation::CompensatedSum;
using estimation::Fail;
using estimation::IsAnyNotFinite;

// Mean and standard deviation of at least two finite values.
std::int32_t FitMoments(std::span<const double> data, std::span<double, 2> parameters,
                        EstimationError& error) {
  const auto [least, greatest] = std::minmax_element(data.begin(), data.end());
  if (*least == *greatest) return Fail(EstimationError::kNoSpread, parameters, error);
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
  parameters[0] = std::scalbn(centre + shift, exponent);
  parameters[1] = std::scalbn(std::sqrt(squares.Value() / n - shift * shift), exponent);
  error = EstimationError::kNone;
  return 0;
}

}  // namespace

std::int32_t FitNormalDistribution(std::int32_t /*flag*/, std::span<const double> data,
                                   std::span<double, 2> parameters, EstimationError& error) {
  if (data.size() < 2) return Fail(EstimationError::kTooFewValues, parameters, error);
  if (IsAnyNotFinite(data)) return Fail(EstimationError::kNotFinite, parameters, error);
  return FitMoments(data, parameters, error);
}

std::int32_t FitLognormalDistribution(std::int32_t /*flag*/, std::span<const double> data, double offset,
                                      std::span<double, 2> parameters, EstimationError& error) {
  if (data.size() < 2) return Fail(EstimationError::kTooFewValues, parameters, error);
  if (IsAnyNotFinite(data) || !std::isfinite(offset))
    return Fail(EstimationError::kNotFinite, parameters, error);

  std::vector<double> logs;
  logs.reserve(data.size());
  for (const double x : data) {
    const double shifted = x - offset;
    if (!(shifted > 0.0)) return Fail(EstimationError::kValueOutsideSupport, parameters, error);
    logs.push_back(std::log(shifted));
  }
  if (IsAnyNotFinite(logs)) return Fail(EstimationError::kNotFinite, parameters, error);
  return FitMoments(logs, parameters, error);
}

}  // namespace brenvolt
