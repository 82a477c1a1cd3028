// What --version says.
#pragma once

#include <string>

namespace brenvolt {

// The program with its version, and a line each for the commit, the compiler, the instruction set, and the libraries.
std::string VersionText(const std::string& program);

}  // namespace brenvolt
