// Distributions of a variable to its text properties.
#include <cmath>
#include <cstddef>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

constexpr std::string_view kSeparator = "; ";

std::string NumberText(double x, const char* format = "%e") {
  return ParseTextBuffer(FormatNumber(format, x));
}

std::string ItemText(std::string_view key, double x, const char* format) {
  return std::string(key) + "=" + NumberText(x, format);
}

// No offset is no shift.
double OffsetOrNone(const DistributionSpecification& specification) {
  return IsNotSet(specification.offset) ? 0.0 : specification.offset;
}

std::string Enclosed(const std::vector<std::string>& items) {
  std::string text = "(";
  for (const std::string& item : items) {
    if (text.size() > 1) text += kSeparator;
    text += item;
  }
  return text + ")";
}

// What a reader makes of a number after it went through the format. Nothing becomes of one that is not
// finite.
double AsStored(double x, const char* format) {
  return ParseNumber(FormatNumber(format, x)).value_or(x);
}

// A fit can be stored when the reader will take it back, since one bad property ends the read of all
// variables.
bool IsStorable(DistributionSpecification specification) {
  const char* const format = Entry(specification.code).storedFormat;
  for (double& value : specification.values) value = AsStored(value, format);
  specification.offset = AsStored(OffsetOrNone(specification), format);
  return !CheckSpecification(specification);
}

// Only a variable that has carried the mark needs it taken back.
void MarkInvalidFit(VariablePropertyStore& store, int variableNumber, bool invalid) {
  if (invalid || store.Get(variableNumber, property_key::kInvalidFit)) {
    store.Set(variableNumber, property_key::kInvalidFit, invalid ? "1" : "0");
  }
}

}  // namespace

std::string DistributionPropertyText(const DistributionSpecification& specification) {
  const auto keys = StoredKeys(specification.code);
  const char* const format = Entry(specification.code).storedFormat;
  std::vector<std::string> items;
  for (std::size_t i = 0; i < specification.values.size(); ++i) {
    const double value = specification.values[i];
    items.push_back(i < keys.size() ? ItemText(keys[i], value, format) : NumberText(value, format));
  }
  if (HasOffset(specification.code)) {
    items.push_back(ItemText(property_key::kOffset, OffsetOrNone(specification), format));
  }
  return Enclosed(items);
}

std::string TruncationPropertyText(const Truncation& truncation) {
  const bool finiteMinimum = std::isfinite(truncation.minimum);
  const bool finiteMaximum = std::isfinite(truncation.maximum);
  return Enclosed({truncation.below && finiteMinimum ? "1" : "0",
                   truncation.above && finiteMaximum ? "1" : "0",
                   NumberText(finiteMinimum ? truncation.minimum : kNotSet),
                   NumberText(finiteMaximum ? truncation.maximum : kNotSet)});
}

void WriteDistributionProperties(VariablePropertyStore* store, const VariableDistributions& distributions) {
  if (store == nullptr) return;
  const int variable = distributions.variableNumber;
  std::string order;
  for (const DistributionSpecification& specification : distributions.ranked) {
    if (!IsStorable(specification)) continue;
    const std::string_view name = DisplayName(specification.code);
    store->Set(variable, name, DistributionPropertyText(specification));
    order += std::string(name) + ";";
  }
  store->Set(variable, property_key::kOrder, order);
  store->Set(variable, property_key::kTruncation, TruncationPropertyText(distributions.truncation));
  MarkInvalidFit(*store, variable, order.empty());
}

}  // namespace brenvolt::sra
