#include "brv_sra/fitting/anderson_darling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "brv_sra/fitting/anderson_darling_tables.h"
#include "host/base/error.h"
#include "host/numeric/special/exact_sums.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::sra {
namespace {

constexpr double kLowestProbability = 0x1p-53;
constexpr std::size_t kBlock = 512;
constexpr std::size_t kLanes = 8;

// Distributions of a single value: z = -1 - ln(u(1 - u)) at its least, u = 1/2, and where u is clamped.
constexpr double kSingleLeast = 0.38629436111989;
constexpr double kSingleGreatest = 37.816242111357;

double SingleDistribution(double z) {
  if (z <= kSingleLeast) return 0.0;
  if (z >= kSingleGreatest) return 1.0;
  return std::sqrt(1.0 - 4.0 * std::exp(-z - 1.0));
}

double Tail(double n, double z) {
  return std::exp(-1.03 - 1.06 * z) / n + std::exp(-0.56 - 1.06 * z);
}

// Quadratic backward differences in the limit, linear interpolation in the correction; 0 < z <= 5.
double Interpolate(double n, double z) {
  const double t = z / kAndersonDarlingSpacing;
  const auto j = static_cast<std::size_t>(t + 1.0);
  if (j < 2) return 0.0;
  const double u = t - static_cast<double>(j);
  const auto& a = kAndersonDarlingLimit;
  const auto& b = kAndersonDarlingCorrection;
  return (a[j - 2] - 2.0 * a[j - 1] + a[j]) * u * (u + 1.0) / 2.0 + (a[j] - a[j - 1]) * u + a[j] +
         ((u + 1.0) * b[j] - u * b[j - 1]) / n;
}

}  // namespace

void AndersonDarlingSum::AddTerm(double term) {
  const TwoPartSum sum = ExactSum(total_, term);
  total_ = sum.high;
  lost_ += sum.low;
}

// Terms in lanes that the compiler keeps apart.
void AndersonDarlingSum::Add(std::span<const double> probabilities) {
  std::array<double, kBlock> lower;
  std::array<double, kBlock> upper;
  for (std::size_t begin = 0; begin < probabilities.size(); begin += kBlock) {
    const auto z = probabilities.subspan(begin, std::min(kBlock, probabilities.size() - begin));
    for (std::size_t i = 0; i < z.size(); ++i) {
      lower[i] = std::max(z[i], kLowestProbability);
      upper[i] = std::max(1.0 - z[i], kLowestProbability);
    }
    elementary::Log(std::span(lower).first(z.size()), lower);
    elementary::Log(std::span(upper).first(z.size()), upper);
    std::array<double, kLanes> lanes{};
    for (std::size_t i = 0; i < z.size(); ++i) {
      const double weight = 2.0 * static_cast<double>(added_ + i) + 1.0;
      lanes[i % kLanes] += weight * lower[i] + (2.0 * count_ - weight) * upper[i];
    }
    for (const double lane : lanes) AddTerm(lane);
    added_ += z.size();
  }
}

// The sum over n, plus n: the two nearly cancel.
double AndersonDarlingSum::Statistic() const {
  const double quotient = total_ / count_;
  const double rest = std::fma(-quotient, count_, total_) + lost_;
  return -((quotient + count_) + rest / count_);
}

double andersonDarling(std::span<const double> probabilities) {
  if (probabilities.empty()) throw NumericalException("andersonDarling: n <= 0");
  AndersonDarlingSum sum(probabilities.size());
  sum.Add(probabilities);
  return sum.Statistic();
}

double AndersonDarlingDistribution(std::int64_t n, double statistic) {
  if (n <= 0) throw NumericalException("n <= 0");
  if (std::isnan(statistic)) return statistic;
  if (n == 1) return SingleDistribution(statistic);
  if (statistic <= 0.0) return 0.0;
  const auto size = static_cast<double>(n);
  const double probability = statistic > 5.0 ? 1.0 - Tail(size, statistic) : Interpolate(size, statistic);
  return std::clamp(probability, 0.0, 1.0);
}

}  // namespace brenvolt::sra
