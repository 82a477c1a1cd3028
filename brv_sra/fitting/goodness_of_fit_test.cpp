#include "brv_sra/fitting/goodness_of_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {
namespace {

DistributionFit FitOf(DistributionCode code, std::vector<double> values, double offset = kNotSet) {
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.values = std::move(values);
  fit.specification.offset = offset;
  fit.estimatedParameters = 2;
  return fit;
}

std::vector<std::string> Split(const std::string& line, char separator) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  for (std::string field; std::getline(stream, field, separator);) fields.push_back(field);
  if (!line.empty() && line.back() == separator) fields.emplace_back();
  return fields;
}

double NumberOr(const std::string& text, double otherwise) {
  return text.empty() ? otherwise : std::stod(text);
}

std::vector<double> SortedColumn(const std::string& file, std::size_t column, std::size_t take) {
  std::ifstream stream(BRENVOLT_SOURCE_DIR "/examples/" + file);
  std::string line;
  std::getline(stream, line);
  std::vector<double> values;
  while (std::getline(stream, line)) values.push_back(std::stod(Split(line, ',')[column]));
  if (take > 0) values.resize(take);
  std::ranges::sort(values);
  return values;
}

void ExpectChiSquare(const ChiSquareResult& result, const std::vector<std::string>& row, std::size_t first) {
  const double statistic = NumberOr(row[first], kNotSet);
  EXPECT_NEAR(result.statistic, statistic, 1e-8 * std::abs(statistic));
  EXPECT_EQ(result.degreesOfFreedom, static_cast<std::int32_t>(NumberOr(row[first + 1], kNotSetCount)));
  const double p = NumberOr(row[first + 2], kNotSet);
  EXPECT_NEAR(result.pValue, p, 1e-7 * std::abs(p));
}

TEST(GoodnessOfFitReference, AllTestsAgreeWithSciPyAndR) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/brv_sra/fitting/reference/goodness_of_fit.csv");
  std::string line;
  std::getline(file, line);
  int rows = 0;
  while (std::getline(file, line)) {
    SCOPED_TRACE(line);
    const std::vector<std::string> row = Split(line, ',');
    std::vector<double> values;
    for (const std::string& value : Split(row[5], ' ')) values.push_back(std::stod(value));
    const auto sorted = SortedColumn(row[0], std::stoul(row[1]), std::stoul(row[2]));
    DistributionFit fit =
        FitOf(static_cast<DistributionCode>(std::stoi(row[3])), values, NumberOr(row[4], kNotSet));

    TestFit(fit, sorted, ChiSquareBinning::kEqualProbabilities);
    EXPECT_NEAR(fit.kolmogorovSmirnov.statistic, std::stod(row[6]), 1e-11);
    const double p = std::stod(row[7]);
    // Beyond 140 values SciPy's own p-value is an expansion.
    EXPECT_NEAR(fit.kolmogorovSmirnov.pValue, p, (sorted.size() > 140 ? 1e-5 : 1e-9) * p);
    const double statistic = NumberOr(row[8], kNotSet);
    EXPECT_NEAR(fit.andersonDarling.statistic, statistic, 1e-10 * std::abs(statistic));
    // For n = 2 our tables are good to 0.01; for n = 1 they are exact, R's are not.
    EXPECT_NEAR(fit.andersonDarling.pValue, NumberOr(row[9], kNotSet), sorted.size() <= 2 ? 0.01 : 0.001);
    ExpectChiSquare(fit.chiSquare, row, 10);
    TestFit(fit, sorted, ChiSquareBinning::kEqualIntervals);
    ExpectChiSquare(fit.chiSquare, row, 13);
    ++rows;
  }
  EXPECT_EQ(rows, 22);
}

// A set of values of every distribution that spreads over 0 to 10.
const std::vector<DistributionFit>& Fits() {
  using enum DistributionCode;
  static const std::vector<DistributionFit> kFits{FitOf(kNormal, {4, 2.5}),
                                                  FitOf(kLogNormal, {1, 0.75}, -0.5),
                                                  FitOf(kFoldedNormal, {3, 2}, -0.25),
                                                  FitOf(kHalfNormal, {4}, 0.0),
                                                  FitOf(kRayleigh, {3}, -1.0),
                                                  FitOf(kWeibull, {4, 1.5}, -0.125),
                                                  FitOf(kGaussianMixture, {0.25, 2, 1, 0.75, 6, 2}),
                                                  FitOf(kJohnson, {3, 0.25, 1, 11, -0.5}),
                                                  FitOf(kGeneralExtremeValue, {3, 2, 0.1}),
                                                  FitOf(kGeneralPareto, {4, -0.2}, -0.5),
                                                  FitOf(kTriangular, {-1, 11, 4}),
                                                  FitOf(kBinomial, {0.4, 10}),
                                                  FitOf(kPoisson, {4}),
                                                  FitOf(kGeometric, {0.2}),
                                                  FitOf(kBernoulli, {0.4}),
                                                  FitOf(kHistogram, {0, 0.25, 1, 0.5, 4, 0.25})};
  return kFits;
}

// Values in [0, 10); whole numbers, 0 to `largest`, for a discrete distribution.
std::vector<double> DataFor(DistributionCode code) {
  std::vector<double> data(3000);
  RandomStream(33).FillUniform(0, data);
  const double largest = code == DistributionCode::kBernoulli ? 1.0 : 9.0;
  for (double& x : data) x = IsContinuous(code) ? 10.0 * x : std::floor((largest + 1.0) * x);
  std::ranges::sort(data);
  return data;
}

TEST(GoodnessOfFit, KolmogorovSmirnovIsThatOfTheHostForEveryType) {
  for (DistributionFit fit : Fits()) {
    const DistributionCode code = fit.specification.code;
    SCOPED_TRACE(SpacedKey(code));
    const auto data = DataFor(code);
    TestFit(fit, data, ChiSquareBinning::kEqualProbabilities);
    const double offset = HasOffset(code) ? fit.specification.offset : 0.0;
    const auto statistic =
        TestKolmogorovSmirnov(AnyDistribution(EntryOf(code), fit.specification.values), data, offset);
    ASSERT_TRUE(statistic);
    EXPECT_EQ(fit.kolmogorovSmirnov.statistic, *statistic);
    EXPECT_EQ(IsNotSet(fit.andersonDarling.statistic), !IsContinuous(code));
    EXPECT_EQ(IsNotSet(fit.andersonDarling.pValue), !IsContinuous(code));
    EXPECT_GE(fit.chiSquare.pValue, 0);
    EXPECT_GE(fit.chiSquare.degreesOfFreedom, 1);
  }
}

TEST(GoodnessOfFit, StatisticsOfTheBootstrapAreThoseOfTheTestsWithoutPValues) {
  for (DistributionFit fit : Fits()) {
    SCOPED_TRACE(SpacedKey(fit.specification.code));
    const auto data = DataFor(fit.specification.code);
    TestFit(fit, data, ChiSquareBinning::kEqualIntervals);
    DistributionFit again = fit;
    TestFitStatistics(again, data, ChiSquareBinning::kEqualIntervals);
    EXPECT_EQ(again.kolmogorovSmirnov.statistic, fit.kolmogorovSmirnov.statistic);
    EXPECT_EQ(again.chiSquare.statistic, fit.chiSquare.statistic);
    EXPECT_EQ(again.andersonDarling.statistic, fit.andersonDarling.statistic);
    EXPECT_TRUE(IsNotSet(again.kolmogorovSmirnov.pValue));
    EXPECT_TRUE(IsNotSet(again.chiSquare.pValue));
    EXPECT_TRUE(IsNotSet(again.andersonDarling.pValue));
  }
}

TEST(GoodnessOfFit, WhatCannotBeTestedClearsEveryRecord) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  using enum DistributionCode;
  struct Case {
    const char* why;
    DistributionFit fit;
    std::vector<double> data;
  };
  const Case cases[] = {{"a failed fit", FitOf(kNormal, {kNotSet, 1}), {1, 2, 3}},
                        {"no values", FitOf(kNormal, {}), {1, 2, 3}},
                        {"no data", FitOf(kNormal, {0, 1}), {}},
                        {"an invalid scale", FitOf(kNormal, {0, -1}), {1, 2, 3}},
                        {"an invalid mean of counts", FitOf(kPoisson, {-1}), {1, 2, 3}},
                        {"a value too few", FitOf(kWeibull, {1}, 0.0), {1, 2, 3}},
                        {"an infinite offset", FitOf(kWeibull, {1, 1}, HUGE_VAL), {1, 2, 3}},
                        {"a value that has no probability", FitOf(kNormal, {0, 1}), {nan}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    DistributionFit fit = c.fit;
    fit.kolmogorovSmirnov = fit.andersonDarling = {0.5, 0.5};
    fit.chiSquare = {5, 5, 0.5};
    TestFit(fit, c.data, ChiSquareBinning::kEqualProbabilities);
    for (const double value :
         {fit.kolmogorovSmirnov.statistic, fit.kolmogorovSmirnov.pValue, fit.andersonDarling.statistic,
          fit.andersonDarling.pValue, fit.chiSquare.statistic, fit.chiSquare.pValue})
      EXPECT_TRUE(IsNotSet(value)) << value;
    EXPECT_EQ(fit.chiSquare.degreesOfFreedom, kNotSetCount);
  }
}

TEST(GoodnessOfFit, ValuesOutsideTheSupportCountAsTheClampedEnd) {
  DistributionFit fit = FitOf(DistributionCode::kTriangular, {0, 1, 0.5});
  TestFit(fit, std::vector<double>{-3, 7}, ChiSquareBinning::kEqualProbabilities);
  EXPECT_DOUBLE_EQ(fit.andersonDarling.statistic, -2.0 + 53.0 * std::log(2.0));
  EXPECT_DOUBLE_EQ(fit.kolmogorovSmirnov.statistic, 0.5);
}

}  // namespace
}  // namespace brenvolt::sra
