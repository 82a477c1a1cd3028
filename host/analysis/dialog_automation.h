// Automation of a dialog. The interface's description (host/automation/type_library.h) says what members
// there are, with their numbers, arguments and types; a table of the dialog's binds getters and putters to
// them, which are operations on the dialog. Every call runs through the one frame here.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/analysis/analysis_dialog.h"
#include "host/automation/automation_failure.h"
#include "host/automation/automation_object.h"
#include "host/automation/type_library.h"

namespace brenvolt {

// What a member of an interface does over dialogs of type Dialog. The arguments have the described types.
template <class Dialog>
struct AutomationMember {
  // `Get` is a get, or the call of a method.
  using Get = Variant (*)(Dialog& dialog, std::span<const Variant> indexes);
  using Put = void (*)(Dialog& dialog, std::span<const Variant> indexes, const Variant& value);

  constexpr AutomationMember(std::string_view member, Get getter, Put putter)
      : name(member), get(getter), put(putter), gets(true), puts(true) {}
  constexpr AutomationMember(std::string_view member, Get getter, std::nullptr_t)
      : name(member), get(getter), gets(true) {}
  constexpr AutomationMember(std::string_view member, std::nullptr_t, Put putter)
      : name(member), put(putter), puts(true) {}

  std::string_view name;
  Get get = nullptr;
  Put put = nullptr;
  // Which of the two there are: a constant also where the address of a function is none.
  bool gets = false;
  bool puts = false;
};

// Whether a table binds an interface completely: every member, in the order of the description, with a
// function for exactly the calls that it allows. For use in a static_assert.
template <class Dialog, std::size_t Count>
constexpr bool Binds(const InterfaceDescription& interface,
                     const std::array<AutomationMember<Dialog>, Count>& members) {
  if (interface.members.size() != Count) return false;
  for (std::size_t i = 0; i < Count; ++i) {
    const MemberDescription& described = interface.members[i];
    const bool calls = Allows(described, CallKind::kGet) || Allows(described, CallKind::kMethod);
    if (members[i].name != described.name) return false;
    if (members[i].gets != calls || members[i].puts != Allows(described, CallKind::kPut)) return false;
  }
  return true;
}

// The part that does not depend on the dialog's type.
//
// A call, in this order: enters the analysis's state for its duration; clears the thread's error information;
// fails with AutomationFailure kDialogClosed when the dialog is closed; converts the arguments to the
// described types; carries the member out; returns its result as the described type. A refused control
// operation and a "not available" come back as they are (AutomationFailure). Every other exception becomes an
// AutomationError "Exception in automation method [Class::put_Member]", whose reason is the exception's text,
// or "Unexpected Error" where it has none.
class DialogAutomationBase : public AutomationObject, public IMFCPointer {
 public:
  DialogAutomationBase(CAnalysisDialog& dialog, const InterfaceDescription& interface,
                       std::string_view className, AutomationModule& module);
  ~DialogAutomationBase() override;

  // Called by the dialog when it goes away: from then on every call fails with the closed-dialog error.
  void DialogClosed() { dialog_ = nullptr; }

  const InterfaceDescription& Interface() const { return interface_; }
  std::string_view InterfaceName() const override { return interface_.name; }
  std::optional<DispatchId> FindMember(std::string_view name) const override;
  Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) override;
  void* QueryInterface(InterfaceId id) override;
  CAnalysisDialog* GetMFCPointer() override { return dialog_; }

 protected:
  // One call on a member of the dialog's own interface, by its place in the description.
  virtual Variant InvokeOwn(std::size_t place, CallKind kind, std::span<const Variant> indexes,
                            const Variant& value) = 0;

  CAnalysisDialog* dialog_;

 private:
  Variant CarryOut(const MemberDescription& member, CallKind kind, std::span<const Variant> arguments);
  Variant InvokeCommon(const MemberDescription& member, const Variant& value);

  const InterfaceDescription& interface_;
  std::string_view className_;
  AutomationModule& module_;
};

template <class Dialog>
class DialogAutomation final : public DialogAutomationBase {
 public:
  DialogAutomation(Dialog& dialog, const InterfaceDescription& interface, std::string_view className,
                   std::span<const AutomationMember<Dialog>> members, AutomationModule& module)
      : DialogAutomationBase(dialog, interface, className, module), members_(members) {}

 private:
  Variant InvokeOwn(std::size_t place, CallKind kind, std::span<const Variant> indexes,
                    const Variant& value) override {
    auto& dialog = static_cast<Dialog&>(*dialog_);
    const AutomationMember<Dialog>& member = members_[place];
    if (kind != CallKind::kPut) return member.get(dialog, indexes);
    member.put(dialog, indexes, value);
    return {};
  }

  std::span<const AutomationMember<Dialog>> members_;
};

// An interface whose dialog cannot be reached: it knows its members, and every call of one fails with `code`.
std::shared_ptr<AutomationObject> MakeUnreachable(const InterfaceDescription& interface, AutomationCode code);

}  // namespace brenvolt
