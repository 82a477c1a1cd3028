#include "host/formula/curve.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "host/base/error.h"

namespace brenvolt {
namespace {

// Densities and distribution functions: SciPy 1.10 (norm, lognorm, foldnorm, halfnorm, rayleigh, weibull_min,
// johnsonsu, genextreme, genpareto, triang, binom, poisson, geom; the sign of the shapes of the generalized
// ones and the start of geom adapted), printed with repr(). The quantile of a discrete distribution at a probability
// near a step could fall to either side; none of these is.
TEST(Curve, FunctionsTakeTheirArgumentsInTheOrderOfTheTable) {
  struct Case {
    const char* formula;
    double expected;  // at x = 2
  };
  const Case cases[] = {
#include "host/formula/reference/curve_values.inc"
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(Curve(c.formula).At(2), c.expected, 1e-13 * std::abs(c.expected)) << c.formula;
  }
}

TEST(Curve, SignsAndStepsReadAsTheyAreWritten) {
  const std::array<double, 6> x{-0.75, -0.5, 0, 0.5, 1.5, 2};
  struct Case {
    const char* formula;
    std::array<double, 6> expected;
  };
  const Case cases[] = {
      {"(x>=-0.5 & x<=0.5)", {0, 1, 1, 1, 0, 0}},
      {"=2*3*(0.25*(x>=-0.5 & x<=0.5) + 0.75*(x>0.5 & x<=1.5))", {0, 1.5, 1.5, 1.5, 4.5, 0}},
      {" *3*(x>=0)", {0, 0, 3, 3, 3, 3}},
      {"x--2.5", {1.75, 2, 2.5, 3, 4, 4.5}},
      {"x-2.5", {-3.25, -3, -2.5, -2, -1, -0.5}},
      {"x--0", {-0.75, -0.5, 0, 0.5, 1.5, 2}},
  };
  for (const Case& c : cases) {
    std::array<double, 6> y = x;
    Curve(c.formula).Evaluate(y, y);
    EXPECT_EQ(y, c.expected) << c.formula;
  }
  EXPECT_TRUE(std::isnan(Curve("3*(x>=0)").At(std::numeric_limits<double>::quiet_NaN())));
}

TEST(Curve, MovesWithItsVariable) {
  Curve first("x*2");
  Curve second = std::move(first);
  first = Curve("x*3");
  EXPECT_EQ(second.At(5), 10);
  EXPECT_EQ(first.At(5), 15);
}

TEST(Curve, FaultPointsAtItsCharacter) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "curve, character 1"},
      {"=", "curve, character 1"},
      {"x+y", "curve, character 3"},
      {"x+v0", "curve, character 3"},
      {"= 2*normal(x,1,2)", "curve, character 5"},
      {"Normal(x,1)", "curve, character 11"},
      {"Normal(x,1,2,3)", "curve, character 15"},
      {"1*GEV + 1", "curve, character 3"},
      {"100*1*()", "curve, character 8"},
      {"100*nan*x", "curve, character 5"},
      {"1,2", "curve, character 2"},
      {"==x", "curve, character 2"},
      {"=" + std::string(300, '(') + "x", "curve, character 202"},
      {"x^" + std::string(300, '-') + "x", "curve, character 202"},
  };
  for (const auto& [formula, where] : cases) {
    try {
      Curve{formula};
      ADD_FAILURE() << formula;
    } catch (const Error& error) {
      EXPECT_EQ(std::string(error.what()).find("position"), std::string::npos) << error.what();
      EXPECT_EQ(error.Where(), where) << formula.substr(0, 40) << ": " << error.what();
    }
  }
}

}  // namespace
}  // namespace brenvolt
