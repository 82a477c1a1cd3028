#include "host/jobs/json/measured_json.h"

#include <iterator>
#include <set>
#include <utility>

#include "host/application/json_text.h"
#include "host/jobs/json/fit_json.h"
#include "host/jobs/json/result_json.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

Json Estimate(double value, const ConfidenceInterval& interval) {
  return {{"value", SetNumberOrNull(value)},
          {"lower", SetNumberOrNull(interval.lower)},
          {"upper", SetNumberOrNull(interval.upper)}};
}

Json Numbers(const std::vector<double>& values) {
  Json list = Json::array();
  for (const double value : values) list.push_back(NumberOrNull(value));
  return list;
}

Json DeviationJson(const DeviationEstimate& estimate) {
  return {{"value", SetNumberOrNull(estimate.deviation)},
          {"degreesOfFreedom", SetNumberOrNull(estimate.degrees)}};
}

Json SignalsJson(const CapabilityFindings& found, bool isLocation) {
  Json list = Json::array();
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  for (const ControlSignal& signal : chart.signals) {
    const Json fields[] = {isLocation ? found.names[signal.point] : found.DispersionName(signal.point),
                           signal.rule + 1, found.RuleText(found.rules[signal.rule])};
    static_assert(std::size(fields) == std::size(kSignals));
    Json row;
    for (std::size_t i = 0; i < std::size(fields); ++i) PlaceOf(kSignals[i], row) = fields[i];
    list.push_back(std::move(row));
  }
  return list;
}

Json ChartJson(const CapabilityFindings& found, bool isLocation) {
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  Json names = Json::array();
  for (std::size_t i = 0; i < chart.points.size(); ++i)
    names.push_back(isLocation ? found.names[i] : found.DispersionName(i));
  Json json = {{"of", isLocation ? found.LocationTitle() : found.DispersionTitle()},
               {"names", std::move(names)}};
  const std::vector<double>* levels[] = {&chart.points, &chart.lower, &chart.centre, &chart.upper};
  static_assert(std::size(levels) == std::size(kChartLevels));
  for (std::size_t i = 0; i < std::size(levels); ++i) PlaceOf(kChartLevels[i], json) = Numbers(*levels[i]);
  json["signals"] = SignalsJson(found, isLocation);
  return json;
}

// What the figures by percentiles come from; they stand beside it.
Json FittedJson(const FittedCapability& fitted) {
  const PercentileCapability& found = fitted.percentiles;
  return {{"distribution", fitted.notation},
          {"lowPoint", SetNumberOrNull(found.low)},
          {"median", SetNumberOrNull(found.median)},
          {"highPoint", SetNumberOrNull(found.high)},
          {"bootstrapSamples", fitted.samples}};
}

Json SubgroupsJson(const CapabilityFindings& found) {
  if (found.subgroups.empty()) return nullptr;
  std::set<std::size_t> sizes;
  for (const SubgroupStatistics& one : found.subgroups) sizes.insert(one.count);
  return {{"count", found.subgroups.size()}, {"sizes", sizes}};
}

Json CensoredFitJson(const CensoredFit& fit, std::size_t rank) {
  Json json = {{"rank", rank},
               {"code", static_cast<int>(fit.values.code)},
               {"distribution", fit.name},
               {"reason", TextOrNull(fit.reason)}};
  for (const char* key : {"description", "parameters", "offset", "standardErrors", "covariance"})
    json[key] = nullptr;
  const ResultRow statistics = fit.Statistics();
  AddNumbers(statistics, kLikelihood, json);
  AddNumbers(statistics, kCensoredSearch, json);
  AddNumbers(statistics, kCurveDistance, json);
  if (!fit.IsValid()) return json;
  json["description"] = fit.notation;
  json["parameters"] = fit.values.values;
  if (EntryOf(fit.values.code).facts.HasOffset()) json["offset"] = fit.values.offset;
  json["standardErrors"] = fit.standardErrors;
  const std::size_t n = fit.values.values.size();
  Json covariance = Json::array();
  for (std::size_t i = 0; i < n; ++i)
    covariance.push_back(
        std::vector<double>(fit.values.covariance.begin() + static_cast<std::ptrdiff_t>(i * n),
                            fit.values.covariance.begin() + static_cast<std::ptrdiff_t>((i + 1) * n)));
  json["covariance"] = std::move(covariance);
  return json;
}

Json CurveJson(const CensoredVariable& variable) {
  Json steps = Json::array();
  for (const SurvivalStep& step : variable.curve)
    steps.push_back(NumbersJson(kCurveSteps, {step.from, step.to, step.before, step.after}));
  Json positions = Json::array();
  for (const PlottingPosition& one : PlottingPositions(variable.curve))
    positions.push_back(NumbersJson(kPlottingPositions, {one.value, one.probability}));
  return {{"estimator", variable.isKaplanMeier ? "kaplan-meier" : "turnbull"},
          {"steps", std::move(steps)},
          {"plottingPositions", std::move(positions)}};
}

}  // namespace

Json CapabilityJson(const CapabilityFindings& found) {
  const ProcessSample& sample = found.report.sample;
  Json json = {{"response", found.response},
               {"cases", found.cases},
               {"n", sample.count},
               {"specification",
                {{"lower", SetNumberOrNull(found.limits.lower)},
                 {"target", SetNumberOrNull(found.limits.target)},
                 {"upper", SetNumberOrNull(found.limits.upper)}}},
               {"subgroups", SubgroupsJson(found)}};
  json["stability"] = {{"isStable", found.IsStable()},
                       {"warning", found.IsStable() ? Json(nullptr) : Json(found.Warning())},
                       {"controlChart", found.chartWord},
                       {"rules", found.rulesWord},
                       {"location", ChartJson(found, true)},
                       {"dispersion", ChartJson(found, false)}};
  json["normality"] = {{"andersonDarling", SetNumberOrNull(found.normality.statistic)},
                       {"pValue", SetNumberOrNull(found.normality.pValue)}};
  json["mean"] = SetNumberOrNull(sample.mean);
  json["deviations"] = {
      {"overall", SetNumberOrNull(sample.overall)},      {"within", found.withinWord},
      {"movingRange", DeviationJson(found.movingRange)}, {"rBar", DeviationJson(found.within.ranges)},
      {"sBar", DeviationJson(found.within.deviations)},  {"pooled", DeviationJson(found.within.pooled)}};
  json["confidence"] = found.confidence;
  json["indices"] = Json::object();
  json["percentiles"] = found.fitted ? FittedJson(*found.fitted) : Json(nullptr);
  json["ppm"] = Json::object();
  for (const CapabilityFigure& figure : found.Figures())
    PlaceOf(figure.column, json) = Estimate(figure.value, figure.interval);
  json["notes"] = found.notes;
  return json;
}

Json CensoredJson(const CensoredFindings& found) {
  Json report = {{"variables", Json::array()}};
  for (const CensoredVariable& variable : found.variables) {
    Json json = {{"name", variable.name},
                 {"n", variable.Count()},
                 {"missing", variable.missing},
                 {"censoring",
                  {{"exact", variable.exact},
                   {"right", variable.right},
                   {"left", variable.left},
                   {"interval", variable.interval},
                   {"reading", variable.reading}}},
                 {"rankedBy", variable.rankedBy},
                 {"fits", Json::array()}};
    for (const CensoredFit& fit : variable.fits)
      json["fits"].push_back(CensoredFitJson(fit, json["fits"].size() + 1));
    json["notes"] = Json::array();
    for (const ReadingNote& note : variable.notes)
      json["notes"].push_back({{"option", note.field}, {"message", note.message}});
    json["curve"] = CurveJson(variable);
    json["quantiles"] = QuantilesJson(variable.quantiles);
    report["variables"].push_back(std::move(json));
  }
  return report;
}

}  // namespace brenvolt
