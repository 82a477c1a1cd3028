#include "brv_sra/frame/fault_message.h"

#include <gtest/gtest.h>

#include "brv_sra/resources/resource_numbers.h"

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;

TEST(FaultMessage, TextAndPlaceTakeWhatTheFaultIsAbout) {
  const struct {
    Fault fault;
    std::string_view text, where;
  } rows[] = {
      {{kNotAMatrixFile}, "", ""},
      {{kMatrixLacksMean}, "Mean error", ""},
      {{kMatrixReadingCancelled}, "User cancelled the progress while reading mean.", ""},
      {{kMatrixDeviationsDeselected},
       "Case selection condition disabled variables' standard deviation information",
       ""},
      {{kTruncationNotSampled, "c", "Normal(1, -1)"},
       "Simulation failed.  Please review best fitting distributions for appropriate parameters.",
       "variable c: there is nothing to draw from Normal(1, -1), within its bounds if it has any"},
      {{kCorrelationMissing, "b", "{about}"},
       "Simulation failed. Please check the correlation matrix.",
       "the correlation of b and {about} is missing"},
      {{kWeightNotWhole, "w", "3"},
       "Case weights should be integer. Please check and enter a valid case weight variable.",
       "variable w, case 3"},
      {{kWeightsTooLarge, "w"},
       "Too large dataset. Please consider to input a smaller dataset.",
       "the weights in variable w add up to too many cases"},
      {{kInfiniteValue, "x", "2"},
       "variable x contains an infinite value",
       "case 2; leave the case out or make the value missing"},
      {{kPercentilesNotFitted, "x"},
       "the Johnson distribution cannot be fitted from percentiles",
       "variable x; too many values are equal: fit it from moments or leave it out"},
      {{kTooFewForPercentiles, "x", "7"},
       "the Johnson distribution cannot be fitted from percentiles",
       "variable x; fewer than 8 values for percentiles: there are 7"},
      {{kNoValidVariables, "", "x: all values equal"},
       "No valid variables to proceed with the analysis",
       "x: all values equal"},
      {{kTruncationBoundsCrossed, "x"},
       "The truncation minimum of variable x must be less than its maximum.",
       ""},
      {CausedBy({kInvalidParameter, "scale", "Normal"}, kInvalidPredictor, "A"),
       "Invalid scale parameter entry for Normal distribution. ", "variable A"},
      {{kInvalidParameter, "delta", "Johnson"},
       "Invalid shape 2 parameter entry for Johnson distribution. ",
       ""},
      {{kInvalidParameter, "proportion", "GaussianMixture"},
       "Invalid mixing coefficient parameter entry for Gaussian Mixture distribution. ",
       ""},
      {CausedBy({kInvalidProportion, "proportion", "Binomial"}, kInvalidOwnValues, "x"),
       "Invalid proportion parameter entry for Binomial distribution. Proportion should be between 0 and 1.",
       "x"},
      {{kInvalidTrials},
       "Invalid number of trials. Please check to have the number of trials greater than 0.",
       ""},
      {{kInvalidMixtureCount}, "Invalid number of mixtures. Valid Range is 1<x<21", ""},
      {{kInvalidTotalProportion},
       "Invalid total proportion. Total proportion of the discrete distribution should be equal to 1.",
       ""},
      {CausedBy({kPropertyMissing, "Weibull"}, kInvalidProperties, "x"),
       "Weibull in order of distribution property has its parameter property missing.", "x"},
      {CausedBy({kPropertyValueMissing, "Normal", "x"}, kInvalidProperties, "x"),
       "Normal distribution property exists for variable x but its value is missing.", "x"},
      {{kDistributionTwice, "LogNormal", "x"},
       "Log Normal appears twice in the order of distributions of variable x.",
       ""},
      {CausedBy({kStoredShapeInvalid, "Weibull", "3"}, kInvalidProperties, "x"),
       "Invalid shape value for Weibull distribution of variable 3. Please check the variable's properties "
       "to "
       "have a valid shape value.",
       "x"},
      {{kFixedValueNotFinite, "A"}, "Please specify a distribution for A", "the fixed value is not finite"},
      {{kNothingPredicts, "Y"}, "Please check the formula for Y", "there is neither a formula nor a model"},
      {{kFormulaPredictorUnspecified, "Y", "C"},
       "Please check the formula for Y",
       "no distribution is specified for 'C'"},
      {{kModelPredictorUnspecified, "A", "forest"}, "Please specify a distribution for A", "model forest"},
      {{kInvalidNoise, "Y"}, "Please set a valid standard deviation of the noise of Y", ""},
      {{kPredictedFromItself, "Y"}, "Please check the formula for Y", "it is predicted from itself"},
      {{kCorrelationUndefined, "A", "B"}, "Correlation Failed!", "A, B"},
      {{kMatrixSizesDiffer},
       "Invalid correlation matrix. Please check the validity of the input correlation matrix.",
       "the values do not match the number of variables"},
  };
  for (const auto& row : rows) {
    const FaultMessage message = MessageOf(row.fault);
    EXPECT_EQ(message.text, row.text);
    EXPECT_EQ(message.where, row.where) << row.text;
  }
}

TEST(FaultMessage, OnlyNotesHaveTheirOwnCaption) {
  EXPECT_EQ(MessageOf({kCorrelationUndefined}).caption, kCaptionCorrelationsError);
  EXPECT_EQ(MessageOf({kNoPredictorFitted}).caption, 0);
}

TEST(FaultMessage, AutomationGetsTheMessageAsAnException) {
  try {
    ValueOrThrow(Result<int>(Fault{kMatrixLacksValidCases}));
    FAIL();
  } catch (const CDispatchException& error) {
    EXPECT_STREQ(error.what(), "Valid cases error");
  }
  EXPECT_EQ(ValueOrThrow(Result<int>(7)), 7);
}

}  // namespace
}  // namespace brenvolt::sra
