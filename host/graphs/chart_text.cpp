#include "host/graphs/chart_text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "host/base/number_text.h"
#include "host/formula/curve.h"

namespace brenvolt {
namespace {

constexpr std::size_t kMostRows = 20;
constexpr const char* kMark = "│";
// Blocks of one to eight eighths of a character.
constexpr const char* kBlocks[] = {"▏", "▎", "▍", "▌", "▋", "▊", "▉", "█"};
constexpr std::size_t kEighths = std::size(kBlocks);

struct ChartRow {
  double from = 0;
  double to = 0;
  double count = 0;
  double expected = std::nan("");
};

std::vector<ChartRow> RowsOf(const GraphBars& bars) {
  const std::size_t classes = bars.heights.size();
  const std::size_t joined = (classes + kMostRows - 1) / kMostRows;
  std::vector<ChartRow> rows;
  for (std::size_t i = 0; i < classes; i += joined) {
    const std::size_t end = std::min(i + joined, classes);
    ChartRow row{bars.bounds[i], bars.bounds[end], 0};
    for (std::size_t k = i; k < end; ++k) row.count += bars.heights[k];
    rows.push_back(row);
  }
  return rows;
}

// What the curve has in the middle of each class, where classes were joined of all of them.
void AddExpected(const GraphBars& bars, const GraphCurve& curve, std::vector<ChartRow>& rows) {
  Curve function(curve.formula, curve.name);
  for (ChartRow& row : rows) row.expected = 0;
  std::size_t place = 0;
  for (std::size_t i = 0; i < bars.heights.size(); ++i) {
    while (place + 1 < rows.size() && bars.bounds[i] >= rows[place].to) ++place;
    double middle = bars.bounds[i] / 2 + bars.bounds[i + 1] / 2;
    if (curve.wholeNumbers) middle = std::round(middle);
    rows[place].expected += function.At(middle);
  }
}

// `eighths` of characters filled, and a mark in the column where there is one.
std::string Bar(std::size_t eighths, std::optional<std::size_t> mark) {
  std::string text;
  const std::size_t whole = eighths / kEighths;
  const std::size_t columns = std::max(whole + 1, mark.value_or(0) + 1);
  for (std::size_t column = 0; column < columns; ++column) {
    if (mark == column) {
      text += kMark;
    } else if (column < whole) {
      text += kBlocks[kEighths - 1];
    } else if (column == whole && eighths % kEighths > 0) {
      text += kBlocks[eighths % kEighths - 1];
    } else {
      text += ' ';
    }
  }
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string Padded(const std::string& text, std::size_t width) {
  return std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

std::size_t WidestOf(std::span<const ChartRow> rows, double ChartRow::*member) {
  std::size_t widest = 0;
  for (const ChartRow& row : rows) widest = std::max(widest, FormatNumber("%.6g", row.*member).size());
  return widest;
}

}  // namespace

std::string ChartText(const Graph& histogram, std::size_t width) {
  if (histogram.bars.empty() || histogram.bars.front().heights.empty()) return {};
  const GraphBars& bars = histogram.bars.front();
  std::vector<ChartRow> rows = RowsOf(bars);
  const bool hasCurve = !histogram.curves.empty();
  if (hasCurve) AddExpected(bars, histogram.curves.front(), rows);
  const std::size_t from = WidestOf(rows, &ChartRow::from);
  const std::size_t to = WidestOf(rows, &ChartRow::to);
  const std::size_t count = WidestOf(rows, &ChartRow::count);
  // "  FROM to TO  COUNT  BAR"
  const std::size_t before = 2 + from + 4 + to + 2 + count + 2;
  const std::size_t room =
      std::max(width, kLeastChartWidth) > before + 10 ? std::max(width, kLeastChartWidth) - before - 1 : 10;
  double most = 0;
  for (const ChartRow& row : rows)
    most = std::max({most, row.count, std::isfinite(row.expected) ? row.expected : 0});
  std::string text = histogram.title + "\n";
  for (const ChartRow& row : rows) {
    const double unit = most > 0 ? static_cast<double>(room) / most : 0;
    std::optional<std::size_t> mark;
    if (hasCurve && std::isfinite(row.expected))
      mark = static_cast<std::size_t>(
          std::clamp(std::round(row.expected * unit), 0.0, static_cast<double>(room)));
    const std::string bar = Bar(static_cast<std::size_t>(std::round(row.count * unit * kEighths)), mark);
    text += "  " + Padded(FormatNumber("%.6g", row.from), from) + " to " +
            Padded(FormatNumber("%.6g", row.to), to) + "  " + Padded(FormatNumber("%.6g", row.count), count) +
            (bar.empty() ? "" : "  " + bar) + "\n";
  }
  if (hasCurve) text += "  " + std::string(kMark) + " " + histogram.curves.front().name + "\n";
  return text;
}

}  // namespace brenvolt
