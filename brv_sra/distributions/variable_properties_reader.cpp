// Distributions of variables from their text properties, with every check that a hand-edited property needs.
#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;

constexpr std::string_view kOrderDelimiters = ";";
constexpr std::string_view kItemDelimiters = "; ";

// Splits as strtok does: every delimiter character separates, empty items vanish. Items are trimmed on the
// left.
std::vector<std::string_view> Split(std::string_view text, std::string_view delimiters) {
  std::vector<std::string_view> items;
  for (auto begin = text.find_first_not_of(delimiters); begin != std::string_view::npos;
       begin = text.find_first_not_of(delimiters)) {
    text.remove_prefix(begin);
    const std::string_view item = text.substr(0, text.find_first_of(delimiters));
    items.push_back(TrimLeft(item));
    text.remove_prefix(item.size());
  }
  return items;
}

// The text between one enclosing "(" and ")".
std::string_view WithoutEnclosure(std::string_view text) {
  text = Trim(text);
  if (text.starts_with('(')) text.remove_prefix(1);
  if (text.ends_with(')')) text.remove_suffix(1);
  return Trim(text);
}

struct NamedProperty {
  DistributionCode code;
  std::string text;
};

// By the name of this language or the untranslated one.
std::optional<DistributionCode> CodeOf(const VariablePropertyStore& store, std::string_view name) {
  for (const DistributionEntry* entry : DistributionTable()) {
    const DistributionCode code = entry->facts.code;
    if (name == store.NameOf(code) || name == SpacedKey(code)) return code;
  }
  return std::nullopt;
}

// Thrown in this file alone, so that the reader reads as what it reads: every item can end it.
struct Failure {
  Fault fault;
};

// Reads one variable. Every fault leaves through Fail.
class VariableReader {
 public:
  VariableReader(const VariablePropertyStore& store, int variableNumber)
      : store_(store), variableNumber_(variableNumber) {}

  VariableDistributions Read() const {
    VariableDistributions result;
    result.variableNumber = variableNumber_;
    result.truncation = ReadTruncation();
    for (const NamedProperty& property : ReadNamedProperties()) {
      result.ranked.push_back(Parse(property, result.truncation));
    }
    return result;
  }

  Truncation ReadTruncation() const {
    const auto text = store_.Get(variableNumber_, property_key::kTruncation);
    if (!text) Fail(kTruncationPropertyInvalid);
    const auto items = Split(WithoutEnclosure(*text), kItemDelimiters);
    if (items.size() != 4) Fail(kTruncationPropertyInvalid);
    const Truncation truncation{ParseFlag(items[0]), ParseFlag(items[1]), ParseBound(items[2]),
                                ParseBound(items[3])};
    const bool lacksBound = (truncation.below && IsNotSet(truncation.minimum)) ||
                            (truncation.above && IsNotSet(truncation.maximum));
    const bool crossed = truncation.below && truncation.above && truncation.minimum > truncation.maximum;
    if (lacksBound || crossed) Fail(kTruncationPropertyInvalid);
    return truncation;
  }

 private:
  [[noreturn]] void Fail(FaultIdentifier identifier, std::string_view about = {},
                         std::string detail = {}) const {
    Fail(Fault{identifier, std::string(about), std::move(detail)});
  }
  [[noreturn]] void Fail(Fault fault) const {
    throw Failure{CausedBy(std::move(fault), kInvalidProperties, store_.VariableName(variableNumber_))};
  }

  bool ParseFlag(std::string_view item) const {
    const auto flag = ParseInteger(item);
    if (!flag || (*flag != 0 && *flag != 1)) Fail(kTruncationPropertyInvalid);
    return *flag == 1;
  }

  double ParseBound(std::string_view item) const {
    const auto bound = ParseTravelledNumber(item);
    if (!bound) Fail(kTruncationPropertyInvalid);
    return *bound;
  }

  // The property of every distribution of the order, none parsed yet.
  std::vector<NamedProperty> ReadNamedProperties() const {
    const auto text = store_.Get(variableNumber_, property_key::kOrder);
    // No name holds a control character, and a message could not show one.
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
    if (!text || std::ranges::any_of(*text, isControl)) Fail(kOrderPropertyInvalid);
    std::vector<NamedProperty> properties;
    for (const std::string_view name : Split(WithoutEnclosure(*text), kOrderDelimiters)) {
      const auto value = store_.Get(variableNumber_, name);
      if (!value) Fail(kPropertyMissing, name);
      const std::string_view content = WithoutEnclosure(*value);
      if (content.empty()) Fail(kPropertyValueMissing, name, store_.VariableName(variableNumber_));
      const auto code = CodeOf(store_, name);
      if (!code) Fail(kOrderPropertyInvalid);
      properties.push_back({*code, std::string(content)});
    }
    if (properties.empty()) Fail(kOrderPropertyInvalid);
    if (NamesTwice(properties)) Fail(kOrderCountsDiffer);
    return properties;
  }

  static bool NamesTwice(const std::vector<NamedProperty>& properties) {
    return std::ranges::any_of(properties, [&](const NamedProperty& one) {
      return std::ranges::count(properties, one.code, &NamedProperty::code) > 1;
    });
  }

  DistributionSpecification Parse(const NamedProperty& property, const Truncation& truncation) const {
    DistributionSpecification specification;
    specification.code = property.code;
    specification.truncateBelow = truncation.below;
    specification.truncateAbove = truncation.above;
    specification.truncationMinimum = truncation.minimum;
    specification.truncationMaximum = truncation.maximum;
    const auto items = Split(property.text, kItemDelimiters);
    if (StoredKey(property.code, 0).empty()) {
      ParseBareItems(items, specification);
    } else {
      ParseKeyedItems(items, specification);
    }
    Check(specification);
    return specification;
  }

  double ParseValue(std::string_view item) const {
    const auto value = ParseTravelledNumber(item);
    if (!value) Fail(kPropertyValuesInvalid);
    return *value;
  }

  void ParseBareItems(const std::vector<std::string_view>& items,
                      DistributionSpecification& specification) const {
    const DistributionFacts& facts = Facts(specification.code);
    const std::size_t groupSize = facts.ParameterCount();
    const bool complete = facts.isUserDefined ? items.size() % groupSize == 0 : items.size() == groupSize;
    if (items.empty() || !complete) Fail(kPropertyValuesInvalid);
    for (const std::string_view item : items) specification.values.push_back(ParseValue(item));
  }

  void ParseKeyedItems(const std::vector<std::string_view>& items,
                       DistributionSpecification& specification) const {
    std::vector<std::string_view> keys;
    for (std::size_t i = 0; i < Facts(specification.code).ParameterCount(); ++i)
      keys.push_back(StoredKey(specification.code, i));
    std::vector<std::optional<double>> values(keys.size());
    std::optional<double> offset;
    for (const std::string_view item : items) {
      const auto equals = item.find('=');
      if (equals == std::string_view::npos) Fail(kPropertyValuesInvalid);
      const std::string_view key = item.substr(0, equals);
      const auto place = static_cast<std::size_t>(std::ranges::find(keys, key) - keys.begin());
      const bool isOffset = HasOffset(specification.code) && key == property_key::kOffset;
      if (place == keys.size() && !isOffset) Fail(kPropertyValuesInvalid);
      std::optional<double>& target = isOffset ? offset : values[place];
      if (target) Fail(kPropertyValuesInvalid);
      target = ParseValue(item.substr(equals + 1));
    }
    for (const auto& value : values) {
      if (!value) Fail(kPropertyValuesInvalid);
      specification.values.push_back(*value);
    }
    if (HasOffset(specification.code)) specification.offset = offset.value_or(0.0);
  }

  void Check(const DistributionSpecification& specification) const {
    const auto fault = CheckSpecification(specification);
    if (!fault) return;
    const FaultIdentifier identifier = FaultOf(specification, fault->valueIndex);
    if (identifier == kInvalidParameter) Fail(fault->fault);
    Fail(identifier, CompactKey(specification.code), std::to_string(variableNumber_));
  }

  // What is wrong with one stored value; kInvalidParameter if the check says more.
  static FaultIdentifier FaultOf(const DistributionSpecification& specification, std::size_t index) {
    if (index < specification.values.size()) return StoredFault(specification.code, index);
    return HasOffset(specification.code) ? kStoredOffsetInvalid : kInvalidParameter;
  }

  const VariablePropertyStore& store_;
  const int variableNumber_;
};

}  // namespace

Result<std::vector<VariableDistributions>> ReadDistributionProperties(
    const VariablePropertyStore& store, std::span<const int> variableNumbers) try {
  std::vector<VariableDistributions> result;
  result.reserve(variableNumbers.size());
  for (const int variableNumber : variableNumbers)
    result.push_back(VariableReader(store, variableNumber).Read());
  return result;
} catch (const Failure& failure) {
  return failure.fault;
}

Truncation StoredTruncation(const VariablePropertyStore& store, int variableNumber) {
  try {
    return VariableReader(store, variableNumber).ReadTruncation();
  } catch (const Failure&) {
    return {};
  }
}

bool HasStoredOrder(const VariablePropertyStore& store, int variableNumber) {
  const auto order = store.Get(variableNumber, property_key::kOrder);
  return order && !Split(*order, kOrderDelimiters).empty();
}

}  // namespace brenvolt::sra
