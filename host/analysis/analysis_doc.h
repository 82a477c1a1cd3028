// What the host attaches to an analysis: the input spreadsheet and the user interface.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/user_interface.h"
#include "host/base/error.h"

namespace brenvolt {

class CAnalysisGraphDoc;

class CAnalysisDoc {
 public:
  // Both must outlive the document; the table may be null while no input is chosen.
  CAnalysisDoc(UserInterface& userInterface, Spreadsheet* inputTable)
      : userInterface_(userInterface), inputTable_(inputTable) {}

  UserInterface& Interface() const { return userInterface_; }
  Spreadsheet* InputTable() const { return inputTable_; }
  // `owner` is kept as long as the table is the input: the document that the table is, or was, in. Who took
  // the table out of it must let it live as long.
  void SetInputTable(Spreadsheet* table, std::shared_ptr<CAnalysisTableDoc> owner = nullptr) {
    inputTable_ = table;
    inputOwner_ = std::move(owner);
  }

  // The automation object of the application that the analysis runs in, null if none has attached itself.
  const std::shared_ptr<AutomationObject>& Application() const { return application_; }
  void SetApplication(std::shared_ptr<AutomationObject> application) {
    application_ = std::move(application);
  }

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

  // How the host evaluates a selection condition over a sheet, whose selection it becomes. Throws Error for a
  // faulty condition, and the sheet's selection stays as it was.
  using SelectionApplier = std::function<void(Spreadsheet& sheet, const std::string& condition)>;
  void SetSelectionApplier(SelectionApplier applier) { selectionApplier_ = std::move(applier); }
  void ApplySelection(const std::string& condition) {
    if (!selectionApplier_ || inputTable_ == nullptr) throw Error("no case can be selected here", condition);
    selectionApplier_(*inputTable_, condition);
  }

  // The correlation matrices that lie beside an input: their names, and a copy of the one of a name, or for an empty
  // name of the one that was saved with the fits of the input, null without. The latter throws Error for a name that
  // is none.
  struct MatrixSource {
    std::function<std::vector<std::string>()> names;
    std::function<std::unique_ptr<Spreadsheet>(const Spreadsheet& input, const std::string& name)> find;
  };
  void SetMatrixSource(MatrixSource source) { matrices_ = std::move(source); }
  std::vector<std::string> MatrixNames() const {
    return matrices_.names ? matrices_.names() : std::vector<std::string>();
  }
  std::unique_ptr<Spreadsheet> FindMatrix(const std::string& name) const {
    if (matrices_.find && inputTable_ != nullptr) return matrices_.find(*inputTable_, name);
    if (!name.empty()) throw Error("no matrix can be found here", name);
    return nullptr;
  }

  // How the host saves a result in a file, whose name says in which format. `check` throws Error for a name that says
  // none; the others, too, and where the file cannot be written.
  struct ResultSaver {
    std::function<void(const std::filesystem::path& path)> check;
    std::function<void(const CAnalysisTableDoc& table, const std::filesystem::path& path)> saveTable;
    std::function<void(const CAnalysisGraphDoc& graph, const std::filesystem::path& path)> saveGraph;
  };
  void SetResultSaver(ResultSaver saver) { saver_ = std::move(saver); }
  void CheckResultFile(const std::filesystem::path& path) const {
    if (!saver_.check) throw Error("no result can be saved here", path.string());
    saver_.check(path);
  }
  void SaveResult(const CAnalysisTableDoc& table, const std::filesystem::path& path) const {
    saver_.saveTable(table, path);
  }
  void SaveResult(const CAnalysisGraphDoc& graph, const std::filesystem::path& path) const {
    saver_.saveGraph(graph, path);
  }

  // The host option that sends results to a workbook instead of showing them as documents of their own.
  bool ResultsToWorkbook() const { return resultsToWorkbook_; }
  void SetResultsToWorkbook(bool on) { resultsToWorkbook_ = on; }

  // While a lock is held, an exchange of the input leaves results as they are: a front end that follows the
  // input must not close or renew what was made from the previous one.
  bool AreResultsLocked() const { return resultsLocks_ > 0; }

 private:
  friend class ResultsLock;

  UserInterface& userInterface_;
  Spreadsheet* inputTable_;
  DataOpener dataOpener_;
  SelectionApplier selectionApplier_;
  MatrixSource matrices_;
  ResultSaver saver_;
  bool resultsToWorkbook_ = true;
  int resultsLocks_ = 0;
  std::shared_ptr<CAnalysisTableDoc> inputOwner_;
  std::shared_ptr<AutomationObject> application_;
};

// Switches the sending of results to a workbook off while it exists.
class ResultsToWorkbookOff {
 public:
  explicit ResultsToWorkbookOff(CAnalysisDoc& document)
      : document_(document), former_(document.ResultsToWorkbook()) {
    document_.SetResultsToWorkbook(false);
  }
  ~ResultsToWorkbookOff() { document_.SetResultsToWorkbook(former_); }
  ResultsToWorkbookOff(const ResultsToWorkbookOff&) = delete;
  ResultsToWorkbookOff& operator=(const ResultsToWorkbookOff&) = delete;

 private:
  CAnalysisDoc& document_;
  bool former_;
};

// Locks a document's results while it exists. Locks nest.
class ResultsLock {
 public:
  explicit ResultsLock(CAnalysisDoc& document) : document_(document) { ++document_.resultsLocks_; }
  ~ResultsLock() { --document_.resultsLocks_; }
  ResultsLock(const ResultsLock&) = delete;
  ResultsLock& operator=(const ResultsLock&) = delete;

 private:
  CAnalysisDoc& document_;
};

}  // namespace brenvolt
