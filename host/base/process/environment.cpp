#include "host/base/process/environment.h"

#include <stdlib.h>

namespace brenvolt {

std::string EnvironmentText(const char* name) {
  const char* const value = secure_getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace brenvolt
