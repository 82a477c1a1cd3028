#include "host/graphs/chart_text.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
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

// Between the points of a line, and 0 beyond them.
double ValueAt(const GraphSeries& line, double x) {
  const auto above = std::ranges::lower_bound(line.x, x);
  if (above == line.x.end() || (above == line.x.begin() && *above > x)) return 0;
  const auto i = static_cast<std::size_t>(above - line.x.begin());
  if (i == 0 || line.x[i] == x) return line.y[i];
  return std::lerp(line.y[i - 1], line.y[i], (x - line.x[i - 1]) / (line.x[i] - line.x[i - 1]));
}

// What is expected in a class, by its middle.
struct Expectation {
  std::string name;
  std::function<double(double)> at;
};

// Of the curve, else of the line or the points over the bars; nothing for lines that mark a limit.
std::optional<Expectation> ExpectationOf(const Graph& histogram) {
  if (!histogram.curves.empty()) {
    const GraphCurve& curve = histogram.curves.front();
    const auto function = std::make_shared<Curve>(curve.formula, curve.name);
    const bool isWhole = curve.wholeNumbers;
    return Expectation{curve.name, [function, isWhole](double middle) {
                         return function->At(isWhole ? std::round(middle) : middle);
                       }};
  }
  for (const GraphSeries& series : histogram.series) {
    const bool isLimit = series.x.size() == 2 && series.x[0] == series.x[1];
    if (isLimit || series.x.empty()) continue;
    return Expectation{series.name, [&series](double middle) { return ValueAt(series, middle); }};
  }
  return std::nullopt;
}

// Where classes were joined, that of all of them.
void AddExpected(const GraphBars& bars, const Expectation& expectation, std::vector<ChartRow>& rows) {
  for (ChartRow& row : rows) row.expected = 0;
  std::size_t place = 0;
  for (std::size_t i = 0; i < bars.heights.size(); ++i) {
    while (place + 1 < rows.size() && bars.bounds[i] >= rows[place].to) ++place;
    rows[place].expected += expectation.at(bars.bounds[i] / 2 + bars.bounds[i + 1] / 2);
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
  const std::optional<Expectation> expectation = ExpectationOf(histogram);
  if (expectation) AddExpected(bars, *expectation, rows);
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
    if (expectation && std::isfinite(row.expected))
      mark = static_cast<std::size_t>(
          std::clamp(std::round(row.expected * unit), 0.0, static_cast<double>(room)));
    const std::string bar = Bar(static_cast<std::size_t>(std::round(row.count * unit * kEighths)), mark);
    text += "  " + Padded(FormatNumber("%.6g", row.from), from) + " to " +
            Padded(FormatNumber("%.6g", row.to), to) + "  " + Padded(FormatNumber("%.6g", row.count), count) +
            (bar.empty() ? "" : "  " + bar) + "\n";
  }
  if (expectation) text += "  " + std::string(kMark) + " " + expectation->name + "\n";
  return text;
}

}  // namespace brenvolt
