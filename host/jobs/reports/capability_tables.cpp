#include "host/jobs/reports/capability_tables.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/base/number_text.h"

namespace brenvolt {
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

// The level of all points, or of the first and how far it reaches.
std::string Level(const std::vector<double>& levels, double deviation) {
  const auto [least, most] = std::ranges::minmax(levels);
  if (least == most) return Place(least, deviation);
  return Place(least, deviation) + " to " + Place(most, deviation);
}

void AddSignals(const CapabilityFindings& found, bool isLocation, std::vector<std::string>& texts) {
  const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
  for (std::size_t i = 0; i < std::min(chart.signals.size(), kMostSignals); ++i) {
    const ControlSignal& signal = chart.signals[i];
    texts.push_back(std::string(isLocation ? found.LocationTitle() : found.DispersionTitle()) + " " +
                    (isLocation ? found.names[signal.point] : found.DispersionName(signal.point)) + ": " +
                    found.RuleText(found.rules[signal.rule]) + " (rule " + std::to_string(signal.rule + 1) +
                    ")");
  }
  if (chart.signals.size() > kMostSignals)
    texts.push_back("and " + std::to_string(chart.signals.size() - kMostSignals) + " more");
}

class IndexTable {
 public:
  explicit IndexTable(const CapabilityFindings& found) : found_(found) {
    table_.AddText("Capability");
    for (const char* heading : {"Within", "Overall"}) table_.AddNumber(heading);
    if (found.fitted) table_.AddNumber("By percentiles");
    table_.AddNumber("Observed");
    AddIndices();
    AddParts();
  }
  ReportTable Table() && {
    for (ReportRow& row : table_.rows) row.cells.resize(table_.columns.size());
    return std::move(table_);
  }

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
  ReportTable table_;
};

}  // namespace

std::string MeasuredText(const CapabilityFindings& found) {
  std::string text =
      "n " + std::to_string(found.report.sample.count) + " of " + std::to_string(found.cases) + " cases";
  return found.subgroups.empty() ? text : text + ", " + SizesText(found);
}

std::string LimitsText(const CapabilityFindings& found) {
  return "LSL " + Given(found.limits.lower) + ", target " + Given(found.limits.target) + ", USL " +
         Given(found.limits.upper);
}

ReportTable ChartTable(const CapabilityFindings& found) {
  const double deviation = found.report.sample.overall;
  ReportTable table;
  table.AddText("Chart");
  for (const char* heading : {"Lower limit", "Centre", "Upper limit", "Points", "Signals"})
    table.AddNumber(heading);
  for (const bool isLocation : {true, false}) {
    const ControlChart& chart = isLocation ? found.charts.location : found.charts.dispersion;
    table.AddRow({isLocation ? found.LocationTitle() : found.DispersionTitle(), Level(chart.lower, deviation),
                  Level(chart.centre, deviation), Level(chart.upper, deviation),
                  std::to_string(chart.points.size()), std::to_string(chart.signals.size())});
  }
  return table;
}

std::vector<std::string> SignalTexts(const CapabilityFindings& found) {
  std::vector<std::string> texts;
  AddSignals(found, true, texts);
  AddSignals(found, false, texts);
  if (found.IsStable()) texts.push_back("No signal by the rules of " + found.rulesWord);
  return texts;
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
  std::string text = "Mean " + Place(found.report.sample.mean, found.report.sample.overall) +
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
  return others.empty() ? text : text + "; " + others;
}

std::string NormalityText(const CapabilityFindings& found) {
  return "A-D p-value of the fitted normal " +
         (IsNotSet(found.normality.pValue) ? std::string("-")
                                           : QuantityText(found.normality.pValue, Quantity::kPValue));
}

std::string PercentilesText(const FittedCapability& fitted, double deviation) {
  const PercentileCapability& points = fitted.percentiles;
  return "0.135 % " + Place(points.low, deviation) + ", 50 % " + Place(points.median, deviation) +
         ", 99.865 % " + Place(points.high, deviation);
}

ReportTable FigureTable(const CapabilityFindings& found) {
  return IndexTable(found).Table();
}

std::string ConfidenceText(const CapabilityFindings& found) {
  std::string text = "Intervals have a confidence of " + ReadableNumber(100 * found.confidence) + " %";
  if (found.limits.HasLower() && found.limits.HasUpper())
    text += "; that of all expected parts adds those of both limits, each of " +
            ReadableNumber(50 * (1 + found.confidence)) + " % (Bonferroni)";
  return text;
}

}  // namespace brenvolt
