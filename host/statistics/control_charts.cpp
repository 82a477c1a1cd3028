#include "host/statistics/control_charts.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/statistics/control_constants.h"

namespace brenvolt {
namespace {

using enum ControlPattern;

constexpr std::array<ControlRule, 4> kWesternElectric{
    {{kOneSide, 1, 1, 3}, {kOneSide, 2, 3, 2}, {kOneSide, 4, 5, 1}, {kOneSide, 8, 8, 0}}};
constexpr std::array<ControlRule, 8> kNelson{{{kOneSide, 1, 1, 3},
                                              {kOneSide, 9, 9, 0},
                                              {kTrend, 6, 6, 0},
                                              {kAlternating, 14, 14, 0},
                                              {kOneSide, 2, 3, 2},
                                              {kOneSide, 4, 5, 1},
                                              {kWithin, 15, 15, 1},
                                              {kBothSides, 8, 8, 1}}};
constexpr double kLimit = 3;

// A point that lies on a limit but for rounding is not beyond it.
bool IsBeyond(double score, double deviations) {
  constexpr double kRounding = 1e-9;
  return score > deviations + kRounding;
}

// The last points of a chart, in standard deviations from the centre.
class Run {
 public:
  Run(std::span<const double> scores, const ControlRule& rule)
      : scores_(scores.last(std::min(rule.window, scores.size()))), rule_(rule) {}

  bool IsSignal() const {
    if (scores_.size() < rule_.needed) return false;
    switch (rule_.pattern) {
      case kOneSide:
        return IsOnSide(1) || IsOnSide(-1);
      case kBothSides:
        return std::ranges::all_of(scores_,
                                   [&](double score) { return IsBeyond(std::abs(score), rule_.deviations); });
      case kWithin:
        return std::ranges::none_of(
            scores_, [&](double score) { return IsBeyond(std::abs(score), rule_.deviations); });
      case kTrend:
        return Steps(1, 1) || Steps(-1, 1);
      case kAlternating:
        return Steps(1, -1) || Steps(-1, -1);
    }
    return false;
  }

 private:
  bool IsOnSide(double side) const {
    const auto isBeyond = [&](double score) { return IsBeyond(side * score, rule_.deviations); };
    return isBeyond(scores_.back()) &&
           static_cast<std::size_t>(std::ranges::count_if(scores_, isBeyond)) >= rule_.needed;
  }

  // Whether every step has its direction, the first `direction` and each next one the former times `change`.
  bool Steps(double direction, double change) const {
    for (std::size_t i = 1; i < scores_.size(); ++i, direction *= change) {
      if (!(direction * (scores_[i] - scores_[i - 1]) > 0)) return false;
    }
    return true;
  }

  std::span<const double> scores_;
  const ControlRule& rule_;
};

void AddPoint(double point, double centre, double lower, double upper, ControlChart& chart) {
  chart.points.push_back(point);
  chart.centre.push_back(centre);
  chart.lower.push_back(lower);
  chart.upper.push_back(upper);
}

// What scatters has a lower limit of 0 where three deviations reach below.
void AddDispersion(double point, double mean, double deviation, ControlChart& chart) {
  AddPoint(point, mean, std::max(0.0, mean - kLimit * deviation), mean + kLimit * deviation, chart);
}

void Judge(ControlCharts& charts, std::span<const ControlRule> rules) {
  charts.location.signals = FindSignals(charts.location, rules);
  const ControlChart& chart = charts.dispersion;
  for (std::size_t i = 0; i < chart.points.size(); ++i) {
    if (chart.points[i] > chart.upper[i] || chart.points[i] < chart.lower[i])
      charts.dispersion.signals.push_back({0, i});
  }
}

}  // namespace

std::span<const ControlRule> WesternElectricRules() {
  return kWesternElectric;
}

std::span<const ControlRule> NelsonRules() {
  return kNelson;
}

std::vector<ControlSignal> FindSignals(const ControlChart& chart, std::span<const ControlRule> rules) {
  std::vector<double> scores;
  std::vector<ControlSignal> signals;
  for (std::size_t i = 0; i < chart.points.size(); ++i) {
    const double deviation = (chart.upper[i] - chart.centre[i]) / kLimit;
    scores.push_back(deviation > 0 ? (chart.points[i] - chart.centre[i]) / deviation : 0);
    for (std::size_t rule = 0; rule < rules.size(); ++rule) {
      if (Run(scores, rules[rule]).IsSignal()) signals.push_back({rule, i});
    }
  }
  return signals;
}

ControlCharts SubgroupCharts(std::span<const SubgroupStatistics> subgroups, Dispersion dispersion,
                             std::span<const ControlRule> rules) {
  const WithinEstimates within = EstimateWithin(subgroups);
  const bool isRange = dispersion == Dispersion::kRange;
  const double sigma = (isRange ? within.ranges : within.deviations).deviation;
  double sum = 0;
  double count = 0;
  for (const SubgroupStatistics& one : subgroups) {
    sum += one.mean * static_cast<double>(one.count);
    count += static_cast<double>(one.count);
  }
  const double centre = sum / count;
  ControlCharts charts;
  for (const SubgroupStatistics& one : subgroups) {
    const double reach = kLimit * sigma / std::sqrt(static_cast<double>(one.count));
    AddPoint(one.mean, centre, centre - reach, centre + reach, charts.location);
    if (isRange) {
      const RangeConstants constants = RangeConstantsOf(one.count);
      AddDispersion(one.range, constants.d2 * sigma, constants.d3 * sigma, charts.dispersion);
    } else {
      AddDispersion(one.deviation, C4(one.count) * sigma, C5(one.count) * sigma, charts.dispersion);
    }
  }
  Judge(charts, rules);
  return charts;
}

ControlCharts IndividualCharts(std::span<const double> values, std::span<const ControlRule> rules) {
  const RangeConstants constants = RangeConstantsOf(2);
  double sum = 0;
  double ranges = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    sum += values[i];
    if (i > 0) ranges += std::abs(values[i] - values[i - 1]);
  }
  const double centre = sum / static_cast<double>(values.size());
  const double sigma = ranges / static_cast<double>(values.size() - 1) / constants.d2;
  ControlCharts charts;
  for (std::size_t i = 0; i < values.size(); ++i) {
    AddPoint(values[i], centre, centre - kLimit * sigma, centre + kLimit * sigma, charts.location);
    if (i > 0)
      AddDispersion(std::abs(values[i] - values[i - 1]), constants.d2 * sigma, constants.d3 * sigma,
                    charts.dispersion);
  }
  Judge(charts, rules);
  return charts;
}

}  // namespace brenvolt
