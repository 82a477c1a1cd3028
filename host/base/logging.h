// The host's log: one line per event, kept for the process and, if asked for, appended to a file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

// Appends a line. Safe from any thread.
void LogLine(std::string_view text);
// The last lines, oldest first; at most kLogCapacity are kept.
inline constexpr std::size_t kLogCapacity = 1000;
std::vector<std::string> LogLines();

}  // namespace brenvolt
