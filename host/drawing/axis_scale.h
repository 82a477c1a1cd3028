// An axis: its range rounded by the host's rules, and the values at which it is labelled.
#pragma once

#include <string>
#include <vector>

namespace brenvolt {

struct AxisTick {
  double at = 0;
  std::string label;
};

struct AxisScale {
  double from = 0;
  double to = 1;
  std::vector<AxisTick> ticks;
  int exponent = 0;  // labels are in units of this power of ten
};

// The range is rounded outwards to a fine step (host/base/axis_scaling.h), and `mostLabels` values at most, two at
// least where the range has them, are labelled at a coarser one. A range that is empty or not finite becomes 0 to 1.
AxisScale ScaleAxis(double minimum, double maximum, int mostLabels);

// A title with its unit: "Count (×10⁶)".
std::string TitleWithUnit(const std::string& title, int exponent);

}  // namespace brenvolt
