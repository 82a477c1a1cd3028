#include "brv_sra/fitting/fit_run.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <span>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/bootstrap.h"
#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
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
  std::int32_t caption;
};

ReadVariable Read(const Spreadsheet& sheet, std::int16_t number, bool continuous, const CaseSet& cases,
                  CKroProgressBar& progress) {
  ReadVariable read;
  read.fit.variableNumber = number;
  read.fit.name = OneLineName(sheet, number);
  read.fit.continuous = continuous;
  Sample sample = ReadSample(sheet, number, cases, progress);
  read.fit.moments = sample.moments;
  read.values = std::move(sample.values);
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

// A numeric fault names its variable before what else it says.
void FitVariable(ReadVariable& read, std::size_t i, const FitSpecification& specification, const Poll& poll) {
  try {
    if (read.fit.continuous) {
      FitContinuousVariable(read, specification.continuousSpecifications[i], specification, poll);
    } else {
      FitDiscreteVariable(read, specification.discreteSpecifications[i], specification, poll);
    }
  } catch (const NumericalException& error) {
    const std::string remedy = error.Where().empty() ? "" : "; " + error.Where();
    throw NumericalException(error.what(), "variable " + read.fit.name + remedy);
  }
  read.values = {};
}

// Fits the variables of a batch, the first of which has the place `first` in its list, on all processors,
// while this thread shows the progress and looks for cancellation. Of several exceptions, that of the first
// variable is thrown.
void FitBatch(std::vector<ReadVariable>& batch, std::size_t first, const FitSpecification& specification,
              CKroProgressBar& progress) {
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
             const CaseSet& cases, ProgressPort& port, std::vector<VariableFit>& results) {
  if (list.numbers.empty()) return;
  const auto steps = static_cast<std::int64_t>(list.numbers.size() * cases.cases.size() + 1);
  const auto progress = CKroProgressBar::new_ProgressBar(port, ResourceString(list.caption), steps);
  progress->ShowNow();
  for (std::size_t next = 0; next < list.numbers.size();) {
    const std::size_t first = next;
    std::vector<ReadVariable> batch;
    for (std::size_t held = 0; next < list.numbers.size() && held < kBatchValues; ++next) {
      batch.push_back(Read(sheet, list.numbers[next], list.continuous, cases, *progress));
      held += batch.back().values.size();
    }
    FitBatch(batch, first, specification, *progress);
    for (ReadVariable& read : batch) results.push_back(std::move(read.fit));
  }
  progress->Step();
}

std::string WhyInvalid(const VariableFit& fit) {
  if (fit.moments.count == 0) return "no valid values";
  if (fit.invalid) return fit.moments.count == 1 ? "a single valid value" : "all values equal";
  if (fit.fits.size() == 1) {
    return std::string(DisplayName(fit.fits.front().specification.code)) + " cannot be fitted";
  }
  return "no distribution can be fitted";
}

// "a, b: all values equal; c: no valid values", of many variables the first.
std::string WhyNoneIsValid(const std::vector<VariableFit>& results) {
  constexpr std::size_t kNamed = 8;
  std::vector<std::pair<std::string, std::string>> reasons;  // with the names of their variables
  for (std::size_t i = 0; i < results.size() && i < kNamed; ++i) {
    const std::string why = WhyInvalid(results[i]);
    const auto known = std::ranges::find(reasons, why, &std::pair<std::string, std::string>::first);
    if (known == reasons.end()) {
      reasons.emplace_back(why, results[i].name);
    } else {
      known->second += ", " + results[i].name;
    }
  }
  std::string text;
  for (const auto& [why, names] : reasons) text += (text.empty() ? "" : "; ") + names + ": " + why;
  if (results.size() > kNamed) text += "; and " + std::to_string(results.size() - kNamed) + " more";
  return text;
}

}  // namespace

bool FitsDataLimit(std::size_t variables, std::size_t cases) {
  const auto bytes = static_cast<std::uint32_t>(variables) * static_cast<std::uint32_t>(cases) *
                     static_cast<std::uint32_t>(sizeof(double));
  return bytes < kDataLimit;
}

CaseSet FittedCases(const Spreadsheet& sheet, const FitSpecification& specification,
                    const CaseOptions& options) {
  CaseSet cases = AcceptedCases(sheet, options.useSelection, options.useWeights);
  if (specification.deletion == DeletionMode::kCasewise) {
    DropIncompleteCases(sheet, specification.continuous, cases);
    DropIncompleteCases(sheet, specification.discrete, cases);
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

std::vector<VariableFit> RunFit(const Spreadsheet& sheet, const FitSpecification& specification,
                                const CaseOptions& options, ProgressPort& port, CaseCounts* counts) {
  const std::size_t selected = specification.continuous.size() + specification.discrete.size();
  if (!FitsDataLimit(selected, sheet.CaseCount())) {
    throw CDispatchException(std::string(ResourceString(kMsgDatasetTooLarge)));
  }
  const CaseSet cases = FittedCases(sheet, specification, options);
  if (counts != nullptr) {
    *counts = {static_cast<std::int32_t>(sheet.CaseCount()), cases.selected,
               options.useWeights && sheet.WeightVariable().has_value()};
  }
  std::vector<VariableFit> results;
  FitList({specification.continuous, true, kProgressContinuousVariables}, sheet, specification, cases, port,
          results);
  FitList({specification.discrete, false, kProgressDiscreteVariables}, sheet, specification, cases, port,
          results);
  const bool anyValid =
      std::ranges::any_of(results, [](const VariableFit& fit) { return !fit.invalid && fit.HasValidFit(); });
  if (specification.deletion == DeletionMode::kPairwise && !anyValid) {
    const std::string where = WhyNoneIsValid(results);
    throw NoValidVariables(std::string(ResourceString(kMsgNoValidVariables)), where, std::move(results));
  }
  BootstrapResults(results, specification, port);
  return results;
}

}  // namespace brenvolt::sra
