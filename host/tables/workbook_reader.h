// From a project file to sheets.
#pragma once

#include <memory>
#include <vector>

#include "host/tables/spreadsheet.h"
#include "host/tables/sqlite_connection.h"
#include "host/tables/workbook.h"
#include "host/tables/workbook_schema.h"

namespace brenvolt {

struct WorkbookContent {
  std::vector<std::unique_ptr<Spreadsheet>> sheets;
  StoredColumns columns;
  WorkbookHeader header;
};

// Opens a file for reading and begins the transaction in which all is read. Throws Error naming `path` when
// the file cannot be read, is not a project, was written by a newer version, or is shorter than it says.
Connection OpenWorkbookFile(const std::filesystem::path& path);

// Reads everything. Memory is never asked for beyond what the file can hold. Throws Error when the content
// contradicts itself or the format.
WorkbookContent ReadWorkbook(Connection& connection);
std::vector<SheetOutline> ReadOutline(Connection& connection);

}  // namespace brenvolt
