// Results that a person sees without asking: what the open dialog shows by its buttons, shown once it has something to show.
#pragma once

#include "host/analysis/analysis_support.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// All show their documents by the analysis's interface; no macro has them as steps. Of many variables or responses the
// first are shown, the others by the dialog. Throw Error.

// Of the open dialog of a fit: the variables, and of each its ranked fits and the pictures of the best one.
void ShowFits(CAnalysisSupport& analysis);
// Of the open dialog of simulated data: the summary, the correlations, and pictures of the data.
void ShowSimulated(CAnalysisSupport& analysis, const Spreadsheet& data);
// Of the open dialog of the profiler: the tables and pictures of each response, its capability where it is specified, and
// the counts of defects. `selected` is the response that stays selected, counted from 1.
void ShowResponses(CAnalysisSupport& analysis, int selected);

}  // namespace brenvolt
