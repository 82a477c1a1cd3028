// What the host attaches to an analysis: the input spreadsheet and the person's user interface.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/user_interface.h"
#include "host/base/error.h"

namespace brenvolt {

class CAnalysisDoc {
 public:
  // Both must outlive the document; the table may be null while no input is chosen.
  CAnalysisDoc(UserInterface& userInterface, Spreadsheet* inputTable)
      : userInterface_(userInterface), inputTable_(inputTable) {}

  UserInterface& Interface() const { return userInterface_; }
  Spreadsheet* InputTable() const { return inputTable_; }
  void SetInputTable(Spreadsheet* table) { inputTable_ = table; }

  // How the host opens a data file for the analysis: returns the sheet that becomes the input, which the host
  // keeps at least as long as the one before. Throws Error for a file that it cannot read.
  using DataOpener = std::function<Spreadsheet*(const std::filesystem::path& path)>;
  void SetDataOpener(DataOpener opener) { dataOpener_ = std::move(opener); }
  // Makes a sheet of the file the input table. Throws Error, and the input stays, when the host cannot.
  void OpenInput(const std::filesystem::path& path) {
    Spreadsheet* table = dataOpener_ ? dataOpener_(path) : nullptr;
    if (table == nullptr) throw Error("no data file can be opened here", path.string());
    SetInputTable(table);
  }

  // The host option that sends results to a workbook instead of showing them as documents of their own.
  bool ResultsToWorkbook() const { return resultsToWorkbook_; }
  void SetResultsToWorkbook(bool on) { resultsToWorkbook_ = on; }

 private:
  UserInterface& userInterface_;
  Spreadsheet* inputTable_;
  DataOpener dataOpener_;
  bool resultsToWorkbook_ = true;
};

}  // namespace brenvolt
