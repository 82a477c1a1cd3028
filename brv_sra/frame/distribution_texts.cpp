#include "brv_sra/frame/distribution_texts.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

struct Row {
  std::string_view parameter;
  ParameterTexts texts;
  std::optional<DistributionCode> code = std::nullopt;  // of which alone, before the rows of all
};

constexpr Row kRows[] = {
    {"proportion", {kHeadingMixingCoefficient, 0, kWordMixingCoefficient}, kGaussianMixture},
    {"mean", {kHeadingMixtureMean, 0, kWordMean}, kGaussianMixture},
    {"proportion", {kHeadingClassProportion, 0, kWordCodeOrProportion}, kHistogram},
    {"location", {kHeadingLocation, kLabelLocation, kLowerLocation}},
    {"scale", {kHeadingScale, kLabelScale, kWordScale}},
    {"shape", {kHeadingShape, kLabelShape, kLowerShape}},
    {"min", {kHeadingMin, kLabelMinimum, kWordMinimumOrMode}},
    {"max", {kHeadingMax, kLabelMaximum, kWordModeOrMaximum}},
    {"mode", {kHeadingMode, kLabelMode, kWordMinimumOrMode}},
    {"proportion", {kHeadingProportion, kLabelProportion, kWordProportion}},
    {"trials", {kHeadingTrials, kLabelTrials, kWordTrials}},
    {"mean", {kHeadingPoissonMean, kLabelMean, kWordMean}},
    {"standard deviation", {kHeadingStandardDeviation, 0, kWordStandardDeviation}},
    {"type", {kHeadingJohnsonType, kLabelJohnsonType, kHeadingJohnsonType}},
    {"gamma", {kHeadingGamma, kLabelJohnsonGamma, kHeadingGamma}},
    {"delta", {kHeadingDelta, kLabelJohnsonDelta, kWordShape2}},
    {"lambda", {kHeadingLambda, kLabelJohnsonLambda, kWordScale}},
    {"xi", {kHeadingXi, kLabelJohnsonXi, kHeadingXi}},
    {"code", {kHeadingCode, 0, kWordCodeOrProportion}}};

}  // namespace

std::string_view DisplayName(DistributionCode code) {
  return ResourceString(NameResource(code));
}

std::optional<DistributionCode> CodeFromDisplayName(std::string_view name) {
  for (const DistributionEntry* entry : DistributionTable()) {
    if (DisplayName(entry->facts.code) == name) return entry->facts.code;
  }
  return std::nullopt;
}

const ParameterTexts& TextsOf(DistributionCode code, std::string_view parameter) {
  const auto* const found = std::ranges::find_if(
      kRows, [&](const Row& row) { return row.parameter == parameter && row.code.value_or(code) == code; });
  if (found == std::ranges::end(kRows))
    throw std::logic_error("parameter without texts: " + std::string(parameter));
  return found->texts;
}

const ParameterTexts& TextsOf(DistributionCode code, std::size_t place) {
  const DistributionFacts& facts = Facts(code);
  return TextsOf(code, facts.parameters[place % facts.ParameterCount()].name);
}

std::string_view ParameterWord(DistributionCode code, std::size_t place) {
  return ResourceString(TextsOf(code, place).word);
}

}  // namespace brenvolt::sra
