#include "host/jobs/measured/capability_results.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "host/base/number_text.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

Json Number(double value) {
  return IsNotSet(value) || !std::isfinite(value) ? Json(nullptr) : Json(value);
}

Json Estimate(double value, const ConfidenceInterval& interval) {
  return {{"value", Number(value)}, {"lower", Number(interval.lower)}, {"upper", Number(interval.upper)}};
}

Json Numbers(const std::vector<double>& values) {
  Json list = Json::array();
  for (const double value : values) list.push_back(Number(value));
  return list;
}

Json DeviationJson(const DeviationEstimate& estimate) {
  return {{"value", Number(estimate.deviation)}, {"degreesOfFreedom", Number(estimate.degrees)}};
}

Json SignalsJson(const CapabilityFindings& found, bool isLocation) {
  Json list = Json::array();
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  for (const ControlSignal& signal : chart.signals) {
    list.push_back({{"point", isLocation ? found.names[signal.point] : found.DispersionName(signal.point)},
                    {"rule", signal.rule + 1},
                    {"text", found.RuleText(found.rules[signal.rule])}});
  }
  return list;
}

Json ChartJson(const CapabilityFindings& found, bool isLocation) {
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  Json names = Json::array();
  for (std::size_t i = 0; i < chart.points.size(); ++i)
    names.push_back(isLocation ? found.names[i] : found.DispersionName(i));
  return {{"of", isLocation ? found.LocationTitle() : found.DispersionTitle()},
          {"names", std::move(names)},
          {"points", Numbers(chart.points)},
          {"centre", Numbers(chart.centre)},
          {"lower", Numbers(chart.lower)},
          {"upper", Numbers(chart.upper)},
          {"signals", SignalsJson(found, isLocation)}};
}

Json IndicesJson(const CapabilityReport& report) {
  const CapabilityIndices& c = report.within;
  const IndexIntervals& ci = report.withinIntervals;
  const CapabilityIndices& p = report.overall;
  const IndexIntervals& pi = report.overallIntervals;
  return {{"cp", Estimate(c.potential, ci.potential)},
          {"cpl", Estimate(c.lower, ci.lower)},
          {"cpu", Estimate(c.upper, ci.upper)},
          {"cpk", Estimate(c.least, ci.least)},
          {"pp", Estimate(p.potential, pi.potential)},
          {"ppl", Estimate(p.lower, pi.lower)},
          {"ppu", Estimate(p.upper, pi.upper)},
          {"ppk", Estimate(p.least, pi.least)},
          {"cpm", Estimate(report.cpm, {})}};
}

Json PartsJson(const PartsPerMillion& parts, const PartsIntervals& intervals) {
  return {{"below", Estimate(parts.below, intervals.below)},
          {"above", Estimate(parts.above, intervals.above)},
          {"total", Estimate(parts.total, intervals.total)}};
}

Json FittedJson(const FittedCapability& fitted) {
  const PercentileCapability& found = fitted.percentiles;
  const IndexIntervals& intervals = fitted.intervals.indices;
  return {{"distribution", fitted.notation},
          {"lowPoint", Number(found.low)},
          {"median", Number(found.median)},
          {"highPoint", Number(found.high)},
          {"bootstrapSamples", fitted.samples},
          {"pp", Estimate(found.indices.potential, intervals.potential)},
          {"ppl", Estimate(found.indices.lower, intervals.lower)},
          {"ppu", Estimate(found.indices.upper, intervals.upper)},
          {"ppk", Estimate(found.indices.least, intervals.least)},
          {"expectedPpm", PartsJson(found.expected, fitted.intervals.expected)}};
}

Json SubgroupsJson(const CapabilityFindings& found) {
  if (found.subgroups.empty()) return nullptr;
  std::set<std::size_t> sizes;
  for (const SubgroupStatistics& one : found.subgroups) sizes.insert(one.count);
  return {{"count", found.subgroups.size()}, {"sizes", sizes}};
}

}  // namespace

std::string CapabilityFindings::RuleText(const ControlRule& rule) const {
  const std::string needed = std::to_string(rule.needed);
  const std::string among =
      rule.needed == rule.window ? needed : needed + " of " + std::to_string(rule.window);
  const std::string distance = FormatNumber("%.0f", rule.deviations) +
                               (rule.deviations == 1 ? " standard deviation" : " standard deviations");
  switch (rule.pattern) {
    case ControlPattern::kOneSide:
      if (rule.window == 1) return "a point beyond a limit";
      if (rule.deviations == 0) return among + " points in a row on one side of the centre";
      return among + " points beyond " + distance + " on one side";
    case ControlPattern::kBothSides:
      return among + " points in a row beyond " + distance + " on either side";
    case ControlPattern::kWithin:
      return among + " points in a row within " + distance;
    case ControlPattern::kTrend:
      return among + " points in a row that rise or fall";
    case ControlPattern::kAlternating:
      return among + " points in a row that alternate up and down";
  }
  return {};
}

const std::string& CapabilityFindings::DispersionName(std::size_t point) const {
  return names[point + charts.location.points.size() - charts.dispersion.points.size()];
}

const char* CapabilityFindings::LocationTitle() const {
  return chartWord == "i-mr" ? "I" : "X-bar";
}

const char* CapabilityFindings::DispersionTitle() const {
  if (chartWord == "i-mr") return "MR";
  return chartWord == "x-bar-r" ? "R" : "S";
}

std::string CapabilityFindings::Warning() const {
  if (IsStable()) return {};
  std::set<std::string> points;
  for (const ControlSignal& signal : charts.location.signals) points.insert(names[signal.point]);
  for (const ControlSignal& signal : charts.dispersion.signals) points.insert(DispersionName(signal.point));
  return "the process is not stable: " + std::to_string(points.size()) + " of " +
         std::to_string(charts.location.points.size()) +
         " points end a signal of the control charts. Its capability can change at any time; find the causes "
         "before you rely on the indices";
}

Json CapabilityJson(const CapabilityFindings& found) {
  const CapabilityReport& report = found.report;
  const ProcessSample& sample = report.sample;
  Json json = {{"response", found.response},
               {"cases", found.cases},
               {"n", sample.count},
               {"specification",
                {{"lower", Number(found.limits.lower)},
                 {"target", Number(found.limits.target)},
                 {"upper", Number(found.limits.upper)}}},
               {"subgroups", SubgroupsJson(found)}};
  json["stability"] = {{"isStable", found.IsStable()},
                       {"warning", found.IsStable() ? Json(nullptr) : Json(found.Warning())},
                       {"controlChart", found.chartWord},
                       {"rules", found.rulesWord},
                       {"location", ChartJson(found, true)},
                       {"dispersion", ChartJson(found, false)}};
  json["normality"] = {{"andersonDarling", Number(found.normality.statistic)},
                       {"pValue", Number(found.normality.pValue)}};
  json["mean"] = Number(sample.mean);
  json["deviations"] = {{"overall", Number(sample.overall)},
                        {"within", found.withinWord},
                        {"movingRange", DeviationJson(found.movingRange)},
                        {"rBar", DeviationJson(found.within.ranges)},
                        {"sBar", DeviationJson(found.within.deviations)},
                        {"pooled", DeviationJson(found.within.pooled)}};
  json["confidence"] = found.confidence;
  json["indices"] = IndicesJson(report);
  json["percentiles"] = found.fitted ? FittedJson(*found.fitted) : Json(nullptr);
  json["ppm"] = {{"observed", PartsJson(report.observed, report.observedIntervals)},
                 {"expectedWithin", PartsJson(report.expectedWithin, report.expectedWithinIntervals)},
                 {"expectedOverall", PartsJson(report.expectedOverall, report.expectedOverallIntervals)}};
  json["notes"] = found.notes;
  return json;
}

}  // namespace brenvolt
