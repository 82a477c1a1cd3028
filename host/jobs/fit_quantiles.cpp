#include "host/jobs/fit_quantiles.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/base/error.h"
#include "host/base/process/interruption.h"
#include "host/base/quoted.h"
#include "host/jobs/fit_sample.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/statistics/fit_intervals.h"

namespace brenvolt {
namespace {

double ReducedVariate(double p) {
  return -std::log(-std::log(p));
}

// The values at i / (n + 1) (Coles 2001, An Introduction to Statistical Modeling of Extreme Values, section 2.6.7). Cases
// that count several times have no such positions.
GraphSeries PointsOf(const std::vector<double>& values, const FitJob& job, const Spreadsheet& sheet) {
  GraphSeries points{"Observed", SeriesStyle::kPoints, {}, {}};
  if (job.weights ? !job.weights->empty() : sheet.WeightVariable().has_value()) return points;
  points.y = values;
  const auto n = static_cast<double>(points.y.size());
  for (std::size_t i = 1; i <= points.y.size(); ++i)
    points.x.push_back(ReducedVariate(static_cast<double>(i) / (n + 1)));
  return points;
}

std::vector<std::string> NamesOf(const std::vector<FittedVariable>& variables) {
  std::vector<std::string> names;
  for (const FittedVariable& one : variables) names.push_back(one.name);
  return names;
}

void PollForInterruption() {
  if (InterruptionRequested()) throw UserCancelled();
}

// The intervals of levels are by the profile likelihood where the job says so, at fewer points then, since they take long.
GraphBand BandOf(const FitJob& job, const FittedValues& fit, const std::vector<double>& values, double from,
                 double to) {
  const LogLikelihood likelihood = LikelihoodFor(job, values);
  const std::size_t steps = likelihood ? 25 : 100;
  GraphBand band;
  band.name = likelihood ? "Interval by profile likelihood" : "Interval by covariance";
  for (std::size_t i = 0; i <= steps; ++i) {
    const double x = from + (to - from) * static_cast<double>(i) / static_cast<double>(steps);
    const double p = std::exp(-std::exp(-x));
    const ConfidenceInterval interval =
        likelihood ? ProfileQuantileInterval(fit, likelihood, p, job.IntervalConfidence())
                   : QuantileInterval(fit, p, job.IntervalConfidence());
    if (IsNotSet(interval.lower)) continue;
    band.x.push_back(x);
    band.lower.push_back(interval.lower);
    band.upper.push_back(interval.upper);
  }
  return band;
}

Graph ReturnLevelGraph(const FitJob& job, const FittedVariable& variable, const FittedDistribution& fit,
                       const std::vector<double>& observed, const Spreadsheet& sheet) {
  constexpr std::size_t kSteps = 100;
  constexpr double kLongest = 1000;  // return period, where none is asked for
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.title = "Return levels of " + variable.name;
  graph.xTitle = "-ln(-ln(1 - 1/T)), T the return period";
  graph.yTitle = variable.name;
  const FittedValues values = ValuesOf(fit);
  GraphSeries points = PointsOf(observed, job, sheet);
  const double longest = job.returnPeriods.empty() ? kLongest : std::ranges::max(job.returnPeriods);
  const double from = points.x.empty() ? ReducedVariate(0.01) : points.x.front();
  const double to = std::max(ReducedVariate(1 - 1 / longest), points.x.empty() ? 0 : points.x.back());
  GraphSeries line{fit.name, SeriesStyle::kLine, {}, {}};
  for (std::size_t i = 0; i <= kSteps; ++i) {
    const double x = from + (to - from) * static_cast<double>(i) / kSteps;
    line.x.push_back(x);
    line.y.push_back(values.Quantile(std::exp(-std::exp(-x))));
  }
  GraphBand band = BandOf(job, values, observed, from, to);
  if (!band.x.empty()) graph.bands.push_back(std::move(band));
  graph.series.push_back(std::move(points));
  graph.series.push_back(std::move(line));
  return graph;
}

}  // namespace

LogLikelihood LikelihoodFor(const FitJob& job, const std::vector<double>& sorted) {
  return job.IsByProfile() ? LikelihoodOf(sorted, PollForInterruption) : LogLikelihood();
}

LogLikelihood LikelihoodFor(const FitJob& job, const CensoredSample& sample) {
  return job.IsByProfile() ? LikelihoodOf(sample, PollForInterruption) : LogLikelihood();
}

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
  return FitBootstrap(fit, count, static_cast<std::size_t>(samples), stream, choices, PollForInterruption);
}

FitQuantiles ReadOff(const FitJob& job, const std::string& name, const FittedValues& fit,
                     const LogLikelihood& likelihood, const FitBootstrap* bootstrap) {
  FitQuantiles found{name, job.IntervalConfidence()};
  found.isProfiled = static_cast<bool>(likelihood);
  if (bootstrap != nullptr) found.samples = bootstrap->Fitted();
  if (fit.covariance.empty())
    found.note = "the estimates of this fit have no covariance, so that only a bootstrap gives intervals";
  const auto add = [&](double p, std::optional<double> period) {
    FitQuantiles::Row row{p, fit.Quantile(p), period, QuantileInterval(fit, p, found.confidence), {}, {}};
    if (likelihood) row.byProfile = ProfileQuantileInterval(fit, likelihood, p, found.confidence);
    if (bootstrap != nullptr) row.byBootstrap = bootstrap->Quantile(p, found.confidence);
    found.quantiles.push_back(row);
  };
  for (const double p : job.quantiles) add(p, std::nullopt);
  for (const double period : job.returnPeriods) add(1 - 1 / period, period);
  for (const double x : job.exceed) {
    FitQuantiles::Row row{fit.Exceedance(x), x, {}, ExceedanceInterval(fit, x, found.confidence), {}, {}};
    if (likelihood) row.byProfile = ProfileExceedanceInterval(fit, likelihood, x, found.confidence);
    if (bootstrap != nullptr) row.byBootstrap = bootstrap->Exceedance(x, found.confidence);
    found.exceedances.push_back(row);
  }
  return found;
}

std::vector<std::optional<FitQuantiles>> AllQuantiles(const FitJob& job,
                                                      const std::vector<FittedVariable>& variables,
                                                      const Spreadsheet& sheet) {
  std::vector<std::optional<FitQuantiles>> all;
  for (const FittedVariable& variable : variables) {
    const FittedDistribution* best = variable.Best();
    const std::size_t number = all.size() + 1;
    all.emplace_back();
    if (!job.AsksForQuantiles() || !variable.isContinuous || best == nullptr) continue;
    const FittedValues fit = ValuesOf(*best);
    const LogLikelihood likelihood =
        LikelihoodFor(job, job.IsByProfile() ? FittedSample(job, sheet, variable.name, NamesOf(variables))
                                             : std::vector<double>());
    if (!job.bootstrap) {
      all.back() = ReadOff(job, best->name, fit, likelihood, nullptr);
      continue;
    }
    // The samples depend on the seed, the variable and the distribution alone.
    const RandomStream stream = RandomStream(AsInteger(job.bootstrapSeed.value_or(1)))
                                    .Substream(number, static_cast<std::uint64_t>(fit.code));
    const FitBootstrap bootstrap =
        BootstrapOf(fit, static_cast<std::size_t>(variable.moments.Number("n"_column)), *job.bootstrap,
                    stream, job.johnsonPercentiles);
    all.back() = ReadOff(job, best->name, fit, likelihood, &bootstrap);
  }
  return all;
}

std::vector<PlotPage> ReturnLevelPlots(const FitJob& job, AutomationObject& dialog,
                                       const Spreadsheet& sheet) {
  std::vector<PlotPage> pages;
  const std::vector<FittedVariable> variables = ReadFitResults(dialog, Covariances::kRead);
  for (const FittedVariable& variable : variables) {
    const FittedDistribution* best = variable.Best();
    if (!variable.isContinuous || best == nullptr) continue;
    const auto observed = FittedSample(job, sheet, variable.name, NamesOf(variables));
    pages.push_back(SinglePage(variable.name, ReturnLevelGraph(job, variable, *best, observed, sheet)));
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
  return ReturnLevelGraph(job, chosen, chosen.fits.at(fit - 1),
                          FittedSample(job, sheet, chosen.name, NamesOf(variables)), sheet);
}

}  // namespace brenvolt
