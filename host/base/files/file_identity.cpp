#include "host/base/files/file_identity.h"

#include <sys/stat.h>

namespace brenvolt {
namespace {

std::int64_t Nanoseconds(const timespec& time) {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  return std::int64_t{time.tv_sec} * kPerSecond + time.tv_nsec;
}

}  // namespace

FileIdentity FileIdentity::Of(const std::filesystem::path& path) {
  struct stat state {};
  if (stat(path.c_str(), &state) != 0) return {};
  return {state.st_dev, state.st_ino, state.st_size, Nanoseconds(state.st_mtim), Nanoseconds(state.st_ctim)};
}

}  // namespace brenvolt
