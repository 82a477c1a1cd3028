// Formula text over columns, evaluated for all cases at once.
//
// Variables are named as they are where their name is a plain identifier, between single quotes otherwise
// ('wait time'), or by number (v1, v2, …; v0 is the case number). There are arithmetic (+ - * / ^),
// comparisons (= == <> != < <= > >=), and (or &), or, not, parentheses (which a comparison of comparisons
// needs: "a = b = 1" is refused), the usual mathematical functions
// (sqrt, ln, exp, abs, sin, …) and those of distributions (curve_functions.h).
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
// a variable of the formula is missing gives NaN. Throws Error that says what is wrong and where in the text
// ("selection condition, character 7" for the source name "selection condition").
std::vector<double> EvaluateOverCases(std::string_view formula, std::span<const FormulaVariable> variables,
                                      std::size_t cases, std::string_view sourceName);

}  // namespace brenvolt
