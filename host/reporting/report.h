// A report as a document: its title, its sections, and what they hold, with nothing about how it is shown. Jobs fill one
// from their results (host/jobs/reports); a writer for each format of file reads it (report_file.h), and the command prints
// the same tables in a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/graphs/graph.h"

namespace brenvolt {

struct ReportColumn {
  std::string heading;
  bool isNumber = true;  // aligned right, and sorted by value
};

struct ReportRow {
  std::vector<std::string> cells;
  std::vector<std::string> notes = {};  // on the row as a whole, below its first text
};

struct ReportTable {
  std::string title = {};  // mostly empty: the section says what it is
  std::vector<ReportColumn> columns = {};
  std::vector<ReportRow> rows = {};
  std::vector<std::string> notes = {};  // below the table
  bool isIndex = false;                 // cells of the first column that are titles of sections lead there

  void AddText(std::string heading) { columns.push_back({std::move(heading), false}); }
  void AddNumber(std::string heading) { columns.push_back({std::move(heading), true}); }
  // The column below whose cells the notes of rows stand: the first of texts.
  std::size_t NotedColumn() const {
    std::size_t column = 0;
    while (column < columns.size() && columns[column].isNumber) ++column;
    return column;
  }
  // Missing cells at its end are empty.
  void AddRow(std::vector<std::string> cells) { rows.push_back({std::move(cells)}); }
};

struct ReportParagraph {
  std::string text;
};

// What a reader must know before he relies on a number.
struct ReportNote {
  std::string_view kind;  // kNote, kCaution or kWarning
  std::string text;
};
inline constexpr std::string_view kNote = "note";
inline constexpr std::string_view kCaution = "caution";
inline constexpr std::string_view kWarning = "warning";

// Names with their values, a line each.
struct ReportFacts {
  std::vector<std::pair<std::string, std::string>> facts;
};

// Lines that are to be copied as they stand.
struct ReportCode {
  std::string text;
};

// Graphs side by side where there is room; the first is the main one.
struct ReportPictures {
  std::vector<Graph> graphs;
};

using ReportBlock =
    std::variant<ReportParagraph, ReportNote, ReportFacts, ReportCode, ReportTable, ReportPictures>;

struct ReportSection {
  std::string title;
  std::vector<ReportBlock> blocks = {};
  std::vector<ReportSection> sections = {};

  void Say(std::string text) { blocks.emplace_back(ReportParagraph{std::move(text)}); }
  // Tables without rows are left out.
  void Show(ReportTable table) {
    if (!table.rows.empty()) blocks.emplace_back(std::move(table));
  }
  void Warn(std::string_view kind, std::string text) {
    blocks.emplace_back(ReportNote{kind, std::move(text)});
  }
};

struct Report {
  std::string title;
  std::string summary;  // a sentence below the title
  std::vector<ReportSection> sections;
};

}  // namespace brenvolt
