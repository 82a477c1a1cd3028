// What the main window does with the sheet that is shown: the tasks of the analysis, pictures, exports.
#include <QSplitter>
#include <QStackedWidget>

#include "apps/desktop/base/save_question.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/analysis_desk.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/macro_panel.h"
#include "apps/desktop/workbench/main_window.h"
#include "apps/desktop/workbench/telling.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/design_job.h"
#include "host/jobs/reports/shown_report.h"
#include "host/reporting/report_file.h"

namespace brenvolt::desktop {

// The sheet that is shown, unless a simulation finds its distributions elsewhere.
Spreadsheet& MainWindow::SheetFor(Task task, Document& document, Spreadsheet* current) {
  const bool isData = current != nullptr && current->Kind() == SheetKind::kData;
  if (isData && (task != Task::kSimulate || CarriesDistributions(*current))) return *current;
  return task == Task::kSimulate ? FittedSheet(document.Data(), {}) : document.Data().Sheet({});
}

void MainWindow::NewDesign() {
  auto sheet = std::make_unique<Spreadsheet>(std::string(kNewDesignSheet));
  AddDocument(Document::New(settings_.Journals(), std::move(sheet)));
}

void MainWindow::StartTask(Task task) {
  const bool needsData = task == Task::kFit || task == Task::kSimulate;
  if (CurrentDocument() == nullptr) needsData ? Open() : NewDesign();
  if (CurrentDocument() == nullptr) return;
  pages_->setCurrentWidget(splitter_);
  try {
    Document& document = *CurrentDocument();
    desk_->Start(task, document, SheetFor(task, document, CurrentView()->CurrentSheet()));
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
}

// A design needs no data, so that one begins with an empty project whatever is open.
void MainWindow::StartTaskAfresh(Task task) {
  if (task == Task::kDesign) NewDesign();
  StartTask(task);
}

void MainWindow::SetRecording(bool on) {
  MacroRecording& recording = desk_->Recording();
  if (!on) {
    // What was written meanwhile is asked for before it makes room; a person who cancels goes on recording.
    if (!macros_->MayReplace()) return macros_->SetRecording(true);
    const QString text = recording.Stop();
    if (text.isEmpty()) Say(tr("No analysis was begun, so that nothing was recorded."));
    if (!text.isEmpty()) macros_->SetText(text);
  } else if (macros_->MayReplace()) {
    recording.Start();
    Say(tr("Analyses that begin now are written down, and what you save of them."));
  }
  macros_->SetRecording(recording.IsOn());
}

// People look for what came of a file where the file is.
QString MainWindow::BesideData(const QString& name) const {
  const Document* document = CurrentDocument();
  if (document == nullptr || document->File().empty()) return name;
  return ShownPath(document->File().parent_path() / PathOf(name));
}

void MainWindow::ExportSheet() {
  const DocumentView* view = CurrentView();
  const Spreadsheet* sheet = view == nullptr ? nullptr : view->CurrentSheet();
  if (sheet == nullptr) return;
  const QString name = AskFileToSave(
      this, tr("Export sheet"), BesideData(Shown(sheet->Name()) + QStringLiteral(".csv")), tr("CSV (*.csv)"));
  if (name.isEmpty()) return;
  try {
    const bool comma = UserNumberLocale().decimalSeparator == ',';
    WriteCsvFile(*sheet, PathOf(name), comma ? CsvFormat::DecimalComma() : CsvFormat());
    Say(tr("Exported %1.").arg(name));
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
}

void MainWindow::ExportReport() {
  if (results_->Count() == 0)
    return Warn(tr("There are no results yet. Begin one of the tasks of the menu \"Analyse\"."));
  const QString name = AskFileToSave(this, tr("Export report"), BesideData(QStringLiteral("report.pdf")),
                                     tr("PDF (*.pdf);;HTML (*.html);;Markdown (*.md)"));
  if (!name.isEmpty()) WriteReportTo(PathOf(name));
}

void MainWindow::WriteReportTo(const std::filesystem::path& file) {
  try {
    JobFaults faults;
    CheckReport(file, faults);
    RequireNone(std::move(faults));
    const WaitCursor wait;
    const bool isOfDialog = desk_->HasReport() && results_->IsGroupOpen();
    WriteReport(isOfDialog ? desk_->MakeReport(file)
                           : ShownReport(Utf8(results_->GroupTitle()), results_->ShownGroup(),
                                         results_->GroupOrigin()),
                file);
    results_->SetReported();
    Say(tr("The report is in %1.").arg(ShownPath(file)));
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
}

void MainWindow::ShowPictures() {
  const SheetView* grid = CurrentView() == nullptr ? nullptr : CurrentView()->CurrentGrid();
  const auto variable = grid == nullptr ? std::nullopt : grid->CurrentVariable();
  if (!variable) return Say(tr("Choose a cell of the variable first."));
  const Spreadsheet& sheet = CurrentView()->CurrentGrid()->Model().Sheet();
  try {
    const WaitCursor wait;
    Spreadsheet alone(sheet.Name());
    alone.SetKind(sheet.Kind());
    alone.AddVariable(sheet.VariableAt(*variable));
    alone.SetSelection(sheet.Selection());
    const std::vector<PlotPage> pages = DataPlots(alone, kOverview);
    results_->BeginGroup(tr("Pictures of %1").arg(CurrentDocument()->Title()));
    for (const PlotPage& page : pages) results_->Add(std::make_shared<CAnalysisGraphDoc>(page.page));
  } catch (const std::exception& error) {
    Warn(Explained(error));
  }
}

}  // namespace brenvolt::desktop
