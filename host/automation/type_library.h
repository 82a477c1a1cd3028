// The description of automation interfaces as data: every interface is declared once, in one table, and the
// table drives calls, recording, scripting languages and the printed description of the type library.
//
// Everything is plain, may be constexpr, and refers to text and tables that live as long as the library that
// declares them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "host/automation/automation_object.h"

namespace brenvolt {

enum class AutomationType : std::uint8_t {
  kNone,
  kBoolean,
  kInteger,  // 32 bits, signed
  kReal,     // 64 bits
  kText,
  kVariant,      // any value
  kObject,       // an automation object
  kEnumeration,  // an integer that is a constant of the named enumeration
};

enum class MemberKind : std::uint8_t { kProperty, kMethod };

// An index argument of a property.
struct ArgumentDescription {
  std::string_view name;
  AutomationType type;
};

struct MemberDescription {
  std::string_view name;
  DispatchId id;
  MemberKind kind;
  std::span<const ArgumentDescription> indexes;  // precede the value
  // What a get, or a method, returns and what a put takes; kNone if the member allows no such call, or the
  // method returns nothing.
  AutomationType get;
  AutomationType put;
  std::string_view enumeration;  // of a kEnumeration value, otherwise empty
  std::string_view help;         // one or more sentences
  // The value is a list of variables, whatever its type says: if the type cannot hold the list, an array
  // of numbers or a text also passes.
  bool variableList = false;
};

struct InterfaceDescription {
  std::string_view name;
  std::string_view identifier;  // a GUID: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
  std::string_view help;
  std::span<const MemberDescription> members;  // its own; in ascending order of their numbers
};

struct EnumerationDescription {
  std::string_view name;
  std::string_view help;
  std::span<const std::string_view> constants;  // of the values 0 upward
  // The name is an alias of an enumeration without a name.
  bool unnamed = false;
};

struct TypeLibraryVersion {
  int major;
  int minor;
};

struct TypeLibrary {
  std::string_view name;
  std::string_view identifier;  // a GUID
  TypeLibraryVersion version;
  std::string_view help;
  std::span<const EnumerationDescription> enumerations;
  // The first is the base of all others: its members are also theirs.
  std::span<const InterfaceDescription> interfaces;
};

// The rows of an interface's table.
constexpr MemberDescription Property(std::string_view name, DispatchId id, AutomationType get,
                                     AutomationType put, std::string_view help,
                                     std::span<const ArgumentDescription> indexes = {}) {
  return {name, id, MemberKind::kProperty, indexes, get, put, {}, help};
}
constexpr MemberDescription Method(std::string_view name, DispatchId id, AutomationType result,
                                   std::string_view help) {
  return {name, id, MemberKind::kMethod, {}, result, AutomationType::kNone, {}, help};
}

// Null if there is none. Names are case-sensitive.
constexpr const MemberDescription* FindMember(std::span<const MemberDescription> members,
                                              std::string_view name) {
  for (const MemberDescription& member : members) {
    if (member.name == name) return &member;
  }
  return nullptr;
}
constexpr const MemberDescription* FindMember(std::span<const MemberDescription> members, DispatchId id) {
  for (const MemberDescription& member : members) {
    if (member.id == id) return &member;
  }
  return nullptr;
}

// Whether a member allows a kind of call.
constexpr bool Allows(const MemberDescription& member, CallKind kind) {
  if (kind == CallKind::kMethod) return member.kind == MemberKind::kMethod;
  if (member.kind == MemberKind::kMethod) return false;
  return (kind == CallKind::kGet ? member.get : member.put) != AutomationType::kNone;
}

// The type libraries that loaded modules have registered (RegisterTypeLibrary), by name or identifier; and
// what they contain. Null if there is none. Safe from any thread.
const TypeLibrary* FindTypeLibrary(std::string_view nameOrIdentifier);
const InterfaceDescription* FindInterface(std::string_view name);
const EnumerationDescription* FindEnumeration(std::string_view name);
// Makes a library known to the above; once, however often it is called.
void AddTypeLibrary(const TypeLibrary& library);

}  // namespace brenvolt
