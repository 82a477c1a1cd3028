#include "host/tables/matrix_sheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/base/correlation_rules.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

constexpr std::array<std::string_view, kMatrixSummaryRows> kSummaryNames{
    matrix_row::kMeans, matrix_row::kStandardDeviations, matrix_row::kValidCases, matrix_row::kType};
// The name of the last row with the mark of texts that are not translated, as some programs write it.
constexpr std::string_view kMarkedType = "DontTranslate!!Matrix";
constexpr std::size_t kSignsNeeded = 2;

bool IsSummaryName(std::string_view name) {
  return std::ranges::find(kSummaryNames, name) != kSummaryNames.end() || name == kMarkedType;
}

// The text of a cell of a text variable, empty if it is missing.
std::string_view TextAt(const Variable& variable, std::size_t row) {
  return variable.IsMissing(row) ? std::string_view()
                                 : variable.Label(variable.Values()[row]).value_or(std::string_view());
}

// The names of the rows, which may be numbers; of none, those of the columns.
std::vector<std::string> RowNames(const Spreadsheet& table, bool hasNames) {
  std::vector<std::string> names;
  const Variable& first = table.VariableAt(0);
  for (std::size_t row = 0; row < table.CaseCount(); ++row) {
    if (!hasNames) {
      names.push_back(row < table.VariableCount() ? table.VariableAt(row).Name() : std::string());
    } else if (first.Type() == VariableType::kText) {
      names.emplace_back(TextAt(first, row));
    } else {
      names.push_back(first.IsMissing(row) ? std::string() : ShortestNumber(first.Values()[row]));
    }
  }
  return names;
}

// A matrix in a table, checked step by step.
class MatrixTable {
 public:
  MatrixTable(const Spreadsheet& table, const std::string& file, bool hasNames)
      : table_(table),
        file_(file),
        first_(hasNames ? 1 : 0),
        size_(table.VariableCount() - first_),
        isPlain_(table.CaseCount() == size_),
        rowNames_(RowNames(table, hasNames)) {}

  std::unique_ptr<Spreadsheet> Matrix() const {
    CheckRows();
    CheckNumbers();
    CheckCorrelations();
    if (!isPlain_) CheckSummaries();
    auto matrix = std::make_unique<Spreadsheet>(table_.Name());
    matrix->SetKind(SheetKind::kMatrix);
    matrix->SetTitle(std::string(kCorrelationMatrixTitle));
    for (std::size_t c = 0; c < size_; ++c) matrix->AddVariable(WholeColumn(c));
    for (std::size_t row = 0; row < size_ + kMatrixSummaryRows; ++row)
      matrix->SetCaseName(row, std::string(ExpectedName(row)));
    return matrix;
  }

 private:
  const Variable& Column(std::size_t c) const { return table_.VariableAt(c + first_); }
  double Value(std::size_t row, std::size_t c) const { return Column(c).Values()[row]; }
  const std::string& RowName(std::size_t row) const { return rowNames_[row]; }
  std::string_view ExpectedName(std::size_t row) const {
    return row < size_ ? std::string_view(Column(row).Name()) : kSummaryNames[row - size_];
  }
  [[noreturn]] void Fail(const std::string& what) const { throw Error(what, file_); }
  [[noreturn]] void Fail(const std::string& what, std::size_t row, std::size_t c) const {
    throw Error(what, file_ + ", row " + RowName(row) + ", column " + Column(c).Name());
  }

  // The column with the lower triangle mirrored, and with the summaries that a plain table leaves out.
  Variable WholeColumn(std::size_t c) const {
    Variable column = Column(c);
    std::vector<double> values(column.Values().begin(), column.Values().end());
    for (std::size_t row = 0; row < c; ++row) values[row] = Value(c, row);
    if (isPlain_) {
      const double others = c == 0 ? 1.0 : column.MissingCode();
      values.insert(values.end(), {0.0, 1.0, others, c == 0 ? kCorrelationMatrixType : others});
    }
    column.AssignValues(std::move(values));
    return column;
  }

  void CheckRows() const {
    const std::size_t expected = isPlain_ ? size_ : size_ + kMatrixSummaryRows;
    for (std::size_t row = 0; row < std::min(expected, table_.CaseCount()); ++row) {
      const std::string& name = RowName(row);
      if (name == ExpectedName(row) || (row + 1 == expected && name == kMarkedType)) continue;
      Fail("row " + std::to_string(row + 1) + " of the matrix is called \"" + name + "\", not " +
           std::string(ExpectedName(row)));
    }
    if (table_.CaseCount() == expected) return;
    Fail("the table has " + std::to_string(table_.CaseCount()) + " rows; a matrix of " +
         std::to_string(size_) + " variables has " + std::to_string(size_) + ", or " +
         std::to_string(size_ + kMatrixSummaryRows) +
         " with Means, Std.Dev., No.Cases and Matrix at the end");
  }

  void CheckNumbers() const {
    for (std::size_t c = 0; c < size_; ++c) {
      if (Column(c).Type() != VariableType::kText) continue;
      for (std::size_t row = 0; row < table_.CaseCount(); ++row) {
        const std::string_view text = TextAt(Column(c), row);
        if (!text.empty() && !ParseNumber(text))
          Fail("\"" + std::string(text) + "\" is not a number", row, c);
      }
      Fail("the column does not hold numbers", 0, c);
    }
  }

  void CheckCorrelations() const {
    std::vector<std::string> names;
    for (std::size_t row = 0; row < size_; ++row) {
      names.push_back(Column(row).Name());
      for (std::size_t c = 0; c < size_; ++c) CheckCorrelation(row, c);
    }
    const auto asymmetry =
        AsymmetryIn(names, [this](std::size_t row, std::size_t c) { return Value(row, c); });
    if (asymmetry) Fail(*asymmetry);
  }

  void CheckCorrelation(std::size_t row, std::size_t c) const {
    const double value = Value(row, c);
    if (std::isnan(value)) Fail("a correlation is missing", row, c);
    if (!IsCorrelation(value, Column(c).MissingCode(), row == c)) {
      Fail(row == c ? "the correlation of a variable with itself is not 1"
                    : "a correlation is not between -1 and 1",
           row, c);
    }
  }

  void CheckSummaries() const {
    const MatrixSummaryRows rows(table_.CaseCount());
    for (std::size_t c = 0; c < size_; ++c) {
      if (std::isnan(Value(rows.means, c))) Fail("a mean is missing", rows.means, c);
      if (std::isnan(Value(rows.standardDeviations, c)))
        Fail("a standard deviation is missing", rows.standardDeviations, c);
    }
    if (!(Value(rows.validCases, 0) >= 1)) Fail("the number of cases is not at least 1", rows.validCases, 0);
    if (!AlmostEqual(Value(rows.type, 0), kCorrelationMatrixType))
      Fail("the type is not 1, the type of correlation matrices", rows.type, 0);
  }

  const Spreadsheet& table_;
  const std::string& file_;
  std::size_t first_;  // the place of the first column of numbers
  std::size_t size_;
  bool isPlain_;  // without the summary rows
  std::vector<std::string> rowNames_;
};

}  // namespace

bool IsMatrixSheet(const Spreadsheet& sheet) {
  if (sheet.Kind() != SheetKind::kMatrix || sheet.VariableCount() == 0 || sheet.CaseCount() == 0)
    return false;
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c) {
    if (sheet.VariableAt(c).Type() != VariableType::kNumeric) return false;
  }
  return true;
}

bool HasMatrixRows(const Spreadsheet& sheet) {
  return IsMatrixSheet(sheet) && sheet.CaseCount() >= sheet.VariableCount() + kMatrixSummaryRows;
}

bool IsCorrelation(double value, double missingCode, bool onDiagonal) {
  return !IsMissingValue(value, missingCode) && IsStoredCorrelation(value, onDiagonal);
}

bool LooksLikeMatrixTable(const Spreadsheet& table) {
  if (table.VariableCount() < 2 || table.VariableAt(0).Type() != VariableType::kText) return false;
  const Variable& names = table.VariableAt(0);
  const std::size_t size = table.VariableCount() - 1;
  std::size_t repeated = 0;
  while (repeated < std::min(size, table.CaseCount()) &&
         TextAt(names, repeated) == table.VariableAt(repeated + 1).Name()) {
    ++repeated;
  }
  if (size >= 2 && repeated == size) return true;
  const auto signs =
      std::ranges::count_if(names.Labels(), [](const auto& label) { return IsSummaryName(label.second); });
  return static_cast<std::size_t>(signs) >= kSignsNeeded;
}

std::optional<std::string> AsymmetryIn(std::span<const std::string> names,
                                       const std::function<double(std::size_t, std::size_t)>& entry) {
  const auto text = [&](std::size_t row, std::size_t column) {
    return ShortestNumber(entry(row, column)) + " in row " + names[row] + ", column " + names[column];
  };
  for (std::size_t row = 0; row < names.size(); ++row) {
    for (std::size_t column = 0; column < row; ++column) {
      if (std::abs(entry(row, column) - entry(column, row)) > kMirrorTolerance)
        return "the matrix is not symmetric: " + text(row, column) + ", but " + text(column, row);
    }
  }
  return std::nullopt;
}

std::unique_ptr<Spreadsheet> MatrixFromTable(const Spreadsheet& table, const std::string& file) {
  const std::size_t columns = table.VariableCount();
  const bool hasNames =
      columns > 0 && (table.VariableAt(0).Type() == VariableType::kText || columns == table.CaseCount() + 1);
  if (columns < 2 || (!hasNames && columns != table.CaseCount()))
    throw Error(
        "the file is not a matrix: the first column must name the rows and the other columns must hold "
        "numbers",
        file);
  return MatrixTable(table, file, hasNames).Matrix();
}

}  // namespace brenvolt
