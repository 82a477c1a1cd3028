// Estimates that are moments of a sample: of the values, of their logarithms, of their squares. The values are scaled
// by a power of two, which is exact, so that neither sums nor squares overflow; sums are compensated and
// deviations are taken from the mean, so that a large common shift costs no digits of the standard deviation.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/estimators.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

using estimation::AboveOffset;
using estimation::CheckAboveOffset;
using estimation::CheckSample;
using estimation::CompensatedSum;
using estimation::IsAnyNotFinite;
using estimation::MeanSquare;
using estimation::SumOverBlocks;

// Of at least two finite values.
EstimationResult<NormalEstimate> EstimateMoments(std::span<const double> data) {
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

EstimationResult<ScaleEstimate> IfFinite(const ScaleEstimate& estimate) {
  const double results[] = {estimate.scale, estimate.standardError, estimate.logLikelihood};
  if (IsAnyNotFinite(results)) return Fault{EstimationFault::kNotFinite};
  return estimate;
}

}  // namespace

EstimationResult<NormalEstimate> EstimateNormal(std::span<const double> data) {
  if (auto checked = CheckSample(data, 2); !checked) return checked.Reason();
  return EstimateMoments(data);
}

EstimationResult<NormalEstimate> EstimateLogNormal(std::span<const double> data, double offset) {
  if (auto checked = CheckAboveOffset(data, 2, offset, false); !checked) return checked.Reason();
  std::vector<double> logs;
  logs.reserve(data.size());
  for (const double x : data) logs.push_back(std::log(x - offset));
  if (IsAnyNotFinite(logs)) return Fault{EstimationFault::kNotFinite};
  return EstimateMoments(logs);
}

EstimationResult<ScaleEstimate> EstimateHalfNormal(std::span<const double> data, double offset) {
  auto sample = AboveOffset(data, offset, true);
  if (!sample) return sample.Reason();
  const double scale = sample->InUnitsOfData(std::sqrt(MeanSquare(sample->values)));
  if (!(scale > 0.0)) return Fault{EstimationFault::kNoSpread};
  const auto n = static_cast<double>(data.size());
  return IfFinite(
      {scale, scale / std::sqrt(2.0 * n), n * (std::numbers::ln2 - kLogSqrtTwoPi - std::log(scale) - 0.5)});
}

EstimationResult<ScaleEstimate> EstimateRayleigh(std::span<const double> data, double offset) {
  auto sample = AboveOffset(data, offset, false);
  if (!sample) return sample.Reason();
  const auto n = static_cast<double>(data.size());
  const double scaled = std::sqrt(0.5 * MeanSquare(sample->values));
  // Of the logarithms of x / scale, which needs no units.
  const double logs =
      SumOverBlocks(sample->values, [scaled](std::span<const double> x, std::span<double> out) {
        for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] / scaled;
        elementary::Log(out, out);
      });
  const double scale = sample->InUnitsOfData(scaled);
  return IfFinite({scale, scale / std::sqrt(4.0 * n), logs - n * (std::log(scale) + 1.0)});
}

}  // namespace brenvolt
