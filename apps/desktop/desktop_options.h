// The command line of brenvolt-desktop.
#pragma once

#include <optional>

#include "apps/desktop/workbench/start_options.h"

namespace brenvolt::desktop {

// What the call asks for; nothing, and `status` is what the program returns, for a wrong call and for --help and
// --version, which are answered without a display.
std::optional<StartOptions> ReadOptions(int argc, char** argv, int& status);

}  // namespace brenvolt::desktop
