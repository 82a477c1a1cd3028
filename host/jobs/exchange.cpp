#include "host/jobs/exchange.h"

#include <utility>

#include "host/base/error.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

Spreadsheet ReadSheet(const ImportRequest& request) {
  Spreadsheet table = ReadCsv(request.file, request.format);
  const bool isMatrix = request.kind.empty() ? LooksLikeMatrixTable(table) : request.kind == "matrix";
  return isMatrix ? std::move(*MatrixFromTable(table, request.file.string())) : std::move(table);
}

}  // namespace

Spreadsheet ImportIntoProject(const ImportRequest& request, const std::filesystem::path& project) {
  if (Workbook::IsWorkbookFile(request.file))
    throw Error("the file is already a project", request.file.string());
  Spreadsheet sheet = ReadSheet(request);
  if (!request.sheet.empty()) sheet.SetName(request.sheet);
  MergeIntoProject(project, sheet);
  return sheet;
}

void ExportFromProject(const std::string& source, const std::filesystem::path& output,
                       const CsvFormat& format) {
  JobFaults faults;
  CheckCsvTarget("output", output, faults);
  RequireNone(std::move(faults));
  const auto [path, name] = SplitSheetAddress(source);
  DataFile project = OpenProject(path);
  WriteCsvFile(project.Sheet(name), output, format);
}

}  // namespace brenvolt
