#include "host/numeric/estimation/discrete_estimators.h"

#include <gtest/gtest.h>

#include <limits>

namespace brenvolt {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
using Data = std::vector<double>;

TEST(BinomialFit, EveryCaseHasItsStatusAndValues) {
  using S = DiscreteStatus;
  struct Case {
    const char* what;
    Data data;
    std::int32_t trials;
    bool estimateTrials;
    S status;
    double proportion = kNotSet;
    std::int32_t fitted = kNotSetCount;
  };
  const Case cases[] = {
      {"trials given", {0, 2, 4, 6}, 10, false, S::kSuccess, 0.3, 10},
      {"trials from the greatest value", {0, 2, 4, 6}, -444, true, S::kSuccess, 0.5, 6},
      {"NaN is skipped", {kNan, 2, kNan, 4}, 4, false, S::kSuccess, 0.75, 4},
      {"all zero with trials given", {0, 0}, 4, false, S::kSuccess, 0, 4},
      {"no trials", {1, 2}, 0, false, S::kInvalidTrials},
      {"no trials and no values", {}, 0, false, S::kInvalidTrials},
      {"no values", {}, 3, false, S::kNoValues},
      {"half a count", {1, 2.5}, 3, false, S::kNotACount},
      {"nearly a count", {1, 2.0000000000000004}, 3, false, S::kNotACount},
      {"negative", {1, -1}, 3, false, S::kNotACount},
      {"minus zero", {1, -0.0}, 2, false, S::kSuccess, 0.25, 2},
      {"above the trials", {1, 4}, 3, false, S::kAboveGreatest},
      {"above every number of trials", {1, 4e9}, 0, true, S::kAboveGreatest},
      {"only NaN", {kNan}, 3, false, S::kNothingToEstimate},
      {"all zero without trials", {0, 0}, 0, true, S::kNothingToEstimate},
  };
  for (const Case& c : cases) {
    const BinomialEstimate fit = EstimateBinomial(c.data, c.trials, c.estimateTrials);
    EXPECT_EQ(fit.status, c.status) << c.what;
    EXPECT_DOUBLE_EQ(fit.proportion, c.proportion) << c.what;
    EXPECT_EQ(fit.trials, c.fitted) << c.what;
  }
}

TEST(RateFits, EveryCaseHasItsStatusAndValue) {
  using S = DiscreteStatus;
  struct Case {
    RateEstimate (*estimate)(std::span<const double>);
    Data data;
    S status;
    double value = kNotSet;
  };
  const Case cases[] = {
      {EstimatePoisson, {0, 1, 2, kNan, 5}, S::kSuccess, 2},
      {EstimatePoisson, {}, S::kNoValues},
      {EstimatePoisson, {1, 2.5}, S::kNotACount},
      {EstimatePoisson, {1, -2}, S::kNotACount},
      {EstimatePoisson, {0, 0}, S::kNothingToEstimate},
      {EstimatePoisson, {kNan}, S::kNothingToEstimate},
      {EstimateGeometric, {0, 1, 2, 5}, S::kSuccess, 1.0 / 3},
      {EstimateGeometric, {0, 0}, S::kSuccess, 1},
      {EstimateGeometric, {0.5}, S::kNotACount},
      {EstimateBernoulli, {0, 1, 1, 1}, S::kSuccess, 0.75},
      {EstimateBernoulli, {0, 0}, S::kSuccess, 0},
      {EstimateBernoulli, {0, 1, 2}, S::kAboveGreatest},
      {EstimateBernoulli, {0, 0.5}, S::kNotACount},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    const RateEstimate fit = cases[i].estimate(cases[i].data);
    EXPECT_EQ(fit.status, cases[i].status) << i;
    EXPECT_DOUBLE_EQ(fit.value, cases[i].value) << i;
  }
}

TEST(HistogramFit, ClassesAreTheDistinctValuesWithTheirShares) {
  const HistogramEstimate fit = EstimateHistogram(Data{-1.5, -1.5, 0, 7, kNan});
  ASSERT_EQ(fit.status, DiscreteStatus::kSuccess);
  EXPECT_EQ(fit.classes, (Data{-1.5, 0.5, 0, 0.25, 7, 0.25}));
  EXPECT_EQ(EstimateHistogram(Data{}).status, DiscreteStatus::kNoValues);
  EXPECT_EQ(EstimateHistogram(Data{kNan}).status, DiscreteStatus::kNothingToEstimate);
}

}  // namespace
}  // namespace brenvolt
