#include "host/jobs/base/result_workbook.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

#include "host/jobs/base/row_sheet.h"
#include "host/numeric/algebra/correlation.h"

namespace brenvolt {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// The outline of bars, which a chart over numbers draws as a line.
GraphSeries OutlineOf(const GraphBars& bars) {
  GraphSeries outline{bars.name, SeriesStyle::kLine, {}, {}};
  for (std::size_t i = 0; i < bars.heights.size(); ++i) {
    for (const auto& [x, y] :
         {std::pair(bars.bounds[i], 0.0), std::pair(bars.bounds[i], bars.heights[i]),
          std::pair(bars.bounds[i + 1], bars.heights[i]), std::pair(bars.bounds[i + 1], 0.0)}) {
      outline.x.push_back(x);
      outline.y.push_back(y);
    }
  }
  return outline;
}

}  // namespace

void ResultWorkbook::Add(Spreadsheet results) {
  if (results.VariableCount() > 0) results_.push_back(std::move(results));
}

void ResultWorkbook::AddChart(const std::string& title, const Graph& graph) {
  WorkbookChart chart{title, graph.xTitle, graph.yTitle, {}};
  for (const GraphBars& bars : graph.bars) AddSeries(title, OutlineOf(bars), chart);
  for (const GraphSeries& series : graph.series) AddSeries(title, series, chart);
  for (const GraphCurve& curve : graph.curves) AddSeries(title, SampleCurve(curve), chart);
  if (!chart.series.empty()) charts_.push_back(std::move(chart));
}

void ResultWorkbook::AddSeries(const std::string& title, GraphSeries series, WorkbookChart& chart) {
  if (series.x.empty()) return;
  const std::size_t place = columns_.size();
  chart.series.push_back(
      {series.name, place, place + 1, series.x.size(), series.style != SeriesStyle::kPoints});
  columns_.emplace_back(title + ": " + series.name + " x", std::move(series.x));
  columns_.emplace_back(title + ": " + series.name + " y", std::move(series.y));
}

void ResultWorkbook::Write(const std::filesystem::path& path) && {
  std::vector<const Spreadsheet*> sheets{&data_};
  for (const Spreadsheet& sheet : results_) sheets.push_back(&sheet);
  if (charts_.empty()) return WriteWorkbookFile(sheets, path);
  ChartSheet page{"Charts", Spreadsheet("Chart data"), std::move(charts_)};
  std::size_t rows = 0;
  for (const auto& [name, values] : columns_) rows = std::max(rows, values.size());
  for (auto& [name, values] : columns_) {
    values.resize(rows, kNone);
    Variable variable(name, 0);
    variable.AssignValues(std::move(values));
    page.data.AddVariable(std::move(variable));
  }
  WriteWorkbookFile(sheets, path, &page);
}

Spreadsheet PearsonSheet(const Spreadsheet& data, const std::vector<std::string>& variables) {
  std::vector<const Variable*> columns;
  for (const std::string& name : variables) {
    if (const auto place = data.FindVariable(name)) columns.push_back(&data.VariableAt(*place));
  }
  const std::size_t width = columns.size();
  const std::vector<std::uint8_t>& accepted = data.Selection().accepted;
  std::vector<double> values;
  for (std::size_t row = 0; row < data.CaseCount(); ++row) {
    if (!accepted.empty() && accepted[row] == 0) continue;
    for (const Variable* column : columns)
      values.push_back(column->IsMissing(row) ? kNone : column->Values()[row]);
  }
  std::vector<double> correlation(width * width);
  if (width > 0) PearsonCorrelation(values, values.size() / width, width, correlation);
  RowSheet sheet;
  for (std::size_t i = 0; i < width; ++i) {
    sheet.BeginRow();
    sheet.Put("variable", columns[i]->Name());
    for (std::size_t j = 0; j < width; ++j)
      sheet.Put("with " + columns[j]->Name(), correlation[i * width + j]);
  }
  return std::move(sheet).Made("Correlations");
}

}  // namespace brenvolt
