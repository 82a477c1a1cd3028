#include "host/jobs/base/project_files.h"

#include <algorithm>
#include <cstring>

#include "host/base/error.h"
#include "host/base/files/file_turn.h"
#include "host/base/number_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr const char* kProjectEnding = ".bvw";

bool SameBits(std::span<const double> a, std::span<const double> b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

bool SameData(const Spreadsheet& a, const Spreadsheet& b) {
  if (a.VariableCount() != b.VariableCount() || a.CaseCount() != b.CaseCount()) return false;
  for (std::size_t i = 0; i < a.VariableCount(); ++i) {
    const Variable& left = a.VariableAt(i);
    const Variable& right = b.VariableAt(i);
    const bool same = left.Name() == right.Name() && left.Type() == right.Type() &&
                      left.Labels() == right.Labels() && SameBits(left.Values(), right.Values());
    if (!same) return false;
  }
  return true;
}

Workbook ExistingOrNew(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored) ? Workbook::Open(path) : Workbook();
}

// A variable with fits had all properties of the former one before it was fitted: what it lacks is stale.
void TakeOver(Variable& former, const Variable& variable) {
  if (variable.Property(kOrderProperty)) {
    const auto properties = former.Properties();
    for (const auto& [key, value] : properties) {
      if (!variable.Property(key)) former.RemoveProperty(key);
    }
  }
  for (const auto& [key, value] : variable.Properties()) former.SetProperty(key, value);
}

void TakeOver(Spreadsheet& former, const Spreadsheet& sheet) {
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) TakeOver(former.VariableAt(i), sheet.VariableAt(i));
  if (sheet.WeightVariable()) former.SetWeightVariable(sheet.WeightVariable());
  if (!sheet.Selection().condition.empty()) former.SetSelection(sheet.Selection());
}

// What the correlation matrix of a data sheet is called.
std::string MatrixName(const Workbook& workbook, const std::string& dataSheet) {
  const std::string usual(kCorrelationMatrixTitle);
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    if (sheet.Kind() == SheetKind::kData)
      return sheet.Name() == dataSheet ? usual : usual + " of " + dataSheet;
  }
  return usual;
}

// The matrix of the first data sheet, or the only matrix of a project that has no data.
std::string UsualMatrixName(const Workbook& project, const std::filesystem::path& path) {
  std::vector<std::string> matrices;
  for (std::size_t i = 0; i < project.SheetCount(); ++i) {
    const Spreadsheet& sheet = project.SheetAt(i);
    if (sheet.Kind() == SheetKind::kData) return CorrelationMatrixName(project, sheet.Name());
    matrices.push_back(sheet.Name());
  }
  if (matrices.size() == 1) return matrices.front();
  std::string list;
  for (const std::string& name : matrices) list += (list.empty() ? "" : ", ") + name;
  throw Error(matrices.empty() ? "the project has no sheet"
                               : "the project has several matrices; name one after a colon: " + list,
              path.string());
}

}  // namespace

bool HasEnding(const std::filesystem::path& path, std::string_view ending) {
  const std::string own = path.extension().string();
  return std::ranges::equal(
      own, ending, [](char a, char b) { return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b); });
}

bool HasProjectEnding(const std::filesystem::path& path) {
  return HasEnding(path, kProjectEnding);
}

void CheckProjectEnding(std::string_view field, const std::filesystem::path& path, JobFaults& faults) {
  if (HasProjectEnding(path)) return;
  faults.push_back({std::string(field), "expected a file ending in .bvw, got " + path.string()});
}

void SetProjectWait(double seconds) {
  constexpr double kMost = 366 * 24 * 3600.0;
  if (!(seconds >= 0 && seconds <= kMost))
    throw WrongJob("wait", "expected a number of seconds from 0 to " + ShortestNumber(kMost) + ", got " +
                               ShortestNumber(seconds));
  TurnPatience patience = CurrentTurnPatience();
  patience.seconds = seconds;
  SetTurnPatience(std::move(patience));
}

DataFile OpenProject(const std::filesystem::path& path) {
  DataFile file;
  file.path = path;
  file.isProject = true;
  file.workbook = Workbook::Open(path);
  return file;
}

void TakeFormerProperties(const std::filesystem::path& path, Spreadsheet& sheet) {
  const Workbook workbook = ExistingOrNew(path);
  const Spreadsheet* former = workbook.Find(sheet.Name());
  if (former == nullptr || !SameData(*former, sheet)) return;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    Variable& variable = sheet.VariableAt(i);
    for (const auto& [key, value] : former->VariableAt(i).Properties()) {
      if (!variable.Property(key)) variable.SetProperty(key, value);
    }
  }
}

std::string CorrelationMatrixName(const Workbook& workbook, const std::string& dataSheet) {
  const std::string base = MatrixName(workbook, dataSheet);
  std::string name = base;
  const Spreadsheet* former = workbook.Find(name);
  for (int number = 2; former != nullptr && former->Kind() != SheetKind::kMatrix; ++number) {
    name = base + " (" + std::to_string(number) + ")";
    former = workbook.Find(name);
  }
  return name;
}

void PutCorrelationMatrix(Workbook& workbook, const std::string& dataSheet,
                          std::unique_ptr<Spreadsheet> matrix) {
  const std::string name = CorrelationMatrixName(workbook, dataSheet);
  Spreadsheet* former = workbook.Find(name);
  matrix->SetName(name);
  if (former != nullptr) {
    *former = std::move(*matrix);
  } else {
    workbook.Add(std::move(matrix));
  }
}

void MergeIntoProject(const std::filesystem::path& path, const Spreadsheet& sheet,
                      std::unique_ptr<Spreadsheet> matrix) {
  const FileTurn turn(path);
  Workbook workbook = ExistingOrNew(path);
  Spreadsheet* former = workbook.Find(sheet.Name());
  if (former == nullptr) {
    workbook.Add(std::make_unique<Spreadsheet>(sheet));
  } else if (SameData(*former, sheet)) {
    TakeOver(*former, sheet);
  } else {
    throw Error("already has a sheet called " + sheet.Name() + " with other data", path.string());
  }
  if (matrix != nullptr) PutCorrelationMatrix(workbook, sheet.Name(), std::move(matrix));
  workbook.Save(path);
}

SheetProperties PropertiesOf(const Spreadsheet& sheet) {
  SheetProperties properties;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i)
    properties.push_back(sheet.VariableAt(i).Properties());
  return properties;
}

void RefreshProperties(const std::filesystem::path& path, const SheetProperties& former, Spreadsheet& sheet) {
  const Workbook workbook = ExistingOrNew(path);
  const Spreadsheet* saved = workbook.Find(sheet.Name());
  if (saved == nullptr || !SameData(*saved, sheet) || former.size() != sheet.VariableCount()) return;
  for (std::size_t i = 0; i < former.size(); ++i) {
    Variable& variable = sheet.VariableAt(i);
    if (variable.Properties() != former[i]) continue;
    for (const auto& [key, value] : former[i]) variable.RemoveProperty(key);
    for (const auto& [key, value] : saved->VariableAt(i).Properties()) variable.SetProperty(key, value);
  }
}

bool IsSavedAs(const DataFile& data, const std::filesystem::path& path) {
  std::error_code ignored;
  return data.isProject && std::filesystem::equivalent(data.path, path, ignored);
}

void SaveFits(const Spreadsheet& sheet, std::unique_ptr<Spreadsheet> matrix, DataFile* home,
              const std::filesystem::path& path) {
  if (home == nullptr || !IsSavedAs(*home, path)) {
    MergeIntoProject(path, sheet, std::move(matrix));
    return;
  }
  if (matrix != nullptr) PutCorrelationMatrix(home->workbook, sheet.Name(), std::move(matrix));
  home->workbook.Save(path);
}

bool CarriesDistributions(const Spreadsheet& sheet) {
  for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
    if (sheet.VariableAt(v).Property(kOrderProperty)) return true;
  }
  return false;
}

Spreadsheet& FittedSheet(DataFile& data, const std::string& name) {
  if (!name.empty()) return data.Sheet(name);
  for (std::size_t i = 0; i < data.workbook.SheetCount(); ++i) {
    if (CarriesDistributions(data.workbook.SheetAt(i))) return data.workbook.SheetAt(i);
  }
  return data.Sheet({});
}

std::unique_ptr<Spreadsheet> SavedMatrix(const Workbook& project, const Spreadsheet& sheet) {
  const Spreadsheet* saved = project.Find(CorrelationMatrixName(project, sheet.Name()));
  return saved == nullptr ? nullptr : std::make_unique<Spreadsheet>(*saved);
}

std::unique_ptr<Spreadsheet> NamedMatrix(const std::string& name, const Workbook& project,
                                         const std::string& where) {
  const Spreadsheet* own = project.Find(name);
  const auto [path, sheetName] = SplitSheetAddress(name);
  std::error_code ignored;
  if (own != nullptr && (own->Kind() == SheetKind::kMatrix || !std::filesystem::exists(path, ignored)))
    return std::make_unique<Spreadsheet>(*own);
  if (!std::filesystem::exists(path, ignored)) {
    throw Error("this is neither a sheet of the project nor a file", where);
  }
  if (!Workbook::IsWorkbookFile(path))
    return MatrixFromTable(*ReadDataFile(path, {}).sheets.front(), path.string());
  DataFile other = OpenProject(path);
  const std::string wanted = sheetName.empty() ? UsualMatrixName(other.workbook, path) : sheetName;
  return std::make_unique<Spreadsheet>(other.Sheet(wanted));
}

void OfferMatrices(CAnalysisDoc& document, const Workbook& workbook) {
  const auto names = [&workbook] {
    std::vector<std::string> matrices;
    for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
      if (workbook.SheetAt(i).Kind() == SheetKind::kMatrix) matrices.push_back(workbook.SheetAt(i).Name());
    }
    return matrices;
  };
  const auto find = [&workbook](const Spreadsheet& input, const std::string& name) {
    return name.empty() ? SavedMatrix(workbook, input) : NamedMatrix(name, workbook, "matrix " + name);
  };
  document.SetMatrixSource({names, find});
}

std::vector<std::string> AppendToProject(const std::filesystem::path& path,
                                         std::vector<std::unique_ptr<Spreadsheet>> sheets) {
  const FileTurn turn(path);
  Workbook workbook = ExistingOrNew(path);
  std::vector<std::string> names;
  for (auto& sheet : sheets) names.push_back(workbook.Add(std::move(sheet)).Name());
  workbook.Save(path);
  return names;
}

std::pair<std::filesystem::path, std::string> SplitSheetAddress(const std::string& source) {
  std::error_code ignored;
  if (std::filesystem::exists(source, ignored)) return {source, {}};
  for (auto colon = source.rfind(':'); colon != std::string::npos && colon > 0;
       colon = source.rfind(':', colon - 1)) {
    if (std::filesystem::exists(source.substr(0, colon), ignored)) {
      return {source.substr(0, colon), source.substr(colon + 1)};
    }
  }
  const auto first = source.find(':');
  return {source.substr(0, first), first == std::string::npos ? std::string() : source.substr(first + 1)};
}

void RefuseProjectTarget(const std::filesystem::path& path) {
  std::error_code ignored;
  const bool regular = std::filesystem::is_regular_file(path, ignored);
  if (HasProjectEnding(path) || (regular && Workbook::IsWorkbookFile(path))) {
    throw Error("this would replace a project by a file of another kind; choose another name", path.string());
  }
}

void WriteCsvFile(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format) {
  RefuseProjectTarget(path);
  WriteCsv(sheet, path, format);
}

}  // namespace brenvolt
