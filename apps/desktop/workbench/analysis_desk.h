// The analyses of the window: each is started over a sheet of a document, its dialogs stand beside the results, and what
// it shows and changes reaches results and document.
#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/desktop/documents/document.h"
#include "apps/desktop/port/analysis_run.h"
#include "apps/desktop/workbench/macro_recording.h"
#include "host/jobs/base/analysis_session.h"
#include "host/jobs/reports/shown_report.h"
#include "host/reporting/report.h"

namespace brenvolt::desktop {

class AnalysisDesk : public QObject {
  Q_OBJECT

 public:
  // Opens a data file in the window; throws Error.
  using Opener = std::function<Document&(const std::filesystem::path& file)>;

  // Dialogs stand over `owner`.
  AnalysisDesk(QWidget& owner, Opener opener);
  ~AnalysisDesk() override;

  // Moves dialogs that cover results; without, they stand where the system puts them.
  using Placer = std::function<void(QWidget& dialog)>;
  void SetPlacer(Placer place) { place_ = std::move(place); }

  // Begins a task over a sheet of the document, or shows its dialog where that is open. Throws Error.
  void Start(Task task, Document& document, Spreadsheet& sheet);
  // True while a dialog of an analysis of the document is open.
  bool IsUsing(const Document& document) const;
  // Closes the dialogs over a document. False while an analysis computes.
  bool CloseAnalysesOf(const Document& document);
  // What a variable is simulated from, in plain notation; empty without, and while an analysis computes.
  QString Describe(const Variable& variable);
  // Its properties with another distribution (PropertiesWith, host/jobs/dialogs/variable_design.h).
  std::vector<std::pair<std::string, std::string>> Designed(const Variable& variable,
                                                            const std::string& distribution);

  // Whether an open dialog has results to report.
  bool HasReport() const;
  // The report of the results that an open dialog shows, of several the one opened last, as the command makes it for
  // `file`. Throws Error and WrongJob.
  Report MakeReport(const std::filesystem::path& file);

  // Analyses that begin while it is on are recorded.
  MacroRecording& Recording() { return recording_; }
  // The thread of analyses.
  EngineThread& Engine() { return engine_; }
  // The window of the dialog that was opened last; null if none is open.
  DialogWindow* Window() const;

 signals:
  // Results of an analysis follow.
  void begun(const QString& title);
  // What makes them.
  void originKnown(const ShownOrigin& origin);
  void tableShown(std::shared_ptr<CAnalysisTableDoc> table);
  void graphShown(std::shared_ptr<CAnalysisGraphDoc> graph);
  // Several results come together, of which the first is looked at first; that was the last of them.
  void seriesBegun();
  void seriesEnded();
  // An analysis has changed data that are shown, or results.
  void changed();
  void said(const QString& text);

 private:
  class Running;

  void TakeChanges();
  void End(const Running* ended);
  void SetBusy(bool busy);

  QWidget& owner_;
  Opener opener_;
  Placer place_;
  EngineThread engine_;
  MacroRecording recording_;
  std::vector<std::unique_ptr<Running>> running_;
};

}  // namespace brenvolt::desktop
