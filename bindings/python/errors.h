// Exceptions and warnings of the package, whose classes are Python's (brenvolt/_errors.py).
#pragma once

#include <string>

#include "host/analysis/user_interface.h"

namespace brenvolt::python {

// Raises brenvolt.Error with a text of the system's, and where it belongs.
[[noreturn]] void RaiseError(const std::string& text, const std::string& where);

// How a call on an automation object failed.
struct CallFailure {
  std::string text;
  std::string where;
  std::string method;  // "CFitDistribution::put_WeibullOffset"
  std::string code;    // one of the words that the class describes
  std::string note;    // what else is known; may be empty
};
[[noreturn]] void RaiseError(const CallFailure& failure);

// Throws WrongJob for an empty text where the field needs a value.
void RequireValue(const std::string& field, const std::string& text);

// Shows a message as a warning of the class brenvolt.MessageWarning. Throws if the person made warnings
// errors.
void Warn(const Message& message);

}  // namespace brenvolt::python
