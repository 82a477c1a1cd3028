// The table of distribution types and what derives from it.
#include "brv_sra/distributions/catalogue.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;
using enum ParameterRange;

// Parameters: heading, label, word, message of a stored value, range.
constexpr Parameter kLocation{kHeadingLocation, kLabelLocation, kLowerLocation, kMsgStoredLocationInvalid,
                              kFinite};
constexpr Parameter kScale{kHeadingScale, kLabelScale, kWordScale, kMsgStoredScaleInvalid, kPositive};
constexpr Parameter kLogScale{kHeadingScale, kLabelScale, kWordScale, kMsgStoredScaleInvalid, kFinite};
constexpr Parameter kShape{kHeadingShape, kLabelShape, kLowerShape, kMsgStoredShapeInvalid, kPositive};
constexpr Parameter kTailShape{kHeadingShape, kLabelShape, kLowerShape, kMsgStoredShapeInvalid, kFinite};
constexpr Parameter kMinimum{kHeadingMin, kLabelMinimum, kWordMinimumOrMode, 0, kFinite};
constexpr Parameter kMaximum{kHeadingMax, kLabelMaximum, kWordModeOrMaximum, 0, kFinite};
constexpr Parameter kMode{kHeadingMode, kLabelMode, kWordMinimumOrMode, 0, kFinite};
constexpr Parameter kProportionOfTrials{kHeadingProportion, kLabelProportion, kWordProportion,
                                        kMsgStoredProportionInvalid, kProportion};
constexpr Parameter kTrialCount{kHeadingTrials, kLabelTrials, kWordTrials, kMsgStoredTrialsInvalid, kTrials};
constexpr Parameter kPoissonMean{kHeadingPoissonMean, kLabelMean, kWordMean, kMsgStoredMeanInvalid,
                                 kPositive};
constexpr Parameter kCoefficient{kHeadingMixingCoefficient, 0, kWordMixingCoefficient, 0, kPositive};
constexpr Parameter kComponentMean{kHeadingMixtureMean, 0, kWordMean, kMsgStoredMeanInvalid, kFinite};
constexpr Parameter kDeviation{kHeadingStandardDeviation, 0, kWordStandardDeviation, kMsgStoredScaleInvalid,
                               kPositive};
constexpr Parameter kFamily{kHeadingJohnsonType, kLabelJohnsonType, kHeadingJohnsonType, 0, kJohnsonFamily};
constexpr Parameter kGamma{kHeadingGamma, kLabelJohnsonGamma, kHeadingGamma, kMsgStoredShapeInvalid, kFinite};
constexpr Parameter kDelta{kHeadingDelta, kLabelJohnsonDelta, kWordShape2, kMsgStoredShapeInvalid, kPositive};
constexpr Parameter kLambda{kHeadingLambda, kLabelJohnsonLambda, kWordScale, kMsgStoredScaleInvalid,
                            kPositive};
constexpr Parameter kXi{kHeadingXi, kLabelJohnsonXi, kHeadingXi, kMsgStoredLocationInvalid, kFinite};
constexpr Parameter kClassCode{kHeadingCode, 0, kWordCodeOrProportion, 0, kFinite};
constexpr Parameter kClassProportion{kHeadingClassProportion, 0, kWordCodeOrProportion,
                                     kMsgStoredProportionInvalid, kProportion};

// clang-format off
// Columns: code, internal key, compact key, spaced key, display name, continuous, has an offset, values,
// repeated groups; description; parameters.
constexpr std::array<CatalogueEntry, kDistributionCount> kCatalogue{{
    {kNormal, "scNormalDistr", kCompactKeyNormal, 0, kNameNormal, true, false, 2, false,
     "Normal(location=%.4f, scale=%.4f)", {kLocation, kScale}},
    {kLogNormal, "scLogNormal", kCompactKeyLogNormal, kSpacedKeyLogNormal, kNameLogNormal,
     true, true, 2, false,
     "Log Normal(scale=%.4f, shape=%.4f)", {kLogScale, kShape}},
    {kFoldedNormal, "scFoldedNormal", kCompactKeyFoldedNormal, kSpacedKeyFoldedNormal, kNameFoldedNormal,
     true, true, 2, false,
     "Folded Normal(location=%.4f, scale=%.4f)", {kLocation, kScale}},
    {kHalfNormal, "scHalfNormal", kCompactKeyHalfNormal, kSpacedKeyHalfNormal, kNameHalfNormal,
     true, true, 1, false,
     "Half Normal(scale=%.4f)", {kScale}},
    {kRayleigh, "scRayleigh", kCompactKeyRayleigh, 0, kNameRayleigh, true, true, 1, false,
     "Rayleigh(scale=%.4f)", {kScale}},
    {kWeibull, "scWeibull", kCompactKeyWeibull, 0, kNameWeibull, true, true, 2, false,
     "Weibull(scale=%.4f, shape=%.4f)", {kScale, kShape}},
    {kGaussianMixture, "scGaussianMixture", kCompactKeyGaussianMixture, kSpacedKeyGaussianMixture,
     kNameGaussianMixture, true, false, 3, true,
     "Gaussian Mixture", {kCoefficient, kComponentMean, kDeviation}},
    {kJohnson, "scJohnson", kCompactKeyJohnson, 0, kNameJohnson, true, false, 5, false,
     "Johnson", {kFamily, kGamma, kDelta, kLambda, kXi}},
    {kGeneralExtremeValue, "scGenExtreme", kCompactKeyGeneralExtremeValue, kSpacedKeyGeneralExtremeValue,
     kNameGeneralExtremeValue, true, false, 3, false,
     "General Extreme Value(location=%.4f, scale=%.4f, shape=%.4f)", {kLocation, kScale, kTailShape}},
    {kGeneralPareto, "scGenPareto", kCompactKeyGeneralPareto, kSpacedKeyGeneralPareto, kNameGeneralPareto,
     true, true, 2, false,
     "General Pareto(scale=%.4f, shape=%.4f)", {kScale, kTailShape}},
    // The description has no equals sign after "mode".
    {kTriangular, "scTriangular", kCompactKeyTriangular, 0, kNameTriangular, true, false, 3, false,
     "Triangular(min=%.4f, max=%.4f, mode%.4f)", {kMinimum, kMaximum, kMode}},
    {kBinomial, "scBinomial", kCompactKeyBinomial, 0, kNameBinomial, false, false, 2, false,
     "Binomial(proportion=%.4f, N=%.4f)", {kProportionOfTrials, kTrialCount}},
    {kPoisson, "scPoisson", kCompactKeyPoisson, 0, kNamePoisson, false, false, 1, false,
     "Poisson(mean=%.4f)", {kPoissonMean}},
    {kGeometric, "scGeometric", kCompactKeyGeometric, 0, kNameGeometric, false, false, 1, false,
     "Geometric(proportion=%.4f)", {kProportionOfTrials}},
    {kBernoulli, "scBernoulli", kCompactKeyBernoulli, 0, kNameBernoulli, false, false, 1, false,
     "Bernoulli(proportion=%.4f)", {kProportionOfTrials}},
    {kHistogram, "scDiscrete", kCompactKeyHistogram, 0, kNameHistogram, false, false, 2, true,
     "Histogram", {kClassCode, kClassProportion}},
}};
// clang-format on

constexpr bool CodesAreTheirPlaces() {
  for (std::size_t i = 0; i < kCatalogue.size(); ++i) {
    if (static_cast<std::size_t>(kCatalogue[i].code) != i) return false;
    if (kCatalogue[i].continuous != (i < kContinuousCount)) return false;
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

bool IsInRange(double x, ParameterRange range) {
  if (!IsGiven(x)) return false;
  switch (range) {
    case kFinite:
      return true;
    case kPositive:
      return x > 0;
    case kProportion:
      return x >= 0 && x <= 1;
    case kTrials:
      return x > 0 && x <= std::numeric_limits<std::int32_t>::max() && IsWholeNumber(x);
    case kJohnsonFamily:
      return x == 1 || x == 2 || x == 3 || x == 4;
  }
  return false;
}

ValidityFault ParameterFault(const CatalogueEntry& entry, std::size_t index, std::int32_t wordResource) {
  return {FormatResource(kMsgInvalidParameter, ResourceString(wordResource),
                         ResourceString(entry.displayNameResource)),
          index};
}

ValidityFault ParameterFault(const CatalogueEntry& entry, std::size_t index, double value,
                             CheckPurpose purpose) {
  const Parameter& parameter = entry.parameters[index % static_cast<std::size_t>(entry.valueCount)];
  if (parameter.range == kTrials && purpose == CheckPurpose::kSimulation) {
    return {std::string(ResourceString(kMsgInvalidTrialsInSimulation)), index};
  }
  ValidityFault fault = ParameterFault(entry, index, parameter.wordResource);
  if (parameter.range == kProportion && IsGiven(value)) fault.message += ResourceString(kMsgProportionRange);
  return fault;
}

// The distance from 1 of the sum of every valueCount-th value, beginning with `first`.
double TotalError(const CatalogueEntry& entry, std::size_t first, std::span<const double> values) {
  double total = 0;
  for (std::size_t i = first; i < values.size(); i += static_cast<std::size_t>(entry.valueCount))
    total += values[i];
  return std::abs(total - 1);
}

// The rules about several values of a type, once each value is in its range.
std::optional<ValidityFault> CheckTogether(const CatalogueEntry& entry, std::span<const double> values) {
  switch (entry.code) {
    case kTriangular:
      if (values[0] > values[2]) return ParameterFault(entry, 0, kWordMinimumOrMode);
      if (values[2] > values[1]) return ParameterFault(entry, 2, kWordModeOrMaximum);
      return std::nullopt;
    case kGaussianMixture:
      if (TotalError(entry, 0, values) <= kMixtureTotalTolerance) return std::nullopt;
      return ParameterFault(entry, values.size(), kWordMixingCoefficient);
    case kHistogram:
      if (TotalError(entry, 1, values) <= kHistogramTotalTolerance) return std::nullopt;
      return ValidityFault{std::string(ResourceString(kMsgInvalidTotalProportion)), values.size()};
    default:
      return std::nullopt;
  }
}

using NumberText = std::string (*)(double);

std::string MacroNumber(double x) {
  return IsNotSet(x) ? "Nothing" : FormatNumber("%e", x);
}

std::string ExactMacroNumber(double x) {
  const std::string usual = MacroNumber(x);
  if (IsNotSet(x) || ParseNumber(usual) == x) return usual;
  return FormatNumber("%.16e", x);
}

std::string MacroBound(bool inForce, double bound, NumberText number) {
  return inForce ? ", 1, " + number(bound) : ", 0, 0";
}

std::string MacroTextWith(const DistributionSpecification& specification, NumberText number) {
  const CatalogueEntry& entry = Entry(specification.code);
  std::string text = "Array(" + std::string(entry.internalKey);
  for (const double value : specification.values) text += ", " + number(value);
  if (entry.hasOffset) text += ", " + number(specification.offset);
  text += MacroBound(specification.truncateBelow, specification.truncationMinimum, number);
  text += MacroBound(specification.truncateAbove, specification.truncationMaximum, number);
  return std::string(Trim(text)) + ")";
}

}  // namespace

const CatalogueEntry& Entry(DistributionCode code) {
  return kCatalogue.at(static_cast<std::size_t>(code));
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
  return Entry(code).continuous;
}

bool HasOffset(DistributionCode code) {
  return Entry(code).hasOffset;
}

std::span<const Parameter> Parameters(DistributionCode code) {
  const CatalogueEntry& entry = Entry(code);
  return std::span(entry.parameters).first(static_cast<std::size_t>(entry.valueCount));
}

std::optional<DistributionCode> CodeFromKey(std::string_view key) {
  const std::string_view plain = StripDontTranslate(key);
  return FindCode([&](const CatalogueEntry& entry) {
    return CompactKey(entry.code) == plain || SpacedKey(entry.code) == plain || entry.internalKey == key;
  });
}

std::optional<DistributionCode> CodeFromDisplayName(std::string_view name) {
  return FindCode([&](const CatalogueEntry& entry) { return DisplayName(entry.code) == name; });
}

DistributionCode ContinuousCodeFromDisplayName(std::string_view name) {
  const auto code = CodeFromDisplayName(name);
  if (!code || !IsContinuous(*code)) {
    throw CDispatchException(std::string(ResourceString(kMsgInvalidDistributionString)));
  }
  return *code;
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
  const auto groupSize = static_cast<std::size_t>(entry.valueCount);
  const std::size_t groups = entry.repeatedGroups ? (values.size() + groupSize - 1) / groupSize : 1;
  if (code == kGaussianMixture && (groups < kMinimumMixtures || groups > kMaximumMixtures)) {
    return ValidityFault{std::string(ResourceString(kMsgInvalidMixtureCount)), values.size()};
  }
  const std::size_t expected = groups * groupSize;
  for (std::size_t i = 0; i < expected; ++i) {
    const double value = i < values.size() ? values[i] : kNotSet;
    const ParameterRange range = entry.parameters[i % groupSize].range;
    if (!IsInRange(value, range)) return ParameterFault(entry, i, value, purpose);
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
  return MacroTextWith(specification, MacroNumber);
}

std::string ExactMacroText(const DistributionSpecification& specification) {
  return MacroTextWith(specification, ExactMacroNumber);
}

std::string_view JohnsonFamilyName(int type) {
  constexpr int kFamilies = 4;
  return type >= 1 && type <= kFamilies ? ResourceString(kNameJohnsonSL + type - 1) : std::string_view();
}

}  // namespace brenvolt::sra
