#include "brv_sra/matrix/dialogs/correlation_entries.h"

#include <algorithm>
#include <memory>

#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/base/almost_equal.h"
#include "host/base/correlation_rules.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {
namespace {

[[noreturn]] void Refuse(const std::string& why) {
  throw Error(std::string(ResourceString(kMsgProfilerInvalidCorrelation)), why);
}

void Check(std::span<const double> matrix, std::span<const std::string> names) {
  const std::size_t k = names.size();
  for (std::size_t i = 0; i < k; ++i) {
    if (!AlmostEqual(matrix[i * k + i], 1.0))
      Refuse("row " + std::to_string(i + 1) + " is not 1 with itself");
    for (std::size_t j = 0; j < k; ++j) {
      const std::string place = "row " + std::to_string(i + 1) + ", column " + std::to_string(j + 1);
      if (!CorrelationEntry(matrix[i * k + j])) Refuse(place + " is not a correlation");
    }
  }
  const auto entry = [&](std::size_t row, std::size_t column) { return matrix[row * k + column]; };
  if (const auto asymmetry = AsymmetryIn(names, entry)) Refuse(*asymmetry);
}

std::vector<double> FromFile(const Spreadsheet& sheet, std::span<const std::string> names) {
  const Result<MatrixFile> file = ReadMatrixFile(sheet);
  if (!file) Refuse("sheet " + sheet.Name());
  const auto& variables = file->variables;
  const std::size_t k = names.size();
  std::vector<double> matrix(k * k, 0.0);
  bool any = false;
  const auto placeOf = [&](std::size_t i) {
    return static_cast<std::size_t>(std::ranges::find(variables, names[i]) - variables.begin());
  };
  for (std::size_t i = 0; i < k; ++i) {
    matrix[i * k + i] = 1.0;
    any = any || placeOf(i) < variables.size();
    for (std::size_t j = 0; j < k; ++j) {
      if (i != j && placeOf(i) < variables.size() && placeOf(j) < variables.size())
        matrix[i * k + j] = file->correlations[placeOf(i)][placeOf(j)];
    }
  }
  if (!any) Refuse("sheet " + sheet.Name() + " contains none of the variables");
  return matrix;
}

// The cells of a k x k matrix as an editor shows them.
std::vector<std::string> CorrelationCells(std::span<const double> matrix) {
  std::vector<std::string> cells;
  for (const double value : matrix) cells.push_back(ParseTextBuffer(ShortestNumber(value)));
  return cells;
}

// Takes the upper triangle of edited cells, row by row, into both halves of the matrix; the diagonal stays 1.
// False, and the matrix is as it was, if a cell of the triangle or the diagonal holds no number, or one below
// -1 (by more than 15 units in the last place) or above 1.
bool TakeCells(std::span<const std::string> cells, std::size_t k, std::vector<double>& matrix) {
  if (cells.size() != k * k) return false;
  std::vector<double> taken = matrix;
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = i; j < k; ++j) {
      const auto entry = EnteredCorrelation(cells[i * k + j]);
      if (!entry) return false;
      if (j > i) taken[i * k + j] = taken[j * k + i] = *entry;
    }
  }
  matrix = std::move(taken);
  return true;
}

}  // namespace

std::optional<double> EnteredCorrelation(const std::string& text) {
  const auto value = ParseTravelledNumber(Trim(text));
  return value ? CorrelationEntry(*value) : std::nullopt;
}

bool EditCorrelations(const CAnalysisSupport& analysis, std::int32_t title,
                      const std::vector<std::string>& names, std::vector<double>& matrix,
                      std::function<MatrixVerdict(const std::vector<double>&)> judge) {
  MatrixQuestion question;
  question.title = ResourceString(title);
  question.note = ResourceString(kProfilerCorrelationNote);
  question.names = names;
  question.cells = CorrelationCells(matrix);
  question.judge = std::move(judge);
  if (!analysis.Interface().EditMatrix(question)) return false;
  if (TakeCells(question.cells, names.size(), matrix)) return true;
  analysis.ShowMessage(std::string(ResourceString(kMsgProfilerEntriesReset)));
  return false;
}

std::vector<double> CorrelationsFrom(const Variant& value, std::span<const std::string> names) {
  const std::size_t k = names.size();
  std::vector<double> matrix;
  if (value.IsObject()) {
    const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(value.ToObject());
    if (document == nullptr || !document->HasTable()) Refuse("expected a spreadsheet");
    matrix = FromFile(document->Table(), names);
  } else {
    for (const Variant& item : value.ToArray()) {
      const Variant::Array row = item.ToArray();
      if (item.IsArray() && row.size() != k) Refuse("a row has " + std::to_string(row.size()) + " values");
      for (const Variant& cell : row) matrix.push_back(cell.ToReal());
    }
  }
  if (matrix.size() != k * k)
    Refuse(std::to_string(matrix.size()) + " values for " + std::to_string(k) + " variables");
  Check(matrix, names);
  for (double& entry : matrix) entry = *CorrelationEntry(entry);
  for (std::size_t i = 0; i < k; ++i) {
    matrix[i * k + i] = 1.0;
    for (std::size_t j = 0; j < i; ++j) matrix[j * k + i] = matrix[i * k + j];
  }
  return matrix;
}

Variant CorrelationArray(std::span<const double> matrix, std::size_t k) {
  Variant::Array rows;
  for (std::size_t i = 0; i < k; ++i) {
    Variant::Array row;
    for (std::size_t j = 0; j < k; ++j) row.emplace_back(matrix[i * k + j]);
    rows.emplace_back(std::move(row));
  }
  return rows;
}

}  // namespace brenvolt::sra
