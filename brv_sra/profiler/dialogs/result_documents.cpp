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
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"
#include "host/statistics/capability.h"
#include "host/statistics/frequency_table.h"
#include "host/statistics/percentiles.h"

namespace brenvolt::sra {
namespace {

constexpr double kConfidence = 0.95;
constexpr double kRejection = 0.05;  // of the normal distribution
constexpr std::array<double, 15> kPercents{0.135, 0.5, 1,  2.5,  5,  10,   25,    50,
                                           75,    90,  95, 97.5, 99, 99.5, 99.865};

double OrMissing(double value) {
  return IsNotSet(value) ? GetDefaultMDValue() : value;
}

// A table with a case for each name.
std::unique_ptr<Spreadsheet> NewTable(std::int32_t title, const Variable& response,
                                      std::vector<std::string> cases) {
  auto sheet = std::make_unique<Spreadsheet>(FormatResource(title, response.Name()), cases.size());
  sheet->SetTitle(sheet->Name());
  sheet->SetCaseNames(std::move(cases));
  return sheet;
}

void AddColumn(Spreadsheet& sheet, std::int32_t name, const std::function<double(std::size_t)>& value) {
  Variable column(std::string(ResourceString(name)), sheet.CaseCount());
  const auto cells = column.MutableValues();
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = OrMissing(value(i));
  sheet.AddVariable(std::move(column));
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
  std::int32_t name;
  double (*value)(const Capability& c);
  ConfidenceInterval CapabilityReport::*interval = nullptr;
};

// In the order of the table.
constexpr CapabilityRow kCapabilityRows[] = {
    {kResponseLowerLimit, [](const Capability& c) { return c.limits.lower; }},
    {kResponseTarget, [](const Capability& c) { return c.limits.target; }},
    {kResponseUpperLimit, [](const Capability& c) { return c.limits.upper; }},
    {kColumnCount, [](const Capability& c) { return static_cast<double>(c.report.sample.count); }},
    {kColumnMissing, [](const Capability& c) { return static_cast<double>(c.missing); }},
    {kColumnMean, [](const Capability& c) { return c.report.sample.mean; }},
    {kColumnStandardDeviation, [](const Capability& c) { return c.report.sample.overall; }},
    {kResponseWithinDeviation, [](const Capability& c) { return c.report.sample.within; }},
    {kResponseNormalPValue, [](const Capability& c) { return c.normalPValue; }},
    {kResponseCp, [](const Capability& c) { return c.report.within.potential; }, &CapabilityReport::cp},
    {kResponseCpl, [](const Capability& c) { return c.report.within.lower; }},
    {kResponseCpu, [](const Capability& c) { return c.report.within.upper; }},
    {kResponseCpk, [](const Capability& c) { return c.report.within.least; }, &CapabilityReport::cpk},
    {kResponseCpm, [](const Capability& c) { return c.report.cpm; }},
    {kResponsePp, [](const Capability& c) { return c.report.overall.potential; }, &CapabilityReport::pp},
    {kResponsePpl, [](const Capability& c) { return c.report.overall.lower; }},
    {kResponsePpu, [](const Capability& c) { return c.report.overall.upper; }},
    {kResponsePpk, [](const Capability& c) { return c.report.overall.least; }, &CapabilityReport::ppk},
    {kResponseObservedBelow, [](const Capability& c) { return c.report.observed.below; }},
    {kResponseObservedAbove, [](const Capability& c) { return c.report.observed.above; }},
    {kResponseObservedTotal, [](const Capability& c) { return c.report.observed.total; }},
    {kResponseWithinBelow, [](const Capability& c) { return c.report.expectedWithin.below; }},
    {kResponseWithinAbove, [](const Capability& c) { return c.report.expectedWithin.above; }},
    {kResponseWithinTotal, [](const Capability& c) { return c.report.expectedWithin.total; }},
    {kResponseOverallBelow, [](const Capability& c) { return c.report.expectedOverall.below; }},
    {kResponseOverallAbove, [](const Capability& c) { return c.report.expectedOverall.above; }},
    {kResponseOverallTotal, [](const Capability& c) { return c.report.expectedOverall.total; }},
    {kResponseLowPoint, [](const Capability& c) { return c.percentile.low; }},
    {kResponseMedianPoint, [](const Capability& c) { return c.percentile.median; }},
    {kResponseHighPoint, [](const Capability& c) { return c.percentile.high; }},
    {kResponsePercentilePp, [](const Capability& c) { return c.percentile.indices.potential; }},
    {kResponsePercentilePpl, [](const Capability& c) { return c.percentile.indices.lower; }},
    {kResponsePercentilePpu, [](const Capability& c) { return c.percentile.indices.upper; }},
    {kResponsePercentilePpk, [](const Capability& c) { return c.percentile.indices.least; }},
    {kResponsePercentileBelow, [](const Capability& c) { return c.percentile.expected.below; }},
    {kResponsePercentileAbove, [](const Capability& c) { return c.percentile.expected.above; }},
    {kResponsePercentileTotal, [](const Capability& c) { return c.percentile.expected.total; }}};

// The best fit where the normal distribution is another and is rejected; null otherwise.
const DistributionFit* BestInsteadOfNormal(const VariableFit& fit) {
  const auto best = DefaultFit(fit.fits, fit.ranked);
  if (!best || fit.fits[*best].specification.code == DistributionCode::kNormal) return nullptr;
  const double pValue = NormalPValue(fit);
  return !IsNotSet(pValue) && pValue < kRejection ? &fit.fits[*best] : nullptr;
}

PercentileCapability PercentilesOf(const DistributionFit& fit, const SpecificationLimits& limits) {
  const SpecifiedDistribution distribution(fit.specification);
  return AnalysePercentiles({[&distribution](double p) { return distribution.Quantile(p); },
                             [&distribution](double x) { return distribution.Cdf(x); },
                             [&distribution](double x) { return distribution.Complement(x); }},
                            limits);
}

// The distribution that a row is of: a text in the rows by percentiles.
Variable DescriptionColumn(const DistributionFit* best) {
  Variable column(std::string(ResourceString(kColumnDescription)), std::size(kCapabilityRows));
  column.SetType(VariableType::kText);
  const auto cells = column.MutableValues();
  std::ranges::fill(cells, GetDefaultMDValue());
  if (best == nullptr) return column;
  const DistributionSpecification& specification = best->specification;
  column.SetLabel(1, Description(specification.code, specification.values));
  const auto* first = std::ranges::find(kCapabilityRows, kResponseLowPoint, &CapabilityRow::name);
  for (auto i = static_cast<std::size_t>(first - kCapabilityRows); i < cells.size(); ++i) cells[i] = 1;
  return column;
}

std::unique_ptr<Spreadsheet> StatisticsTable(const SimulatedResponse& response) {
  const Moments moments = MomentsOf(response);
  auto sheet = NewTable(kResponseTitleStatistics, response.Column(), {response.Column().Name()});
  AddColumn(*sheet, kColumnCount, [&](std::size_t) { return static_cast<double>(moments.count); });
  AddColumn(*sheet, kColumnMissing, [&](std::size_t) { return static_cast<double>(moments.missing); });
  for (const MomentColumn& column : MomentColumns()) {
    AddColumn(*sheet, column.name, [&](std::size_t) {
      return column.ExistsFor(moments) ? moments.*column.member : GetDefaultMDValue();
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
  AddColumn(*sheet, kColumnPearson, [&](std::size_t i) { return rows[i].linear.coefficient; });
  AddColumn(*sheet, kResponsePearsonPValue, [&](std::size_t i) { return rows[i].linear.pValue; });
  AddColumn(*sheet, kColumnSpearman, [&](std::size_t i) { return rows[i].rank.coefficient; });
  AddColumn(*sheet, kResponseSpearmanPValue, [&](std::size_t i) { return rows[i].rank.pValue; });
  return sheet;
}

std::unique_ptr<Spreadsheet> PercentileTable(const SimulatedResponse& response,
                                             std::span<const double> sorted) {
  std::vector<PercentileEstimate> estimates;
  std::vector<std::string> names;
  for (const double percent : kPercents) {
    estimates.push_back(EstimatePercentile(sorted, percent, kConfidence));
    names.push_back(std::string(ResourceString(kColumnPercentile)) + ShortestNumber(percent));
  }
  auto sheet = NewTable(kResponseTitlePercentiles, response.Column(), std::move(names));
  AddColumn(*sheet, kColumnValue, [&](std::size_t i) { return estimates[i].value; });
  AddColumn(*sheet, kResponseLowerConfidence, [&](std::size_t i) { return estimates[i].lower; });
  AddColumn(*sheet, kResponseUpperConfidence, [&](std::size_t i) { return estimates[i].upper; });
  AddColumn(*sheet, kResponseCoverage, [&](std::size_t i) { return estimates[i].coverage; });
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
  AddColumn(*sheet, kResponseClassFrom, [&](std::size_t i) { return classes[i].from; });
  AddColumn(*sheet, kResponseClassTo, [&](std::size_t i) { return classes[i].to; });
  AddColumn(*sheet, kResponseClassCount,
            [&](std::size_t i) { return static_cast<double>(classes[i].count); });
  AddColumn(*sheet, kResponseClassCumulativeCount,
            [&](std::size_t i) { return static_cast<double>(classes[i].cumulativeCount); });
  AddColumn(*sheet, kResponseClassPercent, [&](std::size_t i) { return classes[i].percent; });
  AddColumn(*sheet, kResponseClassCumulativePercent,
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
  AddColumn(*sheet, kColumnSpearman, [&](std::size_t i) { return rows[i].rank.coefficient; });
  AddColumn(*sheet, kResponseRankContribution, [&](std::size_t i) { return rows[i].rankContribution; });
  AddColumn(*sheet, kResponseStandardizedCoefficient,
            [&](std::size_t i) { return rows[i].standardizedCoefficient; });
  AddColumn(*sheet, kResponseLinearContribution, [&](std::size_t i) { return rows[i].linearContribution; });
  AddColumn(*sheet, kResponseFirstOrder, [&](std::size_t i) { return rows[i].firstOrder; });
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
  VariableFit fit = std::move(ValueOrThrow(RunFit(single, specification, {false, false}, bars)).front());
  return fit.HasValidFit() ? fit : none;
}

std::unique_ptr<Spreadsheet> CapabilityDocument(const SimulatedResponse& response, const VariableFit& fit) {
  const std::vector<double> values = ResponseValues(response);
  Capability capability;
  capability.limits = response.limits;
  capability.report = AnalyseCapability(values, response.limits, kConfidence);
  capability.missing = static_cast<std::int64_t>(values.size()) - capability.report.sample.count;
  capability.normalPValue = NormalPValue(fit);
  const DistributionFit* best = BestInsteadOfNormal(fit);
  if (best != nullptr) capability.percentile = PercentilesOf(*best, response.limits);

  std::vector<std::string> names;
  for (const CapabilityRow& row : kCapabilityRows) names.emplace_back(ResourceString(row.name));
  auto sheet = NewTable(kResponseTitleCapability, response.Column(), std::move(names));
  const auto limit = [&](std::size_t i, double ConfidenceInterval::*side) {
    const auto interval = kCapabilityRows[i].interval;
    return interval == nullptr ? GetDefaultMDValue() : capability.report.*interval.*side;
  };
  AddColumn(*sheet, kColumnValue, [&](std::size_t i) { return kCapabilityRows[i].value(capability); });
  AddColumn(*sheet, kResponseLowerConfidence,
            [&](std::size_t i) { return limit(i, &ConfidenceInterval::lower); });
  AddColumn(*sheet, kResponseUpperConfidence,
            [&](std::size_t i) { return limit(i, &ConfidenceInterval::upper); });
  sheet->AddVariable(DescriptionColumn(best));
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
