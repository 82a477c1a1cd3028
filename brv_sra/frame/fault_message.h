// The texts of the engines' faults: the one table from identifiers to resources, and how dialogs and
// automation report a fault.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "brv_sra/base/fault.h"
#include "host/analysis/analysis_support.h"
#include "host/base/error.h"

namespace brenvolt::sra {

struct FaultMessage {
  std::string text;          // empty for a fault that is not shown
  std::string where;         // follows it in parentheses
  std::int32_t caption = 0;  // of the message box, by its number; 0 for the usual one
};
FaultMessage MessageOf(const Fault& fault);

// The message box of a fault that has a message.
void ShowFault(const CAnalysisSupport& analysis, const Fault& fault, MessageKind kind = MessageKind::kOther);

// For members of automation objects, which report failure by exceptions: the value, or the fault thrown with
// its message.
[[noreturn]] void ThrowFault(const Fault& fault);
template <class T>
T ValueOrThrow(Result<T> result) {
  if (!result) ThrowFault(result.Reason());
  if constexpr (!std::is_void_v<T>) return *std::move(result);
}

}  // namespace brenvolt::sra
