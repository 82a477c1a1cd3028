#include "brv_sra/frame/attached_input.h"

namespace brenvolt::sra {

void ShowAndAttachInput(CAnalysisSupport& analysis, const std::shared_ptr<CAnalysisTableDoc>& document) {
  // Who is shown the document may take the table out of it.
  Spreadsheet* const table = &document->Table();
  {
    const ResultsToWorkbookOff off(*analysis.Document());
    analysis.Interface().ShowDocument(document);
  }
  const ResultsLock lock(*analysis.Document());
  analysis.Document()->SetInputTable(table, document);
}

}  // namespace brenvolt::sra
