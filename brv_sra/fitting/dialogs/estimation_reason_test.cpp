#include "brv_sra/fitting/dialogs/estimation_reason.h"

#include <gtest/gtest.h>

#include <string>

namespace brenvolt::sra {
namespace {

using enum EstimationFault;
using EstimateFault = brenvolt::Fault<EstimationFault>;

TEST(EstimationReason, EveryFaultHasItsSentenceWithItsFacts) {
  struct Case {
    EstimateFault fault;
    std::int64_t faultyCase;
    const char* reason;
  };
  const Case cases[] = {
      {{kNoValues}, 0, "there is no value"},
      {{kTooFewValues, "3", "4"}, 0, "too few values: 3, where at least 4 are needed"},
      {{kValueAtOffset, "2"}, 7, "the value 2 in case 7 equals the offset"},
      {{kValueBelowOffset, "1.5", "2"}, 7, "the value 1.5 in case 7 is below the offset 2"},
      {{kNoSpread}, 0, "all values are equal, or nearly so"},
      {{kNotFinite}, 0, "the result is beyond the range of numbers; state the data in other units"},
      {{kNoMaximum, "3"},
       0,
       "the likelihood of 3 components has no maximum: a component shrinks to single values"},
      {{kNoSolution},
       0,
       "the likelihood has no maximum, and no member of the family has the moments of the data"},
      {{kNoSolution, "2", "1"}, 0, "no Johnson distribution has the skewness 2 and the kurtosis 1"},
      {{kTooManyComponents, "3", "5"}, 0, "3 components need at least twice as many values; there are 5"},
      {{kNoConvergence}, 0, "the search for the shape does not converge"},
      {{kInvalidTrials, "0"}, 0, "the number of trials 0 is below 1"},
      {{kFraction, "2.5"}, 7, "the counts have a fraction: 2.5 in case 7"},
      {{kNegativeCount, "-1"}, 1, "a count is below 0: -1 in case 1"},
      {{kAboveTrials, "3", "2"}, 4, "the value 3 in case 4 is above the number of trials 2"},
      {{kNeitherZeroNorOne, "2"}, 4, "the value 2 in case 4 is neither 0 nor 1"},
      {{kAllZero}, 0, "all values are 0"},
      {{kUndefinedLogarithm, "-1", "0"}, 2, "the value -1 in case 2 is not above 0"},
      {{kUndefinedLogarithm, "-1", "-10"},
       2,
       "the value -1 in case 2 is not above 0, even after subtracting the offset -10"},
      {{kMeansNotSet}, 0, "the first parameter is -444, which is reserved for a missing value"},
  };
  for (const Case& c : cases) {
    DistributionFit fit;
    fit.fault = c.fault;
    fit.faultyCase = c.faultyCase;
    EXPECT_EQ(FailureReason(fit), c.reason);
  }
  EXPECT_EQ(FailureReason(DistributionFit()), "");
}

TEST(EstimationReason, VariableWithoutFitsSaysWhy) {
  VariableFit variable;
  EXPECT_EQ(FailureReason(variable), "");
  variable.invalid = true;
  EXPECT_EQ(FailureReason(variable), "no valid values");
  variable.moments.count = 3;
  EXPECT_EQ(FailureReason(variable), "all values equal");
  variable.moments.minimum = 1e-300;
  variable.moments.maximum = 2e-300;
  EXPECT_NE(FailureReason(variable).find("too small to be numbers"), std::string::npos);
  variable.fault = Fault{FaultIdentifier::kInfiniteValue, "x", "2"};
  EXPECT_EQ(FailureReason(variable),
            "variable x contains an infinite value (case 2; leave the case out or make the value missing)");
}

TEST(EstimationReason, NotesSayWhatSpeaksAgainstAFit) {
  VariableFit variable;
  variable.moments.count = 50;
  DistributionFit fit;
  fit.specification.code = DistributionCode::kGeneralPareto;
  fit.specification.values = {1, -2};
  fit.origin = EstimateOrigin::kLikelihood;
  EXPECT_EQ(NoteOn(variable, fit), "");
  fit.origin = EstimateOrigin::kMoments;
  EXPECT_EQ(NoteOn(variable, fit), "estimated from moments, as the likelihood has no maximum");

  variable.moments.minimum = 2;
  fit.specification.offset = 2;
  EXPECT_EQ(NoteOn(variable, fit),
            "estimated from moments, as the likelihood has no maximum; a value equals the offset; the "
            "Anderson-Darling "
            "test counts it as if the probability below it were 1.1e-16, not 0");
  fit.specification.code = DistributionCode::kHalfNormal;
  fit.specification.offset = 1.5;
  fit.origin = EstimateOrigin::kLikelihood;
  EXPECT_EQ(NoteOn(variable, fit), "");

  fit.specification.code = DistributionCode::kGaussianMixture;
  fit.specification.values = {0.94, 0, 1, 0.06, 0.3, 0.01};
  EXPECT_EQ(NoteOn(variable, fit),
            "component 2 describes some 3 values that lie close together, rather than the distribution");
  fit.specification.values = {kNotSet};
  EXPECT_EQ(NoteOn(variable, fit), "") << "a failed fit has a reason instead";

  fit.specification.code = DistributionCode::kJohnson;
  fit.specification.values = {2, 0, 1, 1, 0};
  fit.origin = EstimateOrigin::kMoments;
  EXPECT_EQ(NoteOn(variable, fit), "");
  fit.bootstrap.samples = 99;
  EXPECT_NE(NoteOn(variable, fit), "");
  fit.origin = EstimateOrigin::kPercentiles;
  EXPECT_EQ(NoteOn(variable, fit), "");
}

}  // namespace
}  // namespace brenvolt::sra
