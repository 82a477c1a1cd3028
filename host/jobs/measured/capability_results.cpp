#include "host/jobs/measured/capability_results.h"

#include <set>
#include <utility>

#include "host/base/number_text.h"

namespace brenvolt {
namespace {

using namespace result_columns;

class FigureList {
 public:
  void Add(const ResultColumn& column, double value, const ConfidenceInterval& interval) {
    figures_.push_back({column, value, interval});
  }
  void Add(std::span<const ResultColumn, 4> columns, const CapabilityIndices& indices,
           const IndexIntervals& intervals) {
    Add(columns[0], indices.potential, intervals.potential);
    Add(columns[1], indices.lower, intervals.lower);
    Add(columns[2], indices.upper, intervals.upper);
    Add(columns[3], indices.least, intervals.least);
  }
  void Add(std::span<const ResultColumn, 3> columns, const PartsPerMillion& parts,
           const PartsIntervals& intervals) {
    Add(columns[0], parts.below, intervals.below);
    Add(columns[1], parts.above, intervals.above);
    Add(columns[2], parts.total, intervals.total);
  }
  std::vector<CapabilityFigure> All() && { return std::move(figures_); }

 private:
  std::vector<CapabilityFigure> figures_;
};

}  // namespace

std::vector<CapabilityFigure> CapabilityFindings::Figures() const {
  FigureList figures;
  figures.Add(kIndicesWithin, report.within, report.withinIntervals);
  figures.Add(kIndicesOverall, report.overall, report.overallIntervals);
  figures.Add(kTargetIndex[0], report.cpm, {});
  if (fitted) {
    figures.Add(kIndicesByPercentiles, fitted->percentiles.indices, fitted->intervals.indices);
    figures.Add(kPpmByPercentiles, fitted->percentiles.expected, fitted->intervals.expected);
  }
  figures.Add(kPpmObserved, report.observed, report.observedIntervals);
  figures.Add(kPpmWithin, report.expectedWithin, report.expectedWithinIntervals);
  figures.Add(kPpmOverall, report.expectedOverall, report.expectedOverallIntervals);
  return std::move(figures).All();
}

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

}  // namespace brenvolt
