#include "brv_sra/fitting/fit_run.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <utility>

#include "brv_sra/fitting/bootstrap.h"
#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/ranking.h"
#include "host/base/cancellation.h"
#include "host/base/number_text.h"
#include "host/base/parallel.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

constexpr std::uint32_t kDataLimit = 262'144'001;  // bytes: 250 MiB and one

// So many values are read before they are fitted together: enough to keep every processor busy, few enough to
// bound the memory however many variables there are.
constexpr std::size_t kBatchValues = 4'000'000;

// Ends the fit of a variable, and of no other.
void Fail(VariableFit& fit, Fault fault) {
  fit.invalid = true;
  fit.fault = std::move(fault);
}

// One variable with its values between reading and fitting.
struct ReadVariable {
  VariableFit fit;
  std::vector<double> values;
};

// The variables of one kind and what to fit to them.
struct VariableList {
  const std::vector<std::int16_t>& numbers;
  bool continuous;
  ProgressStage stage;
};

ReadVariable Read(const Spreadsheet& sheet, std::int16_t number, bool continuous, const CaseSet& cases,
                  ProgressBar& progress) {
  ReadVariable read;
  read.fit.variableNumber = number;
  read.fit.name = OneLineName(sheet, number);
  read.fit.continuous = continuous;
  Sample sample = ReadSample(sheet, number, cases, progress);
  read.fit.moments = sample.moments;
  read.values = std::move(sample.values);
  if (sample.fault) Fail(read.fit, *std::move(sample.fault));
  return read;
}

// The mixtures taken, where another number was asked for.
std::int32_t ChangedMixtures(const ContinuousSpecification& specification, std::int64_t validCases) {
  if (!specification.fit[PlaceInKind(DistributionCode::kGaussianMixture)]) return kNotSetCount;
  const std::int32_t taken = AllowedMixtures(specification.mixtures, validCases);
  const bool isChanged = specification.mixtures != kNotSetCount && specification.mixtures != taken;
  return isChanged ? taken : kNotSetCount;
}

// The largest p-value of the test among the fits that have one.
double BestKolmogorovSmirnovPValue(std::span<const DistributionFit> fits) {
  double best = kNotSet;
  for (const DistributionFit& fit : fits) {
    const double pValue = fit.kolmogorovSmirnov.pValue;
    if (!IsNotSet(pValue)) best = std::max(best, pValue);
  }
  return best;
}

void Rank(VariableFit& fit, RankingCriterion criterion, bool contradictedLast) {
  const Ranking ranking{criterion, fit.moments.count, contradictedLast};
  fit.contradictedLast = RanksContradictedLast(ranking);
  fit.ranked = RankFits(fit.fits, ranking);
}

// Of sorted values.
std::int64_t CountDistinct(std::span<const double> values) {
  std::int64_t count = values.empty() ? 0 : 1;
  for (std::size_t i = 1; i < values.size(); ++i) count += values[i] != values[i - 1] ? 1 : 0;
  return count;
}

// A continuous variable without spread (a single value included) has nothing to fit.
void FitContinuousVariable(ReadVariable& read, const ContinuousSpecification& specification,
                           const FitSpecification& all, const Poll& poll) {
  VariableFit& fit = read.fit;
  fit.mixtures = ChangedMixtures(specification, fit.moments.count);
  fit.invalid = fit.moments.standardDeviation <= 0;
  if (fit.invalid) return;
  SortAscending(read.values);
  fit.distinctValues = CountDistinct(read.values);
  auto fits = FitContinuousDistributions({read.values, fit.moments}, specification, all.binning, poll);
  if (!fits) {
    Fault fault = std::move(fits).Reason();
    fault.about = fit.name;
    return Fail(fit, std::move(fault));
  }
  fit.fits = *std::move(fits);
  Rank(fit, all.continuousCriterion, all.contradictedLast);
  fit.bestKolmogorovSmirnovPValue = BestKolmogorovSmirnovPValue(fit.fits);
}

void FitDiscreteVariable(ReadVariable& read, const DiscreteSpecification& specification,
                         const FitSpecification& all, const Poll& poll) {
  VariableFit& fit = read.fit;
  fit.invalid = read.values.empty();
  if (fit.invalid) return;
  SortAscending(read.values);
  fit.distinctValues = CountDistinct(read.values);
  fit.fits = FitDiscreteDistributions({read.values, fit.moments}, specification, all.binning, poll);
  Rank(fit, all.discreteCriterion, all.contradictedLast);
  fit.bestKolmogorovSmirnovPValue = BestKolmogorovSmirnovPValue(fit.fits);
}

void FitVariable(ReadVariable& read, std::size_t i, const FitSpecification& specification, const Poll& poll) {
  if (read.fit.fault) return;
  if (read.fit.continuous) {
    FitContinuousVariable(read, specification.continuousSpecifications[i], specification, poll);
  } else {
    FitDiscreteVariable(read, specification.discreteSpecifications[i], specification, poll);
  }
  read.values = {};
}

// Whether the fault of an estimate is about a value of the data, or about the offset that one equals.
bool IsAboutAValue(EstimationFault identifier) {
  using enum EstimationFault;
  switch (identifier) {
    case kValueAtOffset:
    case kValueBelowOffset:
    case kFraction:
    case kNegativeCount:
    case kAboveTrials:
    case kNeitherZeroNorOne:
    case kUndefinedLogarithm:
      return true;
    default:
      return false;
  }
}

// Finds the first case of the value that a fault is about.
void FindFaultyCases(VariableFit& fit, const Spreadsheet& sheet, const CaseSet& cases) {
  const std::span<const double> values =
      sheet.VariableAt(static_cast<std::size_t>(fit.variableNumber - 1)).Values();
  for (DistributionFit& one : fit.fits) {
    if (!one.fault || !IsAboutAValue(one.fault->identifier)) continue;
    const auto value = ParseNumber(one.fault->about);
    const auto found =
        std::ranges::find_if(cases.cases, [&](std::uint32_t i) { return value && values[i] == *value; });
    if (found != cases.cases.end()) one.faultyCase = std::int64_t{*found} + 1;
  }
}

// Fits the variables of a batch, the first of which has the place `first` in its list, on all processors,
// while this thread shows the progress and looks for cancellation. Of several exceptions, that of the first
// variable counts.
void FitBatch(std::vector<ReadVariable>& batch, std::size_t first, const FitSpecification& specification,
              ProgressBar& progress) {
  Cancellation cancellation;
  const Poll poll = [&cancellation] { cancellation.Poll(); };
  std::vector<std::exception_ptr> failures(batch.size());
  const auto fit = [&](std::size_t i) {
    try {
      cancellation.Poll();
      FitVariable(batch[i], first + i, specification, poll);
    } catch (...) {
      failures[i] = std::current_exception();
    }
  };
  ParallelForWatched(batch.size(), fit, [&] {
    try {
      progress.Step(0);
    } catch (...) {
      cancellation.Request();
      throw;
    }
  });
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
}

void FitList(const VariableList& list, const Spreadsheet& sheet, const FitSpecification& specification,
             const CaseSet& cases, const RunProgress& bars, std::vector<VariableFit>& results) {
  if (list.numbers.empty()) return;
  const auto progress = bars.Bar(list.stage, list.numbers.size() * cases.cases.size() + 1);
  progress->ShowNow();
  for (std::size_t next = 0; next < list.numbers.size();) {
    const std::size_t first = next;
    std::vector<ReadVariable> batch;
    for (std::size_t held = 0; next < list.numbers.size() && held < kBatchValues; ++next) {
      batch.push_back(Read(sheet, list.numbers[next], list.continuous, cases, *progress));
      held += batch.back().values.size();
    }
    FitBatch(batch, first, specification, *progress);
    for (ReadVariable& read : batch) {
      FindFaultyCases(read.fit, sheet, cases);
      results.push_back(std::move(read.fit));
    }
  }
  progress->Step();
}

}  // namespace

bool FitsDataLimit(std::size_t variables, std::size_t cases) {
  const auto bytes = static_cast<std::uint32_t>(variables) * static_cast<std::uint32_t>(cases) *
                     static_cast<std::uint32_t>(sizeof(double));
  return bytes < kDataLimit;
}

Result<CaseSet> FittedCases(const Spreadsheet& sheet, const FitSpecification& specification,
                            const CaseOptions& options) {
  Result<CaseSet> cases = AcceptedCases(sheet, options.useSelection, options.useWeights);
  if (cases && specification.deletion == DeletionMode::kCasewise) {
    DropIncompleteCases(sheet, specification.continuous, *cases);
    DropIncompleteCases(sheet, specification.discrete, *cases);
  }
  return cases;
}

std::string OneLineName(const Spreadsheet& sheet, int number) {
  constexpr char kLastControlCharacter = 0x1F;
  std::string name = sheet.VariableAt(static_cast<std::size_t>(number - 1)).Name();
  std::ranges::replace_if(
      name, [](char c) { return c >= 0 && c <= kLastControlCharacter; }, ' ');
  return std::string(Trim(name));
}

Result<std::vector<VariableFit>> RunFit(const Spreadsheet& sheet, const FitSpecification& specification,
                                        const CaseOptions& options, const RunProgress& bars,
                                        CaseCounts* counts) {
  const std::size_t selected = specification.continuous.size() + specification.discrete.size();
  if (!FitsDataLimit(selected, sheet.CaseCount())) return Fault{FaultIdentifier::kDataTooLarge};
  const Result<CaseSet> cases = FittedCases(sheet, specification, options);
  if (!cases) return cases.Reason();
  if (counts != nullptr) {
    *counts = {static_cast<std::int32_t>(sheet.CaseCount()), cases->selected,
               options.useWeights && sheet.WeightVariable().has_value()};
  }
  std::vector<VariableFit> results;
  for (const VariableList& list :
       {VariableList{specification.continuous, true, ProgressStage::kContinuousVariables},
        VariableList{specification.discrete, false, ProgressStage::kDiscreteVariables}}) {
    FitList(list, sheet, specification, *cases, bars, results);
  }
  BootstrapResults(results, specification, bars);
  return results;
}

std::optional<Fault> FirstFault(const std::vector<VariableFit>& results) {
  const auto found =
      std::ranges::find_if(results, [](const VariableFit& fit) { return fit.fault.has_value(); });
  return found == results.end() ? std::nullopt : found->fault;
}

bool AnyIsFitted(const std::vector<VariableFit>& results) {
  return std::ranges::any_of(results, &VariableFit::HasValidFit);
}

}  // namespace brenvolt::sra
