#include "host/analysis/dialog_automation.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "host/automation/conversion.h"
#include "host/automation/dialog_interface.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr std::string_view kExceptionPrefix = "Exception in automation method [";
constexpr std::string_view kExceptionSuffix = "]";
constexpr std::string_view kUnexpectedError = "Unexpected Error";

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

// "CDefineTask::put_TypeOfAnalysis"
std::string QualifiedName(std::string_view className, CallKind kind, std::string_view member) {
  return std::string(className) + "::" + std::string(Prefix(kind)) + std::string(member);
}

std::optional<DispatchId> NumberOf(const InterfaceDescription& interface, std::string_view name) {
  const MemberDescription* member = FindMember(kDialogInterface.members, name);
  if (member == nullptr) member = FindMember(interface.members, name);
  return member != nullptr ? std::optional(member->id) : std::nullopt;
}

// The member that a call is on. Throws AutomationFailure where there is none, or it allows no such call.
const MemberDescription& Called(const InterfaceDescription& interface, DispatchId id, CallKind kind) {
  const MemberDescription* member = FindMember(kDialogInterface.members, id);
  if (member == nullptr) member = FindMember(interface.members, id);
  if (member != nullptr && Allows(*member, kind)) return *member;
  const std::string name = member != nullptr ? "." + std::string(member->name) : std::string();
  throw AutomationFailure(AutomationCode::kMemberNotFound, "no such call",
                          std::string(interface.name) + name);
}

[[noreturn]] void Fail(std::string_view method, std::string reason, const std::string& where) {
  if (reason.empty()) reason = kUnexpectedError;
  const std::string text = std::string(kExceptionPrefix).append(method).append(kExceptionSuffix);
  SetThreadErrorInfo({AutomationCode::kException, text, std::string(method)});
  throw AutomationError(text, std::move(reason), where);
}

class Unreachable final : public AutomationObject {
 public:
  Unreachable(const InterfaceDescription& interface, AutomationCode code)
      : interface_(interface), code_(code) {}

  std::string_view InterfaceName() const override { return interface_.name; }
  std::optional<DispatchId> FindMember(std::string_view name) const override {
    return NumberOf(interface_, name);
  }
  Variant Invoke(DispatchId id, CallKind kind, std::span<const Variant>) override {
    ClearThreadErrorInfo();
    const MemberDescription& member = Called(interface_, id, kind);
    if (code_ == AutomationCode::kDialogClosed) ThrowDialogClosed(interface_.name);
    ThrowNotAvailable(std::string(interface_.name) + "." + std::string(member.name));
  }

 private:
  const InterfaceDescription& interface_;
  AutomationCode code_;
};

}  // namespace

DialogAutomationBase::DialogAutomationBase(CAnalysisDialog& dialog, const InterfaceDescription& interface,
                                           std::string_view className, AutomationModule& module)
    : dialog_(&dialog), interface_(interface), className_(className), module_(module) {
  module_.Lock();
}

DialogAutomationBase::~DialogAutomationBase() {
  module_.Unlock();
}

std::optional<DispatchId> DialogAutomationBase::FindMember(std::string_view name) const {
  return NumberOf(interface_, name);
}

Variant DialogAutomationBase::Invoke(DispatchId id, CallKind kind, std::span<const Variant> arguments) {
  std::optional<CAnalysisSupport::AutomationCall> call;
  if (dialog_ != nullptr) call.emplace(dialog_->Analysis());
  ClearThreadErrorInfo();
  const MemberDescription& member = Called(interface_, id, kind);
  const std::string method = QualifiedName(className_, kind, member.name);
  try {
    if (dialog_ == nullptr) ThrowDialogClosed(interface_.name);
    return CarryOut(member, kind, arguments);
  } catch (const AutomationFailure& failure) {
    SetThreadErrorInfo({failure.Code(), failure.what(), method});
    throw;
  } catch (const Error& error) {
    Fail(method, error.what(), error.Where());
  } catch (const std::exception& error) {
    Fail(method, error.what(), {});
  } catch (...) {
    Fail(method, {}, {});
  }
}

Variant DialogAutomationBase::CarryOut(const MemberDescription& member, CallKind kind,
                                       std::span<const Variant> arguments) {
  const bool put = kind == CallKind::kPut;
  if (arguments.size() != member.indexes.size() + (put ? 1 : 0)) throw Error("wrong number of arguments");
  std::vector<Variant> indexes;
  for (std::size_t i = 0; i < member.indexes.size(); ++i) {
    indexes.push_back(ConvertTo(member.indexes[i].type, arguments[i]));
  }
  Variant value;
  if (put) {
    const AutomationType type = member.variableList ? AutomationType::kVariant : member.put;
    value = ConvertTo(type, arguments.back(), member.enumeration);
  }
  const auto own = std::ranges::find(interface_.members, member.id, &MemberDescription::id);
  const auto place = static_cast<std::size_t>(own - interface_.members.begin());
  const Variant result =
      own != interface_.members.end() ? InvokeOwn(place, kind, indexes, value) : InvokeCommon(member, value);
  if (put || member.get == AutomationType::kNone) return {};
  return member.variableList ? result : ConvertTo(member.get, result, member.enumeration);
}

Variant DialogAutomationBase::InvokeCommon(const MemberDescription& member, const Variant& value) {
  switch (member.id) {
    case common_member::kName:
      return std::string(dialog_->Template().caption);
    case common_member::kApplication:
      return dialog_->Analysis().ApplicationInterface();
    case common_member::kParent:
      return dialog_->Analysis().AutomationInterface();
    case common_member::kOk:
      return std::int32_t{dialog_->Press(kControlOk) ? 1 : 0};
    case common_member::kCancel:
      if (!dialog_->Press(kControlCancel)) ThrowControlRefused("Cancel is refused");
      return {};
    case common_member::kResultsVariables:
      dialog_->PutResultsVariables(value);
      return {};
    default:
      ThrowNotAvailable(std::string(interface_.name) + "." + std::string(member.name));
  }
}

void* DialogAutomationBase::QueryInterface(InterfaceId id) {
  return id == IID_IMFCPointer ? static_cast<IMFCPointer*>(this) : nullptr;
}

std::shared_ptr<AutomationObject> MakeUnreachable(const InterfaceDescription& interface,
                                                  AutomationCode code) {
  return std::make_shared<Unreachable>(interface, code);
}

}  // namespace brenvolt
