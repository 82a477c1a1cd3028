#include "tests/run_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace brenvolt::test {
namespace {

void Redirect(const std::filesystem::path& file, int descriptor) {
  const int target = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (target < 0 || dup2(target, descriptor) < 0) _exit(126);
}

}  // namespace

Outcome RunBrenvolt(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                    std::optional<std::chrono::milliseconds> interrupt) {
  return RunProgram(BRENVOLT_BUILD_DIR "/bin/brenvolt", arguments, folder, interrupt);
}

Outcome RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::filesystem::path& folder, std::optional<std::chrono::milliseconds> interrupt) {
  const TemporaryFolder streams;
  const auto out = streams.Path() / "out";
  const auto err = streams.Path() / "err";
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    Redirect(out, STDOUT_FILENO);
    Redirect(err, STDERR_FILENO);
    if (chdir(folder.c_str()) != 0) _exit(126);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  if (interrupt) {
    std::this_thread::sleep_for(*interrupt);
    kill(child, SIGINT);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), BytesOf(out), BytesOf(err)};
}

}  // namespace brenvolt::test
