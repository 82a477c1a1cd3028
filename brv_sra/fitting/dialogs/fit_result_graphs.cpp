#include "brv_sra/fitting/dialogs/fit_result_graphs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/curve_formulas.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/dialogs/fit_documents.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/graphs/box_plot.h"
#include "host/graphs/histogram_graph.h"
#include "host/graphs/probability_plots.h"

namespace brenvolt::sra {
namespace {

std::string CurveName(const DistributionFit& fit) {
  return Description(fit.specification.code, fit.specification.values);
}

// The fitted curve, if there is a valid fit; without a range, it spans what is drawn.
std::vector<GraphCurve> CurveOf(const DistributionFit& fit, CurveKind kind, CurveFactor factor,
                                bool wholeNumbers) {
  if (!fit.IsValid()) return {};
  GraphCurve curve;
  curve.name = CurveName(fit);
  const bool continuous = IsContinuous(fit.specification.code);
  curve.formula = continuous ? ContinuousCurveFormula(fit.specification, kind, factor)
                             : DiscreteCurveFormula(fit.specification, kind, factor, DensityUnit::kCounts);
  curve.wholeNumbers = !continuous && wholeNumbers;
  return {curve};
}

Graph MakeHistogram(HistogramKind kind, const VariableFit& variable, const DistributionFit& fit,
                    std::span<const double> sorted) {
  const bool plain = kind == HistogramKind::kPlain;
  const HistogramClasses classes = ClassesOf(sorted, variable.continuous);
  GraphTexts texts;
  texts.title = FormatResource(plain ? kTitleHistogramOf : kTitleCumulativeHistogramOf, variable.name);
  texts.xTitle = variable.name;
  texts.yTitle = ResourceString(plain ? kAxisCount : kAxisCumulativeCount);
  texts.dataName = ResourceString(kNameObserved);
  const CurveFactor factor{static_cast<double>(sorted.size()), plain ? classes.width : 1.0};
  const auto curves =
      CurveOf(fit, plain ? CurveKind::kDensity : CurveKind::kCumulative, factor, AreWhole(sorted));
  return HistogramGraph(sorted, classes.bounds, kind, curves, texts);
}

Graph MakeHistogramPlot(const VariableFit& variable, const DistributionFit& fit,
                        std::span<const double> sorted) {
  return MakeHistogram(HistogramKind::kPlain, variable, fit, sorted);
}

Graph MakeCumulativeHistogram(const VariableFit& variable, const DistributionFit& fit,
                              std::span<const double> sorted) {
  return MakeHistogram(HistogramKind::kCumulative, variable, fit, sorted);
}

Graph MakeEmpiricalPlot(const VariableFit& variable, const DistributionFit& fit,
                        std::span<const double> sorted) {
  GraphTexts texts;
  texts.title = FormatResource(kTitleEmpiricalOf, variable.name);
  texts.xTitle = variable.name;
  texts.yTitle = ResourceString(kAxisObservedProbability);
  texts.dataName = ResourceString(kNameObserved);
  const auto curves = CurveOf(fit, CurveKind::kCumulative, {1, 1}, AreWhole(sorted));
  return EmpiricalDistributionPlot(sorted, curves, texts);
}

void RequireValid(const VariableFit& variable, const DistributionFit& fit) {
  if (fit.IsValid()) return;
  throw CDispatchException(
      FormatResource(kMsgNotFittedHere, DisplayName(fit.specification.code), variable.name));
}

// The points of a probability or quantile plot are named after the fit.
GraphTexts PointTexts(const VariableFit& variable, const DistributionFit& fit, std::int32_t title,
                      std::int32_t xTitle, std::int32_t yTitle) {
  GraphTexts texts;
  texts.title = FormatResource(title, variable.name);
  texts.xTitle = ResourceString(xTitle);
  texts.yTitle = ResourceString(yTitle);
  texts.dataName = CurveName(fit);
  texts.referenceName = ResourceString(kNameReference);
  return texts;
}

Graph MakeProbabilityPlot(const VariableFit& variable, const DistributionFit& fit,
                          std::span<const double> sorted) {
  RequireValid(variable, fit);
  const SpecifiedDistribution distribution(fit.specification);
  return ProbabilityPlot(
      sorted, [&distribution](std::span<const double> x, std::span<double> p) { distribution.Cdf(x, p); },
      PointTexts(variable, fit, kTitleProbabilityPlotOf, kAxisTheoreticalProbability,
                 kAxisObservedProbability));
}

Graph MakeQuantilePlot(const VariableFit& variable, const DistributionFit& fit,
                       std::span<const double> sorted) {
  RequireValid(variable, fit);
  const SpecifiedDistribution distribution(fit.specification);
  return QuantilePlot(
      sorted,
      [&distribution](std::span<const double> p, std::span<double> x) { distribution.Quantile(p, x); },
      PointTexts(variable, fit, kTitleQuantilePlotOf, kAxisTheoreticalQuantile, kAxisObservedQuantile));
}

Graph MakeBoxPlot(const VariableFit& variable, const DistributionFit& /*fit*/,
                  std::span<const double> sorted) {
  GraphTexts texts;
  texts.title = FormatResource(kTitleBoxPlotOf, variable.name);
  texts.yTitle = variable.name;
  texts.dataName = variable.name;
  return BoxPlot(sorted, texts);
}

Graph MakeSummary(const VariableFit& variable, const DistributionFit& fit, std::span<const double> sorted) {
  std::vector<Graph> panels{MakeHistogramPlot(variable, fit, sorted), MakeBoxPlot(variable, fit, sorted)};
  if (fit.IsValid()) {
    panels.push_back(MakeProbabilityPlot(variable, fit, sorted));
    panels.push_back(MakeQuantilePlot(variable, fit, sorted));
  }
  std::vector<std::string> lines{std::string(ResourceString("n"_column.heading)) + " " +
                                 std::to_string(variable.moments.count)};
  for (const MomentColumn& moment : MomentColumns()) {
    const double value = variable.moments.*moment.member;
    if (IsNotSet(value)) continue;
    lines.push_back(std::string(ResourceString(moment.column.heading)) + " " + FormatNumber("%.6g", value));
  }
  return SummaryGraph(std::move(panels), std::move(lines), FormatResource(kTitleSummaryOf, variable.name));
}

// In the order of FitPlot.
using Maker = Graph (*)(const VariableFit&, const DistributionFit&, std::span<const double>);
constexpr std::array<Maker, 7> kMakers{MakeHistogramPlot,   MakeCumulativeHistogram, MakeEmpiricalPlot,
                                       MakeProbabilityPlot, MakeQuantilePlot,        MakeBoxPlot,
                                       MakeSummary};

}  // namespace

Graph MakeFitPlot(FitPlot plot, const VariableFit& variable, const DistributionFit& fit,
                  std::span<const double> sorted) {
  return kMakers[static_cast<std::size_t>(plot)](variable, fit, sorted);
}

}  // namespace brenvolt::sra
