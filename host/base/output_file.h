// Files that are complete or not there: written under a temporary name beside the target and renamed at the end.
#pragma once

#include <filesystem>
#include <string_view>

namespace brenvolt {

class OutputFile {
 public:
  // Opens the target for writing. A regular or not yet existing target is written under a temporary name in the same
  // folder; a pipe, device or other special file is written directly. Throws Error naming the target.
  explicit OutputFile(std::filesystem::path target);
  // Without Commit, removes the temporary file and leaves the target as it was.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Appends. Throws Error naming the target when the device is full or fails.
  void Write(std::string_view bytes);
  // Flushes to the device and puts the file in the target's place, keeping the permissions of a file that it
  // replaces. Throws Error naming the target.
  void Commit();

 private:
  void Fail(const char* what) const;

  std::filesystem::path target_;
  std::filesystem::path temporary_;  // empty when the target is written directly
  int descriptor_ = -1;
  bool committed_ = false;
};

// A name beside `target` that no file has, for writing before a rename.
std::filesystem::path TemporaryNameBeside(const std::filesystem::path& target);

}  // namespace brenvolt
