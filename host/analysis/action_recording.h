// Actions on a dialog, as a macro records them: what a user does to a control, and what a program does by a
// member of automation. Of actions inside each other only the outermost is recorded.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/analysis_support.h"
#include "host/automation/macro_recorder.h"

namespace brenvolt {

class CAnalysisDialog;
class DialogAutomationBase;

// Made around every action. The state before the action is taken down at its start.
class ActionRecording {
 public:
  explicit ActionRecording(CAnalysisSupport& analysis);
  ~ActionRecording();
  ActionRecording(const ActionRecording&) = delete;
  ActionRecording& operator=(const ActionRecording&) = delete;

  // The recorder, if this action is to be recorded; otherwise null.
  MacroRecorder* Recorder() const { return recorder_; }

 private:
  CAnalysisSupport& analysis_;
  MacroRecorder* recorder_;
};

// A user's action on a control of the open dialog. What it changed of the members that can be put, and of
// the input's case selection and weights, becomes lines once it is done; then the call that the pressed
// button or the double click on a list itself represents.
class ControlRecording {
 public:
  // `activated`: the button that is pressed, or the list that is double-clicked; nothing for a change of a
  // control's state.
  ControlRecording(CAnalysisDialog& dialog, std::optional<std::int32_t> activated);
  // The dialog took the action. It may no longer exist.
  void Done();

 private:
  struct CaseSettings {
    const Spreadsheet* sheet = nullptr;
    std::optional<std::string> selection;
    std::optional<std::string> weights;
  };
  CaseSettings ReadCaseSettings() const;
  void RecordCaseSettings(MacroRecorder& recorder) const;

  CAnalysisSupport& analysis_;
  ActionRecording recording_;
  std::shared_ptr<AutomationObject> object_;
  DialogAutomationBase* automation_ = nullptr;
  std::vector<MacroCall> before_;
  std::vector<MacroCall> standIns_;
  CaseSettings casesBefore_;
};

}  // namespace brenvolt
