#include "host/tables/office/sheet_grid.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

#include "host/base/error.h"
#include "host/tables/csv_cell.h"
#include "host/tables/csv_reader.h"
#include "host/tables/office/ods_reader.h"
#include "host/tables/office/xlsx_reader.h"
#include "host/tables/text/sheet_notes.h"
#include "host/tables/text/text_table.h"

namespace brenvolt {
namespace {

// A sheet may have a billion places for a dozen cells.
constexpr std::size_t kAlwaysPlaces = 20'000'000;
constexpr std::size_t kMostPlacesOfCell = 50;

bool IsErrorValue(const std::string& text) {
  constexpr std::string_view kErrors[] = {"#DIV/0!", "#N/A", "#NAME?", "#NULL!", "#NUM!", "#REF!", "#VALUE!"};
  return std::ranges::find(kErrors, text) != std::end(kErrors);
}

bool ComesBefore(const GridCell& a, const GridCell& b) {
  return a.row != b.row ? a.row < b.row : a.column < b.column;
}

// Writes the cells as separated values, a line for each row, so that one set of rules reads all tables.
class GridText {
 public:
  GridText(SheetGrid& grid, const std::string& where) : cells_(grid.cells), where_(where) {
    std::ranges::stable_sort(cells_, ComesBefore);
    first_ = cells_.front().column;
    last_ = first_;
    for (const GridCell& cell : cells_) {
      first_ = std::min(first_, cell.column);
      last_ = std::max(last_, cell.column);
    }
    const std::size_t places = (std::size_t{last_} - first_ + 1) * (std::size_t{cells_.back().row} + 1);
    if (places > std::max(kAlwaysPlaces, cells_.size() * kMostPlacesOfCell)) {
      throw Error("the sheet has " + std::to_string(cells_.size()) + " cells spread over " +
                      std::to_string(places) + " places, which is not a table",
                  where_);
    }
  }

  std::string Text() {
    std::string text;
    tableBegan_ = !HasWideRow();
    std::uint32_t row = 0;
    for (auto cell = cells_.begin(); cell != cells_.end();) {
      const auto end =
          std::find_if(cell, cells_.end(), [cell](const GridCell& other) { return other.row != cell->row; });
      text.append(cell->row - row, '\n');
      row = cell->row;
      AppendRow(text, cell, end);
      cell = end;
    }
    text += '\n';
    return text;
  }

  // By their texts, how many cells hold errors, which are missing values.
  const std::map<std::string, std::size_t>& Errors() const { return errors_; }

 private:
  using Place = std::vector<GridCell>::const_iterator;

  bool IsWide(std::size_t filled) const { return 2 * filled > std::size_t{last_} - first_ + 1; }
  bool HasWideRow() const {
    std::size_t filled = 0;
    for (std::size_t i = 0; i < cells_.size(); ++i) {
      filled = i > 0 && cells_[i].row == cells_[i - 1].row ? filled + 1 : 1;
      if (IsWide(filled)) return true;
    }
    return false;
  }

  // A row that fills less than half of the table's width above the first that fills more is a title: it stays short. Where
  // none fills more, there is no title.
  void AppendRow(std::string& text, Place cell, Place end) {
    if (IsWide(static_cast<std::size_t>(std::distance(cell, end)))) tableBegan_ = true;
    std::uint32_t column = first_;
    for (; cell != end; ++cell) {
      if (std::next(cell) != end && std::next(cell)->column == cell->column) continue;
      text.append(cell->column - column, ',');
      column = cell->column;
      if (cell->isText && IsErrorValue(cell->text)) {
        ++errors_[cell->text];
      } else if (cell->isText) {
        AppendQuoted(text, cell->text);
      } else {
        AppendCsvNumber(text, cell->number, '.');
      }
    }
    if (tableBegan_) text.append(last_ - column, ',');
  }

  // The lines of the text are the rows of the sheet: breaks in a cell become blanks.
  void AppendQuoted(std::string& out, std::string text) const {
    if (text.size() > kMostTextBytes) throw Error("a cell holds a text of more than 1 MB", where_);
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
    if (text.starts_with('#') || text.starts_with('%') || text.starts_with('!')) {
      out += '"';
      for (const char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
      out += '"';
      return;
    }
    if (IsMissingWord(text)) {
      out += text;
    } else {
      AppendCsvText(out, text, ',');
    }
  }

  std::vector<GridCell>& cells_;
  const std::string& where_;
  std::uint32_t first_ = 0;
  std::uint32_t last_ = 0;
  bool tableBegan_ = false;
  std::map<std::string, std::size_t> errors_;
};

}  // namespace

void RequireTableOptions(const TextOptions& options, const std::string& kind, const std::string& where) {
  const std::pair<bool, const char*> given[] = {{options.delimiter.has_value(), "delimiter"},
                                                {options.decimal.has_value(), "decimal"},
                                                {options.thousands.has_value(), "thousands"},
                                                {options.comment.has_value(), "comment"},
                                                {options.encoding.has_value(), "encoding"}};
  for (const auto& [isGiven, field] : given) {
    if (isGiven) throw OptionError({field, "this is " + kind + ", to which this does not apply"}, where);
  }
}

DataRead TableOf(SheetGrid grid, const std::string& place, const TextOptions& options) {
  GridText written(grid, place);
  const std::string text = written.Text();
  std::vector<GridCell>().swap(grid.cells);
  TextOptions known = options;
  known.delimiter = ",";
  known.decimal = ".";
  known.thousands = "none";
  known.comment = "none";
  known.encoding = "UTF-8";
  DataRead read = ReadTextTable(text, grid.name, place, known);
  if (grid.hasTimes) read.readAs += std::string(read.readAs.empty() ? "" : ", ") + "times as hours";
  for (const auto& [error, count] : written.Errors())
    read.doubts.push_back({"", std::to_string(count) + " error " + (count == 1 ? "cell" : "cells") + " (" +
                                   error + "), read as missing"});
  if (grid.mergedRanges > 0) {
    read.doubts.push_back({"", std::to_string(grid.mergedRanges) +
                                   (grid.mergedRanges == 1 ? " merged range" : " merged ranges") +
                                   ", of which the first cell has the value and the others are missing"});
  }
  return read;
}

DataRead ReadWorkbookFile(std::string_view bytes, bool isOds, const std::string& where,
                          const TextOptions& options) {
  RequireTableOptions(options, "a workbook", where);
  DataRead read;
  std::string fault;
  for (SheetGrid& grid : isOds ? ReadOds(bytes, where) : ReadXlsx(bytes, where)) {
    if (grid.cells.empty()) continue;
    const std::string name = grid.name;
    try {
      DataRead one = TableOf(std::move(grid), where + ", sheet " + name, options);
      if (!one.readAs.empty())
        read.readAs += (read.readAs.empty() ? "" : "; ") + ("in sheet " + name + " ") + one.readAs;
      for (ReadingNote& doubt : one.doubts)
        read.doubts.push_back({std::move(doubt.field), AboutSheet(name) + doubt.message});
      std::ranges::move(one.sheets, std::back_inserter(read.sheets));
    } catch (const StrayTextsError&) {
      throw;
    } catch (const OptionError&) {
      throw;
    } catch (const Error& error) {
      // A sheet of notes is no table of data; the others may be.
      if (fault.empty()) fault = std::string(error.what()) + " (" + error.Where() + ")";
      read.doubts.push_back({"", AboutSheet(name) + "left out, for " + error.what()});
    }
  }
  if (read.sheets.empty())
    throw Error(fault.empty() ? "the workbook is empty" : "no sheet is a table of data: " + fault, where);
  return read;
}

}  // namespace brenvolt
