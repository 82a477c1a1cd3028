#include "host/numeric/estimation/weibull_estimator.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

using estimation::CompensatedSum;
using estimation::kBlock;
using estimation::SumOfBlock;

constexpr int kNewtonSteps = 100;
constexpr double kLargestExponent = 300;
constexpr double kLargestStartingShape = 5;
constexpr double kPiSquared = 9.86960440108936;
constexpr double kSmallestVariance = 0.0001;
// Below this the sum of powers counts as zero: 9.999999999999982e-51, compared by its bits.
constexpr std::uint64_t kSmallestSumBits = 0x358DEE7A4AD4B810ULL;
constexpr std::uint64_t kZeroUnits = 16;  // of the smallest subnormal

struct Logarithms {
  std::vector<double> values;
  double smallest = std::numeric_limits<double>::infinity();
  double greatest = -std::numeric_limits<double>::infinity();
  double sum = 0;
  double sumOfSquares = 0;
  double largestMagnitude = 0;  // of the shifted data
};

struct PowerSums {
  double a;  // sum of y^c
  double b;  // sum of y^c ln y
  double c;  // sum of y^c (ln y)^2
};

// By the bits, as a processor that takes subnormal numbers for zero would compare otherwise.
bool IsZero(double y) {
  return std::bit_cast<std::uint64_t>(std::abs(y)) < kZeroUnits;
}

bool SumVanishes(double a) {
  return std::bit_cast<std::uint64_t>(std::abs(a)) < kSmallestSumBits;
}

PowerSums SumPowers(std::span<const double> logarithms, double shape) {
  CompensatedSum a;
  CompensatedSum b;
  CompensatedSum c;
  std::array<double, kBlock> powers;
  for (std::size_t begin = 0; begin < logarithms.size(); begin += kBlock) {
    const auto l = logarithms.subspan(begin, std::min(kBlock, logarithms.size() - begin));
    const std::span<double> term(powers.data(), l.size());
    for (std::size_t i = 0; i < l.size(); ++i) term[i] = shape * l[i];
    elementary::Exp(term, term);
    a.Add(SumOfBlock(term));
    for (std::size_t i = 0; i < l.size(); ++i) term[i] *= l[i];
    b.Add(SumOfBlock(term));
    for (std::size_t i = 0; i < l.size(); ++i) term[i] *= l[i];
    c.Add(SumOfBlock(term));
  }
  return {a.Value(), b.Value(), c.Value()};
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
  for (int step = 0; step < kNewtonSteps; ++step) {
    if (std::max(shape * logs.greatest, shape * logs.smallest) > kLargestExponent)
      return WeibullStatus::kOverflow;
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

// Of the shifted data, in place, with their sums.
void TakeLogarithms(Logarithms& logs) {
  elementary::Log(logs.values, logs.values);
  CompensatedSum sum;
  CompensatedSum squares;
  for (const double l : logs.values) {
    sum.Add(l);
    squares.Add(l * l);
    logs.smallest = std::min(logs.smallest, l);
    logs.greatest = std::max(logs.greatest, l);
  }
  logs.sum = sum.Value();
  logs.sumOfSquares = squares.Value();
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
    logs.values.push_back(y);
    logs.largestMagnitude = std::max(logs.largestMagnitude, std::abs(y));
  }
  TakeLogarithms(logs);
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

}  // namespace brenvolt
