// A file's content as one text in memory: mapped where the file can be mapped, read where it cannot.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brenvolt {

class MappedFile {
 public:
  // Throws Error naming the file when it is missing, a folder, or cannot be read.
  explicit MappedFile(const std::filesystem::path& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view Text() const { return text_; }

 private:
  void ReadAll(int descriptor, const std::filesystem::path& path);

  void* mapping_ = nullptr;
  std::string content_;  // of a file that is not mapped
  std::string_view text_;
};

}  // namespace brenvolt
