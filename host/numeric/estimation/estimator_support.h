// What the estimators of distribution parameters share: sums that keep their digits, checks of the sample,
// and the change of units that makes every fit follow the data's units.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "host/numeric/estimation/distribution_estimate.h"

namespace brenvolt::estimation {

// Neumaier (1974): a sum that carries its rounding errors along.
class CompensatedSum {
 public:
  void Add(double x) {
    const double next = sum_ + x;
    rest_ += std::abs(sum_) >= std::abs(x) ? (sum_ - next) + x : (x - next) + sum_;
    sum_ = next;
  }
  double Value() const { return sum_ + rest_; }
  // The two parts of the value: differences of sums keep their digits when taken of each part.
  double Sum() const { return sum_; }
  double Rest() const { return rest_; }

 private:
  double sum_ = 0.0;
  double rest_ = 0.0;
};

inline constexpr std::size_t kBlock = 512;

// The sum of at most a block of values, in an order that vector registers can follow.
inline double SumOfBlock(std::span<const double> values) {
  constexpr std::size_t kLanes = 8;
  double lanes[kLanes] = {};
  std::size_t i = 0;
  for (; i + kLanes <= values.size(); i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) lanes[lane] += values[i + lane];
  }
  double rest = 0.0;
  for (; i < values.size(); ++i) rest += values[i];
  for (const double lane : lanes) rest += lane;
  return rest;
}

// The sum of terms over many values: terms(part, out) writes those of up to kBlock values, which lets it use
// the array forms of functions. Sums of blocks are compensated.
template <class Terms>
double SumOverBlocks(std::span<const double> values, const Terms& terms) {
  double buffer[kBlock];
  CompensatedSum sum;
  for (std::size_t begin = 0; begin < values.size(); begin += kBlock) {
    const std::span<const double> part = values.subspan(begin, std::min(kBlock, values.size() - begin));
    const std::span<double> out(buffer, part.size());
    terms(part, out);
    sum.Add(SumOfBlock(out));
  }
  return sum.Value();
}

inline void Ask(const EstimationPoll& poll) {
  if (poll) poll();
}

inline bool IsAnyNotFinite(std::span<const double> data) {
  return std::any_of(data.begin(), data.end(), [](double x) { return !std::isfinite(x); });
}

inline EstimationResult<ScaleEstimate> IfFinite(const ScaleEstimate& estimate) {
  const double results[] = {estimate.scale, estimate.standardError, estimate.logLikelihood};
  if (IsAnyNotFinite(results)) return Fault{EstimationFault::kNotFinite};
  return estimate;
}

// Why a sample (and what shifts it) cannot be fitted at all.
inline EstimationResult<void> CheckSample(std::span<const double> data, std::size_t leastCount,
                                          double offset = 0.0) {
  if (data.size() < leastCount) {
    return FaultAbout(EstimationFault::kTooFewValues, static_cast<double>(data.size()),
                      static_cast<double>(leastCount));
  }
  if (IsAnyNotFinite(data) || !std::isfinite(offset)) return Fault{EstimationFault::kNotFinite};
  return {};
}

// The same of data above an offset.
inline EstimationResult<void> CheckAboveOffset(std::span<const double> data, std::size_t leastCount,
                                               double offset, bool isOffsetInside) {
  auto checked = CheckSample(data, leastCount, offset);
  if (!checked) return checked;
  for (const double x : data) {
    const double y = x - offset;
    if (y < 0.0) return FaultAbout(EstimationFault::kValueBelowOffset, x, offset);
    if (y == 0.0 && !isOffsetInside) return FaultAbout(EstimationFault::kValueAtOffset, offset);
  }
  return {};
}

// A sample in units of its own: values = (data - origin) 2^-exponent. The power of two is exact and the
// largest magnitude lies in [1, 2), so that no power of a value overflows and nothing depends on the units.
struct ScaledSample {
  std::vector<double> values;
  double origin = 0.0;
  int exponent = 0;

  double InUnitsOfData(double length) const { return std::scalbn(length, exponent); }
};

// Values stay as they are (not finite, or all zero) when there is nothing to scale by.
inline ScaledSample ScaleFrom(std::span<const double> data, double origin) {
  ScaledSample sample;
  sample.origin = origin;
  sample.values.reserve(data.size());
  double greatest = 0.0;
  for (const double x : data) {
    sample.values.push_back(x - origin);
    greatest = std::max(greatest, std::abs(sample.values.back()));
  }
  if (!(greatest > 0.0) || !std::isfinite(greatest)) return sample;
  sample.exponent = std::ilogb(greatest);
  const double factor = std::scalbn(1.0, -sample.exponent);
  const bool isExact = std::isnormal(factor);
  for (double& x : sample.values) x = isExact ? x * factor : std::scalbn(x, -sample.exponent);
  return sample;
}

// x - offset, all of it finite and within the support.
inline EstimationResult<ScaledSample> AboveOffset(std::span<const double> data, double offset,
                                                  bool isOffsetInside) {
  if (auto checked = CheckAboveOffset(data, 2, offset, isOffsetInside); !checked) return checked.Reason();
  ScaledSample sample = ScaleFrom(data, offset);
  if (IsAnyNotFinite(sample.values)) return Fault{EstimationFault::kNotFinite};
  return sample;
}

inline double Mean(std::span<const double> values) {
  CompensatedSum sum;
  for (const double x : values) sum.Add(x);
  return sum.Value() / static_cast<double>(values.size());
}

inline double MeanSquare(std::span<const double> values, double centre = 0.0) {
  CompensatedSum sum;
  for (const double x : values) sum.Add((x - centre) * (x - centre));
  return sum.Value() / static_cast<double>(values.size());
}

}  // namespace brenvolt::estimation
