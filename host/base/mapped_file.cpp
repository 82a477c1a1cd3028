#include "host/base/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr std::size_t kReadSize = std::size_t{1} << 20U;

[[noreturn]] void ThrowUnreadable(const std::filesystem::path& path) {
  throw Error(std::string("cannot be read: ") + std::strerror(errno), path.string());
}

// Closes the descriptor whichever way the reading ends.
struct Descriptor {
  int number;
  ~Descriptor() { close(number); }
};

}  // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
  const int number = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (number < 0) ThrowUnreadable(path);
  const Descriptor descriptor{number};
  struct stat status {};
  if (fstat(number, &status) != 0) ThrowUnreadable(path);
  if (S_ISDIR(status.st_mode)) throw Error("is a folder, not a file", path.string());
  const bool mappable = S_ISREG(status.st_mode) && status.st_size > 0;
  if (mappable) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* mapping = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, number, 0);
    if (mapping != MAP_FAILED) {
      mapping_ = mapping;
      text_ = {static_cast<const char*>(mapping), size};
      return;
    }
  }
  ReadAll(number, path);
  text_ = content_;
}

MappedFile::~MappedFile() {
  if (mapping_ != nullptr) munmap(mapping_, text_.size());
}

void MappedFile::ReadAll(int descriptor, const std::filesystem::path& path) {
  for (;;) {
    const std::size_t former = content_.size();
    content_.resize(former + kReadSize);
    const ssize_t got = read(descriptor, content_.data() + former, kReadSize);
    content_.resize(former + (got > 0 ? static_cast<std::size_t>(got) : 0));
    if (got == 0) return;
    if (got < 0 && errno != EINTR) ThrowUnreadable(path);
  }
}

}  // namespace brenvolt
