// How the command brenvolt spells what a job is given.
#pragma once

#include <string>

namespace brenvolt {

// The option that gives a field of a job: "--rank-by" for rankBy.
std::string OptionOf(const std::string& field);
// An argument as a shell takes it.
std::string ShellWord(const std::string& argument);

}  // namespace brenvolt
