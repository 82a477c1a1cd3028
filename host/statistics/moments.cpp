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

// Powers of two change no digit of the moments.
void MomentAccumulator::Rescale(double deviation) {
  constexpr int kGreatestExponent = 1000;  // 2^-1074 has no reciprocal
  constexpr int kRoom = 100;               // whose fourth power is far from overflow
  const int exponent = std::clamp(std::ilogb(deviation), -kGreatestExponent, kGreatestExponent);
  const int change = exponent_ - exponent;
  m2_ = std::scalbn(m2_, 2 * change);
  m3_ = std::scalbn(m3_, 3 * change);
  m4_ = std::scalbn(m4_, 4 * change);
  exponent_ = exponent;
  inverseUnit_ = std::scalbn(1.0, -exponent);
  longDeviation_ = std::scalbn(1.0, exponent + kRoom);
}

void MomentAccumulator::AddOnce(double x) {
  ++count_;
  const auto k = static_cast<double>(count_);
  const double length = x - mean_;
  if (std::abs(length) > longDeviation_) Rescale(length);
  mean_ += length / k;
  const double d = length * inverseUnit_;
  const double step = d / k;
  const double r = (k - 1) / k;
  m4_ = (m4_ + step * step * step * d * (k * k - 3 * k + 3) + 6 * step * step * m2_ - 4 * step * m3_) * r;
  m3_ = (m3_ + step * step * d * (k - 2) - 3 * step * m2_) * r;
  m2_ = (d * step + m2_) * r;
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
  if (AlmostEqual(std::scalbn(m2_, 2 * exponent_), 0)) {
    moments.standardDeviation = moments.skewness = moments.kurtosis = 0;
  } else {
    const double variance = m2_ * n / (n - 1);
    const double deviation = std::sqrt(variance);
    moments.standardDeviation = std::scalbn(deviation, exponent_);
    if (n > 2) moments.skewness = m3_ * n * n / ((n - 1) * (n - 2) * variance * deviation);
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
