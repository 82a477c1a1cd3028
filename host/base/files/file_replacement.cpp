#include "host/base/files/file_replacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/base/error.h"

namespace brenvolt {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissionBits = 07777;
constexpr int kMostLinks = 40;  // as the kernel follows
// What a temporary name keeps of the target's: leaves room for its other parts in the 255 bytes of a file
// name.
constexpr std::size_t kLongestKeptName = 200;

// What all temporary names for `target` begin with.
std::string TemporaryPrefix(const fs::path& target) {
  return "." + target.filename().string().substr(0, kLongestKeptName) + ".";
}

// True for the names that TemporaryNameBeside gives for `target`: ".name.<digits>-<digits>.tmp".
bool IsTemporaryNameOf(const fs::path& target, std::string_view name) {
  const std::string prefix = TemporaryPrefix(target);
  constexpr std::string_view kSuffix = ".tmp";
  if (name.size() <= prefix.size() + kSuffix.size() || !name.starts_with(prefix) ||
      !name.ends_with(kSuffix)) {
    return false;
  }
  name.remove_prefix(prefix.size());
  name.remove_suffix(kSuffix.size());
  return std::ranges::count(name, '-') == 1 &&
         name.find_first_not_of("0123456789-") == std::string_view::npos;
}

// Removes the temporary files of `target` that no writer holds. A living writer holds a lock on its own,
// whatever its process number and the machine or container it runs on; if locks are not supported, nothing is
// removed.
void RemoveAbandonedTemporaries(const fs::path& target) {
  std::error_code failure;
  for (fs::directory_iterator entry(target.parent_path(), failure), end; !failure && entry != end;
       entry.increment(failure)) {
    if (!IsTemporaryNameOf(target, entry->path().filename().string())) continue;
    const int descriptor = open(entry->path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) continue;
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) unlink(entry->path().c_str());
    close(descriptor);
  }
}

// Makes a rename in `folder` last. A file system that cannot do it has its own ways.
void SynchronizeFolder(const fs::path& folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

fs::path FollowLinks(const fs::path& path) {
  std::error_code failure;
  fs::path file = fs::absolute(path, failure);
  if (failure) throw Error("the file cannot be used: " + failure.message(), path.string());
  for (int links = 0; fs::is_symlink(fs::symlink_status(file, failure)); ++links) {
    const fs::path named = fs::read_symlink(file, failure);
    if (failure || links == kMostLinks) throw Error("the file cannot be used: too many links", path.string());
    file = file.parent_path() / named;
  }
  const fs::path whole = fs::weakly_canonical(file, failure);
  return failure ? file : whole;
}

fs::path TemporaryNameBeside(const fs::path& target) {
  for (int attempt = 0;; ++attempt) {
    fs::path name = target;
    name.replace_filename(TemporaryPrefix(target) + std::to_string(getpid()) + "-" + std::to_string(attempt) +
                          ".tmp");
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(name, ignored))) return name;
  }
}

FileReplacement::FileReplacement(fs::path target) : given_(std::move(target)), target_(FollowLinks(given_)) {
  std::error_code ignored;
  const auto status = fs::status(target_, ignored);
  if (fs::is_directory(status)) throw Error("the target is a folder, not a file", given_.string());
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Error("the target is a device or pipe, which cannot be replaced by a file", given_.string());
  }
  if (fs::exists(status) && access(target_.c_str(), W_OK) != 0) Fail("the file cannot be written");
  CreateTemporary();
}

void FileReplacement::CreateTemporary() {
  for (;;) {
    temporary_ = TemporaryNameBeside(target_);
    descriptor_ = open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
    if (descriptor_ < 0 && errno == EEXIST) continue;
    if (descriptor_ < 0) {
      temporary_.clear();
      Fail("the file cannot be written");
    }
    // The lock says that this file has a living writer. Before it was taken, another writer may have found
    // the file without one and removed it.
    struct stat state {};
    if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
      if (fstat(descriptor_, &state) == 0 && state.st_nlink > 0) {
        removedAtSignals_.emplace(temporary_);
        return;
      }
    }
    close(descriptor_);
    descriptor_ = -1;
  }
}

FileReplacement::~FileReplacement() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
  if (descriptor_ >= 0) close(descriptor_);
}

void FileReplacement::Fail(const char* what) const {
  throw Error(std::string(what) + ": " + std::strerror(errno), given_.string());
}

void FileReplacement::Commit() {
  if (fsync(descriptor_) != 0) Fail("the file cannot be written");
  struct stat former {};
  if (stat(target_.c_str(), &former) == 0 && fchmod(descriptor_, former.st_mode & kPermissionBits) != 0) {
    Fail("the permissions of the replaced file cannot be kept");
  }
  if (rename(temporary_.c_str(), target_.c_str()) != 0) Fail("the file cannot be replaced");
  temporary_.clear();
  removedAtSignals_.reset();
  const int result = close(descriptor_);
  descriptor_ = -1;
  if (result != 0) Fail("the file cannot be written");
  SynchronizeFolder(target_.parent_path());
  RemoveAbandonedTemporaries(target_);
}

}  // namespace brenvolt
