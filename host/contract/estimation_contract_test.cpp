#include "host/contract/estimation_contract.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <optional>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"

namespace brenvolt {
namespace {

using Data = std::vector<double>;
const double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(EstimationContract, ResultsStandInTheirSlotsAndFailuresClearThem) {
  const Data data{1, 2, 2.5, 4, 7};
  std::array<double, 2> two{};
  std::array<double, 3> three{};
  std::array<double, 9> covariance{};
  std::int32_t error = -1;
  EXPECT_EQ(FitNormalDistribution(0, data, two, error), 0);
  EXPECT_EQ(two, (std::array{EstimateNormal(data)->mean, EstimateNormal(data)->standardDeviation}));
  EXPECT_EQ(FitLognormalDistribution(0, data, 0.5, two, error), 0);
  EXPECT_EQ(two[0], EstimateLogNormal(data, 0.5)->mean);
  EXPECT_EQ(FitHalfNormalDistribution(0, data, 1, three, error), 0);
  EXPECT_EQ(three[1], EstimateHalfNormal(data, 1)->standardError);
  EXPECT_EQ(FitRayleighDistribution(0, data, 0, three, error), 0);
  EXPECT_EQ(three[2], EstimateRayleigh(data, 0)->logLikelihood);
  EXPECT_EQ(GEV_MLE(data, three, covariance, error), 0);
  EXPECT_EQ(three, EstimateExtremeValue(data)->parameters);
  EXPECT_EQ(covariance[8], EstimateExtremeValue(data)->covariance[8]);
  EXPECT_EQ(GEV_ProbWeightMoments(data, three, error), 0);
  EXPECT_EQ(FitGPDProbabilityWeightedMoments(data, 1, three, error), 0);
  EXPECT_EQ(three[0], 1);
  EXPECT_EQ(error, 0);

  EXPECT_NE(FitGPDMaximumLikelihood(data, 2, three, error), 0);
  EXPECT_EQ(three, (std::array{kNotSet, kNotSet, kNotSet}));
  EXPECT_NE(error, 0);
  EXPECT_NE(GEV_MLE(Data{1, 1, 1}, three, covariance, error), 0);
  EXPECT_EQ(covariance[0], kNotSet);
}

TEST(EstimationContract, TestTellsSuccessByNumbers) {
  double statistic = 0;
  EXPECT_NE(ComputeKolmogorovSmirnovTest(Normal::kFacts.testCode, Data{0, 1}, Data{0}, statistic), 0);
  EXPECT_EQ(statistic, 0.5);
  EXPECT_EQ(ComputeKolmogorovSmirnovTest(99, Data{0, 1}, Data{0}, 0.0, statistic), 0);
  EXPECT_EQ(statistic, kNotSet);
  std::int32_t error = -1;
  EXPECT_EQ(ComputeKolmogorovSmirnovPvalue(10, 1, error), 0);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(ComputeKolmogorovSmirnovPvalue(0, 1, error), kNotSet);
  EXPECT_EQ(error, 1);
}

TEST(EstimationContract, StatusesHaveTheirNumbers) {
  const auto weibull = [](const Data& data, double offset) {
    return WeibullStatus(EstimateWeibull(data, offset, 1e-9));
  };
  EXPECT_EQ(weibull({1, 2, 3}, 0), 0);
  EXPECT_EQ(weibull({1, 2, 3}, 1), 1);
  EXPECT_EQ(weibull({1, 2, 3}, 1.5), 2);
  EXPECT_EQ(weibull({3, 3, 3}, 0), 2);
  EXPECT_EQ(WeibullStatus(Fault{EstimationFault::kSumVanishes}), 3);
  EXPECT_EQ(WeibullStatus(Fault{EstimationFault::kPowerOverflows}), 4);
  const auto binomial = [](const Data& data, std::optional<std::int32_t> trials) {
    return BinomialStatus(EstimateBinomial(data, trials), data);
  };
  EXPECT_EQ(binomial({1, 2}, 3), 0);
  EXPECT_EQ(binomial({1, 2}, 0), 1);
  EXPECT_EQ(binomial({}, 3), 2);
  EXPECT_EQ(binomial({1.5}, 3), 3);
  EXPECT_EQ(binomial({-1}, 3), 3);
  EXPECT_EQ(binomial({4}, 3), 4);
  EXPECT_EQ(binomial({kNan}, 3), 5);
  EXPECT_EQ(binomial({0}, {}), 5);
}

}  // namespace
}  // namespace brenvolt
