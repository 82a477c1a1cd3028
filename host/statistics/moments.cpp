#include "host/statistics/moments.h"

#include <algorithm>
#include <cmath>

namespace brenvolt {

void MomentAccumulator::Add(double x, std::int64_t copies) {
  minimum_ = count_ == 0 ? x : std::min(minimum_, x);
  maximum_ = count_ == 0 ? x : std::max(maximum_, x);
  for (std::int64_t copy = 0; copy < copies; ++copy) AddOnce(x);
  AddLogarithm(x, copies);
}

void MomentAccumulator::AddOnce(double x) {
  ++count_;
  const auto k = static_cast<double>(count_);
  const double d = x - mean_;
  const double step = d / k;
  const double r = (k - 1) / k;
  m4_ = (m4_ + step * step * step * d * (k * k - 3 * k + 3) + 6 * step * step * m2_ - 4 * step * m3_) * r;
  m3_ = (m3_ + step * step * d * (k - 2) - 3 * step * m2_) * r;
  m2_ = (d * step + m2_) * r;
  mean_ += step;
}

// The first value that is not positive ends the logarithms for good.
void MomentAccumulator::AddLogarithm(double x, std::int64_t copies) {
  if (x <= 0) logarithms_ = false;
  if (!logarithms_) return;
  const double logarithm = std::log(x);
  const auto weight = static_cast<double>(copies);
  const double former = logMean_;
  logMean_ += (logarithm - former) * weight / static_cast<double>(count_);
  logSum_ += (logarithm - logMean_) * (logarithm - former) * weight;
}

Moments MomentAccumulator::Finish() const {
  Moments moments;
  moments.count = count_;
  moments.missing = missing_;
  if (count_ == 0) return moments;
  const auto n = static_cast<double>(count_);
  moments.mean = mean_;
  moments.minimum = minimum_;
  moments.maximum = maximum_;
  if (AlmostEqual(m2_, 0)) {
    moments.standardDeviation = moments.skewness = moments.kurtosis = 0;
  } else {
    const double variance = m2_ * n / (n - 1);
    moments.standardDeviation = std::sqrt(variance);
    if (n > 2) moments.skewness = m3_ * n * n / ((n - 1) * (n - 2) * variance * moments.standardDeviation);
    if (n > 3) {
      moments.kurtosis = ((n + 1) * n * n * m4_ - 3 * n * n * (n - 1) * m2_ * m2_) /
                         (variance * variance * (n - 1) * (n - 2) * (n - 3));
    }
  }
  if (logarithms_) {
    moments.logMean = logMean_;
    if (n > 1) moments.logStandardDeviation = std::sqrt(logSum_ / (n - 1));
  }
  return moments;
}

}  // namespace brenvolt
