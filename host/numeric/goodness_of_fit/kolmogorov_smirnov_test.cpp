#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "host/base/almost_equal.h"

namespace brenvolt {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double Pvalue(std::int64_t n, double d) {
  return *KolmogorovSmirnovPValue(n, d);
}

// What the method promises for a row of the table: exact up to 500; beyond, an error of order 1 / n^2, which
// is the next order of the expansions; the limiting distribution differs by about 2 d / 3.
double PvalueTolerance(const std::string& kind, double n, double d) {
  if (kind == "limit") return d;
  if (n <= 500 || n * d * d >= 5.0) return 1e-12;
  return std::max(1e-12, 0.1 / (n * n));
}

TEST(KolmogorovSmirnovPvalueReference, AgreesWithHighPrecisionTable) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/reference/kolmogorov_smirnov.csv");
  std::string line;
  std::getline(file, line);
  int rows = 0;
  double worstExact = 0.0;
  double worstBeyond = 0.0;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string kind, n, d, value;
    std::getline(fields, kind, ',');
    std::getline(fields, n, ',');
    std::getline(fields, d, ',');
    std::getline(fields, value, ',');
    const std::int64_t size = std::stoll(n);
    const double distance = std::stod(d);
    const double computed = Pvalue(size, distance);
    const double error = std::abs(computed / std::stod(value) - 1.0);
    EXPECT_TRUE(error <= PvalueTolerance(kind, static_cast<double>(size), distance))
        << line << ": " << computed << ", relative error " << error;
    if (kind == "exact")
      (size <= 500 ? worstExact : worstBeyond) = std::max(size <= 500 ? worstExact : worstBeyond, error);
    ++rows;
  }
  EXPECT_GE(rows, 250);
  std::ostringstream text;
  text << worstExact << " up to 500, " << worstBeyond << " beyond";
  RecordProperty("LargestRelativeError", text.str());
}

TEST(KolmogorovSmirnovPvalue, FallsWithDistance) {
  for (const std::int64_t n : {2LL, 7LL, 100LL, 500LL, 501LL, 10000LL, 10001LL, 1000000LL, 1000000000LL}) {
    const auto size = static_cast<double>(n);
    double last = 1.0;
    for (double square = 0.01; square < 30.0; square *= 1.01) {
      const double d = std::min(1.0, std::sqrt(square / size));
      const double p = Pvalue(n, d);
      EXPECT_LE(p, last * (1.0 + 1e-12)) << n << ' ' << d;
      last = p;
    }
  }
}

TEST(KolmogorovSmirnovPvalue, IsContinuousWhereDistancesChangeMethod) {
  constexpr double kStep = 1e-12;
  for (const std::int64_t n : {2LL, 3LL, 7LL, 40LL, 100LL, 501LL, 2000LL, 10000LL, 10001LL, 1000000000LL}) {
    const auto size = static_cast<double>(n);
    std::vector<double> seams = {1.0 / size, std::sqrt(0.5 / size), std::sqrt(5.0 / size)};
    if (n <= 100) seams.insert(seams.end(), {0.5, 1.0 - 1.0 / size});
    for (const double d : seams) {
      if (d >= 1.0) continue;
      EXPECT_NEAR(Pvalue(n, d * (1.0 + kStep)) / Pvalue(n, d * (1.0 - kStep)), 1.0, 3e-7) << n << ' ' << d;
    }
  }
}

TEST(KolmogorovSmirnovPvalue, IsSmoothWhereSizesChangeMethod) {
  // The relative change from n to n + 1 at fixed n d^2 is small and smooth; a change of method must not show
  // in it.
  for (const std::int64_t n : {500LL, 10000LL}) {
    for (const double square : {0.1, 0.3, 0.49, 0.51, 0.8, 1.5, 3.0, 4.9, 5.1, 20.0}) {
      const auto at = [&](std::int64_t size) {
        return std::log(Pvalue(size, std::sqrt(square / static_cast<double>(size))));
      };
      EXPECT_NEAR(at(n + 1) - at(n), at(n) - at(n - 1), 1e-6 * std::max(1.0, square)) << n << ' ' << square;
    }
  }
}

TEST(KolmogorovSmirnovPvalue, EndsAndWrongCalls) {
  EXPECT_EQ(Pvalue(10, 0.0), 1.0);
  EXPECT_EQ(Pvalue(10, -1.0), 1.0);
  EXPECT_EQ(Pvalue(10, 0.05), 1.0);
  EXPECT_EQ(Pvalue(10, 1.0), 0.0);
  EXPECT_EQ(Pvalue(10, std::numeric_limits<double>::infinity()), 0.0);
  EXPECT_EQ(Pvalue(1, 0.5), 1.0);
  EXPECT_EQ(Pvalue(1'000'000'000, 0.5), 0.0);
  EXPECT_EQ(KolmogorovSmirnovPValue(0, 0.5).Reason().identifier, TestFault::kNoValues);
  EXPECT_EQ(KolmogorovSmirnovPValue(-3, 0.5).Reason().identifier, TestFault::kNoValues);
  EXPECT_EQ(KolmogorovSmirnovPValue(10, kNan).Reason().identifier, TestFault::kNotANumber);
}

TEST(KolmogorovSmirnovStatistic, CountsBothSidesOfEveryStep) {
  EXPECT_DOUBLE_EQ(KolmogorovSmirnovStatistic(std::vector{0.9}), 0.9);
  EXPECT_DOUBLE_EQ(KolmogorovSmirnovStatistic(std::vector{0.2}), 0.8);
  EXPECT_DOUBLE_EQ(KolmogorovSmirnovStatistic(std::vector{0.25, 0.75}), 0.25);
  EXPECT_DOUBLE_EQ(KolmogorovSmirnovStatistic(std::vector{0.5, 0.5, 0.5, 0.5}), 0.5);
  EXPECT_DOUBLE_EQ(KolmogorovSmirnovStatistic(std::vector{0.0, 1.0}), 0.5);
  EXPECT_EQ(KolmogorovSmirnovStatistic(std::vector<double>{}), kNotSet);
  EXPECT_EQ(KolmogorovSmirnovStatistic(std::vector{0.5, kNan}), kNotSet);
  EXPECT_EQ(KolmogorovSmirnovStatistic(std::vector{kNotSet, 0.5}), kNotSet);
}

TEST(KolmogorovSmirnovTest, WrongCallsAreToldApart) {
  struct Case {
    DistributionCode code;
    std::vector<double> parameters;
    std::vector<double> data;
    double offset;
    TestFault fault = TestFault::kNoProbability;
  };
  const Case cases[] = {
      {DistributionCode::kNormal, {0.0, 0.0}, {1.0, 2.0}, 0.0},                         // invalid scale
      {DistributionCode::kNormal, {0.0}, {1.0, 2.0}, 0.0},                              // a parameter too few
      {DistributionCode::kNormal, {0.0, 1.0, 2.0}, {1.0}, 0.0},                         // one too many
      {DistributionCode::kPoisson, {kNotSet}, {1.0}, 0.0},                              // not set
      {DistributionCode::kWeibull, {1.0, 1.0}, {}, 0.0, TestFault::kNoValues},          // no data
      {DistributionCode::kLogNormal, {0.0, 1.0}, {kNan}, 0.0},                          // no probability
      {DistributionCode::kLogNormal, {0.0, 1.0}, {1.0}, kNan, TestFault::kNotANumber},  // no offset
      {DistributionCode::kHalfNormal, {1.0, 0.1, -5.0}, {1.0}, 0.0},  // further results of the estimator
      {DistributionCode::kGeneralPareto, {1.0}, {1.0}, 0.0},          // no shape
      {DistributionCode::kJohnson, {5.0, 0.0, 1.0, 1.0, 0.0}, {1.0}, 0.0},     // no such family
      {DistributionCode::kGaussianMixture, {1.0, 0.0, 1.0, 0.0}, {1.0}, 0.0},  // a piece of a component
      {DistributionCode::kHistogram, {1.0, 0.5}, {1.0}, 0.0},                  // proportions short of 1
      {DistributionCode::kBinomial, {0.5, 2.5}, {1.0}, 0.0},                   // trials not whole
  };
  for (const Case& c : cases) {
    const auto statistic =
        TestKolmogorovSmirnov(AnyDistribution(EntryOf(c.code), c.parameters), c.data, c.offset);
    ASSERT_FALSE(statistic);
    EXPECT_EQ(statistic.Reason().identifier, c.fault);
  }
}

}  // namespace
}  // namespace brenvolt
