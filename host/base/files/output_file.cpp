#include "host/base/files/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "host/base/error.h"
#include "host/base/process/interruption.h"

namespace brenvolt {

bool IsWritableFolder(const std::filesystem::path& folder) {
  return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0;
}

OutputFile::OutputFile(std::filesystem::path target) : target_(std::move(target)) {
  std::error_code ignored;
  const auto status = std::filesystem::status(target_, ignored);
  if (!std::filesystem::exists(status) || std::filesystem::is_regular_file(status) ||
      std::filesystem::is_directory(status)) {
    replacement_.emplace(target_);
    return;
  }
  direct_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  if (direct_ < 0) Fail("the file cannot be written");
}

OutputFile::~OutputFile() {
  if (direct_ >= 0) close(direct_);
}

void OutputFile::Fail(const char* what) const {
  throw Error(std::string(what) + ": " + std::strerror(errno), target_.string());
}

void OutputFile::Write(std::string_view bytes) {
  if (InterruptionRequested()) throw UserCancelled();
  const int descriptor = replacement_ ? replacement_->Descriptor() : direct_;
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail("the file cannot be written");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void OutputFile::Commit() {
  if (replacement_) {
    replacement_->Commit();
    return;
  }
  const int result = close(direct_);
  direct_ = -1;
  if (result != 0) Fail("the file cannot be written");
}

}  // namespace brenvolt
