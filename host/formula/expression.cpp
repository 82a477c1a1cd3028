#include "host/formula/expression.h"

#include "host/formula/formula.h"

namespace brenvolt {

std::vector<double> EvaluateOverCases(std::string_view formula, std::span<const FormulaVariable> variables,
                                      std::size_t cases, std::string_view sourceName) {
  std::vector<std::string_view> names;
  std::vector<FormulaColumn> columns;
  for (const FormulaVariable& variable : variables) {
    names.push_back(variable.name);
    columns.push_back({variable.values, variable.missingCode});
  }
  return Formula(formula, names, sourceName).Evaluate(columns, cases);
}

}  // namespace brenvolt
