#include "brv_sra/profiler/dialogs/result_documents.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/dialogs/fit_documents.h"
#include "brv_sra/fitting/fit_run.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/profiler/best_fit_candidates.h"
#include "brv_sra/profiler/dialogs/response_values.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/result_sheet.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"
#include "host/statistics/capability.h"
#include "host/statistics/frequency_table.h"
#include "host/statistics/normality.h"
#include "host/statistics/percentiles.h"

namespace brenvolt::sra {
namespace {

constexpr double kConfidence = 0.95;
constexpr double kRejection = 0.05;  // of the normal distribution
constexpr std::array<double, 15> kPercents{0.135, 0.5, 1,  2.5,  5,  10,   25,    50,
                                           75,    90,  95, 97.5, 99, 99.5, 99.865};

// A table about the response, with a case for each name.
std::unique_ptr<Spreadsheet> NewTable(std::int32_t title, const Variable& response,
                                      std::vector<std::string> cases) {
  return NewResultSheet(FormatResource(title, response.Name()), std::move(cases));
}

void AddNote(Spreadsheet& sheet, std::string_view note) {
  sheet.SetTitle(sheet.Title() + "\n" + std::string(note));
}

// Says why a table has no confidence limits or p-values if it has none.
void ExplainLimits(const SimulatedResponse& response, Spreadsheet& sheet) {
  if (!response.independent) AddNote(sheet, ResourceString(kResponseNoIntervals));
}

// What is not set is missing.
void AddNumbers(Spreadsheet& sheet, const ResultColumn& column, const CellNumber& value) {
  AddColumn(sheet, column, [&](std::size_t i) { return OrMissing(value(i)); });
}

// What the rows of the capability table are taken from.
struct Capability {
  SpecificationLimits limits;
  std::int64_t missing = 0;
  CapabilityReport report;
  double normalPValue = kNotSet;
  PercentileCapability percentile;
};

struct CapabilityRow {
  const ResultColumn& statistic;
  double (*value)(const Capability& c);
  ConfidenceInterval (*interval)(const CapabilityReport& report) = nullptr;
};

// In the order of the table.
constexpr CapabilityRow kCapabilityRows[] = {
    {"lsl"_column, [](const Capability& c) { return c.limits.lower; }},
    {"target"_column, [](const Capability& c) { return c.limits.target; }},
    {"usl"_column, [](const Capability& c) { return c.limits.upper; }},
    {"n"_column, [](const Capability& c) { return static_cast<double>(c.report.sample.count); }},
    {"missing"_column, [](const Capability& c) { return static_cast<double>(c.missing); }},
    {"mean"_column, [](const Capability& c) { return c.report.sample.mean; }},
    {"overall_deviation"_column, [](const Capability& c) { return c.report.sample.overall; }},
    {"within_deviation"_column, [](const Capability& c) { return c.report.sample.within; }},
    {"normal_p"_column, [](const Capability& c) { return c.normalPValue; }},
    {"cp"_column, [](const Capability& c) { return c.report.within.potential; },
     [](const CapabilityReport& r) { return r.withinIntervals.potential; }},
    {"cpl"_column, [](const Capability& c) { return c.report.within.lower; },
     [](const CapabilityReport& r) { return r.withinIntervals.lower; }},
    {"cpu"_column, [](const Capability& c) { return c.report.within.upper; },
     [](const CapabilityReport& r) { return r.withinIntervals.upper; }},
    {"cpk"_column, [](const Capability& c) { return c.report.within.least; },
     [](const CapabilityReport& r) { return r.withinIntervals.least; }},
    {"cpm"_column, [](const Capability& c) { return c.report.cpm; }},
    {"pp"_column, [](const Capability& c) { return c.report.overall.potential; },
     [](const CapabilityReport& r) { return r.overallIntervals.potential; }},
    {"ppl"_column, [](const Capability& c) { return c.report.overall.lower; },
     [](const CapabilityReport& r) { return r.overallIntervals.lower; }},
    {"ppu"_column, [](const Capability& c) { return c.report.overall.upper; },
     [](const CapabilityReport& r) { return r.overallIntervals.upper; }},
    {"ppk"_column, [](const Capability& c) { return c.report.overall.least; },
     [](const CapabilityReport& r) { return r.overallIntervals.least; }},
    {"observed_below"_column, [](const Capability& c) { return c.report.observed.below; },
     [](const CapabilityReport& r) { return r.observedIntervals.below; }},
    {"observed_above"_column, [](const Capability& c) { return c.report.observed.above; },
     [](const CapabilityReport& r) { return r.observedIntervals.above; }},
    {"observed_total"_column, [](const Capability& c) { return c.report.observed.total; },
     [](const CapabilityReport& r) { return r.observedIntervals.total; }},
    {"within_below"_column, [](const Capability& c) { return c.report.expectedWithin.below; },
     [](const CapabilityReport& r) { return r.expectedWithinIntervals.below; }},
    {"within_above"_column, [](const Capability& c) { return c.report.expectedWithin.above; },
     [](const CapabilityReport& r) { return r.expectedWithinIntervals.above; }},
    {"within_total"_column, [](const Capability& c) { return c.report.expectedWithin.total; },
     [](const CapabilityReport& r) { return r.expectedWithinIntervals.total; }},
    {"overall_below"_column, [](const Capability& c) { return c.report.expectedOverall.below; },
     [](const CapabilityReport& r) { return r.expectedOverallIntervals.below; }},
    {"overall_above"_column, [](const Capability& c) { return c.report.expectedOverall.above; },
     [](const CapabilityReport& r) { return r.expectedOverallIntervals.above; }},
    {"overall_total"_column, [](const Capability& c) { return c.report.expectedOverall.total; },
     [](const CapabilityReport& r) { return r.expectedOverallIntervals.total; }},
    {"low_point"_column, [](const Capability& c) { return c.percentile.low; }},
    {"median_point"_column, [](const Capability& c) { return c.percentile.median; }},
    {"high_point"_column, [](const Capability& c) { return c.percentile.high; }},
    {"percentile_pp"_column, [](const Capability& c) { return c.percentile.indices.potential; }},
    {"percentile_ppl"_column, [](const Capability& c) { return c.percentile.indices.lower; }},
    {"percentile_ppu"_column, [](const Capability& c) { return c.percentile.indices.upper; }},
    {"percentile_ppk"_column, [](const Capability& c) { return c.percentile.indices.least; }},
    {"percentile_below"_column, [](const Capability& c) { return c.percentile.expected.below; }},
    {"percentile_above"_column, [](const Capability& c) { return c.percentile.expected.above; }},
    {"percentile_total"_column, [](const Capability& c) { return c.percentile.expected.total; }}};

bool IsRejected(double normalPValue) {
  return !IsNotSet(normalPValue) && normalPValue < kRejection;
}

// The best fit where the normal distribution is another and is rejected; null otherwise.
const DistributionFit* BestInsteadOfNormal(const VariableFit& fit, double normalPValue) {
  const auto best = DefaultFit(fit.fits, fit.ranked);
  if (!best || fit.fits[*best].specification.code == DistributionCode::kNormal) return nullptr;
  return IsRejected(normalPValue) ? &fit.fits[*best] : nullptr;
}

bool IsOutside(double value, const ConfidenceInterval& interval) {
  return !IsNotSet(value) && !IsNotSet(interval.lower) && (value < interval.lower || value > interval.upper);
}

// Whether the values contradict what the fitted distribution expects beyond a limit.
bool IsTailMissed(const Capability& capability) {
  const PartsPerMillion& expected = capability.percentile.expected;
  const PartsIntervals& observed = capability.report.observedIntervals;
  return IsOutside(expected.below, observed.below) || IsOutside(expected.above, observed.above);
}

// What has to be known of the indices and parts per million of a response that is not normal.
void ExplainRejection(const SimulatedResponse& response, const Capability& capability, bool hasPercentiles,
                      Spreadsheet& sheet) {
  const std::string& name = response.Column().Name();
  if (hasPercentiles && response.independent)
    AddNote(sheet, FormatResource(kResponsePercentilesNoLimits, name));
  if (!IsRejected(capability.normalPValue)) return;
  if (IsNotSet(capability.percentile.median)) AddNote(sheet, FormatResource(kResponseNotNormal, name));
  AddNote(sheet, FormatResource(kResponseWithinNotNormal, name));
  if (IsTailMissed(capability)) AddNote(sheet, FormatResource(kResponseTailNotFitted, name));
}

// Codes of classes are no measurements, and a few values have no density.
bool HasDensity(const SimulatedResponse& response, std::span<const double> values) {
  return response.Column().Type() != VariableType::kText && !HasFewValues(SortedValues(values));
}

// What holds for any distribution.
CapabilityReport ObservedOnly(const CapabilityReport& report) {
  CapabilityReport observed;
  observed.sample = report.sample;
  observed.observed = report.observed;
  observed.observedIntervals = report.observedIntervals;
  return observed;
}

PercentileCapability PercentilesOf(const DistributionFit& fit, const SpecificationLimits& limits) {
  const SpecifiedDistribution distribution(fit.specification);
  return *AnalysePercentiles({[&distribution](double p) { return distribution.Quantile(p); },
                              [&distribution](double x) { return distribution.Cdf(x); },
                              [&distribution](double x) { return distribution.Complement(x); }},
                             limits);
}

// The distribution that a row is of: a text in the rows by percentiles.
void AddDescriptionColumn(Spreadsheet& sheet, const DistributionFit* best) {
  const auto isFirst = [](const CapabilityRow& row) { return &row.statistic == &"low_point"_column; };
  const auto first =
      static_cast<std::size_t>(std::ranges::find_if(kCapabilityRows, isFirst) - kCapabilityRows);
  AddNumbers(sheet, "description"_column,
             [&](std::size_t i) { return best != nullptr && i >= first ? 1 : GetDefaultMDValue(); });
  Variable& column = sheet.VariableAt(sheet.VariableCount() - 1);
  column.SetType(VariableType::kText);
  if (best == nullptr) return;
  column.SetLabel(1, Description(best->specification.code, best->specification.values));
}

std::unique_ptr<Spreadsheet> StatisticsTable(const SimulatedResponse& response) {
  const Moments moments = MomentsOf(response);
  auto sheet = NewTable(kResponseTitleStatistics, response.Column(), {response.Column().Name()});
  AddNumbers(*sheet, "n"_column, [&](std::size_t) { return static_cast<double>(moments.count); });
  AddNumbers(*sheet, "missing"_column, [&](std::size_t) { return static_cast<double>(moments.missing); });
  // The codes of classes are no measurements.
  const bool isOfClasses = response.Column().Type() == VariableType::kText;
  for (const MomentColumn& moment : MomentColumns()) {
    AddNumbers(*sheet, moment.column, [&](std::size_t) {
      return !isOfClasses && moment.ExistsFor(moments) ? moments.*moment.member : GetDefaultMDValue();
    });
  }
  return sheet;
}

std::vector<std::string> PredictorNames(const SimulatedResponse& response) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < response.predictors; ++i) names.push_back(response.sheet.VariableAt(i).Name());
  return names;
}

std::unique_ptr<Spreadsheet> CorrelationTable(const SimulatedResponse& response,
                                              const SensitivityTable& sensitivity) {
  std::vector<SensitivityRow> rows = sensitivity.rows;
  std::ranges::sort(rows, {}, &SensitivityRow::predictor);
  auto sheet = NewTable(kResponseTitleCorrelations, response.Column(), PredictorNames(response));
  const auto pValue = [&](const CorrelationTest& test) {
    return response.independent ? test.pValue : kNotSet;
  };
  AddNumbers(*sheet, "pearson"_column, [&](std::size_t i) { return rows[i].linear.coefficient; });
  AddNumbers(*sheet, "pearson_p"_column, [&](std::size_t i) { return pValue(rows[i].linear); });
  AddNumbers(*sheet, "spearman"_column, [&](std::size_t i) { return rows[i].rank.coefficient; });
  AddNumbers(*sheet, "spearman_p"_column, [&](std::size_t i) { return pValue(rows[i].rank); });
  ExplainLimits(response, *sheet);
  return sheet;
}

std::unique_ptr<Spreadsheet> PercentileTable(const SimulatedResponse& response,
                                             std::span<const double> sorted) {
  std::vector<PercentileEstimate> estimates;
  std::vector<std::string> names;
  std::vector<std::string> identifiers;
  for (const double percent : kPercents) {
    estimates.push_back(response.independent ? EstimatePercentile(sorted, percent, kConfidence)
                                             : PercentileEstimate{.value = Percentile(sorted, percent)});
    names.push_back(std::string(ResourceString("percentile"_column.heading)) + ShortestNumber(percent));
    identifiers.push_back(NumberedIdentifier("percentile"_column, ShortestNumber(percent)));
  }
  auto sheet = NewTable(kResponseTitlePercentiles, response.Column(), std::move(names));
  sheet->SetCaseIdentifiers(std::move(identifiers));
  AddNumbers(*sheet, "value"_column, [&](std::size_t i) { return estimates[i].value; });
  AddNumbers(*sheet, "lower"_column, [&](std::size_t i) { return estimates[i].lower; });
  AddNumbers(*sheet, "upper"_column, [&](std::size_t i) { return estimates[i].upper; });
  AddNumbers(*sheet, "coverage"_column, [&](std::size_t i) { return estimates[i].coverage; });
  ExplainLimits(response, *sheet);
  return sheet;
}

std::unique_ptr<Spreadsheet> FrequencySheet(const SimulatedResponse& response,
                                            std::span<const double> sorted) {
  const std::vector<FrequencyClass> classes = FrequencyTable(sorted);
  std::vector<std::string> names;
  for (const FrequencyClass& one : classes) {
    const auto label = one.from == one.to ? response.Column().Label(one.from) : std::nullopt;
    names.push_back(label ? std::string(*label) : std::to_string(names.size() + 1));
  }
  auto sheet = NewTable(kResponseTitleFrequencies, response.Column(), std::move(names));
  AddNumbers(*sheet, "from"_column, [&](std::size_t i) { return classes[i].from; });
  AddNumbers(*sheet, "to"_column, [&](std::size_t i) { return classes[i].to; });
  AddNumbers(*sheet, "count"_column, [&](std::size_t i) { return static_cast<double>(classes[i].count); });
  AddNumbers(*sheet, "cumulative_count"_column,
             [&](std::size_t i) { return static_cast<double>(classes[i].cumulativeCount); });
  AddNumbers(*sheet, "percent"_column, [&](std::size_t i) { return classes[i].percent; });
  AddNumbers(*sheet, "cumulative_percent"_column,
             [&](std::size_t i) { return classes[i].cumulativePercent; });
  return sheet;
}

// The last row is that of all predictors together: its linear contribution is R squared.
std::unique_ptr<Spreadsheet> SensitivitySheet(const SimulatedResponse& response,
                                              const SensitivityTable& sensitivity) {
  std::vector<std::string> names;
  for (const SensitivityRow& row : sensitivity.rows) {
    names.push_back(response.sheet.VariableAt(row.predictor).Name());
  }
  names.emplace_back(ResourceString(kResponseAllPredictors));
  std::vector<SensitivityRow> rows = sensitivity.rows;
  rows.emplace_back();
  rows.back().linearContribution = sensitivity.rSquared;
  const bool anyContributes = !IsNotSet(rows.front().rankContribution);
  if (anyContributes && rows.size() > 1) rows.back().rankContribution = 1;
  auto sheet = NewTable(kResponseTitleSensitivity, response.Column(), std::move(names));
  AddNumbers(*sheet, "rank_correlation"_column, [&](std::size_t i) { return rows[i].rank.coefficient; });
  AddNumbers(*sheet, "contribution_to_variance"_column,
             [&](std::size_t i) { return rows[i].rankContribution; });
  AddNumbers(*sheet, "standardized_coefficient"_column,
             [&](std::size_t i) { return rows[i].standardizedCoefficient; });
  AddNumbers(*sheet, "linear_contribution"_column, [&](std::size_t i) { return rows[i].linearContribution; });
  AddNumbers(*sheet, "first_order"_column, [&](std::size_t i) { return rows[i].firstOrder; });
  return sheet;
}

}  // namespace

VariableFit FitResponse(const SimulatedResponse& response, const RunProgress& bars) {
  const std::vector<double> values = ResponseValues(response);
  const std::vector<double> sorted = SortedValues(values);
  VariableFit none;
  none.name = response.Column().Name();
  none.moments = MomentsOf(response);
  none.invalid = true;
  if (HasFewValues(sorted)) return none;
  Spreadsheet single(none.name, values.size());
  Variable column(none.name, values.size());
  column.AssignValues(values);
  single.AddVariable(std::move(column));
  FitSpecification specification;
  specification.continuous = {1};
  specification.continuousSpecifications = {BestFitCandidates()};
  specification.contradictedLast = true;
  VariableFit fit = std::move(ValueOrThrow(RunFit(single, specification, {false, false}, bars)).front());
  return fit.HasValidFit() ? fit : none;
}

std::unique_ptr<Spreadsheet> CapabilityDocument(const SimulatedResponse& response, const VariableFit& fit) {
  const std::vector<double> values = ResponseValues(response);
  Capability capability;
  capability.limits = response.limits;
  capability.report = *AnalyseCapability(values, response.limits, kConfidence);
  const bool isOfFewValues = capability.report.sample.count > 0 && !HasDensity(response, values);
  if (isOfFewValues) capability.report = ObservedOnly(capability.report);
  capability.missing = static_cast<std::int64_t>(values.size()) - capability.report.sample.count;
  // Nothing is said of a response of few different values, to which no distribution was fitted.
  if (!fit.invalid && !isOfFewValues) capability.normalPValue = TestNormality(values).pValue;
  const DistributionFit* best = BestInsteadOfNormal(fit, capability.normalPValue);
  if (best != nullptr) capability.percentile = PercentilesOf(*best, response.limits);

  std::vector<std::string> names;
  std::vector<std::string> identifiers;
  for (const CapabilityRow& row : kCapabilityRows) {
    names.emplace_back(ResourceString(row.statistic.heading));
    identifiers.emplace_back(row.statistic.identifier);
  }
  auto sheet = NewTable(kResponseTitleCapability, response.Column(), std::move(names));
  sheet->SetCaseIdentifiers(std::move(identifiers));
  Capability shown = capability;
  if (!response.independent) shown.normalPValue = kNotSet;
  const auto limit = [&](std::size_t i, double ConfidenceInterval::*side) {
    const auto interval = kCapabilityRows[i].interval;
    return interval == nullptr || !response.independent ? kNotSet : interval(capability.report).*side;
  };
  AddNumbers(*sheet, "value"_column, [&](std::size_t i) { return kCapabilityRows[i].value(shown); });
  AddNumbers(*sheet, "lower"_column, [&](std::size_t i) { return limit(i, &ConfidenceInterval::lower); });
  AddNumbers(*sheet, "upper"_column, [&](std::size_t i) { return limit(i, &ConfidenceInterval::upper); });
  AddDescriptionColumn(*sheet, best);
  ExplainLimits(response, *sheet);
  if (isOfFewValues) AddNote(*sheet, FormatResource(kResponseOfFewValues, response.Column().Name()));
  ExplainRejection(response, capability, best != nullptr, *sheet);
  return sheet;
}

std::vector<std::unique_ptr<Spreadsheet>> SummaryDocuments(const SimulatedResponse& response) {
  const std::vector<double> sorted = SortedValues(ResponseValues(response));
  const SensitivityTable sensitivity = ResponseSensitivity(response);
  std::vector<std::unique_ptr<Spreadsheet>> documents(kSummaryDocuments);
  const auto put = [&](SummaryDocument which, std::unique_ptr<Spreadsheet> document) {
    documents[static_cast<std::size_t>(which)] = std::move(document);
  };
  put(SummaryDocument::kStatistics, StatisticsTable(response));
  put(SummaryDocument::kCorrelations, CorrelationTable(response, sensitivity));
  put(SummaryDocument::kPercentiles, PercentileTable(response, sorted));
  put(SummaryDocument::kFrequencies, FrequencySheet(response, sorted));
  put(SummaryDocument::kSensitivity, SensitivitySheet(response, sensitivity));
  return documents;
}

}  // namespace brenvolt::sra
