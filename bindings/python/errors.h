// Exceptions and warnings of the package, whose classes are Python's (brenvolt/_errors.py).
#pragma once

#include <string>

#include "host/analysis/user_interface.h"

namespace brenvolt::python {

// Raises brenvolt.Error with a text of the system's, and where it belongs.
[[noreturn]] void RaiseError(const std::string& text, const std::string& where);
// Shows a message as a warning of the class brenvolt.MessageWarning. Throws where the person made warnings
// errors.
void Warn(const Message& message);

}  // namespace brenvolt::python
