// The way to standard output and standard error. What comes from files is foreign: its names and texts must not steer the
// terminal (host/base/visible_text.h).
#pragma once

#include <string>
#include <string_view>

namespace brenvolt::cli {

// A report of whole lines, to standard output.
void Print(std::string_view report);
// A line to standard error, with a line break after it.
void PrintMessage(std::string_view line);
// Data for programs, to standard output: byte for byte, unless that is a terminal.
void PrintData(std::string_view data);

}  // namespace brenvolt::cli
