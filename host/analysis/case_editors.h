// The host's editors of what belongs to the cases of the input: selection conditions and case weights.
#pragma once

#include "host/analysis/analysis_support.h"

namespace brenvolt {

// Lets the user edit the selection conditions, which become the input's. A faulty condition is reported
// and asked for again. False, and nothing changed, when the user cancelled or there is no input.
bool EditSelectionConditions(CAnalysisSupport& analysis);

// Lets the user choose the variable that weights the cases, or none. The results are locked meanwhile. The
// same answers; a number that no variable has is reported and asked for again.
bool EditCaseWeights(CAnalysisSupport& analysis);

}  // namespace brenvolt
