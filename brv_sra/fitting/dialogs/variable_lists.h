// A list of continuous and a list of discrete variables as automation passes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/automation/variant.h"

namespace brenvolt::sra {

struct VariableLists {
  std::vector<std::int16_t> continuous;  // numbers from 1
  std::vector<std::int16_t> discrete;
};

// Both lists from a text "1-3 | 5": the continuous variables, a bar, the discrete ones; from a text without a
// bar (continuous variables only); or from an array of the two lists. Throws Error for anything else and for
// a number outside 1 to `variables`.
VariableLists VariableListsFrom(const Variant& value, std::size_t variables);

// What stands between the lists in a text.
inline constexpr char kListBar = '|';

}  // namespace brenvolt::sra
