// Tells the person why a fit has no result at all.
#pragma once

#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// kNoValidVariables with the reasons by variable: "a, b: all values equal; c: no valid values", of many
// variables the first.
Fault NoValidVariables(const std::vector<VariableFit>& results);

}  // namespace brenvolt::sra
