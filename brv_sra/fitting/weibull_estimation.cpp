#include "brv_sra/fitting/weibull_estimation.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace brenvolt::sra {
namespace {

constexpr int kNewtonSteps = 100;
constexpr double kLargestExponent = 300;
constexpr double kLargestStartingShape = 5;
constexpr double kPiSquared = 9.86960440108936;
constexpr double kSmallestVariance = 0.0001;
// Below this the sum of powers counts as zero: 9.999999999999982e-51, compared by its bits.
constexpr std::uint64_t kSmallestSumBits = 0x358DEE7A4AD4B810ULL;
constexpr int kZeroUnits = 16;  // of the smallest subnormal

struct Logarithms {
  std::vector<double> values;
  double sum = 0;
  double sumOfSquares = 0;
  double largestMagnitude = 0;  // of the shifted data
};

struct PowerSums {
  double a = 0;  // sum of y^c
  double b = 0;  // sum of y^c ln y
  double c = 0;  // sum of y^c (ln y)^2
};

bool IsZero(double y) {
  return std::abs(y) < kZeroUnits * std::numeric_limits<double>::denorm_min();
}

bool SumVanishes(double a) {
  return std::bit_cast<std::uint64_t>(std::abs(a)) < kSmallestSumBits;
}

PowerSums SumPowers(std::span<const double> logarithms, double shape) {
  PowerSums sums;
  for (const double l : logarithms) {
    const double power = std::exp(shape * l);
    sums.a += power;
    sums.b += power * l;
    sums.c += power * l * l;
  }
  return sums;
}

double StartingShape(const Logarithms& logs) {
  const auto n = static_cast<double>(logs.values.size());
  double v = (logs.sumOfSquares - logs.sum * logs.sum / n) * 6 / ((n - 1) * kPiSquared);
  if (v == 0) v = kSmallestVariance;
  const double shape = 1 / std::sqrt(v);
  const bool tooLarge =
      shape * std::log(logs.largestMagnitude) > kLargestExponent || shape > kLargestStartingShape;
  return tooLarge ? 1.0 : shape;
}

// One attempt of Newton's method from `shape`, which it leaves at the solution.
WeibullStatus Iterate(const Logarithms& logs, double tolerance, double& shape) {
  const auto n = static_cast<double>(logs.values.size());
  const double largest = *std::ranges::max_element(logs.values);
  const double smallest = *std::ranges::min_element(logs.values);
  for (int step = 0; step < kNewtonSteps; ++step) {
    if (std::max(shape * largest, shape * smallest) > kLargestExponent) return WeibullStatus::kOverflow;
    const PowerSums sums = SumPowers(logs.values, shape);
    if (SumVanishes(sums.a)) return WeibullStatus::kSumVanishes;
    const double delta = (logs.sum / n + 1 / shape - sums.b / sums.a) /
                         (1 / (shape * shape) - (sums.b * sums.b - sums.a * sums.c) / (sums.a * sums.a));
    // A NaN (a value below the offset has no logarithm) would stay one for all steps.
    if (std::isnan(delta)) return WeibullStatus::kNoConvergence;
    shape += delta;
    if (std::abs(delta) < tolerance) return WeibullStatus::kSuccess;
  }
  return WeibullStatus::kNoConvergence;
}

WeibullEstimate Finish(const Logarithms& logs, double c) {
  WeibullEstimate estimate;
  const auto n = static_cast<double>(logs.values.size());
  const PowerSums sums = SumPowers(logs.values, c);
  const double b = std::pow(sums.a / n, 1 / c);
  // Written so that a NaN counts as not positive.
  if (!(c > 0) || !(b > 0)) return estimate;
  const double l = std::log(b);
  const double icc = (l * l * sums.a - 2 * l * sums.b + sums.c) / std::pow(b, c) + n / (c * c);
  const double ibb = (c + 1) * c * sums.a / std::pow(b, c + 2) - n * c / (b * b);
  const double icb = n / b - (sums.a - l * c * sums.a + c * sums.b) / std::pow(b, c + 1);
  const double determinant = ibb * icc - icb * icb;
  estimate.shape = c;
  estimate.scale = b;
  estimate.shapeStandardError = std::sqrt(ibb / determinant);
  estimate.scaleStandardError = std::sqrt(icc / determinant);
  estimate.covariance = -icb / determinant;
  estimate.status = WeibullStatus::kSuccess;
  return estimate;
}

}  // namespace

WeibullEstimate EstimateWeibull(std::span<const double> data, double offset, double tolerance) {
  WeibullEstimate failure;
  if (data.empty()) return failure;
  Logarithms logs;
  logs.values.reserve(data.size());
  for (const double x : data) {
    const double y = x - offset;
    if (IsZero(y)) {
      failure.status = WeibullStatus::kValueAtOffset;
      return failure;
    }
    const double logarithm = std::log(y);
    logs.values.push_back(logarithm);
    logs.sum += logarithm;
    logs.sumOfSquares += logarithm * logarithm;
    logs.largestMagnitude = std::max(logs.largestMagnitude, std::abs(y));
  }
  double shape = StartingShape(logs);
  WeibullStatus status = Iterate(logs, tolerance, shape);
  if (status != WeibullStatus::kSuccess || AlmostEqual(shape, 0)) {
    shape = 1.0;
    status = Iterate(logs, tolerance, shape);
  }
  if (status != WeibullStatus::kSuccess) {
    failure.status = status;
    return failure;
  }
  return Finish(logs, shape);
}

}  // namespace brenvolt::sra
