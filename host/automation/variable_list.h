// Lists of spreadsheet variables as automation passes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/automation/variant.h"

namespace brenvolt {

// Variable numbers (from 1) from an array of numbers, a single number, or a text such as "1-3 5" or "1, 4".
// Throws Error for anything else and for a number outside 1 to `variables`.
std::vector<std::int16_t> VariableNumbers(const Variant& value, std::size_t variables);

}  // namespace brenvolt
