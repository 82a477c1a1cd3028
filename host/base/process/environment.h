// What the caller of the program sets from outside.
#pragma once

#include <string>

namespace brenvolt {

// The value of an environment variable; empty where it is not set, and in a program that has more rights than its caller,
// who must not decide there which code is run and where files are written.
std::string EnvironmentText(const char* name);

}  // namespace brenvolt
