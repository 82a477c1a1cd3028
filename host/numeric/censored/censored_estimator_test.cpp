#include "host/numeric/censored/censored_estimator.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "host/numeric/censored/censored_sets_test.h"
#include "host/numeric/censored/survival_curve.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

const CensoredSample& SetNamed(const std::string& name) {
  static const auto sets = ReadCensoredSets(BRENVOLT_SOURCE_DIR "/host/numeric/censored/reference/sets.csv");
  return sets.at(name);
}

struct Fit {
  const char* set;
  DistributionCode code;
  double logLikelihood;
  std::vector<double> values;
  std::vector<double> errors;
};

// Values to a part of their standard errors, which themselves agree to a part of them.
void ExpectFit(const Fit& expected, double tolerance) {
  SCOPED_TRACE(std::string(expected.set) + " " + std::to_string(static_cast<int>(expected.code)));
  const auto found = EstimateCensored(expected.code, SetNamed(expected.set), 0);
  ASSERT_TRUE(found);
  EXPECT_LT(found->gradient, 1e-6);
  EXPECT_NEAR(found->estimate.logLikelihood, expected.logLikelihood, 1e-7 * std::abs(expected.logLikelihood));
  for (std::size_t i = 0; i < found->estimate.values.size(); ++i) {
    EXPECT_NEAR(found->estimate.values[i], expected.values[i], tolerance * expected.errors[i]) << i;
    EXPECT_NEAR(found->estimate.standardErrors[i], expected.errors[i], 10 * tolerance * expected.errors[i])
        << i;
  }
}

TEST(CensoredEstimatorReference, AgreesWithSurvreg) {
  struct Row {
    const char* set;
    DistributionCode code;
    double logLikelihood;
    std::vector<double> values;
    std::vector<double> errors;
  };
  const Row rows[] = {
#include "host/numeric/censored/reference/survreg.inc"
  };
  for (const Row& row : rows) ExpectFit({row.set, row.code, row.logLikelihood, row.values, row.errors}, 1e-5);
}

TEST(CensoredEstimatorReference, AgreesWithOptim) {
  const Fit rows[] = {
#include "host/numeric/censored/reference/optim.inc"
  };
  for (const Fit& row : rows) ExpectFit(row, 1e-3);
}

TEST(CensoredEstimatorReference, AgreesWithFitdistcens) {
  const Fit rows[] = {
#include "host/numeric/censored/reference/fitdistcens.inc"
  };
  for (const Fit& row : rows) ExpectFit(row, 1e-3);
}

TEST(CensoredEstimator, RefusesValuesWithoutAMaximum) {
  struct Case {
    const char* why;
    DistributionCode code;
    std::vector<CensoredValue> values;
    EstimationFault fault;
  };
  const auto exact = CensoredValue::Exact;
  const auto right = CensoredValue::Right;
  const auto left = CensoredValue::Left;
  const Case cases[] = {
      {"one value", DistributionCode::kNormal, {exact(1)}, EstimationFault::kTooFewValues},
      {"all right censored",
       DistributionCode::kWeibull,
       {right(1), right(2), right(3)},
       EstimationFault::kNoMaximum},
      {"all left censored",
       DistributionCode::kNormal,
       {left(1), left(2), left(3)},
       EstimationFault::kNoMaximum},
      {"all equal", DistributionCode::kNormal, {exact(2), exact(2), exact(2)}, EstimationFault::kNoMaximum},
      {"below the offset",
       DistributionCode::kWeibull,
       {exact(2), exact(-1)},
       EstimationFault::kValueBelowOffset},
      {"at the offset", DistributionCode::kLogNormal, {exact(2), exact(0)}, EstimationFault::kValueAtOffset}};
  for (const Case& c : cases) {
    CensoredSample sample;
    for (const CensoredValue& value : c.values) sample.Add(value);
    const auto found = EstimateCensored(c.code, sample, 0);
    ASSERT_FALSE(found) << c.why;
    EXPECT_EQ(found.Reason().identifier, c.fault) << c.why;
  }
}

// What a fit to all values finds, and a shift of the data by their unit and offset.
TEST(CensoredEstimator, DoesNotDependOnTheUnits) {
  const CensoredSample& plain = SetNamed("aml");
  CensoredSample moved;
  for (const double x : plain.exact) moved.Add(CensoredValue::Exact(1e6 * x + 5e6));
  for (const double x : plain.right) moved.Add(CensoredValue::Right(1e6 * x + 5e6));
  const auto expected = EstimateCensored(DistributionCode::kWeibull, plain, 0);
  const auto found = EstimateCensored(DistributionCode::kWeibull, moved, 5e6);
  ASSERT_TRUE(expected && found);
  EXPECT_NEAR(found->estimate.values[0], 1e6 * expected->estimate.values[0], 1.0);
  EXPECT_NEAR(found->estimate.values[1], expected->estimate.values[1], 1e-8);
}

// The end of the fitted support lies so near the greatest value that no step in the parameters, however short, is sure to
// stay within.
TEST(CensoredEstimatorReference, FitsManyValuesUpToTheEndOfTheSupport) {
  struct Row {
    DistributionCode of;  // the values
    std::size_t count;
    double logLikelihood;
    std::vector<double> values;
    std::vector<double> errors;
  };
  const Row rows[] = {
#include "host/numeric/censored/reference/long_samples.inc"
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.count);
    const std::vector<double> parameters =
        row.of == DistributionCode::kNormal ? std::vector{10.0, 1.0} : std::vector{100.0, 3.0};
    const AnyDistribution distribution(row.of, parameters, 0);
    CensoredSample sample;
    for (std::size_t i = 0; i < row.count; ++i) {
      const double x = distribution.Quantile((static_cast<double>(i) + 0.5) / static_cast<double>(row.count));
      sample.Add(i % 3 == 0 ? CensoredValue::Right(x) : CensoredValue::Exact(x));
    }
    const auto found = EstimateCensored(DistributionCode::kGeneralExtremeValue, sample, 0);
    ASSERT_TRUE(found);
    EXPECT_LT(found->gradient, 1e-6);
    EXPECT_NEAR(found->estimate.logLikelihood, row.logLikelihood, 1e-4);
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      EXPECT_NEAR(found->estimate.values[i], row.values[i], 1e-5 * row.errors[i]) << i;
      EXPECT_NEAR(found->estimate.standardErrors[i], row.errors[i], 1e-5 * row.errors[i]) << i;
    }
  }
}

TEST(SurvivalCurveReference, AgreesWithSurvfit) {
  struct Row {
    const char* set;
    double at;
    double probability;
  };
  const Row rows[] = {
#include "host/numeric/censored/reference/curves.inc"
  };
  std::map<std::string, std::vector<SurvivalStep>> curves;
  for (const Row& row : rows) {
    double probability = 0;
    const auto [curve, isNew] = curves.try_emplace(row.set);
    if (isNew) curve->second = SurvivalCurve(SetNamed(row.set));
    for (const SurvivalStep& step : curve->second) {
      if (step.to <= row.at) probability = step.after;
    }
    EXPECT_NEAR(probability, row.probability, 1e-5) << row.set << " " << row.at;
  }
}

TEST(SurvivalCurve, TurnbullIsKaplanMeierWithoutIntervals) {
  const CensoredSample& aml = SetNamed("aml");
  const auto expected = SurvivalCurve(aml);
  CensoredSample wide = aml;
  wide.Add({-1000, 1000});  // says nothing but asks for Turnbull's
  const auto found = SurvivalCurve(wide);
  ASSERT_GE(found.size(), expected.size());
  const auto positions = PlottingPositions(expected);
  EXPECT_EQ(positions.size(), expected.size());
  EXPECT_DOUBLE_EQ(positions[0].probability, (expected[0].before + expected[0].after) / 2);
  for (std::size_t i = 0; i + 1 < expected.size(); ++i) {
    EXPECT_EQ(found[i].to, expected[i].to);
    EXPECT_NEAR(found[i].after, expected[i].after, 0.01) << i;
  }
}

}  // namespace
}  // namespace brenvolt
