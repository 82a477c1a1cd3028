// Two programs changed copies of one project: what both did, put together.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/tables/spreadsheet.h"
#include "host/tables/workbook_schema.h"
#include "host/tables/workbook_writer.h"

namespace brenvolt {

// What tells later whether something was changed, without the values and texts themselves.
struct VariableMemory {
  std::string name;
  std::int64_t checksum = 0;  // of the values
  std::size_t about = 0;      // of type, missing-data code and labels
  std::vector<std::pair<std::string, std::string>> properties;
  bool operator==(const VariableMemory&) const = default;
};
struct SheetMemory {
  std::string name;
  std::size_t about = 0;      // of kind, texts and case names
  std::size_t weight = 0;     // which variable weighs the cases
  std::size_t selection = 0;  // of the cases
  std::size_t cases = 0;
  std::vector<VariableMemory> variables;
  bool operator==(const SheetMemory&) const = default;
};
using ProjectMemory = std::vector<SheetMemory>;

// `columns` spares the checksums that are known.
ProjectMemory RememberSheets(SheetList sheets, const StoredColumns& columns);

// Puts into `theirs`, which another program saved, what was changed here since both were `base`. Where one
// variable was fitted by both, what is here counts; so do matrices, which are calculated anew. Throws Error naming
// `file`, and the sheet, when both changed the same data.
void MergeSheets(std::vector<std::unique_ptr<Spreadsheet>>& theirs, const ProjectMemory& theirMemory,
                 SheetList mine, const ProjectMemory& myMemory, const ProjectMemory& base,
                 const std::string& file);

}  // namespace brenvolt
