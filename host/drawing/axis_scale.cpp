#include "host/drawing/axis_scale.h"

#include <algorithm>
#include <cmath>

#include "host/base/axis_scaling.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

// The steps to which a range is rounded.
constexpr int kMostSteps = 25;
constexpr int kFewestSteps = 10;
// Labels of values beyond these would be mostly zeros.
constexpr double kLargestPlain = 1e6;
constexpr double kSmallestPlain = 1e-3;
// How far a multiple of a step may lie beyond the end of its range by rounding.
constexpr double kTolerance = 1e-9;

int ExponentOf(double from, double to) {
  const double largest = std::max(std::abs(from), std::abs(to));
  if (largest == 0 || (largest >= kSmallestPlain && largest < kLargestPlain)) return 0;
  return 3 * static_cast<int>(std::floor(std::log10(largest) / 3));
}

std::string Label(double value, double step, int exponent) {
  const int decimals = exponent - static_cast<int>(std::floor(std::log10(step) + kTolerance));
  const std::string format = "%." + std::to_string(std::clamp(decimals, 0, 15)) + "f";
  const double shown = std::abs(value) < step / 2 ? 0 : value / std::pow(10.0, exponent);
  std::string text = FormatNumber(format.c_str(), shown);
  if (text.starts_with('-')) text.replace(0, 1, "−");
  return text;
}

std::vector<AxisTick> Ticks(const AxisScale& scale, int mostLabels) {
  double from = scale.from;
  double to = scale.to;
  const double step = RoundAxis(from, to, mostLabels, mostLabels);
  std::vector<AxisTick> ticks;
  if (!(step > 0)) return ticks;
  const double slack = (scale.to - scale.from) * kTolerance;
  const double count = std::round((to - from) / step);
  for (double i = 0; i <= count; ++i) {
    const double at = from + i * step;
    if (at < scale.from - slack || at > scale.to + slack) continue;
    ticks.push_back({std::clamp(at, scale.from, scale.to), Label(at, step, scale.exponent)});
  }
  return ticks;
}

}  // namespace

AxisScale ScaleAxis(double minimum, double maximum, int mostLabels) {
  AxisScale scale;
  if (std::isfinite(minimum) && std::isfinite(maximum)) {
    scale.from = minimum;
    scale.to = maximum;
  }
  RoundAxis(scale.from, scale.to, kMostSteps, kFewestSteps);
  scale.exponent = ExponentOf(scale.from, scale.to);
  scale.ticks = Ticks(scale, mostLabels);
  // A coarse step may have a single multiple in the range.
  for (int more = mostLabels + 1; scale.ticks.size() < 2 && more <= mostLabels + 3; ++more)
    scale.ticks = Ticks(scale, more);
  return scale;
}

std::string TitleWithUnit(const std::string& title, int exponent) {
  if (exponent == 0) return title;
  static constexpr const char* kRaised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
  std::string unit = "×10";
  for (const char digit : std::to_string(exponent)) unit += digit == '-' ? "⁻" : kRaised[digit - '0'];
  return title.empty() ? unit : title + " (" + unit + ")";
}

}  // namespace brenvolt
