// Files that are either complete or absent: written under a temporary name next to the target and renamed at
// the end.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "host/base/files/file_replacement.h"

namespace brenvolt {

// Whether this process may make files in a folder; an empty path is the working folder.
bool IsWritableFolder(const std::filesystem::path& folder);

class OutputFile {
 public:
  // Opens the target for writing. A regular or not yet existing target is written under a temporary name in
  // the same folder; a pipe, device or other special file is written directly. Throws Error naming the
  // target.
  explicit OutputFile(std::filesystem::path target);
  // Without Commit, removes the temporary file and leaves the target as it was.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Appends. Throws Error naming the target when the device is full or fails, and UserCancelled once an
  // interruption was noted (interruption.h).
  void Write(std::string_view bytes);
  // Flushes to the device and puts the file in the target's place, keeping the permissions of a file that it
  // replaces. Throws Error naming the target.
  void Commit();

 private:
  [[noreturn]] void Fail(const char* what) const;

  std::filesystem::path target_;
  std::optional<FileReplacement> replacement_;  // nothing when the target is written directly
  int direct_ = -1;
};

}  // namespace brenvolt
