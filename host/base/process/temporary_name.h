// Files that a signal which ends the program must not leave behind.
#pragma once

#include <cstddef>
#include <filesystem>

namespace brenvolt {

// While it exists, the file of this name is one to be removed. Where there are too many such files, or the name is too
// long, the file stays after a signal, as it does when the program is killed; the next writer of its target removes it.
class TemporaryName {
 public:
  explicit TemporaryName(const std::filesystem::path& file);
  ~TemporaryName();
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

 private:
  std::size_t slot_;
};

// Removes them. Signal handlers may call it, and whoever has no memory left.
void RemoveTemporaryNames() noexcept;

}  // namespace brenvolt
