// Whether a file is still what it was.
#pragma once

#include <cstdint>
#include <filesystem>

namespace brenvolt {

// Which file stands under a name, and when it was last written to. Two are equal only if nothing was written or put in
// its place in between, except within one tick of the file system's clock.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::int64_t size = -1;      // of a file that is not there
  std::int64_t modified = 0;   // in nanoseconds
  std::int64_t concerned = 0;  // last change of any kind, also of its permissions

  // Links are followed.
  static FileIdentity Of(const std::filesystem::path& path);

  bool IsThere() const { return size >= 0; }
  bool operator==(const FileIdentity&) const = default;
};

}  // namespace brenvolt
