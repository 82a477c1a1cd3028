#include "host/base/files/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr std::size_t kFirstRead = std::size_t{1} << 16;

[[noreturn]] void Fail(const std::filesystem::path& path) {
  throw Error(std::string("the file cannot be read: ") + std::strerror(errno), path.string());
}

class Descriptor {
 public:
  explicit Descriptor(const std::filesystem::path& path)
      : number_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return number_; }

 private:
  int number_;
};

std::string ReadToEnd(int descriptor, const std::filesystem::path& path) {
  std::string content;
  std::size_t size = 0;
  for (;;) {
    if (size == content.size()) content.resize(std::max(kFirstRead, 2 * size));
    const ssize_t got = read(descriptor, content.data() + size, content.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(path);
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  content.resize(size);
  return content;
}

}  // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
  const Descriptor file(path);
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0) Fail(path);
  if (S_ISDIR(status.st_mode)) throw Error("a folder stands in place of the file", path.string());
  if (S_ISREG(status.st_mode) && status.st_size > 0) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const mapping = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.Number(), 0);
    if (mapping != MAP_FAILED) {
      mapping_ = mapping;
      mappedSize_ = size;
      return;
    }
  }
  // Also files of /proc, which are regular and claim to be empty, and file systems without mapping.
  content_ = ReadToEnd(file.Number(), path);
}

MappedFile::~MappedFile() {
  if (mapping_ != nullptr) munmap(mapping_, mappedSize_);
}

}  // namespace brenvolt
