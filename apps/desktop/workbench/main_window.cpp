#include "apps/desktop/workbench/main_window.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cstdio>
#include <new>

#include "apps/desktop/base/save_question.h"
#include "apps/desktop/base/text.h"
#include "apps/desktop/views/property_panel.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/analysis_desk.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/file_reading.h"
#include "apps/desktop/workbench/macro_panel.h"
#include "apps/desktop/workbench/placement.h"
#include "apps/desktop/workbench/recovery_dialog.h"
#include "apps/desktop/workbench/start_page.h"
#include "apps/desktop/workbench/telling.h"
#include "host/base/error.h"
#include "host/jobs/base/correctable_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/formats/file_kind.h"

namespace brenvolt::desktop {
namespace {

constexpr int kWidth = 1200;
constexpr int kHeight = 760;
constexpr int kFrameWidth = 16;
constexpr int kFrameHeight = 48;
constexpr int kMessageTime = 15000;
// What the state of the layout is about; another number forgets it.
constexpr int kLayoutVersion = 1;

QString Listed(const std::vector<std::filesystem::path>& files) {
  QStringList names;
  for (const auto& file : files) names << ShownPath(file);
  return names.join(QLatin1Char('\n'));
}

// Also of a file that is not there.
bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code failure;
  if (a.empty() || b.empty()) return false;
  return std::filesystem::equivalent(a, b, failure) ||
         std::filesystem::absolute(a).lexically_normal() == std::filesystem::absolute(b).lexically_normal();
}

}  // namespace

MainWindow::MainWindow(const std::filesystem::path& folder) : settings_(folder) {
  setWindowTitle(QStringLiteral("Brenvolt"));
  setAcceptDrops(true);
  ApplyTheme(settings_.Theme());
  // Screens of small computers hold less, and the frame of a window takes room that is known only once it is shown.
  resize(QSize(kWidth, kHeight).boundedTo(screen()->availableSize() - QSize(kFrameWidth, kFrameHeight)));
  MakeParts();
  MakeFileMenu();
  MakeEditMenu();
  MakeTaskMenu();
  MakeViewMenu();
  MakeHelpMenu();
  ConnectParts();
  restoreGeometry(settings_.Layout(QStringLiteral("window")));
  restoreState(settings_.Layout(QStringLiteral("docks")), kLayoutVersion);
  splitter_->restoreState(settings_.Layout(QStringLiteral("splitter")));
  start_->SetRecentFiles(settings_.RecentFiles());
  ShowState();
}

MainWindow::~MainWindow() {
  properties_->Show(nullptr, nullptr, 0);
  desk_.reset();
  // The views look at the documents.
  tabs_->disconnect(this);
  delete tabs_;
}

void MainWindow::MakeParts() {
  desk_ = std::make_unique<AnalysisDesk>(*this, [this](const std::filesystem::path& file) -> Document& {
    if (!OpenFile(file)) throw Error("the file cannot be opened", file.string());
    return *CurrentDocument();
  });
  reading_ = std::make_unique<FileReading>(*this);
  start_ = new StartPage;
  pages_ = new QStackedWidget;
  splitter_ = new QSplitter(Qt::Horizontal);
  tabs_ = new QTabWidget;
  tabs_->setObjectName(QStringLiteral("documents"));
  tabs_->setAccessibleName(tr("Documents"));
  tabs_->setDocumentMode(true);
  tabs_->setTabsClosable(true);
  tabs_->setMovable(true);
  results_ = new ResultsPanel;
  splitter_->addWidget(tabs_);
  splitter_->addWidget(results_);
  splitter_->setSizes({kWidth * 2 / 5, kWidth * 3 / 5});
  results_->hide();
  splitter_->setChildrenCollapsible(true);
  pages_->addWidget(start_);
  pages_->addWidget(splitter_);
  setCentralWidget(pages_);

  properties_ = new PropertyPanel(
      [this](const Variable& variable) { return desk_->Describe(variable); },
      [this](const Variable& variable, const std::string& text) { return desk_->Designed(variable, text); });
  propertyDock_ = new QDockWidget(tr("Variable"), this);
  propertyDock_->setObjectName(QStringLiteral("variableDock"));
  propertyDock_->setWidget(properties_);
  addDockWidget(Qt::RightDockWidgetArea, propertyDock_);
  macros_ = new MacroPanel(settings_.Macros());
  macroDock_ = new QDockWidget(tr("Macro"), this);
  macroDock_->setObjectName(QStringLiteral("macroDock"));
  macroDock_->setWidget(macros_);
  addDockWidget(Qt::BottomDockWidgetArea, macroDock_);
  propertyDock_->hide();
  macroDock_->hide();
}

void MainWindow::ConnectParts() {
  connect(desk_.get(), &AnalysisDesk::begun, results_, &ResultsPanel::BeginGroup);
  connect(desk_.get(), &AnalysisDesk::originKnown, results_, &ResultsPanel::SetOrigin);
  desk_->SetPlacer([this](QWidget& dialog) { PlaceBesideResults(dialog, *splitter_, *results_); });
  connect(desk_.get(), &AnalysisDesk::tableShown, results_,
          qOverload<std::shared_ptr<CAnalysisTableDoc>>(&ResultsPanel::Add));
  connect(desk_.get(), &AnalysisDesk::graphShown, results_,
          qOverload<std::shared_ptr<CAnalysisGraphDoc>>(&ResultsPanel::Add));
  connect(desk_.get(), &AnalysisDesk::seriesBegun, results_, &ResultsPanel::BeginSeries);
  connect(desk_.get(), &AnalysisDesk::seriesEnded, results_, &ResultsPanel::EndSeries);
  connect(desk_.get(), &AnalysisDesk::changed, results_, &ResultsPanel::Refresh);
  connect(desk_.get(), &AnalysisDesk::said, this, &MainWindow::Say);
  connect(start_, &StartPage::taskAsked, this, &MainWindow::StartTaskAfresh);
  connect(start_, &StartPage::openAsked, this, &MainWindow::Open);
  connect(start_, &StartPage::newAsked, this, &MainWindow::NewProject);
  connect(start_, &StartPage::fileAsked, this, [this](const QString& file) { OpenFile(PathOf(file)); });
  connect(tabs_, &QTabWidget::currentChanged, this, &MainWindow::ShowCurrent);
  connect(tabs_, &QTabWidget::tabCloseRequested, this, [this](int tab) {
    tabs_->setCurrentIndex(tab);
    CloseDocument();
  });
  connect(results_, &ResultsPanel::added, this, &MainWindow::ShowResults);
  connect(results_, &ResultsPanel::said, this, &MainWindow::Say);
  connect(results_, &ResultsPanel::reportAsked, this, &MainWindow::ExportReport);
  connect(results_, &ResultsPanel::keepAsked, this, [this](const std::shared_ptr<CAnalysisTableDoc>& table) {
    if (CurrentDocument() == nullptr) NewProject();
    if (CurrentDocument()->IsBusy()) return Say(tr("An analysis computes; add the table when it has ended."));
    CurrentDocument()->Change(tr("Add result"), [&](Workbook& workbook) {
      workbook.Add(std::make_unique<Spreadsheet>(table->Table()));
    });
    results_->SetKept(*table);
    desk_->Recording().Added(*CurrentDocument(), *table);
    Say(tr("The table is a sheet of %1 now.").arg(CurrentDocument()->Title()));
  });
  connect(properties_, &PropertyPanel::refused, this, &MainWindow::Say);
  connect(macros_, &MacroPanel::said, this, &MainWindow::Say);
  connect(macros_, &MacroPanel::ended, this, [this](bool succeeded) {
    // The panel shows it to a person.
    if (!succeeded && isUnattended_) Warn(tr("The macro failed. %1").arg(macros_->Output().trimmed()));
    emit macroEnded(succeeded);
  });
  connect(macros_, &MacroPanel::recordAsked, this, &MainWindow::SetRecording);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &MainWindow::LookAtFile);
}

Document* MainWindow::CurrentDocument() const {
  DocumentView* view = CurrentView();
  return view == nullptr ? nullptr : &view->Owner();
}

DocumentView* MainWindow::CurrentView() const {
  return qobject_cast<DocumentView*>(tabs_->currentWidget());
}

DocumentView* MainWindow::ViewOf(const Document& document) const {
  for (int i = 0; i < tabs_->count(); ++i) {
    auto* view = static_cast<DocumentView*>(tabs_->widget(i));
    if (&view->Owner() == &document) return view;
  }
  return nullptr;
}

DocumentView& MainWindow::AddDocument(std::unique_ptr<Document> added) {
  Document& document = *documents_.emplace_back(std::move(added));
  auto* view = new DocumentView(document);
  history_.addStack(&document.History());
  connect(view, &DocumentView::refused, this, &MainWindow::Say);
  connect(view, &DocumentView::said, this, &MainWindow::Say);
  connect(view, &DocumentView::currentChanged, this, &MainWindow::ShowCurrent);
  connect(view, &DocumentView::reloadAsked, this, [this, &document] { Reload(document); });
  connect(&document, &Document::stateChanged, this, &MainWindow::ShowState);
  connect(&document, &Document::journalFailed, this, &MainWindow::Say);
  connect(&document, &Document::stepLost, this, &MainWindow::Say);
  tabs_->setCurrentIndex(tabs_->addTab(view, document.Title()));
  Watch(document);
  pages_->setCurrentWidget(splitter_);
  ShowState();
  KeepSession();
  if (SheetView* grid = view->CurrentGrid()) grid->setFocus();
  return *view;
}

void MainWindow::RemoveDocument(Document& document) {
  properties_->Show(nullptr, nullptr, 0);
  desk_->Recording().Closed(document);
  history_.removeStack(&document.History());
  if (!document.File().empty()) watcher_.removePath(ShownPath(document.File()));
  delete ViewOf(document);
  std::erase_if(documents_, [&](const auto& one) { return one.get() == &document; });
  if (documents_.empty() && results_->Count() == 0) ShowStartPage();
  ShowState();
  KeepSession();
}

bool MainWindow::OpenFile(const std::filesystem::path& path) {
  return OpenFile(path, false);
}

bool MainWindow::OpenFile(const std::filesystem::path& path, bool decimalComma) {
  for (const auto& document : documents_) {
    if (!IsSameFile(document->File(), path)) continue;
    tabs_->setCurrentWidget(ViewOf(*document));
    pages_->setCurrentWidget(splitter_);
    return true;
  }
  // Reading what others write at their leisure, or without an end, would stop the window.
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  if (std::filesystem::is_other(status)) {
    Warn(tr("%1 is no file but a pipe or a device, which the window does not read.").arg(ShownPath(path)));
    return false;
  }
  try {
    if (HasEnding(path, ".py")) {
      if (!macros_->MayReplace()) return false;
      macros_->Open(path);
      macroDock_->show();
      return true;
    }
    std::unique_ptr<Document> opened = Document::Open(settings_.Journals(), ReadFile(path, decimalComma));
    settings_.AddRecentFile(ShownPath(opened->File()));
    start_->SetRecentFiles(settings_.RecentFiles());
    Document& document = AddDocument(std::move(opened)).Owner();
    SayFound(document);
    return true;
  } catch (const UserCancelled&) {
    Say(tr("Reading %1 was cancelled.").arg(ShownPath(path.filename())));
  } catch (const std::bad_alloc&) {
    Warn(tr("There is not enough memory to open %1.").arg(ShownPath(path)));
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
  return false;
}

Document::FileRead MainWindow::ReadFile(const std::filesystem::path& file, bool decimalComma) {
  Document::FileRead read;
  reading_->Run(tr("Reading %1").arg(ShownPath(file.filename())),
                [&] { read = Document::Read(file, decimalComma); });
  return read;
}

// What is not as usual in a file stays readable at its tab.
// The first results get more room than the data, unless a person has divided the window.
void MainWindow::ShowResults() {
  const bool isFirst = results_->isHidden() && settings_.Layout(QStringLiteral("splitter")).isEmpty();
  results_->show();
  if (isFirst) splitter_->setSizes({width() * 3 / 10, width() * 7 / 10});
}

void MainWindow::SayFound(Document& document) {
  QStringList found;
  for (const std::string& one : FoundIn(document.Data(), document.Reading())) found << Shown(one);
  if (found.isEmpty()) return;
  ViewOf(document)->setToolTip(found.join(QLatin1Char('\n')));
  Say(found.join(QStringLiteral("; ")));
}

void MainWindow::NewProject() {
  AddDocument(Document::New(settings_.Journals()));
}

void MainWindow::Open() {
  QString data;
  for (const std::string& ending : ReadableEndings()) data += QStringLiteral(" *") + Shown(ending);
  const QString all = tr("Projects and data (*.bvw%1);;Data with decimal comma (*.csv *.txt);;"
                         "Macros (*.py);;All files (*)")
                          .arg(data);
  QString chosen;
  for (const QString& file : QFileDialog::getOpenFileNames(this, tr("Open"), {}, all, &chosen)) {
    const bool decimalComma = chosen == all.section(QStringLiteral(";;"), 1, 1);
    decimalComma ? OpenFile(PathOf(file), true) : OpenFile(PathOf(file));
  }
}

void MainWindow::RunMacro(const std::filesystem::path& path) {
  try {
    if (!macros_->MayReplace()) {
      emit macroEnded(false);
      return;
    }
    macros_->Open(path);
  } catch (const std::exception& error) {
    Warn(Explained(error));
    emit macroEnded(false);
    return;
  }
  macroDock_->show();
  macros_->Run();
}

void MainWindow::Resume() {
  const QStringList session = settings_.SessionFiles();
  auto left = LeftJournals(settings_.Journals());
  if (const auto others = JournalsOfOtherVersions(settings_.Journals()); !others.empty())
    Warn(tr("Another version of Brenvolt left unsaved edits, which only that version can read: start it to "
            "recover them, or delete these files:\n%1")
             .arg(Listed(others)));
  if (!left.empty()) {
    RecoveryDialog dialog(
        std::move(left), [this](LeftJournal& one) { return Recover(one); }, this);
    dialog.exec();
  }
  OfferMacros();
  QWidget* const recovered = tabs_->currentWidget();
  for (const QString& file : session) {
    // A file that is gone since is no fault of today.
    if (QFileInfo::exists(file)) OpenFile(PathOf(file));
  }
  if (recovered != nullptr) tabs_->setCurrentWidget(recovered);
}

// One after the other, since there is one editor.
void MainWindow::OfferMacros() {
  for (const auto& left : LeftMacros(settings_.Macros())) {
    const MacroText& macro = left->Content();
    QMessageBox box(QMessageBox::Question, QStringLiteral("Brenvolt"),
                    macro.file.empty()
                        ? tr("Brenvolt ended before a new macro was saved. Its text is kept.")
                        : tr("Brenvolt ended before %1 was saved. The text in the editor is kept.")
                              .arg(ShownPath(macro.file.filename())),
                    QMessageBox::NoButton, this);
    auto* const recover = box.addButton(tr("&Recover"), QMessageBox::AcceptRole);
    auto* const discard = box.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    box.addButton(tr("&Ask again next time"), QMessageBox::RejectRole);
    box.setDefaultButton(recover);
    box.exec();
    const bool isRecovered = box.clickedButton() == recover && macros_->MayReplace();
    if (isRecovered) macros_->Restore(macro);
    if (isRecovered) macroDock_->show();
    if (isRecovered || box.clickedButton() == discard) left->Remove();
  }
}

bool MainWindow::Recover(LeftJournal& left) {
  try {
    Document::FileRead read;
    reading_->Run(tr("Reading what the edits were made to"), [&] { read = Document::ReadBase(left.Base()); });
    Document::Recovered recovered = Document::Recover(settings_.Journals(), left, std::move(read));
    const QString title = recovered.document->Title();
    AddDocument(std::move(recovered.document));
    if (!recovered.fitsFile)
      Warn(tr("%1 was changed since by another program. %2 of %3 unsaved edits could still be made; look at "
              "the data before you save.")
               .arg(title)
               .arg(recovered.edits)
               .arg(left.EditCount()) +
           (recovered.why.empty() ? QString() : tr("\n\nThe next one: %1").arg(Shown(recovered.why))));
    return true;
  } catch (const UserCancelled&) {
    return false;
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
  return false;
}

bool MainWindow::Save() {
  return CurrentDocument() != nullptr && SaveDocument(*CurrentDocument(), false);
}

bool MainWindow::SaveAs() {
  return CurrentDocument() != nullptr && SaveDocument(*CurrentDocument(), true);
}

bool MainWindow::SaveDocument(Document& document, bool asNew) {
  properties_->Commit();
  asNew |= !document.IsProject();
  if (!asNew && !ConfirmReplacement(document, asNew)) return false;
  if (!asNew) return WriteDocument(document, document.File());
  std::filesystem::path proposed = document.File().empty() ? "project.bvw" : document.File();
  proposed.replace_extension(".bvw");
  const QString name = AskFileToSave(this, tr("Save project"), ShownPath(proposed), tr("Projects (*.bvw)"),
                                     NameEnding::kAlways);
  if (name.isEmpty() || IsOpenElsewhere(document, PathOf(name))) return false;
  return WriteDocument(document, PathOf(name));
}

// Two tabs with one file would replace what the other has saved.
bool MainWindow::IsOpenElsewhere(const Document& document, const std::filesystem::path& file) {
  for (const auto& other : documents_) {
    if (other.get() == &document || !IsSameFile(other->File(), file)) continue;
    Warn(tr("%1 is open in another tab. Save under another name, or close that tab first.")
             .arg(ShownPath(file)));
    return true;
  }
  return false;
}

// A file that another program wrote to is not replaced unasked.
bool MainWindow::ConfirmReplacement(Document& document, bool& asNew) {
  if (!document.IsChangedOutside()) return true;
  QMessageBox box(
      QMessageBox::Warning, windowTitle(),
      QFileInfo::exists(ShownPath(document.File()))
          ? tr("Another program has changed %1 since it was opened. Saving replaces what it wrote.")
                .arg(document.Title())
          : tr("Another program has removed %1 since it was opened.").arg(document.Title()),
      QMessageBox::NoButton, this);
  auto* replace = box.addButton(tr("&Save here"), QMessageBox::DestructiveRole);
  auto* other = box.addButton(tr("Save &under another name…"), QMessageBox::AcceptRole);
  box.addButton(QMessageBox::Cancel);
  box.setDefaultButton(qobject_cast<QPushButton*>(other));
  box.exec();
  asNew = box.clickedButton() == other;
  return asNew || box.clickedButton() == replace;
}

bool MainWindow::WriteDocument(Document& document, const std::filesystem::path& file) {
  try {
    const WaitCursor wait;
    document.Save(file);
  } catch (const std::exception& error) {
    Warn(tr("%1\n\nYour edits are kept here; save them in another place, or try again.")
             .arg(Explained(error)));
    return false;
  }
  desk_->Recording().Saved(document);
  settings_.AddRecentFile(ShownPath(document.File()));
  start_->SetRecentFiles(settings_.RecentFiles());
  Watch(document);
  KeepSession();
  if (DocumentView* view = ViewOf(document)) view->SetNotice({});
  Say(tr("Saved %1.").arg(ShownPath(document.File())));
  return true;
}

bool MainWindow::MayClose(Document& document) {
  properties_->Commit();
  if (!document.IsModified()) return true;
  if (DocumentView* view = ViewOf(document)) tabs_->setCurrentWidget(view);
  const auto answer = QMessageBox::question(
      this, windowTitle(), tr("Save the changes to %1?").arg(document.Title()),
      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  if (answer == QMessageBox::Save) return SaveDocument(document, false);
  return answer == QMessageBox::Discard;
}

bool MainWindow::CloseDocument() {
  Document* document = CurrentDocument();
  if (document == nullptr) return true;
  if (!MayClose(*document)) return false;
  if (!desk_->CloseAnalysesOf(*document)) {
    Say(tr("An analysis computes with %1; cancel it first.").arg(document->Title()));
    return false;
  }
  RemoveDocument(*document);
  return true;
}

// What ends with the window and is in no file: results, a recording, a macro that runs.
bool MainWindow::MayLoseResults() {
  QStringList lost;
  if (desk_->Recording().IsOn()) lost << tr("A macro is being recorded; stop the recording to keep it.");
  if (macros_->IsRunning()) lost << tr("A macro is running, and would be stopped.");
  if (const int count = results_->UnsavedCount(); count > 0)
    lost << (count == 1 ? tr("One result is neither saved nor in a report.")
                        : tr("%1 results are neither saved nor in a report.").arg(count));
  if (lost.isEmpty() || isUnattended_) return true;
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Brenvolt"), lost.join(QLatin1Char('\n')),
                  QMessageBox::NoButton, this);
  auto* const close = box.addButton(tr("Close &anyway"), QMessageBox::DestructiveRole);
  box.setDefaultButton(box.addButton(QMessageBox::Cancel));
  box.exec();
  return box.clickedButton() == close;
}

// Written when it changes, so that a window that is killed comes back as well.
void MainWindow::KeepSession() {
  if (isClosing_ || isUnattended_) return;
  QStringList session;
  for (const auto& document : documents_) {
    if (!document->File().empty()) session << ShownPath(document->File());
  }
  settings_.SetSessionFiles(session);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  for (const auto& document : documents_) {
    if (!MayClose(*document)) return event->ignore();
  }
  if (!macros_->MayReplace() || !MayLoseResults()) return event->ignore();
  for (const auto& document : documents_) {
    if (desk_->CloseAnalysesOf(*document)) continue;
    Say(tr("An analysis computes; cancel it first."));
    return event->ignore();
  }
  KeepSession();
  isClosing_ = true;
  settings_.SetLayout(QStringLiteral("window"), saveGeometry());
  settings_.SetLayout(QStringLiteral("docks"), saveState(kLayoutVersion));
  settings_.SetLayout(QStringLiteral("splitter"), splitter_->saveState());
  while (!documents_.empty()) RemoveDocument(*documents_.back());
  event->accept();
}

void MainWindow::Reload(Document& document) {
  const std::filesystem::path file = document.File();
  const bool decimalComma = document.DecimalComma();
  if (document.IsModified()) {
    const auto answer = QMessageBox::question(
        this, windowTitle(), tr("Reading %1 again loses your unsaved changes to it.").arg(document.Title()),
        QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer != QMessageBox::Discard) return;
  }
  // Opened before the former one goes: where that fails, what is here stays.
  if (!desk_->CloseAnalysesOf(document)) return Say(tr("An analysis computes; cancel it first."));
  try {
    auto again = Document::Open(settings_.Journals(), ReadFile(file, decimalComma));
    RemoveDocument(document);
    AddDocument(std::move(again));
  } catch (const UserCancelled&) {
    Say(tr("Reading %1 was cancelled.").arg(ShownPath(file.filename())));
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
}

void MainWindow::Watch(const Document& document) {
  if (!document.File().empty()) watcher_.addPath(ShownPath(document.File()));
}

void MainWindow::LookAtFile(const QString& file) {
  // Programs replace a file in several steps, as this one does.
  constexpr int kPatience = 300;
  QTimer::singleShot(kPatience, this, [this, file] {
    for (const auto& document : documents_) {
      if (ShownPath(document->File()) != file) continue;
      Watch(*document);
      if (!document->IsChangedOutside()) continue;
      ViewOf(*document)->SetNotice(
          QFileInfo::exists(file) ? tr("Another program has changed this file.")
                                  : tr("Another program has removed this file. Save it to keep the data."));
    }
  });
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  QStringList others;
  for (const QUrl& url : event->mimeData()->urls()) {
    if (url.isLocalFile()) {
      OpenFile(PathOf(url.toLocalFile()));
    } else {
      others << url.toDisplayString();
    }
  }
  event->acceptProposedAction();
  if (!others.isEmpty())
    Warn(tr("Only files of this machine can be opened, not %1.").arg(others.join(QStringLiteral(", "))));
}

void MainWindow::ShowCurrent() {
  DocumentView* view = CurrentView();
  SheetView* grid = view == nullptr ? nullptr : view->CurrentGrid();
  const auto variable = grid == nullptr ? std::nullopt : grid->CurrentVariable();
  if (variable) {
    properties_->Show(&view->Owner(), &grid->Model().Sheet(), *variable);
  } else {
    properties_->Commit();
    properties_->Show(nullptr, nullptr, 0);
  }
  ShowState();
}

void MainWindow::ShowState() {
  const Document* document = CurrentDocument();
  for (int i = 0; i < tabs_->count(); ++i) {
    const Document& one = static_cast<DocumentView*>(tabs_->widget(i))->Owner();
    tabs_->setTabText(i, one.IsModified() ? one.Title() + QStringLiteral(" *") : one.Title());
    tabs_->setTabToolTip(i, one.File().empty() ? tr("Not saved yet") : ShownPath(one.File()));
  }
  history_.setActiveStack(document == nullptr ? nullptr : &const_cast<Document*>(document)->History());
  setWindowModified(document != nullptr && document->IsModified());
  setWindowTitle(document == nullptr ? QStringLiteral("Brenvolt")
                                     : tr("%1[*] – Brenvolt").arg(document->Title()));
  for (QAction* action : documentActions_) action->setEnabled(document != nullptr);
  const bool hasGrid = CurrentView() != nullptr && CurrentView()->CurrentGrid() != nullptr;
  for (QAction* action : gridActions_) action->setEnabled(hasGrid);
}

void MainWindow::ShowHistory() {
  undo_->setEnabled(history_.canUndo());
  redo_->setEnabled(history_.canRedo());
  undo_->setText(history_.canUndo() ? tr("&Undo %1").arg(history_.undoText()) : tr("&Undo"));
  redo_->setText(history_.canRedo() ? tr("&Redo %1").arg(history_.redoText()) : tr("&Redo"));
}

void MainWindow::GoBack(bool undo) {
  if (CurrentDocument() == nullptr) return;
  try {
    undo ? CurrentDocument()->Undo() : CurrentDocument()->Redo();
  } catch (const std::exception& error) {
    Say(Explained(error));
  }
}

void MainWindow::ShowStartPage() {
  start_->SetRecentFiles(settings_.RecentFiles());
  pages_->setCurrentWidget(start_);
}

void MainWindow::Say(const QString& text) {
  statusBar()->showMessage(text, kMessageTime);
}

void MainWindow::Warn(const QString& text) {
  if (isUnattended_) {
    std::fprintf(stderr, "brenvolt-desktop: %s\n",
                 qPrintable(QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '))));
    return;
  }
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Brenvolt"), text, QMessageBox::Ok, this);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

void MainWindow::SetTheme(ThemeChoice theme) {
  settings_.SetTheme(theme);
  ApplyTheme(theme);
}

}  // namespace brenvolt::desktop
