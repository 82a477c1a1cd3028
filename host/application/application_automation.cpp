#include "host/application/application_automation.h"

#include <array>

#include "host/analysis/read_only_members.h"

namespace brenvolt {
namespace {

using Arguments = std::span<const Variant>;

constexpr std::array<ReadOnlyMember<ApplicationAutomation>, 3> kMembers{{
    {"Name", 0, [](const ApplicationAutomation&, Arguments) { return Variant("Brenvolt"); }},
    {"Version", 0, [](const ApplicationAutomation&, Arguments) { return Variant(BRENVOLT_VERSION); }},
    {"Module", 0, [](const ApplicationAutomation& a, Arguments) { return Variant(a.Module()); }},
}};

constexpr std::span<const ReadOnlyMember<ApplicationAutomation>> kAllMembers(kMembers);

}  // namespace

std::optional<DispatchId> ApplicationAutomation::FindMember(std::string_view name) const {
  return FindReadOnlyMember(kAllMembers, name);
}

Variant ApplicationAutomation::Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) {
  return GetReadOnlyMember(kAllMembers, *this, InterfaceName(), member, kind, arguments);
}

}  // namespace brenvolt
