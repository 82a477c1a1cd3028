// What people call the distributions and their parameters: texts of the module, in the language of the user interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "brv_sra/distributions/sheet_property_store.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt::sra {

// "Log Normal"
std::string_view DisplayName(DistributionCode code);
// The code of any display name, or nothing.
std::optional<DistributionCode> CodeFromDisplayName(std::string_view name);

// A parameter as tables, editors and messages know it: numbers of string resources.
struct ParameterTexts {
  std::int32_t heading;  // over a column: "Scale"
  std::int32_t label;    // beside an edit field: "Scale:"; 0 if there is none
  std::int32_t word;     // inside a message: "scale"
};

// By the parameter's name among the facts, or by its place among the values, where that in a repeated group is that in
// any.
const ParameterTexts& TextsOf(DistributionCode code, std::string_view parameter);
const ParameterTexts& TextsOf(DistributionCode code, std::size_t place);

// The word for a parameter inside a message: "scale".
std::string_view ParameterWord(DistributionCode code, std::size_t place);

// The properties of the sheet's variables, with the distributions under their display names.
inline SheetPropertyStore PropertiesOf(Spreadsheet& sheet) {
  return {sheet, DisplayName};
}

}  // namespace brenvolt::sra
