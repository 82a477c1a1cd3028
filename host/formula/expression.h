// Formula text over columns, parsed and evaluated for all cases at once. The grammar is that of formula.h.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace brenvolt {

struct FormulaVariable {
  std::string_view name;
  std::span<const double> values;
  double missingCode;
};

// The value of the formula for each of `cases` cases; every variable holds that many values. A case in which
// a value that the formula needs is missing gives NaN. Throws FormulaError that says what is wrong and where
// in the text ("selection condition, character 7" for the source name "selection condition").
std::vector<double> EvaluateOverCases(std::string_view formula, std::span<const FormulaVariable> variables,
                                      std::size_t cases, std::string_view sourceName);

}  // namespace brenvolt
