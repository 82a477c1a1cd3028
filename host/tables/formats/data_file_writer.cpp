#include "host/tables/formats/data_file_writer.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/tables/formats/workbook_file.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {
namespace {

constexpr std::string_view kXlsx = ".xlsx";
constexpr std::size_t kXlsxRows = 1 << 20;
constexpr std::size_t kXlsxColumns = 1 << 14;
constexpr std::size_t kStataVariables = 32767;

std::string EndingOf(const std::filesystem::path& path) {
  std::string ending = path.extension().string();
  std::ranges::transform(ending, ending.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return ending;
}

// The names of the cases as a column, which files without names of cases take.
Variable CaseColumn(const Spreadsheet& sheet) {
  Variable column(sheet.Header().empty() ? "Case" : sheet.Header(), sheet.CaseCount());
  std::vector<double> values(sheet.CaseCount());
  std::iota(values.begin(), values.end(), 1.0);
  if (!sheet.AreCasesNumbered()) {
    column.SetType(VariableType::kText);
    std::map<std::string, double, std::less<>> codes;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::string name(sheet.CaseName(i));
      values[i] = codes.try_emplace(name, static_cast<double>(codes.size() + 1)).first->second;
    }
    for (const auto& [name, code] : codes) column.SetLabel(code, name);
  }
  column.AssignValues(std::move(values));
  return column;
}

Spreadsheet WithCaseColumn(const Spreadsheet& sheet) {
  Spreadsheet whole(sheet.Name());
  Variable cases = CaseColumn(sheet);
  if (!sheet.FindVariable(cases.Name())) whole.AddVariable(std::move(cases));
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) whole.AddVariable(Variable(sheet.VariableAt(i)));
  return whole;
}

}  // namespace

const std::vector<std::string>& DataEndings() {
  static const std::vector<std::string> endings{".csv", ".npz", ".xlsx", ".sav", ".dta"};
  return endings;
}

bool IsWorkbookName(const std::filesystem::path& path) {
  return EndingOf(path) == kXlsx;
}

bool HasDataEnding(const std::filesystem::path& path) {
  return std::ranges::find(DataEndings(), EndingOf(path)) != DataEndings().end();
}

std::string WhyTooLarge(const std::filesystem::path& path, std::size_t cases, std::size_t variables) {
  const std::string ending = EndingOf(path);
  if (ending == kXlsx && (cases >= kXlsxRows || variables > kXlsxColumns))
    return "a workbook takes up to 1048575 cases of 16384 variables";
  if (ending == ".dta" && variables > kStataVariables) return "a Stata file takes up to 32767 variables";
  return {};
}

void WriteDataFile(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format) {
  const std::string ending = EndingOf(path);
  const bool isNamed = sheet.Kind() == SheetKind::kData && sheet.HasCaseNames();
  if (isNamed && (ending == ".sav" || ending == ".dta"))
    return WriteDataFile(WithCaseColumn(sheet), path, format);
  if (ending == kXlsx) {
    WriteWorkbookFile({&sheet}, path);
  } else if (ending == ".sav" || ending == ".dta") {
    WritePackageFile(sheet, path);
  } else if (ending == ".npz") {
    WriteNumpyArchive(sheet, path);
  } else {
    WriteCsv(sheet, path, format);
  }
}

}  // namespace brenvolt
