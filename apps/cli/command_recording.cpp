#include "apps/cli/command_recording.h"

#include <string>

#include "apps/cli/wrong_call.h"
#include "host/base/files/output_file.h"
#include "host/jobs/base/command_words.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt::cli {
namespace {

constexpr const char* kMacroEnding = ".py";

std::string& TheCall() {
  static std::string call;
  return call;
}

}  // namespace

void AddRecordOption(CLI::App& command, std::filesystem::path& file) {
  command.add_option("--record", file, "Write the job as a macro, which brenvolt macro runs again")
      ->type_name("FILE.py");
}

void RememberCall(int argc, const char* const* argv) {
  TheCall() = kProgram;
  for (int i = 1; i < argc; ++i) TheCall() += " " + ShellWord(argv[i]);
}

void RequireMacroEnding(const std::filesystem::path& file) {
  if (!HasEnding(file, kMacroEnding))
    throw WrongJob("record", "expected a file ending in .py, got " + file.string());
}

Recording::Recording(std::filesystem::path file) : file_(std::move(file)) {
  if (file_.empty()) return;
  RequireMacroEnding(file_);
  JobFaults faults;
  CheckFolder("record", file_, faults);
  RequireNone(std::move(faults));
  job_ = JobRecorder(&recorder_);
}

void Recording::Commit() const {
  if (file_.empty()) return;
  OutputFile file(file_);
  file.Write(recorder_.Text("Recorded by brenvolt " BRENVOLT_VERSION ":\n" + TheCall()));
  file.Commit();
}

}  // namespace brenvolt::cli
