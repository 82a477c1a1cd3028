#include "apps/cli/text_table.h"

#include <algorithm>
#include <cmath>

#include "host/base/number_text.h"
#include "host/base/p_value_text.h"

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
  columns_.push_back({std::move(heading), align});
}

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  // A line break or another control character in a name must not break the table.
  for (std::string& cell : cells) {
    std::ranges::replace_if(
        cell, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  }
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

std::string ReadableNumber(double value, int digits) {
  return std::isnan(value) ? "-" : FormatNumber(("%." + std::to_string(digits) + "g").c_str(), value);
}

int DigitsFor(double value, double spread, int least) {
  constexpr int kExact = 17;  // of a double
  if (!(value != 0 && std::isfinite(value) && spread > 0)) return least;
  const double leading = std::floor(std::log10(std::abs(value))) - std::floor(std::log10(spread));
  return static_cast<int>(std::clamp<double>(leading + 3, least, kExact));
}

std::string QuantityText(double value, Quantity quantity, int digits) {
  constexpr int kStatisticDigits = 4;
  constexpr double kHalfPart = 0.5;
  if (std::isnan(value)) return "-";
  switch (quantity) {
    case Quantity::kPartsPerMillion:
      // A part that is rounded away is not 0.
      return value > 0 && value < kHalfPart ? "<1" : FormatNumber("%.0f", value);
    case Quantity::kMeasure:
    case Quantity::kLocation:
      return ReadableNumber(value, digits);
    case Quantity::kCount:
      return FormatNumber("%.0f", value);
    case Quantity::kStatistic:
      return ReadableNumber(value, kStatisticDigits);
    case Quantity::kPValue:
      return PValueText(value);
    case Quantity::kInformation:
      return FormatNumber("%.2f", value);
  }
  return {};
}

std::string Cell(const ResultRow& row, const ResultColumn& column, int digits) {
  if (column.quantity == Quantity::kLocation && row.Has("standard_deviation"_column))
    digits = DigitsFor(row.Number(column), row.Number("standard_deviation"_column), digits);
  return QuantityText(row.Number(column), column.quantity, digits);
}

std::string TableText(std::span<const ResultRow> rows, std::string_view nameHeading,
                      std::span<const ResultTable::Heading> columns,
                      std::string (*number)(const ResultRow& row, std::string_view identifier)) {
  TextTable text;
  text.AddColumn(std::string(nameHeading), TextTable::Align::kLeft);
  for (const ResultTable::Heading& column : columns) text.AddColumn(column.text, TextTable::Align::kRight);
  for (const ResultRow& row : rows) {
    std::vector<std::string> cells{row.name};
    for (const ResultTable::Heading& column : columns) cells.push_back(number(row, column.identifier));
    text.AddRow(std::move(cells));
  }
  return text.Text();
}

}  // namespace brenvolt::cli
