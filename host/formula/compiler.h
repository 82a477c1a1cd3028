// From a formula's text to its program. The grammar is that of formula.h.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "host/formula/program.h"

namespace brenvolt {

// The number by which the program is to know the variable of a name, or nothing. `quoted`: the name stood in
// quotes.
using FindVariable = std::function<std::optional<std::size_t>(std::string_view name, bool quoted)>;

// Characters before `begin` are passed over. Throws FormulaError about `sourceName`.
Program Compile(std::string_view text, const FindVariable& findVariable, std::string_view sourceName,
                std::size_t begin = 0);

}  // namespace brenvolt
