// Runs the command as a user does, in a folder of its own.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt::test {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs a program with the arguments in `folder` and waits for it; after `interrupt`, if given, it gets an
// interrupt signal. A program ended by a signal has the status 128 and the signal's number.
Outcome RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::filesystem::path& folder,
                   std::optional<std::chrono::milliseconds> interrupt = std::nullopt);
// The same for brenvolt.
Outcome RunBrenvolt(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                    std::optional<std::chrono::milliseconds> interrupt = std::nullopt);

}  // namespace brenvolt::test
