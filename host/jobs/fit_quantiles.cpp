#include "host/jobs/fit_quantiles.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/base/error.h"
#include "host/base/process/interruption.h"
#include "host/base/quoted.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/statistics/fit_intervals.h"

namespace brenvolt {
namespace {

// The valid values, ascending.
std::vector<double> SortedValues(const Spreadsheet& sheet, const std::string& name) {
  const auto index = sheet.FindVariable(name);
  if (!index) return {};
  const Variable& variable = sheet.VariableAt(*index);
  std::vector<double> values;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (sheet.IsCaseSelected(i) && !variable.IsMissing(i)) values.push_back(variable.Values()[i]);
  }
  std::ranges::sort(values);
  return values;
}

double ReducedVariate(double p) {
  return -std::log(-std::log(p));
}

// The values at i / (n + 1) (Coles 2001, An Introduction to Statistical Modeling of Extreme Values, section 2.6.7). Cases
// that count several times have no such positions.
GraphSeries PointsOf(const Spreadsheet& sheet, const std::string& name) {
  GraphSeries points{"Observed", SeriesStyle::kPoints, {}, {}};
  if (sheet.WeightVariable()) return points;
  points.y = SortedValues(sheet, name);
  const auto n = static_cast<double>(points.y.size());
  for (std::size_t i = 1; i <= points.y.size(); ++i)
    points.x.push_back(ReducedVariate(static_cast<double>(i) / (n + 1)));
  return points;
}

Graph ReturnLevelGraph(const FitJob& job, const FittedVariable& variable, const FittedDistribution& fit,
                       const Spreadsheet& sheet) {
  constexpr std::size_t kSteps = 100;
  constexpr double kLongest = 1000;  // return period, where none is asked for
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.title = "Return levels of " + variable.name;
  graph.xTitle = "-ln(-ln(1 - 1/T)), T the return period";
  graph.yTitle = variable.name;
  const FittedValues values = ValuesOf(fit);
  GraphSeries points = PointsOf(sheet, variable.name);
  const double longest = job.returnPeriods.empty() ? kLongest : std::ranges::max(job.returnPeriods);
  const double from = points.x.empty() ? ReducedVariate(0.01) : points.x.front();
  const double to = std::max(ReducedVariate(1 - 1 / longest), points.x.empty() ? 0 : points.x.back());
  GraphSeries line{fit.name, SeriesStyle::kLine, {}, {}};
  GraphBand band;
  band.name = "Interval by covariance";
  for (std::size_t i = 0; i <= kSteps; ++i) {
    const double x = from + (to - from) * static_cast<double>(i) / kSteps;
    const double p = std::exp(-std::exp(-x));
    line.x.push_back(x);
    line.y.push_back(values.Quantile(p));
    const ConfidenceInterval interval = QuantileInterval(values, p, job.IntervalConfidence());
    if (IsNotSet(interval.lower)) continue;
    band.x.push_back(x);
    band.lower.push_back(interval.lower);
    band.upper.push_back(interval.upper);
  }
  if (!band.x.empty()) graph.bands.push_back(std::move(band));
  graph.series.push_back(std::move(points));
  graph.series.push_back(std::move(line));
  return graph;
}

}  // namespace

FittedValues ValuesOf(const FittedDistribution& fit) {
  FittedValues values{
      static_cast<DistributionCode>(fit.code), fit.parameters, std::isnan(fit.offset) ? 0 : fit.offset, {}};
  for (const std::vector<double>& row : fit.covariance)
    values.covariance.insert(values.covariance.end(), row.begin(), row.end());
  return values;
}

FitBootstrap BootstrapOf(const FittedValues& fit, std::size_t count, double samples,
                         const RandomStream& stream, bool isByPercentiles) {
  constexpr std::size_t kValuesOfComponent = 3;
  EstimationChoices choices;
  choices.isByPercentiles = isByPercentiles;
  if (fit.code == DistributionCode::kGaussianMixture)
    choices.components = static_cast<std::int32_t>(fit.values.size() / kValuesOfComponent);
  const EstimationPoll poll = [] {
    if (InterruptionRequested()) throw UserCancelled();
  };
  return FitBootstrap(fit, count, static_cast<std::size_t>(samples), stream, choices, poll);
}

FitQuantiles ReadOff(const FitJob& job, const std::string& name, const FittedValues& fit,
                     const FitBootstrap* bootstrap) {
  FitQuantiles found{name, job.IntervalConfidence()};
  if (bootstrap != nullptr) found.samples = bootstrap->Fitted();
  if (fit.covariance.empty())
    found.note = "the estimates of this fit have no covariance, so that only a bootstrap gives intervals";
  const auto add = [&](double p, std::optional<double> period) {
    FitQuantiles::Row row{p, fit.Quantile(p), period, QuantileInterval(fit, p, found.confidence), {}};
    if (bootstrap != nullptr) row.byBootstrap = bootstrap->Quantile(p, found.confidence);
    found.quantiles.push_back(row);
  };
  for (const double p : job.quantiles) add(p, std::nullopt);
  for (const double period : job.returnPeriods) add(1 - 1 / period, period);
  for (const double x : job.exceed) {
    FitQuantiles::Row row{fit.Exceedance(x), x, {}, ExceedanceInterval(fit, x, found.confidence), {}};
    if (bootstrap != nullptr) row.byBootstrap = bootstrap->Exceedance(x, found.confidence);
    found.exceedances.push_back(row);
  }
  return found;
}

std::optional<FitQuantiles> QuantilesOf(const FitJob& job, const FittedVariable& variable,
                                        std::size_t number) {
  const FittedDistribution* best = variable.Best();
  if (!job.AsksForQuantiles() || !variable.isContinuous || best == nullptr) return std::nullopt;
  const FittedValues fit = ValuesOf(*best);
  if (!job.bootstrap) return ReadOff(job, best->name, fit, nullptr);
  // The samples depend on the seed, the variable and the distribution alone.
  const RandomStream stream = RandomStream(AsInteger(job.bootstrapSeed.value_or(1)))
                                  .Substream(number, static_cast<std::uint64_t>(fit.code));
  const FitBootstrap bootstrap =
      BootstrapOf(fit, static_cast<std::size_t>(variable.moments.Number("n"_column)), *job.bootstrap, stream,
                  job.johnsonPercentiles);
  return ReadOff(job, best->name, fit, &bootstrap);
}

std::vector<std::optional<FitQuantiles>> AllQuantiles(const FitJob& job,
                                                      const std::vector<FittedVariable>& variables) {
  std::vector<std::optional<FitQuantiles>> all;
  for (const FittedVariable& variable : variables) all.push_back(QuantilesOf(job, variable, all.size() + 1));
  return all;
}

std::vector<PlotPage> ReturnLevelPlots(const FitJob& job, AutomationObject& dialog,
                                       const Spreadsheet& sheet) {
  std::vector<PlotPage> pages;
  for (const FittedVariable& variable : ReadFitResults(dialog, Covariances::kRead)) {
    const FittedDistribution* best = variable.Best();
    if (!variable.isContinuous || best == nullptr) continue;
    pages.push_back(SinglePage(variable.name, ReturnLevelGraph(job, variable, *best, sheet)));
  }
  return pages;
}

Graph ReturnLevelsOf(const FitJob& job, AutomationObject& dialog, const Spreadsheet& sheet,
                     std::size_t variable, std::size_t fit) {
  const std::vector<FittedVariable> variables = ReadFitResults(dialog, Covariances::kRead);
  const FittedVariable& chosen = variables.at(variable - 1);
  if (!chosen.isContinuous)
    throw Error("return levels are those of continuous variables, and " + Quoted(chosen.name) +
                " is discrete");
  return ReturnLevelGraph(job, chosen, chosen.fits.at(fit - 1), sheet);
}

}  // namespace brenvolt
