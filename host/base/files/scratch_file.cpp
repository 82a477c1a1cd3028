#include "host/base/files/scratch_file.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "host/base/error.h"
#include "host/base/process/interruption.h"

namespace brenvolt {

ScratchFile::ScratchFile(const std::filesystem::path& folder) : folder_(folder) {
  std::string name = (folder / ".brenvolt-XXXXXX").string();
  descriptor_ = mkstemp(name.data());
  if (descriptor_ < 0) Fail("no temporary file can be made");
  unlink(name.c_str());
}

ScratchFile::~ScratchFile() {
  close(descriptor_);
}

void ScratchFile::Fail(const char* what) const {
  throw Error(std::string(what) + ": " + std::strerror(errno), folder_.string());
}

void ScratchFile::Append(std::span<const double> values) {
  if (InterruptionRequested()) throw UserCancelled();
  auto bytes = std::as_bytes(values);
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail("a temporary file cannot be written");
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
}

void ScratchFile::Read(std::uint64_t first, std::span<double> values) const {
  if (InterruptionRequested()) throw UserCancelled();
  auto bytes = std::as_writable_bytes(values);
  auto place = static_cast<off_t>(first * sizeof(double));
  while (!bytes.empty()) {
    const ssize_t count = pread(descriptor_, bytes.data(), bytes.size(), place);
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) errno = EIO;
    if (count <= 0) Fail("a temporary file cannot be read");
    bytes = bytes.subspan(static_cast<std::size_t>(count));
    place += count;
  }
}

}  // namespace brenvolt
