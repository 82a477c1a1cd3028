#include "apps/desktop/documents/file_state.h"

#include <QFile>
#include <system_error>

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {
namespace {

// Where the file format of projects counts its changes, in four bytes, the highest first.
constexpr qint64 kChangeCounter = 24;

std::uint32_t ChangesOf(const std::filesystem::path& path) {
  QFile file(ShownPath(path));
  if (!file.open(QIODevice::ReadOnly) || !file.seek(kChangeCounter)) return 0;
  std::uint32_t changes = 0;
  for (const char byte : file.read(4)) changes = changes << 8 | static_cast<unsigned char>(byte);
  return changes;
}

}  // namespace

FileState FileState::Of(const std::filesystem::path& path) {
  FileState state;
  std::error_code failure;
  if (path.empty() || !std::filesystem::is_regular_file(path, failure)) return state;
  const auto size = std::filesystem::file_size(path, failure);
  if (failure) return state;
  state.size = static_cast<std::int64_t>(size);
  state.modified = std::filesystem::last_write_time(path, failure).time_since_epoch().count();
  state.changes = ChangesOf(path);
  return state;
}

}  // namespace brenvolt::desktop
