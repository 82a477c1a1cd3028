// The main window: documents at the left, results at the right, the variable's properties and macros around them.
#pragma once

#include <QFileSystemWatcher>
#include <QMainWindow>
#include <QUndoGroup>
#include <filesystem>
#include <memory>
#include <vector>

#include "apps/desktop/documents/document.h"
#include "apps/desktop/workbench/settings.h"
#include "host/jobs/base/analysis_session.h"

class QActionGroup;
class QDockWidget;
class QMenu;
class QSplitter;
class QStackedWidget;
class QTabWidget;

namespace brenvolt::desktop {

class AnalysisDesk;
class DocumentView;
class FileReading;
class MacroPanel;
class PropertyPanel;
class ResultsPanel;
class SheetView;
class StartPage;

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  // What is remembered stands in this folder.
  explicit MainWindow(const std::filesystem::path& folder = Settings::PersonalFolder());
  ~MainWindow() override;

  // Opens a project or a data file, or shows it if it is open. False, and a message was shown, for one that cannot be
  // opened.
  bool OpenFile(const std::filesystem::path& path);
  // The same with a decimal comma in files that are no projects; without, it is found by looking.
  bool OpenFile(const std::filesystem::path& path, bool decimalComma);
  // Runs a macro; its output is shown. `macroEnded` follows.
  void RunMacro(const std::filesystem::path& path);
  // Nobody answers: what would be shown in a message goes to standard error.
  void SetUnattended(bool unattended) { isUnattended_ = unattended; }
  // Offers what a crash left, and opens again what was open when the window was closed.
  void Resume();

  Document* CurrentDocument() const;
  DocumentView* CurrentView() const;
  std::size_t DocumentCount() const { return documents_.size(); }
  ResultsPanel& Results() { return *results_; }
  MacroPanel& Macros() { return *macros_; }
  AnalysisDesk& Desk() { return *desk_; }

 public slots:
  // Begins a task over the current document; asks for one where there is none and the task needs data.
  void StartTask(Task task);
  void NewProject();
  // Asks for files.
  void Open();
  // False if the person cancelled, or it failed and the person was told.
  bool Save();
  bool SaveAs();
  // Closes the current document; asks before unsaved edits are lost. False if the person cancelled.
  bool CloseDocument();
  // Asks for the file of a report of the results that are looked at: the job's own while the dialog that made them is open,
  // else of their tables and pictures.
  void ExportReport();

 signals:
  void macroEnded(bool succeeded);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeParts();
  void MakeFileMenu();
  void MakeEditMenu();
  void MakeTaskMenu();
  void MakeViewMenu();
  void MakeHelpMenu();
  void ConnectParts();
  void FillRecentMenu();

  DocumentView& AddDocument(std::unique_ptr<Document> document);
  void RemoveDocument(Document& document);
  DocumentView* ViewOf(const Document& document) const;
  // Saves under its own name, or asks for one.
  bool SaveDocument(Document& document, bool asNew);
  bool ConfirmReplacement(Document& document, bool& asNew);
  bool WriteDocument(Document& document, const std::filesystem::path& file);
  // Asks whether unsaved edits are saved; false if the person cancelled.
  bool MayClose(Document& document);
  bool IsOpenElsewhere(const Document& document, const std::filesystem::path& file);
  // Asks before what is in no file is lost; false if the person cancelled.
  bool MayLoseResults();
  void KeepSession();
  void ShowResults();
  void SayFound(Document& document);
  void SetRecording(bool on);
  void Reload(Document& document);
  void ExportSheet();
  QString BesideData(const QString& name) const;
  void WriteReportTo(const std::filesystem::path& file);
  // Histogram and box plot of the variable of the current cell, as results.
  void ShowPictures();
  bool Recover(LeftJournal& left);
  // Reads a file while the window stays alive; throws as Document::Read, and UserCancelled.
  Document::FileRead ReadFile(const std::filesystem::path& file, bool decimalComma);
  void OfferMacros();

  // The sheet of a document that a task is about; throws Error without one.
  static Spreadsheet& SheetFor(Task task, Document& document, Spreadsheet* current);
  // The same from the start page.
  void StartTaskAfresh(Task task);
  // A project with an empty sheet, whose variables a design names.
  void NewDesign();

  void Watch(const Document& document);
  void LookAtFile(const QString& file);
  void ShowState();
  void ShowHistory();
  void GoBack(bool undo);
  void ShowStartPage();
  void ShowCurrent();
  void Say(const QString& text);
  void Warn(const QString& text);
  void SetTheme(ThemeChoice theme);
  // A slot of the grid that has the current sheet.
  QAction* AddGridAction(QMenu& menu, const QString& text, void (SheetView::*what)());

  Settings settings_;
  bool isUnattended_ = false;
  bool isClosing_ = false;  // the session is what was open before
  std::vector<std::unique_ptr<Document>> documents_;
  std::unique_ptr<FileReading> reading_;
  std::unique_ptr<AnalysisDesk> desk_;  // its analyses look at the documents
  QUndoGroup history_;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  QFileSystemWatcher watcher_;

  StartPage* start_ = nullptr;
  QStackedWidget* pages_ = nullptr;
  QSplitter* splitter_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  ResultsPanel* results_ = nullptr;
  PropertyPanel* properties_ = nullptr;
  MacroPanel* macros_ = nullptr;
  QDockWidget* propertyDock_ = nullptr;
  QDockWidget* macroDock_ = nullptr;
  QMenu* recentMenu_ = nullptr;
  QList<QAction*> documentActions_;  // that need a document
  QList<QAction*> gridActions_;      // that need a sheet
};

}  // namespace brenvolt::desktop
