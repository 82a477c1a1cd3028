// The graphs of result_documents.h.
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "brv_sra/fitting/dialogs/fit_result_graphs.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/profiler/dialogs/response_values.h"
#include "brv_sra/profiler/dialogs/result_documents.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/analysis/result_columns.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

// A vertical line over the height of the bars.
void AddLimit(std::int32_t name, double x, Graph& histogram) {
  if (std::isnan(x)) return;
  double height = 0;
  for (const double bar : histogram.bars.front().heights) height = std::max(height, bar);
  GraphSeries line;
  line.name = ResourceString(name);
  line.style = SeriesStyle::kLine;
  line.x = {x, x};
  line.y = {0, height};
  histogram.series.push_back(std::move(line));
}

// What the specification excludes.
void AddExcluded(const SpecificationLimits& limits, Graph& histogram) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::string name(ResourceString(kResponseOutOfSpecification));
  if (limits.HasLower()) histogram.regions.push_back({name, -kInfinity, limits.lower});
  if (limits.HasUpper()) histogram.regions.push_back({name, limits.upper, kInfinity});
}

Graph LimitedHistogram(const SimulatedResponse& response, const VariableFit& fit,
                       std::span<const double> sorted) {
  VariableFit drawn;
  drawn.name = response.Column().Name();
  drawn.continuous = !HasFewValues(sorted);
  const auto best = DefaultFit(fit.fits, fit.ranked);
  Graph histogram =
      MakeFitPlot(FitPlot::kHistogram, drawn, best ? fit.fits[*best] : DistributionFit(), sorted);
  AddLimit("lsl"_column.heading, response.limits.lower, histogram);
  AddLimit("target"_column.heading, response.limits.target, histogram);
  AddLimit("usl"_column.heading, response.limits.upper, histogram);
  AddExcluded(response.limits, histogram);
  return histogram;
}

// Bar i, which reaches from i to i + 1 along the axis of the predictors, is that of the i-th predictor.
Graph TornadoGraph(const SimulatedResponse& response) {
  Graph graph;
  graph.kind = GraphKind::kTornado;
  graph.title = FormatResource(kResponseTitleTornado, response.Column().Name());
  graph.xTitle = ResourceString(kResponseAxisPredictors);
  graph.yTitle = ResourceString(kResponseAxisRankCorrelation);
  for (const SensitivityRow& row : ResponseSensitivity(response).rows) {
    if (IsNotSet(row.rank.coefficient)) continue;
    const auto place = static_cast<double>(graph.bars.size());
    graph.bars.push_back(
        {response.sheet.VariableAt(row.predictor).Name(), {place, place + 1}, {row.rank.coefficient}});
  }
  return graph;
}

}  // namespace

Graph SummaryGraphs(const SimulatedResponse& response, const VariableFit& fit) {
  const std::vector<double> sorted = SortedValues(ResponseValues(response));
  if (sorted.empty()) throw Error("no run has a prediction", response.Column().Name());
  Graph graph;
  graph.kind = GraphKind::kSummary;
  graph.title = FormatResource(kResponseTitleGraphs, response.Column().Name());
  graph.panels.push_back(LimitedHistogram(response, fit, sorted));
  graph.panels.push_back(TornadoGraph(response));
  return graph;
}

}  // namespace brenvolt::sra
