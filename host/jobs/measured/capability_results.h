// What is found about the capability of a measured process, as numbers.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/analysis/result_columns.h"
#include "host/statistics/capability.h"
#include "host/statistics/control_charts.h"
#include "host/statistics/normality.h"
#include "host/statistics/subgroups.h"

namespace brenvolt {

// The indices by the percentiles of a fitted distribution.
struct FittedCapability {
  std::string name;
  std::string notation;  // the distribution with its values
  PercentileCapability percentiles;
  PercentileIntervals intervals = {};  // by bootstrap; not set without
  std::size_t samples = 0;             // of the bootstrap, those that could be fitted
};

// An index or the parts per million beyond a limit. What is not set there is none of.
struct CapabilityFigure {
  const ResultColumn& column;
  double value;
  ConfidenceInterval interval;
};

struct CapabilityFindings {
  std::string response;
  SpecificationLimits limits;
  double confidence = 0;
  std::size_t cases = 0;
  std::vector<double> values;                 // those that count, in their order
  std::vector<std::string> names;             // of the points of the chart of locations: cases or subgroups
  std::vector<SubgroupStatistics> subgroups;  // those of two values or more; none without subgroups
  DeviationEstimate movingRange;              // the deviations that there are
  WithinEstimates within;
  std::string withinWord;  // the one that the indices rest on
  std::string chartWord;
  std::string rulesWord;
  std::span<const ControlRule> rules;
  ControlCharts charts;
  NormalityTest normality;
  CapabilityReport report;
  std::optional<FittedCapability> fitted;
  std::vector<std::string> notes;  // how to read all this; sentences without full stops

  bool IsStable() const { return charts.location.signals.empty() && charts.dispersion.signals.empty(); }
  // What speaks against the indices as a whole: that the process is not stable. Empty if it is.
  std::string Warning() const;
  // "1 point beyond 3 standard deviations".
  std::string RuleText(const ControlRule& rule) const;
  // The name of a point of the chart of what the process scatters by, which lacks the first of single values.
  const std::string& DispersionName(std::size_t point) const;
  const char* LocationTitle() const;    // "X-bar"
  const char* DispersionTitle() const;  // "R"
  // In the order of the reports; those by percentiles where a distribution was fitted.
  std::vector<CapabilityFigure> Figures() const;
};

}  // namespace brenvolt
