#include "host/analysis/analysis_automation.h"

#include <algorithm>
#include <array>

#include "host/analysis/analysis_support.h"
#include "host/analysis/dialog_automation.h"
#include "host/analysis/read_only_members.h"

namespace brenvolt {
namespace {

using Arguments = std::span<const Variant>;

Variant DialogOf(const CAnalysisSupport& analysis, const std::string& name) {
  const InterfaceDescription* interface = FindInterface(name);
  if (interface == nullptr) throw Error("no interface called " + name);
  const auto open = analysis.GetDialgInterface();
  if (open != nullptr && open->InterfaceName() == name) return open;
  const auto built = RegisteredInterfaces();
  const bool isBuilt = std::ranges::find(built, name) != built.end();
  return MakeUnreachable(*interface, isBuilt ? AutomationCode::kDialogClosed : AutomationCode::kNotAvailable);
}

constexpr std::array<ReadOnlyMember<CAnalysisSupport>, 7> kMembers{{
    {"Name", 0, [](const CAnalysisSupport& a, Arguments) { return Variant(a.GetAnalysisName()); }},
    {"ID", 0, [](const CAnalysisSupport& a, Arguments) { return Variant(std::int32_t{a.GetAnalysisID()}); }},
    {"Application", 0,
     [](const CAnalysisSupport& a, Arguments) { return Variant(a.ApplicationInterface()); }},
    {"CurrentStep", 0, [](const CAnalysisSupport& a, Arguments) { return Variant(a.CurrentStep()); }},
    {"Dialog", 0, [](const CAnalysisSupport& a, Arguments) { return Variant(a.GetDialgInterface()); }},
    {"DialogInterface", 1,
     [](const CAnalysisSupport& a, Arguments arguments) { return DialogOf(a, arguments[0].ToText()); }},
    {"InputName", 0,
     [](const CAnalysisSupport& a, Arguments) { return Variant(a.GetInputTableDisplayName()); }},
}};

constexpr std::span<const ReadOnlyMember<CAnalysisSupport>> kAllMembers(kMembers);

}  // namespace

std::optional<DispatchId> AnalysisAutomation::FindMember(std::string_view name) const {
  return FindReadOnlyMember(kAllMembers, name);
}

Variant AnalysisAutomation::Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) {
  if (analysis_ == nullptr) throw Error("the analysis is closed", std::string(InterfaceName()));
  return GetReadOnlyMember(kAllMembers, *analysis_, InterfaceName(), member, kind, arguments);
}

}  // namespace brenvolt
