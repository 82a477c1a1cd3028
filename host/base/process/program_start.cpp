#include "host/base/process/program_start.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/base/error.h"

namespace brenvolt {

void ContinueAs(const ProgramCall& call) {
  std::fflush(nullptr);
  std::vector<std::string> texts{call.program};
  texts.insert(texts.end(), call.arguments.begin(), call.arguments.end());
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
  throw Error(std::string("the program cannot be started: ") + std::strerror(errno), call.program);
}

}  // namespace brenvolt
