#include "host/jobs/base/output_files.h"

#include <algorithm>
#include <cstddef>
#include <system_error>

#include "host/base/files/output_file.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {
namespace {

// Whether two names lead to one file, which need not be there yet.
bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  if (a.empty() || b.empty()) return false;
  std::error_code ignored;
  if (std::filesystem::equivalent(a, b, ignored)) return true;
  return std::filesystem::weakly_canonical(a, ignored) == std::filesystem::weakly_canonical(b, ignored);
}

// Where the file is, which a link may have elsewhere.
std::filesystem::path TargetFolder(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::weakly_canonical(path, ignored).parent_path();
}

}  // namespace

bool IsRegularTarget(const std::filesystem::path& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

void CheckFolder(std::string_view field, const std::filesystem::path& path, JobFaults& faults) {
  const std::filesystem::path folder = path.parent_path();
  std::error_code ignored;
  if (path.empty()) return;
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    faults.push_back({std::string(field), "the folder of " + path.string() + " does not exist"});
  } else if (IsRegularTarget(path) && !IsWritableFolder(TargetFolder(path))) {
    faults.push_back({std::string(field), "no file can be written in the folder of " + path.string()});
  }
}

namespace {

// "expected a file ending in .csv, .npz, .xlsx, .sav, .dta or .bvw, got x.txt".
void CheckEnding(std::string_view field, const std::filesystem::path& path, std::vector<std::string> endings,
                 JobFaults& faults) {
  std::string list = endings.front();
  for (std::size_t i = 1; i < endings.size(); ++i)
    list += (i + 1 == endings.size() ? " or " : ", ") + endings[i];
  faults.push_back({std::string(field), "expected a file ending in " + list + ", got " + path.string()});
}

}  // namespace

void CheckTableTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults) {
  CheckFolder(field, path, faults);
  if (path.empty() || HasDataEnding(path) || !IsRegularTarget(path)) return;
  CheckEnding(field, path, DataEndings(), faults);
}

void CheckDataTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults) {
  CheckFolder(field, path, faults);
  if (path.empty() || HasProjectEnding(path) || HasDataEnding(path) || !IsRegularTarget(path)) return;
  std::vector<std::string> endings = DataEndings();
  endings.push_back(".bvw");
  CheckEnding(field, path, std::move(endings), faults);
}

void CheckSize(std::string_view field, const std::filesystem::path& path, double cases, JobFaults& faults) {
  if (!(cases >= 0 && cases < 1e15)) return;
  const std::string fault = WhyTooLarge(path, static_cast<std::size_t>(cases), 0);
  if (!fault.empty()) faults.push_back({std::string(field), fault});
}

void CheckGraphsTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults) {
  CheckFolder(field, path, faults);
  if (path.empty() || HasEnding(path, ".json") || !IsRegularTarget(path)) return;
  faults.push_back({std::string(field), "expected a file ending in .json, got " + path.string()});
}

void CheckTargetsApart(const std::vector<JobFile>& inputs, const std::vector<JobFile>& outputs,
                       JobFaults& faults) {
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const std::filesystem::path& path = outputs[i].path;
    const std::string field(outputs[i].field);
    if (path.empty() || !IsRegularTarget(path)) continue;
    const auto isSame = [&path](const JobFile& other) { return IsSameFile(other.path, path); };
    if (!HasProjectEnding(path) && std::ranges::any_of(inputs, isSame)) {
      faults.push_back({field, "would replace " + path.string() + ", which is read"});
    }
    if (std::any_of(outputs.begin(), outputs.begin() + static_cast<std::ptrdiff_t>(i), isSame)) {
      faults.push_back({field, path.string() + " is also given for another output"});
    }
  }
}

void RefuseReplacedProject(const std::filesystem::path& path) {
  if (!path.empty() && !HasProjectEnding(path)) RefuseProjectTarget(path);
}

void WriteTable(const std::filesystem::path& path, const CAnalysisTableDoc& table, JobRecorder& recorder) {
  RefuseProjectTarget(path);
  WriteDataFile(table.Table(), path);
  RecordTable(path, table, recorder);
}

void RecordTable(const std::filesystem::path& path, const CAnalysisTableDoc& table, JobRecorder& recorder) {
  const bool isCsv = !HasDataEnding(path) || HasEnding(path, ".csv");
  recorder.Called(&table,
                  isCsv                      ? "sheet.to_csv"
                  : IsNumpyArchiveName(path) ? "sheet.to_npz"
                                             : "sheet.to_file",
                  {PythonPath(path)});
}

std::vector<std::string> AppendTables(const std::filesystem::path& path, const std::vector<Table>& tables,
                                      JobRecorder& recorder) {
  std::vector<std::unique_ptr<Spreadsheet>> sheets;
  JobRecorder::Arguments arguments{PythonPath(path)};
  for (const Table& table : tables) {
    sheets.push_back(std::make_unique<Spreadsheet>(table->Table()));
    arguments.push_back(recorder.NameOf(table.get()));
  }
  auto names = AppendToProject(path, std::move(sheets));
  recorder.Called(nullptr, "Append", arguments);
  return names;
}

}  // namespace brenvolt
