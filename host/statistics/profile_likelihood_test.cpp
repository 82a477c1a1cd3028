#include "host/statistics/profile_likelihood.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "host/numeric/censored/censored_estimator.h"
#include "host/numeric/censored/censored_sets_test.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

const EstimationPoll kNoPoll = [] {};

const CensoredSample& SetNamed(const std::string& name) {
  static const auto sets = ReadCensoredSets(BRENVOLT_SOURCE_DIR "/host/numeric/censored/reference/sets.csv");
  return sets.at(name);
}

struct Fitted {
  FittedValues fit;
  LogLikelihood likelihood;
};

Fitted FitComplete(DistributionCode code, std::vector<double> values) {
  std::ranges::sort(values);
  auto fit = FitSample(code, values, 0, {}, kNoPoll);
  return {fit.value(), LikelihoodOf(std::move(values), kNoPoll)};
}

Fitted FitOf(const std::string& source, DistributionCode code) {
  if (source.ends_with(".csv")) {
    const Spreadsheet sheet = ReadCsv(BRENVOLT_SOURCE_DIR "/examples/" + source);
    const auto values = sheet.VariableAt(0).Values();
    return FitComplete(code, {values.begin(), values.end()});
  }
  const auto found = EstimateCensored(code, SetNamed(source), 0);
  return {{code, found->estimate.values, 0, found->estimate.covariance},
          LikelihoodOf(SetNamed(source), kNoPoll)};
}

TEST(ProfileIntervalsReference, AgreeWithSearchesByR) {
  struct Row {
    const char* source;
    DistributionCode code;
    double at;
    bool isQuantile;
    double lower;
    double upper;
  };
  const Row rows[] = {
#include "host/statistics/reference/profile_intervals.inc"
  };
  for (const Row& row : rows) {
    const Fitted of = FitOf(row.source, row.code);
    const ConfidenceInterval found = row.isQuantile
                                         ? ProfileQuantileInterval(of.fit, of.likelihood, row.at, 0.95)
                                         : ProfileExceedanceInterval(of.fit, of.likelihood, row.at, 0.95);
    const std::string what = std::string(row.source) + " " + std::to_string(static_cast<int>(row.code)) +
                             " " + std::to_string(row.at);
    EXPECT_NEAR(found.lower, row.lower, 2e-6 * std::abs(row.lower)) << what;
    EXPECT_NEAR(found.upper, row.upper, 2e-6 * std::abs(row.upper)) << what;
  }
}

// Coles (2001), An Introduction to Statistical Modeling of Extreme Values, section 3.4.1, read off a graph.
TEST(ProfileIntervals, AgreeWithThePublishedReturnLevels) {
  const Fitted of = FitOf("portpirie_sea_level.csv", DistributionCode::kGeneralExtremeValue);
  const ConfidenceInterval decade = ProfileQuantileInterval(of.fit, of.likelihood, 0.9, 0.95);
  EXPECT_NEAR(decade.lower, 4.21, 0.011);
  EXPECT_NEAR(decade.upper, 4.45, 0.011);
  const ConfidenceInterval century = ProfileQuantileInterval(of.fit, of.likelihood, 0.99, 0.95);
  EXPECT_NEAR(century.lower, 4.50, 0.011);
  EXPECT_NEAR(century.upper, 5.27, 0.011);
}

// The interval of a normal mean is known: s sqrt(n (exp(c / n) - 1)) on either side, c the quantile of chi-square and s² the
// mean square, whatever the size and the place of the sample.
TEST(ProfileIntervals, OfANormalMeanAreKnownForAnySample) {
  constexpr double kChiSquare = 3.841458820694124;
  for (const std::size_t count : {3, 20, 20000}) {
    for (const double place : {0.0, 1e6}) {
      std::vector<double> values(count);
      for (std::size_t i = 0; i < count; ++i) values[i] = place + std::sin(static_cast<double>(i * i));
      const Fitted of = FitComplete(DistributionCode::kNormal, values);
      const auto n = static_cast<double>(count);
      const double mean = std::accumulate(values.begin(), values.end(), 0.0) / n;
      double squares = 0;
      for (const double x : values) squares += (x - mean) * (x - mean);
      const double half = std::sqrt(squares / n * std::expm1(kChiSquare / n));
      const ConfidenceInterval found = ProfileQuantileInterval(of.fit, of.likelihood, 0.5, 0.95);
      const double tolerance = place > 0 ? 1e-5 * half : 1e-8 * half;
      EXPECT_NEAR(found.lower, mean - half, tolerance) << count << " " << place;
      EXPECT_NEAR(found.upper, mean + half, tolerance) << count << " " << place;
    }
  }
}

TEST(ProfileIntervals, WhatHasNoEndIsNotGiven) {
  const Fitted few = FitComplete(DistributionCode::kWeibull, {1, 2, 3, 5, 9});
  FittedValues without = few.fit;
  without.covariance.clear();
  EXPECT_TRUE(IsNotSet(ProfileQuantileInterval(without, few.likelihood, 0.5, 0.95).lower));
  const LogLikelihood flat = [](const FittedValues&) { return -1.0; };
  EXPECT_TRUE(IsNotSet(ProfileQuantileInterval(few.fit, flat, 0.5, 0.95).lower));
  EXPECT_TRUE(IsNotSet(ProfileExceedanceInterval(few.fit, few.likelihood, -1, 0.95).lower));
  EXPECT_GT(ProfileQuantileInterval(few.fit, few.likelihood, 0.001, 0.999).lower, 0);
}

}  // namespace
}  // namespace brenvolt
