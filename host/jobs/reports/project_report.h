// What a project holds, for people: tables that the command prints, and a report.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "host/jobs/design_job.h"
#include "host/jobs/reports/report_parts.h"

namespace brenvolt {

// The sheets of a project, the variables of a sheet, and the correlations of a matrix, of its first variables.
ReportTable SheetTable(const Workbook& workbook);
ReportTable VariableTable(const Spreadsheet& sheet);
ReportTable MatrixTable(const Spreadsheet& matrix, std::size_t most);
// "matrix of 3 variables, number of valid cases 20".
std::string MatrixText(const Spreadsheet& matrix);

// What the variables of a sheet are simulated from; nothing where none carries a distribution. Properties that are none
// stand in the list of the properties alone.
DesignText DesignOf(const std::filesystem::path& project, const Spreadsheet& sheet,
                    ProgramInterface& interface);

// Of a sheet, or without its name of all. `report` is the file that is asked for.
Report ProjectReport(const std::filesystem::path& path, DataFile& project, const std::string& sheet,
                     const std::filesystem::path& report, ProgramInterface& interface);

}  // namespace brenvolt
