#include "host/jobs/measured/capability_job.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/base/number_text.h"
#include "host/base/process/interruption.h"
#include "host/base/quoted.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/range_check.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/base/specification_check.h"
#include "host/jobs/fit_job.h"
#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"
#include "host/jobs/measured/capability_plots.h"
#include "host/jobs/notation/distribution_notation.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

// Beyond some eight values a range wastes much of what they tell (Montgomery 2013, section 6.3).
constexpr std::size_t kMostForRanges = 8;
// The p-value below which values are not normal.
constexpr double kLevel = 0.05;

// A measured value with its case.
struct Part {
  std::size_t place;  // from 0
  double value;
};
struct Subgroup {
  std::string name;
  std::vector<double> values;
};

std::string Count(std::size_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

const Variable& ResponseIn(const Spreadsheet& sheet, const std::string& name) {
  const auto number = NumbersOf(sheet, {&name, 1}, "response").front();
  const Variable& variable = sheet.VariableAt(static_cast<std::size_t>(number - 1));
  if (variable.Type() == VariableType::kText)
    throw WrongJob("response", Quoted(name) + " is a text variable; capability is that of numbers");
  return variable;
}

std::vector<Part> PartsOf(const Spreadsheet& sheet, const Variable& response) {
  std::vector<Part> parts;
  for (std::size_t i = 0; i < response.Size(); ++i) {
    if (sheet.IsCaseSelected(i) && !response.IsMissing(i)) parts.push_back({i, response.Values()[i]});
  }
  return parts;
}

void RequireValues(const std::string& name, const std::vector<Part>& parts) {
  if (parts.size() < 2)
    throw WrongJob("response", Quoted(name) + " has " + Count(parts.size(), "value", "values") +
                                   "; at least 2 are needed");
  if (!std::ranges::all_of(parts, [](const Part& part) { return std::isfinite(part.value); }))
    throw WrongJob("response", Quoted(name) + " has an infinite value");
  if (std::ranges::all_of(parts, [&](const Part& part) { return part.value == parts.front().value; }))
    throw WrongJob("response", Quoted(name) + ": all " + std::to_string(parts.size()) + " values are " +
                                   ShortestNumber(parts.front().value) +
                                   ", so there is no deviation to judge by");
}

// A column groups the cases that have one value there, wherever they stand, in the order of their first.
std::vector<Subgroup> GroupsByColumn(const std::vector<Part>& parts, const Variable& column,
                                     std::vector<std::string>& notes) {
  std::vector<Subgroup> groups;
  std::map<double, std::size_t> places;
  std::size_t without = 0;
  for (const Part& part : parts) {
    if (column.IsMissing(part.place)) {
      ++without;
      continue;
    }
    const double value = column.Values()[part.place];
    const auto [place, isNew] = places.try_emplace(value, groups.size());
    if (isNew) {
      const auto label = column.Label(value);
      groups.push_back({label ? std::string(*label) : ShortestNumber(value), {}});
    }
    groups[place->second].values.push_back(part.value);
  }
  if (without > 0)
    notes.push_back(Count(without, "value has", "values have") + " no subgroup in " + Quoted(column.Name()) +
                    " and take no part in the charts and the deviation within");
  return groups;
}

// So many cases in a row, of which those without a value leave a smaller subgroup.
std::vector<Subgroup> GroupsBySize(const std::vector<Part>& parts, std::size_t size) {
  std::vector<Subgroup> groups;
  std::size_t former = 0;
  for (const Part& part : parts) {
    const std::size_t number = part.place / size + 1;
    if (number != former) groups.push_back({std::to_string(number), {}});
    former = number;
    groups.back().values.push_back(part.value);
  }
  return groups;
}

// A whole number that a person gave for the size of subgroups; nothing for another text.
std::optional<double> SizeIn(const std::string& subgroup) {
  return ParseNumber(Trim(subgroup));
}

std::vector<Subgroup> GroupsOf(const std::string& subgroup, const Spreadsheet& sheet,
                               const std::vector<Part>& parts, std::vector<std::string>& notes) {
  if (const auto column = sheet.FindVariable(subgroup))
    return GroupsByColumn(parts, sheet.VariableAt(*column), notes);
  const auto size = SizeIn(subgroup);
  if (!size) NumbersOf(sheet, {&subgroup, 1}, "subgroup");
  JobFaults faults;
  if (*size == 1)
    faults.push_back(
        {"subgroup", "subgroups of 1 value have no deviation within; leave this out for single values"});
  else
    CheckWholeNumber("subgroup", *size, 2, static_cast<double>(parts.size()), faults);
  RequireNone(std::move(faults));
  return GroupsBySize(parts, static_cast<std::size_t>(*size));
}

// Those of two values or more, with their names.
void TakeGroups(const std::vector<Subgroup>& groups, CapabilityFindings& found) {
  for (const Subgroup& group : groups) {
    if (group.values.size() < 2) continue;
    found.names.push_back(group.name);
    found.subgroups.push_back(DescribeSubgroup(group.values));
  }
  if (found.subgroups.empty())
    throw WrongJob("subgroup", "no subgroup has two values or more; leave this out for single values");
  const std::size_t single = groups.size() - found.subgroups.size();
  if (single > 0)
    found.notes.push_back(Count(single, "subgroup of 1 value takes", "subgroups of 1 value take") +
                          " no part in the charts and the deviation within");
  if (std::ranges::all_of(found.subgroups, [](const auto& one) { return one.range == 0; }))
    throw WrongJob("subgroup", "all values within each subgroup are equal, so there is no deviation within");
}

std::string ChartFor(const CapabilityFindings& found) {
  if (found.subgroups.empty()) return "i-mr";
  const bool isSmall =
      std::ranges::all_of(found.subgroups, [](const auto& one) { return one.count <= kMostForRanges; });
  return isSmall ? "x-bar-r" : "x-bar-s";
}

void DrawCharts(const std::vector<Part>& parts, CapabilityFindings& found) {
  if (found.chartWord != "i-mr") {
    found.charts = SubgroupCharts(found.subgroups,
                                  found.chartWord == "x-bar-r" ? Dispersion::kRange : Dispersion::kDeviation,
                                  found.rules);
    return;
  }
  found.names.clear();
  for (const Part& part : parts) found.names.push_back(std::to_string(part.place + 1));
  found.charts = IndividualCharts(found.values, found.rules);
}

DeviationEstimate ChosenWithin(const CapabilityFindings& found) {
  if (found.withinWord == "r-bar") return found.within.ranges;
  if (found.withinWord == "s-bar") return found.within.deviations;
  if (found.withinWord == "pooled") return found.within.pooled;
  return found.movingRange;
}

// Shows nothing: the reader of a job sees what its fit gave.
class QuietInterface : public ProgramInterface {
 public:
  void ShowProgress(std::string_view /*caption*/, std::int64_t /*done*/, std::int64_t /*total*/) override {}
  void EndProgress() override {}
  bool IsExternallyCancelled() override { return InterruptionRequested(); }
};

// The best fit of a ranking of all continuous distributions, or the fit of the one that is named.
std::optional<FittedDistribution> FitOf(const CapabilityFindings& found, const CapabilityJob& asked) {
  Spreadsheet sheet("values");
  Variable variable(found.response, found.values.size());
  variable.AssignValues(found.values);
  sheet.AddVariable(std::move(variable));
  QuietInterface quiet;
  std::unique_ptr<AnalysisSession> session;
  const auto start = [&]() -> AnalysisSession& {
    session = std::make_unique<AnalysisSession>(quiet, sheet);
    return *session;
  };
  FitJob job;
  job.variables.continuous = {found.response};
  if (asked.distribution) job.distributions = {*asked.distribution};
  job.rankBy = asked.rankBy;
  JobRecorder none;
  try {
    job.Run({sheet, nullptr, &sheet, start}, none);
  } catch (const JobFailed&) {
    if (InterruptionRequested()) throw;
    return std::nullopt;
  }
  const auto variables = ReadFitResults(*session->Dialog(), Covariances::kLeftOut);
  const FittedDistribution* best = variables.empty() ? nullptr : variables.front().Best();
  return best == nullptr ? std::nullopt : std::optional(*best);
}

PercentileCapability PercentilesOf(const FittedValues& fit, const SpecificationLimits& limits) {
  const AnyDistribution distribution(fit.code, fit.values, fit.offset);
  const ProcessDistribution process{[&](double p) { return distribution.Quantile(p); },
                                    [&](double x) { return distribution.Cdf(x); },
                                    [&](double x) { return distribution.Complement(x); }};
  return *AnalysePercentiles(process, limits);
}

// The interval of one of the figures, from those of bootstrapped fits. A figure that one of them lacks has none.
template <class Figure>
ConfidenceInterval IntervalOf(const std::vector<PercentileCapability>& fits, double confidence,
                              const Figure& figure) {
  std::vector<double> values;
  for (const PercentileCapability& one : fits) values.push_back(figure(one));
  if (std::ranges::any_of(values, [](double x) { return IsNotSet(x) || !std::isfinite(x); })) return {};
  return PercentileInterval(std::move(values), confidence);
}

PercentileIntervals IntervalsOf(const std::vector<PercentileCapability>& fits, double confidence) {
  const auto index = [&](double CapabilityIndices::*one) {
    return IntervalOf(fits, confidence, [one](const PercentileCapability& fit) { return fit.indices.*one; });
  };
  const auto parts = [&](double PartsPerMillion::*one) {
    return IntervalOf(fits, confidence, [one](const PercentileCapability& fit) { return fit.expected.*one; });
  };
  return {{index(&CapabilityIndices::potential), index(&CapabilityIndices::lower),
           index(&CapabilityIndices::upper), index(&CapabilityIndices::least)},
          {parts(&PartsPerMillion::below), parts(&PartsPerMillion::above), parts(&PartsPerMillion::total)}};
}

FittedCapability ByPercentiles(const CapabilityJob& job, const FittedDistribution& fit,
                               const CapabilityFindings& found) {
  const FittedValues values = ValuesOf(fit);
  FittedCapability fitted{fit.name,
                          NotationOf({values.code, fit.parameters, fit.offset, std::nullopt, std::nullopt}),
                          PercentilesOf(values, found.limits)};
  if (!job.bootstrap) return fitted;
  const FitBootstrap bootstrap = BootstrapOf(
      values, found.values.size(), *job.bootstrap,
      RandomStream(AsInteger(job.bootstrapSeed.value_or(CapabilityJob::kUsualBootstrapSeed))), false);
  std::vector<PercentileCapability> fits;
  for (const FittedValues& one : bootstrap.Fits()) fits.push_back(PercentilesOf(one, found.limits));
  fitted.samples = fits.size();
  fitted.intervals = IntervalsOf(fits, found.confidence);
  return fitted;
}

// "K-S p 0.0012, chi-square p 0.0310" of the tests that refuse a fit; empty if none does.
std::string RefusalsOf(const FittedDistribution& fit) {
  const std::pair<const ResultColumn&, const char*> tests[] = {
      {"ks_p"_column, "K-S p "}, {"chi_square_p"_column, "chi-square p "}, {"ad_p"_column, "A-D p "}};
  std::string refusals;
  for (const auto& [column, name] : tests) {
    const double pValue = fit.statistics.Has(column) ? fit.statistics.Number(column) : 1;
    if (pValue < kLevel)
      refusals += (refusals.empty() ? "" : ", ") + (name + QuantityText(pValue, Quantity::kPValue));
  }
  return refusals;
}

bool IsNormal(const FittedDistribution& fit) {
  return static_cast<DistributionCode>(fit.code) == DistributionCode::kNormal;
}

// Of a normal process the figures overall are those of the distribution that was named.
void JudgeNormal(bool isRejected, const CapabilityJob& job, CapabilityFindings& found) {
  found.notes.emplace_back(
      isRejected
          ? "the normal distribution that was named does not fit these values: without it, the one that fits "
            "best is used"
          : "the figures overall are those of the normal distribution that was named");
  if (job.bootstrap)
    found.notes.emplace_back(
        "the bootstrap gives no intervals to figures of a normal process, which have them");
}

// From so many parts on, the interval of Pp at 95 % lies within a fifth of it: the roots of the quantiles of chi-square over its
// degrees of freedom (Kushler & Hurley 1992, Confidence bounds for capability indices) are 0.80 and 1.20.
constexpr std::size_t kEnoughParts = 50;

void JudgeCount(CapabilityFindings& found) {
  const std::size_t count = found.values.size();
  if (count >= kEnoughParts) return;
  found.notes.push_back(std::to_string(count) + " parts are few: read the intervals. Only from " +
                        std::to_string(kEnoughParts) +
                        " parts on does that of Pp at 95 % reach no further than a fifth of it to either "
                        "side");
}

void JudgeDistribution(const CapabilityJob& job, CapabilityFindings& found) {
  const std::optional<std::string>& named = job.distribution;
  found.normality = TestNormality(found.values);
  const bool isTested = !IsNotSet(found.normality.pValue);
  const bool isRejected = isTested && found.normality.pValue < kLevel;
  if (!isTested) found.notes.emplace_back("fewer than 8 values are not tested for normality");
  if (!isRejected && !named) {
    if (job.bootstrap)
      found.notes.emplace_back(
          "no distribution is fitted, so the bootstrap gives no intervals: name one to use it");
    return;
  }
  const auto fit = FitOf(found, job);
  if (!fit) {
    found.notes.push_back(named ? "the " + *named + " distribution cannot be fitted to these values"
                                : "no distribution can be fitted to these values, which are not normal");
    return;
  }
  if (named && IsNormal(*fit)) return JudgeNormal(isRejected, job, found);
  if (IsNormal(*fit)) {
    found.notes.emplace_back(
        "the values are not normal, but no other distribution fits them better: indices and expected parts "
        "describe a process that this is not");
    return;
  }
  found.fitted = ByPercentiles(job, *fit, found);
  if (const std::string refusals = RefusalsOf(*fit); !refusals.empty())
    found.notes.push_back("the " + std::string(fit->identifier) + " distribution does not fit these values" +
                          (isRejected ? " either" : "") + " (" + refusals +
                          "): indices and expected parts by its percentiles are a guess" +
                          (named ? "" : ", and another ranking may find a better one"));
  if (!isRejected) return;
  found.notes.emplace_back(
      "the values are not normal: read the indices and expected parts by percentiles, those within and "
      "overall describe a normal process");
  if (found.chartWord == "i-mr")
    found.notes.emplace_back(
        "the limits of the charts are those of normal values; signals may be due to that");
}

}  // namespace

const Choices kWithinEstimates{
    {"moving-range", "moving-range"}, {"pooled", "pooled"}, {"r-bar", "r-bar"}, {"s-bar", "s-bar"}};
const Choices kControlCharts{{"i-mr", "i-mr"}, {"x-bar-r", "x-bar-r"}, {"x-bar-s", "x-bar-s"}};
const Choices kControlRules{{"nelson", "nelson"}, {"western-electric", "western-electric"}};

JobFaults CapabilityJob::Check() const {
  JobFaults faults;
  CheckReading(data, faults);
  const auto add = [&](const char* field, const std::string& message) { faults.push_back({field, message}); };
  if (specifications.empty()) {
    add("specifications", "missing specification: capability is judged against limits");
  } else if (specifications.size() > 1) {
    add("specifications", "one response is judged at a time, and its specification is given once");
  } else if (!response.empty() && response != specifications.front().response) {
    add("specifications",
        Quoted(specifications.front().response) + " is not the response, which is " + Quoted(response));
  }
  for (const ResponseSpecification& one : specifications) CheckLimits(one.response, one.limits, faults);
  if (within) CheckWord("within", *within, kWithinEstimates, faults);
  if (controlChart) CheckWord("controlChart", *controlChart, kControlCharts, faults);
  if (rules) CheckWord("rules", *rules, kControlRules, faults);
  if (!subgroup && within && kWithinEstimates.contains(*within) && *within != "moving-range")
    add("within", "the values have no subgroups, so the deviation within is that of moving-range");
  if (!subgroup && controlChart && kControlCharts.contains(*controlChart) && *controlChart != "i-mr")
    add("controlChart", "the values have no subgroups, so their chart is i-mr");
  if (distribution) {
    const NamedDistribution* named = FindDistribution(*distribution);
    if (named == nullptr) {
      add("distribution", NoSuchDistribution(*distribution));
    } else if (!named->continuous) {
      add("distribution", "the " + named->name + " distribution is for discrete variables");
    }
  }
  if (confidence) CheckBetweenZeroAndOne("confidence", *confidence, faults);
  if (rankBy) CheckWord("rankBy", *rankBy, kCriteria, faults);
  if (rankBy && distribution) add("rankBy", "a distribution is named, so there is none to choose");
  CheckBootstrap(bootstrap, bootstrapSeed, faults);
  CheckPlot(plot, kCapabilityPlotKinds, faults);
  CheckReport(report, faults);
  CheckTargetsApart({{"data", data.file}}, {{"plot", plot.file}, {"report", report}}, faults);
  return faults;
}

CapabilityFindings CapabilityJob::Analyse(const Spreadsheet& sheet) const {
  CapabilityFindings found;
  found.limits = specifications.front().limits;
  found.response = specifications.front().response;
  found.confidence = confidence.value_or(kUsualConfidence);
  found.cases = sheet.CaseCount();
  const std::vector<Part> parts = PartsOf(sheet, ResponseIn(sheet, found.response));
  RequireValues(found.response, parts);
  for (const Part& part : parts) found.values.push_back(part.value);
  if (sheet.WeightVariable()) found.notes.emplace_back("case weights are left out: every part counts once");
  if (subgroup) TakeGroups(GroupsOf(*subgroup, sheet, parts, found.notes), found);
  found.rulesWord = rules.value_or(kUsualRules);
  found.rules = found.rulesWord == "nelson" ? NelsonRules() : WesternElectricRules();
  found.chartWord = controlChart ? *controlChart : ChartFor(found);
  found.withinWord = within.value_or(subgroup ? kUsualWithinSubgroups : kUsualWithin);
  DrawCharts(parts, found);
  ProcessSample sample = DescribeProcess(found.values);
  found.movingRange = {sample.within, sample.withinDegrees};
  found.within = EstimateWithin(found.subgroups);
  const DeviationEstimate chosen = ChosenWithin(found);
  sample.within = chosen.deviation;
  sample.withinDegrees = chosen.degrees;
  found.report = *AnalyseCapability(found.values, sample, found.limits, found.confidence);
  JudgeCount(found);
  JudgeDistribution(*this, found);
  return found;
}

CapabilityFindings CapabilityJob::Run(Spreadsheet& sheet, const JobRecorder& recorder) const {
  RequireNone(Check());
  RefuseRecording("the capability of a process", recorder);
  RequireCases(sheet);
  const FormerConditions former(sheet);
  if (select) SelectCases(sheet, *select);
  CapabilityFindings found = Analyse(sheet);
  if (plot.IsAsked()) WritePlot(plot, found.response, CapabilityPlots(found, plot.Kind()));
  return found;
}

}  // namespace brenvolt
