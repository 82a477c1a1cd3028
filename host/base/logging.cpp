#include "host/base/logging.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>

namespace brenvolt {
namespace {

struct Log {
  std::mutex mutex;
  std::deque<std::string> lines;
};

// Lives until the process ends, so that libraries may log while they are unloaded.
Log& TheLog() {
  static Log* const log = std::make_unique<Log>().release();
  return *log;
}

void AppendToFile(std::string_view text) {
  const char* path = std::getenv("BRENVOLT_LOG");
  if (path == nullptr || *path == '\0') return;
  if (std::FILE* file = std::fopen(path, "a")) {
    std::fprintf(file, "%.*s\n", static_cast<int>(text.size()), text.data());
    std::fclose(file);
  }
}

}  // namespace

void LogLine(std::string_view text) {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  log.lines.emplace_back(text);
  if (log.lines.size() > kLogCapacity) log.lines.pop_front();
  AppendToFile(text);
}

std::vector<std::string> LogLines() {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  return {log.lines.begin(), log.lines.end()};
}

}  // namespace brenvolt
