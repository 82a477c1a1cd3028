#include "brv_sra/distributions/catalogue.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "brv_sra/base/distribution_constants.h"
#include "brv_sra/base/spaced_keys.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

// A parameter of any distribution, by its name among the facts.
struct StoredParameter {
  std::string_view name;
  FaultIdentifier fault;  // of a stored value that is not valid
  std::string_view key;   // none for those that are stored as bare numbers
};

constexpr StoredParameter kStoredParameters[] = {
    {"location", FaultIdentifier::kStoredLocationInvalid, property_key::kLocation},
    {"scale", FaultIdentifier::kStoredScaleInvalid, property_key::kScale},
    {"shape", FaultIdentifier::kStoredShapeInvalid, property_key::kShape},
    {"min", FaultIdentifier::kInvalidParameter, property_key::kMin},
    {"max", FaultIdentifier::kInvalidParameter, property_key::kMax},
    {"mode", FaultIdentifier::kInvalidParameter, property_key::kMode},
    {"proportion", FaultIdentifier::kStoredProportionInvalid, property_key::kProportion},
    {"trials", FaultIdentifier::kStoredTrialsInvalid, property_key::kNumberOfTrials},
    {"mean", FaultIdentifier::kStoredMeanInvalid, property_key::kMean},
    {"standard deviation", FaultIdentifier::kStoredScaleInvalid, {}},
    {"type", FaultIdentifier::kInvalidParameter, {}},
    {"gamma", FaultIdentifier::kStoredShapeInvalid, {}},
    {"delta", FaultIdentifier::kStoredShapeInvalid, {}},
    {"lambda", FaultIdentifier::kStoredScaleInvalid, {}},
    {"xi", FaultIdentifier::kStoredLocationInvalid, {}},
    {"code", FaultIdentifier::kInvalidParameter, {}}};

std::string_view ParameterName(DistributionCode code, std::size_t place) {
  const DistributionFacts& facts = Facts(code);
  return facts.parameters[place % facts.ParameterCount()].name;
}

const StoredParameter& Stored(DistributionCode code, std::size_t place) {
  const std::string_view name = ParameterName(code, place);
  const auto* const found = std::ranges::find(kStoredParameters, name, &StoredParameter::name);
  if (found == std::ranges::end(kStoredParameters))
    throw std::logic_error("parameter without a stored form: " + std::string(name));
  return *found;
}

// The values of user-defined distributions, of which there is any number, and those of the Johnson family.
bool AreBare(DistributionCode code) {
  return Facts(code).isUserDefined || code == kJohnson;
}

template <class Predicate>
std::optional<DistributionCode> FindCode(Predicate matches) {
  for (const DistributionEntry* entry : DistributionTable()) {
    if (matches(entry->facts.code)) return entry->facts.code;
  }
  return std::nullopt;
}

// With more digits if the usual ones would not read back exactly.
std::string MacroNumber(double x) {
  if (IsNotSet(x)) return "Nothing";
  const std::string usual = FormatNumber("%e", x);
  return ParseNumber(usual) == x ? usual : FormatNumber("%.16e", x);
}

std::string MacroBound(bool inForce, double bound) {
  return inForce ? ", 1, " + MacroNumber(bound) : ", 0, 0";
}

// Two differ from the others: a mode has no equals sign, and trials are called N.
std::string DescribedName(std::string_view parameter) {
  if (parameter == "mode") return "mode";
  return (parameter == "trials" ? "N" : std::string(parameter)) + "=";
}

}  // namespace

const DistributionFacts& Facts(DistributionCode code) {
  return EntryOf(code).facts;
}

bool IsContinuous(DistributionCode code) {
  return Facts(code).isContinuous;
}

bool HasOffset(DistributionCode code) {
  return Facts(code).HasOffset();
}

std::optional<DistributionCode> CodeFromNumber(std::int32_t number) {
  if (number < 0 || number >= kDistributionCount) return std::nullopt;
  return static_cast<DistributionCode>(number);
}

std::string_view InternalKey(DistributionCode code) {
  return kDistributionKeys.at(static_cast<std::size_t>(code));
}

std::string_view CompactKey(DistributionCode code) {
  return Facts(code).name;
}

std::string_view SpacedKey(DistributionCode code) {
  return kSpacedKeys.at(static_cast<std::size_t>(code)).Plain();
}

std::optional<DistributionCode> CodeFromKey(std::string_view key) {
  std::string_view plain = key;
  if (plain.starts_with(kDontTranslate)) plain.remove_prefix(kDontTranslate.size());
  return FindCode([&](DistributionCode code) {
    return CompactKey(code) == plain || SpacedKey(code) == plain || InternalKey(code) == key;
  });
}

std::string_view StoredKey(DistributionCode code, std::size_t place) {
  if (AreBare(code)) return {};
  // The folded normal keeps its location and scale under other keys.
  if (code == kFoldedNormal) return place == 0 ? property_key::kScale : property_key::kShape;
  return Stored(code, place).key;
}

const char* StoredFormat(DistributionCode code) {
  return code == kGaussianMixture || code == kJohnson ? "%e" : "%.12e";
}

FaultIdentifier StoredFault(DistributionCode code, std::size_t place) {
  // The proportion of a component is a coefficient.
  const bool isCoefficient = code == kGaussianMixture && ParameterName(code, place) == "proportion";
  return isCoefficient ? FaultIdentifier::kInvalidParameter : Stored(code, place).fault;
}

std::string Description(DistributionCode code, std::span<const double> values) {
  std::string text(SpacedKey(code));
  if (AreBare(code)) return text;
  for (std::size_t i = 0; i < Facts(code).ParameterCount(); ++i) {
    text += (i == 0 ? "(" : ", ") + DescribedName(ParameterName(code, i)) +
            FormatNumber("%.4f", i < values.size() ? values[i] : kNotSet);
  }
  return text + ")";
}

std::string MacroText(const DistributionSpecification& specification) {
  std::string text = "Array(" + std::string(InternalKey(specification.code));
  for (const double value : specification.values) text += ", " + MacroNumber(value);
  if (HasOffset(specification.code)) text += ", " + MacroNumber(specification.offset);
  text += MacroBound(specification.truncateBelow, specification.truncationMinimum);
  text += MacroBound(specification.truncateAbove, specification.truncationMaximum);
  return std::string(Trim(text)) + ")";
}

}  // namespace brenvolt::sra
