#include "host/jobs/data_plots.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "host/base/number_text.h"
#include "host/graphs/box_plot.h"
#include "host/graphs/correlation_map.h"
#include "host/graphs/histogram_graph.h"
#include "host/graphs/scatter_matrix.h"
#include "host/jobs/expected_counts.h"
#include "host/statistics/correlation_tests.h"
#include "host/statistics/histogram_classes.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
// Whole numbers over a range no longer than this are shown one by one.
constexpr double kMostWhole = 50;

// The values of the selected cases, NaN where one is missing.
std::vector<double> SelectedValues(const Spreadsheet& sheet, const Variable& variable) {
  std::vector<double> values;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (sheet.IsCaseSelected(i)) values.push_back(variable.IsMissing(i) ? kNone : variable.Values()[i]);
  }
  return values;
}

Graph Histogram(const std::string& name, const std::vector<double>& sorted, const DataOrigin& origin) {
  const bool isDiscrete = AreWhole(sorted) && sorted.back() - sorted.front() <= kMostWhole;
  Graph graph = HistogramGraph(sorted, ClassesOf(sorted, !isDiscrete).bounds, HistogramKind::kPlain, {},
                               {"Histogram of " + name, name, "Number of observations", "Observed", ""});
  const auto drawn = std::ranges::find(origin.distributions, name, &NotedVariable::name);
  if (drawn == origin.distributions.end()) return graph;
  GraphSeries expected = ExpectedCounts(drawn->distribution, origin.isTruncated, graph.bars.front().bounds,
                                        static_cast<double>(sorted.size()));
  if (!expected.x.empty()) graph.series.push_back(std::move(expected));
  return graph;
}

PlotPage PageOf(const Spreadsheet& sheet, const Variable& variable, std::string_view kind,
                const DataOrigin& origin) {
  const std::string& name = variable.Name();
  const std::vector<double> sorted = SortedValues(sheet, variable);
  if (sorted.empty()) {
    Graph nothing;
    nothing.kind = GraphKind::kText;
    nothing.notes = {name, "no values"};
    return SinglePage(name, std::move(nothing));
  }
  std::vector<Graph> graphs;
  if (kind != "box-plot") graphs.push_back(Histogram(name, sorted, origin));
  if (kind != "histogram") graphs.push_back(BoxPlot(sorted, {"Box Plot of " + name, "", name, name, ""}));
  return CompoundPage(name, std::move(graphs));
}

// The first numeric variables of a sheet.
struct NumericColumns {
  std::vector<std::string> names;  // of all
  std::vector<std::vector<double>> values;

  NumericColumns(const Spreadsheet& sheet, std::size_t most) {
    for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
      const Variable& variable = sheet.VariableAt(i);
      if (variable.Type() != VariableType::kNumeric) continue;
      names.push_back(variable.Name());
      if (values.size() < most) values.push_back(SelectedValues(sheet, variable));
    }
  }

  // Row by row.
  std::vector<double> RankCorrelations() const {
    return SpearmanMatrix(std::vector<std::span<const double>>(values.begin(), values.end()));
  }
};

void RequirePair(const NumericColumns& columns) {
  if (columns.names.size() < 2)
    throw WrongJob("plotKind", "there is only one variable, so there are no correlations to show");
}

PlotPage WholePage(Graph graph) {
  PlotPage page = SinglePage("Correlations", std::move(graph));
  page.showsAll = true;
  return page;
}

std::string CorrelationText(const char* what, double value) {
  return std::string(what) + " " + (std::isnan(value) ? "none" : FormatNumber("%.3f", value));
}

PlotPage PairsPage(const Spreadsheet& sheet, const DataOrigin& origin) {
  const NumericColumns columns(sheet, kMostScattered);
  RequirePair(columns);
  const std::vector<double> reached = columns.RankCorrelations();
  const std::size_t shown = columns.values.size();
  std::vector<ScatterVariable> variables;
  for (std::size_t i = 0; i < columns.names.size(); ++i) {
    const bool isShown = i < shown;
    variables.push_back(
        {columns.names[i], isShown ? std::span<const double>(columns.values[i]) : std::span<const double>()});
  }
  const auto text = [&](std::size_t first, std::size_t second) -> std::vector<std::string> {
    const double coefficient = reached[first * shown + second];
    if (origin.asked.empty()) return {CorrelationText("", coefficient).substr(1), "rank correlation"};
    return {CorrelationText("reached", coefficient),
            CorrelationText("asked", origin.Asked(columns.names[first], columns.names[second]))};
  };
  return WholePage(
      ScatterMatrix(variables, text,
                    origin.asked.empty() ? "Rank correlations" : "Rank correlations of simulated variables"));
}

// What was reached stands below the diagonal, what was asked for above.
PlotPage MapPage(const Spreadsheet& sheet, const DataOrigin& origin) {
  const NumericColumns columns(sheet, kMostMapped);
  RequirePair(columns);
  const std::vector<double> reached = columns.RankCorrelations();
  const auto correlation = [&](std::size_t row, std::size_t column) {
    return row > column || origin.asked.empty() ? reached[row * columns.values.size() + column]
                                                : origin.Asked(columns.names[row], columns.names[column]);
  };
  return WholePage(CorrelationMap(columns.names, correlation,
                                  origin.asked.empty()
                                      ? "Rank correlations"
                                      : "Rank correlations: reached below the diagonal, asked for above it"));
}

PlotPage MatrixPage(const Spreadsheet& matrix, std::string_view kind) {
  if (kind != kOverview && kind != kHeatMapKind)
    throw WrongJob("plotKind", "sheet " + matrix.Name() + " is a matrix, which only a heat-map shows");
  std::vector<std::string> names;
  for (std::size_t i = 0; i < matrix.VariableCount(); ++i) names.push_back(matrix.VariableAt(i).Name());
  const auto correlation = [&matrix](std::size_t row, std::size_t column) {
    const Variable& variable = matrix.VariableAt(column);
    return variable.IsMissing(row) ? kNone : variable.Values()[row];
  };
  return SinglePage(matrix.Name(), CorrelationMap(std::move(names), correlation, matrix.Name()));
}

}  // namespace

std::vector<double> SortedValues(const Spreadsheet& sheet, const Variable& variable) {
  std::vector<double> values = SelectedValues(sheet, variable);
  std::erase_if(values, [](double x) { return !std::isfinite(x); });
  std::ranges::sort(values);
  return values;
}

void DataOrigin::Ask(const std::string& first, const std::string& second, double correlation) {
  asked[{first, second}] = asked[{second, first}] = correlation;
}

double DataOrigin::Asked(const std::string& first, const std::string& second) const {
  const auto found = asked.find({first, second});
  return found == asked.end() ? kNone : found->second;
}

void TakeAsked(const Spreadsheet& matrix, DataOrigin& origin) {
  for (std::size_t i = 0; i < matrix.VariableCount(); ++i) {
    for (std::size_t j = 0; j < i; ++j)
      origin.Ask(matrix.VariableAt(i).Name(), matrix.VariableAt(j).Name(), matrix.VariableAt(j).Values()[i]);
  }
}

std::vector<PlotPage> DataPlots(const Spreadsheet& sheet, std::string_view kind, const DataOrigin& origin) {
  if (HasMatrixRows(sheet)) return {MatrixPage(sheet, kind)};
  if (kind == kScatterKind) return {PairsPage(sheet, origin)};
  if (kind == kHeatMapKind) return {MapPage(sheet, origin)};
  std::vector<PlotPage> pages;
  if (kind == kOverview && !origin.asked.empty()) pages.push_back(PairsPage(sheet, origin));
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() != VariableType::kNumeric) continue;
    pages.push_back(PageOf(sheet, variable, kind, origin));
  }
  return pages;
}

PlotPage DataPage(const Spreadsheet& sheet, const Variable& variable, std::string_view kind) {
  return PageOf(sheet, variable, kind, {});
}

DataOrigin OriginOf(const DesignText& design, bool isTruncated, const SimulationResults& results) {
  DataOrigin origin;
  origin.distributions = design.variables;
  origin.isTruncated = isTruncated;
  for (const SimulatedPair& pair : results.pairs)
    origin.Ask(pair.first, pair.second, pair.correlations.Number("asked"_column));
  return origin;
}

}  // namespace brenvolt
