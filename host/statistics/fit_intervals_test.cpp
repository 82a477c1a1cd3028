#include "host/statistics/fit_intervals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "host/tables/csv.h"

namespace brenvolt {
namespace {

const EstimationPoll kNoPoll = [] {};

TEST(FitIntervalsReference, AgreeWithTheTable) {
  struct Row {
    DistributionCode code;
    std::vector<double> values;
    std::vector<double> covariance;
    double at;
    bool isQuantile;
    double lower;
    double upper;
  };
  const Row rows[] = {
#include "host/statistics/reference/quantile_intervals.inc"
  };
  for (const Row& row : rows) {
    const FittedValues fit{row.code, row.values, 0, row.covariance};
    const ConfidenceInterval found =
        row.isQuantile ? QuantileInterval(fit, row.at, 0.95) : ExceedanceInterval(fit, row.at, 0.95);
    EXPECT_NEAR(found.lower, row.lower, 3e-7 * row.lower) << static_cast<int>(row.code) << " " << row.at;
    EXPECT_NEAR(found.upper, row.upper, 3e-7 * row.upper) << static_cast<int>(row.code) << " " << row.at;
  }
}

// Coles (2001), An Introduction to Statistical Modeling of Extreme Values, section 3.4.1: return levels of 10 and 100 years
// of 4.30 and 4.69 m. The symmetric interval of the latter is 4.38 to 4.99; that by the profile likelihood
// stands with its test.
TEST(FitIntervals, AgreeWithThePublishedReturnLevels) {
  const Spreadsheet levels = ReadCsv(BRENVOLT_SOURCE_DIR "/examples/portpirie_sea_level.csv");
  const auto values = levels.VariableAt(0).Values();
  const auto fit =
      FitSample(DistributionCode::kGeneralExtremeValue, {values.begin(), values.end()}, 0, {}, kNoPoll);
  ASSERT_TRUE(fit);
  EXPECT_NEAR(fit->Quantile(0.9), 4.30, 0.005);
  EXPECT_NEAR(fit->Quantile(0.99), 4.69, 0.005);
  const ConfidenceInterval century = QuantileInterval(*fit, 0.99, 0.95);
  EXPECT_NEAR(century.lower, 4.43, 0.01);
  EXPECT_NEAR(century.upper, 5.07, 0.01);
}

TEST(FitIntervals, NothingIsKnownWithoutACovariance) {
  const FittedValues fit{DistributionCode::kNormal, {0, 1}, 0, {}};
  EXPECT_TRUE(IsNotSet(QuantileInterval(fit, 0.5, 0.95).lower));
  EXPECT_TRUE(IsNotSet(ExceedanceInterval(fit, 1, 0.95).lower));
  const FittedValues known{DistributionCode::kWeibull, {2, 3}, 5, {0.01, 0, 0, 0.01}};
  EXPECT_TRUE(IsNotSet(ExceedanceInterval(known, 5, 0.95).lower));
  EXPECT_GT(QuantileInterval(known, 1e-9, 0.95).lower, 5);
}

// The mean of a normal sample lies between the same limits by both ways, but for the number of samples.
TEST(FitIntervals, BootstrapIsNearTheCovarianceWhereThatIsExact) {
  const FittedValues fit{DistributionCode::kNormal, {10, 2}, 0, {0.04, 0, 0, 0.02}};
  const FitBootstrap bootstrap(fit, 100, 2000, RandomStream(3), {}, kNoPoll);
  EXPECT_EQ(bootstrap.Fitted(), 2000U);
  const ConfidenceInterval expected = QuantileInterval(fit, 0.5, 0.9);
  const ConfidenceInterval found = bootstrap.Quantile(0.5, 0.9);
  EXPECT_NEAR(found.lower, expected.lower, 0.03);
  EXPECT_NEAR(found.upper, expected.upper, 0.03);
  const FitBootstrap few(fit, 100, 38, RandomStream(3), {}, kNoPoll);
  EXPECT_TRUE(IsNotSet(few.Quantile(0.5, 0.95).lower));
  const FitBootstrap again(fit, 100, 100, RandomStream(3), {}, kNoPoll);
  EXPECT_EQ(again.Exceedance(12, 0.9).lower,
            FitBootstrap(fit, 100, 100, RandomStream(3), {}, kNoPoll).Exceedance(12, 0.9).lower);
}

}  // namespace
}  // namespace brenvolt
