#include "host/automation/automation_failure.h"

#include <array>
#include <cstdio>
#include <utility>

namespace brenvolt {
namespace {

constexpr std::uint32_t kFirstDispatchCode = 0x80040200;
constexpr std::uint32_t kLastDispatchCode = 0x8004ffff;

ErrorInfo& TheErrorInfo() {
  thread_local ErrorInfo info;
  return info;
}

}  // namespace

std::string AutomationText(std::uint32_t code, std::string_view description) {
  if (!description.empty()) return std::string(description);
  std::array<char, 48> text{};
  if (code >= kFirstDispatchCode && code <= kLastDispatchCode) {
    std::snprintf(text.data(), text.size(), "IDispatch error #%d",
                  static_cast<int>(code - kFirstDispatchCode));
  } else {
    std::snprintf(text.data(), text.size(), "Unknown error 0x%0lX", static_cast<unsigned long>(code));
  }
  return text.data();
}

void ThrowDialogClosed(std::string_view interfaceName) {
  throw AutomationFailure(AutomationCode::kDialogClosed, "the dialog is closed", std::string(interfaceName));
}

void ThrowNotAvailable(std::string_view member) {
  throw AutomationFailure(AutomationCode::kNotAvailable, "is not available", std::string(member));
}

void ThrowControlRefused(std::string_view reason) {
  throw AutomationFailure(AutomationCode::kControlRefused, reason);
}

const ErrorInfo& ThreadErrorInfo() {
  return TheErrorInfo();
}

void SetThreadErrorInfo(ErrorInfo info) {
  TheErrorInfo() = std::move(info);
}

void ClearThreadErrorInfo() {
  TheErrorInfo() = {};
}

}  // namespace brenvolt
