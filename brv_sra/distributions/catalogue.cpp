// The table of distribution types and what derives from it.
#include "brv_sra/distributions/catalogue.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/resources/distribution_constants.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/distribution_types.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

// Parameters: heading, label, word, fault of a stored value (if it is not the general one), key of a stored
// value.
constexpr Parameter kLocation{kHeadingLocation, kLabelLocation, kLowerLocation,
                              FaultIdentifier::kStoredLocationInvalid, property_key::kLocation};
constexpr Parameter kScale{kHeadingScale, kLabelScale, kWordScale, FaultIdentifier::kStoredScaleInvalid,
                           property_key::kScale};
constexpr Parameter kShape{kHeadingShape, kLabelShape, kLowerShape, FaultIdentifier::kStoredShapeInvalid,
                           property_key::kShape};
constexpr Parameter kMinimum{kHeadingMin, kLabelMinimum, kWordMinimumOrMode,
                             FaultIdentifier::kInvalidParameter, property_key::kMin};
constexpr Parameter kMaximum{kHeadingMax, kLabelMaximum, kWordModeOrMaximum,
                             FaultIdentifier::kInvalidParameter, property_key::kMax};
constexpr Parameter kMode{kHeadingMode, kLabelMode, kWordMinimumOrMode, FaultIdentifier::kInvalidParameter,
                          property_key::kMode};
constexpr Parameter kProportionOfTrials{kHeadingProportion, kLabelProportion, kWordProportion,
                                        FaultIdentifier::kStoredProportionInvalid, property_key::kProportion};
constexpr Parameter kTrialCount{kHeadingTrials, kLabelTrials, kWordTrials,
                                FaultIdentifier::kStoredTrialsInvalid, property_key::kNumberOfTrials};
constexpr Parameter kPoissonMean{kHeadingPoissonMean, kLabelMean, kWordMean,
                                 FaultIdentifier::kStoredMeanInvalid, property_key::kMean};
constexpr Parameter kCoefficient{
    kHeadingMixingCoefficient, 0, kWordMixingCoefficient, FaultIdentifier::kInvalidParameter, {}};
constexpr Parameter kComponentMean{
    kHeadingMixtureMean, 0, kWordMean, FaultIdentifier::kStoredMeanInvalid, {}};
constexpr Parameter kDeviation{
    kHeadingStandardDeviation, 0, kWordStandardDeviation, FaultIdentifier::kStoredScaleInvalid, {}};
constexpr Parameter kFamily{
    kHeadingJohnsonType, kLabelJohnsonType, kHeadingJohnsonType, FaultIdentifier::kInvalidParameter, {}};
constexpr Parameter kGamma{
    kHeadingGamma, kLabelJohnsonGamma, kHeadingGamma, FaultIdentifier::kStoredShapeInvalid, {}};
constexpr Parameter kDelta{
    kHeadingDelta, kLabelJohnsonDelta, kWordShape2, FaultIdentifier::kStoredShapeInvalid, {}};
constexpr Parameter kLambda{
    kHeadingLambda, kLabelJohnsonLambda, kWordScale, FaultIdentifier::kStoredScaleInvalid, {}};
constexpr Parameter kXi{kHeadingXi, kLabelJohnsonXi, kHeadingXi, FaultIdentifier::kStoredLocationInvalid, {}};
constexpr Parameter kClassCode{
    kHeadingCode, 0, kWordCodeOrProportion, FaultIdentifier::kInvalidParameter, {}};
constexpr Parameter kClassProportion{
    kHeadingClassProportion, 0, kWordCodeOrProportion, FaultIdentifier::kStoredProportionInvalid, {}};
// The folded normal keeps its location and scale under other keys.
constexpr Parameter kFoldedLocation{kHeadingLocation, kLabelLocation, kLowerLocation,
                                    FaultIdentifier::kStoredLocationInvalid, property_key::kScale};
constexpr Parameter kFoldedScale{kHeadingScale, kLabelScale, kWordScale, FaultIdentifier::kStoredScaleInvalid,
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

// With more digits if the usual ones would not read back exactly.
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

std::string_view ParameterWord(DistributionCode code, std::size_t place) {
  return ResourceString(Parameters(code)[place].wordResource);
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
