#include "brv_sra/fitting/sample_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;

constexpr std::int32_t kMostCases = std::numeric_limits<std::int32_t>::max();
// How many cases are read between two looks at the clock.
constexpr std::size_t kProgressStride = 4096;
// How many copies of a case are added between two looks.
constexpr std::int32_t kCopiesPerLook = 1'000'000;

const Variable& VariableOf(const Spreadsheet& sheet, int number) {
  return sheet.VariableAt(static_cast<std::size_t>(number - 1));
}

Result<std::int32_t> WeightOfCase(const Variable& weights, std::size_t caseIndex) {
  const double weight = weights.Values()[caseIndex];
  if (weights.IsMissing(caseIndex) || !IsWholeNumber(weight) || weight < 0)
    return Fault{kWeightNotWhole, weights.Name(), std::to_string(caseIndex + 1)};
  if (weight > kMostCases) return Fault{kWeightsTooLarge, weights.Name()};
  return static_cast<std::int32_t>(std::floor(weight));
}

void AddCopies(double x, std::int32_t copies, Sample& sample, MomentAccumulator& moments,
               ProgressBar& progress) {
  while (copies > 0) {
    const std::int32_t now = std::min(copies, kCopiesPerLook);
    sample.values.insert(sample.values.end(), static_cast<std::size_t>(now), x);
    moments.Add(x, now);
    copies -= now;
    if (copies > 0) progress.Step(0);
  }
}

// Of a sample with infinite values, whose moments would tell nothing of the others.
Moments WithoutMoments(std::int64_t count, std::int64_t missing) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Moments counts;
  counts.count = count;
  counts.missing = missing;
  for (double Moments::*moment :
       {&Moments::mean, &Moments::standardDeviation, &Moments::skewness, &Moments::kurtosis,
        &Moments::minimum, &Moments::maximum, &Moments::logMean, &Moments::logStandardDeviation}) {
    counts.*moment = kNone;
  }
  return counts;
}

}  // namespace

Result<CaseSet> AcceptedCases(const Spreadsheet& sheet, bool useSelection, bool useWeights) {
  CaseSet set;
  const auto weightIndex = sheet.WeightVariable();
  const bool weighted = useWeights && weightIndex.has_value();
  if (weighted && sheet.VariableAt(*weightIndex).Type() == VariableType::kText) {
    return Fault{kWeightsAreText, sheet.VariableAt(*weightIndex).Name()};
  }
  if (sheet.CaseCount() > kMostCases) return Fault{kDataTooLarge};
  set.cases.reserve(sheet.CaseCount());
  std::int64_t total = 0;
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
    if (useSelection && !sheet.IsCaseSelected(i)) continue;
    ++set.selected;
    if (weighted) {
      const Variable& weights = sheet.VariableAt(*weightIndex);
      const Result<std::int32_t> weight = WeightOfCase(weights, i);
      if (!weight) return weight.Reason();
      total += *weight;
      if (total > kMostCases) return Fault{kWeightsTooLarge, weights.Name()};
      if (*weight == 0) continue;
      set.weights.push_back(*weight);
    }
    set.cases.push_back(static_cast<std::uint32_t>(i));
  }
  return set;
}

void DropIncompleteCases(const Spreadsheet& sheet, std::span<const std::int16_t> variables, CaseSet& set) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < set.cases.size(); ++i) {
    bool complete = true;
    for (const std::int16_t number : variables)
      complete = complete && !VariableOf(sheet, number).IsMissing(set.cases[i]);
    if (!complete) continue;
    set.cases[kept] = set.cases[i];
    if (!set.weights.empty()) set.weights[kept] = set.weights[i];
    ++kept;
  }
  set.cases.resize(kept);
  if (!set.weights.empty()) set.weights.resize(kept);
}

Sample ReadSample(const Spreadsheet& sheet, int variableNumber, const CaseSet& set, ProgressBar& progress) {
  const Variable& variable = VariableOf(sheet, variableNumber);
  const std::span<const double> values = variable.Values();
  Sample sample;
  sample.values.reserve(set.cases.size());
  MomentAccumulator moments;
  std::int64_t infinite = 0;
  for (std::size_t i = 0; i < set.cases.size(); ++i) {
    if (i % kProgressStride == kProgressStride - 1) progress.Step(kProgressStride);
    const double x = values[set.cases[i]];
    const std::int32_t copies = set.weights.empty() ? 1 : set.weights[i];
    if (IsMissingValue(x, variable.MissingCode())) {
      moments.CountMissing();
    } else if (std::isinf(x)) {
      const std::uint64_t number = std::uint64_t{set.cases[i]} + 1;
      if (!sample.fault) sample.fault = Fault{kInfiniteValue, variable.Name(), std::to_string(number)};
      infinite += copies;
    } else {
      AddCopies(x, copies, sample, moments, progress);
    }
  }
  progress.Step(static_cast<std::int64_t>(set.cases.size() % kProgressStride));
  sample.moments = moments.Finish();
  if (sample.fault) {
    sample.values.clear();
    sample.moments = WithoutMoments(sample.moments.count + infinite, sample.moments.missing);
  }
  return sample;
}

}  // namespace brenvolt::sra
