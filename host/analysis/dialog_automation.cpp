#include "host/analysis/dialog_automation.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "host/analysis/action_recording.h"
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

// The member that a call is on. Throws AutomationFailure if there is none, or it allows no such call.
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

std::uint64_t NextDialogNumber() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

// The value of a setting, which is a plain one, as a macro puts it.
std::string SettingText(const MemberDescription& member, const Variant& value) {
  MacroRecorder writer;
  const bool isTruth = member.put == AutomationType::kBoolean;
  return writer.PutText(member, isTruth ? Variant(value.ToBoolean()) : value);
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
    : dialog_(&dialog),
      interface_(interface),
      className_(className),
      module_(module),
      number_(NextDialogNumber()) {
  module_.Lock();
}

DialogAutomationBase::~DialogAutomationBase() {
  module_.Unlock();
}

std::optional<DispatchId> DialogAutomationBase::FindMember(std::string_view name) const {
  return NumberOf(interface_, name);
}

Variant DialogAutomationBase::Invoke(DispatchId id, CallKind kind, std::span<const Variant> arguments) {
  std::optional<CAnalysisSupport::AutomationCall> entered;
  std::optional<ActionRecording> recording;
  CAnalysisSupport* analysis = dialog_ != nullptr ? &dialog_->Analysis() : nullptr;
  if (analysis != nullptr) {
    entered.emplace(*analysis);
    recording.emplace(*analysis);
  }
  ClearThreadErrorInfo();
  const MemberDescription& member = Called(interface_, id, kind);
  const std::string method = QualifiedName(className_, kind, member.name);
  try {
    if (dialog_ == nullptr) ThrowDialogClosed(interface_.name);
    MacroCall call = Converted(member, kind, arguments);
    CarryOut(call);
    Variant result = call.result;
    if (MacroRecorder* recorder = recording->Recorder())
      Record(*recorder, *analysis, std::move(call), arguments);
    return result;
  } catch (const AutomationFailure& failure) {
    SetThreadErrorInfo({failure.Code(), failure.what(), method});
    throw;
  } catch (const Error& error) {
    Fail(method, error.what(), error.Where());
  } catch (const std::bad_alloc&) {
    Fail(method, "not enough memory", {});
  } catch (const std::exception& error) {
    Fail(method, error.what(), {});
  } catch (...) {
    Fail(method, {}, {});
  }
}

MacroCall DialogAutomationBase::Converted(const MemberDescription& member, CallKind kind,
                                          std::span<const Variant> arguments) const {
  const bool put = kind == CallKind::kPut;
  if (arguments.size() != member.indexes.size() + (put ? 1 : 0)) throw Error("wrong number of arguments");
  MacroCall call;
  call.member = &member;
  call.kind = kind;
  for (std::size_t i = 0; i < member.indexes.size(); ++i) {
    call.indexes.push_back(ConvertTo(member.indexes[i].type, arguments[i]));
  }
  if (put) {
    const AutomationType type = member.variableList ? AutomationType::kVariant : member.put;
    call.value = ConvertTo(type, arguments.back(), member.enumeration);
  }
  return call;
}

std::optional<std::size_t> DialogAutomationBase::OwnPlace(const MemberDescription& member) const {
  const auto own = std::ranges::find(interface_.members, member.id, &MemberDescription::id);
  if (own == interface_.members.end()) return std::nullopt;
  return static_cast<std::size_t>(own - interface_.members.begin());
}

void DialogAutomationBase::CarryOut(MacroCall& call) {
  const MemberDescription& member = *call.member;
  const auto place = OwnPlace(member);
  const RequestEnd end(*this, member, call.kind);
  const Variant result =
      place ? InvokeOwn(*place, call.kind, call.indexes, call.value) : InvokeCommon(member, call.value);
  if (call.kind == CallKind::kPut || member.get == AutomationType::kNone) return;
  call.result = member.variableList ? result : ConvertTo(member.get, result, member.enumeration);
}

// A put, a method that was not refused, and an output are actions; a get of anything else is a question. A
// truth value that is put into a number is written as it was put.
void DialogAutomationBase::Record(MacroRecorder& recorder, const CAnalysisSupport& analysis, MacroCall call,
                                  std::span<const Variant> arguments) {
  const MemberDescription& member = *call.member;
  const auto place = OwnPlace(member);
  const bool isOutput = place && member.put == AutomationType::kNone &&
                        (member.get == AutomationType::kObject || TreatmentOf(*place).hasButton);
  if (call.kind == CallKind::kGet && !isOutput) return;
  const bool refused = call.kind == CallKind::kMethod && !call.result.IsEmpty() && !call.result.ToBoolean();
  if (refused) return;
  if (call.kind == CallKind::kPut) {
    if (arguments.back().IsBoolean()) call.value = arguments.back();
    if (place) call.text = TextOf(*place, call.indexes, call.value);
  }
  recorder.Call(&analysis, number_, call);
}

std::vector<MacroCall> DialogAutomationBase::Settings() {
  std::vector<MacroCall> settings;
  for (std::size_t i = 0; i < interface_.members.size(); ++i) {
    const MemberDescription& member = interface_.members[i];
    const Treatment treatment = TreatmentOf(i);
    if (!treatment.isCompared || member.indexes.size() > 1) continue;
    if (member.indexes.empty()) {
      AddSetting(i, {}, treatment.isChoice, settings);
      continue;
    }
    for (std::int32_t place = treatment.firstPlace; place <= treatment.lastPlace; ++place)
      AddSetting(i, {Variant(place)}, treatment.isChoice, settings);
  }
  return settings;
}

void DialogAutomationBase::AddSetting(std::size_t place, std::vector<Variant> indexes, bool isChoice,
                                      std::vector<MacroCall>& settings) {
  const MemberDescription& member = interface_.members[place];
  MacroCall setting;
  setting.member = &member;
  setting.kind = CallKind::kPut;
  setting.indexes = std::move(indexes);
  try {
    setting.value = InvokeOwn(place, CallKind::kGet, setting.indexes, {});
  } catch (const Error&) {
    return;  // of what is not there yet, such as the limits of a response before a model is loaded
  }
  if (setting.value.IsObject()) return;  // a document, which no control changes
  setting.text = SettingText(member, setting.value);
  // The earlier choice is not a setting any more; it follows from the new one.
  if (isChoice && !setting.value.ToBoolean()) setting.text.clear();
  settings.push_back(std::move(setting));
}

std::vector<MacroCall> DialogAutomationBase::StandIns(std::int32_t button) const {
  std::vector<CAnalysisDialog::StandIn> calls = dialog_->StandInsOf(button);
  if (calls.empty() && button == kControlOk) calls = {{"OK", CallKind::kMethod, {}}};
  if (button == kControlCancel) calls = {{"Cancel", CallKind::kMethod, {}}};
  if (const auto place = MemberOfButton(button)) {
    const MemberDescription& member = interface_.members[*place];
    const bool isMethod = member.kind == MemberKind::kMethod;
    calls = {{member.name, isMethod ? CallKind::kMethod : CallKind::kGet, {}}};
  }
  std::vector<MacroCall> standIns;
  for (const CAnalysisDialog::StandIn& call : calls) {
    const MemberDescription* member = brenvolt::FindMember(kDialogInterface.members, call.member);
    if (member == nullptr) member = brenvolt::FindMember(interface_.members, call.member);
    MacroCall standIn;
    standIn.member = member;
    standIn.kind = call.kind;
    standIn.value = call.value;
    standIns.push_back(std::move(standIn));
  }
  return standIns;
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
    default:
      PutRequest(member, value);
      return {};
  }
}

void DialogAutomationBase::PutRequest(const MemberDescription& member, const Variant& value) {
  std::string_view why = dialog_->WithoutMeaning(member.id);
  if (why.empty() && member.id == common_member::kResultsOption)
    why = dialog_->KindWithoutMeaning(value.ToInteger());
  if (!why.empty())
    ThrowNotAvailable(std::string(interface_.name) + "." + std::string(member.name) + ": " +
                      std::string(why));
  if (member.id == common_member::kResultsVariables) return dialog_->PutResultsVariables(value);
  if (member.id == common_member::kResultsSaveFileName)
    dialog_->Analysis().Document()->CheckResultFile(value.ToText());
  dialog_->Request().Take(member.id, value);
}

void* DialogAutomationBase::QueryInterface(InterfaceId id) {
  return id == kDialogPointer ? static_cast<DialogPointer*>(this) : nullptr;
}

std::shared_ptr<AutomationObject> MakeUnreachable(const InterfaceDescription& interface,
                                                  AutomationCode code) {
  return std::make_shared<Unreachable>(interface, code);
}

}  // namespace brenvolt
