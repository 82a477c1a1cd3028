#include "host/jobs/output_files.h"

#include "host/jobs/project_files.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {

bool IsRegularTarget(const std::filesystem::path& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

void CheckDataTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults) {
  if (path.empty() || HasProjectEnding(path) || HasEnding(path, ".csv") || IsNumpyArchiveName(path) ||
      !IsRegularTarget(path)) {
    return;
  }
  faults.push_back(
      {std::string(field), "expected a file ending in .csv, .npz or .bvw, got " + path.string()});
}

void RefuseReplacedProject(const std::filesystem::path& path) {
  if (!path.empty() && !HasProjectEnding(path)) RefuseProjectTarget(path);
}

void WriteTable(const std::filesystem::path& path, const CAnalysisTableDoc& table, JobRecorder& recorder) {
  if (IsNumpyArchiveName(path)) {
    WriteNumpyArchive(table.Table(), path);
    recorder.Called(&table, "sheet.to_npz", {PythonPath(path)});
    return;
  }
  WriteCsvFile(table.Table(), path, {});
  recorder.Called(&table, "sheet.to_csv", {PythonPath(path)});
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
