#include "apps/desktop/port/analysis_run.h"

#include "host/analysis/dialog_automation.h"
#include "host/jobs/base/result_files.h"

namespace brenvolt::desktop {
namespace {

constexpr int kProfile = 3;

// Whether a dialog of the sequence is the one that is open: another one may have taken its address, but not its
// automation object.
std::function<bool()> OpenTest(const CAnalysisSupport& analysis, CAnalysisDialog& dialog) {
  const auto automation = dialog.AutomationInterface();
  auto* const pointer = dynamic_cast<DialogAutomationBase*>(automation.get());
  return [&analysis, &dialog, automation, pointer] {
    return analysis.GetDialog() == &dialog && (pointer == nullptr || pointer->PointedDialog() == &dialog);
  };
}

}  // namespace

AnalysisRun::AnalysisRun(EngineThread& engine, DocumentSink& sink, Spreadsheet& sheet, QWidget& owner)
    : engine_(engine),
      owner_(owner),
      interface_(engine, sink, owner),
      application_(interface_),
      input_(interface_, &sheet) {
  OfferResultFiles(input_);
  interface_.SetInput([this] { return input_.InputTable(); });
  input_.SetDataOpener([this, &sink](const std::filesystem::path& path) {
    Spreadsheet* opened = nullptr;
    engine_.Ask([&] { opened = sink.OpenData(path); });
    return opened;
  });
  engine_.Run([this] { analysis_ = application_.NewAnalysis(input_); });
}

AnalysisRun::~AnalysisRun() {
  delete window_;
  isOpen_ = nullptr;
  engine_.Run([this] { analysis_.reset(); });
}

void AnalysisRun::Show() {
  if (window_ != nullptr && isOpen_ && isOpen_()) {
    window_->Refresh();
    window_->show();
    window_->raise();
    return;
  }
  Follow();
}

bool AnalysisRun::Begin(int task) {
  bool began = false;
  engine_.Run([&] {
    const auto dialog = analysis_->GetDialgInterface();
    if (dialog == nullptr) return;
    dialog->Put("TypeOfAnalysis", std::int32_t{task});
    // A person may type formulas as well as load models.
    if (task == kProfile) dialog->Put("AutoProfiler", std::int32_t{1});
    began = dialog->Call("OK").ToInteger() != 0;
  });
  Show();
  return began;
}

void AnalysisRun::OpenWindow(CAnalysisDialog& dialog, const QPoint* place) {
  isOpen_ = OpenTest(*analysis_, dialog);
  window_ = new DialogWindow(engine_, dialog, isOpen_, &owner_);
  window_->setAttribute(Qt::WA_DeleteOnClose, false);
  connect(window_, &DialogWindow::operated, this, &AnalysisRun::Follow);
  connect(window_, &DialogWindow::failed, this, [this](const QString& what) { interface_.ShowFault(what); });
  if (place != nullptr) window_->move(*place);
  window_->show();
}

// The next dialog stands where the last one stood.
void AnalysisRun::Follow() {
  if (window_ != nullptr && isOpen_ && isOpen_()) return;
  QPoint place;
  const bool hasPlace = window_ != nullptr;
  if (hasPlace) {
    place = window_->pos();
    window_->Forget();
    window_->hide();
    // The window is in the middle of telling that it is done.
    window_->deleteLater();
    window_ = nullptr;
  }
  CAnalysisDialog* const open = analysis_->GetDialog();
  if (open != nullptr) {
    OpenWindow(*open, hasPlace ? &place : nullptr);
    emit windowChanged();
  } else {
    isOpen_ = nullptr;
    emit ended();
  }
}

}  // namespace brenvolt::desktop
