#include "host/base/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr mode_t kNewFileMode = 0666;

}  // namespace

std::filesystem::path TemporaryNameBeside(const std::filesystem::path& target) {
  for (int attempt = 0;; ++attempt) {
    std::filesystem::path name = target;
    name.replace_filename("." + target.filename().string() + "." + std::to_string(getpid()) + "-" +
                          std::to_string(attempt) + ".tmp");
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::symlink_status(name, ignored))) return name;
  }
}

OutputFile::OutputFile(std::filesystem::path target) : target_(std::move(target)) {
  std::error_code ignored;
  const auto status = std::filesystem::status(target_, ignored);
  const bool special = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
  if (std::filesystem::is_directory(status)) throw Error("is a folder, not a file", target_.string());
  if (special) {
    descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    // A link stays a link: the file that it names is the one replaced.
    if (std::filesystem::exists(status)) target_ = std::filesystem::canonical(target_, ignored);
    temporary_ = TemporaryNameBeside(target_);
    descriptor_ = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
  }
  if (descriptor_ < 0) {
    temporary_.clear();
    Fail("cannot be written");
  }
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!committed_ && !temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::Fail(const char* what) const {
  throw Error(std::string(what) + ": " + std::strerror(errno), target_.string());
}

void OutputFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail("cannot be written");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void OutputFile::Commit() {
  if (!temporary_.empty() && fsync(descriptor_) != 0) Fail("cannot be written");
  struct stat former {};
  if (!temporary_.empty() && stat(target_.c_str(), &former) == 0) {
    if (fchmod(descriptor_, former.st_mode & 07777) != 0) Fail("cannot take the permissions of the former file");
  }
  const int result = close(descriptor_);
  descriptor_ = -1;
  if (result != 0) Fail("cannot be written");
  if (!temporary_.empty() && rename(temporary_.c_str(), target_.c_str()) != 0) Fail("cannot be replaced");
  committed_ = true;
}

}  // namespace brenvolt
