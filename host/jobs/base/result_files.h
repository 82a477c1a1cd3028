// Results of an analysis as files, whose endings say the format: tables as CSV, NumPy arrays or sheets of a project,
// graphs as JSON.
#pragma once

#include "host/analysis/analysis_doc.h"

namespace brenvolt {

// Lets the dialogs over the document save their results.
void OfferResultFiles(CAnalysisDoc& document);

}  // namespace brenvolt
