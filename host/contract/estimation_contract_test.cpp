#include "host/contract/estimation_contract.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"
#include "host/numeric/estimation/gev_estimators.h"

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
  EXPECT_NE(ComputeKolmogorovSmirnovTest(1, Data{0, 1}, Data{0}, statistic), 0);
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

std::vector<double> Numbers(const std::string& text) {
  std::vector<double> numbers;
  std::istringstream stream(text);
  for (double number; stream >> number;) numbers.push_back(number);
  return numbers;
}

// Every code, with and without threshold and offset, ties, values beyond the support, more values than pass
// through the test in one piece, and discrete distributions that jump between the data.
TEST(EstimationContractReference, KolmogorovSmirnovStatisticsAgreeWithTableForEveryCode) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/reference/kolmogorov_smirnov_statistics.csv");
  std::string line;
  std::getline(file, line);
  std::set<std::int32_t> codes;
  double worst = 0.0;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string code, parameters, offset, data, value;
    std::getline(fields, code, ',');
    std::getline(fields, parameters, ',');
    std::getline(fields, offset, ',');
    std::getline(fields, data, ',');
    std::getline(fields, value, ',');
    double statistic = 0.0;
    const std::int32_t number = std::stoi(code);
    EXPECT_NE(ComputeKolmogorovSmirnovTest(number, Numbers(parameters), Numbers(data), std::stod(offset),
                                           statistic),
              0);
    const double error = std::abs(statistic - std::stod(value));
    EXPECT_TRUE(error <= 1e-13) << line << ": " << statistic << ", error " << error;
    worst = std::max(worst, error);
    codes.insert(number);
  }
  EXPECT_EQ(codes, (std::set<std::int32_t>{1, 9, 10, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24}));
  std::ostringstream text;
  text << worst;
  RecordProperty("LargestError", text.str());
}

}  // namespace
}  // namespace brenvolt
