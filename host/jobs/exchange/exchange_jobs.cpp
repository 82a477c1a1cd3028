#include "host/jobs/exchange/exchange_jobs.h"

#include <utility>

#include "host/base/error.h"
#include "host/base/quoted.h"
#include "host/base/utf8.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/safe_cells_option.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/formats/safe_cells.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr std::string_view kData = "data";
constexpr std::string_view kMatrix = "matrix";

Spreadsheet ReadSheet(const ImportJob& job) {
  DataFile file = OpenJobData(job.data);
  if (file.isProject) throw Error("the file is already a project", job.data.file.string());
  Spreadsheet table = std::move(file.Sheet(job.data.sheet));
  const bool isMatrix = job.kind.empty() ? LooksLikeMatrixTable(table) : job.kind == kMatrix;
  return isMatrix ? std::move(*MatrixFromTable(table, job.data.file.string())) : std::move(table);
}

std::string Keyword(const char* name, const std::string& text) {
  return text.empty() ? text : name + PythonText(text);
}

}  // namespace

JobFaults ImportJob::Check() const {
  JobFaults faults;
  CheckProjectEnding("output", output, faults);
  CheckFolder("output", output, faults);
  CheckReading(data, faults);
  if (!kind.empty() && kind != kData && kind != kMatrix)
    faults.push_back({"kind", "expected data or matrix, got " + Quoted(kind)});
  if (!IsText(name)) faults.push_back({"name", "the name is not UTF-8 text"});
  CheckTargetsApart({{"file", data.file}}, {{"output", output}}, faults);
  return faults;
}

Spreadsheet ImportJob::Run(JobRecorder& recorder) const {
  RequireNone(Check());
  Spreadsheet taken = ReadSheet(*this);
  if (!name.empty()) taken.SetName(name);
  MergeIntoProject(output, taken);
  JobRecorder::Arguments arguments{PythonPath(data.file), PythonPath(output), Keyword("sheet=", data.sheet),
                                   Keyword("kind=", kind), Keyword("name=", name)};
  for (std::string& argument : ReadingArguments(data)) arguments.push_back(std::move(argument));
  recorder.Called(nullptr, "Import", arguments);
  return taken;
}

JobFaults ExportJob::Check() const {
  JobFaults faults;
  CheckTableTarget("output", output, faults);
  CheckTargetsApart({{"source", SplitSheetAddress(source).first}}, {{"output", output}}, faults);
  if (decimalComma && HasDataEnding(output) && !HasEnding(output, ".csv"))
    faults.push_back({"decimalComma", "the decimal sign can be chosen for CSV files only"});
  CheckSafeCells(safeCells, output, faults);
  return faults;
}

void ExportJob::Run(JobRecorder& recorder) const {
  RequireNone(Check());
  const auto [path, name] = SplitSheetAddress(source);
  DataFile project = OpenProject(path);
  RefuseProjectTarget(output);
  const Spreadsheet& sheet = project.Sheet(name);
  if (safeCells) {
    WriteDataFile(WithSafeCells(sheet), output, FormatOf(decimalComma));
  } else {
    WriteDataFile(sheet, output, FormatOf(decimalComma));
  }
  recorder.Called(nullptr, "Export",
                  {PythonText(source), PythonPath(output), DecimalCommaArgument(decimalComma),
                   SafeCellsArgument(safeCells)});
}

}  // namespace brenvolt
