#include "host/drawing/axis_scale.h"

#include <gtest/gtest.h>

#include <limits>

namespace brenvolt {
namespace {

std::string Labels(const AxisScale& scale) {
  std::string labels;
  for (const AxisTick& tick : scale.ticks) labels += (labels.empty() ? "" : " ") + tick.label;
  return labels;
}

TEST(AxisScale, LabelsAreRoundAndNoMoreThanAskedFor) {
  const struct {
    double from;
    double to;
    int most;
    double roundedTo;
    const char* labels;
    int exponent;
  } kRows[] = {{0, 97, 6, 100, "0 20 40 60 80 100", 0},
               {-0.52, 0.78, 6, 0.8, "−0.5 0.0 0.5", 0},
               {0, 1, 11, 1, "0.0 0.1 0.2 0.3 0.4 0.5 0.6 0.7 0.8 0.9 1.0", 0},
               {0, 12'000'000, 5, 12'000'000, "0 5 10", 6},
               {0, 3e-7, 4, 3e-7, "0 100 200 300", -9},
               {1999.2, 2003.1, 5, 2003.2, "2000 2001 2002 2003", 0}};
  for (const auto& row : kRows) {
    const AxisScale scale = ScaleAxis(row.from, row.to, row.most);
    EXPECT_EQ(Labels(scale), row.labels);
    EXPECT_EQ(scale.exponent, row.exponent) << row.labels;
    EXPECT_DOUBLE_EQ(scale.to, row.roundedTo) << row.labels;
    EXPECT_LE(scale.from, row.from);
  }
}

TEST(AxisScale, AnyRangeHasTwoLabels) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::pair<double, double> kRows[] = {{kInfinity, -kInfinity}, {5, 5},     {0, 0},
                                             {1e300, 1.1e300},        {-3, 1e-9}, {1e9, 1e9 + 1e-3}};
  for (const auto& [from, to] : kRows) {
    for (const int most : {2, 3, 7}) {
      const AxisScale scale = ScaleAxis(from, to, most);
      EXPECT_GE(scale.ticks.size(), 2u) << from << " to " << to;
      EXPECT_LT(scale.from, scale.to);
    }
  }
}

TEST(AxisScale, TheUnitStandsInTheTitle) {
  EXPECT_EQ(TitleWithUnit("Count", 6), "Count (×10⁶)");
  EXPECT_EQ(TitleWithUnit("", -12), "×10⁻¹²");
  EXPECT_EQ(TitleWithUnit("Count", 0), "Count");
}

}  // namespace
}  // namespace brenvolt
