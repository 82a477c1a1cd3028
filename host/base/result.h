// What an engine returns: a value, or the fault that prevented it. An engine says which fault it is and
// what it is about; the text that a person reads belongs to whoever shows it.
//
//   Result<MatrixFile, MatrixFault> Read(const Spreadsheet& sheet);
//
//   auto file = Read(sheet);
//   if (!file) return file.Reason();
//   Use(*file);
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace brenvolt {

// `Identifier` is an enumeration of the part of the program that reports.
template <class Identifier>
struct Fault {
  Identifier identifier;
  std::string about = {};   // the name of the thing at fault; empty if the identifier says it all
  std::string detail = {};  // what else is known: the place, the reason
  std::shared_ptr<const Fault> cause = {};  // the fault behind it, if there is one

  bool operator==(const Fault&) const = default;
};
template <class Identifier, class... Rest>
Fault(Identifier, Rest...) -> Fault<Identifier>;

// A Result<void, …> only says whether there is a fault. Asking for the value of a fault, or the reverse,
// is a mistake of the caller and throws std::bad_variant_access.
template <class T, class Identifier>
class [[nodiscard]] Result {
  using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

 public:
  Result() requires std::is_void_v<T>
  = default;
  Result(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Fault<Identifier> fault) : content_(std::in_place_index<1>, std::move(fault)) {}

  explicit operator bool() const noexcept { return content_.index() == 0; }
  Value& operator*() & { return std::get<0>(content_); }
  const Value& operator*() const& { return std::get<0>(content_); }
  Value&& operator*() && { return std::get<0>(std::move(content_)); }
  Value* operator->() { return &std::get<0>(content_); }
  const Value* operator->() const { return &std::get<0>(content_); }
  const Fault<Identifier>& Reason() const& { return std::get<1>(content_); }
  Fault<Identifier>&& Reason() && { return std::get<1>(std::move(content_)); }

 private:
  std::variant<Value, Fault<Identifier>> content_;
};

}  // namespace brenvolt
