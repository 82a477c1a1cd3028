// The bytes of a file for reading, without copying them if the system can map the file into memory.
#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

namespace brenvolt {

// The whole content of a file. A regular file is mapped: its pages come from the file as they are touched. Where others
// shorten the file meanwhile, what is gone reads as zeros, and Use says so. Pipes, devices and files without a known
// size are read until they end.
class MappedFile {
 public:
  // Throws Error naming the file when it is missing, a folder, or cannot be read.
  explicit MappedFile(const std::filesystem::path& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  // What `read` makes of the text, which is valid during the call. Throws Error naming the file, in place of whatever
  // `read` found, if the file was shortened meanwhile.
  template <class Read>
  auto Use(const Read& read) const {
    auto result = [&] {
      try {
        return read(Text());
      } catch (const std::exception&) {
        RequireWhole();
        throw;
      }
    }();
    RequireWhole();
    return result;
  }

 private:
  std::string_view Text() const {
    return mapping_ != nullptr ? std::string_view(static_cast<const char*>(mapping_), mappedSize_) : content_;
  }
  void RequireWhole() const;

  std::filesystem::path path_;
  void* mapping_ = nullptr;
  std::size_t mappedSize_ = 0;
  int descriptor_ = -1;    // of a mapped file
  std::size_t guard_ = 0;  // its place among those that are guarded
  std::string content_;    // of a file that is not mapped
};

}  // namespace brenvolt
