#include "host/numeric/estimation/weibull_estimator.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
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
// The last step of an iteration that has arrived, against the shape: from below, each step doubles it.
constexpr double kLargestLastStep = 0.001;
// Values closer together than this, against the greatest, have quotients that round off what tells them apart.
constexpr double kClose = 0.001;
// Below this the sum of powers counts as zero: 9.999999999999982e-51, compared by its bits.
constexpr std::uint64_t kSmallestSumBits = 0x358DEE7A4AD4B810ULL;
constexpr std::uint64_t kZeroUnits = 16;  // of the smallest subnormal

struct Logarithms {
  std::vector<double> values;
  double smallest = 0;  // the greatest is 0
  double sum = 0;
  double sumOfSquares = 0;
};

// Of a sample in units of its greatest value.
struct ScaledWeibull {
  Logarithms logs;
  double unit = 0;
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
  return shape > kLargestStartingShape ? 1.0 : shape;
}

// One attempt of Newton's method from `shape`.
EstimationResult<double> Iterate(const Logarithms& logs, double tolerance, double shape) {
  const auto n = static_cast<double>(logs.values.size());
  for (int step = 0; step < kNewtonSteps; ++step) {
    // Of a step that went below 0.
    if (shape * logs.smallest > kLargestExponent) return Fault{EstimationFault::kPowerOverflows};
    const PowerSums sums = SumPowers(logs.values, shape);
    if (SumVanishes(sums.a)) return Fault{EstimationFault::kSumVanishes};
    const double delta = (logs.sum / n + 1 / shape - sums.b / sums.a) /
                         (1 / (shape * shape) - (sums.b * sums.b - sums.a * sums.c) / (sums.a * sums.a));
    if (std::isnan(delta)) break;  // it would stay one for all steps
    shape += delta;
    if (std::abs(delta) < std::min(tolerance, kLargestLastStep * std::abs(shape))) return shape;
  }
  return Fault{EstimationFault::kNoConvergence};
}

EstimationResult<WeibullEstimate> Finish(const Logarithms& logs, double unit, double c) {
  const auto n = static_cast<double>(logs.values.size());
  const PowerSums sums = SumPowers(logs.values, c);
  const double b = std::pow(sums.a / n, 1 / c);
  // Written so that a NaN counts as not positive.
  if (!(c > 0) || !(b > 0)) return Fault{EstimationFault::kNoConvergence};
  const double l = std::log(b);
  const double icc = (l * l * sums.a - 2 * l * sums.b + sums.c) / std::pow(b, c) + n / (c * c);
  const double ibb = (c + 1) * c * sums.a / std::pow(b, c + 2) - n * c / (b * b);
  const double icb = n / b - (sums.a - l * c * sums.a + c * sums.b) / std::pow(b, c + 1);
  const double determinant = ibb * icc - icb * icb;
  return WeibullEstimate{.shape = c,
                         .scale = unit * b,
                         .shapeStandardError = std::sqrt(ibb / determinant),
                         .scaleStandardError = unit * std::sqrt(icc / determinant),
                         .covariance = unit * (-icb / determinant)};
}

// Of positive values in units of the greatest, in place.
void TakeLogarithms(std::span<double> values, double unit) {
  if (unit - *std::ranges::min_element(values) < kClose * unit) {
    for (double& y : values) y = std::log1p((y - unit) / unit);
    return;
  }
  for (double& y : values) y /= unit;
  elementary::Log(values, values);
}

void SumUp(Logarithms& logs) {
  CompensatedSum sum;
  CompensatedSum squares;
  for (const double l : logs.values) {
    sum.Add(l);
    squares.Add(l * l);
    logs.smallest = std::min(logs.smallest, l);
  }
  logs.sum = sum.Value();
  logs.sumOfSquares = squares.Value();
}

EstimationResult<ScaledWeibull> Prepare(std::span<const double> data, double offset) {
  ScaledWeibull sample;
  std::vector<double>& values = sample.logs.values;
  values.reserve(data.size());
  for (const double x : data) {
    const double y = x - offset;
    if (IsZero(y)) return FaultAbout(EstimationFault::kValueAtOffset, offset);
    if (y < 0) return FaultAbout(EstimationFault::kValueBelowOffset, x, offset);
    values.push_back(y);
    sample.unit = std::max(sample.unit, y);
  }
  if (estimation::IsAnyNotFinite(values)) return Fault{EstimationFault::kNotFinite};
  TakeLogarithms(values, sample.unit);
  SumUp(sample.logs);
  return sample;
}

}  // namespace

EstimationResult<WeibullEstimate> EstimateWeibull(std::span<const double> data, double offset,
                                                  double tolerance) {
  if (data.empty()) return Fault{EstimationFault::kNoValues};
  const auto sample = Prepare(data, offset);
  if (!sample) return sample.Reason();
  auto shape = Iterate(sample->logs, tolerance, StartingShape(sample->logs));
  if (!shape || AlmostEqual(*shape, 0)) shape = Iterate(sample->logs, tolerance, 1.0);
  if (!shape) return shape.Reason();
  return Finish(sample->logs, sample->unit, *shape);
}

}  // namespace brenvolt
