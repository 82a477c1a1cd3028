#include "host/base/files/file_lock.h"

#include <sys/file.h>

#include <cerrno>

namespace brenvolt {

bool LockOpenFile(int descriptor) {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

}  // namespace brenvolt
