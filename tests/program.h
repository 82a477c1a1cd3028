// Runs the command as a user does, in a folder of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace brenvolt::test {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs brenvolt with the arguments in `folder` and waits for it.
Outcome RunBrenvolt(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

std::string ReadAll(const std::filesystem::path& path);
void WriteAll(const std::filesystem::path& path, const std::string& content);

// A folder that is removed with its content at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace brenvolt::test
