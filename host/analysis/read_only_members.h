// The members of a document whose every member is a property to read: one table per document type.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/automation/automation_object.h"
#include "host/base/error.h"

namespace brenvolt {

// Members are in the order of their dispatch numbers, from 1.
template <class Content>
struct ReadOnlyMember {
  std::string_view name;
  std::size_t indexes;  // how many a call passes
  Variant (*get)(const Content&, std::span<const Variant> indexes);
};

template <class Content>
std::optional<DispatchId> FindReadOnlyMember(std::span<const ReadOnlyMember<Content>> members,
                                             std::string_view name) {
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (members[i].name == name) return static_cast<DispatchId>(i + 1);
  }
  return std::nullopt;
}

// Throws Error about `interfaceName` if there is no such member, if it cannot be called so, or if it fails.
template <class Content>
Variant GetReadOnlyMember(std::span<const ReadOnlyMember<Content>> members, const Content& content,
                          std::string_view interfaceName, DispatchId member, CallKind kind,
                          std::span<const Variant> indexes) {
  const std::string interface(interfaceName);
  if (member < 1 || static_cast<std::size_t>(member) > members.size())
    throw Error("no such member", interface);
  const ReadOnlyMember<Content>& found = members[static_cast<std::size_t>(member - 1)];
  const std::string where = interface + "." + std::string(found.name);
  if (kind != CallKind::kGet) throw Error("is read-only", where);
  if (indexes.size() != found.indexes) throw Error("wrong number of arguments", where);
  return found.get(content, indexes);
}

// The index from 0 that a number from 1 stands for; Error ("no variable 7") outside 1 to `count`.
inline std::size_t IndexFrom(const Variant& number, std::size_t count, const char* what) {
  const std::int32_t index = number.ToInteger();
  if (index < 1 || static_cast<std::size_t>(index) > count) {
    throw Error("no " + std::string(what) + " " + std::to_string(index));
  }
  return static_cast<std::size_t>(index - 1);
}

}  // namespace brenvolt
