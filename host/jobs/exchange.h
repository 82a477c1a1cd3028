// Between projects and files of other formats: what import and export do in the command and in macros.
#pragma once

#include <filesystem>
#include <string>

#include "host/application/application.h"

namespace brenvolt {

struct ImportRequest {
  std::filesystem::path file;
  CsvFormat format;
  std::string sheet;  // the name of the new sheet; empty: the file's name
  std::string kind;   // "data" or "matrix"; empty: the file decides
};
// Imports a data file into the project at `project`, which is created if missing, and returns the sheet
// taken in. Throws Error naming what is at fault.
Spreadsheet ImportIntoProject(const ImportRequest& request, const std::filesystem::path& project);

// Writes a sheet of a project, PROJECT.bvw or PROJECT.bvw:SHEET, as CSV. Throws Error.
void ExportFromProject(const std::string& source, const std::filesystem::path& output,
                       const CsvFormat& format);

}  // namespace brenvolt
