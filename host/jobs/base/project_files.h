// Projects as jobs leave them: fits saved with the data that they belong to, results appended, and what files
// may not be replaced. The command and the Python package save alike because they save here.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/application/application.h"
#include "host/jobs/base/job_fault.h"
#include "host/tables/csv.h"

namespace brenvolt {

// True for a name that ends in `ending`, which is in lower case, in capitals or not.
bool HasEnding(const std::filesystem::path& path, std::string_view ending);
// True if the name ends as those of project files do.
bool HasProjectEnding(const std::filesystem::path& path);

// Adds a fault of the field where the name does not end so.
void CheckProjectEnding(std::string_view field, const std::filesystem::path& path, JobFaults& faults);

// How many seconds this process waits for a project that others save or use; 60 unless it is set. Throws WrongJob about
// the field wait for anything but a number from 0 to a year.
void SetProjectWait(double seconds);

// Opens an existing project; throws Error when the file is not one.
DataFile OpenProject(const std::filesystem::path& path);

// Puts a sheet of data into the project at `path`, which is created if missing, and saves it. A sheet
// of that name that holds the same data stays in its place and takes over what the new one adds: properties,
// case weights, selection. Throws Error when a sheet of that name holds other data. If a correlation
// matrix comes with the sheet, it goes in by PutCorrelationMatrix.
void MergeIntoProject(const std::filesystem::path& path, const Spreadsheet& sheet,
                      std::unique_ptr<Spreadsheet> matrix = nullptr);

// Gives a sheet that is to be merged into the project at `path` the properties that the project holds for it
// already, where its variables lack them. Nothing happens without such a file, or where its sheet of that
// name holds other data. Throws Error when the file is not a project.
void TakeFormerProperties(const std::filesystem::path& path, Spreadsheet& sheet);

// The properties of each variable of a sheet.
using SheetProperties = std::vector<std::vector<std::pair<std::string, std::string>>>;
SheetProperties PropertiesOf(const Spreadsheet& sheet);
// Gives the variables whose properties are still the former ones those that the project at `path` holds for them by
// now. Nothing happens where it holds no such sheet, or one with other data. Throws as TakeFormerProperties does.
void RefreshProperties(const std::filesystem::path& path, const SheetProperties& former, Spreadsheet& sheet);

// What the correlation matrix of a data sheet is called in the workbook, or would be: "Correlation matrix"
// where that sheet is the first data sheet, "Correlation matrix of SHEET" otherwise, with a number after it
// where a data sheet bears that name.
std::string CorrelationMatrixName(const Workbook& workbook, const std::string& dataSheet);

// Puts the correlation matrix that belongs to a data sheet of the workbook into it under the name above,
// in place of an earlier matrix.
void PutCorrelationMatrix(Workbook& workbook, const std::string& dataSheet,
                          std::unique_ptr<Spreadsheet> matrix);

// True if the data were read from the project at `path`.
bool IsSavedAs(const DataFile& data, const std::filesystem::path& path);
// Saves a fitted sheet, with the correlation matrix of its fits unless that is null, in the project at
// `path`. A sheet of the project itself, `home`, stays in its place; any other, `home` being null or another
// project, is merged into it.
void SaveFits(const Spreadsheet& sheet, std::unique_ptr<Spreadsheet> matrix, DataFile* home,
              const std::filesystem::path& path);

// Whether any variable carries saved distributions.
bool CarriesDistributions(const Spreadsheet& sheet);
// The sheet of that name; without a name, the first whose variables carry saved distributions, otherwise the first
// data sheet: simulated data may stand before the sheet that they came from. Throws Error.
Spreadsheet& FittedSheet(DataFile& data, const std::string& name);
// A copy of the correlation matrix saved with the fits of a sheet of the project, or null.
std::unique_ptr<Spreadsheet> SavedMatrix(const Workbook& project, const Spreadsheet& sheet);
// The correlation matrix of that name, in the order of trial: a matrix sheet of the project; a sheet of
// another project (PROJECT.bvw:SHEET, or the matrix of its first data sheet); a CSV file. Throws Error at
// `where` when it is none of these.
std::unique_ptr<Spreadsheet> NamedMatrix(const std::string& name, const Workbook& project,
                                         const std::string& where);

// Tells the document of an analysis of the matrix sheets of the workbook, which must outlive it, and of files, by the
// names that NamedMatrix takes.
void OfferMatrices(CAnalysisDoc& document, const Workbook& workbook);

// Adds sheets to the project at `path`, which is created if missing, and saves it. Returns the sheets'
// names in the project: their own, or with a number after it if that is taken.
std::vector<std::string> AppendToProject(const std::filesystem::path& path,
                                         std::vector<std::unique_ptr<Spreadsheet>> sheets);

// PROJECT.bvw or PROJECT.bvw:SHEET taken apart; the sheet is empty if none is named. Names of files and of
// sheets may hold colons: the longest beginning that is a file ends at the colon that counts.
std::pair<std::filesystem::path, std::string> SplitSheetAddress(const std::string& source);

// Throws Error if writing another format to `path` would replace a project.
void RefuseProjectTarget(const std::filesystem::path& path);
// Writes a sheet as CSV. Throws Error, and writes nothing, if a project would be replaced.
void WriteCsvFile(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format);

}  // namespace brenvolt
