#include "host/tables/matrix_sheet.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/base/almost_equal.h"
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

// A table whose first variable names the rows, checked step by step.
class MatrixTable {
 public:
  MatrixTable(const Spreadsheet& table, const std::string& file)
      : table_(table), file_(file), size_(table.VariableCount() - 1) {}

  std::unique_ptr<Spreadsheet> Matrix() const {
    CheckRows();
    CheckNumbers();
    CheckCorrelations();
    CheckSummaries();
    auto matrix = std::make_unique<Spreadsheet>(table_.Name());
    matrix->SetKind(SheetKind::kMatrix);
    matrix->SetTitle(std::string(kCorrelationMatrixTitle));
    for (std::size_t c = 0; c < size_; ++c) matrix->AddVariable(Column(c));
    for (std::size_t row = 0; row < table_.CaseCount(); ++row)
      matrix->SetCaseName(row, std::string(ExpectedName(row)));
    return matrix;
  }

 private:
  const Variable& Column(std::size_t c) const { return table_.VariableAt(c + 1); }
  double Value(std::size_t row, std::size_t c) const { return Column(c).Values()[row]; }
  std::string_view RowName(std::size_t row) const { return TextAt(table_.VariableAt(0), row); }
  std::string_view ExpectedName(std::size_t row) const {
    return row < size_ ? std::string_view(Column(row).Name()) : kSummaryNames[row - size_];
  }
  [[noreturn]] void Fail(const std::string& what) const { throw Error(what, file_); }
  [[noreturn]] void Fail(const std::string& what, std::size_t row, std::size_t c) const {
    throw Error(what, file_ + ", row " + std::string(RowName(row)) + ", column " + Column(c).Name());
  }

  void CheckRows() const {
    const std::size_t expected = size_ + kMatrixSummaryRows;
    for (std::size_t row = 0; row < std::min(expected, table_.CaseCount()); ++row) {
      const std::string_view name = RowName(row);
      if (name == ExpectedName(row) || (row + 1 == expected && name == kMarkedType)) continue;
      Fail("row " + std::to_string(row + 1) + " of the matrix is called \"" + std::string(name) + "\", not " +
           std::string(ExpectedName(row)));
    }
    if (table_.CaseCount() == expected) return;
    Fail("the table has " + std::to_string(table_.CaseCount()) + " rows; a matrix of " +
         std::to_string(size_) + " variables has " + std::to_string(expected) +
         ", the last ones Means, Std.Dev., No.Cases and Matrix");
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
    for (std::size_t row = 0; row < size_; ++row) {
      for (std::size_t c = 0; c < size_; ++c) CheckCorrelation(row, c);
    }
  }

  void CheckCorrelation(std::size_t row, std::size_t c) const {
    const double value = Value(row, c);
    if (std::isnan(value)) Fail("a correlation is missing", row, c);
    if (!IsCorrelation(value, Column(c).MissingCode(), row == c)) {
      Fail(row == c ? "the correlation of a variable with itself is not 1"
                    : "a correlation is not between -1 and 1",
           row, c);
    }
    if (c < row && value != Value(c, row)) {
      Fail("the matrix is not symmetric: " + ShortestNumber(value) + " here, " +
               ShortestNumber(Value(c, row)) + " in row " + Column(c).Name(),
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
  std::size_t size_;
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
  if (IsMissingValue(value, missingCode)) return false;
  if (onDiagonal) return AlmostEqual(value, 1.0);
  return std::abs(value) <= 1.0 || AlmostEqual(std::abs(value), 1.0);
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

std::unique_ptr<Spreadsheet> MatrixFromTable(const Spreadsheet& table, const std::string& file) {
  if (table.VariableCount() < 2 || table.VariableAt(0).Type() != VariableType::kText)
    throw Error(
        "the file is not a matrix: the first column must name the rows and the other columns must hold "
        "numbers",
        file);
  return MatrixTable(table, file).Matrix();
}

}  // namespace brenvolt
