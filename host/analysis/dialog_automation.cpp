#include "host/analysis/dialog_automation.h"

#include <algorithm>
#include <array>

#include "host/base/error.h"

namespace brenvolt {
namespace {

struct CommonMember {
  std::string_view name;
  DispatchId id;
};
constexpr std::array<CommonMember, 3> kCommonMembers{
    {{"Name", common_member::kName}, {"OK", common_member::kOk}, {"Cancel", common_member::kCancel}}};

std::string_view Prefix(CallKind kind) {
  switch (kind) {
    case CallKind::kGet:
      return "get_";
    case CallKind::kPut:
      return "put_";
    case CallKind::kMethod:
      break;
  }
  return "";
}

}  // namespace

DialogAutomationBase::DialogAutomationBase(CAnalysisDialog& dialog, std::string_view interfaceName,
                                           std::string_view className, AutomationModule& module)
    : dialog_(&dialog), interfaceName_(interfaceName), className_(className), module_(module) {
  module_.Lock();
}

DialogAutomationBase::~DialogAutomationBase() {
  module_.Unlock();
}

std::optional<DispatchId> DialogAutomationBase::FindMember(std::string_view name) const {
  for (const CommonMember& member : kCommonMembers) {
    if (member.name == name) return member.id;
  }
  return FindOwn(name);
}

Variant DialogAutomationBase::Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) {
  if (dialog_ == nullptr) throw Error("the dialog is closed", std::string(interfaceName_));
  const auto common = std::ranges::find(kCommonMembers, member, &CommonMember::id);
  const bool isCommon = common != kCommonMembers.end();
  const std::string_view name = isCommon ? common->name : OwnName(member);
  const std::string method = std::string(className_) + "::" + std::string(Prefix(kind)) + std::string(name);
  const auto fail = [&](std::string reason, const std::string& where) {
    if (reason.empty()) reason = "Unexpected Error";
    throw AutomationError("Exception in automation method [" + method + "]", std::move(reason), where);
  };
  const CAnalysisSupport::AutomationCall call(dialog_->Analysis());
  try {
    return isCommon ? InvokeCommon(member) : InvokeOwn(member, kind, arguments);
  } catch (const Error& error) {
    fail(error.what(), error.Where());
  } catch (const std::exception& error) {
    fail(error.what(), {});
  }
  return {};
}

Variant DialogAutomationBase::InvokeCommon(DispatchId member) {
  if (member == common_member::kName) return std::string(dialog_->Template().caption);
  if (member == common_member::kOk) return Variant(std::int32_t{dialog_->Press(kControlOk) ? 1 : 0});
  if (member == common_member::kCancel) return Variant(std::int32_t{dialog_->Press(kControlCancel) ? 1 : 0});
  ThrowNoSuchCall(interfaceName_);
}

void* DialogAutomationBase::QueryInterface(InterfaceId id) {
  return id == IID_IMFCPointer ? static_cast<IMFCPointer*>(this) : nullptr;
}

std::span<const Variant> IndexArguments(CallKind kind, std::size_t indexes,
                                        std::span<const Variant> arguments) {
  const std::size_t expected = indexes + (kind == CallKind::kPut ? 1 : 0);
  if (arguments.size() != expected) throw Error("wrong number of arguments");
  return arguments.first(indexes);
}

void ThrowNoSuchCall(std::string_view member) {
  throw Error("no such call", std::string(member));
}

}  // namespace brenvolt
