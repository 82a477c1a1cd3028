#include "brv_sra/distributions/validity.h"

#include <cmath>
#include <string>

#include "brv_sra/distributions/catalogue.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/rules/value_rules.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

bool IsGiven(double x) {
  return std::isfinite(x) && !IsNotSet(x);
}

ValidityFault ParameterFault(DistributionCode code, std::size_t index, std::size_t place) {
  const DistributionFacts& facts = Facts(code);
  return {{FaultIdentifier::kInvalidParameter, std::string(facts.parameters[place].name),
           std::string(CompactKey(code))},
          index};
}

bool IsProportion(ParameterRange range) {
  return range == ParameterRange::kProportion || range == ParameterRange::kPositiveProportion;
}

ValidityFault ParameterFault(DistributionCode code, std::size_t index, double value, CheckPurpose purpose) {
  const std::size_t place = index % Facts(code).ParameterCount();
  const ParameterRange range = Facts(code).parameters[place].range;
  if (range == ParameterRange::kTrials && purpose == CheckPurpose::kSimulation)
    return {{FaultIdentifier::kInvalidTrials}, index};
  ValidityFault fault = ParameterFault(code, index, place);
  const bool isCalledProportion = IsProportion(range) && code != kGaussianMixture;
  if (isCalledProportion && IsGiven(value)) fault.fault.identifier = FaultIdentifier::kInvalidProportion;
  return fault;
}

// The rules about several values of a distribution, once each value is in its range.
std::optional<ValidityFault> CheckTogether(DistributionCode code, std::span<const double> values) {
  const auto broken = BrokenRule(code, values);
  if (!broken) return std::nullopt;
  switch (*broken) {
    case ValueRule::kMinUpToMode:
      return ParameterFault(code, 0, 0);
    case ValueRule::kModeUpToMax:
      return ParameterFault(code, 2, 1);
    case ValueRule::kGroupCount:
      return ValidityFault{{FaultIdentifier::kInvalidMixtureCount}, values.size()};
    case ValueRule::kTotalProportion:
      if (code == kGaussianMixture) return ParameterFault(code, values.size(), 0);
      return ValidityFault{{FaultIdentifier::kInvalidTotalProportion}, values.size()};
    case ValueRule::kOther:
      break;
  }
  return std::nullopt;
}

}  // namespace

std::optional<ValidityFault> CheckValue(DistributionCode code, std::size_t index, double value,
                                        CheckPurpose purpose) {
  const DistributionFacts& facts = Facts(code);
  const bool isValid =
      IsGiven(value) && IsInRange(value, facts.parameters[index % facts.ParameterCount()].range);
  if (isValid) return std::nullopt;
  return ParameterFault(code, index, value, purpose);
}

std::optional<ValidityFault> CheckValues(DistributionCode code, std::span<const double> values,
                                         CheckPurpose purpose) {
  const DistributionFacts& facts = Facts(code);
  const std::size_t groupSize = facts.ParameterCount();
  const std::size_t groups = facts.isUserDefined ? (values.size() + groupSize - 1) / groupSize : 1;
  if (code == kGaussianMixture && !GroupCountsOf(code).Contains(groups))
    return ValidityFault{{FaultIdentifier::kInvalidMixtureCount}, values.size()};
  const std::size_t expected = groups * groupSize;
  for (std::size_t i = 0; i < expected; ++i) {
    if (auto fault = CheckValue(code, i, i < values.size() ? values[i] : kNotSet, purpose)) return fault;
  }
  if (values.size() > expected) return ParameterFault(code, expected, groupSize - 1);
  return CheckTogether(code, values);
}

std::optional<ValidityFault> CheckSpecification(const DistributionSpecification& specification,
                                                CheckPurpose purpose) {
  if (auto fault = CheckValues(specification.code, specification.values, purpose)) return fault;
  if (!HasOffset(specification.code) || IsGiven(specification.offset)) return std::nullopt;
  return ValidityFault{{FaultIdentifier::kInvalidOffset}, specification.values.size()};
}

}  // namespace brenvolt::sra
