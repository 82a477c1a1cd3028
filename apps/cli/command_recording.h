// --record: a command's job as a macro.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>

#include "host/jobs/base/job_recorder.h"

namespace brenvolt::cli {

// Adds --record FILE.py.
void AddRecordOption(CLI::App& command, std::filesystem::path& file);
// Keeps the call, which a recorded macro quotes. Called once, by main.
void RememberCall(int argc, const char* const* argv);
// Throws WrongJob unless the file's name ends as those of macros do.
void RequireMacroEnding(const std::filesystem::path& file);

class Recording {
 public:
  // An empty name records nothing. Throws WrongJob for a name that does not end in .py.
  explicit Recording(std::filesystem::path file);

  JobRecorder& Job() { return job_; }
  // Writes the file, once the job has succeeded. Throws Error naming it.
  void Commit() const;

 private:
  std::filesystem::path file_;
  MacroRecorder recorder_;
  JobRecorder job_;
};

}  // namespace brenvolt::cli
