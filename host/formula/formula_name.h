// Variables by their names in formulas.
#pragma once

#include <string>
#include <string_view>

namespace brenvolt {

// As any name may stand in a formula: between quotes, those within doubled.
std::string QuotedInFormula(std::string_view name);
// The same, but a word that a formula takes for this name stands as it is.
std::string NameInFormula(std::string_view name);

}  // namespace brenvolt
