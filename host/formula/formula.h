// Formulas over the columns of a spreadsheet: parsed once, evaluated in bulk.
//
// - Variables are named as they are if their name is a plain word (letters, digits, _ and points), between
//   single or double quotes otherwise ('wait time'), or by number (v1, v2, …; v0 is the case number).
// - Operators, the tightest first: ^ (from the right: 2^3^2 is 2^9); signs (-2^2 is -4); * /; + -;
//   comparisons (= == <> != < <= > >=); not (!); and (& &&); or (| ||). A comparison of a comparison needs
//   parentheses: "a = b = 1" is refused. 1 is true and 0 is false; any value but 0 counts as true. not(…) is a
//   function.
// - Functions (functions.cpp, distribution_functions.h), their values separated by , or ;. The constants Pi,
//   Euler and Missing, if no variable has the name.
// - A "=" may stand before it all, as in a cell.
//
// Missing values propagate: a result is missing if any value that it needs is missing. Only if(condition,
// yes, no) needs no more than the condition and the branch chosen, and ismissing(x) is never missing.
// Division by zero, the logarithm of zero, and whatever else has no finite value are missing.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/formula/formula_error.h"

namespace brenvolt {

class Program;

// The values of a variable; NaN is missing, and so is its missing-data code.
struct FormulaColumn {
  std::span<const double> values = {};
  double missingCode = std::numeric_limits<double>::quiet_NaN();
};

// A copy is cheap and shares what was parsed. Any number of threads may evaluate a formula at once.
class Formula {
 public:
  // `names`: of the variables; the first of equal ones counts. Characters before `begin` are passed over.
  // Throws FormulaError that says what is wrong and where in the text; `sourceName` says what the text is.
  Formula(std::string_view text, std::span<const std::string_view> names,
          std::string_view sourceName = "formula", std::size_t begin = 0);

  // The indices in `names` of the variables that the formula uses, in the order of their first use.
  std::span<const std::size_t> Used() const { return used_; }

  // The values for out.size() cases, the first of which has the number `firstCase`; NaN if missing. One
  // column for each of `names`; those that are used hold out.size() values at least, others may be empty.
  // `out` may be the storage of a column. Large ranges are evaluated by all cores; the result never depends
  // on how many.
  void Evaluate(std::span<const FormulaColumn> columns, std::span<double> out,
                std::size_t firstCase = 1) const;
  std::vector<double> Evaluate(std::span<const FormulaColumn> columns, std::size_t cases) const;

 private:
  void EvaluateRange(std::span<const FormulaColumn> columns, std::size_t begin, std::size_t firstCase,
                     std::span<double> out) const;

  std::shared_ptr<const Program> program_;
  std::vector<std::size_t> used_;
  std::size_t caseNumber_;  // by which the program knows the case number
};

// "Yield = expression": the name on the left, in quotes if it holds blanks ('Yield %' = …; := does too),
// and where the expression begins in the text, so that Formula's `begin` keeps the places of faults. A text
// that does not begin like that has no name, and its expression begins at 0. The text of a formula that
// begins with a comparison of a name ("x = 2") is read as an assignment: ask only if one is expected.
struct FormulaAssignment {
  std::optional<std::string> name;
  std::size_t begin = 0;
};
FormulaAssignment SplitAssignment(std::string_view text, std::string_view sourceName = "formula");

}  // namespace brenvolt
