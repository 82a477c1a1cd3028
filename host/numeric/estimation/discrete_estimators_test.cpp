#include "host/numeric/estimation/discrete_estimators.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
using Data = std::vector<double>;

using Trials = std::optional<std::int32_t>;

TEST(BinomialFit, EveryCaseHasItsValuesOrItsFault) {
  using enum EstimationFault;
  struct Case {
    const char* what;
    Data data;
    Trials trials;
    Ended end;
    double proportion = kNotSet;
    std::int32_t fitted = kNotSetCount;
  };
  const Case cases[] = {
      {"trials given", {0, 2, 4, 6}, 10, kNone, 0.3, 10},
      {"trials from the greatest value", {0, 2, 4, 6}, {}, kNone, 0.5, 6},
      {"NaN is skipped", {kNan, 2, kNan, 4}, 4, kNone, 0.75, 4},
      {"all zero with trials given", {0, 0}, 4, kNone, 0, 4},
      {"no trials", {1, 2}, 0, kInvalidTrials},
      {"no trials and no values", {}, 0, kInvalidTrials},
      {"no values", {}, 3, kNoValues},
      {"half a count", {1, 2.5}, 3, kFraction},
      {"nearly a count", {1, 2.0000000000000004}, 3, kFraction},
      {"negative", {1, -1}, 3, kNegativeCount},
      {"minus zero", {1, -0.0}, 2, kNone, 0.25, 2},
      {"above the trials", {1, 4}, 3, kAboveTrials},
      {"above every number of trials", {1, 4e9}, {}, kAboveTrials},
      {"only NaN", {kNan}, 3, kNoValues},
      {"all zero without trials", {0, 0}, {}, kAllZero},
  };
  for (const Case& c : cases) {
    const auto fit = EstimateBinomial(c.data, c.trials);
    EXPECT_EQ(EndOf(fit), c.end) << c.what;
    if (!fit) continue;
    EXPECT_DOUBLE_EQ(fit->proportion, c.proportion) << c.what;
    EXPECT_EQ(fit->trials, c.fitted) << c.what;
  }
}

TEST(RateFits, EveryCaseHasItsValueOrItsFault) {
  using enum EstimationFault;
  struct Case {
    EstimationResult<double> (*estimate)(std::span<const double>);
    Data data;
    Ended end;
    double value = kNotSet;
  };
  const Case cases[] = {
      {EstimatePoisson, {0, 1, 2, kNan, 5}, kNone, 2},
      {EstimatePoisson, {}, kNoValues},
      {EstimatePoisson, {1, 2.5}, kFraction},
      {EstimatePoisson, {1, -2}, kNegativeCount},
      {EstimatePoisson, {0, 0}, kAllZero},
      {EstimatePoisson, {kNan}, kNoValues},
      {EstimateGeometric, {0, 1, 2, 5}, kNone, 1.0 / 3},
      {EstimateGeometric, {0, 0}, kNone, 1},
      {EstimateGeometric, {0.5}, kFraction},
      {EstimateBernoulli, {0, 1, 1, 1}, kNone, 0.75},
      {EstimateBernoulli, {0, 0}, kNone, 0},
      {EstimateBernoulli, {0, 1, 2}, kNeitherZeroNorOne},
      {EstimateBernoulli, {0, 0.5}, kNeitherZeroNorOne},
      {EstimateBernoulli, {-1, 0}, kNeitherZeroNorOne},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    const auto fit = cases[i].estimate(cases[i].data);
    EXPECT_EQ(EndOf(fit), cases[i].end) << i;
    if (!fit) continue;
    EXPECT_DOUBLE_EQ(*fit, cases[i].value) << i;
  }
}

TEST(DiscreteFits, FaultsTellTheValueAndTheBound) {
  using enum EstimationFault;
  EXPECT_EQ(EstimatePoisson(Data{1, 2.5, 3.5}).Reason(), (Fault{kFraction, "2.5"}));
  EXPECT_EQ(EstimateBinomial(Data{1, 4, 5}, 3).Reason(), (Fault{kAboveTrials, "4", "3"}));
  EXPECT_EQ(EstimateBinomial(Data{1, 4, 5}, 0).Reason(), (Fault{kInvalidTrials, "0"}));
}

TEST(HistogramFit, ClassesAreTheDistinctValuesWithTheirShares) {
  const auto classes = EstimateHistogram(Data{-1.5, -1.5, 0, 7, kNan});
  ASSERT_TRUE(classes);
  EXPECT_EQ(*classes, (Data{-1.5, 0.5, 0, 0.25, 7, 0.25}));
  EXPECT_EQ(EndOf(EstimateHistogram(Data{})), EstimationFault::kNoValues);
  EXPECT_EQ(EndOf(EstimateHistogram(Data{kNan})), EstimationFault::kNoValues);
}

}  // namespace
}  // namespace brenvolt
