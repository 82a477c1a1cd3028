#include "apps/desktop/documents/document.h"

#include <QUndoCommand>
#include <algorithm>
#include <set>
#include <utility>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"
#include "host/jobs/base/correctable_data.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt::desktop {

// Holds what undoes, or does again, an edit that has been carried out.
class EditCommand : public QUndoCommand {
 public:
  EditCommand(Document& document, const QString& what, Edits inverse)
      : QUndoCommand(what), document_(document), edits_(std::move(inverse)) {}

  bool ChangesShape() const {
    return std::ranges::any_of(edits_, [](const Edit& edit) { return desktop::ChangesShape(edit); });
  }

  void undo() override { Exchange(); }
  void redo() override {
    // What is put on the stack has been done.
    if (std::exchange(isNew_, false)) return;
    Exchange();
  }

 private:
  void Exchange() {
    try {
      edits_ = document_.Carry(std::move(edits_));
    } catch (const Error& error) {
      // The sheet was changed without the history, which then no longer fits.
      setObsolete(true);
      emit document_.stepLost(
          Document::tr("“%1” can no longer be undone or done again: %2").arg(text(), Shown(error.what())));
    }
  }

  Document& document_;
  Edits edits_;
  bool isNew_ = true;
};

std::vector<Document::SheetBefore> Document::Remember(const Workbook& workbook) {
  std::vector<SheetBefore> sheets;
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    SheetBefore& before = sheets.emplace_back();
    before.sheet = &sheet;
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v)
      before.variables.push_back(FactsOf(sheet.VariableAt(v)));
    if (sheet.Kind() == SheetKind::kMatrix) before.copy = std::make_unique<Spreadsheet>(sheet);
  }
  return sheets;
}

// The edits that give the sheet back the variables and the facts that it had, if it has others.
void Document::UndoFacts(const SheetBefore& before, Edits& undo) {
  const std::size_t count = before.variables.size();
  if (before.sheet->VariableCount() > count)
    undo.emplace_back(DropVariables{before.sheet->Name(), count, before.sheet->VariableCount() - count});
  SetFacts former{before.sheet->Name(), {}};
  for (std::size_t v = 0; v < count && v < before.sheet->VariableCount(); ++v) {
    if (!AreSame(before.variables[v], FactsOf(before.sheet->VariableAt(v))))
      former.variables.emplace_back(v, before.variables[v]);
  }
  if (!former.variables.empty()) undo.emplace_back(std::move(former));
}

// A matrix is replaced as a whole, in its place or by another sheet.
bool Document::IsReplaced(const SheetBefore& before) {
  if (before.copy == nullptr) return false;
  const Spreadsheet& now = *before.sheet;
  if (now.VariableCount() != before.copy->VariableCount()) return true;
  for (std::size_t v = 0; v < now.VariableCount(); ++v) {
    if (now.VariableAt(v).ContentStamp() != before.copy->VariableAt(v).ContentStamp()) return true;
  }
  return false;
}

// What takes the workbook back to what it was.
Edits Document::UndoOf(const Workbook& workbook, std::vector<SheetBefore> before) {
  Edits undo;
  std::set<const Spreadsheet*> now;
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) now.insert(&workbook.SheetAt(i));
  std::set<const Spreadsheet*> former;
  for (const SheetBefore& sheet : before) former.insert(sheet.sheet);
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    if (!former.contains(&workbook.SheetAt(i))) undo.emplace_back(DropSheet{workbook.SheetAt(i).Name()});
  }
  for (std::size_t at = 0; at < before.size(); ++at) {
    const bool isThere = now.contains(before[at].sheet);
    if (isThere && IsReplaced(before[at])) {
      undo.emplace_back(DropSheet{before[at].sheet->Name()});
      undo.emplace_back(AddSheet{at, std::move(before[at].copy)});
    } else if (isThere) {
      UndoFacts(before[at], undo);
    } else if (before[at].copy != nullptr) {
      undo.emplace_back(AddSheet{at, std::move(before[at].copy)});
    }
  }
  return undo;
}

Document::Document(const std::filesystem::path& journals, DataFile data, bool decimalComma)
    : journals_(journals), data_(std::move(data)), state_(FileState::Of(data_.path)) {
  reading_.file = data_.path;
  reading_.decimalComma = decimalComma;
  KnowValues();
  connect(&history_, &QUndoStack::cleanChanged, this, &Document::stateChanged);
}

// The history tells that it ends, when nobody should listen any more.
Document::~Document() {
  history_.disconnect(this);
}

std::unique_ptr<Document> Document::New(const std::filesystem::path& journals,
                                        std::unique_ptr<Spreadsheet> sheet) {
  constexpr std::size_t kCases = 20;
  constexpr std::size_t kVariables = 5;
  if (sheet == nullptr) {
    sheet = std::make_unique<Spreadsheet>("Data", kCases, kVariables);
    for (std::size_t v = 0; v < kVariables; ++v)
      std::ranges::fill(sheet->VariableAt(v).MutableValues(), GetDefaultMDValue());
  }
  DataFile data;
  data.workbook.Add(std::move(sheet));
  return std::make_unique<Document>(journals, std::move(data), false);
}

Document::FileRead Document::Read(const std::filesystem::path& file, bool decimalComma) {
  FileRead read;
  read.reading.file = std::filesystem::absolute(file);
  read.reading.decimalComma = decimalComma;
  read.data = OpenCorrectable(read.reading);
  return read;
}

Document::FileRead Document::ReadBase(const JournalBase& base) {
  return base.file.empty() ? FileRead() : Read(base.file, base.decimalComma);
}

std::unique_ptr<Document> Document::Open(const std::filesystem::path& journals, FileRead read) {
  auto document = std::make_unique<Document>(journals, std::move(read.data), read.reading.decimalComma);
  document->reading_ = std::move(read.reading);
  return document;
}

Document::Recovered Document::Recover(const std::filesystem::path& journals, LeftJournal& left,
                                      FileRead read) {
  Recovered recovered;
  const JournalBase& base = left.Base();
  recovered.document = Open(journals, std::move(read));
  recovered.fitsFile = base.file.empty() || left.FitsFile();
  Document& document = *recovered.document;
  try {
    for (auto edits = left.Next(); edits; edits = left.Next()) {
      document.Carry(std::move(*edits));
      ++recovered.edits;
    }
  } catch (const Error& error) {
    recovered.fitsFile = false;
    recovered.why = error.what();
  }
  document.isUnsaved_ = true;
  // Only now are all edits in the new journal. Until they are saved, one of which not all were made stays.
  if (!document.isJournalBroken_ && recovered.fitsFile) {
    left.Remove();
  } else {
    document.recoveredFrom_ = left.Path();
  }
  return recovered;
}

QString Document::Title() const {
  if (data_.path.empty()) return tr("New project");
  return ShownPath(data_.path.filename());
}

void Document::RequireEditable(bool changesShape) const {
  if (isBusy_) throw Error("an analysis computes with the data; edit them when it has ended, or cancel it");
  if (observed_ && changesShape)
    throw Error(
        "a dialog of an analysis of these data is open; close it before variables, cases or sheets come or "
        "go");
}

void Document::Undo() {
  RequireEditable(false);
  TakeChanges(tr("Analysis"));
  if (history_.canUndo()) GoTo(history_.index() - 1, history_.index() - 1);
}

void Document::Redo() {
  if (history_.canRedo()) GoTo(history_.index() + 1, history_.index());
}

void Document::GoTo(int index, int command) {
  RequireEditable(static_cast<const EditCommand*>(history_.command(command))->ChangesShape());
  history_.setIndex(index);
  if (observed_) observed_ = Remember(data_.workbook);
}

void Document::Do(const QString& what, Edits edits) {
  RequireEditable(std::ranges::any_of(edits, [](const Edit& edit) { return ChangesShape(edit); }));
  TakeChanges(tr("Analysis"));
  Push(what, Carry(std::move(edits)));
  if (observed_) observed_ = Remember(data_.workbook);
}

void Document::Change(const QString& what, const std::function<void(Workbook& workbook)>& change) {
  TakeChanges(tr("Analysis"));
  std::vector<SheetBefore> before = Remember(data_.workbook);
  change(data_.workbook);
  Adopt(what, std::move(before));
}

// What was changed is taken back and done again as edits, which the journal takes. A sheet that came lives on in the
// edit that adds it.
void Document::Adopt(const QString& what, std::vector<SheetBefore> before) {
  Edits undo = UndoOf(data_.workbook, std::move(before));
  if (!undo.empty()) Push(what, Carry(Apply(data_.workbook, std::move(undo))));
  if (observed_) observed_ = Remember(data_.workbook);
}

void Document::Observe() {
  observed_ = Remember(data_.workbook);
  emit stateChanged();
}

void Document::TakeChanges(const QString& what) {
  if (observed_) Adopt(what, *std::exchange(observed_, std::vector<SheetBefore>()));
}

void Document::EndObservation() {
  TakeChanges(tr("Analysis"));
  observed_.reset();
  emit stateChanged();
}

void Document::SetBusy(bool busy) {
  isBusy_ = busy;
  emit stateChanged();
}

void Document::Save(const std::filesystem::path& file) {
  const std::filesystem::path target = std::filesystem::absolute(file);
  if (!HasProjectEnding(target)) throw Error("a project ends in .bvw", target.string());
  if (journal_ != nullptr) journal_->BeginSave(target);
  try {
    // Whoever saves a file that was changed outside was asked.
    IsChangedOutside() ? data_.workbook.Replace(target) : data_.workbook.Save(target);
  } catch (...) {
    if (journal_ != nullptr) journal_->TakeBack();
    throw;
  }
  journal_.reset();
  isJournalBroken_ = false;
  if (!recoveredFrom_.empty()) {
    if (const auto left = LeftJournal::Take(recoveredFrom_)) left->Remove();
    recoveredFrom_.clear();
  }
  data_.path = target;
  data_.isProject = true;
  reading_ = {};
  reading_.file = target;
  state_ = FileState::Of(target);
  KnowValues();
  isUnsaved_ = false;
  history_.setClean();
  emit stateChanged();
}

Document::ValuesOfSheet Document::ValuesOf(const Spreadsheet& sheet) {
  ValuesOfSheet values;
  for (std::size_t v = 0; v < sheet.VariableCount(); ++v)
    values.columns.emplace_back(sheet.VariableAt(v).Name(), sheet.VariableAt(v).ContentStamp());
  values.weight = sheet.WeightVariable();
  values.isLimited = sheet.Selection().enabled;
  values.condition = sheet.Selection().condition;
  return values;
}

void Document::KnowValues() {
  valuesOfFile_.clear();
  for (std::size_t i = 0; !data_.path.empty() && i < data_.workbook.SheetCount(); ++i)
    valuesOfFile_[&data_.workbook.SheetAt(i)] = ValuesOf(data_.workbook.SheetAt(i));
}

bool Document::HasValuesOfFile(const Spreadsheet& sheet) const {
  const auto known = valuesOfFile_.find(&sheet);
  return known != valuesOfFile_.end() && known->second == ValuesOf(sheet);
}

bool Document::IsChangedOutside() const {
  return !data_.path.empty() && FileState::Of(data_.path) != state_;
}

Edits Document::Carry(Edits edits) {
  Record(edits);
  Edits inverse;
  try {
    inverse = Apply(data_.workbook, std::move(edits));
  } catch (...) {
    if (journal_ != nullptr && !isJournalBroken_) journal_->TakeBack();
    throw;
  }
  Announce(inverse);
  return inverse;
}

void Document::Record(Edits& edits) {
  if (isJournalBroken_) return;
  try {
    if (journal_ == nullptr) {
      journal_ = std::make_unique<Journal>(journals_, JournalBase{data_.path, DecimalComma(), state_});
      // Nothing else holds the sheets of a new project.
      if (Edits sheets = NewSheets(); !sheets.empty()) journal_->Append(sheets);
    }
    journal_->Append(edits);
  } catch (const Error& error) {
    isJournalBroken_ = true;
    emit journalFailed(Shown(error.what()));
  }
}

Edits Document::NewSheets() const {
  Edits sheets;
  for (std::size_t i = 0; data_.path.empty() && i < data_.workbook.SheetCount(); ++i)
    sheets.emplace_back(AddSheet{i, std::make_unique<Spreadsheet>(data_.workbook.SheetAt(i))});
  return sheets;
}

void Document::Announce(const Edits& edits) {
  bool sheets = false;
  std::map<std::string, bool> sheetsEdited;
  for (const Edit& edit : edits) {
    const bool isOfSheets = std::holds_alternative<AddSheet>(edit) ||
                            std::holds_alternative<DropSheet>(edit) ||
                            std::holds_alternative<NameSheet>(edit);
    sheets |= isOfSheets;
    if (!isOfSheets) sheetsEdited[SheetOf(edit)] |= ChangesShape(edit);
  }
  for (const auto& [sheet, shape] : sheetsEdited) emit edited(Shown(sheet), shape);
  if (sheets) emit sheetsChanged();
}

void Document::Push(const QString& what, Edits inverse) {
  history_.push(new EditCommand(*this, what, std::move(inverse)));
  emit stateChanged();
}

}  // namespace brenvolt::desktop
