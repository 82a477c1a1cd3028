// What is fitted to a variable unless someone says otherwise.
#pragma once

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// What is checked for a newly selected variable: the distributions that need no further input. For a
// continuous variable these are Normal, Johnson, General Extreme Value and Triangular, defined for data of
// any sign; those that start at an offset wait for someone to say where, and the mixture for its components.
// For a discrete variable these are all five, the binomial with the number of trials estimated: one that
// cannot have made the data is reported as such and ranked last.
ContinuousSpecification NewContinuousSpecification();
DiscreteSpecification NewDiscreteSpecification();

}  // namespace brenvolt::sra
