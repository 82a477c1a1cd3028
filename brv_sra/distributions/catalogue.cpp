// The table of distribution types and what derives from it.
#include "brv_sra/distributions/catalogue.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/resources/distribution_constants.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/distribution_types.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

// Parameters: heading, label, word, message of a stored value, key of a stored value.
constexpr Parameter kLocation{kHeadingLocation, kLabelLocation, kLowerLocation, kMsgStoredLocationInvalid,
                              property_key::kLocation};
constexpr Parameter kScale{kHeadingScale, kLabelScale, kWordScale, kMsgStoredScaleInvalid,
                           property_key::kScale};
constexpr Parameter kShape{kHeadingShape, kLabelShape, kLowerShape, kMsgStoredShapeInvalid,
                           property_key::kShape};
constexpr Parameter kMinimum{kHeadingMin, kLabelMinimum, kWordMinimumOrMode, 0, property_key::kMin};
constexpr Parameter kMaximum{kHeadingMax, kLabelMaximum, kWordModeOrMaximum, 0, property_key::kMax};
constexpr Parameter kMode{kHeadingMode, kLabelMode, kWordMinimumOrMode, 0, property_key::kMode};
constexpr Parameter kProportionOfTrials{kHeadingProportion, kLabelProportion, kWordProportion,
                                        kMsgStoredProportionInvalid, property_key::kProportion};
constexpr Parameter kTrialCount{kHeadingTrials, kLabelTrials, kWordTrials, kMsgStoredTrialsInvalid,
                                property_key::kNumberOfTrials};
constexpr Parameter kPoissonMean{kHeadingPoissonMean, kLabelMean, kWordMean, kMsgStoredMeanInvalid,
                                 property_key::kMean};
constexpr Parameter kCoefficient{kHeadingMixingCoefficient, 0, kWordMixingCoefficient, 0, {}};
constexpr Parameter kComponentMean{kHeadingMixtureMean, 0, kWordMean, kMsgStoredMeanInvalid, {}};
constexpr Parameter kDeviation{
    kHeadingStandardDeviation, 0, kWordStandardDeviation, kMsgStoredScaleInvalid, {}};
constexpr Parameter kFamily{kHeadingJohnsonType, kLabelJohnsonType, kHeadingJohnsonType, 0, {}};
constexpr Parameter kGamma{kHeadingGamma, kLabelJohnsonGamma, kHeadingGamma, kMsgStoredShapeInvalid, {}};
constexpr Parameter kDelta{kHeadingDelta, kLabelJohnsonDelta, kWordShape2, kMsgStoredShapeInvalid, {}};
constexpr Parameter kLambda{kHeadingLambda, kLabelJohnsonLambda, kWordScale, kMsgStoredScaleInvalid, {}};
constexpr Parameter kXi{kHeadingXi, kLabelJohnsonXi, kHeadingXi, kMsgStoredLocationInvalid, {}};
constexpr Parameter kClassCode{kHeadingCode, 0, kWordCodeOrProportion, 0, {}};
constexpr Parameter kClassProportion{
    kHeadingClassProportion, 0, kWordCodeOrProportion, kMsgStoredProportionInvalid, {}};
// The folded normal keeps its location and scale under other keys.
constexpr Parameter kFoldedLocation{kHeadingLocation, kLabelLocation, kLowerLocation,
                                    kMsgStoredLocationInvalid, property_key::kScale};
constexpr Parameter kFoldedScale{kHeadingScale, kLabelScale, kWordScale, kMsgStoredScaleInvalid,
                                 property_key::kShape};

// Of values that are stored with seven digits.
constexpr const char* kShortFormat = "%e";

// clang-format off
// Columns: code, compact key, spaced key, display name; description; parameters; format of stored
// values.
constexpr std::array<CatalogueEntry, kDistributionCount> kCatalogue{{
    {kNormal, kCompactKeyNormal, 0, kNameNormal,
     "Normal(location=%.4f, scale=%.4f)", {kLocation, kScale}},
    {kLogNormal, kCompactKeyLogNormal, kSpacedKeyLogNormal, kNameLogNormal,
     "Log Normal(scale=%.4f, shape=%.4f)", {kScale, kShape}},
    {kFoldedNormal, kCompactKeyFoldedNormal, kSpacedKeyFoldedNormal, kNameFoldedNormal,
     "Folded Normal(location=%.4f, scale=%.4f)", {kFoldedLocation, kFoldedScale}},
    {kHalfNormal, kCompactKeyHalfNormal, kSpacedKeyHalfNormal, kNameHalfNormal,
     "Half Normal(scale=%.4f)", {kScale}},
    {kRayleigh, kCompactKeyRayleigh, 0, kNameRayleigh,
     "Rayleigh(scale=%.4f)", {kScale}},
    {kWeibull, kCompactKeyWeibull, 0, kNameWeibull,
     "Weibull(scale=%.4f, shape=%.4f)", {kScale, kShape}},
    {kGaussianMixture, kCompactKeyGaussianMixture, kSpacedKeyGaussianMixture,
     kNameGaussianMixture,
     "Gaussian Mixture", {kCoefficient, kComponentMean, kDeviation}, kShortFormat},
    {kJohnson, kCompactKeyJohnson, 0, kNameJohnson,
     "Johnson", {kFamily, kGamma, kDelta, kLambda, kXi}, kShortFormat},
    {kGeneralExtremeValue, kCompactKeyGeneralExtremeValue, kSpacedKeyGeneralExtremeValue,
     kNameGeneralExtremeValue,
     "General Extreme Value(location=%.4f, scale=%.4f, shape=%.4f)", {kLocation, kScale, kShape}},
    {kGeneralPareto, kCompactKeyGeneralPareto, kSpacedKeyGeneralPareto, kNameGeneralPareto,
     "General Pareto(scale=%.4f, shape=%.4f)", {kScale, kShape}},
    // The description has no equals sign after "mode".
    {kTriangular, kCompactKeyTriangular, 0, kNameTriangular,
     "Triangular(min=%.4f, max=%.4f, mode%.4f)", {kMinimum, kMaximum, kMode}},
    {kBinomial, kCompactKeyBinomial, 0, kNameBinomial,
     "Binomial(proportion=%.4f, N=%.4f)", {kProportionOfTrials, kTrialCount}},
    {kPoisson, kCompactKeyPoisson, 0, kNamePoisson,
     "Poisson(mean=%.4f)", {kPoissonMean}},
    {kGeometric, kCompactKeyGeometric, 0, kNameGeometric,
     "Geometric(proportion=%.4f)", {kProportionOfTrials}},
    {kBernoulli, kCompactKeyBernoulli, 0, kNameBernoulli,
     "Bernoulli(proportion=%.4f)", {kProportionOfTrials}},
    {kHistogram, kCompactKeyHistogram, 0, kNameHistogram,
     "Histogram", {kClassCode, kClassProportion}},
}};
// clang-format on

constexpr bool CodesAreTheirPlaces() {
  for (std::size_t i = 0; i < kCatalogue.size(); ++i) {
    if (static_cast<std::size_t>(kCatalogue[i].code) != i) return false;
  }
  return true;
}
static_assert(CodesAreTheirPlaces());

template <class Predicate>
std::optional<DistributionCode> FindCode(Predicate matches) {
  const auto* const found = std::ranges::find_if(kCatalogue, matches);
  if (found == kCatalogue.end()) return std::nullopt;
  return found->code;
}

bool IsGiven(double x) {
  return std::isfinite(x) && !IsNotSet(x);
}

ValidityFault ParameterFault(const CatalogueEntry& entry, std::size_t index, std::int32_t wordResource) {
  return {FormatResource(kMsgInvalidParameter, ResourceString(wordResource),
                         ResourceString(entry.displayNameResource)),
          index};
}

bool IsProportion(ParameterRange range) {
  return range == ParameterRange::kProportion || range == ParameterRange::kPositiveProportion;
}

ValidityFault ParameterFault(const CatalogueEntry& entry, std::size_t index, double value,
                             CheckPurpose purpose) {
  const std::size_t place = index % Facts(entry.code).ParameterCount();
  const ParameterRange range = Facts(entry.code).parameters[place].range;
  const std::int32_t word = entry.parameters[place].wordResource;
  if (range == ParameterRange::kTrials && purpose == CheckPurpose::kSimulation) {
    return {std::string(ResourceString(kMsgInvalidTrialsInSimulation)), index};
  }
  ValidityFault fault = ParameterFault(entry, index, word);
  const bool isCalledProportion = IsProportion(range) && word != kWordMixingCoefficient;
  if (isCalledProportion && IsGiven(value)) fault.message += ResourceString(kMsgProportionRange);
  return fault;
}

// The rules about several values of a distribution, once each value is in its range.
std::optional<ValidityFault> CheckTogether(const CatalogueEntry& entry, std::span<const double> values) {
  if (TypeOf(entry.code).isValid(values, 0.0)) return std::nullopt;
  switch (entry.code) {
    case kTriangular:
      if (values[0] > values[2]) return ParameterFault(entry, 0, kWordMinimumOrMode);
      if (values[2] > values[1]) return ParameterFault(entry, 2, kWordModeOrMaximum);
      return std::nullopt;  // a single point
    case kGaussianMixture:
      return ParameterFault(entry, values.size(), kWordMixingCoefficient);
    case kHistogram:
      return ValidityFault{std::string(ResourceString(kMsgInvalidTotalProportion)), values.size()};
    default:
      return std::nullopt;
  }
}

// With more digits where the usual ones would not read back exactly.
std::string MacroNumber(double x) {
  if (IsNotSet(x)) return "Nothing";
  const std::string usual = FormatNumber("%e", x);
  return ParseNumber(usual) == x ? usual : FormatNumber("%.16e", x);
}

std::string MacroBound(bool inForce, double bound) {
  return inForce ? ", 1, " + MacroNumber(bound) : ", 0, 0";
}

}  // namespace

const CatalogueEntry& Entry(DistributionCode code) {
  return kCatalogue.at(static_cast<std::size_t>(code));
}

const DistributionFacts& Facts(DistributionCode code) {
  return TypeOf(code).facts;
}

std::string_view InternalKey(DistributionCode code) {
  return kDistributionKeys.at(static_cast<std::size_t>(code));
}

std::optional<DistributionCode> CodeFromNumber(std::int32_t number) {
  if (number < 0 || number >= kDistributionCount) return std::nullopt;
  return static_cast<DistributionCode>(number);
}

std::string_view DisplayName(DistributionCode code) {
  return ResourceString(Entry(code).displayNameResource);
}

std::string_view CompactKey(DistributionCode code) {
  return StripDontTranslate(ResourceString(Entry(code).compactKeyResource));
}

std::string_view SpacedKey(DistributionCode code) {
  const std::int32_t spaced = Entry(code).spacedKeyResource;
  return spaced == 0 ? CompactKey(code) : StripDontTranslate(ResourceString(spaced));
}

bool IsContinuous(DistributionCode code) {
  return Facts(code).isContinuous;
}

bool HasOffset(DistributionCode code) {
  return Facts(code).HasOffset();
}

std::span<const Parameter> Parameters(DistributionCode code) {
  return std::span(Entry(code).parameters).first(Facts(code).ParameterCount());
}

std::vector<std::string_view> StoredKeys(DistributionCode code) {
  std::vector<std::string_view> keys;
  for (const Parameter& parameter : Parameters(code)) {
    if (!parameter.storedKey.empty()) keys.push_back(parameter.storedKey);
  }
  return keys;
}

std::optional<DistributionCode> CodeFromKey(std::string_view key) {
  const std::string_view plain = StripDontTranslate(key);
  return FindCode([&](const CatalogueEntry& entry) {
    return CompactKey(entry.code) == plain || SpacedKey(entry.code) == plain ||
           InternalKey(entry.code) == key;
  });
}

std::optional<DistributionCode> CodeFromDisplayName(std::string_view name) {
  return FindCode([&](const CatalogueEntry& entry) { return DisplayName(entry.code) == name; });
}

std::string Description(DistributionCode code, std::span<const double> values) {
  constexpr std::string_view kConversion = "%.4f";
  std::string_view format = Entry(code).descriptionFormat;
  std::string text;
  for (std::size_t i = 0;; ++i) {
    const auto place = format.find(kConversion);
    text += format.substr(0, place);
    if (place == std::string_view::npos) return text;
    text += FormatNumber(kConversion.data(), i < values.size() ? values[i] : kNotSet);
    format.remove_prefix(place + kConversion.size());
  }
}

std::optional<ValidityFault> CheckValues(DistributionCode code, std::span<const double> values,
                                         CheckPurpose purpose) {
  const CatalogueEntry& entry = Entry(code);
  const DistributionFacts& facts = Facts(code);
  const std::size_t groupSize = facts.ParameterCount();
  const std::size_t groups = facts.isUserDefined ? (values.size() + groupSize - 1) / groupSize : 1;
  if (code == kGaussianMixture && (groups < kMinimumMixtures || groups > kMaximumMixtures)) {
    return ValidityFault{std::string(ResourceString(kMsgInvalidMixtureCount)), values.size()};
  }
  const std::size_t expected = groups * groupSize;
  for (std::size_t i = 0; i < expected; ++i) {
    const double value = i < values.size() ? values[i] : kNotSet;
    const bool isValid = IsGiven(value) && IsInRange(value, facts.parameters[i % groupSize].range);
    if (!isValid) return ParameterFault(entry, i, value, purpose);
  }
  if (values.size() > expected)
    return ParameterFault(entry, expected, entry.parameters[groupSize - 1].wordResource);
  return CheckTogether(entry, values);
}

std::optional<ValidityFault> CheckSpecification(const DistributionSpecification& specification,
                                                CheckPurpose purpose) {
  if (auto fault = CheckValues(specification.code, specification.values, purpose)) return fault;
  if (!HasOffset(specification.code) || IsGiven(specification.offset)) return std::nullopt;
  const std::int32_t message = purpose == CheckPurpose::kFit ? kMsgInvalidInputOffsets : kMsgInvalidOffsets;
  return ValidityFault{std::string(ResourceString(message)), specification.values.size()};
}

std::string MacroText(const DistributionSpecification& specification) {
  const CatalogueEntry& entry = Entry(specification.code);
  std::string text = "Array(" + std::string(InternalKey(entry.code));
  for (const double value : specification.values) text += ", " + MacroNumber(value);
  if (HasOffset(entry.code)) text += ", " + MacroNumber(specification.offset);
  text += MacroBound(specification.truncateBelow, specification.truncationMinimum);
  text += MacroBound(specification.truncateAbove, specification.truncationMaximum);
  return std::string(Trim(text)) + ")";
}

}  // namespace brenvolt::sra
