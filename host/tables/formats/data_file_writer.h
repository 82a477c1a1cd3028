// Writes sheets as data files, by the ending of the name.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/csv.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// The endings of files that sheets can be written to: ".csv", ".npz", ".xlsx", ".sav", ".dta".
const std::vector<std::string>& DataEndings();
// True for a name that ends in one of them, in capitals or not.
bool HasDataEnding(const std::filesystem::path& path);

// Why a table of that size cannot be written to a file of that name; empty if it can.
std::string WhyTooLarge(const std::filesystem::path& path, std::size_t cases, std::size_t variables);

// Writes a sheet: to a workbook with a sheet of the same name; to a file of SPSS or Stata under names that these take,
// the names as they were becoming descriptions; to anything else that is no .npz as separated values. Numbers are numbers,
// missing values are empty cells or missing values of the package. Text labels of numbers go to .sav and .dta. Throws Error
// naming the file, which is replaced only when everything was written.
void WriteDataFile(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format = {});

// A file of SPSS (.sav) or Stata (.dta).
void WritePackageFile(const Spreadsheet& sheet, const std::filesystem::path& path);

}  // namespace brenvolt
