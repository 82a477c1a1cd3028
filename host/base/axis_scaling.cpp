#include "host/base/axis_scaling.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "host/base/almost_equal.h"

namespace brenvolt {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
// A range narrower than this, or than this share of its limits, has too few doubles for steps.
constexpr double kSmallestWidth = 1e-280;
constexpr double kSmallestRelativeWidth = 0x1p-40;

// digit 10^exponent. Small steps are kept as quotients: 3 / 10 is the double nearest 0.3, 3 * 0.1 is not.
struct RoundStep {
  int digit;
  int exponent;

  double At(double multiple) const {
    const double units = multiple * digit;
    return exponent >= 0 ? units * std::pow(10.0, exponent) : units / std::pow(10.0, -exponent);
  }
  double MultipleOf(double x) const {
    const double units = exponent >= 0 ? x / std::pow(10.0, exponent) : x * std::pow(10.0, -exponent);
    return units / digit;
  }
  RoundStep Finer() const {
    if (digit == 1) return {5, exponent - 1};
    return {digit == 5 ? 2 : 1, exponent};
  }
};

// The range in steps.
struct Multiples {
  double first;
  double last;
};

Multiples RoundOutwards(const RoundStep& step, double minimum, double maximum) {
  const double low = step.MultipleOf(minimum);
  const double high = step.MultipleOf(maximum);
  Multiples result{std::floor(low), std::ceil(high)};
  if (AlmostEqual(low, std::round(low))) result.first = std::round(low);
  if (AlmostEqual(high, std::round(high))) result.last = std::round(high);
  while (!std::isfinite(step.At(result.first))) ++result.first;
  while (!std::isfinite(step.At(result.last))) --result.last;
  return result;
}

void WidenPoint(double& minimum, double& maximum) {
  const double magnitude = std::max(std::abs(minimum), std::abs(maximum));
  const double halfWidth = maximum / 2 - minimum / 2;
  if (halfWidth > kSmallestWidth && halfWidth > magnitude * kSmallestRelativeWidth) return;
  const double middle = minimum + halfWidth;
  const double margin = std::abs(middle) > 1e3 * kSmallestWidth ? std::abs(middle) / 10 : 1.0;
  minimum = std::max(middle - margin, -kLargest);
  maximum = std::min(middle + margin, kLargest);
}

// A power of ten that is not below the width, if there is one.
RoundStep Coarsest(double minimum, double maximum) {
  const double exponent = std::ceil(std::log10(maximum / 2 - minimum / 2) + std::log10(2.0));
  return {1, static_cast<int>(std::min(exponent, 308.0))};
}

}  // namespace

double RoundAxis(double& minimum, double& maximum, int mostSteps, int fewestSteps) {
  if (!std::isfinite(minimum) || !std::isfinite(maximum)) return 0.0;
  if (minimum > maximum) std::swap(minimum, maximum);
  WidenPoint(minimum, maximum);
  const double most = std::max(mostSteps, 1);
  const double fewest = std::clamp<double>(fewestSteps, 1, most);

  RoundStep step = Coarsest(minimum, maximum);
  Multiples range = RoundOutwards(step, minimum, maximum);
  while (range.last - range.first < fewest) {
    const RoundStep finer = step.Finer();
    const Multiples finerRange = RoundOutwards(finer, minimum, maximum);
    if (finerRange.last - finerRange.first > most) break;
    step = finer;
    range = finerRange;
  }
  minimum = step.At(range.first);
  maximum = step.At(range.last);
  return step.At(1.0);
}

}  // namespace brenvolt
