// What the text of a cell means, and how a text must be written in a cell to keep its meaning: the agreement
// between reading and writing separated values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/tables/csv.h"
#include "host/tables/csv_layout.h"
#include "host/tables/csv_scan.h"

namespace brenvolt {

// Throws Error if the format's characters cannot be told apart from each other or from what is in
// cells.
void CheckCsvFormat(const CsvFormat& format);

enum class CsvCellKind : std::uint8_t {
  kMissing,
  kNumber,
  kTooLarge,  // a number beyond the range of a double
  kText
};

// Reads a field; `value` is written for numbers only. Quoted or not, a number is a number, and so are "inf"
// and "-inf" in any case; the words for missing values are text if they are quoted, but not those that the layout
// names.
CsvCellKind ReadCsvCell(const CsvField& field, const CsvLayout& layout, double& value);

// The field's text as a person means it: doubled quotes made single. `buffer` keeps the text if it must be
// made.
std::string_view CsvFieldText(const CsvField& field, std::string& buffer);

// Appends a text so that it reads back as this text, in quotes only if it needs them.
void AppendCsvText(std::string& out, std::string_view text, char separator);

// Appends a number so that it reads back exactly; a missing one must not come here.
void AppendCsvNumber(std::string& out, double x, char decimalSeparator);

}  // namespace brenvolt
