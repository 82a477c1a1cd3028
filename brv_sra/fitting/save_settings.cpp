#include "brv_sra/fitting/save_settings.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/validity.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;
using Codes = std::span<const DistributionCode>;

Fault Refusal(FaultIdentifier fault, DistributionCode code, const VariableFit& variable) {
  return {fault, std::string(CompactKey(code)), variable.name};
}

Result<void> CheckDistinct(Codes order, const VariableFit& variable) {
  for (const DistributionCode code : order) {
    if (std::ranges::count(order, code) > 1) return Refusal(kDistributionTwice, code, variable);
  }
  return {};
}

auto FindUserDefined(const VariableFit& variable, DistributionCode code) {
  return std::ranges::find(variable.saving.userDefined, code, &DistributionSpecification::code);
}

// The valid fit of a distribution as an index; the number of fits if there is none.
std::size_t FindValidFit(const VariableFit& variable, DistributionCode code) {
  const auto found = std::ranges::find_if(variable.fits, [code](const DistributionFit& fit) {
    return fit.specification.code == code && fit.IsValid();
  });
  return static_cast<std::size_t>(found - variable.fits.begin());
}

// A bound as it reads back from its property.
double AsStored(double bound) {
  return ParseNumber(FormatNumber("%e", bound)).value_or(bound);
}

bool IsBound(double value) {
  return std::isfinite(value) && !IsNotSet(value);
}

bool IsLastResort(const VariableFit& variable, const DistributionFit& fit) {
  return fit.specification.code == DistributionCode::kHistogram ||
         (variable.contradictedLast && fit.IsContradicted());
}

}  // namespace

std::vector<std::size_t> DefaultOrder(const VariableFit& variable) {
  std::vector<std::size_t> order;
  std::vector<std::size_t> lastResorts;
  for (const std::size_t index : variable.ranked) {
    const DistributionFit& fit = variable.fits[index];
    if (!fit.IsValid()) continue;
    (IsLastResort(variable, fit) ? lastResorts : order).push_back(index);
  }
  return order.empty() ? lastResorts : order;
}

std::vector<std::size_t> SavedOrder(const VariableFit& variable) {
  return variable.saving.order.empty() ? DefaultOrder(variable) : variable.saving.order;
}

Result<void> SetSavedOrder(VariableFit& variable, Codes order) {
  if (auto distinct = CheckDistinct(order, variable); !distinct) return distinct;
  std::vector<std::size_t> indices;
  for (const DistributionCode code : order) {
    indices.push_back(FindValidFit(variable, code));
    if (indices.back() == variable.fits.size()) return Refusal(kDistributionNotFitted, code, variable);
  }
  variable.saving.order = std::move(indices);
  return {};
}

std::vector<DistributionCode> CodesOf(const VariableFit& variable, std::span<const std::size_t> fits) {
  std::vector<DistributionCode> codes;
  for (const std::size_t index : fits) codes.push_back(variable.fits[index].specification.code);
  return codes;
}

std::string OrderText(Codes order) {
  std::string text;
  for (const DistributionCode code : order) text += std::string(SpacedKey(code)) + ";";
  return text;
}

const DistributionSpecification* UserDefinedSpecification(const VariableFit& variable,
                                                          DistributionCode code) {
  const auto own = FindUserDefined(variable, code);
  if (own != variable.saving.userDefined.end()) return &*own;
  const std::size_t fit = FindValidFit(variable, code);
  return fit < variable.fits.size() ? &variable.fits[fit].specification : nullptr;
}

bool HasUserDefinedValues(const VariableFit& variable, DistributionCode code) {
  return FindUserDefined(variable, code) != variable.saving.userDefined.end();
}

Result<void> SetUserDefinedValues(VariableFit& variable, DistributionSpecification specification) {
  if (IsContinuous(specification.code) != variable.continuous)
    return Refusal(kDistributionOfOtherKind, specification.code, variable);
  if (auto fault = CheckSpecification(specification))
    return CausedBy(std::move(fault->fault), kInvalidOwnValues, variable.name);
  DropUserDefinedValues(variable, specification.code);
  variable.saving.userDefined.push_back(std::move(specification));
  return {};
}

void DropUserDefinedValues(VariableFit& variable, DistributionCode code) {
  std::erase_if(variable.saving.userDefined,
                [code](const DistributionSpecification& own) { return own.code == code; });
  // An order must not name a fit that no longer exists.
  if (UserDefinedSpecification(variable, code) == nullptr) {
    std::erase(variable.saving.userDefinedOrder, code);
  }
}

std::vector<DistributionCode> UserDefinedOrder(const VariableFit& variable) {
  if (!variable.saving.userDefinedOrder.empty()) return variable.saving.userDefinedOrder;
  std::vector<DistributionCode> order = CodesOf(variable, SavedOrder(variable));
  for (const DistributionSpecification& own : variable.saving.userDefined) {
    if (std::ranges::find(order, own.code) == order.end()) order.push_back(own.code);
  }
  return order;
}

Result<void> SetUserDefinedOrder(VariableFit& variable, Codes order) {
  if (auto distinct = CheckDistinct(order, variable); !distinct) return distinct;
  for (const DistributionCode code : order) {
    if (UserDefinedSpecification(variable, code) == nullptr)
      return Refusal(kDistributionNotFitted, code, variable);
  }
  variable.saving.userDefinedOrder.assign(order.begin(), order.end());
  return {};
}

Result<void> CheckTruncation(const VariableFit& variable) {
  const Truncation& truncation = variable.saving.truncation;
  const bool lacks = (truncation.below && !IsBound(AsStored(truncation.minimum))) ||
                     (truncation.above && !IsBound(AsStored(truncation.maximum)));
  if (lacks) return Fault{kTruncationLacksBound, variable.name};
  const bool both = truncation.below && truncation.above;
  if (both && !(AsStored(truncation.minimum) < AsStored(truncation.maximum))) {
    return Fault{kTruncationBoundsCrossed, variable.name};
  }
  return {};
}

DistributionSpecification Within(const Truncation& truncation, DistributionSpecification specification) {
  specification.truncateBelow = truncation.below;
  specification.truncateAbove = truncation.above;
  specification.truncationMinimum = truncation.minimum;
  specification.truncationMaximum = truncation.maximum;
  return specification;
}

VariableDistributions DistributionsToSave(const VariableFit& variable, bool userDefined) {
  VariableDistributions distributions;
  distributions.variableNumber = variable.variableNumber;
  distributions.truncation = variable.saving.truncation;
  if (userDefined) {
    for (const DistributionCode code : UserDefinedOrder(variable)) {
      distributions.ranked.push_back(*UserDefinedSpecification(variable, code));
    }
  } else {
    for (const std::size_t index : SavedOrder(variable)) {
      distributions.ranked.push_back(variable.fits[index].specification);
    }
  }
  for (DistributionSpecification& specification : distributions.ranked)
    specification = Within(distributions.truncation, std::move(specification));
  return distributions;
}

}  // namespace brenvolt::sra
