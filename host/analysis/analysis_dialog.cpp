#include "host/analysis/analysis_dialog.h"

#include <utility>

#include "host/analysis/action_recording.h"
#include "host/base/error.h"

namespace brenvolt {

CAnalysisDialog::CAnalysisDialog(CAnalysisSupport& analysis, const DialogTemplate& source)
    : analysis_(analysis), template_(source), controls_(source) {}

CAnalysisDialog::~CAnalysisDialog() = default;

bool CAnalysisDialog::Takes(std::int32_t number) const {
  const ControlState& control = controls_.At(number);
  return disabled_ == 0 && control.enabled && control.visible;
}

bool CAnalysisDialog::Press(std::int32_t number) {
  if (!Takes(number)) return false;
  CAnalysisSupport& analysis = analysis_;
  ControlRecording recording(*this, number);
  const bool taken = OnCommand(number);
  const bool done = Conclude(analysis) && taken;
  if (done) recording.Done();
  return done;
}

// The dialog may be gone: a step that was refused has left it open.
bool CAnalysisDialog::Conclude(CAnalysisSupport& analysis) {
  if (analysis.CompleteTransition()) return true;
  if (analysis.GetDialog() == this) OnStepRefused();
  return false;
}

void CAnalysisDialog::Present(const std::shared_ptr<CAnalysisTableDoc>& table) {
  ResultRequest request = std::exchange(request_, {});
  const auto columns = PlacesOfColumns(table->Table(), std::exchange(request.columns, {}));
  request.RequireUsed();
  if (!columns.empty()) table->Table() = std::move(*PartOf(table->Table(), columns, {}));
  if (!request.file.empty()) analysis_.Document()->SaveResult(*table, request.file);
  analysis_.Interface().ShowDocument(table);
}

void CAnalysisDialog::Present(const std::shared_ptr<CAnalysisGraphDoc>& graph) {
  const ResultRequest request = std::exchange(request_, {});
  request.RequireUsed();
  if (!request.file.empty()) analysis_.Document()->SaveResult(*graph, request.file);
  analysis_.Interface().ShowGraph(graph);
}

void CAnalysisDialog::SaveRequested(const std::shared_ptr<CAnalysisTableDoc>& table) {
  const ResultRequest request = std::exchange(request_, {});
  request.RequireUsed();
  if (!request.file.empty()) analysis_.Document()->SaveResult(*table, request.file);
}

bool CAnalysisDialog::OnCommand(std::int32_t number) {
  if (number == kControlOk) return OnOk();
  if (number == kControlCancel) GoBack();
  return number == kControlCancel;
}

bool CAnalysisDialog::Check(std::int32_t number, bool checked) {
  if (!Takes(number)) return false;
  ControlRecording recording(*this, {});
  controls_.SetChecked(number, checked);
  OnControlChanged(number);
  recording.Done();
  return true;
}

bool CAnalysisDialog::Select(std::int32_t number, int index) {
  if (!Takes(number)) return false;
  ControlRecording recording(*this, {});
  if (!controls_.Select(number, index)) return false;
  OnControlChanged(number);
  recording.Done();
  return true;
}

bool CAnalysisDialog::Enter(std::int32_t number, const std::string& text) {
  if (!Takes(number)) return false;
  ControlRecording recording(*this, {});
  controls_.SetText(number, text);
  OnControlChanged(number);
  recording.Done();
  return true;
}

bool CAnalysisDialog::DoubleClick(std::int32_t number) {
  if (!Takes(number)) return false;
  CAnalysisSupport& analysis = analysis_;
  ControlRecording recording(*this, number);
  const bool taken = OnDoubleClick(number);
  const bool done = Conclude(analysis) && taken;
  if (done) recording.Done();
  return done;
}

bool CAnalysisModalDialog::DoModal() {
  open_ = true;
  accepted_ = false;
  OnInitDialog();
  Analysis().Interface().RunModal(*this);
  open_ = false;
  return accepted_;
}

bool CAnalysisModalDialog::OnCommand(std::int32_t number) {
  if (number != kControlOk && number != kControlCancel) return false;
  if (number == kControlOk && !OnOk()) return false;
  accepted_ = number == kControlOk;
  open_ = false;
  return true;
}

bool CAnalysisModelessDialog::CreateAnalysisDialog(std::unique_ptr<CAnalysisModelessDialog> dialog) {
  try {
    const ActionRecording initialisation(dialog->Analysis());
    dialog->OnInitDialog();
  } catch (const Error& error) {
    dialog->Analysis().ShowMessage(error.what());
    return false;
  }
  CAnalysisSupport& analysis = dialog->Analysis();
  analysis.SetCurrentDialog(std::move(dialog));
  return true;
}

}  // namespace brenvolt
