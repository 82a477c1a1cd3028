#include "host/jobs/exchange_jobs.h"

#include <utility>

#include "host/base/error.h"
#include "host/base/quoted.h"
#include "host/base/utf8.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr std::string_view kData = "data";
constexpr std::string_view kMatrix = "matrix";

Spreadsheet ReadSheet(const ImportJob& job) {
  Spreadsheet table = ReadCsv(job.file, FormatOf(job.decimalComma));
  const bool isMatrix = job.kind.empty() ? LooksLikeMatrixTable(table) : job.kind == kMatrix;
  return isMatrix ? std::move(*MatrixFromTable(table, job.file.string())) : std::move(table);
}

std::string Keyword(const char* name, const std::string& text) {
  return text.empty() ? text : name + PythonText(text);
}

}  // namespace

JobFaults ImportJob::Check() const {
  JobFaults faults;
  CheckProjectEnding("output", output, faults);
  CheckFolder("output", output, faults);
  if (!kind.empty() && kind != kData && kind != kMatrix)
    faults.push_back({"kind", "expected data or matrix, got " + Quoted(kind)});
  if (!IsText(sheet)) faults.push_back({"sheet", "the name is not UTF-8 text"});
  CheckTargetsApart({{"file", file}}, {{"output", output}}, faults);
  return faults;
}

Spreadsheet ImportJob::Run(JobRecorder& recorder) const {
  RequireNone(Check());
  if (Workbook::IsWorkbookFile(file)) throw Error("the file is already a project", file.string());
  Spreadsheet taken = ReadSheet(*this);
  if (!sheet.empty()) taken.SetName(sheet);
  MergeIntoProject(output, taken);
  recorder.Called(nullptr, "Import",
                  {PythonPath(file), PythonPath(output), Keyword("sheet=", sheet), Keyword("kind=", kind),
                   DecimalCommaArgument(decimalComma)});
  return taken;
}

JobFaults ExportJob::Check() const {
  JobFaults faults;
  CheckCsvTarget("output", output, faults);
  CheckTargetsApart({{"source", SplitSheetAddress(source).first}}, {{"output", output}}, faults);
  return faults;
}

void ExportJob::Run(JobRecorder& recorder) const {
  RequireNone(Check());
  const auto [path, name] = SplitSheetAddress(source);
  DataFile project = OpenProject(path);
  WriteCsvFile(project.Sheet(name), output, FormatOf(decimalComma));
  recorder.Called(nullptr, "Export",
                  {PythonText(source), PythonPath(output), DecimalCommaArgument(decimalComma)});
}

}  // namespace brenvolt
