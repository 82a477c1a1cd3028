// Text files of separated values: RFC 4180 with a header row of variable names, UTF-8 with or without a
// byte-order mark.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "host/base/files/output_file.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

struct CsvFormat {
  char separator = ',';
  char decimalSeparator = '.';

  // Decimal comma with a semicolon between fields, as spreadsheets write them if the comma is the decimal
  // separator.
  static CsvFormat DecimalComma() { return {';', ','}; }
};

// Reads a file into a sheet named after the file without folder and ending. A pipe or device is read until it
// ends.
//
// Lines end with LF or CRLF. Blanks around a cell's text, number or quotes do not count. Empty cells, NA and
// nan are missing (the default missing-data code); NA and nan in quotes are texts. Numbers are numbers with
// or without quotes and may have a leading plus; inf and -inf are infinities. A column in which some cell is
// neither a number nor missing is a text variable, and all its cells are texts. A header cell without text
// names its column "Var" and its number; a repeated name gets "_2", "_3", …. Blank lines are passed over,
// except in files of one column, where they are missing values.
//
// Throws Error whose where() names the file, and the line and the number of the column if a line has too
// few or too many fields, a quoted field is not closed, text is next to a quoted field, a number is too
// large for a double, or the file is not text in UTF-8; also for a file that is missing, unreadable, empty,
// or holds nothing but a header, and for a format whose characters cannot be told apart.
//
// Works on all cores, 0.5 MB of text at a time; needs memory for twice the values. The result does not depend
// on the number of cores.
Spreadsheet ReadCsv(const std::filesystem::path& path, const CsvFormat& format = {});

// The same over text in memory; `name` names the sheet and takes the place of the file in errors.
Spreadsheet ReadCsvText(std::string_view text, const std::string& name, const CsvFormat& format = {});

// Writes header and cells, lines ending with LF; numbers so that they read back exactly, infinities as inf
// and -inf, text variables as their labels (numeric ones as numbers, whatever labels they have), missing
// values as empty cells, and quotes only if a text needs them. Case names, if the sheet has any, form a
// first column headed by the sheet's header. A regular file is replaced only when everything was written; a
// pipe or device is written directly. Throws Error naming the file.
void WriteCsv(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format = {});

// The same for a table that comes in pieces, sheets of the same variables in their order: the file is what
// WriteCsv makes of all their cases together. Numbered cases go on being numbered from piece to piece.
// Without Commit the target stays as it was.
class CsvPieces {
 public:
  explicit CsvPieces(const std::filesystem::path& path, const CsvFormat& format = {});
  void Append(const Spreadsheet& piece);
  void Commit() { file_.Commit(); }

 private:
  CsvFormat format_;
  OutputFile file_;
  bool hasHeader_ = false;
  std::uint64_t cases_ = 0;
};

// The same as text.
std::string CsvText(const Spreadsheet& sheet, const CsvFormat& format = {});

}  // namespace brenvolt
