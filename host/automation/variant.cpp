#include "host/automation/variant.h"

#include <cmath>
#include <limits>

#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

constexpr double kLargestExactInteger = 9007199254740992.0;  // 2^53

[[noreturn]] void ThrowMismatch(const char* wanted) {
  throw Error(std::string("type mismatch: not ") + wanted);
}

}  // namespace

const Variant& Variant::Resolved() const {
  const Variant* here = this;
  while (const auto* reference = std::get_if<Variant*>(&here->value_)) {
    if (*reference == nullptr) ThrowMismatch("a value");
    here = *reference;
  }
  return *here;
}

bool Variant::ToBoolean() const {
  const Variant& resolved = Resolved();
  if (const auto* value = std::get_if<bool>(&resolved.value_)) return *value;
  return resolved.ToReal() != 0;
}

std::int32_t Variant::ToInteger() const {
  const double value = ToReal();
  const bool inRange = value >= std::numeric_limits<std::int32_t>::min() &&
                       value <= std::numeric_limits<std::int32_t>::max() && value == std::floor(value);
  if (!inRange) ThrowMismatch("a 32-bit integer");
  return static_cast<std::int32_t>(value);
}

double Variant::ToReal() const {
  const Variant& resolved = Resolved();
  if (const auto* value = std::get_if<double>(&resolved.value_)) return *value;
  if (const auto* value = std::get_if<std::int32_t>(&resolved.value_)) return *value;
  if (const auto* value = std::get_if<std::int64_t>(&resolved.value_)) return static_cast<double>(*value);
  if (const auto* value = std::get_if<bool>(&resolved.value_)) return *value ? 1 : 0;
  if (const auto* text = std::get_if<std::string>(&resolved.value_)) {
    if (const auto number = ParseNumber(Trim(*text))) return *number;
  }
  ThrowMismatch("a number");
}

std::string Variant::ToText() const {
  const Variant& resolved = Resolved();
  if (const auto* text = std::get_if<std::string>(&resolved.value_)) return *text;
  if (resolved.IsEmpty() || resolved.IsArray() || std::holds_alternative<Object>(resolved.value_)) {
    ThrowMismatch("a text");
  }
  const double number = resolved.ToReal();
  // A whole number reads as one, without an exponent.
  const bool whole = number == std::floor(number) && std::abs(number) < kLargestExactInteger;
  return whole ? FormatNumber("%.0f", number) : ShortestNumber(number);
}

Variant::Object Variant::ToObject() const {
  const Variant& resolved = Resolved();
  const auto* object = std::get_if<Object>(&resolved.value_);
  return object != nullptr ? *object : nullptr;
}

Variant::Array Variant::ToArray() const {
  const Variant& resolved = Resolved();
  if (const auto* array = std::get_if<Array>(&resolved.value_)) return *array;
  if (resolved.IsEmpty()) return {};
  return {resolved};
}

}  // namespace brenvolt
