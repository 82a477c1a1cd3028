// What the process's standard streams are connected to.
#pragma once

#include <cstddef>
#include <optional>

namespace brenvolt {

bool IsStandardErrorTerminal();
// How many characters stand in a line of the terminal that standard output is connected to, 80 where it does not tell;
// nothing where it is none.
std::optional<std::size_t> StandardOutputWidth();

}  // namespace brenvolt
