#include "brv_sra/frame/specification_array.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/rules/value_rules.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kTruncationItems = 4;

double NumberFrom(const Variant& value) {
  return value.IsEmpty() ? kNotSet : value.ToReal();
}

// Whether so many items, the key not counted, are the values with the offset and a truncation.
bool HasTruncation(const DistributionFacts& facts, std::size_t items) {
  const std::size_t group = facts.ParameterCount();
  if (!facts.isUserDefined) return items == group + (facts.HasOffset() ? 1 : 0) + kTruncationItems;
  return items >= kTruncationItems && (items - kTruncationItems) % group == 0;
}

// Throws Error unless the array has as many values as its distribution takes, with or without an offset and a
// truncation. User-defined distributions have any number.
void RequireValueCount(std::span<const Variant> array) {
  const DistributionCode code = CodeFromVariant(array[0]);
  const DistributionFacts& facts = Facts(code);
  const std::size_t items = array.size() - 1;
  const std::size_t least = facts.ParameterCount();
  const std::size_t most = least + (facts.HasOffset() ? 1 : 0);
  if (facts.isUserDefined || HasTruncation(facts, items) || (items >= least && items <= most)) return;
  const std::string offset = facts.HasOffset() ? ", " + std::to_string(most) + " with an offset" : "";
  throw Error(std::string(DisplayName(code)) + " takes " + std::to_string(least) +
              (least == 1 ? " value" : " values") + offset + ", " + std::to_string(most + kTruncationItems) +
              " with a truncation; got " + std::to_string(items));
}

void TakeTruncation(std::span<const Variant> items, DistributionSpecification& specification) {
  specification.truncateBelow = items[0].ToBoolean();
  specification.truncateAbove = items[2].ToBoolean();
  if (specification.truncateBelow) specification.truncationMinimum = NumberFrom(items[1]);
  if (specification.truncateAbove) specification.truncationMaximum = NumberFrom(items[3]);
}

bool IsBound(double bound) {
  return std::isfinite(bound) && !IsNotSet(bound);
}

// The probability that the bounds cut off; a bound itself belongs to what is left.
double ProbabilityOutside(const DistributionSpecification& specification) {
  const SpecifiedDistribution distribution(specification);
  double outside = 0;
  if (specification.truncateBelow)
    outside += distribution.Cdf(std::nextafter(specification.truncationMinimum, -HUGE_VAL));
  if (specification.truncateAbove) outside += distribution.Complement(specification.truncationMaximum);
  return outside;
}

// "1;2;3; 0.2;0.3;0.5;"
std::string ListText(std::span<const double> values) {
  std::string codes;
  std::string proportions;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
    codes += FormatNumber(kListedNumberFormat, values[i]) + ";";
    proportions += FormatNumber(kListedNumberFormat, values[i + 1]) + ";";
  }
  return codes + " " + proportions;
}

std::string MixtureText(std::span<const double> values) {
  std::string text;
  for (const double value : values) text += FormatNumber(kListedNumberFormat, value) + ";";
  return text;
}

// Whether values as they are written tell the distribution: its quantiles stay where they are to a hundredth of
// its spread, and values that cannot be 0 to a hundredth of themselves.
bool Tell(const DistributionSpecification& specification, std::span<const double> written) {
  constexpr double kTolerance = 0.01;
  constexpr double kChecked[] = {0.01, 0.5, 0.99};
  const auto& parameters = EntryOf(specification.code).facts.parameters;
  for (std::size_t i = 0; i < written.size(); ++i) {
    const double value = specification.values[i];
    const bool mayBeZero = parameters[i].range == ParameterRange::kFinite;
    if (!mayBeZero && !(std::abs(written[i] - value) <= kTolerance * std::abs(value))) return false;
  }
  const SpecifiedDistribution exact(specification);
  const SpecifiedDistribution shown(specification.code, written, specification.offset);
  const double spread = exact.Quantile(0.75) - exact.Quantile(0.25);
  return std::ranges::all_of(kChecked, [&](double p) {
    return std::abs(shown.Quantile(p) - exact.Quantile(p)) <= kTolerance * spread;
  });
}

// The values in a form such as "%.4f", as they are read again.
std::vector<double> Written(const DistributionSpecification& specification, const std::string& form) {
  std::vector<double> written;
  for (const double value : specification.values)
    written.push_back(ParseNumber(FormatNumber(form.c_str(), value)).value_or(value));
  return written;
}

// "(3, 1.9091, 1.6527)", each value in as few digits as tell the distribution.
std::string ValuesText(const DistributionSpecification& specification) {
  constexpr int kLeastDigits = 5;
  constexpr int kExact = 17;  // of a double
  std::string text;
  for (std::size_t i = 0; i < specification.values.size(); ++i) {
    std::string value;
    for (int digits = kLeastDigits; digits <= kExact; ++digits) {
      value = FormatNumber(("%." + std::to_string(digits) + "g").c_str(), specification.values[i]);
      std::vector<double> written = specification.values;
      written[i] = ParseNumber(value).value_or(written[i]);
      if (Tell(specification, written)) break;
    }
    text += (text.empty() ? "(" : ", ") + value;
  }
  return text + ")";
}

// The prescribed description, with the values where it has none or too few digits of them.
std::string DescriptionWithValues(const DistributionSpecification& specification) {
  std::string text = Description(specification.code, specification.values);
  const std::size_t count = EntryOf(specification.code).facts.ParameterCount();
  if (specification.values.size() != count || CheckSpecification(specification)) return text;
  if (text.find('(') == std::string::npos) return text + ValuesText(specification);
  return Tell(specification, Written(specification, "%.4f")) ? text
                                                             : text + " = " + ValuesText(specification);
}

}  // namespace

DistributionCode CodeFromVariant(const Variant& key) {
  if (!key.IsText()) {
    if (const auto code = CodeFromNumber(key.ToInteger())) return *code;
    throw Error("unknown distribution code: " + key.ToText());
  }
  const std::string name = key.ToText();
  if (const auto code = CodeFromKey(name)) return *code;
  if (const auto code = CodeFromDisplayName(name)) return *code;
  throw Error("no distribution called " + name);
}

DistributionSpecification SpecificationFromArray(std::span<const Variant> array) {
  DistributionSpecification specification;
  specification.code = CodeFromVariant(array[0]);
  const DistributionFacts& facts = Facts(specification.code);
  std::span<const Variant> items = array.subspan(1);
  if (HasTruncation(facts, items.size())) {
    TakeTruncation(items.last(kTruncationItems), specification);
    items = items.first(items.size() - kTruncationItems);
  }
  for (const Variant& item : items) specification.values.push_back(NumberFrom(item));
  if (!facts.HasOffset()) return specification;
  specification.offset = 0;  // if it is left out
  if (specification.values.size() <= facts.ParameterCount()) return specification;
  specification.offset = specification.values.back();
  specification.values.pop_back();
  return specification;
}

Variant::Array ArrayOf(const DistributionSpecification& specification) {
  Variant::Array array;
  const auto put = [&](double value) { IsNotSet(value) ? array.emplace_back() : array.emplace_back(value); };
  array.emplace_back(std::string(InternalKey(specification.code)));
  for (const double value : specification.values) put(value);
  if (HasOffset(specification.code)) put(specification.offset);
  array.emplace_back(std::int32_t{specification.truncateBelow ? 1 : 0});
  put(specification.truncateBelow ? specification.truncationMinimum : 0.0);
  array.emplace_back(std::int32_t{specification.truncateAbove ? 1 : 0});
  put(specification.truncateAbove ? specification.truncationMaximum : 0.0);
  return array;
}

bool AreBoundsInOrder(const DistributionSpecification& specification) {
  const double lower = specification.truncationMinimum;
  const double upper = specification.truncationMaximum;
  return (!specification.truncateBelow || IsBound(lower)) &&
         (!specification.truncateAbove || IsBound(upper)) &&
         !(specification.truncateBelow && specification.truncateAbove && lower >= upper);
}

void CheckEnteredSpecification(const DistributionSpecification& specification) {
  if (const auto fault = CheckSpecification(specification)) throw Error(MessageOf(fault->fault).text);
  if (const auto place = RepeatedLevel(specification.code, specification.values)) {
    throw Error(FormatResource(kMsgInvalidParameter, ParameterWord(specification.code, 0),
                               DisplayName(specification.code)),
                "the level " + ShortestNumber(specification.values[*place]) + " is there twice");
  }
  if (!AreBoundsInOrder(specification)) throw Error(std::string(ResourceString(kMsgProfilerMinimumMaximum)));
  if (ProbabilityOutside(specification) >= 1)
    throw Error(FormatResource(kMsgBoundsLeaveNothing, DisplayName(specification.code)));
}

DistributionSpecification EnteredSpecification(std::span<const Variant> array, const std::string& owner) {
  try {
    RequireValueCount(array);
    DistributionSpecification specification = SpecificationFromArray(array);
    CheckEnteredSpecification(specification);
    return specification;
  } catch (const Error& error) {
    throw Error(error.what(), owner + (error.Where().empty() ? "" : ", " + error.Where()));
  }
}

std::string SpecificationText(const DistributionSpecification& specification) {
  const std::string name(DisplayName(specification.code));
  std::string text;
  if (specification.code == DistributionCode::kHistogram)
    text = name + " (" + ListText(specification.values) + ")";
  if (specification.code == DistributionCode::kGaussianMixture)
    text = name + " (" + MixtureText(specification.values) + ")";
  if (text.empty()) text = DescriptionWithValues(specification);
  if (HasOffset(specification.code) && specification.offset != 0 && !IsNotSet(specification.offset))
    text += " + " + FormatNumber(kListedNumberFormat, specification.offset);
  if (!specification.truncateBelow && !specification.truncateAbove) return text;
  const auto bound = [](bool inForce, double value) {
    return inForce ? FormatNumber(kListedNumberFormat, value) : std::string();
  };
  return text + " [" + bound(specification.truncateBelow, specification.truncationMinimum) + ", " +
         bound(specification.truncateAbove, specification.truncationMaximum) + "]";
}

}  // namespace brenvolt::sra
