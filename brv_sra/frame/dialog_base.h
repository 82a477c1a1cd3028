// The module's thin bases over the host's dialogs. Every dialog of the sequence has the analysis object and
// an automation object; a sub-editor has the analysis object.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "brv_sra/frame/analysis_services.h"
#include "brv_sra/frame/loaded_module.h"
#include "host/analysis/dialog_automation.h"

namespace brenvolt::sra {

class CSimulationAndRiskModelessDialog : public CAnalysisModelessDialog {
 public:
  CSimulationAndRiskModelessDialog(AnalysisServices& analysis, const DialogTemplate& source)
      : CAnalysisModelessDialog(analysis, source), analysis_(analysis) {}
  ~CSimulationAndRiskModelessDialog() override {
    if (automation_ != nullptr) automation_->DialogClosed();
  }

  AnalysisServices& Services() const { return analysis_; }
  std::shared_ptr<AutomationObject> AutomationInterface() override { return automation_; }

 protected:
  // Gives the dialog its automation object over a table that binds the interface. The object outlives the
  // dialog if a client still holds it; its calls then fail with the closed-dialog error.
  template <class Dialog>
  void EnableAutomation(const InterfaceDescription& interface, std::string_view className,
                        std::span<const AutomationMember<Dialog>> members) {
    automation_ = std::make_shared<DialogAutomation<Dialog>>(static_cast<Dialog&>(*this), interface,
                                                             className, members, ModuleAutomation());
  }

  // Carries out what a button asks for; a fault is shown, a cancellation is not. False if it was not done.
  bool Attempt(const std::function<void()>& action) const;

 private:
  AnalysisServices& analysis_;
  std::shared_ptr<DialogAutomationBase> automation_;
};

// The same over the host's modal dialog, for sub-editors.
class CSimulationAndRiskModalDialog : public CAnalysisModalDialog {
 public:
  CSimulationAndRiskModalDialog(AnalysisServices& analysis, const DialogTemplate& source)
      : CAnalysisModalDialog(analysis, source), analysis_(analysis) {}

  AnalysisServices& Services() const { return analysis_; }

 private:
  AnalysisServices& analysis_;
};

}  // namespace brenvolt::sra
