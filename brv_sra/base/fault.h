// What can go wrong in the engines of the module. One table holds the texts (frame/fault_message.h).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "host/base/result.h"

namespace brenvolt::sra {

enum class FaultIdentifier : std::uint8_t {
  // A distribution is told by its key. The values of one: about the name of a parameter, the detail is the
  // distribution.
  kInvalidParameter,
  kInvalidProportion,
  kInvalidTrials,  // of a simulation; about nothing, as the next ones
  kInvalidMixtureCount,
  kInvalidTotalProportion,
  kInvalidOffset,
  // The distributions that a variable keeps as properties. The first is about the variable and has one of the
  // others for its cause.
  kInvalidProperties,
  kTruncationPropertyInvalid,
  kOrderPropertyInvalid,
  kOrderCountsDiffer,
  kPropertyMissing,       // about the property
  kPropertyValueMissing,  // the same, the detail is the variable
  kPropertyValuesInvalid,
  kStoredLocationInvalid,  // about the distribution, the detail is the number of the variable, as the next ones
  kStoredScaleInvalid,
  kStoredShapeInvalid,
  kStoredOffsetInvalid,
  kStoredProportionInvalid,
  kStoredMeanInvalid,
  kStoredTrialsInvalid,
  // A correlation matrix file.
  kNotAMatrixFile,
  kMatrixOfOtherType,  // covariances or another known type
  kMatrixLacksCases,
  kMatrixLacksCorrelation,  // one is missing or out of range
  kMatrixLacksMean,
  kMatrixReadingCancelled,
  kMatrixMeansDeselected,  // by the case selection
  kMatrixLacksStandardDeviation,
  kMatrixDeviationsDeselected,  // or the number of cases
  kMatrixLacksValidCases,
  kMatrixSizesDiffer,  // the values are not as many as the variables ask for
  // A fit.
  kDataTooLarge,
  kWeightsAreText,  // about the variable, as the next ones
  kWeightNotWhole,  // the detail is the number of the case
  kWeightsTooLarge,
  kInfiniteValue,         // the detail is the number of the case
  kPercentilesNotFitted,  // the Johnson distribution, as is the next
  kTooFewForPercentiles,  // the detail is the number of values
  kNoValidVariables,      // the detail says why
  // What is saved of fits; about a distribution, the detail is the variable.
  kDistributionTwice,
  kDistributionNotFitted,
  kDistributionOfOtherKind,
  kInvalidOwnValues,         // about the variable, with its cause
  kTruncationLacksBound,     // about the variable
  kTruncationBoundsCrossed,  // the same
  // A simulation.
  kDistributionMissing,        // of a variable whose fits all failed
  kNotSampled,                 // no variable, or one that cannot be sampled
  kTruncationNotSampled,       // about the variable, the detail describes its distribution
  kSampleBeyondLargestNumber,  // the same
  kReorderingEnded,            // about an error in showing progress, by its text
  kCorrelationMissing,         // about one variable, the detail is the other
  kCorrelationsUnusable,
  // A design of the profiler; about a predictor or a dependent.
  kNoRandomPredictor,
  kFixedValueNotFinite,
  kInvalidPredictor,             // with its cause
  kNothingPredicts,              // the dependent has neither a formula nor a model
  kPredictedFromItself,          // the dependent, by way of others or directly
  kFormulaInvalid,               // the detail says why
  kFormulaPredictorUnspecified,  // about the dependent, the detail is the predictor
  kModelPredictorUnspecified,    // about the predictor, the detail is the model
  kInvalidNoise,
  kSingularNoise,
  // Models, formulas and data of the profiler.
  kInvalidFileNames,
  kFieldTypesDiffer,  // between two models, of a predictor
  kNoPredictorFitted,
  // What stops nothing: data that are not used, a correlation that is taken as 0.
  kInfiniteData,
  kNoValidData,
  kCorrelationUndefined,  // about one predictor, the detail is the other
  kUnknownClasses,        // about the predictor, the detail is their list
};

using Fault = brenvolt::Fault<FaultIdentifier>;
template <class T>
using Result = brenvolt::Result<T, FaultIdentifier>;

inline Fault CausedBy(Fault cause, FaultIdentifier identifier, std::string about) {
  return {identifier, std::move(about), {}, std::make_shared<const Fault>(std::move(cause))};
}

}  // namespace brenvolt::sra
