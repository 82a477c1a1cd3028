#include "host/analysis/action_recording.h"

#include <algorithm>

#include "host/analysis/analysis_dialog.h"
#include "host/analysis/dialog_automation.h"

namespace brenvolt {
namespace {

bool SameIndexes(const std::vector<Variant>& a, const std::vector<Variant>& b) {
  return std::ranges::equal(a, b,
                            [](const Variant& x, const Variant& y) { return x.ToText() == y.ToText(); });
}

// A macro that went on without the data that a user opened would do something else.
constexpr const char* kOtherData =
    "raise SystemExit(\"other data were opened in a dialog here: open them by application.Open instead\")";

std::string OptionalText(const std::optional<std::string>& text) {
  return text ? PythonText(*text) : "None";
}

}  // namespace

ActionRecording::ActionRecording(CAnalysisSupport& analysis)
    : analysis_(analysis), recorder_(analysis.BeginAction() ? analysis.Recorder() : nullptr) {}

ActionRecording::~ActionRecording() {
  analysis_.EndAction();
}

ControlRecording::ControlRecording(CAnalysisDialog& dialog, std::optional<std::int32_t> activated)
    : analysis_(dialog.Analysis()), recording_(dialog.Analysis()) {
  if (recording_.Recorder() == nullptr) return;
  object_ = dialog.AutomationInterface();
  automation_ = dynamic_cast<DialogAutomationBase*>(object_.get());
  if (automation_ == nullptr) return;
  before_ = automation_->Settings();
  casesBefore_ = ReadCaseSettings();
  if (activated) standIns_ = automation_->StandIns(*activated);
}

void ControlRecording::Done() {
  if (automation_ == nullptr) return;
  MacroRecorder& recorder = *recording_.Recorder();
  RecordCaseSettings(recorder);
  if (automation_->PointedDialog() != nullptr) {
    for (const MacroCall& setting : automation_->Settings()) {
      const auto former = std::ranges::find_if(before_, [&](const MacroCall& call) {
        return call.member == setting.member && SameIndexes(call.indexes, setting.indexes);
      });
      const bool changed = former != before_.end() && former->text != setting.text;
      if (changed && !setting.text.empty()) recorder.Call(&analysis_, automation_->Number(), setting);
    }
  }
  for (const MacroCall& call : standIns_) recorder.Call(&analysis_, automation_->Number(), call);
}

ControlRecording::CaseSettings ControlRecording::ReadCaseSettings() const {
  CaseSettings settings;
  settings.sheet = analysis_.InputTable();
  if (settings.sheet == nullptr) return settings;
  const CaseSelection& selection = settings.sheet->Selection();
  if (selection.enabled) settings.selection = selection.condition;
  const auto weights = settings.sheet->WeightVariable();
  if (weights) settings.weights = settings.sheet->VariableAt(*weights).Name();
  return settings;
}

void ControlRecording::RecordCaseSettings(MacroRecorder& recorder) const {
  const CaseSettings now = ReadCaseSettings();
  if (now.sheet != casesBefore_.sheet) {
    recorder.Line(kOtherData);
    return;
  }
  const std::string sheet = recorder.AnalysisName(&analysis_) + ".Sheet";
  if (now.selection != casesBefore_.selection)
    recorder.Line(sheet + ".selection = " + OptionalText(now.selection));
  if (now.weights != casesBefore_.weights)
    recorder.Line(sheet + ".weight_variable = " + OptionalText(now.weights));
}

}  // namespace brenvolt
