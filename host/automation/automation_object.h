// An object that answers names to numbers and numbers to calls.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "host/automation/variant.h"

namespace brenvolt {

using DispatchId = std::int32_t;

enum class CallKind : std::uint8_t { kGet, kPut, kMethod };

// The identity of an interface that an object may offer besides its members.
struct InterfaceId {
  std::string_view name;
  friend bool operator==(const InterfaceId&, const InterfaceId&) = default;
};

class AutomationObject {
 public:
  virtual ~AutomationObject() = default;

  // The name of the interface that the members belong to.
  virtual std::string_view InterfaceName() const = 0;
  // The number of a member, or nothing for a name that the object does not know.
  virtual std::optional<DispatchId> FindMember(std::string_view name) const = 0;
  // Carries out one call. `arguments` are the indexes of an indexed property, then, for kPut, the value.
  // Throws Error when the member does not exist, does not allow this kind of call, or fails.
  virtual Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) = 0;
  // Another interface of the object, or null.
  virtual void* QueryInterface(InterfaceId /*id*/) { return nullptr; }

  // Calls by name.
  Variant Get(std::string_view name, std::span<const Variant> indexes = {});
  void Put(std::string_view name, const Variant& value, std::span<const Variant> indexes = {});
  void Put(std::string_view name, std::int32_t index, const Variant& value);
  Variant Call(std::string_view name);

 private:
  DispatchId Require(std::string_view name) const;
};

// The interface through which an automation object of a dialog leads to the dialog.
inline constexpr InterfaceId kDialogPointer{"IMFCPointer"};

class CAnalysisDialog;

class DialogPointer {
 public:
  virtual ~DialogPointer() = default;
  // The dialog, or null when it is closed.
  virtual CAnalysisDialog* PointedDialog() = 0;
};

}  // namespace brenvolt
