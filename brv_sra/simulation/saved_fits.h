// The fits that the variables of a simulation carry, and how far each reaches beyond its data.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/reach.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

struct SavedFit {
  int variableNumber = 0;  // in the input spreadsheet, from 1
  std::size_t place = 0;   // among the fits of its variable, from 1: the first is simulated
  DistributionSpecification specification;
  Reach reach;  // within the bounds of the simulation
  double ksPValue =
      kNotSet;  // of the Kolmogorov-Smirnov test of the unbounded fit; kNotSet where nothing is to test
};

// Of some variables, by their numbers, one after the other. `truncate` keeps to the range between the probabilities
// 0.005 and 0.995. The data are the selected cases. The faults are those of the reader of properties.
Result<std::vector<SavedFit>> SavedFits(const SheetPropertyStore& input,
                                        std::span<const std::int16_t> variables, bool truncate);

}  // namespace brenvolt::sra
