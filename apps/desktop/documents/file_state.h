// Whether a file is still what it was.
#pragma once

#include <cstdint>
#include <filesystem>

namespace brenvolt::desktop {

// What is compared: cheap to find out, and another one after every save of a project, even one within a tick of the
// clock that leaves the size as it was.
struct FileState {
  std::int64_t size = -1;  // of a file that is not there
  std::int64_t modified = 0;
  std::uint32_t changes = 0;  // how often the project was changed, by its header

  static FileState Of(const std::filesystem::path& path);

  bool operator==(const FileState&) const = default;
};

}  // namespace brenvolt::desktop
