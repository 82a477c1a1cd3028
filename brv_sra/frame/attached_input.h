// A sheet that a dialog makes for the analysis to work on.
#pragma once

#include <memory>

#include "host/analysis/analysis_support.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

// Shows the document as a spreadsheet of its own, whatever the option says, and makes it the input of the analysis, which
// has a document. Results stay.
void ShowAndAttachInput(CAnalysisSupport& analysis, const std::shared_ptr<CAnalysisTableDoc>& document);

}  // namespace brenvolt::sra
