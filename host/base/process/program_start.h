// Other programs, started by this one.
#pragma once

#include <string>
#include <vector>

namespace brenvolt {

// A program with its arguments; it is looked for in the path if its name contains no slash.
struct ProgramCall {
  std::string program;
  std::vector<std::string> arguments;
};

// Continues as another program, whose output, signals and exit status are this process's from then on. Never
// returns; throws Error naming the program if it cannot be started.
[[noreturn]] void ContinueAs(const ProgramCall& call);

}  // namespace brenvolt
