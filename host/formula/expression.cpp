#include "host/formula/expression.h"

#include <muParser.h>

#include <limits>
#include <map>
#include <optional>

#include "host/base/almost_equal.h"
#include "host/formula/translation.h"

namespace brenvolt {
namespace {

// The index of the variable that a name stands for; the case number is the index one past the last variable.
std::optional<std::size_t> FindVariable(std::string_view name, std::span<const FormulaVariable> variables) {
  for (std::size_t i = 0; i < variables.size(); ++i) {
    if (variables[i].name == name) return i;
  }
  if (name.size() < 2 || name.size() > 9 || name.front() != 'v') return std::nullopt;
  std::size_t number = 0;
  for (const char c : name.substr(1)) {
    if (c < '0' || c > '9') return std::nullopt;
    number = 10 * number + static_cast<std::size_t>(c - '0');
  }
  if (number == 0) return variables.size();
  return number <= variables.size() ? std::optional(number - 1) : std::nullopt;
}

// The parser wants writable storage for its variables, although it only reads them.
std::map<std::size_t, std::vector<double>> CopyColumns(const Translation& translation,
                                                       std::span<const FormulaVariable> variables,
                                                       std::size_t cases) {
  std::map<std::size_t, std::vector<double>> columns;
  for (const std::size_t index : translation.Used()) {
    if (index < variables.size()) {
      columns[index].assign(variables[index].values.begin(), variables[index].values.end());
      continue;
    }
    std::vector<double>& numbers = columns[index];
    numbers.resize(cases);
    for (std::size_t i = 0; i < cases; ++i) numbers[i] = static_cast<double>(i + 1);
  }
  return columns;
}

}  // namespace

std::vector<double> EvaluateOverCases(std::string_view formula, std::span<const FormulaVariable> variables,
                                      std::size_t cases, std::string_view sourceName) {
  const Translation translation(
      formula, [&](std::string_view name) { return FindVariable(name, variables); }, sourceName);
  std::vector<double> result(cases, std::numeric_limits<double>::quiet_NaN());
  auto columns = CopyColumns(translation, variables, cases);
  const auto parser =
      translation.MakeParser([&](std::size_t variable) { return columns.at(variable).data(); });
  if (cases > 0) {
    translation.Checked([&] { parser->Eval(result.data(), static_cast<int>(cases)); });
  }
  for (const std::size_t index : translation.Used()) {
    if (index == variables.size()) continue;
    const FormulaVariable& variable = variables[index];
    for (std::size_t i = 0; i < cases; ++i) {
      if (IsMissingValue(variable.values[i], variable.missingCode)) {
        result[i] = std::numeric_limits<double>::quiet_NaN();
      }
    }
  }
  return result;
}

}  // namespace brenvolt
