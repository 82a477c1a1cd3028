// How commands complain.
#pragma once

#include <stdexcept>

namespace brenvolt::cli {

// The name that begins every line on standard error.
inline constexpr const char* kProgram = "brenvolt";

// A call that makes no sense: exit status 2.
class WrongCall : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace brenvolt::cli
