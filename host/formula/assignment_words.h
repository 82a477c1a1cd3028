// What a formula for a response looks like, for people who wrote another text.
#pragma once

#include <string>

#include "host/base/quoted.h"

namespace brenvolt {

inline std::string ExpectedAssignment(const std::string& text) {
  return "expected RESPONSE=EXPRESSION, got " + Quoted(text);
}

}  // namespace brenvolt
