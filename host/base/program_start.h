// Other programs, started by this one.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace brenvolt {

// A program with its arguments; it is looked for in the path where its name holds no slash.
struct ProgramCall {
  std::string program;
  std::vector<std::string> arguments;
  std::vector<std::pair<std::string, std::string>> environment;  // set beside what there is
};

// Goes on as another program, whose output, signals and exit status are this process's from then on. Returns
// never; throws Error naming the program where it cannot be started.
[[noreturn]] void ContinueAs(const ProgramCall& call);

}  // namespace brenvolt
