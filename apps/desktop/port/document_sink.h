// Where an analysis in the window leaves what it made, and where the data files that it opens are kept. The workbench
// implements it; everything is called on the window's thread.
#pragma once

#include <filesystem>
#include <memory>

namespace brenvolt {

class CAnalysisGraphDoc;
class CAnalysisTableDoc;
class Spreadsheet;

namespace desktop {

class DocumentSink {
 public:
  virtual ~DocumentSink() = default;
  // Show a finished result, which the receiver keeps as long as it likes.
  virtual void TakeDocument(std::shared_ptr<CAnalysisTableDoc> document) = 0;
  virtual void TakeGraph(std::shared_ptr<CAnalysisGraphDoc> graph) = 0;
  // Opens a data file that a dialog asked for, as if the person had opened it in the window, and returns the sheet that
  // becomes the input of the analysis. The receiver keeps the sheet at least as long as the analysis lives. Throws Error
  // for a file that cannot be read.
  virtual Spreadsheet* OpenData(const std::filesystem::path& path) = 0;
  // The analysis has changed its input, or filled a document anew that it has handed over. What shows them is told before
  // it is painted again.
  virtual void TakeChange() = 0;
};

}  // namespace desktop
}  // namespace brenvolt
