// What one variable is simulated from, in the notation of designs: read from its properties, and written to them as a
// design does.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Empty for a variable that carries no distribution, and for properties that are none. Throws Error.
std::string DistributionOf(const Variable& variable);

// The properties of the variable once it is simulated from the distribution of this text, or from none if that is empty.
// Throws NotationError, WrongJob and Error, for what no variable can be simulated from.
std::vector<std::pair<std::string, std::string>> PropertiesWith(const Variable& variable,
                                                                std::string_view distribution);

}  // namespace brenvolt
