#include "host/jobs/data_plots.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "host/base/number_text.h"
#include "host/graphs/box_plot.h"
#include "host/graphs/histogram_graph.h"
#include "host/graphs/scatter_matrix.h"
#include "host/statistics/histogram_classes.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

// Whole numbers over a range no longer than this are shown one by one.
constexpr double kMostWhole = 50;

std::vector<double> SortedValues(const Spreadsheet& sheet, const Variable& variable) {
  const auto& accepted = sheet.Selection().accepted;
  std::vector<double> values;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    const bool isTaken = !sheet.Selection().enabled || accepted.empty() || accepted[i] != 0;
    if (isTaken && !variable.IsMissing(i) && std::isfinite(variable.Values()[i]))
      values.push_back(variable.Values()[i]);
  }
  std::ranges::sort(values);
  return values;
}

Graph Histogram(const std::string& name, const std::vector<double>& sorted) {
  const bool isDiscrete = AreWhole(sorted) && sorted.back() - sorted.front() <= kMostWhole;
  return HistogramGraph(sorted, ClassesOf(sorted, !isDiscrete).bounds, HistogramKind::kPlain, {},
                        {"Histogram of " + name, name, "Count", "Observed", ""});
}

PlotPage PageOf(const std::string& name, const std::vector<double>& sorted, std::string_view kind) {
  if (sorted.empty()) {
    Graph nothing;
    nothing.kind = GraphKind::kText;
    nothing.notes = {name, "no values"};
    return SinglePage(name, std::move(nothing));
  }
  std::vector<Graph> graphs;
  if (kind != "box-plot") graphs.push_back(Histogram(name, sorted));
  if (kind != "histogram") graphs.push_back(BoxPlot(sorted, {"Box plot of " + name, "", name, name, ""}));
  return CompoundPage(name, std::move(graphs));
}

std::string CorrelationText(const char* what, double value) {
  return std::string(what) + " " + (std::isnan(value) ? "none" : FormatNumber("%.3f", value));
}

// The pairs come in the order (1, 2), (1, 3), …, (2, 3), …
PlotPage PairsPage(const Spreadsheet& samples, const SimulationResults& results) {
  std::vector<ScatterVariable> variables;
  for (std::size_t i = 0; i < samples.VariableCount(); ++i)
    variables.push_back({samples.VariableAt(i).Name(), samples.VariableAt(i).Values()});
  const auto text = [&](std::size_t first, std::size_t second) -> std::vector<std::string> {
    const std::size_t before = first * (2 * variables.size() - first - 1) / 2;
    const ResultRow& row = results.pairs.at(before + second - first - 1).correlations;
    return {CorrelationText("reached", row.Number("spearman"_column)),
            CorrelationText("asked", row.Number("asked"_column))};
  };
  PlotPage page =
      SinglePage("Correlations", ScatterMatrix(variables, text, "Rank correlations of simulated variables"));
  page.showsAll = true;
  return page;
}

}  // namespace

std::vector<PlotPage> DataPlots(const Spreadsheet& sheet, std::string_view kind) {
  if (HasMatrixRows(sheet))
    throw WrongJob("plot", "sheet " + sheet.Name() + " is a matrix, which has no picture");
  std::vector<PlotPage> pages;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() != VariableType::kNumeric) continue;
    pages.push_back(PageOf(variable.Name(), SortedValues(sheet, variable), kind));
  }
  return pages;
}

std::vector<PlotPage> SimulationPlots(const Spreadsheet& samples, const SimulationResults& results,
                                      std::string_view kind) {
  const bool hasPairs = !results.pairs.empty();
  if (kind == kScatterKind && !hasPairs)
    throw WrongJob("plotKind", "a single variable has nothing to be correlated with");
  std::vector<PlotPage> pages;
  if (hasPairs && (kind == kScatterKind || kind == kOverview)) pages.push_back(PairsPage(samples, results));
  if (kind == kScatterKind) return pages;
  for (PlotPage& page : DataPlots(samples, kind)) pages.push_back(std::move(page));
  return pages;
}

}  // namespace brenvolt
