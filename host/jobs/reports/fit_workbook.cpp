#include "host/jobs/reports/fit_workbook.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <span>
#include <vector>

#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_results.h"
#include "host/numeric/algebra/correlation.h"
#include "host/tables/formats/workbook_file.h"

namespace brenvolt {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// A sheet that grows by rows of texts and numbers.
class Rows {
 public:
  explicit Rows(std::string name) : sheet_(std::move(name)) {}

  // Texts and numbers stand in the columns of their names, which are made in the order in which they come.
  void Put(std::string_view column, double value) { ColumnOf(column).values.push_back(value); }
  void Put(std::string_view column, const std::string& text) {
    Column& into = ColumnOf(column);
    into.isText = true;
    if (text.empty()) return into.values.push_back(kNone);
    const double next = static_cast<double>(into.codes.size() + 1);
    into.values.push_back(into.codes.try_emplace(text, next).first->second);
  }
  void EndRow() {
    ++rows_;
    for (Column& column : columns_) column.values.resize(rows_, kNone);
  }

  Spreadsheet Made() && {
    for (Column& column : columns_) {
      Variable variable(column.name, 0);
      if (column.isText) variable.SetType(VariableType::kText);
      for (const auto& [text, code] : column.codes) variable.SetLabel(code, text);
      variable.AssignValues(std::move(column.values));
      sheet_.AddVariable(std::move(variable));
    }
    return std::move(sheet_);
  }

 private:
  struct Column {
    std::string name;
    std::vector<double> values = {};
    bool isText = false;
    std::map<std::string, double> codes = {};
  };
  Column& ColumnOf(std::string_view name) {
    const auto found = std::ranges::find(columns_, name, &Column::name);
    Column& column = found != columns_.end() ? *found : columns_.emplace_back(Column{std::string(name)});
    column.values.resize(rows_, kNone);
    return column;
  }

  Spreadsheet sheet_;
  std::size_t rows_ = 0;
  std::vector<Column> columns_;
};

void PutAll(const ResultRow& row, std::span<const ResultColumn> columns, Rows& rows) {
  for (const ResultColumn& column : columns) {
    if (row.Has(column)) rows.Put(column.identifier, row.Number(column));
  }
}

Spreadsheet RankedFits(const std::vector<FittedVariable>& variables) {
  Rows rows("Ranked fits");
  for (const FittedVariable& variable : variables) {
    for (std::size_t rank = 0; rank < variable.fits.size(); ++rank) {
      const FittedDistribution& fit = variable.fits[rank];
      rows.Put("variable", variable.name);
      rows.Put("rank", static_cast<double>(rank + 1));
      rows.Put("distribution", std::string(fit.identifier));
      rows.Put("description", fit.description);
      PutAll(fit.statistics, result_columns::kTests, rows);
      PutAll(fit.statistics, result_columns::kLikelihood, rows);
      PutAll(fit.statistics, result_columns::kBootstrap, rows);
      rows.Put("offset", fit.offset);
      for (std::size_t i = 0; i < fit.parameters.size(); ++i)
        rows.Put("parameter " + std::to_string(i + 1), fit.parameters[i]);
      for (std::size_t i = 0; i < fit.standardErrors.size(); ++i)
        rows.Put("standard error " + std::to_string(i + 1), fit.standardErrors[i]);
      rows.Put("note", fit.reason.empty() ? fit.note : fit.reason);
      rows.EndRow();
    }
  }
  return std::move(rows).Made();
}

Spreadsheet Summaries(const std::vector<FittedVariable>& variables) {
  Rows rows("Summaries");
  for (const FittedVariable& variable : variables) {
    rows.Put("variable", variable.name);
    rows.Put("type", std::string(variable.isContinuous ? "continuous" : "discrete"));
    PutAll(variable.moments, result_columns::kMoments, rows);
    const FittedDistribution* best = variable.Best();
    rows.Put("best_fit", best != nullptr ? std::string(best->identifier) : std::string());
    rows.EndRow();
  }
  return std::move(rows).Made();
}

// Pearson's coefficients of the continuous variables, over the cases that count.
Spreadsheet Correlations(const std::vector<FittedVariable>& variables, const Spreadsheet& sheet) {
  Rows rows("Correlations");
  std::vector<const Variable*> columns;
  for (const FittedVariable& variable : variables) {
    const auto place = sheet.FindVariable(variable.name);
    if (variable.isContinuous && place) columns.push_back(&sheet.VariableAt(*place));
  }
  const std::size_t width = columns.size();
  const std::vector<std::uint8_t>& accepted = sheet.Selection().accepted;
  std::vector<double> data;
  for (std::size_t row = 0; row < sheet.CaseCount(); ++row) {
    if (!accepted.empty() && accepted[row] == 0) continue;
    for (const Variable* column : columns)
      data.push_back(column->IsMissing(row) ? kNone : column->Values()[row]);
  }
  std::vector<double> correlation(width * width);
  if (width > 0) PearsonCorrelation(data, data.size() / width, width, correlation);
  for (std::size_t i = 0; i < width; ++i) {
    rows.Put("variable", columns[i]->Name());
    for (std::size_t j = 0; j < width; ++j)
      rows.Put("with " + columns[j]->Name(), correlation[i * width + j]);
    rows.EndRow();
  }
  return std::move(rows).Made();
}

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

// Gathers graphs as columns and as charts over them.
class Charts {
 public:
  void Add(const std::string& variable, const Graph& graph) {
    WorkbookChart chart{variable, graph.xTitle, graph.yTitle, {}};
    for (const GraphBars& bars : graph.bars) AddSeries(variable, OutlineOf(bars), chart);
    for (const GraphCurve& curve : graph.curves) AddSeries(variable, SampleCurve(curve), chart);
    if (!chart.series.empty()) charts_.push_back(std::move(chart));
  }
  bool IsEmpty() const { return charts_.empty(); }

  ChartSheet Made() && {
    ChartSheet made{"Charts", Spreadsheet("Chart data"), std::move(charts_)};
    std::size_t rows = 0;
    for (const auto& [name, values] : columns_) rows = std::max(rows, values.size());
    for (auto& [name, values] : columns_) {
      values.resize(rows, kNone);
      Variable variable(name, 0);
      variable.AssignValues(std::move(values));
      made.data.AddVariable(std::move(variable));
    }
    return made;
  }

 private:
  void AddSeries(const std::string& variable, GraphSeries series, WorkbookChart& chart) {
    if (series.x.empty()) return;
    const std::size_t place = columns_.size();
    chart.series.push_back(
        {series.name, place, place + 1, series.x.size(), series.style != SeriesStyle::kPoints});
    columns_.emplace_back(variable + ": " + series.name + " x", std::move(series.x));
    columns_.emplace_back(variable + ": " + series.name + " y", std::move(series.y));
  }

  std::vector<WorkbookChart> charts_;
  std::vector<std::pair<std::string, std::vector<double>>> columns_;
};

Charts ChartsOf(AutomationObject& dialog, const Spreadsheet& sheet) {
  Plot comparison;
  comparison.kind = std::string(kFitComparison);
  const ResultTable summary = ReadResultTable(dialog.Get("SummaryStats"));
  Charts charts;
  for (std::size_t i = 0; i < std::min(kMostShown, summary.rows.size()); ++i)
    charts.Add(summary.rows[i].name, FitPlotOf(dialog, summary, i, sheet, comparison).page);
  return charts;
}

}  // namespace

void WriteFitWorkbook(AnalysisSession& session, const ReportContext& context,
                      const std::filesystem::path& path) {
  AutomationObject& dialog = *session.Dialog();
  const std::vector<FittedVariable> variables = ReadFitResults(dialog, Covariances::kLeftOut);
  const Spreadsheet fits = RankedFits(variables);
  const Spreadsheet correlations = Correlations(variables, context.sheet);
  const Spreadsheet summaries = Summaries(variables);
  std::vector<const Spreadsheet*> sheets{&context.sheet};
  for (const Spreadsheet* sheet : {&fits, &correlations, &summaries}) {
    if (sheet->VariableCount() > 0) sheets.push_back(sheet);
  }
  Charts charts = ChartsOf(dialog, context.sheet);
  if (charts.IsEmpty()) return WriteWorkbookFile(sheets, path);
  const ChartSheet page = std::move(charts).Made();
  WriteWorkbookFile(sheets, path, &page);
}

}  // namespace brenvolt
