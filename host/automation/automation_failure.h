// How automation calls fail: the codes, their texts, and what the thread knows of its last failure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/base/error.h"

namespace brenvolt {

// The usual codes of dispatch calls, and the host's own.
enum class AutomationCode : std::uint32_t {
  kNone = 0,
  kMemberNotFound = 0x80020003,
  kException = 0x80020009,
  kDialogClosed = 0x80040201,
  kControlRefused = 0x80040202,
  kNotAvailable = 0x80040203,
};

// What a user reads of a failure: its description; if there is none, "IDispatch error #%d" with the
// number of a code in the range of dispatch interfaces (0x80040200 to 0x8004ffff, counted from 0), otherwise
// "Unknown error 0x%0lX".
std::string AutomationText(std::uint32_t code, std::string_view description);

// A call that did not reach its dialog, or that the dialog refused: the code says which. The call changed
// nothing.
class AutomationFailure : public Error {
 public:
  AutomationFailure(AutomationCode code, std::string_view description, std::string where = {})
      : Error(AutomationText(static_cast<std::uint32_t>(code), description), std::move(where)), code_(code) {}
  AutomationCode Code() const noexcept { return code_; }

 private:
  AutomationCode code_;
};

// The dialog behind an automation object is closed; the call was on a member of `interfaceName`.
[[noreturn]] void ThrowDialogClosed(std::string_view interfaceName);
// What the type library describes, but this version of the program does not do.
[[noreturn]] void ThrowNotAvailable(std::string_view member);
// A control operation that the dialog refused, with the reason.
[[noreturn]] void ThrowControlRefused(std::string_view reason);

// The thread's last failure of an automation call. Every call clears it first.
struct ErrorInfo {
  AutomationCode code = AutomationCode::kNone;
  std::string description;
  std::string source;  // the qualified name of the method: "CDefineTask::put_TypeOfAnalysis"
};
const ErrorInfo& ThreadErrorInfo();
void SetThreadErrorInfo(ErrorInfo info);
void ClearThreadErrorInfo();

}  // namespace brenvolt
