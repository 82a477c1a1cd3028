#include "apps/base/version.h"

#include "apps/base/build_commit.h"
#include "host/application/about.h"

namespace brenvolt {

std::string VersionText(const std::string& program) {
  const About about = AboutHost();
  std::string libraries;
  for (const LibraryVersion& library : about.libraries)
    libraries += (libraries.empty() ? "" : ", ") + library.name + " " + library.version;
  return program + " " + about.version + "\ncommit: " + BuildCommit() + "\ncompiler: " + about.compiler +
         "\ninstruction set: " + about.instructionSet + "\nlibraries: " + libraries;
}

}  // namespace brenvolt
