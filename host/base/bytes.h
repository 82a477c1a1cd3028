// Numbers, texts and lists as bytes, for what processes of one build hand to each other or keep for themselves.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/base/error.h"

namespace brenvolt {

template <class T>
concept Plain = std::is_arithmetic_v<T> || std::is_enum_v<T>;

class ByteWriter {
 public:
  template <Plain T>
  void Put(T value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void Put(std::string_view text) {
    Put<std::uint64_t>(text.size());
    bytes_.append(text);
  }
  template <Plain T>
  void Put(const std::vector<T>& values) {
    Put<std::uint64_t>(values.size());
    bytes_.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T));
  }
  std::string Take() && { return std::move(bytes_); }

 private:
  std::string bytes_;
};

// A hash by which bytes are told apart, the same on every machine (FNV-1a).
constexpr std::uint64_t HashOf(std::string_view bytes) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  return hash;
}

// Reads what a ByteWriter wrote, in the same order. Throws Error where the bytes end too soon.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : left_(bytes) {}

  template <Plain T>
  T Get() {
    T value;
    std::memcpy(&value, Next(sizeof value).data(), sizeof value);
    return value;
  }
  std::string_view GetText() { return Next(Get<std::uint64_t>()); }
  template <Plain T>
  std::vector<T> GetList() {
    const auto count = Get<std::uint64_t>();
    if (count > left_.size() / sizeof(T)) Next(left_.size() + 1);
    std::vector<T> values(count);
    const std::string_view bytes = Next(count * sizeof(T));
    if (count > 0) std::memcpy(values.data(), bytes.data(), bytes.size());
    return values;
  }
  bool IsAtEnd() const { return left_.empty(); }

 private:
  std::string_view Next(std::size_t size) {
    if (size > left_.size()) throw Error("bytes end too soon");
    const std::string_view next = left_.substr(0, size);
    left_.remove_prefix(size);
    return next;
  }

  std::string_view left_;
};

}  // namespace brenvolt
