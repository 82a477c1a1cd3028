// An analysis as an automation object: what a macro asks a dialog's Parent for. Everything is read-only.
//
//   Name, ID                 of the analysis
//   Application              the application that it runs in
//   CurrentStep              the step of the sequence whose dialog is open, 0 if none is
//   Dialog                   the open dialog; nothing if none is open
//   DialogInterface(name)    the open dialog, if it is of this interface. Of another interface of the type
//                            library an object whose calls fail: with the closed-dialog error, or with "not
//                            available" if this version of the program has no such dialog.
//   InputName                the name of the input spreadsheet
#pragma once

#include "host/automation/automation_object.h"

namespace brenvolt {

class CAnalysisSupport;

class AnalysisAutomation final : public AutomationObject {
 public:
  explicit AnalysisAutomation(CAnalysisSupport& analysis) : analysis_(&analysis) {}

  // Called by the analysis when it goes away: from then on every call fails.
  void AnalysisClosed() { analysis_ = nullptr; }

  std::string_view InterfaceName() const override { return "BrvAnalysis"; }
  std::optional<DispatchId> FindMember(std::string_view name) const override;
  Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) override;

 private:
  CAnalysisSupport* analysis_;
};

}  // namespace brenvolt
