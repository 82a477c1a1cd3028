#include "brv_sra/fitting/anderson_darling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "brv_sra/fitting/anderson_darling_tables.h"
#include "host/base/error.h"
#include "host/numeric/goodness_of_fit/anderson_darling_sum.h"

namespace brenvolt::sra {
namespace {

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
