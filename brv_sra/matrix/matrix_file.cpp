#include "brv_sra/matrix/matrix_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "host/base/almost_equal.h"
#include "host/base/number_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kTitleBytes = 80;

// Types of matrix that the host knows besides correlations.
constexpr double kCovarianceType = 2.0;
constexpr double kFurtherType = 3.0;

// At most as much as a title holds, and no broken character at the end.
std::string_view CutTitle(std::string_view title) {
  if (title.size() <= kTitleBytes) return title;
  std::size_t end = kTitleBytes;
  while (end > 0 && (static_cast<unsigned char>(title[end]) & 0xC0U) == 0x80U) --end;
  return title.substr(0, end);
}

bool SizesAgree(const MatrixFile& file) {
  const std::size_t m = file.variables.size();
  const bool rowsFit =
      std::ranges::all_of(file.correlations, [m](const auto& row) { return row.size() == m; });
  return m > 0 && rowsFit && file.correlations.size() == m && file.means.size() == m &&
         file.standardDeviations.size() == m;
}

Variable MatrixColumn(const MatrixFile& file, std::size_t c) {
  const std::size_t m = file.variables.size();
  const MatrixSummaryRows rows(m + kMatrixSummaryRows);
  std::vector<double> values(m + kMatrixSummaryRows, GetDefaultMDValue());
  for (std::size_t row = 0; row < m; ++row) values[row] = file.correlations[row][c];
  values[rows.means] = file.means[c];
  values[rows.standardDeviations] = file.standardDeviations[c];
  if (c == 0) {
    values[rows.validCases] = file.validCases;
    values[rows.type] = kCorrelationMatrixType;
  }
  Variable variable(file.variables[c], 0);
  variable.AssignValues(std::move(values));
  return variable;
}

// One check or reading after the other; the first fault ends it.
class Reader {
 public:
  Reader(const Spreadsheet& sheet, const MatrixReadOptions& options)
      : sheet_(sheet), options_(options), size_(sheet.VariableCount()) {}

  Result<MatrixFile> Read() {
    constexpr Result<void> (Reader::*kSteps[])() = {&Reader::CheckLayout, &Reader::ReadCorrelations,
                                                    &Reader::ReadMeans, &Reader::ReadStandardDeviations,
                                                    &Reader::ReadValidCases};
    for (const auto step : kSteps) {
      if (const auto done = (this->*step)(); !done) return done.Reason();
    }
    file_.variables = VariableNames(sheet_);
    return std::move(file_);
  }

 private:
  double Value(std::size_t row, std::size_t c) const { return sheet_.VariableAt(c).Values()[row]; }
  bool IsMissing(std::size_t row, std::size_t c) const { return sheet_.VariableAt(c).IsMissing(row); }
  bool IsSelected(std::size_t row) const { return !options_.useCaseSelection || sheet_.IsCaseSelected(row); }
  MatrixSummaryRows Summaries() const { return MatrixSummaryRows(sheet_.CaseCount()); }

  Result<void> CheckLayout() {
    if (!IsMatrixSheet(sheet_)) return Fault{FaultIdentifier::kNotAMatrixFile};
    const double type = Value(sheet_.CaseCount() - 1, 0);
    if (AlmostEqual(type, kCovarianceType) || AlmostEqual(type, kFurtherType))
      return Fault{FaultIdentifier::kMatrixOfOtherType};
    if (!HasMatrixRows(sheet_)) return Fault{FaultIdentifier::kMatrixLacksCases};
    if (!AlmostEqual(type, kCorrelationMatrixType)) return Fault{FaultIdentifier::kNotAMatrixFile};
    return {};
  }

  Result<void> ReadCorrelations() {
    file_.correlations.assign(size_, std::vector<double>(size_));
    for (std::size_t row = 0; row < size_; ++row) {
      for (std::size_t c = 0; c < size_; ++c) {
        const double value = Value(row, c);
        if (!IsCorrelation(value, sheet_.VariableAt(c).MissingCode(), row == c))
          return Fault{FaultIdentifier::kMatrixLacksCorrelation};
        file_.correlations[row][c] = value;
      }
    }
    return {};
  }

  // The faults of a row that cannot be read, that the selection leaves out, and that lacks a value.
  Result<void> ReadSummary(std::size_t row, FaultIdentifier deselected, FaultIdentifier missing,
                           std::vector<double>& values) {
    if (options_.isCancelled && options_.isCancelled())
      return Fault{FaultIdentifier::kMatrixReadingCancelled};
    if (!IsSelected(row)) return Fault{deselected};
    for (std::size_t c = 0; c < size_; ++c) {
      if (IsMissing(row, c)) return Fault{missing};
      values.push_back(Value(row, c));
    }
    return {};
  }

  Result<void> ReadMeans() {
    return ReadSummary(Summaries().means, FaultIdentifier::kMatrixMeansDeselected,
                       FaultIdentifier::kMatrixLacksMean, file_.means);
  }

  Result<void> ReadStandardDeviations() {
    return ReadSummary(Summaries().standardDeviations, FaultIdentifier::kMatrixDeviationsDeselected,
                       FaultIdentifier::kMatrixLacksStandardDeviation, file_.standardDeviations);
  }

  Result<void> ReadValidCases() {
    const std::size_t row = Summaries().validCases;
    if (!IsSelected(row)) return Fault{FaultIdentifier::kMatrixDeviationsDeselected};
    const double count = Value(row, 0);
    if (IsMissing(row, 0) || count < 1.0) return Fault{FaultIdentifier::kMatrixLacksValidCases};
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    file_.validCases = static_cast<std::int32_t>(std::min(count, kMost));
    return {};
  }

  const Spreadsheet& sheet_;
  const MatrixReadOptions& options_;
  std::size_t size_;
  MatrixFile file_;
};

}  // namespace

MatrixFile MatrixFile::Identity(std::vector<std::string> variables) {
  const std::size_t m = variables.size();
  MatrixFile file;
  file.variables = std::move(variables);
  file.correlations.assign(m, std::vector<double>(m, 0.0));
  for (std::size_t i = 0; i < m; ++i) file.correlations[i][i] = 1.0;
  file.means.assign(m, 0.0);
  file.standardDeviations.assign(m, 1.0);
  return file;
}

void MatrixFile::SetCorrelations(std::span<const double> rowMajor) {
  correlations.clear();
  while (!rowMajor.empty()) {
    const auto row = rowMajor.first(std::clamp<std::size_t>(variables.size(), 1, rowMajor.size()));
    correlations.emplace_back(row.begin(), row.end());
    rowMajor = rowMajor.subspan(row.size());
  }
}

Result<std::unique_ptr<Spreadsheet>> MakeMatrixFile(const MatrixFile& file, std::string_view title) {
  if (!SizesAgree(file)) return Fault{FaultIdentifier::kMatrixSizesDiffer};
  const std::string text(CutTitle(title.empty() ? kCorrelationMatrixTitle : title));
  auto sheet = std::make_unique<Spreadsheet>(text);
  sheet->SetKind(SheetKind::kMatrix);
  sheet->SetTitle(text);
  for (std::size_t c = 0; c < file.variables.size(); ++c) sheet->AddVariable(MatrixColumn(file, c));
  std::vector<std::string> names = file.variables;
  for (const std::string_view row :
       {matrix_row::kMeans, matrix_row::kStandardDeviations, matrix_row::kValidCases, matrix_row::kType}) {
    names.emplace_back(row);
  }
  sheet->SetCaseNames(std::move(names));
  return sheet;
}

Result<MatrixFile> ReadMatrixFile(const Spreadsheet& sheet, const MatrixReadOptions& options) {
  return Reader(sheet, options).Read();
}

bool IsMatrixFile(const Spreadsheet& sheet) {
  return static_cast<bool>(ReadMatrixFile(sheet, {.useCaseSelection = false, .isCancelled = {}}));
}

std::vector<std::string> VariableNames(const Spreadsheet& sheet) {
  std::vector<std::string> names;
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c)
    names.emplace_back(Trim(sheet.VariableAt(c).Name()));
  return names;
}

bool IsSymmetricCorrelationMatrix(std::span<const std::vector<double>> rows) {
  const std::size_t m = rows.size();
  if (m == 0 || std::ranges::any_of(rows, [m](const auto& row) { return row.size() != m; })) return false;
  for (std::size_t i = 0; i < m; ++i) {
    if (rows[i][i] != 1.0) return false;
    for (std::size_t j = i + 1; j < m; ++j) {
      // NaN differs from everything.
      if (rows[i][j] != rows[j][i]) return false;
    }
  }
  return true;
}

}  // namespace brenvolt::sra
