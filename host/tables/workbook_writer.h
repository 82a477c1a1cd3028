// From sheets to a project file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "host/tables/spreadsheet.h"
#include "host/tables/sqlite_connection.h"
#include "host/tables/workbook_schema.h"

namespace brenvolt {

using SheetList = std::span<const std::unique_ptr<Spreadsheet>>;

// Throws Error naming `file` when sheets share a name, or a variable, weight variable or case selection does
// not match its sheet: such a project could not be read again.
void RequireConsistent(SheetList sheets, const std::string& file);

// Bytes of all columns.
std::uint64_t ColumnBytes(SheetList sheets);

// Makes an empty file a project file with this content; where its columns stand. The caller gets the file to
// the device.
StoredColumns WriteNewWorkbook(Connection& connection, SheetList sheets);

// Brings the project file at the other end of `connection` to this content in one transaction, keeping the
// columns whose stamps are in `stored`; where the columns are now. Nothing, and an unchanged file, when the
// file is not the one in which `stored` and `header` were found or when rewriting it is the better way.
std::optional<StoredColumns> UpdateWorkbook(Connection& connection, SheetList sheets,
                                            const StoredColumns& stored, const WorkbookHeader& header);

}  // namespace brenvolt
