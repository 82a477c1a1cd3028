// The bytes of a file for reading, without copying them if the system can map the file into memory.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace brenvolt {

// The whole content of a file. A regular file is mapped: its pages come from the file as they are touched,
// and it must not be shortened by others meanwhile. Pipes, devices and files without a known size are read
// until they end.
class MappedFile {
 public:
  // Throws Error naming the file when it is missing, a folder, or cannot be read.
  explicit MappedFile(const std::filesystem::path& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  // Valid as long as this object.
  std::string_view Text() const {
    return mapping_ != nullptr ? std::string_view(static_cast<const char*>(mapping_), mappedSize_) : content_;
  }

 private:
  void* mapping_ = nullptr;
  std::size_t mappedSize_ = 0;
  std::string content_;  // of a file that is not mapped
};

}  // namespace brenvolt
