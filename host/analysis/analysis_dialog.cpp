#include "host/analysis/analysis_dialog.h"

#include "host/automation/automation_failure.h"
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
  const bool taken = OnCommand(number);
  return Conclude(analysis) && taken;
}

// The dialog may be gone: a step that was refused has left it open.
bool CAnalysisDialog::Conclude(CAnalysisSupport& analysis) {
  if (analysis.CompleteTransition()) return true;
  if (analysis.GetDialog() == this) OnStepRefused();
  return false;
}

void CAnalysisDialog::PutResultsVariables(const Variant& /*variables*/) {
  ThrowNotAvailable("ResultsVariables");
}

bool CAnalysisDialog::OnCommand(std::int32_t number) {
  if (number == kControlOk) return OnOk();
  if (number == kControlCancel) GoBack();
  return number == kControlCancel;
}

bool CAnalysisDialog::Check(std::int32_t number, bool checked) {
  if (!Takes(number)) return false;
  controls_.SetChecked(number, checked);
  OnControlChanged(number);
  return true;
}

bool CAnalysisDialog::Select(std::int32_t number, int index) {
  if (!Takes(number) || !controls_.Select(number, index)) return false;
  OnControlChanged(number);
  return true;
}

bool CAnalysisDialog::Enter(std::int32_t number, const std::string& text) {
  if (!Takes(number)) return false;
  controls_.SetText(number, text);
  OnControlChanged(number);
  return true;
}

bool CAnalysisDialog::DoubleClick(std::int32_t number) {
  if (!Takes(number)) return false;
  CAnalysisSupport& analysis = analysis_;
  const bool taken = OnDoubleClick(number);
  return Conclude(analysis) && taken;
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
