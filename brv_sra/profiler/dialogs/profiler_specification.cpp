#include "brv_sra/profiler/dialogs/profiler_specification.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/specification_array.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/models/range_text.h"

namespace brenvolt::sra {
namespace {

bool IsFixedKey(const Variant& key) {
  return key.IsText() && key.ToText() == ResourceString(kProfilerFixed);
}

std::string ClassesOf(const ProfilerPredictor& predictor) {
  std::string classes;
  for (const auto& [code, text] : predictor.labels) classes += (classes.empty() ? "" : ", ") + text;
  return classes;
}

[[noreturn]] void RefuseClass(const ProfilerPredictor& predictor, const std::string& name) {
  throw Error("unknown class: " + name + "; the classes are " + ClassesOf(predictor), predictor.name);
}

std::string LowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
  return text;
}

// The code of a class by its name, which may be spelled like a number, or the code itself; upper and lower case do
// not count in truth values. If neither a model nor the data list the classes, an unknown name is a new one.
double ClassCode(ProfilerPredictor& predictor, const std::string& name) {
  const auto codeOf = [&](const auto& isNamed) {
    const auto named =
        std::ranges::find_if(predictor.labels, [&](const auto& label) { return isNamed(label.second); });
    return named != predictor.labels.end() ? std::optional(named->first) : std::nullopt;
  };
  if (const auto code = codeOf([&](const std::string& text) { return text == name; })) return *code;
  const std::string lower = LowerCase(name);
  const bool isTruth = !predictor.holdsTexts && (lower == "true" || lower == "false");
  if (const auto code = codeOf([&](const std::string& text) { return isTruth && LowerCase(text) == lower; }))
    return *code;
  if (const auto code = ParseNumber(name); code && predictor.labels.contains(*code)) return *code;
  if (!predictor.takesAnyText || name.empty()) RefuseClass(predictor, name);
  const double code = predictor.labels.empty() ? 1 : std::floor(predictor.labels.rbegin()->first) + 1;
  predictor.labels.emplace(code, name);
  return code;
}

void Fix(ProfilerPredictor& predictor, const Variant& value) {
  const bool isClass = !predictor.labels.empty() || predictor.takesAnyText;
  const double fixed =
      isClass ? ClassCode(predictor, value.IsText() ? value.ToText() : ShortestNumber(value.ToReal()))
              : value.ToReal();
  if (!std::isfinite(fixed)) throw Error("expected a finite number, got " + value.ToText());
  predictor.setting = PredictorSetting::kFixed;
  predictor.fixedValue = fixed;
}

// The array of a histogram with the codes of classes in place of their names.
Variant::Array WithCodes(ProfilerPredictor& predictor, Variant::Array array) {
  const bool hasNames =
      std::any_of(array.begin() + 1, array.end(), [](const Variant& item) { return item.IsText(); });
  if (!hasNames || CodeFromVariant(array[0]) != DistributionCode::kHistogram) return array;
  const bool isClass = !predictor.labels.empty() || predictor.takesAnyText;
  for (std::size_t i = 1; i < array.size(); i += 2) {  // codes and proportions in turn
    if (!array[i].IsText()) continue;
    const std::string name = array[i].ToText();
    if (!isClass && !ParseNumber(name))
      throw Error("the predictor holds numbers, not classes such as " + name, "predictor " + predictor.name);
    if (isClass) array[i] = ClassCode(predictor, name);
  }
  return array;
}

// The classes by their names, with their proportions: "Histogram (high 0.25, low 0.75)".
std::string ClassesText(const ProfilerPredictor& predictor) {
  constexpr std::size_t kMostShown = 10;
  const std::vector<double>& values = predictor.specification.values;  // codes and proportions in turn
  std::string text;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
    text += text.empty() ? "" : ", ";
    if (i / 2 == kMostShown) {
      text += "…";
      break;
    }
    const auto label = predictor.labels.find(values[i]);
    text += (label != predictor.labels.end() ? label->second : ShortestNumber(values[i])) + " " +
            FormatNumber("%.4g", values[i + 1]);
  }
  return std::string(DisplayName(predictor.specification.code)) + " (" + text + ")";
}

// "(0.250000)", followed by the number where six decimals do not show it: "(0.000000) = 2.5e-09".
std::string FixedText(double value) {
  constexpr double kTolerance = 1e-4;
  const std::string form(ResourceString(kProfilerFixedValue));
  const std::string text = FormatNumber(form.c_str(), value);
  const double shown = ParseNumber(std::string_view(text).substr(1, text.size() - 2)).value_or(value);
  const bool isShown = std::abs(shown - value) <= kTolerance * std::abs(value);
  return isShown ? text : text + " = " + ShortestNumber(value);
}

}  // namespace

void RequireClasses(const ProfilerPredictor& predictor, const DistributionSpecification& specification) {
  if (!predictor.holdsTexts) return;
  if (specification.truncateBelow || specification.truncateAbove)
    throw Error("classes have no bounds", "predictor " + predictor.name);
  bool areKnown = specification.code == DistributionCode::kHistogram;
  for (std::size_t i = 0; areKnown && i < specification.values.size();
       i += 2)  // codes and proportions in turn
    areKnown = predictor.labels.contains(specification.values[i]);
  if (!areKnown)
    throw Error("the predictor takes classes: a histogram of " + ClassesOf(predictor),
                "predictor " + predictor.name);
}

void SetSpecification(ProfilerPredictor& predictor, const Variant& value) {
  if (value.IsEmpty()) {
    predictor.setting = PredictorSetting::kNone;
    return;
  }
  if (!value.IsArray()) return Fix(predictor, value);
  const Variant::Array array = value.ToArray();
  if (array.empty()) throw Error("expected a distribution or a fixed value, got an empty array");
  if (IsFixedKey(array[0])) {
    if (array.size() != 2) throw Error("expected one value for a fixed predictor");
    return Fix(predictor, array[1]);
  }
  ProfilerPredictor changed = predictor;
  changed.specification = EnteredSpecification(WithCodes(changed, array), "predictor " + predictor.name);
  RequireClasses(changed, changed.specification);
  changed.setting = PredictorSetting::kRandom;
  changed.keepsToParts = false;
  predictor = std::move(changed);
}

Variant SpecificationArray(const ProfilerPredictor& predictor) {
  if (predictor.setting == PredictorSetting::kNone) return {};
  if (predictor.setting == PredictorSetting::kRandom) return ArrayOf(predictor.specification);
  return Variant::Array{std::string(ResourceString(kProfilerFixed)), predictor.fixedValue};
}

std::string SpecificationText(const ProfilerPredictor& predictor) {
  if (predictor.setting == PredictorSetting::kNone)
    return std::string(ResourceString(kProfilerNoSpecification));
  if (predictor.setting == PredictorSetting::kRandom) {
    const bool ofClasses =
        !predictor.labels.empty() && predictor.specification.code == DistributionCode::kHistogram;
    return ofClasses ? ClassesText(predictor)
                     : SpecificationText(predictor.specification) + GapsText(predictor.Gaps());
  }
  const std::string fixed = std::string(ResourceString(kProfilerFixed)) + " ";
  const auto label = predictor.labels.find(predictor.fixedValue);
  if (label != predictor.labels.end()) return fixed + "(" + label->second + ")";
  return fixed + FixedText(predictor.fixedValue);
}

std::string PredictorLine(const ProfilerPredictor& predictor) {
  return predictor.name + ": " + SpecificationText(predictor);
}

}  // namespace brenvolt::sra
