#include "host/numeric/distributions/rules/value_rules.h"

#include <gtest/gtest.h>

#include <vector>

namespace brenvolt {
namespace {

using enum DistributionCode;

std::vector<double> Components(std::size_t count) {
  std::vector<double> values;
  for (std::size_t i = 0; i < count; ++i) {
    const double place = static_cast<double>(i);
    values.insert(values.end(), {1 / static_cast<double>(count), place, 1});
  }
  return values;
}

TEST(ValueRules, TheFirstThatIsBrokenIsTold) {
  const struct {
    DistributionCode code;
    std::vector<double> values;
    std::optional<ValueRule> broken;
  } rows[] = {
      {kTriangular, {1, 3, 2}, {}},
      {kTriangular, {1, 3, 1}, {}},
      {kTriangular, {1, 3, 0.5}, ValueRule::kMinUpToMode},
      {kTriangular, {1, 3, 4}, ValueRule::kModeUpToMax},
      {kTriangular, {2, 2, 2}, {}},
      {kTriangular, {-1e308, 1e308, 0}, ValueRule::kOther},
      {kGaussianMixture, Components(1), ValueRule::kGroupCount},
      {kGaussianMixture, Components(2), {}},
      {kGaussianMixture, Components(20), {}},
      {kGaussianMixture, Components(21), ValueRule::kGroupCount},
      {kGaussianMixture, {0.5, 0, 1, 0.4, 1, 1}, ValueRule::kTotalProportion},
      {kHistogram, {7, 1}, {}},
      {kHistogram, {7, 0.5, 8, 0.4}, ValueRule::kTotalProportion},
      {kHistogram, {}, ValueRule::kTotalProportion},
      {kNormal, {0, 1}, {}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(BrokenRule(row.code, row.values), row.broken)
        << static_cast<int>(row.code) << " of " << row.values.size() << " values";
  }
}

TEST(ValueRules, LevelThatIsThereTwiceHasItsPlace) {
  const struct {
    DistributionCode code;
    std::vector<double> values;
    std::optional<std::size_t> place;
  } rows[] = {
      {kHistogram, {0, 0.3, 1, 0.4, 2, 0.3}, {}},
      {kHistogram, {0, 0.3, 1, 0.4, 0, 0.3}, 4},
      {kHistogram, {0, 0.5, -0.0, 0.5}, 2},
      {kGaussianMixture, {0.5, 0, 1, 0.5, 0, 1}, {}},
      {kNormal, {1, 1}, {}},
  };
  for (const auto& row : rows) EXPECT_EQ(RepeatedLevel(row.code, row.values), row.place) << row.values[0];
}

}  // namespace
}  // namespace brenvolt
