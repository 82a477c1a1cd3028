// Between projects and files of other formats: what import, export and score do in the command and in macros.
#pragma once

#include <filesystem>
#include <string>

#include "host/application/application.h"
#include "host/models/prediction_model.h"

namespace brenvolt {

struct ImportRequest {
  std::filesystem::path file;
  CsvFormat format;
  std::string sheet;  // the name of the new sheet; empty: the file's name
  std::string kind;   // "data" or "matrix"; empty: the file decides
};
// Takes a data file into the project at `project`, which is made when there is none, and returns the sheet
// taken in. Throws Error naming what is at fault.
Spreadsheet ImportIntoProject(const ImportRequest& request, const std::filesystem::path& project);

// Writes a sheet of a project, PROJECT.bvw or PROJECT.bvw:SHEET, as CSV. Throws Error.
void ExportFromProject(const std::string& source, const std::filesystem::path& output,
                       const CsvFormat& format);

// The predictions of a model file for the cases of a data file's sheet (the first data sheet where the name
// is empty). The model is read first: a file that is no model is the nearer fault than one of its data.
// Throws Error.
Spreadsheet ScoreFile(const std::filesystem::path& model, const std::filesystem::path& data,
                      const CsvFormat& format, const std::string& sheet, const ScoreOptions& options);

}  // namespace brenvolt
