#include "host/jobs/measured/censored_plots.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brenvolt {
namespace {

// The distribution function without a distribution, with that of the best fit.
Graph CurveGraph(const CensoredVariable& variable) {
  constexpr std::size_t kPoints = 200;
  Graph graph;
  graph.kind = GraphKind::kEmpiricalDistribution;
  graph.title = "Distribution function of " + variable.name;
  graph.xTitle = variable.name;
  graph.yTitle = "Probability";
  GraphSeries steps{variable.isKaplanMeier ? "Kaplan-Meier" : "Turnbull", SeriesStyle::kSteps, {}, {}};
  for (const SurvivalStep& step : variable.curve) {
    if (std::isinf(step.to)) continue;
    steps.x.push_back(step.to);
    steps.y.push_back(step.after);
  }
  const CensoredFit* best =
      variable.fits.empty() || !variable.fits.front().IsValid() ? nullptr : &variable.fits.front();
  if (best != nullptr && !steps.x.empty()) {
    GraphSeries line{best->name, SeriesStyle::kLine, {}, {}};
    const double from = std::min(steps.x.front(), best->values.Quantile(0.01));
    const double to = steps.x.back();
    for (std::size_t i = 0; i <= kPoints; ++i) {
      const double x = std::lerp(from, to, static_cast<double>(i) / kPoints);
      line.x.push_back(x);
      line.y.push_back(1 - best->values.Exceedance(x));
    }
    graph.series.push_back(std::move(line));
  }
  graph.series.push_back(std::move(steps));
  return graph;
}

// The values at their plotting positions against the quantiles of the best fit.
Graph QuantileGraph(const CensoredVariable& variable) {
  Graph graph;
  graph.kind = GraphKind::kQuantilePlot;
  const CensoredFit& best = variable.fits.front();
  graph.title = "Q-Q plot of " + variable.name;
  graph.xTitle = "Quantile of " + best.name;
  graph.yTitle = variable.name;
  GraphSeries points{"Observed", SeriesStyle::kPoints, {}, {}};
  for (const PlottingPosition& one : PlottingPositions(variable.curve)) {
    points.x.push_back(best.values.Quantile(one.probability));
    points.y.push_back(one.value);
  }
  if (points.x.empty()) return graph;
  const auto [low, high] = std::ranges::minmax(points.x);
  graph.series.push_back(std::move(points));
  graph.series.push_back({"Equal", SeriesStyle::kLine, {low, high}, {low, high}});
  return graph;
}

}  // namespace

std::vector<PlotPage> CensoredPlots(const CensoredFindings& found, std::string_view kind) {
  std::vector<PlotPage> pages;
  for (const CensoredVariable& variable : found.variables) {
    const bool isFitted = !variable.fits.empty() && variable.fits.front().IsValid();
    std::vector<Graph> graphs;
    if (kind != "qq" || !isFitted) graphs.push_back(CurveGraph(variable));
    if (kind != "empirical-distribution" && isFitted) graphs.push_back(QuantileGraph(variable));
    pages.push_back(CompoundPage(variable.name, std::move(graphs)));
  }
  return pages;
}

}  // namespace brenvolt
