#include "brv_sra/fitting/sample_reader.h"

#include <cmath>
#include <limits>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

// How many cases are read between two looks at the clock.
constexpr std::size_t kProgressStride = 4096;

const Variable& VariableOf(const Spreadsheet& sheet, int number) {
  return sheet.VariableAt(static_cast<std::size_t>(number - 1));
}

[[noreturn]] void Throw(std::int32_t resource) {
  throw CDispatchException(std::string(ResourceString(resource)));
}

std::int32_t WholeWeight(double weight) {
  const bool whole = IsWholeNumber(weight) || AlmostEqual(weight, std::ceil(weight));
  if (!std::isfinite(weight) || !whole || weight < 0) Throw(kMsgWeightsNotIntegers);
  if (weight > std::numeric_limits<std::int32_t>::max()) Throw(kMsgDatasetTooLarge);
  return static_cast<std::int32_t>(std::round(weight));
}

}  // namespace

CaseSet AcceptedCases(const Spreadsheet& sheet, bool useSelection, bool useWeights) {
  CaseSet set;
  const auto weightIndex = sheet.WeightVariable();
  const bool weighted = useWeights && weightIndex.has_value();
  if (weighted && sheet.VariableAt(*weightIndex).Type() == VariableType::kText) Throw(kMsgWeightsNotIntegers);
  if (sheet.CaseCount() > std::numeric_limits<std::uint32_t>::max()) Throw(kMsgDatasetTooLarge);
  set.cases.reserve(sheet.CaseCount());
  std::int64_t total = 0;
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
    if (useSelection && !sheet.IsCaseSelected(i)) continue;
    if (weighted) {
      const Variable& weights = sheet.VariableAt(*weightIndex);
      if (weights.IsMissing(i)) Throw(kMsgWeightsNotIntegers);
      const std::int32_t weight = WholeWeight(weights.Values()[i]);
      total += weight;
      if (total > std::numeric_limits<std::int32_t>::max()) Throw(kMsgDatasetTooLarge);
      if (weight == 0) continue;
      set.weights.push_back(weight);
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

Sample ReadSample(const Spreadsheet& sheet, int variableNumber, const CaseSet& set,
                  CKroProgressBar& progress) {
  const Variable& variable = VariableOf(sheet, variableNumber);
  const std::span<const double> values = variable.Values();
  Sample sample;
  sample.values.reserve(set.cases.size());
  MomentAccumulator moments;
  for (std::size_t i = 0; i < set.cases.size(); ++i) {
    if (i % kProgressStride == kProgressStride - 1) progress.Step(kProgressStride);
    const double x = values[set.cases[i]];
    if (IsMissingValue(x, variable.MissingCode())) {
      moments.CountMissing();
      continue;
    }
    if (std::isinf(x)) {
      throw NumericalException("variable " + variable.Name() + " holds an infinite value",
                               "case " + std::to_string(std::uint64_t{set.cases[i]} + 1));
    }
    const std::int32_t copies = set.weights.empty() ? 1 : set.weights[i];
    sample.values.insert(sample.values.end(), static_cast<std::size_t>(copies), x);
    moments.Add(x, copies);
  }
  progress.Step(static_cast<std::int64_t>(set.cases.size() % kProgressStride));
  sample.moments = moments.Finish();
  return sample;
}

}  // namespace brenvolt::sra
