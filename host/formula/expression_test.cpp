#include "host/formula/expression.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/base/error.h"

namespace brenvolt {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
const std::vector<double> kX{1, 2, 3, 4};
const std::vector<double> kWait{10, -9, 30, kNan};
const std::vector<FormulaVariable> kVariables{{"x", kX, kNan}, {"wait time", kWait, -9}};

TEST(Expression, EvaluatesOverAllCasesWithMissingValuesPropagated) {
  struct Case {
    const char* formula;
    std::vector<double> expected;
  };
  const Case cases[] = {
      {"x + 1", {2, 3, 4, 5}},
      {"2*x^2", {2, 8, 18, 32}},
      {"x > 1 and x <= 3", {0, 1, 1, 0}},
      {"not x > 1 or x = 4", {1, 0, 0, 1}},
      {"(x > 1) = (x < 4) and x = 2", {0, 1, 0, 0}},
      {"x <> 2", {1, 0, 1, 1}},
      {"'wait time' / 10", {1, kNan, 3, kNan}},
      {"v2 + v1", {11, kNan, 33, kNan}},
      {"v0 * 2", {2, 4, 6, 8}},
      {"sqrt(x) * 0 + 1.5e1", {15, 15, 15, 15}},
  };
  for (const Case& c : cases) {
    const auto result = EvaluateOverCases(c.formula, kVariables, 4, "condition");
    for (std::size_t i = 0; i < 4; ++i) {
      if (std::isnan(c.expected[i])) {
        EXPECT_TRUE(std::isnan(result[i])) << c.formula << " case " << i;
      } else {
        EXPECT_DOUBLE_EQ(result[i], c.expected[i]) << c.formula << " case " << i;
      }
    }
  }
}

TEST(Expression, FaultPointsAtItsCharacter) {
  const std::pair<const char*, const char*> cases[] = {
      {"x > y", "condition, character 5"},
      {"x ># 3", "condition, character 4"},
      {"'wait", "condition, character 1"},
      {"", "condition, character 1"},
      {"v7 > 1", "condition, character 1"},
      {"(x > 1", "condition, character 7"},
      {"x + + * 2", "condition, character 7"},
      {"1 < x < 3", "condition, character 7"},
      {"x > 1 and (x = 2) = x = 1", "condition, character 23"},
      {"not", "condition, character 4"}};
  for (const auto& [formula, where] : cases) {
    try {
      EvaluateOverCases(formula, kVariables, 4, "condition");
      ADD_FAILURE() << formula;
    } catch (const Error& error) {
      EXPECT_EQ(std::string(error.what()).find("nternal"), std::string::npos) << formula;
      EXPECT_EQ(error.Where(), where) << formula << ": " << error.what();
    }
  }
}

}  // namespace
}  // namespace brenvolt
