// Puts a complete new file in place of a target: readers see either the old file or the new one, even when
// the writing process is killed or the machine stops.
#pragma once

#include <filesystem>
#include <optional>

#include "host/base/process/temporary_name.h"

namespace brenvolt {

// The file that writing to `path` concerns: absolute, with every link followed, also a link to a file that is
// not there yet. Throws Error naming `path` when links run in circles.
std::filesystem::path FollowLinks(const std::filesystem::path& path);

// An unused file name in the folder of `target`, for writing before a rename.
std::filesystem::path TemporaryNameBeside(const std::filesystem::path& target);

class FileReplacement {
 public:
  // Creates an empty file under a temporary name next to the file that `target` names. Throws Error naming
  // `target` when that is a folder or a special file, may not be written by this user, or its folder does
  // not take a new file.
  explicit FileReplacement(std::filesystem::path target);
  // Without Commit, removes the temporary file and leaves the target as it was.
  ~FileReplacement();
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  // The file to fill, by its name or by a descriptor open for writing.
  const std::filesystem::path& Temporary() const { return temporary_; }
  int Descriptor() const { return descriptor_; }
  // The file that Commit replaces, links followed.
  const std::filesystem::path& Target() const { return target_; }

  // Flushes the new file to the device and puts it in the target's place, with the permissions of the file
  // that it replaces. Afterwards removes temporary files that killed writers of the same target left behind.
  // Throws Error naming the target.
  void Commit();

 private:
  void CreateTemporary();
  [[noreturn]] void Fail(const char* what) const;

  std::filesystem::path given_;
  std::filesystem::path target_;
  std::filesystem::path temporary_;  // empty once it was renamed
  std::optional<TemporaryName> removedAtSignals_;
  int descriptor_ = -1;
};

}  // namespace brenvolt
