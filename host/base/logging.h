// The host's log: one line per event, appended to the file that BRENVOLT_LOG names, where it is set.
#pragma once

#include <string_view>

namespace brenvolt {

// Appends a line. Safe from any thread.
void LogLine(std::string_view text);

}  // namespace brenvolt
