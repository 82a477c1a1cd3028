#include "host/automation/conversion.h"

#include <algorithm>
#include <string>

#include "host/base/error.h"

namespace brenvolt {
namespace {

Variant ToConstant(const Variant& value, std::string_view enumeration) {
  const EnumerationDescription* found = FindEnumeration(enumeration);
  if (found == nullptr) return value.ToInteger();
  const std::string what = "no constant " + value.ToText() + " of " + std::string(enumeration);
  if (value.IsText()) {
    const auto constant = std::ranges::find(found->constants, value.ToText());
    if (constant == found->constants.end()) throw Error(what);
    return static_cast<std::int32_t>(constant - found->constants.begin());
  }
  const std::int32_t number = value.ToInteger();
  if (number < 0 || static_cast<std::size_t>(number) >= found->constants.size()) throw Error(what);
  return number;
}

Variant ToObjectOrNone(const Variant& value) {
  if (!value.IsObject() && !value.IsEmpty()) throw Error("type mismatch: not an object");
  return value.ToObject();
}

}  // namespace

Variant ConvertTo(AutomationType type, const Variant& value, std::string_view enumeration) {
  switch (type) {
    case AutomationType::kBoolean:
      return value.ToBoolean();
    case AutomationType::kInteger:
      return value.ToInteger();
    case AutomationType::kReal:
      return value.ToReal();
    case AutomationType::kText:
      return value.ToText();
    case AutomationType::kObject:
      return ToObjectOrNone(value);
    case AutomationType::kEnumeration:
      return ToConstant(value, enumeration);
    case AutomationType::kVariant:
    case AutomationType::kNone:
      break;
  }
  return value;
}

}  // namespace brenvolt
