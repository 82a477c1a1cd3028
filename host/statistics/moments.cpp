#include "host/statistics/moments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

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

void MomentAccumulator::Add(std::span<const double> block) {
  logarithms_ = false;
  if (block.empty()) return;
  // Sums in lanes of their own, which the compiler keeps in vectors.
  constexpr std::size_t kLanes = 8;
  const auto n = static_cast<double>(block.size());
  const std::size_t whole = block.size() / kLanes * kLanes;
  const double origin = block[0];
  std::array<double, kLanes> sums{};
  std::array<double, kLanes> least;
  std::array<double, kLanes> most;
  least.fill(origin);
  most.fill(origin);
  const auto look = [&](double x, std::size_t lane) {
    sums[lane] += x - origin;
    least[lane] = x < least[lane] ? x : least[lane];
    most[lane] = x > most[lane] ? x : most[lane];
  };
  for (std::size_t i = 0; i < whole; i += kLanes)
    for (std::size_t lane = 0; lane < kLanes; ++lane) look(block[i + lane], lane);
  for (std::size_t i = whole; i < block.size(); ++i) look(block[i], i - whole);

  const double sum = std::accumulate(sums.begin(), sums.end(), 0.0);
  if (!std::isfinite(sum)) {  // near the largest doubles
    for (const double x : block) Add(x, 1);
    return;
  }
  MomentAccumulator own;
  own.count_ = static_cast<std::int64_t>(block.size());
  own.mean_ = origin + sum / n;
  own.minimum_ = *std::ranges::min_element(least);
  own.maximum_ = *std::ranges::max_element(most);
  const double longest = std::max(own.maximum_ - own.mean_, own.mean_ - own.minimum_);
  if (longest > 0) own.Rescale(longest);
  std::array<double, kLanes> squares{};
  std::array<double, kLanes> cubes{};
  std::array<double, kLanes> fourths{};
  const auto add = [&](double x, std::size_t lane) {
    const double d = (x - own.mean_) * own.inverseUnit_;
    squares[lane] += d * d;
    cubes[lane] += d * d * d;
    fourths[lane] += d * d * d * d;
  };
  for (std::size_t i = 0; i < whole; i += kLanes)
    for (std::size_t lane = 0; lane < kLanes; ++lane) add(block[i + lane], lane);
  for (std::size_t i = whole; i < block.size(); ++i) add(block[i], i - whole);
  own.m2_ = std::accumulate(squares.begin(), squares.end(), 0.0) / n;
  own.m3_ = std::accumulate(cubes.begin(), cubes.end(), 0.0) / n;
  own.m4_ = std::accumulate(fourths.begin(), fourths.end(), 0.0) / n;
  Join(own);
}

double MomentAccumulator::Unit() const {
  return inverseUnit_ > 0 ? std::scalbn(1.0, exponent_) : 0;
}

void MomentAccumulator::Join(const MomentAccumulator& block) {
  missing_ += block.missing_;
  if (block.count_ == 0) return;
  if (count_ == 0) {
    const std::int64_t missing = missing_;
    *this = block;
    missing_ = missing;
    logarithms_ = false;
    return;
  }
  MomentAccumulator other = block;
  minimum_ = std::min(minimum_, other.minimum_);
  maximum_ = std::max(maximum_, other.maximum_);
  const double distance = other.mean_ - mean_;
  // Both in the larger unit, which must also suit the distance of the means.
  const double length = std::max({std::abs(distance), Unit(), other.Unit()});
  if (length > 0) {
    Rescale(length);
    other.Rescale(length);
  }
  const auto total = static_cast<double>(count_ + other.count_);
  const double a = static_cast<double>(count_) / total;
  const double b = static_cast<double>(other.count_) / total;
  const double d = distance * inverseUnit_;
  m4_ = a * m4_ + b * other.m4_ + a * b * (a * a - a * b + b * b) * d * d * d * d +
        6 * a * b * (a * other.m2_ + b * m2_) * d * d + 4 * a * b * (other.m3_ - m3_) * d;
  m3_ = a * m3_ + b * other.m3_ + a * b * (a - b) * d * d * d + 3 * a * b * (other.m2_ - m2_) * d;
  m2_ = a * m2_ + b * other.m2_ + a * b * d * d;
  mean_ += distance * b;
  count_ += other.count_;
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

void MomentAccumulator::Put(ByteWriter& bytes) const {
  for (const std::int64_t number : {count_, missing_, std::int64_t{exponent_}}) bytes.Put(number);
  for (const double number : {mean_, inverseUnit_, longDeviation_, m2_, m3_, m4_, minimum_, maximum_})
    bytes.Put(number);
}

MomentAccumulator MomentAccumulator::Get(ByteReader& bytes) {
  MomentAccumulator moments;
  moments.logarithms_ = false;
  moments.count_ = bytes.Get<std::int64_t>();
  moments.missing_ = bytes.Get<std::int64_t>();
  moments.exponent_ = static_cast<int>(bytes.Get<std::int64_t>());
  for (double* number : {&moments.mean_, &moments.inverseUnit_, &moments.longDeviation_, &moments.m2_,
                         &moments.m3_, &moments.m4_, &moments.minimum_, &moments.maximum_})
    *number = bytes.Get<double>();
  return moments;
}

}  // namespace brenvolt
