#include "host/base/process/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace brenvolt {

bool IsStandardErrorTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

std::optional<std::size_t> StandardOutputWidth() {
  constexpr std::size_t kUsual = 80;
  if (isatty(STDOUT_FILENO) != 1) return std::nullopt;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
  return size.ws_col;
}

}  // namespace brenvolt
