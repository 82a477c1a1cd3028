// What the host is made of, for people who report what they saw.
#pragma once

#include <string>
#include <vector>

namespace brenvolt {

struct LibraryVersion {
  std::string name;
  std::string version;
};

struct About {
  std::string version;
  std::string compiler;
  std::string instructionSet;  // the one that vectorised functions run with on this machine
  std::vector<LibraryVersion>
      libraries;  // as loaded, where a library tells its version; else as compiled with, or the file that was linked
};

About AboutHost();

}  // namespace brenvolt
