// The user-interface port of the window: each question is put to the person by the window's thread, while the analysis
// waits for the answer on its own.
#pragma once

#include <QPointer>
#include <memory>
#include <string>
#include <vector>

#include "apps/desktop/base/engine_thread.h"
#include "apps/desktop/port/document_sink.h"
#include "apps/desktop/port/progress_window.h"
#include "host/analysis/user_interface.h"

class QWidget;

namespace brenvolt::desktop {

class WindowInterface : public UserInterface {
 public:
  // All must outlive the interface. Questions stand over `owner`, or over the window that is in front of it.
  WindowInterface(EngineThread& engine, DocumentSink& sink, QWidget& owner);
  ~WindowInterface() override;

  // The sheet that questions about variables and cases are about; null for none.
  void SetInput(std::function<const Spreadsheet*()> input) { input_ = std::move(input); }

  MessageAnswer ShowMessage(const Message& message) override;
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& question) override;
  bool SelectVariables(VariableQuestion& question) override;
  bool EditSelection(SelectionQuestion& question) override;
  bool EditWeights(WeightQuestion& question) override;
  bool EditMatrix(MatrixQuestion& question) override;
  void RunModal(CAnalysisModalDialog& dialog) override;
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
  void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;
  // What a person may look at is changed by the thread that paints it.
  void Change(const std::function<void()>& change) override;
  void ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) override;
  void EndProgress() override;
  bool IsExternallyCancelled() override;
  std::chrono::milliseconds PollInterval() const override;

  // What an analysis would show.
  struct Handed {
    std::vector<std::shared_ptr<CAnalysisTableDoc>> tables;
    std::vector<std::shared_ptr<CAnalysisGraphDoc>> graphs;
    std::string message;  // the last one
  };
  // For the engine's thread: carries out a call that shows and asks the person nothing; questions count as cancelled.
  Handed Quietly(const std::function<void()>& call);

  // For the window's thread: a message of the window itself.
  void ShowFault(const QString& what);

 private:
  QWidget* Front() const;
  const Spreadsheet* Input() const { return input_ ? input_() : nullptr; }

  EngineThread& engine_;
  DocumentSink& sink_;
  QWidget& owner_;
  QPointer<ProgressWindow> progress_;
  std::function<const Spreadsheet*()> input_;
  Handed* quiet_ = nullptr;  // what is shown goes here instead; the engine's thread alone looks at it
};

// A file dialog's filters from those of a question, whose descriptions and patterns stand one behind the other, apart by
// bars: "Data files (*.csv)|*.csv|All files (*.*)|*.*||".
QStringList NameFilters(std::string_view filter);

}  // namespace brenvolt::desktop
