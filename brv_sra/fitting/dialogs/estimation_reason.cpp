#include "brv_sra/fitting/dialogs/estimation_reason.h"

#include <cmath>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"
#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"

namespace brenvolt::sra {
namespace {

// The text of a fault that has nothing to tell beside what it is about and its detail.
std::int32_t TextOf(const brenvolt::Fault<EstimationFault>& fault) {
  using enum EstimationFault;
  switch (fault.identifier) {
    case kNoValues:
      return kReasonNoValues;
    case kTooFewValues:
      return kReasonTooFewValues;
    case kValueAtOffset:
      return kReasonAtOffset;
    case kValueBelowOffset:
      return kReasonBelowOffset;
    case kNoSpread:
      return kReasonNoSpread;
    case kEqualPercentiles:
      return kReasonEqualPercentiles;
    case kNotFinite:
      return kReasonNotFinite;
    case kNoMaximum:
      return kReasonNoMaximum;
    case kNoSolution:
      return fault.about.empty() ? kReasonNoMaximumNorMoments : kReasonNoJohnson;
    case kTooManyComponents:
      return kReasonTooManyComponents;
    case kInvalidArgument:
      return kReasonInvalidArgument;
    case kNoConvergence:
      return kReasonNoConvergence;
    case kSumVanishes:
      return kReasonSumVanishes;
    case kPowerOverflows:
      return kReasonPowerOverflows;
    case kInvalidTrials:
      return kReasonInvalidTrials;
    case kFraction:
      return kReasonFraction;
    case kNegativeCount:
      return kReasonNegativeCount;
    case kAboveTrials:
      return kReasonAboveTrials;
    case kNeitherZeroNorOne:
      return kReasonZeroOrOne;
    case kAllZero:
      return kReasonAllZero;
    case kUndefinedLogarithm:
      return fault.detail == "0" ? kReasonNotPositive : kReasonOffsetNoHelp;
    case kMeansNotSet:
      return kReasonMeansNotSet;
  }
  return kReasonInvalidArgument;
}

bool BeginsAtAValue(const VariableFit& variable, const DistributionFit& fit) {
  if (!HasOffset(fit.specification.code)) return false;
  const double offset = fit.specification.offset;
  return variable.moments.minimum == (IsNotSet(offset) ? 0 : offset);
}

std::string NoteOnComponents(const VariableFit& variable, const DistributionFit& fit) {
  const std::vector<double>& values = fit.specification.values;
  const auto count = static_cast<double>(variable.moments.count);
  const auto component = NearSpike(values, count);
  if (!component) return {};
  return FormatResource(kNoteNearSpike, std::to_string(*component + 1),
                        FormatNumber("%.3g", values[3 * *component] * count));
}

}  // namespace

std::string FailureReason(const DistributionFit& fit) {
  if (!fit.fault) return {};
  std::string about = fit.fault->about;
  if (fit.faultyCase > 0) about += FormatResource(kReasonInCase, std::to_string(fit.faultyCase));
  return FormatResource(TextOf(*fit.fault), about, fit.fault->detail);
}

std::string FailureReason(const VariableFit& variable) {
  if (variable.fault) {
    const FaultMessage message = MessageOf(*variable.fault);
    return message.text + " (" + message.where + ")";
  }
  if (!variable.invalid) return {};
  const Moments& moments = variable.moments;
  const bool varies = moments.minimum < moments.maximum;
  return std::string(ResourceString(moments.count == 0   ? kReasonNoValidValues
                                    : moments.count == 1 ? kReasonSingleValue
                                    : varies             ? kReasonVarianceVanishes
                                                         : kReasonAllEqual));
}

std::string NoteOn(const VariableFit& variable, const DistributionFit& fit) {
  if (!fit.IsValid()) return {};
  const DistributionCode code = fit.specification.code;
  const bool isFromMoments = fit.origin == EstimateOrigin::kMoments;
  if (code == DistributionCode::kGaussianMixture) return NoteOnComponents(variable, fit);
  std::string note;
  const auto add = [&note](bool applies, std::int32_t text) {
    if (applies) note += (note.empty() ? "" : "; ") + std::string(ResourceString(text));
  };
  const bool isJohnson = code == DistributionCode::kJohnson;
  add(isFromMoments && !isJohnson, kNoteNoMaximum);
  add(isFromMoments && isJohnson && fit.bootstrap.samples > 0, kNoteJohnsonBootstrap);
  add(BeginsAtAValue(variable, fit), kNoteValueAtOffset);
  return note;
}

}  // namespace brenvolt::sra
