// Shewhart's control charts of measured values, and the rules by which a process is judged unstable.
//
// Limits lie three standard deviations of what is plotted from its mean (Montgomery 2013, sections 6.2 to 6.4), which
// for ranges and deviations are those of a normal process. They follow the sizes of the subgroups.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/statistics/subgroups.h"

namespace brenvolt {

// What a run of points has to be to be a signal. Its last point is among those that count.
enum class ControlPattern : std::uint8_t {
  kOneSide,      // beyond a number of standard deviations on one side
  kBothSides,    // beyond it on either side
  kWithin,       // not beyond it
  kTrend,        // each above, or each below, the one before
  kAlternating,  // up and down by turns
};
struct ControlRule {
  ControlPattern pattern;
  std::size_t needed;  // points that are as the pattern says
  std::size_t window;  // among so many in a row
  double deviations;   // from the centre line
};
// Western Electric (1956), Statistical Quality Control Handbook, pages 25 to 28: tests 1 to 4.
std::span<const ControlRule> WesternElectricRules();
// Nelson (1984), The Shewhart control chart: tests for special causes, Journal of Quality Technology 16, 237-239: tests 1
// to 8.
std::span<const ControlRule> NelsonRules();

struct ControlSignal {
  std::size_t rule;   // its place among the rules, from 0
  std::size_t point;  // the last of the run, from 0
};
struct ControlChart {
  std::vector<double> points;
  std::vector<double> centre;
  std::vector<double> lower;
  std::vector<double> upper;
  std::vector<ControlSignal> signals;  // by points, then rules
};
// Of all points, each in units of a third of the distance of its upper limit from the centre.
std::vector<ControlSignal> FindSignals(const ControlChart& chart, std::span<const ControlRule> rules);

// The chart of means or of single values, and that of what they scatter by. The latter is judged by its limits alone: its
// points are not normal, and moving ranges overlap.
struct ControlCharts {
  ControlChart location;
  ControlChart dispersion;
};
enum class Dispersion : std::uint8_t { kRange, kDeviation };
// X-bar-R and X-bar-S: the deviation is that of the ranges or of the standard deviations. Subgroups of two values or more.
ControlCharts SubgroupCharts(std::span<const SubgroupStatistics> subgroups, Dispersion dispersion,
                             std::span<const ControlRule> rules);
// I-MR: single values and the moving ranges of two, of which the first value has none. Two values or more, without NaN.
ControlCharts IndividualCharts(std::span<const double> values, std::span<const ControlRule> rules);

}  // namespace brenvolt
