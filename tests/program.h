// Runs the command as a user does, in a folder of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/base/temporary_folder_support_test.h"

namespace brenvolt::test {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs brenvolt with the arguments in `folder` and waits for it.
Outcome RunBrenvolt(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

}  // namespace brenvolt::test
