// Automation of a dialog from one table per interface: the table names the members with their dispatch
// numbers and index arguments; getters and putters are operations on the dialog. Every call runs through the
// one frame here.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/analysis/analysis_dialog.h"
#include "host/automation/automation_object.h"

namespace brenvolt {

// One member of an interface over dialogs of type Dialog. A null function is a kind of call that the member
// does not allow.
template <class Dialog>
struct AutomationMember {
  std::string_view name;
  DispatchId id;
  std::size_t indexes;  // leading index arguments
  Variant (*get)(Dialog& dialog, std::span<const Variant> indexes);
  void (*put)(Dialog& dialog, std::span<const Variant> indexes, const Variant& value);
};

// Dispatch numbers of the members that every dialog interface has.
namespace common_member {
inline constexpr DispatchId kName = 0;
inline constexpr DispatchId kOk = 3;
inline constexpr DispatchId kCancel = 4;
}  // namespace common_member

// The part that does not depend on the dialog's type.
class DialogAutomationBase : public AutomationObject, public IMFCPointer {
 public:
  DialogAutomationBase(CAnalysisDialog& dialog, std::string_view interfaceName, std::string_view className,
                       AutomationModule& module);
  ~DialogAutomationBase() override;

  // Called by the dialog when it goes away: from then on every call fails with the closed-dialog error.
  void DialogClosed() { dialog_ = nullptr; }

  std::string_view InterfaceName() const override { return interfaceName_; }
  std::optional<DispatchId> FindMember(std::string_view name) const override;
  Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) override;
  void* QueryInterface(InterfaceId id) override;
  CAnalysisDialog* GetMFCPointer() override { return dialog_; }

 protected:
  // One call on a member of the dialog's own interface; and its number by name.
  virtual Variant InvokeOwn(DispatchId member, CallKind kind, std::span<const Variant> arguments) = 0;
  virtual std::optional<DispatchId> FindOwn(std::string_view name) const = 0;
  virtual std::string_view OwnName(DispatchId member) const = 0;

  CAnalysisDialog* dialog_;

 private:
  Variant InvokeCommon(DispatchId member);

  std::string_view interfaceName_;
  std::string_view className_;
  AutomationModule& module_;
};

// Splits the arguments of a call on a member with `indexes` index arguments; throws Error on a wrong number.
std::span<const Variant> IndexArguments(CallKind kind, std::size_t indexes,
                                        std::span<const Variant> arguments);
[[noreturn]] void ThrowNoSuchCall(std::string_view member);

template <class Dialog>
class DialogAutomation final : public DialogAutomationBase {
 public:
  DialogAutomation(Dialog& dialog, std::string_view interfaceName, std::string_view className,
                   std::span<const AutomationMember<Dialog>> members, AutomationModule& module)
      : DialogAutomationBase(dialog, interfaceName, className, module), members_(members) {}

 private:
  const AutomationMember<Dialog>* FindById(DispatchId id) const {
    for (const auto& member : members_) {
      if (member.id == id) return &member;
    }
    return nullptr;
  }
  std::optional<DispatchId> FindOwn(std::string_view name) const override {
    for (const auto& member : members_) {
      if (member.name == name) return member.id;
    }
    return std::nullopt;
  }
  std::string_view OwnName(DispatchId id) const override {
    const auto* member = FindById(id);
    return member != nullptr ? member->name : std::string_view();
  }
  Variant InvokeOwn(DispatchId id, CallKind kind, std::span<const Variant> arguments) override {
    const auto* member = FindById(id);
    if (member == nullptr) ThrowNoSuchCall(InterfaceName());
    const auto indexes = IndexArguments(kind, member->indexes, arguments);
    auto& dialog = static_cast<Dialog&>(*dialog_);
    if (kind == CallKind::kGet && member->get != nullptr) return member->get(dialog, indexes);
    if (kind == CallKind::kPut && member->put != nullptr) {
      member->put(dialog, indexes, arguments.back());
      return {};
    }
    ThrowNoSuchCall(member->name);
  }

  std::span<const AutomationMember<Dialog>> members_;
};

}  // namespace brenvolt
