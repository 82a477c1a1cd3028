#include "host/base/process/terminal.h"

#include <unistd.h>

namespace brenvolt {

bool IsStandardErrorTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

}  // namespace brenvolt
