#include "apps/cli/text_table.h"

#include <algorithm>

#include "host/base/visible_text.h"

namespace brenvolt::cli {
namespace {

constexpr std::string_view kIndent = "  ";
constexpr std::string_view kGap = "  ";

std::size_t Width(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string Padded(const std::string& text, std::size_t width, TextTable::Align align) {
  const std::string blanks(width - Width(text), ' ');
  return align == TextTable::Align::kLeft ? text + blanks : blanks + text;
}

}  // namespace

void TextTable::AddColumn(std::string heading, Align align) {
  columns_.push_back({VisibleLine(heading), align});
}

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  // A line break or another control character in a name must not break the table.
  for (std::string& cell : cells) cell = VisibleLine(cell);
  rows_.push_back(std::move(cells));
}

std::string TextTable::Text() const {
  std::vector<std::size_t> widths;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    std::size_t width = Width(columns_[c].heading);
    for (const auto& row : rows_) width = std::max(width, Width(row[c]));
    widths.push_back(width);
  }
  std::string text;
  const auto addLine = [&](const auto& cellAt) {
    std::string line(kIndent);
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      if (c > 0) line += kGap;
      line += Padded(cellAt(c), widths[c], columns_[c].align);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  };
  addLine([&](std::size_t c) -> const std::string& { return columns_[c].heading; });
  for (const auto& row : rows_) {
    addLine([&](std::size_t c) -> const std::string& { return row[c]; });
  }
  return text;
}

std::string TextOf(const ReportTable& table) {
  TextTable text;
  for (const ReportColumn& column : table.columns)
    text.AddColumn(column.heading, column.isNumber ? TextTable::Align::kRight : TextTable::Align::kLeft);
  for (const ReportRow& row : table.rows) text.AddRow(row.cells);
  return text.Text();
}

}  // namespace brenvolt::cli
