// Lists of spreadsheet variables as automation passes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/automation/variant.h"

namespace brenvolt {

// Variable numbers (from 1) from an array of numbers, a single number, or a text such as "1-3 5" or "1, 4".
// Throws Error for anything else, for a number outside 1 to `variables`, and for one that is there twice.
std::vector<std::int16_t> VariableNumbers(const Variant& value, std::size_t variables);

// The number (from 1) under which analyses know the variable at an index (from 0). Throws Error for an index
// beyond what a 16-bit number reaches.
std::int16_t VariableNumberOf(std::size_t index);

}  // namespace brenvolt
