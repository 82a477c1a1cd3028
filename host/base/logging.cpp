#include "host/base/logging.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace brenvolt {
namespace {

// Lives until the process ends, so that libraries may log while they are unloaded.
std::mutex& LogMutex() {
  static std::mutex* const mutex = std::make_unique<std::mutex>().release();
  return *mutex;
}

}  // namespace

void LogLine(std::string_view text) {
  // As EnvironmentText (host/base/process/environment.h), which stands above this folder.
  const char* path = secure_getenv("BRENVOLT_LOG");
  if (path == nullptr || *path == '\0') return;
  const std::lock_guard lock(LogMutex());
  if (std::FILE* file = std::fopen(path, "a")) {
    std::fprintf(file, "%.*s\n", static_cast<int>(text.size()), text.data());
    std::fclose(file);
  }
}

}  // namespace brenvolt
