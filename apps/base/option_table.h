// The commands and options of a program as data, from which manual pages, completion and the reference are made.
#pragma once

#include <CLI/CLI.hpp>

namespace brenvolt {

// Adds --version, and --help-json, which prints the table.
void AddProgramFlags(CLI::App& program);

}  // namespace brenvolt
