// What can be wrong with a fit that is asked for.
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/base/almost_equal.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/range_check.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_job.h"
#include "host/numeric/distributions/gaussian_mixture.h"

namespace brenvolt {
namespace {

constexpr double kMostCount = std::numeric_limits<std::int32_t>::max();

using Names = std::vector<std::string>;

bool Holds(const Names& names, const std::string& name) {
  return std::ranges::find(names, name) != names.end();
}

// The same of names that may still have the blanks of a list about them.
bool HoldsTrimmed(const Names& names, const std::string& name) {
  return std::ranges::any_of(names, [&](const std::string& one) { return one == name || Trim(one) == name; });
}

// The distribution of that name; null if there is none, which is a fault.
const NamedDistribution* DistributionNamed(std::string_view field, const std::string& name,
                                           JobFaults& faults) {
  const NamedDistribution* distribution = FindDistribution(name);
  if (distribution == nullptr) faults.push_back({std::string(field), NoSuchDistribution(name)});
  return distribution;
}

template <class Entries>
Names NamesOf(const Entries& entries) {
  Names names;
  for (const auto& entry : entries) names.push_back(entry.variable);
  return names;
}

// More than there are distributions.
constexpr double kMostFits = 1000;

// Looks a job through; each member adds the faults of some fields.
class FitCheck {
 public:
  explicit FitCheck(const FitJob& job) : job_(job) {}

  JobFaults Faults() {
    Words();
    Distributions();
    Offsets();
    Counts("mixtures", job_.mixtures, "gaussianmixture", kFewestMixtures, kMostMixtures);
    Counts("trials", job_.trials, "binomial", 1, kMostCount);
    if (job_.johnsonPercentiles) RequireTried("johnsonPercentiles", *FindDistribution("johnson"));
    RequireFitted("johnsonPercentiles", job_.johnsonPercentiles, true);
    CheckBootstrap(job_.bootstrap, job_.bootstrapSeed, faults_);
    Quantiles();
    if (job_.top) CheckWholeNumber("top", *job_.top, 1, kMostFits, faults_);
    Saving();
    Save();
    return std::move(faults_);
  }

  // Of bounds and orders alone.
  JobFaults SavingFaults() {
    Saving();
    return std::move(faults_);
  }

 private:
  void Add(std::string_view field, std::string message) {
    faults_.push_back({std::string(field), std::move(message)});
  }

  // Whether variables of a kind are fitted: without names all are continuous.
  bool IsFitted(bool continuous) const {
    const auto& [continuousNames, discreteNames] = job_.variables;
    return continuous ? !continuousNames.empty() || discreteNames.empty() : !discreteNames.empty();
  }

  // A setting of a distribution that is not tried would do nothing.
  void RequireTried(std::string_view field, const NamedDistribution& distribution) {
    if (!job_.Tries(distribution))
      Add(field, "the " + std::string(distribution.name) + " distribution is not tried");
  }

  // A setting of a kind of variables that is not fitted would do nothing.
  void RequireFitted(std::string_view field, bool given, bool continuous) {
    if (given && !IsFitted(continuous))
      Add(field, std::string("no ") + (continuous ? "continuous" : "discrete") + " variable is fitted");
  }

  void Words() {
    if (job_.rankBy) CheckWord("rankBy", *job_.rankBy, kCriteria, faults_);
    if (job_.discreteRankBy) CheckWord("discreteRankBy", *job_.discreteRankBy, kDiscreteCriteria, faults_);
    if (job_.binning) CheckWord("binning", *job_.binning, kBinnings, faults_);
    CheckWord("missing", job_.missing, kDeletions, faults_);
    RequireFitted("rankBy", job_.rankBy.has_value(), true);
    RequireFitted("discreteRankBy", job_.discreteRankBy.has_value(), false);
    // The classes of counts are the counts themselves.
    RequireFitted("binning", job_.binning.has_value(), true);
  }

  void Distributions() {
    Names names;
    for (const std::string& name : job_.distributions) {
      const NamedDistribution* distribution = DistributionNamed("distributions", name, faults_);
      if (distribution == nullptr) return;
      names.push_back(distribution->name);
    }
    CheckOnce("distributions", std::move(names), faults_);
    for (const bool continuous : {true, false}) {
      const bool any = std::ranges::any_of(kNamedDistributions, [&](const NamedDistribution& distribution) {
        return distribution.continuous == continuous && job_.Tries(distribution);
      });
      if (any || !IsFitted(continuous)) continue;
      Add("distributions",
          continuous ? "none of these is for continuous variables; a variable is fitted as discrete only "
                       "if it is given as discrete"
                     : "none of these is for discrete variables");
      return;
    }
    for (const std::string& name : job_.distributions) {
      const NamedDistribution& distribution = *FindDistribution(name);
      if (!IsFitted(distribution.continuous))
        Add("distributions",
            "the " + distribution.name + " distribution is for " +
                (distribution.continuous ? "continuous variables, but no continuous variable is fitted"
                                         : "discrete variables; a variable is fitted as discrete only if it "
                                           "is given as discrete"));
    }
  }

  void Offsets() {
    Names things;
    for (const FitJob::Offset& offset : job_.offsets) {
      const NamedDistribution* distribution = DistributionNamed("offsets", offset.distribution, faults_);
      if (distribution == nullptr) continue;
      const std::string name(distribution->name);
      things.push_back(offset.variable + ":" + name);
      if (distribution->offset.empty()) Add("offsets", "the " + name + " distribution has no offset");
      RequireTried("offsets", *distribution);
      CheckNumber("offsets", offset.value, faults_, things.back());
      if (IsNotSet(offset.value)) Add("offsets", "-444 means that no offset is set and cannot be an offset");
    }
    CheckOnce("offsets", std::move(things), faults_);
  }

  void Counts(std::string_view field, const std::vector<FitJob::Count>& counts, std::string_view distribution,
              double fewest, double most) {
    for (const FitJob::Count& count : counts)
      CheckWholeNumber(field, count.value, fewest, most, faults_, count.variable);
    CheckOnce(field, NamesOf(counts), faults_);
    if (!counts.empty()) RequireTried(field, *FindDistribution(distribution));
  }

  void Quantiles() {
    for (const double p : job_.quantiles) CheckBetweenZeroAndOne("quantiles", p, faults_, "a probability");
    for (const double x : job_.exceed) CheckNumber("exceed", x, faults_, "");
    for (const double period : job_.returnPeriods) {
      if (!(period > 1) || !std::isfinite(period))
        Add("returnPeriods", "expected a period longer than 1, got " + ShortestNumber(period));
    }
    if (job_.confidence) CheckBetweenZeroAndOne("confidence", *job_.confidence, faults_);
    RequireFitted("quantiles", !job_.quantiles.empty(), true);
    RequireFitted("exceed", !job_.exceed.empty(), true);
    RequireFitted("returnPeriods", !job_.returnPeriods.empty(), true);
    const bool isDrawn = job_.plot.IsAsked() && job_.plot.Kind() == kReturnLevels;
    if (job_.intervals) CheckWord("intervals", *job_.intervals, kIntervals, faults_);
    for (const auto& [field, isGiven] :
         {std::pair("confidence", job_.confidence.has_value()), {"intervals", job_.intervals.has_value()}}) {
      if (isGiven && !job_.AsksForQuantiles() && !isDrawn)
        Add(field, "no quantile is asked for, and no probability or return level");
    }
  }

  void Saving() {
    for (const FitJob::Truncation& one : job_.truncate) CheckTruncation(one);
    for (const FitJob::Order& one : job_.order) CheckOrder(one);
    CheckOnce("truncate", NamesOf(job_.truncate), faults_);
    CheckOnce("order", NamesOf(job_.order), faults_);
  }

  void CheckTruncation(const FitJob::Truncation& truncation) {
    for (const auto& bound : {truncation.low, truncation.high}) {
      if (!bound) continue;
      CheckNumber("truncate", *bound, faults_, truncation.variable);
      if (IsNotSet(*bound)) Add("truncate", "-444 means that no bound is set and cannot be a bound");
    }
    CheckAscending("truncate", truncation.variable, truncation.low, truncation.high, faults_);
  }

  void CheckOrder(const FitJob::Order& order) {
    if (order.distributions.empty())
      Add("order", Quoted(order.variable) + ": expected at least one distribution");
    Names names;
    for (const std::string& name : order.distributions) {
      const NamedDistribution* distribution = DistributionNamed("order", name, faults_);
      if (distribution == nullptr) continue;
      RequireTried("order", *distribution);
      if (distribution->continuous == HoldsTrimmed(job_.variables.discrete, order.variable))
        Add("order", Quoted(order.variable) + ": the " + distribution->name + " distribution is for " +
                         (distribution->continuous ? "continuous variables" : "discrete variables"));
      names.emplace_back(distribution->name);
    }
    CheckOnce("order", std::move(names), faults_);
  }

  void Save() {
    if (!job_.save.empty()) {
      CheckProjectEnding("save", job_.save, faults_);
      return;
    }
    if (!job_.truncate.empty()) Add("truncate", "the fits are not saved, so bounds have no effect");
    if (!job_.order.empty()) Add("order", "the fits are not saved, so their order has no effect");
  }

  const FitJob& job_;
  JobFaults faults_;
};

void CheckNamedOnce(const FitJob::Variables& variables, JobFaults& faults) {
  CheckOnce("continuous", variables.continuous, faults);
  CheckOnce("discrete", variables.discrete, faults);
  for (const std::string& name : variables.discrete) {
    if (Holds(variables.continuous, name))
      faults.push_back({"discrete", Quoted(name) + " is given both as continuous and as discrete"});
  }
}

template <class Entries>
void CheckFitted(std::string_view field, const Entries& entries, const Names& names, const std::string& kind,
                 JobFaults& faults) {
  for (const auto& entry : entries) {
    if (!HoldsTrimmed(names, entry.variable))
      faults.push_back({std::string(field), Quoted(entry.variable) + " is not fitted" + kind});
  }
}

}  // namespace

const Choices kIntervals{{"covariance", "covariance"}, {"profile", "profile"}};

void CheckBootstrap(const std::optional<double>& samples, const std::optional<double>& seed,
                    JobFaults& faults) {
  constexpr double kMostSamples = 1'000'000;
  if (samples) CheckWholeNumber("bootstrap", *samples, 1, kMostSamples, faults);
  if (!seed) return;
  CheckWholeNumber("bootstrapSeed", *seed, 0, kMostCount, faults);
  if (!samples) faults.push_back({"bootstrapSeed", "a seed has no effect without a bootstrap"});
}

JobFaults FitJob::CheckSaving(const Names& fitted) const {
  JobFaults faults = FitCheck(*this).SavingFaults();
  CheckFitted("truncate", truncate, fitted, "", faults);
  CheckFitted("order", order, fitted, "", faults);
  return faults;
}

std::size_t FitJob::Top() const {
  return top ? static_cast<std::size_t>(*top) : std::numeric_limits<std::size_t>::max();
}

JobFaults FitJob::CheckVariables(const Variables& fitted) const {
  JobFaults faults;
  CheckNamedOnce(fitted, faults);
  const std::string continuous = " as a continuous variable";
  CheckFitted("offsets", offsets, fitted.continuous, continuous, faults);
  CheckFitted("mixtures", mixtures, fitted.continuous, continuous, faults);
  CheckFitted("trials", trials, fitted.discrete, " as a discrete variable", faults);
  CheckFitted("truncate", truncate, fitted.All(), "", faults);
  CheckFitted("order", order, fitted.All(), "", faults);
  return faults;
}

JobFaults FitJob::Check() const {
  JobFaults faults = FitCheck(*this).Faults();
  CheckReading(data, faults);
  CheckFolder("save", save, faults);
  CheckGraphsTarget("graphs", graphs, faults);
  CheckPlot(plot, kFitPlotKinds, faults);
  CheckReport(report, faults, ReportKinds::kDocumentsAndWorkbook);
  CheckTargetsApart({{"data", data.file}},
                    {{"save", save}, {"graphs", graphs}, {"plot", plot.file}, {"report", report}}, faults);
  if (!variables.All().empty()) {
    Append(CheckVariables(variables), faults);
  } else if (!trials.empty()) {
    faults.push_back({"trials", "no discrete variable is fitted"});
  }
  return faults;
}

}  // namespace brenvolt
