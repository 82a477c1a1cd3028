#include "brv_sra/fitting/fit_run.h"

#include <algorithm>
#include <cstdint>

#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/fitting/sample_reader.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/numeric/sorting.h"

namespace brenvolt::sra {
namespace {

constexpr std::uint32_t kDataLimit = 262'144'001;  // bytes: 250 MiB and one

VariableFit ReadVariable(const Spreadsheet& sheet, std::int16_t number, const CaseSet& cases, bool continuous,
                         CKroProgressBar& progress, std::vector<double>& sorted) {
  VariableFit fit;
  fit.variableNumber = number;
  fit.name = sheet.VariableAt(static_cast<std::size_t>(number - 1)).Name();
  fit.continuous = continuous;
  Sample sample = ReadSample(sheet, number, cases, progress);
  fit.moments = sample.moments;
  sorted = std::move(sample.values);
  SortAscending(sorted);
  return fit;
}

// A continuous variable without spread (a single value included) has nothing to fit.
VariableFit FitContinuousVariable(const Spreadsheet& sheet, const FitSpecification& specification,
                                  std::size_t i, const CaseSet& cases, CKroProgressBar& progress) {
  std::vector<double> sorted;
  VariableFit fit = ReadVariable(sheet, specification.continuous[i], cases, true, progress, sorted);
  fit.invalid = fit.moments.standardDeviation <= 0;
  if (fit.invalid) return fit;
  fit.fits =
      FitContinuousDistributions(sorted, fit.moments, specification.continuousSpecifications[i], progress);
  fit.ranked = RankFits(fit.fits, specification.continuousCriterion);
  return fit;
}

VariableFit FitDiscreteVariable(const Spreadsheet& sheet, const FitSpecification& specification,
                                std::size_t i, const CaseSet& cases, CKroProgressBar& progress) {
  std::vector<double> sorted;
  VariableFit fit = ReadVariable(sheet, specification.discrete[i], cases, false, progress, sorted);
  fit.invalid = sorted.empty();
  if (fit.invalid) return fit;
  fit.fits = FitDiscreteDistributions(sorted, specification.discreteSpecifications[i], progress);
  fit.ranked = RankFits(fit.fits, specification.discreteCriterion);
  return fit;
}

using FitVariable = VariableFit (*)(const Spreadsheet&, const FitSpecification&, std::size_t, const CaseSet&,
                                    CKroProgressBar&);

void FitList(std::size_t count, FitVariable fitVariable, std::int32_t caption, const Spreadsheet& sheet,
             const FitSpecification& specification, const CaseSet& cases, ProgressPort& port,
             std::vector<VariableFit>& results) {
  if (count == 0) return;
  const auto steps = static_cast<std::int64_t>(count * cases.cases.size() + 1);
  const auto progress = CKroProgressBar::new_ProgressBar(port, ResourceString(caption), steps);
  progress->ShowNow();
  for (std::size_t i = 0; i < count; ++i)
    results.push_back(fitVariable(sheet, specification, i, cases, *progress));
}

}  // namespace

bool FitsDataLimit(std::size_t variables, std::size_t cases) {
  const auto bytes = static_cast<std::uint32_t>(variables) * static_cast<std::uint32_t>(cases) *
                     static_cast<std::uint32_t>(sizeof(double));
  return bytes < kDataLimit;
}

std::vector<VariableFit> RunFit(const Spreadsheet& sheet, const FitSpecification& specification,
                                const CaseOptions& options, ProgressPort& port) {
  const std::size_t selected = specification.continuous.size() + specification.discrete.size();
  if (!FitsDataLimit(selected, sheet.CaseCount())) {
    throw CDispatchException(std::string(ResourceString(kMsgDatasetTooLarge)));
  }
  CaseSet cases = AcceptedCases(sheet, options.useSelection, options.useWeights);
  if (specification.deletion == DeletionMode::kCasewise) {
    DropIncompleteCases(sheet, specification.continuous, cases);
    DropIncompleteCases(sheet, specification.discrete, cases);
  }
  std::vector<VariableFit> results;
  FitList(specification.continuous.size(), FitContinuousVariable, kProgressContinuousVariables, sheet,
          specification, cases, port, results);
  FitList(specification.discrete.size(), FitDiscreteVariable, kProgressDiscreteVariables, sheet,
          specification, cases, port, results);
  const bool anyValid =
      std::ranges::any_of(results, [](const VariableFit& fit) { return !fit.invalid && fit.HasValidFit(); });
  if (specification.deletion == DeletionMode::kPairwise && !anyValid) {
    throw CDispatchException(std::string(ResourceString(kMsgNoValidVariables)));
  }
  return results;
}

}  // namespace brenvolt::sra
