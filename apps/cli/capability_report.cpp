#include "apps/cli/capability_report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "apps/cli/text_table.h"

namespace brenvolt::cli {
namespace {

constexpr int kDigits = 5;
constexpr int kIndexDigits = 4;
constexpr Quantity kIndex = Quantity::kMeasure;
constexpr Quantity kParts = Quantity::kPartsPerMillion;
// More signals than these are only counted.
constexpr std::size_t kMostSignals = 10;

std::string Shown(double value, int digits = kDigits) {
  return ReadableNumber(IsNotSet(value) ? std::numeric_limits<double>::quiet_NaN() : value, digits);
}

std::string Given(double limit) {
  return ReadableNumber(limit, 10);
}

// A place among the values, in the digits that show a hundredth of their deviation.
std::string Place(double value, double deviation) {
  return IsNotSet(value) ? "-" : ReadableNumber(value, DigitsFor(value, deviation, kDigits));
}

std::string WithLimits(double value, const ConfidenceInterval& interval, Quantity quantity) {
  if (IsNotSet(value)) return "-";
  const auto text = [&](double number) { return QuantityText(number, quantity, kIndexDigits); };
  if (IsNotSet(interval.lower)) return text(value);
  return text(value) + " (" + text(interval.lower) + " to " + text(interval.upper) + ")";
}

std::string SizesText(const CapabilityFindings& found) {
  const auto [least, most] = std::ranges::minmax(found.subgroups, {}, &SubgroupStatistics::count);
  const std::string sizes =
      std::to_string(least.count) + (least.count == most.count ? "" : " to " + std::to_string(most.count));
  return std::to_string(found.subgroups.size()) + " subgroups of " + sizes;
}

std::string DataText(const CapabilityFindings& found) {
  const ProcessSample& sample = found.report.sample;
  std::string text = found.response + "\n  n " + std::to_string(sample.count) + " of " +
                     std::to_string(found.cases) + " cases";
  if (!found.subgroups.empty()) text += ", " + SizesText(found);
  return text + "\n  Specification: LSL " + Given(found.limits.lower) + ", target " +
         Given(found.limits.target) + ", USL " + Given(found.limits.upper) + "\n";
}

// The level of all points, or of the first and how far it reaches.
std::string Level(const std::vector<double>& levels, double deviation) {
  const auto [least, most] = std::ranges::minmax(levels);
  if (least == most) return Place(least, deviation);
  return Place(least, deviation) + " to " + Place(most, deviation);
}

std::string SignalsText(const CapabilityFindings& found, bool isLocation) {
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  std::string text;
  for (std::size_t i = 0; i < std::min(chart.signals.size(), kMostSignals); ++i) {
    const ControlSignal& signal = chart.signals[i];
    text += std::string("  ") + (isLocation ? found.LocationTitle() : found.DispersionTitle()) + " " +
            (isLocation ? found.names[signal.point] : found.DispersionName(signal.point)) + ": " +
            found.RuleText(found.rules[signal.rule]) + " (rule " + std::to_string(signal.rule + 1) + ")\n";
  }
  if (chart.signals.size() > kMostSignals)
    text += "  and " + std::to_string(chart.signals.size() - kMostSignals) + " more\n";
  return text;
}

std::string StabilityText(const CapabilityFindings& found) {
  const double deviation = found.report.sample.overall;
  TextTable table;
  table.AddColumn("Chart", TextTable::Align::kLeft);
  for (const char* heading : {"Lower limit", "Centre", "Upper limit", "Points", "Signals"})
    table.AddColumn(heading, TextTable::Align::kRight);
  for (const bool isLocation : {true, false}) {
    const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
    table.AddRow({isLocation ? found.LocationTitle() : found.DispersionTitle(), Level(chart.lower, deviation),
                  Level(chart.centre, deviation), Level(chart.upper, deviation),
                  std::to_string(chart.points.size()), std::to_string(chart.signals.size())});
  }
  std::string text = "\n" + table.Text() + SignalsText(found, true) + SignalsText(found, false);
  if (found.IsStable()) return text + "  No signal by the rules of " + found.rulesWord + "\n";
  return text + "  warning: " + found.Warning() + "\n";
}

std::string DeviationsText(const CapabilityFindings& found) {
  struct Row {
    const char* word;
    const DeviationEstimate* estimate;
  };
  const Row rows[] = {{"r-bar", &found.within.ranges},
                      {"s-bar", &found.within.deviations},
                      {"pooled", &found.within.pooled},
                      {"moving-range", &found.movingRange}};
  std::string text = "\n  Mean " + Place(found.report.sample.mean, found.report.sample.overall) +
                     ", deviation overall " + Shown(found.report.sample.overall) + ", within ";
  std::string others;
  for (const Row& row : rows) {
    if (IsNotSet(row.estimate->deviation)) continue;
    if (row.word == found.withinWord) {
      text += Shown(row.estimate->deviation) + " (" + row.word + ")";
    } else {
      others += (others.empty() ? "" : ", ") + std::string(row.word) + " " + Shown(row.estimate->deviation);
    }
  }
  if (!others.empty()) text += "; " + others;
  text += "\n  A-D p-value of the fitted normal " +
          (IsNotSet(found.normality.pValue) ? "-" : QuantityText(found.normality.pValue, Quantity::kPValue)) +
          "\n";
  if (!found.fitted) return text;
  const PercentileCapability& points = found.fitted->percentiles;
  return text + "  Percentiles are those of " + found.fitted->notation + ":\n    0.135 % " +
         Place(points.low, found.report.sample.overall) + ", 50 % " +
         Place(points.median, found.report.sample.overall) + ", 99.865 % " +
         Place(points.high, found.report.sample.overall) + "\n";
}

class IndexTable {
 public:
  explicit IndexTable(const CapabilityFindings& found) : found_(found) {
    table_.AddColumn("Capability", TextTable::Align::kLeft);
    for (const char* heading : {"Within", "Overall"}) table_.AddColumn(heading, TextTable::Align::kRight);
    if (found.fitted) table_.AddColumn("By percentiles", TextTable::Align::kRight);
    table_.AddColumn("Observed", TextTable::Align::kRight);
    AddIndices();
    AddParts();
  }
  std::string Text() const { return table_.Text(); }

 private:
  void AddRow(const char* heading, std::string within, std::string overall, std::string byPercentiles,
              std::string observed) {
    std::vector<std::string> cells{heading, std::move(within), std::move(overall)};
    if (found_.fitted) cells.push_back(std::move(byPercentiles));
    cells.push_back(std::move(observed));
    table_.AddRow(std::move(cells));
  }

  std::string Fitted(double CapabilityIndices::*index, ConfidenceInterval IndexIntervals::*interval) const {
    if (!found_.fitted) return {};
    return WithLimits(found_.fitted->percentiles.indices.*index, found_.fitted->intervals.indices.*interval,
                      kIndex);
  }
  std::string Fitted(double PartsPerMillion::*parts, ConfidenceInterval PartsIntervals::*interval) const {
    if (!found_.fitted) return {};
    return WithLimits(found_.fitted->percentiles.expected.*parts, found_.fitted->intervals.expected.*interval,
                      kParts);
  }

  void AddIndices() {
    struct Row {
      const char* heading;
      double CapabilityIndices::*index;
      ConfidenceInterval IndexIntervals::*interval;
    };
    constexpr Row kRows[] = {{"Cp, Pp", &CapabilityIndices::potential, &IndexIntervals::potential},
                             {"Cpl, Ppl", &CapabilityIndices::lower, &IndexIntervals::lower},
                             {"Cpu, Ppu", &CapabilityIndices::upper, &IndexIntervals::upper},
                             {"Cpk, Ppk", &CapabilityIndices::least, &IndexIntervals::least}};
    const CapabilityReport& report = found_.report;
    for (const Row& row : kRows) {
      AddRow(row.heading, WithLimits(report.within.*row.index, report.withinIntervals.*row.interval, kIndex),
             WithLimits(report.overall.*row.index, report.overallIntervals.*row.interval, kIndex),
             Fitted(row.index, row.interval), "");
    }
    table_.AddRow({"Cpm", "", WithLimits(report.cpm, {}, kIndex)});
  }

  void AddParts() {
    struct Row {
      const char* heading;
      double PartsPerMillion::*parts;
      ConfidenceInterval PartsIntervals::*interval;
    };
    constexpr Row kRows[] = {{"PPM below LSL", &PartsPerMillion::below, &PartsIntervals::below},
                             {"PPM above USL", &PartsPerMillion::above, &PartsIntervals::above},
                             {"PPM in all", &PartsPerMillion::total, &PartsIntervals::total}};
    const CapabilityReport& report = found_.report;
    for (const Row& row : kRows) {
      AddRow(
          row.heading,
          WithLimits(report.expectedWithin.*row.parts, report.expectedWithinIntervals.*row.interval, kParts),
          WithLimits(report.expectedOverall.*row.parts, report.expectedOverallIntervals.*row.interval,
                     kParts),
          Fitted(row.parts, row.interval),
          WithLimits(report.observed.*row.parts, report.observedIntervals.*row.interval, kParts));
    }
  }

  const CapabilityFindings& found_;
  TextTable table_;
};

}  // namespace

std::string CapabilityText(const CapabilityFindings& found) {
  std::string text = DataText(found) + StabilityText(found) + DeviationsText(found) + "\n" +
                     IndexTable(found).Text() + "  Intervals have a confidence of " +
                     ReadableNumber(100 * found.confidence) + " %\n";
  for (const std::string& note : found.notes) text += "  note: " + note + "\n";
  return text;
}

}  // namespace brenvolt::cli
