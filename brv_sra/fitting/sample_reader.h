// Valid values of a variable with their moments: case selection, missing data and case weights applied.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/fitting/fit_state.h"
#include "host/controls/progress_bar.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// Which cases take part and how often, the same for all variables of a run.
struct CaseSet {
  std::vector<std::uint32_t> cases;   // accepted cases, ascending
  std::vector<std::int32_t> weights;  // one per accepted case, or empty if every case counts once
  std::int32_t selected = 0;          // the cases that the selection accepts, those of weight 0 included
};

// The cases that the sheet's selection accepts (all where `useSelection` is off), with their weights where
// `useWeights` is on and the sheet has a weight variable. kWeightNotWhole or kWeightsAreText when a weight is
// not a whole number of at least 0 (or at most 15 units in the last place above one), kWeightsTooLarge when
// the weights add up to more than fits; kDataTooLarge.
Result<CaseSet> AcceptedCases(const Spreadsheet& sheet, bool useSelection, bool useWeights);

// Removes the cases in which any of the variables (numbers from 1) is missing.
void DropIncompleteCases(const Spreadsheet& sheet, std::span<const std::int16_t> variables, CaseSet& set);

struct Sample {
  std::vector<double> values;  // valid values, each as often as its weight; none where there is a fault
  Moments moments;             // where there is a fault, its counts are known and all else is NaN
  std::optional<Fault> fault;  // kInfiniteValue
};

// Reads one variable, advancing the bar by one per case; the bar also looks for cancellation while a case of
// large weight is copied. Throws UserCancelled through the bar.
Sample ReadSample(const Spreadsheet& sheet, int variableNumber, const CaseSet& set, ProgressBar& progress);

}  // namespace brenvolt::sra
