// The value type of automation calls.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace brenvolt {

class AutomationObject;

// Empty, boolean, 32- and 64-bit integer, real, text, object, array of variants, or a reference to another
// variant.
class Variant {
 public:
  using Object = std::shared_ptr<AutomationObject>;
  using Array = std::vector<Variant>;

  Variant() = default;
  Variant(bool value) : value_(value) {}
  Variant(std::int32_t value) : value_(value) {}
  Variant(std::int64_t value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(Object value) : value_(std::move(value)) {}
  Variant(Array value) : value_(std::move(value)) {}
  // Refers to a variant of the caller's, which must outlive this one.
  static Variant Reference(Variant* target) {
    Variant reference;
    reference.value_ = target;
    return reference;
  }

  bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
  bool IsBoolean() const { return std::holds_alternative<bool>(Resolved().value_); }
  bool IsText() const { return std::holds_alternative<std::string>(Resolved().value_); }
  bool IsArray() const { return std::holds_alternative<Array>(Resolved().value_); }
  // Also true for a null object.
  bool IsObject() const { return std::holds_alternative<Object>(Resolved().value_); }

  // The value as one type. Numbers and booleans convert into each other (a real to an integer only when it is
  // whole and in range), numbers to text and back; anything else throws Error "type mismatch".
  bool ToBoolean() const;
  std::int32_t ToInteger() const;
  double ToReal() const;
  std::string ToText() const;
  // The object, or null when there is none.
  Object ToObject() const;
  // Calls `visitor` with the value as what it is: std::monostate if it is empty, bool, std::int32_t,
  // std::int64_t, double, std::string, Object or Array.
  template <class Visitor>
  auto Visit(const Visitor& visitor) const {
    return std::visit(
        [&]<class Value>(const Value& value) {
          if constexpr (std::is_same_v<Value, Variant*>) {
            return visitor(std::monostate());  // resolved above, never a reference
          } else {
            return visitor(value);
          }
        },
        Resolved().value_);
  }
  // The elements; a single value is an array of one, empty is an array of none.
  Array ToArray() const;

 private:
  const Variant& Resolved() const;

  std::variant<std::monostate, bool, std::int32_t, std::int64_t, double, std::string, Object, Array, Variant*>
      value_;
};

}  // namespace brenvolt
