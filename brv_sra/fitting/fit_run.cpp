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
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/parallel.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

constexpr std::uint32_t kDataLimit = 262'144'001;  // bytes: 250 MiB and one

// So many values are read before they are fitted together: enough to keep every processor busy, few enough to
// bound the memory however many variables there are.
constexpr std::size_t kBatchValues = 4'000'000;

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

Result<ReadVariable> Read(const Spreadsheet& sheet, std::int16_t number, bool continuous,
                          const CaseSet& cases, ProgressBar& progress) {
  ReadVariable read;
  read.fit.variableNumber = number;
  read.fit.name = OneLineName(sheet, number);
  read.fit.continuous = continuous;
  Result<Sample> sample = ReadSample(sheet, number, cases, progress);
  if (!sample) return sample.Reason();
  read.fit.moments = sample->moments;
  read.values = std::move(sample->values);
  return read;
}

// The mixtures taken, where they are asked for out of bounds.
std::int32_t ChangedMixtures(const ContinuousSpecification& specification, std::int64_t validCases) {
  if (!specification.fit[static_cast<std::size_t>(FlagOfContinuous(DistributionCode::kGaussianMixture))])
    return kNotSetCount;
  if (MixturesAreAllowed(specification.mixtures, validCases)) return kNotSetCount;
  return AllowedMixtures(specification.mixtures, validCases);
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

// A continuous variable without spread (a single value included) has nothing to fit.
void FitContinuousVariable(ReadVariable& read, const ContinuousSpecification& specification,
                           const FitSpecification& all, const Poll& poll) {
  VariableFit& fit = read.fit;
  fit.mixtures = ChangedMixtures(specification, fit.moments.count);
  fit.invalid = fit.moments.standardDeviation <= 0;
  if (fit.invalid) return;
  SortAscending(read.values);
  fit.fits = FitContinuousDistributions({read.values, fit.moments}, specification, all.binning, poll);
  fit.ranked = RankFits(fit.fits, all.continuousCriterion);
  fit.bestKolmogorovSmirnovPValue = BestKolmogorovSmirnovPValue(fit.fits);
}

void FitDiscreteVariable(ReadVariable& read, const DiscreteSpecification& specification,
                         const FitSpecification& all, const Poll& poll) {
  VariableFit& fit = read.fit;
  fit.invalid = read.values.empty();
  if (fit.invalid) return;
  SortAscending(read.values);
  fit.fits = FitDiscreteDistributions({read.values, fit.moments}, specification, all.binning, poll);
  fit.ranked = RankFits(fit.fits, all.discreteCriterion);
  fit.bestKolmogorovSmirnovPValue = BestKolmogorovSmirnovPValue(fit.fits);
}

Result<void> FitVariable(ReadVariable& read, std::size_t i, const FitSpecification& specification,
                         const Poll& poll) {
  try {
    if (read.fit.continuous) {
      FitContinuousVariable(read, specification.continuousSpecifications[i], specification, poll);
    } else {
      FitDiscreteVariable(read, specification.discreteSpecifications[i], specification, poll);
    }
  } catch (const NumericalException&) {
    return Fault{FaultIdentifier::kPercentilesNotFitted, read.fit.name};
  }
  read.values = {};
  return {};
}

// How the fit of a variable ended where it has no result.
struct Failure {
  std::exception_ptr exception;
  std::optional<Fault> fault;
};

// Fits the variables of a batch, the first of which has the place `first` in its list, on all processors,
// while this thread shows the progress and looks for cancellation. Of several failures, that of the first
// variable counts.
Result<void> FitBatch(std::vector<ReadVariable>& batch, std::size_t first,
                      const FitSpecification& specification, ProgressBar& progress) {
  Cancellation cancellation;
  const Poll poll = [&cancellation] { cancellation.Poll(); };
  std::vector<Failure> failures(batch.size());
  const auto fit = [&](std::size_t i) {
    try {
      cancellation.Poll();
      auto fitted = FitVariable(batch[i], first + i, specification, poll);
      if (!fitted) failures[i].fault = std::move(fitted).Reason();
    } catch (...) {
      failures[i].exception = std::current_exception();
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
  for (const Failure& failure : failures) {
    if (failure.exception) std::rethrow_exception(failure.exception);
    if (failure.fault) return *failure.fault;
  }
  return {};
}

Result<void> FitList(const VariableList& list, const Spreadsheet& sheet,
                     const FitSpecification& specification, const CaseSet& cases, const RunProgress& bars,
                     std::vector<VariableFit>& results) {
  if (list.numbers.empty()) return {};
  const auto progress = bars.Bar(list.stage, list.numbers.size() * cases.cases.size() + 1);
  progress->ShowNow();
  for (std::size_t next = 0; next < list.numbers.size();) {
    const std::size_t first = next;
    std::vector<ReadVariable> batch;
    for (std::size_t held = 0; next < list.numbers.size() && held < kBatchValues; ++next) {
      Result<ReadVariable> read = Read(sheet, list.numbers[next], list.continuous, cases, *progress);
      if (!read) return read.Reason();
      batch.push_back(*std::move(read));
      held += batch.back().values.size();
    }
    if (auto fitted = FitBatch(batch, first, specification, *progress); !fitted) return fitted;
    for (ReadVariable& read : batch) results.push_back(std::move(read.fit));
  }
  progress->Step();
  return {};
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
    auto fitted = FitList(list, sheet, specification, *cases, bars, results);
    if (!fitted) return fitted.Reason();
  }
  BootstrapResults(results, specification, bars);
  return results;
}

bool AnyIsFitted(const std::vector<VariableFit>& results) {
  return std::ranges::any_of(results, &VariableFit::HasValidFit);
}

}  // namespace brenvolt::sra
