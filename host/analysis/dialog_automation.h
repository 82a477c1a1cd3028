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
#include <vector>

#include "host/analysis/analysis_dialog.h"
#include "host/automation/automation_failure.h"
#include "host/automation/automation_object.h"
#include "host/automation/dialog_interface.h"
#include "host/automation/macro_recorder.h"
#include "host/automation/type_library.h"

namespace brenvolt {

// What a member of an interface does over dialogs of type Dialog. The arguments have the described types.
template <class Dialog>
struct AutomationMember {
  // `Get` is a get, or the call of a method.
  using Get = Variant (*)(Dialog& dialog, std::span<const Variant> indexes);
  using Put = void (*)(Dialog& dialog, std::span<const Variant> indexes, const Variant& value);
  // The index for which the dialog's controls show an indexed member at present, or how many indexes it has; 0 for
  // none.
  using Place = std::int32_t (*)(Dialog& dialog);
  // How a macro writes a value that was put, if that is not what the value is.
  using Text = std::string (*)(Dialog& dialog, std::span<const Variant> indexes, const Variant& value);

  constexpr AutomationMember(std::string_view member, Get getter, Put putter)
      : name(member), get(getter), put(putter), gets(true), puts(true) {}
  constexpr AutomationMember(std::string_view member, Get getter, std::nullptr_t)
      : name(member), get(getter), gets(true) {}
  constexpr AutomationMember(std::string_view member, std::nullptr_t, Put putter)
      : name(member), put(putter), puts(true) {}

  // What recording also knows: where the dialog's controls show the member, or that a control may change it at
  // every index; which button makes the output;
  // that putting false changes nothing, so that only a change to true is worth a line; that other members say
  // the same; how a value is written.
  constexpr AutomationMember ShownAt(Place where) const { return With(&AutomationMember::place, where); }
  constexpr AutomationMember ShownUpTo(Place last) const { return With(&AutomationMember::count, last); }
  constexpr AutomationMember ByButton(std::int32_t number) const {
    return With(&AutomationMember::button, number);
  }
  constexpr AutomationMember AsChoice() const { return With(&AutomationMember::isChoice, true); }
  constexpr AutomationMember SaidByOthers() const { return With(&AutomationMember::isSaidByOthers, true); }
  constexpr AutomationMember WrittenBy(Text writer) const { return With(&AutomationMember::text, writer); }

  std::string_view name;
  Get get = nullptr;
  Put put = nullptr;
  // Which of the two exist: known to the compiler, which comparing a function with null is not.
  bool gets = false;
  bool puts = false;
  Place place = nullptr;
  Place count = nullptr;
  Text text = nullptr;
  std::int32_t button = 0;
  bool isChoice = false;
  bool isSaidByOthers = false;

 private:
  template <class Field, class Value>
  constexpr AutomationMember With(Field field, Value value) const {
    AutomationMember changed = *this;
    changed.*field = value;
    return changed;
  }
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
// or "Unexpected Error" if it has none. While a macro is recorded, a call that succeeded is a line of it,
// unless it only asked for something.
class DialogAutomationBase : public AutomationObject, public DialogPointer {
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
  CAnalysisDialog* PointedDialog() override { return dialog_; }

  // For recording, while the dialog is open. Its number, which no other dialog of the process has; every
  // member that can be read and put, where the dialog shows it, as the put that gives it its value; and the
  // calls that represent pressing a button.
  std::uint64_t Number() const { return number_; }
  std::vector<MacroCall> Settings();
  std::vector<MacroCall> StandIns(std::int32_t button) const;

 protected:
  // One call on a member of the dialog's own interface, by its place in the description.
  virtual Variant InvokeOwn(std::size_t place, CallKind kind, std::span<const Variant> indexes,
                            const Variant& value) = 0;
  // How recording treats a member of the dialog's own interface.
  struct Treatment {
    bool isCompared = false;  // its value is compared before and after an action
    // The indexes at which an indexed member is compared.
    std::int32_t firstPlace = 1;
    std::int32_t lastPlace = 0;
    bool isChoice = false;
    bool hasButton = false;  // a get does what the button does
  };
  virtual Treatment TreatmentOf(std::size_t place) = 0;
  // The member whose output a button makes, as its place in the description.
  virtual std::optional<std::size_t> MemberOfButton(std::int32_t button) const = 0;
  // How a macro writes a put value; empty if that is what the value is.
  virtual std::string TextOf(std::size_t place, std::span<const Variant> indexes, const Variant& value) = 0;

  CAnalysisDialog* dialog_;

 private:
  // A call with its arguments as the described types.
  MacroCall Converted(const MemberDescription& member, CallKind kind,
                      std::span<const Variant> arguments) const;
  std::optional<std::size_t> OwnPlace(const MemberDescription& member) const;
  void CarryOut(MacroCall& call);
  // The put that gives a member of the dialog's own interface its value, unless that is a document.
  void AddSetting(std::size_t place, std::vector<Variant> indexes, bool isChoice,
                  std::vector<MacroCall>& settings);
  void Record(MacroRecorder& recorder, const CAnalysisSupport& analysis, MacroCall call,
              std::span<const Variant> arguments);
  Variant InvokeCommon(const MemberDescription& member, const Variant& value);
  void PutRequest(const MemberDescription& member, const Variant& value);
  // At the end of a call that makes a result, or fails to, nothing is asked of the next one any more.
  class RequestEnd {
   public:
    RequestEnd(const DialogAutomationBase& automation, const MemberDescription& member, CallKind kind)
        : automation_(automation),
          makes_(kind == CallKind::kMethod ||
                 (kind == CallKind::kGet && member.get == AutomationType::kObject &&
                  member.id != common_member::kParent && member.id != common_member::kApplication)) {}
    ~RequestEnd() {
      if (makes_ && automation_.dialog_ != nullptr) automation_.dialog_->Request() = {};
    }
    RequestEnd(const RequestEnd&) = delete;
    RequestEnd& operator=(const RequestEnd&) = delete;

   private:
    const DialogAutomationBase& automation_;
    bool makes_;
  };

  const InterfaceDescription& interface_;
  std::string_view className_;
  AutomationModule& module_;
  std::uint64_t number_;
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
  Treatment TreatmentOf(std::size_t place) override {
    const AutomationMember<Dialog>& member = members_[place];
    Treatment treatment;
    treatment.isCompared = member.gets && member.puts && !member.isSaidByOthers;
    treatment.isChoice = member.isChoice;
    treatment.hasButton = member.button != 0;
    auto& dialog = static_cast<Dialog&>(*dialog_);
    if (treatment.isCompared && member.count != nullptr) treatment.lastPlace = member.count(dialog);
    if (!treatment.isCompared || member.place == nullptr) return treatment;
    const std::int32_t shown = member.place(dialog);
    if (shown > 0) treatment.firstPlace = treatment.lastPlace = shown;
    return treatment;
  }
  std::optional<std::size_t> MemberOfButton(std::int32_t button) const override {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (members_[i].button == button) return i;
    }
    return std::nullopt;
  }
  std::string TextOf(std::size_t place, std::span<const Variant> indexes, const Variant& value) override {
    const auto text = members_[place].text;
    return text != nullptr ? text(static_cast<Dialog&>(*dialog_), indexes, value) : std::string();
  }

  std::span<const AutomationMember<Dialog>> members_;
};

// An interface whose dialog cannot be reached: it knows its members, and every call of one fails with `code`.
std::shared_ptr<AutomationObject> MakeUnreachable(const InterfaceDescription& interface, AutomationCode code);

}  // namespace brenvolt
