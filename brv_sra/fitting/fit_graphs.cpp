#include "brv_sra/fitting/fit_graphs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <iterator>
#include <numeric>
#include <string>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/curve_formulas.h"
#include "brv_sra/distributions/law.h"
#include "brv_sra/fitting/fit_documents.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/axis_scaling.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/graphs/box_plot.h"
#include "host/graphs/histogram.h"
#include "host/graphs/probability_plots.h"

namespace brenvolt::sra {
namespace {

constexpr int kMostClasses = 50;
constexpr double kMostPerFewest = 2.5;

// Rounded to what a person would write, so that a value typed as a bound lies on it: 12 * 0.2 is 2.4.
double AsWritten(double x) {
  return ParseNumber(FormatNumber("%.15g", x)).value_or(x);
}

std::vector<double> EvenBounds(double from, double to, std::size_t count) {
  std::vector<double> exact;
  std::vector<double> written;
  for (std::size_t i = 0; i <= count; ++i) {
    exact.push_back(std::lerp(from, to, static_cast<double>(i) / static_cast<double>(count)));
    written.push_back(AsWritten(exact.back()));
  }
  // Steps close to the spacing of doubles leave no room for rounding.
  const bool ascend = std::ranges::adjacent_find(written, std::greater_equal()) == written.end();
  return ascend ? written : exact;
}

HistogramClasses ContinuousClasses(std::span<const double> sorted) {
  const double sturges = 1 + std::ceil(std::log2(static_cast<double>(sorted.size())));
  const int fewest = std::min(static_cast<int>(sturges), static_cast<int>(kMostClasses / kMostPerFewest));
  double from = sorted.front();
  double to = sorted.back();
  const double step = scling_double_QUA(from, to, static_cast<int>(kMostPerFewest * fewest), fewest);
  // The difference of the limits may be beyond the largest double.
  const auto count = static_cast<std::size_t>(std::round(to / step - from / step));
  return {EvenBounds(from, to, count), step};
}

// Classes of `step` whole numbers each, the first of which begins with a multiple of the step.
HistogramClasses WholeNumberClasses(double least, double most) {
  double step = 1;
  if (most - least >= kMostClasses) {
    double from = least;
    double to = most;
    step = std::max(1.0, scling_double_QUA(from, to, kMostClasses - 1, kMostClasses / 3));
  }
  const double from = std::floor(least / step) * step;
  const auto count = static_cast<std::size_t>(std::floor((most - from) / step)) + 1;
  const double to = from + static_cast<double>(count) * step;
  return {EvenBounds(from - 0.5, to - 0.5, count), step};
}

HistogramClasses DistinctValueClasses(const std::vector<double>& distinct) {
  HistogramClasses classes;
  const double reach = distinct.size() > 1 ? (distinct[1] - distinct[0]) / 2 : 0.5;
  classes.bounds.push_back(distinct.front() - reach);
  for (std::size_t i = 1; i < distinct.size(); ++i) {
    classes.bounds.push_back(std::midpoint(distinct[i - 1], distinct[i]));
  }
  classes.bounds.push_back(distinct.back() + (distinct.back() - classes.bounds.back()));
  if (distinct.size() == 1) classes.bounds.back() = distinct.front() + reach;
  return classes;
}

// Beyond this, a half to either side is no longer exact.
constexpr double kLargestWholeNumber = 1e15;

bool AreWhole(std::span<const double> sorted) {
  return std::ranges::all_of(sorted, [](double x) { return x == std::floor(x); }) &&
         std::abs(sorted.front()) < kLargestWholeNumber && std::abs(sorted.back()) < kLargestWholeNumber;
}

std::string CurveName(const DistributionFit& fit) {
  return Description(fit.specification.code, fit.specification.values);
}

// The fitted curve, where there is a valid fit; without a range, it spans what is drawn.
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
  const Law law(fit.specification);
  return ProbabilityPlot(
      sorted, [&law](std::span<const double> x, std::span<double> p) { law.Cdf(x, p); },
      PointTexts(variable, fit, kTitleProbabilityPlotOf, kAxisTheoreticalProbability,
                 kAxisObservedProbability));
}

Graph MakeQuantilePlot(const VariableFit& variable, const DistributionFit& fit,
                       std::span<const double> sorted) {
  RequireValid(variable, fit);
  const Law law(fit.specification);
  return QuantilePlot(
      sorted, [&law](std::span<const double> p, std::span<double> x) { law.Quantile(p, x); },
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
  std::vector<std::string> lines{std::string(ResourceString(kColumnCount)) + " " +
                                 std::to_string(variable.moments.count)};
  for (const MomentColumn& moment : MomentColumns()) {
    const double value = variable.moments.*moment.member;
    if (IsNotSet(value)) continue;
    lines.push_back(std::string(ResourceString(moment.name)) + " " + FormatNumber("%.6g", value));
  }
  return SummaryGraph(std::move(panels), std::move(lines), FormatResource(kTitleSummaryOf, variable.name));
}

// In the order of FitPlot.
using Maker = Graph (*)(const VariableFit&, const DistributionFit&, std::span<const double>);
constexpr std::array<Maker, 7> kMakers{MakeHistogramPlot,   MakeCumulativeHistogram, MakeEmpiricalPlot,
                                       MakeProbabilityPlot, MakeQuantilePlot,        MakeBoxPlot,
                                       MakeSummary};

}  // namespace

HistogramClasses ClassesOf(std::span<const double> sorted, bool continuous) {
  if (continuous) return ContinuousClasses(sorted);
  if (AreWhole(sorted)) return WholeNumberClasses(sorted.front(), sorted.back());
  std::vector<double> distinct;
  std::ranges::unique_copy(sorted, std::back_inserter(distinct));
  if (distinct.size() <= kMostClasses) return DistinctValueClasses(distinct);
  return {ContinuousClasses(sorted).bounds, 1};
}

Graph MakeFitPlot(FitPlot plot, const VariableFit& variable, const DistributionFit& fit,
                  std::span<const double> sorted) {
  return kMakers[static_cast<std::size_t>(plot)](variable, fit, sorted);
}

}  // namespace brenvolt::sra
