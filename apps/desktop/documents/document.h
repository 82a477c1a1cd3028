// A project, or data read from another file, that a person works on: every edit can be undone, is in the journal before
// it is made, and is saved as the host saves projects.
#pragma once

#include <QObject>
#include <QUndoStack>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/desktop/documents/edit.h"
#include "apps/desktop/documents/journal.h"
#include "host/application/application.h"
#include "host/jobs/base/job_data.h"

namespace brenvolt::desktop {

class Document : public QObject {
  Q_OBJECT

 public:
  // `journals` is the folder of the journals. All throw Error naming the file.
  Document(const std::filesystem::path& journals, DataFile data, bool decimalComma);
  // A project that is in no file yet, with one sheet; without `sheet`, an empty table to type data into.
  static std::unique_ptr<Document> New(const std::filesystem::path& journals,
                                       std::unique_ptr<Spreadsheet> sheet = nullptr);
  ~Document() override;
  // A file as it was read for a document, on whichever thread.
  struct FileRead {
    DataFile data;
    JobData reading;
  };
  // Throws WrongJob as well.
  static FileRead Read(const std::filesystem::path& file, bool decimalComma);
  // That of a journal, which is empty for a new project.
  static FileRead ReadBase(const JournalBase& base);
  static std::unique_ptr<Document> Open(const std::filesystem::path& journals, FileRead read);

  // What a recovery gave: the document, with as many of the edits as still could be made.
  struct Recovered {
    std::unique_ptr<Document> document;
    std::size_t edits = 0;
    bool fitsFile = true;  // false: the file was changed since by another program
    std::string why;       // the next edit could not be made; empty if all were
  };
  // Makes the edits of a journal to its file, which was read, or to a new project where it has none; they are unsaved
  // again. The journal that was left goes.
  static Recovered Recover(const std::filesystem::path& journals, LeftJournal& left, FileRead read);

  // The name of the file, or what a document without one is called.
  QString Title() const;
  const std::filesystem::path& File() const { return data_.path; }
  // False for new projects and data of other formats, which are saved under a new name.
  bool IsProject() const { return data_.isProject; }
  const Workbook& Content() const { return data_.workbook; }
  Workbook& Content() { return data_.workbook; }
  DataFile& Data() { return data_; }
  // What keeps data of other formats from being the same after they were read again.
  const JobData& Reading() const { return reading_; }
  bool DecimalComma() const { return reading_.decimalComma; }

  // False once the values of a sheet, or what limits and weighs its cases, are not those of the file; what else is saved
  // with them may differ.
  bool HasValuesOfFile(const Spreadsheet& sheet) const;

  bool IsModified() const { return !history_.isClean() || isUnsaved_; }
  QUndoStack& History() { return history_; }

  // Carries out what a person did. `what` names it in the menu: "Paste". Throws Error, and nothing is changed.
  void Do(const QString& what, Edits edits);
  // Take back the last edit, or do it again. Throw Error where an analysis stands in the way, and nothing is changed.
  void Undo();
  void Redo();
  // Lets a job change the facts of variables, add variables behind the others, add and remove sheets; it must not change
  // values, nor what else a sheet holds that was there.
  void Change(const QString& what, const std::function<void(Workbook& workbook)>& change);
  // An analysis does the same at times of its own: from Observe on, TakeChanges makes one edit of what it changed since.
  void Observe();
  void TakeChanges(const QString& what);
  // Meanwhile tells who shows the sheet of more or fewer variables or cases.
  void ShowShape(const Spreadsheet& sheet) { emit edited(QString::fromStdString(sheet.Name()), true); }
  void EndObservation();

  // While an analysis computes with the document it cannot be edited; while one of its dialogs is open, which knows
  // variables and cases by their numbers, none come or go.
  void SetBusy(bool busy);
  bool IsBusy() const { return isBusy_; }
  bool IsObserved() const { return observed_.has_value(); }

  // Throws Error naming the file, and the document stays as it was, unsaved.
  void Save(const std::filesystem::path& file);
  // True if the file that was opened or last saved is no longer as it was left.
  bool IsChangedOutside() const;

 signals:
  // The sheet of this name has other cells or facts; `shape` also another number of variables or cases.
  void edited(const QString& sheet, bool shape);
  // Sheets came, went or have another name.
  void sheetsChanged();
  // The title, or whether there is something to save.
  void stateChanged();
  // From now on to the next save, a crash would lose edits.
  void journalFailed(const QString& why);
  // A step of the history no longer fits, and is gone from it.
  void stepLost(const QString& why);

 private:
  friend class EditCommand;

  Edits Carry(Edits edits);
  void Record(Edits& edits);
  void Announce(const Edits& edits);
  void Push(const QString& what, Edits inverse);
  void RequireEditable(bool changesShape) const;
  void GoTo(int index, int command);
  Edits NewSheets() const;

  // What a sheet was before somebody else changed it.
  struct SheetBefore {
    const Spreadsheet* sheet;
    std::vector<VariableFacts> variables;
    std::unique_ptr<Spreadsheet> copy;  // of a matrix, which jobs replace
  };
  static std::vector<SheetBefore> Remember(const Workbook& workbook);
  static void UndoFacts(const SheetBefore& before, Edits& undo);
  static bool IsReplaced(const SheetBefore& before);
  static Edits UndoOf(const Workbook& workbook, std::vector<SheetBefore> before);
  void Adopt(const QString& what, std::vector<SheetBefore> before);

  // What the values of a sheet are known by.
  struct ValuesOfSheet {
    std::vector<std::pair<std::string, std::uint64_t>> columns;  // names and stamps
    std::optional<std::size_t> weight;
    bool isLimited = false;
    std::string condition;
    bool operator==(const ValuesOfSheet&) const = default;
  };
  static ValuesOfSheet ValuesOf(const Spreadsheet& sheet);
  void KnowValues();

  std::filesystem::path journals_;
  DataFile data_;
  std::map<const Spreadsheet*, ValuesOfSheet> valuesOfFile_;
  JobData reading_;
  FileState state_;
  QUndoStack history_;
  std::unique_ptr<Journal> journal_;
  std::filesystem::path recoveredFrom_;  // a journal that stays until all is saved
  bool isJournalBroken_ = false;
  bool isUnsaved_ = false;  // beyond what the history says
  bool isBusy_ = false;
  std::optional<std::vector<SheetBefore>> observed_;
};

}  // namespace brenvolt::desktop
