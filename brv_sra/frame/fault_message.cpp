#include "brv_sra/frame/fault_message.h"

#include <algorithm>
#include <string_view>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;

// How a text takes what the fault is about.
enum class Form : std::uint8_t {
  kPlain,         // not at all
  kInserted,      // in the places of its conversions, the detail after what it is about
  kDistribution,  // the same, where it is about a distribution, told by its key
  kParameter,     // the same, where it is about a parameter of the distribution that the detail tells
  kAppended,      // at its end
  kCause          // the cause has the text
};

struct Row {
  FaultIdentifier identifier;
  std::int32_t resource;  // 0 for a fault that is not shown
  Form form = Form::kPlain;
  std::string_view where = {};  // with {about} and {detail}
  std::int32_t caption = 0;
  std::int32_t continuation = 0;  // a text that follows it
};

// In the order of the identifiers.
constexpr Row kRows[] = {
    {kInvalidParameter, kMsgInvalidParameter, Form::kParameter},
    {kInvalidProportion, kMsgInvalidParameter, Form::kParameter, {}, 0, kMsgProportionRange},
    {kInvalidTrials, kMsgInvalidTrialsInSimulation},
    {kInvalidMixtureCount, kMsgInvalidMixtureCount},
    {kInvalidTotalProportion, kMsgInvalidTotalProportion},
    {kInvalidOffset, kMsgInvalidOffsets},
    {kInvalidProperties, 0, Form::kCause, "{about}"},
    {kTruncationPropertyInvalid, kMsgInvalidTruncationProperty},
    {kOrderPropertyInvalid, kMsgInvalidOrderProperty},
    {kOrderCountsDiffer, kMsgOrderCountMismatch},
    {kPropertyMissing, kMsgPropertyMissing, Form::kInserted},
    {kPropertyValueMissing, kMsgPropertyValueMissing, Form::kInserted},
    {kPropertyValuesInvalid, kMsgInvalidPropertyValues},
    {kStoredLocationInvalid, kMsgStoredLocationInvalid, Form::kDistribution},
    {kStoredScaleInvalid, kMsgStoredScaleInvalid, Form::kDistribution},
    {kStoredShapeInvalid, kMsgStoredShapeInvalid, Form::kDistribution},
    {kStoredOffsetInvalid, kMsgStoredOffsetInvalid, Form::kDistribution},
    {kStoredProportionInvalid, kMsgStoredProportionInvalid, Form::kDistribution},
    {kStoredMeanInvalid, kMsgStoredMeanInvalid, Form::kDistribution},
    {kStoredTrialsInvalid, kMsgStoredTrialsInvalid, Form::kDistribution},
    {kNotAMatrixFile, 0},
    {kMatrixOfOtherType, kMsgMatrixWrongType},
    {kMatrixLacksCases, kMsgMatrixCases},
    {kMatrixLacksCorrelation, kMsgMatrixInvalid},
    {kMatrixLacksMean, kMsgMatrixMean},
    {kMatrixReadingCancelled, kMsgMatrixReadCancelled},
    {kMatrixMeansDeselected, kMsgMatrixMeansDeselected},
    {kMatrixLacksStandardDeviation, kMsgMatrixStandardDeviation},
    {kMatrixDeviationsDeselected, kMsgMatrixDeviationsDeselected},
    {kMatrixLacksValidCases, kMsgMatrixValidCases},
    {kMatrixSizesDiffer, kMsgMatrixInvalid, Form::kPlain, "the values do not match the number of variables"},
    {kDataTooLarge, kMsgDatasetTooLarge},
    {kWeightsAreText, kMsgWeightsNotIntegers, Form::kPlain, "variable {about}"},
    {kWeightNotWhole, kMsgWeightsNotIntegers, Form::kPlain, "variable {about}, case {detail}"},
    {kWeightsTooLarge, kMsgDatasetTooLarge, Form::kPlain,
     "the weights in variable {about} add up to too many cases"},
    {kInfiniteValue, kMsgInfiniteValue, Form::kInserted,
     "case {detail}; leave the case out or make the value missing"},
    {kPercentilesNotFitted, kMsgPercentilesNotFitted, Form::kPlain,
     "variable {about}; too many values are equal: fit it from moments or leave it out"},
    {kTooFewForPercentiles, kMsgPercentilesNotFitted, Form::kPlain,
     "variable {about}; fewer than 8 values for percentiles: there are {detail}"},
    {kNoValidVariables, kMsgNoValidVariables, Form::kPlain, "{detail}"},
    {kDistributionTwice, kMsgOrderTwice, Form::kDistribution},
    {kDistributionNotFitted, kMsgOrderUnknown, Form::kDistribution},
    {kDistributionOfOtherKind, kMsgOrderKind, Form::kDistribution},
    {kInvalidOwnValues, 0, Form::kCause, "{about}"},
    {kTruncationLacksBound, kMsgTruncationBound, Form::kInserted},
    {kTruncationBoundsCrossed, kMsgTruncationCrossed, Form::kInserted},
    {kDistributionMissing, kMsgInvalidOrderProperty},
    {kNotSampled, kMsgSimulationFailedDistributions},
    {kTruncationNotSampled, kMsgSimulationFailedDistributions, Form::kPlain,
     "variable {about}: there is nothing to draw from {detail}, within its bounds if it has any"},
    {kSampleBeyondLargestNumber, kMsgSimulationFailedDistributions, Form::kPlain,
     "variable {about}, {detail} reaches beyond the largest number"},
    {kReorderingEnded, kMsgSimulationFailedDistributions},
    {kCorrelationMissing, kMsgSimulationFailedMatrix, Form::kPlain,
     "the correlation of {about} and {detail} is missing"},
    {kCorrelationsUnusable, kMsgSimulationFailedMatrix},
    {kNoRandomPredictor, kMsgProfilerNoRandomPredictor},
    {kFixedValueNotFinite, kMsgProfilerNoSpecification, Form::kAppended, "the fixed value is not finite"},
    {kInvalidPredictor, 0, Form::kCause, "variable {about}"},
    {kNothingPredicts, kMsgProfilerCheckFormula, Form::kAppended, "there is neither a formula nor a model"},
    {kPredictedFromItself, kMsgProfilerCheckFormula, Form::kAppended, "it is predicted from itself"},
    {kFormulaInvalid, kMsgProfilerCheckFormula, Form::kAppended, "{detail}"},
    {kFormulaPredictorUnspecified, kMsgProfilerCheckFormula, Form::kAppended,
     "no distribution is specified for '{detail}'"},
    {kModelPredictorUnspecified, kMsgProfilerNoSpecification, Form::kAppended, "model {detail}"},
    {kInvalidNoise, kMsgProfilerNoiseDeviation, Form::kAppended},
    {kSingularNoise, kMsgProfilerSingularNoise},
    {kInvalidFileNames, kMsgProfilerFileNames},
    {kFieldTypesDiffer, kMsgProfilerFieldTypes, Form::kInserted},
    {kNoPredictorFitted, kMsgProfilerNothingToFit},
    {kInfiniteData, kMsgProfilerInfiniteValue, Form::kPlain, "variable {about}", kCaptionBasicStatsError},
    {kNoValidData, kMsgProfilerNoValues, Form::kPlain, "variable {about}", kCaptionRangeError},
    {kCorrelationUndefined, kMsgProfilerCorrelationFailed, Form::kPlain, "{about}, {detail}",
     kCaptionCorrelationsError},
    {kUnknownClasses, kMsgProfilerUnknownClasses, Form::kInserted},
};
static_assert([] {
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    if (static_cast<std::size_t>(kRows[i].identifier) != i) return false;
  }
  return true;
}());

// A key that is none stays as it is.
std::string_view NameOf(const std::string& distribution) {
  const auto code = CodeFromKey(distribution);
  return code ? DisplayName(*code) : distribution;
}

std::string_view WordOf(const std::string& parameter, const std::string& distribution) {
  const auto code = CodeFromKey(distribution);
  return code ? ResourceString(TextsOf(*code, parameter).word) : parameter;
}

std::string TextOf(const Row& row, const Fault& fault) {
  switch (row.form) {
    case Form::kPlain:
      return std::string(ResourceString(row.resource));
    case Form::kInserted:
      return FormatResource(row.resource, fault.about, fault.detail);
    case Form::kDistribution:
      return FormatResource(row.resource, NameOf(fault.about), fault.detail);
    case Form::kParameter:
      return FormatResource(row.resource, WordOf(fault.about, fault.detail), NameOf(fault.detail)) +
             std::string(ResourceString(row.continuation));
    case Form::kAppended:
      return std::string(ResourceString(row.resource)) + fault.about;
    case Form::kCause:
      return MessageOf(*fault.cause).text;
  }
  return {};
}

std::string Filled(std::string_view pattern, const Fault& fault) {
  std::string text;
  while (!pattern.empty()) {
    const std::size_t open = std::min(pattern.find('{'), pattern.size());
    text += pattern.substr(0, open);
    if (open == pattern.size()) break;
    const std::size_t close = pattern.find('}', open);
    text += pattern.substr(open, close - open + 1) == "{about}" ? fault.about : fault.detail;
    pattern.remove_prefix(close + 1);
  }
  return text;
}

}  // namespace

FaultMessage MessageOf(const Fault& fault) {
  const Row& row = kRows[static_cast<std::size_t>(fault.identifier)];
  return {TextOf(row, fault), Filled(row.where, fault), row.caption};
}

void ShowFault(const CAnalysisSupport& analysis, const Fault& fault, MessageKind kind) {
  const FaultMessage message = MessageOf(fault);
  if (message.text.empty()) return;
  analysis.ShowMessage({message.text, message.where, std::string(ResourceString(message.caption)),
                        MessageButtons::kOk, MessageIcon::kWarning, kind});
}

void ThrowFault(const Fault& fault) {
  FaultMessage message = MessageOf(fault);
  throw CDispatchException(message.text, std::move(message.where));
}

}  // namespace brenvolt::sra
