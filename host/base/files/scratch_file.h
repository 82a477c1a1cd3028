// What a program puts aside for itself, because memory does not hold it: a file without a name, which is gone with the
// program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace brenvolt {

class ScratchFile {
 public:
  // In a folder, for its room. Throws Error naming it if no file can be made there.
  explicit ScratchFile(const std::filesystem::path& folder);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  // All throw Error naming the folder, and UserCancelled once an interruption was noted (interruption.h).
  void Append(std::span<const double> values);
  // The values from the given one on, counted from 0; all must be there.
  void Read(std::uint64_t first, std::span<double> values) const;

 private:
  [[noreturn]] void Fail(const char* what) const;

  std::filesystem::path folder_;
  int descriptor_;
};

}  // namespace brenvolt
