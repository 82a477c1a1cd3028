// Text files of separated values: RFC 4180 with a header row of variable names, UTF-8 with or without a byte-order
// mark.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

struct CsvFormat {
  char separator = ',';
  char decimalSeparator = '.';

  // Decimal comma with a semicolon between fields, as spreadsheets write where the comma is the decimal separator.
  static CsvFormat DecimalComma() { return {';', ','}; }
};

// Reads a file into a sheet named after the file without folder and ending.
//
// Empty cells and NA are missing (the default missing-data code). A column in which some cell is neither a number nor
// missing is a text variable. A header cell without text names its column "Var" and its number; a repeated name gets
// "_2", "_3", …. Blank lines are passed over, except in files of one column, where they are missing values.
//
// Throws Error whose where() names the file, and the line and column where a line has too few or too many fields, a
// quoted field is not closed, or text stands beside a quoted field; also for a missing, unreadable or empty file.
Spreadsheet ReadCsv(const std::filesystem::path& path, const CsvFormat& format = {});

// The same over text in memory; `name` names the sheet and stands for the file in errors.
Spreadsheet ReadCsvText(std::string_view text, const std::string& name, const CsvFormat& format = {});

// Writes header and cells; numbers so that they read back exactly, text variables as their labels, missing values as
// empty cells. Case names, where the sheet has any, form a first column headed by the sheet's header. A regular file
// is replaced only when everything was written; a pipe or device is written directly. Throws Error naming the file.
void WriteCsv(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format = {});

// The same as text.
std::string CsvText(const Spreadsheet& sheet, const CsvFormat& format = {});

}  // namespace brenvolt
