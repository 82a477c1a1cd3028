#include "host/jobs/fit_job.h"

#include <algorithm>
#include <limits>

#include "host/base/almost_equal.h"
#include "host/base/quoted.h"
#include "host/jobs/dialog_words.h"
#include "host/jobs/project_files.h"

namespace brenvolt {
namespace {

constexpr double kMostCount = std::numeric_limits<std::int32_t>::max();
constexpr double kMostBootstrapSamples = 1'000'000;

bool Holds(const std::vector<std::string>& names, const std::string& name) {
  return std::ranges::find(names, name) != names.end();
}

// Looks a job through; each member adds the faults of some fields.
class FitCheck {
 public:
  explicit FitCheck(const FitJob& job) : job_(job) {}

  JobFaults Faults() {
    Choices();
    Distributions();
    Variables();
    Offsets();
    Counts("mixtures", job_.mixtures, "gaussianmixture", true);
    Counts("trials", job_.trials, "binomial", false);
    if (job_.johnsonPercentiles) RequireTried("johnsonPercentiles", "johnson");
    RequireFitted("johnsonPercentiles", job_.johnsonPercentiles, true);
    Bootstrap();
    Saving();
    return std::move(faults_);
  }

 private:
  void Add(std::string_view field, std::string message) {
    faults_.push_back({std::string(field), std::move(message)});
  }

  // Whether variables of a kind are fitted: without names all are continuous.
  bool IsFitted(bool continuous) const {
    return continuous ? !job_.continuous.empty() || job_.discrete.empty() : !job_.discrete.empty();
  }

  bool IsTried(const FittedType& type) const {
    return job_.distributions.empty() || std::ranges::any_of(job_.distributions, [&](const auto& name) {
             return FindFittedType(name) == &type;
           });
  }

  // The distribution of that name; null where there is none, which is a fault.
  const FittedType* TypeNamed(std::string_view field, const std::string& name) {
    const FittedType* type = FindFittedType(name);
    if (type == nullptr)
      Add(field, "no distribution called " + Quoted(name) + "; there are " + FittedTypeNames());
    return type;
  }

  // What is said of a distribution that is not tried would do nothing.
  void RequireTried(std::string_view field, const FittedType& type) {
    if (!IsTried(type)) Add(field, "the " + std::string(type.name) + " distribution is not tried");
  }
  void RequireTried(std::string_view field, std::string_view name) {
    RequireTried(field, *FindFittedType(name));
  }

  // What is said of a kind of variables of which none is fitted would do nothing.
  void RequireFitted(std::string_view field, bool given, bool continuous) {
    if (given && !IsFitted(continuous))
      Add(field, std::string("no ") + (continuous ? "continuous" : "discrete") + " variable is fitted");
  }

  void Choices() {
    if (job_.rankBy) CheckWord("rankBy", *job_.rankBy, kCriteria, faults_);
    if (job_.discreteRankBy) CheckWord("discreteRankBy", *job_.discreteRankBy, kDiscreteCriteria, faults_);
    CheckWord("binning", job_.binning, kBinnings, faults_);
    CheckWord("missing", job_.missing, kDeletions, faults_);
    RequireFitted("rankBy", job_.rankBy.has_value(), true);
    RequireFitted("discreteRankBy", job_.discreteRankBy.has_value(), false);
  }

  void Distributions() {
    for (const std::string& name : job_.distributions) {
      if (TypeNamed("distributions", name) == nullptr) return;
    }
    for (const bool continuous : {true, false}) {
      const bool any = std::ranges::any_of(kFittedTypes, [&](const FittedType& type) {
        return type.continuous == continuous && IsTried(type);
      });
      if (any || !IsFitted(continuous)) continue;
      Add("distributions",
          continuous ? "none of these is for continuous variables; variables are fitted as discrete only "
                       "where they are named so"
                     : "none of these is for discrete variables");
    }
  }

  void Variables() {
    CheckOnce("continuous", job_.continuous, faults_);
    CheckOnce("discrete", job_.discrete, faults_);
    for (const std::string& name : job_.discrete) {
      if (Holds(job_.continuous, name))
        Add("discrete", Quoted(name) + " is named as continuous and as discrete");
    }
  }

  void Offsets() {
    std::vector<std::string> things;
    for (const FitJob::Offset& offset : job_.offsets) {
      const FittedType* type = TypeNamed("offsets", offset.distribution);
      if (type == nullptr) continue;
      const std::string name(type->name);
      things.push_back(offset.variable + ":" + name);
      if (type->offset.empty()) Add("offsets", "the " + name + " distribution has no offset");
      RequireTried("offsets", *type);
      CheckNumber("offsets", offset.value, faults_, things.back());
      if (IsNotSet(offset.value)) Add("offsets", "-444 stands for no offset and cannot be one");
    }
    CheckOnce("offsets", std::move(things), faults_);
  }

  void Counts(std::string_view field, const std::vector<FitJob::Count>& counts, std::string_view distribution,
              bool continuous) {
    std::vector<std::string> things;
    for (const FitJob::Count& count : counts) {
      things.push_back(count.variable);
      CheckWholeNumber(field, count.value, 1, kMostCount, faults_, count.variable);
    }
    CheckOnce(field, std::move(things), faults_);
    if (counts.empty()) return;
    RequireTried(field, distribution);
    RequireFitted(field, true, continuous);
  }

  void Bootstrap() {
    if (job_.bootstrap) CheckWholeNumber("bootstrap", *job_.bootstrap, 1, kMostBootstrapSamples, faults_);
    if (!job_.bootstrapSeed) return;
    CheckWholeNumber("bootstrapSeed", *job_.bootstrapSeed, 0, kMostCount, faults_);
    if (!job_.bootstrap) Add("bootstrapSeed", "there is no bootstrap to use the seed");
  }

  void Saving() {
    for (JobFault& fault : job_.saving.Check()) faults_.push_back(std::move(fault));
    for (const FitSaving::Order& order : job_.saving.order) {
      for (const std::string& name : order.distributions) {
        if (const FittedType* type = FindFittedType(name)) RequireTried("order", *type);
      }
    }
    if (job_.save) {
      CheckProjectEnding("save", *job_.save, faults_);
      return;
    }
    if (!job_.saving.truncate.empty()) Add("truncate", "the fits are not saved, so bounds have no effect");
    if (!job_.saving.order.empty()) Add("order", "the fits are not saved, so their order has no effect");
  }

  const FitJob& job_;
  JobFaults faults_;
};

void CheckTruncation(const FitSaving::Truncation& truncation, JobFaults& faults) {
  for (const auto& bound : {truncation.low, truncation.high}) {
    if (!bound) continue;
    CheckNumber("truncate", *bound, faults, truncation.variable);
    if (IsNotSet(*bound)) faults.push_back({"truncate", "-444 stands for no bound and cannot be one"});
  }
  if (truncation.low && truncation.high && *truncation.low >= *truncation.high) {
    faults.push_back(
        {"truncate", Quoted(truncation.variable) + ": the lower bound must be less than the upper one"});
  }
}

void CheckOrder(const FitSaving::Order& order, JobFaults& faults) {
  if (order.distributions.empty())
    faults.push_back({"order", Quoted(order.variable) + ": no distribution is named"});
  std::vector<std::string> names;
  for (const std::string& name : order.distributions) {
    if (const FittedType* type = FindFittedType(name)) {
      names.emplace_back(type->name);
    } else {
      faults.push_back(
          {"order", "no distribution called " + Quoted(name) + "; there are " + FittedTypeNames()});
    }
  }
  CheckOnce("order", std::move(names), faults);
}

}  // namespace

JobFaults FitSaving::Check() const {
  JobFaults faults;
  std::vector<std::string> truncated;
  std::vector<std::string> ordered;
  for (const Truncation& truncation : truncate) {
    CheckTruncation(truncation, faults);
    truncated.push_back(truncation.variable);
  }
  for (const Order& one : order) {
    CheckOrder(one, faults);
    ordered.push_back(one.variable);
  }
  CheckOnce("truncate", std::move(truncated), faults);
  CheckOnce("order", std::move(ordered), faults);
  return faults;
}

JobFaults FitJob::Check() const {
  return FitCheck(*this).Faults();
}

}  // namespace brenvolt
