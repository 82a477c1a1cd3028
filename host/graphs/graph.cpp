#include "host/graphs/graph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>

#include "host/formula/curve.h"

namespace brenvolt {
namespace {

constexpr std::array<std::string_view, 14> kKindNames{"histogram",
                                                      "cumulative-histogram",
                                                      "pp",
                                                      "qq",
                                                      "empirical-distribution",
                                                      "box-plot",
                                                      "summary",
                                                      "profile",
                                                      "tornado",
                                                      "fit-comparison",
                                                      "scatter-matrix",
                                                      "scatter",
                                                      "heat-map",
                                                      "text"};

// Columns of unequal lengths, made into a sheet once the longest is known.
class Columns {
 public:
  void Add(std::string name, std::vector<double> values) {
    columns_.push_back({std::move(name), std::move(values), {}});
  }
  void AddText(std::string name, std::vector<std::string> texts) {
    columns_.push_back({std::move(name), {}, std::move(texts)});
  }

  std::unique_ptr<Spreadsheet> MakeSheet(const std::string& title) const {
    std::size_t cases = 0;
    for (const Column& column : columns_) {
      cases = std::max({cases, column.values.size(), column.texts.size()});
    }
    auto sheet = std::make_unique<Spreadsheet>(title, cases);
    sheet->SetTitle(title);
    for (const Column& column : columns_) sheet->AddVariable(MakeVariable(column, cases));
    return sheet;
  }

 private:
  struct Column {
    std::string name;
    std::vector<double> values;
    std::vector<std::string> texts;
  };

  static Variable MakeVariable(const Column& column, std::size_t cases) {
    Variable variable(column.name, cases);
    std::vector<double> values = column.values;
    for (std::size_t i = 0; i < column.texts.size(); ++i) {
      variable.SetType(VariableType::kText);
      values.push_back(static_cast<double>(i + 1));
      variable.SetLabel(values.back(), column.texts[i]);
    }
    values.resize(cases, GetDefaultMDValue());
    variable.AssignValues(std::move(values));
    return variable;
  }

  std::vector<Column> columns_;
};

struct BoxColumn {
  const char* name;
  double GraphBox::*member;
};
constexpr BoxColumn kBoxColumns[] = {{" lower whisker", &GraphBox::lowerWhisker},
                                     {" lower quartile", &GraphBox::lowerQuartile},
                                     {" median", &GraphBox::median},
                                     {" upper quartile", &GraphBox::upperQuartile},
                                     {" upper whisker", &GraphBox::upperWhisker},
                                     {" mean", &GraphBox::mean}};

// A spreadsheet holds no infinite numbers.
double FiniteOrMissing(double value) {
  return std::isfinite(value) ? value : GetDefaultMDValue();
}

void AddCells(const GraphCells& cells, const std::string& prefix, Columns& columns) {
  const std::size_t width = cells.columns.size();
  columns.AddText(prefix + cells.name, cells.rows);
  for (std::size_t column = 0; column < width; ++column) {
    std::vector<double> values;
    for (std::size_t row = 0; row < cells.rows.size(); ++row)
      values.push_back(FiniteOrMissing(cells.values[row * width + column]));
    columns.Add(prefix + cells.columns[column], std::move(values));
  }
}

void AddSeries(const GraphSeries& series, const std::string& name, Columns& columns) {
  columns.Add(name + " x", series.x);
  columns.Add(name + " y", series.y);
}

void AddColumns(const Graph& graph, const std::string& prefix, Columns& columns) {
  for (const GraphBars& bars : graph.bars) {
    const std::string name = prefix + bars.name;
    const std::size_t count = bars.heights.size();
    columns.Add(name + " from",
                {bars.bounds.begin(), bars.bounds.begin() + static_cast<std::ptrdiff_t>(count)});
    columns.Add(name + " to", {bars.bounds.end() - static_cast<std::ptrdiff_t>(count), bars.bounds.end()});
    columns.Add(name, bars.heights);
  }
  for (const GraphSeries& series : graph.series) AddSeries(series, prefix + series.name, columns);
  for (const GraphCurve& curve : graph.curves) {
    AddSeries(SampleCurve(curve), prefix + curve.name, columns);
    columns.AddText(prefix + curve.name + " formula", {curve.formula});
  }
  for (const GraphBand& band : graph.bands) {
    columns.Add(prefix + band.name + " x", band.x);
    columns.Add(prefix + band.name + " lower", band.lower);
    columns.Add(prefix + band.name + " upper", band.upper);
  }
  for (const GraphRegion& region : graph.regions) {
    columns.Add(prefix + region.name + " from", {FiniteOrMissing(region.from)});
    columns.Add(prefix + region.name + " to", {FiniteOrMissing(region.to)});
  }
  for (const GraphBox& box : graph.boxes) {
    for (const auto& [name, member] : kBoxColumns) columns.Add(prefix + box.name + name, {box.*member});
    columns.Add(prefix + box.name + " outliers", box.outliers);
  }
  for (const GraphCells& cells : graph.cells) AddCells(cells, prefix, columns);
  for (const Graph& panel : graph.panels) AddColumns(panel, prefix + panel.title + ": ", columns);
}

}  // namespace

std::string_view GraphKindName(GraphKind kind) {
  return kKindNames[static_cast<std::size_t>(kind)];
}

GraphSeries SampleCurve(const GraphCurve& curve, std::size_t points) {
  GraphSeries sampled{curve.name, curve.wholeNumbers ? SeriesStyle::kPoints : SeriesStyle::kLine, {}, {}};
  const double from = curve.wholeNumbers ? std::ceil(curve.from) : curve.from;
  const double to = curve.wholeNumbers ? std::floor(curve.to) : curve.to;
  if (!(from <= to) || points == 0) return sampled;
  if (curve.wholeNumbers && to - from < static_cast<double>(points)) {
    points = static_cast<std::size_t>(to - from) + 1;
  }
  const double last = static_cast<double>(std::max<std::size_t>(points, 2) - 1);
  for (std::size_t i = 0; i < points; ++i) {
    const double x = std::lerp(from, to, static_cast<double>(i) / last);
    sampled.x.push_back(curve.wholeNumbers ? std::round(x) : x);
  }
  sampled.y.resize(sampled.x.size());
  Curve(curve.formula, curve.name).Evaluate(sampled.x, sampled.y);
  return sampled;
}

std::unique_ptr<Spreadsheet> GraphTable(const Graph& graph) {
  Columns columns;
  AddColumns(graph, {}, columns);
  return columns.MakeSheet(graph.title);
}

}  // namespace brenvolt
