#include "host/base/process/program_start.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/base/error.h"

namespace brenvolt {

void ContinueAs(const ProgramCall& call) {
  std::fflush(nullptr);
  for (const auto& [name, value] : call.environment) setenv(name.c_str(), value.c_str(), 1);
  std::vector<std::string> texts{call.program};
  texts.insert(texts.end(), call.arguments.begin(), call.arguments.end());
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
  throw Error(std::string("the program cannot be started: ") + std::strerror(errno), call.program);
}

}  // namespace brenvolt
