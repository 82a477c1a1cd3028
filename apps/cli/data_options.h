// Options and actions that several verbs share: reading data files, choosing a format, saving into projects.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "host/application/application.h"

namespace brenvolt::cli {

enum class ReportFormat { kTable, kJson };

// Adds --format table|json.
void AddFormatOption(CLI::App& command, ReportFormat& format);

struct InputOptions {
  std::filesystem::path path;
  std::string sheet;
  bool decimalComma = false;

  CsvFormat Format() const { return decimalComma ? CsvFormat::DecimalComma() : CsvFormat{}; }
};

// Adds --decimal-comma.
void AddDecimalCommaOption(CLI::App& command, InputOptions& input);

// Opens an existing project; throws Error when the file is none.
DataFile OpenProject(const std::filesystem::path& path);

// Throws WrongCall unless `path` ends as project files do. `option` names the option that gave it.
void RequireProjectEnding(const std::filesystem::path& path, const std::string& option);
// True for a name that ends in `ending`, which is in lower case, in capitals or not.
bool HasEnding(const std::filesystem::path& path, std::string_view ending);
bool HasProjectEnding(const std::filesystem::path& path);

// Takes a sheet of data into the project at `path`, which is made when there is none, and saves it. A sheet
// of that name that holds the same data stays in its place and takes over what the new one adds: properties,
// case weights, selection. Throws Error when a sheet of that name holds other data. Where a correlation
// matrix comes with the sheet, it goes in by PutCorrelationMatrix.
void MergeIntoProject(const std::filesystem::path& path, const Spreadsheet& sheet,
                      std::unique_ptr<Spreadsheet> matrix = nullptr);

// Gives a sheet that is to be merged into the project at `path` the properties that the project holds for it
// already, where its variables lack them. Nothing happens without such a file, or where its sheet of that
// name holds other data. Throws Error when the file is no project.
void TakeFormerProperties(const std::filesystem::path& path, Spreadsheet& sheet);

// What the correlation matrix of a data sheet is called in the workbook, or would be: "Correlation matrix"
// where that sheet is the first data sheet, "Correlation matrix of SHEET" otherwise, with a number behind it
// where a data sheet bears that name.
std::string CorrelationMatrixName(const Workbook& workbook, const std::string& dataSheet);

// Puts the correlation matrix that belongs to a data sheet of the workbook into it under the name above,
// in the place of a former matrix.
void PutCorrelationMatrix(Workbook& workbook, const std::string& dataSheet,
                          std::unique_ptr<Spreadsheet> matrix);

// Adds sheets to the project at `path`, which is made when there is none, and saves it. Returns the sheets'
// names in the project: their own, or with a number behind it where that is taken.
std::vector<std::string> AppendToProject(const std::filesystem::path& path,
                                         std::vector<std::unique_ptr<Spreadsheet>> sheets);

// PROJECT.bvw or PROJECT.bvw:SHEET taken apart; the sheet is empty where none is named. Names of files and of
// sheets may hold colons: the longest beginning that is a file ends at the colon that counts.
std::pair<std::filesystem::path, std::string> SplitSheetAddress(const std::string& source);

// Throws Error where writing another format to `path` would replace a project.
void RefuseProjectTarget(const std::filesystem::path& path);
// Writes a sheet as CSV. Throws Error, and writes nothing, where a project would be replaced.
void WriteCsvFile(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format);

// True for a regular file, and where there is nothing yet.
bool IsRegularTarget(const std::filesystem::path& path);
// What simulated data may go to: a project, CSV or NumPy arrays by the ending, CSV to devices and pipes, or
// nothing for an empty path. Throws WrongCall otherwise; Error where a project would be replaced.
void CheckSimulatedTarget(const std::filesystem::path& path);

// A report for programs; bytes that are no text are replaced.
std::string JsonText(const nlohmann::ordered_json& report);

}  // namespace brenvolt::cli
