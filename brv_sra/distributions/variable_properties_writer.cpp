// Distributions of a variable to its text properties.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {
namespace {

constexpr std::string_view kSeparator = "; ";

constexpr const char* kShortFormat = "%e";
constexpr const char* kExactFormat = "%.16e";

std::string NumberText(double x, const char* format) {
  return ParseTextBuffer(FormatNumber(format, x));
}

std::string ItemText(std::string_view key, double x, const char* format) {
  return std::string(key) + "=" + NumberText(x, format);
}

// Without an offset there is no shift.
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

DistributionSpecification AsStored(DistributionSpecification specification, const char* format) {
  for (double& value : specification.values) value = AsStored(value, format);
  specification.offset = AsStored(OffsetOrNone(specification), format);
  return specification;
}

// Half the distance of the quantiles at 16 % and 84 %: a standard deviation if the tails have one.
double SpreadOf(const SpecifiedDistribution& distribution) {
  constexpr double kOneDeviation = 0.15865525393145705;
  return (distribution.ComplementQuantile(kOneDeviation) - distribution.Quantile(kOneDeviation)) / 2;
}

// Whether values that went through the format still say the same: no quantile from 1e-6 to 1 - 1e-6 moves by more
// than 1e-9 of the spread. Quantiles are compared at points that lie evenly in the logarithm of either tail.
bool HoldsQuantiles(const DistributionSpecification& specification, const char* format) {
  constexpr double kFarthest = 1e-6;
  constexpr double kMost = 1e-9;
  constexpr int kPoints = 25;
  const DistributionSpecification stored = AsStored(specification, format);
  const SpecifiedDistribution before(specification);
  const SpecifiedDistribution after(stored);
  const double allowed = kMost * SpreadOf(before);
  for (int i = 0; i < kPoints; ++i) {
    const double p = std::pow(2 * kFarthest, static_cast<double>(i) / (kPoints - 1)) / 2;
    const double low = std::abs(after.Quantile(p) - before.Quantile(p));
    const double high = std::abs(after.ComplementQuantile(p) - before.ComplementQuantile(p));
    if (!(low <= allowed && high <= allowed)) return false;
  }
  return true;
}

// The format of the values: the distribution's own, or with as many more digits as the quantiles need.
const char* FormatOf(const DistributionSpecification& specification) {
  constexpr std::array<const char*, 10> kFormats{"%e",    "%.7e",  "%.8e",  "%.9e",  "%.10e",
                                                 "%.11e", "%.12e", "%.13e", "%.14e", "%.15e"};
  const std::string_view usual = StoredFormat(specification.code);
  const auto first = std::ranges::find(kFormats, usual);
  if (CheckValues(specification.code, specification.values)) return *first;
  const auto enough = std::find_if(first, kFormats.end(),
                                   [&](const char* format) { return HoldsQuantiles(specification, format); });
  return enough == kFormats.end() ? kExactFormat : *enough;
}

// A bound is written with six decimals if they hold it.
std::string BoundText(double bound) {
  return NumberText(bound, AsStored(bound, kShortFormat) == bound ? kShortFormat : kExactFormat);
}

// A fit can be stored when the reader will take it back, since one bad property ends the read of all
// variables.
bool IsStorable(const DistributionSpecification& specification) {
  return !CheckSpecification(StoredForm(specification));
}

// Only a variable that has carried the mark needs it taken back.
void MarkInvalidFit(VariablePropertyStore& store, int variableNumber, bool invalid) {
  if (invalid || store.Get(variableNumber, property_key::kInvalidFit)) {
    store.Set(variableNumber, property_key::kInvalidFit, invalid ? "1" : "0");
  }
}

// Fits of a former order that the new one does not name.
void RemoveStaleFits(VariablePropertyStore& store, int variableNumber,
                     std::span<const std::string_view> written) {
  for (const DistributionEntry* entry : DistributionTable()) {
    for (const std::string_view name : {store.NameOf(entry->facts.code), SpacedKey(entry->facts.code)}) {
      if (std::ranges::find(written, name) == written.end()) store.Remove(variableNumber, name);
    }
  }
}

}  // namespace

DistributionSpecification StoredForm(const DistributionSpecification& specification) {
  return AsStored(specification, FormatOf(specification));
}

std::string DistributionPropertyText(const DistributionSpecification& specification) {
  const char* const format = FormatOf(specification);
  std::vector<std::string> items;
  for (std::size_t i = 0; i < specification.values.size(); ++i) {
    const double value = specification.values[i];
    const std::string_view key = StoredKey(specification.code, i);
    items.push_back(key.empty() ? NumberText(value, format) : ItemText(key, value, format));
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
                   BoundText(finiteMinimum ? truncation.minimum : kNotSet),
                   BoundText(finiteMaximum ? truncation.maximum : kNotSet)});
}

void WriteDistributionProperties(VariablePropertyStore* store, const VariableDistributions& distributions) {
  if (store == nullptr) return;
  const int variable = distributions.variableNumber;
  std::string order;
  std::vector<std::string_view> written;
  for (const DistributionSpecification& specification : distributions.ranked) {
    if (!IsStorable(specification)) continue;
    const std::string_view name = store->NameOf(specification.code);
    store->Set(variable, name, DistributionPropertyText(specification));
    order += std::string(name) + ";";
    written.push_back(name);
  }
  RemoveStaleFits(*store, variable, written);
  store->Set(variable, property_key::kOrder, order);
  store->Set(variable, property_key::kTruncation, TruncationPropertyText(distributions.truncation));
  MarkInvalidFit(*store, variable, order.empty());
}

}  // namespace brenvolt::sra
