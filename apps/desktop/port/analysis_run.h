// One analysis in the window: it runs on the thread of analyses, and its open dialog stands beside the results, one
// after the other as the sequence goes.
#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <vector>

#include "apps/desktop/base/engine_thread.h"
#include "apps/desktop/base/limit_mover.h"
#include "apps/desktop/dialogs/dialog_window.h"
#include "apps/desktop/port/document_sink.h"
#include "apps/desktop/port/window_interface.h"
#include "host/application/application.h"

namespace brenvolt::desktop {

class AnalysisRun : public QObject, public LimitMover {
  Q_OBJECT

 public:
  // Starts an analysis over a sheet; its startup dialog is open but not yet shown. All must outlive the run; while a
  // call is under way (engine.IsBusy()), the sheet is the analysis's. Throws Error.
  AnalysisRun(EngineThread& engine, DocumentSink& sink, Spreadsheet& sheet, QWidget& owner);
  ~AnalysisRun() override;

  // For who offers the analysis matrices or other services, and for recorders, before Show.
  CAnalysisDoc& Input() { return input_; }
  CAnalysisSupport& Analysis() { return *analysis_; }
  WindowInterface& Interface() { return interface_; }

  // Shows the window of the dialog that is open. Called again after the analysis was driven otherwise.
  void Show();
  // The window that is shown; null once the sequence has ended.
  DialogWindow* Window() const { return window_; }
  // From the startup dialog to the dialog of one of its tasks, as a choice in its list does. False if it was refused.
  bool Begin(int task);

  // The limits in pictures that the open dialog made are settings of it, which go by the names of the limits.
  bool CanMove(const CAnalysisGraphDoc& graph, const PictureLimit& limit) override;
  MovedLimit Move(const CAnalysisGraphDoc& graph, const PictureLimit& limit, double value,
                  bool isLast) override;

 signals:
  // Another dialog's window is shown.
  void windowChanged();
  // The person has left the last dialog.
  void ended();

 private:
  // Hands everything on, and remembers how each picture is made again.
  class RememberingSink : public DocumentSink {
   public:
    RememberingSink(AnalysisRun& run, DocumentSink& sink) : run_(run), sink_(sink) {}
    void TakeDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
    void TakeGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;
    Spreadsheet* OpenData(const std::filesystem::path& path) override { return sink_.OpenData(path); }
    void TakeChange() override { sink_.TakeChange(); }

   private:
    AnalysisRun& run_;
    DocumentSink& sink_;
    std::int32_t withTables_ = 0;  // a button that makes tables, too, and whose pictures stay as they are
  };
  struct MadeGraph {
    std::shared_ptr<CAnalysisGraphDoc> graph;
    std::int32_t button = 0;  // 0 for a summary that was shown unasked
  };

  MadeGraph* MadeOf(const CAnalysisGraphDoc& graph);
  void FollowChoice();
  // For the engine's thread: what the button shows that made a picture, without a line in the macro.
  WindowInterface::Handed MakeQuietly(std::int32_t button);
  MovedLimit Remake(MadeGraph& made, const PictureLimit& limit);
  void Follow();
  void OpenWindow(CAnalysisDialog& dialog, const QPoint* place);

  EngineThread& engine_;
  QWidget& owner_;
  RememberingSink sink_;
  WindowInterface interface_;
  Application application_;
  CAnalysisDoc input_;
  std::unique_ptr<CAnalysisSupport> analysis_;
  std::function<bool()> isOpen_;  // of the dialog that the window shows
  QPointer<DialogWindow> window_;
  std::vector<MadeGraph> made_;  // by the dialog that is open, the last one last
};

}  // namespace brenvolt::desktop
