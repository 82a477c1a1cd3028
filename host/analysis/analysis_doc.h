// What the host attaches to an analysis: the input spreadsheet and the person's user interface.
#pragma once

#include <memory>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/user_interface.h"

namespace brenvolt {

class CAnalysisDoc {
 public:
  // Both must outlive the document; the table may be null while no input is chosen.
  CAnalysisDoc(UserInterface& userInterface, Spreadsheet* inputTable)
      : userInterface_(userInterface), inputTable_(inputTable) {}

  UserInterface& Interface() const { return userInterface_; }
  Spreadsheet* InputTable() const { return inputTable_; }
  void SetInputTable(Spreadsheet* table) { inputTable_ = table; }

  // The host option that sends results to a workbook instead of showing them as documents of their own.
  bool ResultsToWorkbook() const { return resultsToWorkbook_; }
  void SetResultsToWorkbook(bool on) { resultsToWorkbook_ = on; }

 private:
  UserInterface& userInterface_;
  Spreadsheet* inputTable_;
  bool resultsToWorkbook_ = true;
};

}  // namespace brenvolt
