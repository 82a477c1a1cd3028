#include "host/automation/automation_object.h"

#include <string>
#include <vector>

#include "host/base/error.h"

namespace brenvolt {

DispatchId AutomationObject::Require(std::string_view name) const {
  const auto member = FindMember(name);
  if (!member) throw Error("no member " + std::string(name), std::string(InterfaceName()));
  return *member;
}

Variant AutomationObject::Get(std::string_view name, std::span<const Variant> indexes) {
  return Invoke(Require(name), CallKind::kGet, indexes);
}

void AutomationObject::Put(std::string_view name, const Variant& value, std::span<const Variant> indexes) {
  std::vector<Variant> arguments(indexes.begin(), indexes.end());
  arguments.push_back(value);
  Invoke(Require(name), CallKind::kPut, arguments);
}

void AutomationObject::Put(std::string_view name, std::int32_t index, const Variant& value) {
  const Variant indexes[] = {Variant(index)};
  Put(name, value, indexes);
}

Variant AutomationObject::Call(std::string_view name) {
  return Invoke(Require(name), CallKind::kMethod, {});
}

}  // namespace brenvolt
