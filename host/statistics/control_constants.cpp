#include "host/statistics/control_constants.h"

#include <boost/math/quadrature/gauss.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>

namespace brenvolt {
namespace {

double Density(double x) {
  return std::exp(-x * x / 2) / std::sqrt(2 * std::numbers::pi);
}

// The probability of a standard normal value between two bounds, from the tails that it lies between.
double Between(double from, double to) {
  const auto upper = [](double x) { return std::erfc(x / std::numbers::sqrt2) / 2; };
  return from > 0 ? upper(from) - upper(to) : upper(-to) - upper(-from);
}

// The probability that the range of `count` values is at most `range`: n ∫ φ(x) (Φ(x + range) - Φ(x))^(n - 1) dx. The
// trapezoidal rule over the whole line gains digits exponentially with the number of its steps, the integrand being
// analytic and its tails normal.
double RangeCdf(double range, double count) {
  constexpr double kEnd = 9;
  constexpr double kStep = 0.09375;
  double sum = 0;
  for (double x = -kEnd - range; x <= kEnd; x += kStep) {
    const double between = Between(x, x + range);
    if (between > 0) sum += Density(x) * std::pow(between, count - 1);
  }
  return std::min(1.0, count * sum * kStep);
}

// The mean is ∫ (1 - F), the mean square 2 ∫ w (1 - F).
RangeConstants Compute(std::size_t count) {
  constexpr int kPoints = 30;
  constexpr double kPanel = 4;
  constexpr int kPanels = 4;
  double mean = 0;
  double square = 0;
  for (int panel = 0; panel < kPanels; ++panel) {
    const auto over = [&](bool weighted) {
      return boost::math::quadrature::gauss<double, kPoints>::integrate(
          [&](double w) { return (1 - RangeCdf(w, static_cast<double>(count))) * (weighted ? 2 * w : 1); },
          panel * kPanel, (panel + 1) * kPanel);
    };
    mean += over(false);
    square += over(true);
  }
  return {mean, std::sqrt(square - mean * mean)};
}

}  // namespace

RangeConstants RangeConstantsOf(std::size_t count) {
  static std::mutex mutex;
  static std::map<std::size_t, RangeConstants> known;
  const std::scoped_lock lock(mutex);
  const auto [place, isNew] = known.try_emplace(count);
  if (isNew) place->second = Compute(count);
  return place->second;
}

double C4(std::size_t count) {
  const double half = (static_cast<double>(count) - 1) / 2;
  return 1 / (boost::math::tgamma_delta_ratio(half, 0.5) * std::sqrt(half));
}

double C5(std::size_t count) {
  const double c4 = C4(count);
  return std::sqrt((1 - c4) * (1 + c4));
}

}  // namespace brenvolt
