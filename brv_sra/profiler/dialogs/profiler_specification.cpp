#include "brv_sra/profiler/dialogs/profiler_specification.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "brv_sra/frame/specification_array.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

bool IsFixedKey(const Variant& key) {
  return key.IsText() && key.ToText() == ResourceString(kProfilerFixed);
}

// The code of a class by its name; a number as it is.
double FixedValue(const ProfilerPredictor& predictor, const Variant& value) {
  const auto named = std::ranges::find_if(
      predictor.labels, [&](const auto& label) { return value.IsText() && label.second == value.ToText(); });
  return named != predictor.labels.end() ? named->first : value.ToReal();
}

void Fix(ProfilerPredictor& predictor, const Variant& value) {
  const double fixed = FixedValue(predictor, value);
  if (!std::isfinite(fixed)) throw Error("expected a finite number, got " + value.ToText());
  if (!predictor.labels.empty() && !predictor.labels.contains(fixed))
    throw Error("unknown class: " + value.ToText(), predictor.name);
  predictor.setting = PredictorSetting::kFixed;
  predictor.fixedValue = fixed;
}

}  // namespace

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
  DistributionSpecification specification = SpecificationFromArray(array);
  CheckEnteredSpecification(specification);
  predictor.setting = PredictorSetting::kRandom;
  predictor.specification = std::move(specification);
}

Variant SpecificationArray(const ProfilerPredictor& predictor) {
  if (predictor.setting == PredictorSetting::kNone) return {};
  if (predictor.setting == PredictorSetting::kRandom) return ArrayOf(predictor.specification);
  return Variant::Array{std::string(ResourceString(kProfilerFixed)), predictor.fixedValue};
}

std::string PredictorLine(const ProfilerPredictor& predictor) {
  const std::string name = predictor.name + ": ";
  if (predictor.setting == PredictorSetting::kNone)
    return name + std::string(ResourceString(kProfilerNoSpecification));
  if (predictor.setting == PredictorSetting::kRandom)
    return name + SpecificationText(predictor.specification);
  return name + std::string(ResourceString(kProfilerFixed)) + " " +
         FormatNumber(std::string(ResourceString(kProfilerFixedValue)).c_str(), predictor.fixedValue);
}

}  // namespace brenvolt::sra
