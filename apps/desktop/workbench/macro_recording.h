// What is done in the window as a macro: documents opened, dialogs, projects saved. Dialogs write their own lines while an
// analysis is recorded; the others are written here.
#pragma once

#include <QString>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "apps/desktop/documents/document.h"
#include "host/analysis/analysis_support.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/automation/macro_recorder.h"

namespace brenvolt::desktop {

// All is done on the window's thread while no analysis computes.
class MacroRecording {
 public:
  void Start();
  bool IsOn() const { return recorder_ != nullptr; }
  // The macro; empty if nothing was recorded.
  QString Stop();

  // An analysis begins over a sheet of a document.
  void Began(const Document& document, const Spreadsheet& sheet, CAnalysisSupport& analysis);
  // An analysis has shown a document after `place` others that the macro makes it show as well.
  void Shown(CAnalysisSupport& analysis, std::size_t place,
             const std::shared_ptr<CAnalysisTableDoc>& document);
  // This matrix goes with the distributions of the sheet, and is saved with it.
  void TookMatrix(const Document& document, const Spreadsheet& sheet,
                  const std::shared_ptr<CAnalysisTableDoc>& matrix);
  // A result has become a sheet of the document.
  void Added(const Document& document, const CAnalysisTableDoc& table);
  void Saved(const Document& document);
  // The document is closed; another one may take its address.
  void Closed(const Document& document) { known_.erase(&document); }

 private:
  // Stand for the objects of a macro, whose addresses stay theirs.
  struct Known {
    std::unique_ptr<char> workbook = std::make_unique<char>();
    std::map<std::string, std::unique_ptr<char>> sheets;
    const char* fitted = nullptr;               // the sheet to which the matrix belongs
    std::shared_ptr<CAnalysisTableDoc> matrix;  // not yet saved
  };

  std::unique_ptr<MacroRecorder> recorder_;
  std::vector<std::unique_ptr<MacroRecorder>> former_;  // analyses that are open may still write to them
  std::map<const Document*, std::shared_ptr<Known>> known_;
  std::vector<std::shared_ptr<void>> kept_;  // whose addresses the recorder knows
};

}  // namespace brenvolt::desktop
