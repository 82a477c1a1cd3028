// What the window is asked for when the program starts.
#pragma once

#include <filesystem>

namespace brenvolt::desktop {

// A path that was not given is empty.
struct StartOptions {
  std::filesystem::path file;        // a project or data to open
  std::filesystem::path macro;       // run once the window stands
  std::filesystem::path screenshot;  // a PNG of the window, once all of that is done; the program then ends
};

}  // namespace brenvolt::desktop
