#include "apps/desktop/workbench/analysis_desk.h"

#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/words.h"
#include "host/analysis/action_recording.h"
#include "host/base/error.h"
#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/dialogs/dialog_jobs.h"
#include "host/jobs/dialogs/shown_results.h"
#include "host/jobs/dialogs/variable_design.h"
#include "host/jobs/reports/fit_report.h"
#include "host/jobs/reports/repeated_reports.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::desktop {
namespace {

// Dialogs that the desk knows by their templates, and controls of theirs.
constexpr const char* kFit = "dialog25974";
constexpr const char* kFitResults = "dialog25983";
constexpr const char* kDesign = "dialog15000";
constexpr const char* kSimulation = "dialog25991";
constexpr const char* kSimulationResults = "dialog25988";
constexpr const char* kProfiler = "dialog15033";
constexpr std::int32_t kFitVariables = 1010;
constexpr std::int32_t kFitMatrix = 1164;  // shows the matrix, and saves nothing
constexpr std::int32_t kDesignVariables = 1400;
constexpr std::int32_t kDesignSave = 1405;
constexpr std::int32_t kProfilerResponse = 1341;

// The dialog that a task begins with, and the one of its results, which is left for it.
struct TaskDialogs {
  Task task;
  const char* begins;
  const char* results;  // null without
};
constexpr TaskDialogs kDialogs[] = {{Task::kFit, kFit, kFitResults},
                                    {Task::kSimulate, kSimulation, kSimulationResults},
                                    {Task::kDesign, kDesign, nullptr},
                                    {Task::kProfile, kProfiler, nullptr}};

QString TitleOf(Task task, const Document& document, const Spreadsheet& sheet) {
  const QString data = Utf8(document.Title()) == sheet.Name() || document.File().empty() ? Shown(sheet.Name())
                       : document.IsProject() ? document.Title() + QStringLiteral(", ") + Shown(sheet.Name())
                                              : document.Title();
  switch (task) {
    case Task::kFit:
      return AnalysisDesk::tr("Fits of %1").arg(data);
    case Task::kSimulate:
      return AnalysisDesk::tr("Simulation of %1").arg(data);
    case Task::kDesign:
      return AnalysisDesk::tr("Design in %1").arg(data);
    case Task::kProfile:
      return AnalysisDesk::tr("Profile of %1").arg(data);
  }
  return data;
}

// What is shown meanwhile is not for the results.
class Quiet {
 public:
  explicit Quiet(std::atomic<bool>& flag) : flag_(flag) { flag_ = true; }
  ~Quiet() { flag_ = false; }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

 private:
  std::atomic<bool>& flag_;
};

}  // namespace

// One analysis with the document that it is about.
class AnalysisDesk::Running : public DocumentSink {
 public:
  Running(AnalysisDesk& desk, Document& document, Spreadsheet& sheet)
      : desk_(desk), run_(desk.engine_, *this, sheet, desk.owner_) {
    TakeSubject(document, sheet);
    QObject::connect(&run_, &AnalysisRun::windowChanged, &run_, [this] { Follow(); });
  }

  AnalysisRun& Run() { return run_; }
  Document& Subject() { return *document_; }

  // Results of another step stand together, from its first one on.
  void BeginStep(Task task) { step_ = TitleOf(task, *document_, *sheet_); }
  void BeginGroup() {
    if (step_.isEmpty()) return;
    emit desk_.begun(std::exchange(step_, {}));
    emit desk_.originKnown(origin_);
  }

  // The matrix that goes with saved distributions becomes a sheet of the project, as everywhere; others are shown.
  void TakeDocument(std::shared_ptr<CAnalysisTableDoc> document) override {
    if (isQuiet_) return;
    ++shown_;
    BeginGroup();
    if (!isSeries_) desk_.recording_.Shown(run_.Analysis(), repeated_++, document);
    const Spreadsheet& table = document->Table();
    if (!IsMatrixSheet(table)) {
      if (IsOpen(kSimulation)) output_ = document;
    } else if (run_.Input().ResultsToWorkbook() && pressed_ != kFitMatrix) {
      document_->Change(AnalysisDesk::tr("Save distributions"), [&](Workbook& workbook) {
        PutCorrelationMatrix(workbook, sheet_->Name(), std::make_unique<Spreadsheet>(table));
      });
      desk_.recording_.TookMatrix(*document_, *sheet_, document);
      emit desk_.said(
          AnalysisDesk::tr("The distributions are in %1 now; save it to keep them.").arg(document_->Title()));
    }
    emit desk_.tableShown(std::move(document));
    StandBeside();
  }
  void TakeGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override {
    if (isQuiet_) return;
    ++shown_;
    BeginGroup();
    if (!isSeries_) ++repeated_;
    emit desk_.graphShown(std::move(graph));
    StandBeside();
  }
  // Another file becomes the input.
  Spreadsheet* OpenData(const std::filesystem::path& path) override {
    Document& former = *document_;
    Document& opened = desk_.opener_(path);
    Spreadsheet& sheet = opened.Data().Sheet({});
    TakeSubject(opened, sheet);
    if (!desk_.IsUsing(former)) former.EndObservation();
    return &sheet;
  }
  void TakeChange() override {
    if (const auto now = ShapeOf(*sheet_); std::exchange(shape_, now) != now) document_->ShowShape(*sheet_);
    emit desk_.changed();
  }

  // Nothing can be done without variables, so that they are asked for first.
  void AskForVariables() {
    if (IsOpen(kDesign) && sheet_->VariableCount() == 0) Click(kDesignVariables);
    if (IsOpen(kFit)) Click(kFitVariables);
  }

  // Shows the dialog that a task begins with if it is open here over this sheet, also behind that of its results.
  bool ComesForward(Task task, const Spreadsheet& sheet) {
    if (&sheet != sheet_) return false;
    for (const TaskDialogs& dialogs : kDialogs) {
      if (dialogs.task != task) continue;
      if (dialogs.results != nullptr && IsOpen(dialogs.results)) run_.Window()->reject();
      if (!IsOpen(dialogs.begins)) return false;
      run_.Show();
      run_.Window()->activateWindow();
      return true;
    }
    return false;
  }

  bool HasReport() const {
    return (IsOpen(kFitResults) && fit_) || (IsOpen(kSimulationResults) && simulation_) || IsOpen(kProfiler);
  }
  // What makes the report on the thread of analyses.
  std::function<Report()> Reporter(const std::filesystem::path& file) {
    if (IsOpen(kFitResults)) return FitReporter(file);
    DataFile& home = document_->Data();
    const std::string obstacle = Obstacle(IsAsSaved());
    if (IsOpen(kSimulationResults)) {
      SimulateJob job = *simulation_;
      job.report = file;
      job.data = DataOf(FittedSheet(home, {}));
      return [this, job, &home, obstacle] { return RepeatedReport(job, *sheet_, home, obstacle); };
    }
    return [this, file, data = DataOf(home.Sheet({})), &home, obstacle, selected = SelectedResponse()] {
      const ActionRecording none(run_.Analysis());
      ProfileJob job = ReadProfileJob(*run_.Analysis().GetDialgInterface(), selected);
      job.report = file;
      job.data = data;
      return RepeatedReport(std::move(job), *sheet_, home, obstacle);
    };
  }

 private:
  using Shape = std::pair<std::size_t, std::size_t>;
  static Shape ShapeOf(const Spreadsheet& sheet) { return {sheet.VariableCount(), sheet.CaseCount()}; }

  void TakeSubject(Document& document, Spreadsheet& sheet) {
    document_ = &document;
    sheet_ = &sheet;
    shape_ = ShapeOf(sheet);
    OfferMatrices(run_.Input(), document.Content());
    if (!document.IsObserved()) document.Observe();
  }

  // Whether a command that opens the file has the same data.
  bool IsAsSaved() const { return !document_->File().empty() && !document_->IsModified(); }
  std::string Obstacle(bool isAsInFile) const {
    if (!isAsInFile) return kChangedSinceOpened;
    return document_->IsChangedOutside() ? kFileChanged : std::string();
  }
  // What is saved with the values has no part in fits.
  std::string FitObstacle() const {
    if (!fit_->isWhole) return kTreatedApart;
    return Obstacle(IsAsSaved() || document_->HasValuesOfFile(*sheet_));
  }
  // `usual` is the sheet that is taken where none is named.
  JobData DataOf(const Spreadsheet& usual) const {
    JobData data = document_->Reading();
    if (document_->IsProject() && &usual != sheet_) data.sheet = sheet_->Name();
    return data;
  }
  // The dialog shows what it is asked for while it is read, which is not for the results.
  std::function<Report()> FitReporter(const std::filesystem::path& file) {
    FitJob job = fit_->job;
    job.report = file;
    job.data = DataOf(document_->Data().Sheet({}));
    return [this, job, obstacle = FitObstacle()] {
      const ActionRecording none(run_.Analysis());
      const Quiet quiet(isQuiet_);
      const auto dialog = run_.Analysis().GetDialgInterface();
      const Variant shown = dialog->Get("QuickTabVariable");
      const std::vector<Message> messages;
      Report report = FitReport(job, *dialog, {*sheet_, messages, obstacle});
      dialog->Put("QuickTabVariable", shown);
      return report;
    };
  }
  int SelectedResponse() const {
    const auto* const list = qobject_cast<QListWidget*>(run_.Window()->Form().WidgetOf(kProfilerResponse));
    return list != nullptr ? list->currentRow() + 1 : 0;
  }
  // What a person has chosen is known while the dialog is open. Results of choices that no job has are shown without a
  // report of their own, and say why.
  void ReadJob() {
    const bool fits = IsOpen(kFit);
    const bool simulates = IsOpen(kSimulation);
    const bool profiles = IsOpen(kProfiler);
    if (!fits && !simulates && !profiles) return;
    origin_ = {};
    if (fits) fit_.reset();
    if (simulates) simulation_.reset();
    std::optional<ProfileJob> profile;
    const int selected = profiles ? SelectedResponse() : 0;
    try {
      desk_.engine_.Run([&] {
        const auto dialog = run_.Analysis().GetDialgInterface();
        const ActionRecording none(run_.Analysis());
        if (fits) fit_ = ReadFitJob(*dialog, *sheet_);
        if (simulates) simulation_ = ReadSimulateJob(*dialog, *sheet_);
        if (profiles) profile = ReadProfileJob(*dialog, selected);
      });
      origin_ = OriginNow(profile);
    } catch (const std::exception& error) {
      origin_.obstacle = "No command repeats this: " + Utf8(Reason(error)) + ".";
    }
  }
  // What makes the results that follow.
  ShownOrigin OriginNow(std::optional<ProfileJob>& profile) const {
    DataFile& home = document_->Data();
    if (profile) {
      profile->data = DataOf(home.Sheet({}));
      return OriginOf(*profile, Obstacle(IsAsSaved()));
    }
    if (IsOpen(kSimulation)) {
      SimulateJob job = *simulation_;
      job.data = DataOf(FittedSheet(home, {}));
      return OriginOf(job, Obstacle(IsAsSaved()));
    }
    FitJob job = fit_->job;
    job.data = DataOf(home.Sheet({}));
    return OriginOf(job, FitObstacle());
  }

  void Click(std::int32_t number) {
    auto* const button = qobject_cast<QPushButton*>(run_.Window()->Form().WidgetOf(number));
    if (button != nullptr) button->click();
  }

  bool IsOpen(const char* dialog) const {
    return run_.Window() != nullptr && run_.Window()->objectName() == QLatin1String(dialog);
  }

  // A window of the analysis has been opened.
  void Follow() {
    DialogWindow* const window = run_.Window();
    if (window == nullptr) return;
    StandBeside();
    QObject::connect(window, &DialogWindow::pressing, &run_,
                     [this](std::int32_t number) { BeforePress(number); });
    QObject::connect(window, &DialogWindow::operated, &run_, [this] { AfterOperation(); });
    if (IsOpen(kFit) && !std::exchange(isFitPrepared_, true)) Prepare();
    if ((IsOpen(kSimulation) || IsOpen(kProfiler)) && !std::exchange(isPrepared_, true)) Prepare();
    if (IsOpen(kFitResults)) ShowSeries([](CAnalysisSupport& analysis) { ShowFits(analysis); });
    if (IsOpen(kSimulationResults) && output_ != nullptr) {
      ShowSeries([this](CAnalysisSupport& analysis) { ShowSimulated(analysis, output_->Table()); });
    }
  }

  void Prepare() {
    const bool fits = IsOpen(kFit);
    const bool simulates = IsOpen(kSimulation);
    desk_.engine_.Run([&] {
      const auto dialog = run_.Analysis().GetDialgInterface();
      if (fits) return PrepareFit(*dialog);
      PrepareSeed(*dialog);
      if (simulates) PrepareMethod(*dialog, {*sheet_, &document_->Data(), sheet_, {}});
    });
    run_.Window()->Refresh();
  }

  // A design goes into the project with its correlations, which only their matrix holds.
  void BeforePress(std::int32_t number) {
    pressed_ = number;
    shownBefore_ = shown_;
    simulates_ = IsOpen(kProfiler) && number == kControlOk;
    if (number == kControlOk) {
      ReadJob();
      for (const TaskDialogs& dialogs : kDialogs) {
        if (dialogs.task != Task::kDesign && IsOpen(dialogs.begins)) BeginStep(dialogs.task);
      }
    }
    if (!IsOpen(kDesign) || (number != kControlOk && number != kDesignSave)) return;
    try {
      desk_.engine_.Run([this] { run_.Analysis().GetDialgInterface()->Get("CorrelationMatrix"); });
    } catch (const std::exception& error) {
      emit desk_.said(
          AnalysisDesk::tr("The correlations of the design cannot be shown: %1").arg(Reason(error)));
    }
  }

  void AfterOperation() {
    pressed_ = 0;
    desk_.TakeChanges();
    if (!std::exchange(simulates_, false) || shown_ == shownBefore_ || !IsOpen(kProfiler)) return;
    const int selected = SelectedResponse();
    ShowSeries([selected](CAnalysisSupport& analysis) { ShowResponses(analysis, selected); });
    run_.Window()->Refresh();
  }

  void ShowSeries(const std::function<void(CAnalysisSupport&)>& show) {
    emit desk_.seriesBegun();
    isSeries_ = true;
    QString failure;
    try {
      desk_.engine_.Run([&] { show(run_.Analysis()); });
    } catch (const std::exception& error) {
      failure = Reason(error);
    }
    isSeries_ = false;
    emit desk_.seriesEnded();
    StandBeside();
    if (!failure.isEmpty()) run_.Interface().ShowFault(failure);
  }

  // A dialog that covers results is moved, once they have their place on the screen.
  void StandBeside() {
    if (desk_.place_ == nullptr || std::exchange(isMoving_, true)) return;
    QTimer::singleShot(0, &run_, [this] {
      isMoving_ = false;
      if (run_.Window() != nullptr && run_.Window()->isVisible()) desk_.place_(*run_.Window());
    });
  }

  AnalysisDesk& desk_;
  Document* document_ = nullptr;
  Spreadsheet* sheet_ = nullptr;
  Shape shape_;
  std::shared_ptr<CAnalysisTableDoc> output_;  // the simulated data that are shown last
  QString step_;                               // the title of the group that the next result begins
  ShownOrigin origin_;                         // what makes its results
  int shown_ = 0;                              // documents and graphs
  int shownBefore_ = 0;
  std::int32_t pressed_ = 0;  // the button whose work is under way
  std::size_t repeated_ = 0;  // of these, what a macro shows as well
  bool isSeries_ = false;     // which no macro shows
  bool simulates_ = false;    // the profiler was asked for runs
  std::atomic<bool> isQuiet_ = false;
  bool isMoving_ = false;  // soon
  bool isFitPrepared_ = false;
  bool isPrepared_ = false;  // the dialog has what nobody chose
  std::optional<FitInDialog> fit_;
  std::optional<SimulateJob> simulation_;
  AnalysisRun run_;
};

AnalysisDesk::AnalysisDesk(QWidget& owner, Opener opener) : owner_(owner), opener_(std::move(opener)) {
  connect(&engine_, &EngineThread::busyChanged, this, &AnalysisDesk::SetBusy);
}

AnalysisDesk::~AnalysisDesk() = default;

void AnalysisDesk::Start(Task task, Document& document, Spreadsheet& sheet) {
  if (engine_.IsBusy())
    throw Error("an analysis computes; start another one when it has ended, or cancel it");
  for (const auto& one : running_) {
    if (one->ComesForward(task, sheet)) return;
  }
  RequireCases(sheet);
  Running& running = *running_.emplace_back(std::make_unique<Running>(*this, document, sheet));
  connect(
      &running.Run(), &AnalysisRun::ended, this, [this, ended = &running] { End(ended); },
      Qt::QueuedConnection);
  try {
    engine_.Run([&] { recording_.Began(document, sheet, running.Run().Analysis()); });
    running.BeginStep(task);
    running.Run().Begin(static_cast<int>(task));
  } catch (...) {
    End(&running);
    throw;
  }
  running.AskForVariables();
}

DialogWindow* AnalysisDesk::Window() const {
  return running_.empty() ? nullptr : running_.back()->Run().Window();
}

bool AnalysisDesk::IsUsing(const Document& document) const {
  return std::ranges::any_of(running_, [&](const auto& one) { return &one->Subject() == &document; });
}

bool AnalysisDesk::CloseAnalysesOf(const Document& document) {
  if (engine_.IsBusy()) return false;
  std::vector<const Running*> over;
  for (const auto& one : running_) {
    if (&one->Subject() == &document) over.push_back(one.get());
  }
  for (const Running* one : over) End(one);
  return true;
}

void AnalysisDesk::End(const Running* ended) {
  TakeChanges();
  const auto found = std::ranges::find(running_, ended, &std::unique_ptr<Running>::get);
  if (found == running_.end()) return;
  Document& document = (*found)->Subject();
  const std::unique_ptr<Running> kept = std::move(*found);
  running_.erase(found);
  if (!IsUsing(document)) document.EndObservation();
}

QString AnalysisDesk::Describe(const Variable& variable) {
  if (engine_.IsBusy()) return {};
  std::string text;
  try {
    engine_.Run([&] { text = DistributionOf(variable); });
  } catch (const std::exception& error) {
    // Properties that make no distribution are listed as they are.
    emit said(tr("What %1 is simulated from cannot be shown: %2").arg(Shown(variable.Name()), Reason(error)));
    return {};
  }
  return Shown(text);
}

std::vector<std::pair<std::string, std::string>> AnalysisDesk::Designed(const Variable& variable,
                                                                        const std::string& distribution) {
  if (engine_.IsBusy()) throw Error("an analysis computes; enter the distribution when it has ended");
  std::vector<std::pair<std::string, std::string>> properties;
  engine_.Run([&] { properties = PropertiesWith(variable, distribution); });
  return properties;
}

bool AnalysisDesk::HasReport() const {
  return std::ranges::any_of(running_, [](const auto& one) { return one->HasReport(); });
}

Report AnalysisDesk::MakeReport(const std::filesystem::path& file) {
  const auto found =
      std::find_if(running_.rbegin(), running_.rend(), [](const auto& one) { return one->HasReport(); });
  if (found == running_.rend() || engine_.IsBusy()) throw Error("no open dialog has results to report");
  const std::function<Report()> make = (*found)->Reporter(file);
  Report report;
  engine_.Run([&] { report = make(); });
  return report;
}

void AnalysisDesk::TakeChanges() {
  if (engine_.IsBusy()) return;
  for (const auto& one : running_) one->Subject().TakeChanges(tr("Analysis"));
  emit changed();
}

void AnalysisDesk::SetBusy(bool busy) {
  for (const auto& one : running_) one->Subject().SetBusy(busy);
}

}  // namespace brenvolt::desktop
