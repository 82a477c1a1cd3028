#include "apps/desktop/workbench/macro_recording.h"

#include <utility>

#include "apps/desktop/base/text.h"
#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_recorder.h"

namespace brenvolt::desktop {

void MacroRecording::Start() {
  recorder_ = std::make_unique<MacroRecorder>();
  known_.clear();
}

QString MacroRecording::Stop() {
  if (recorder_ == nullptr) return {};
  const QString text = recorder_->IsEmpty()
                           ? QString()
                           : desktop::Shown(recorder_->Text("Recorded in the window of Brenvolt"));
  former_.push_back(std::move(recorder_));
  return text;
}

// A document without a file is a design, which begins with an empty sheet.
void MacroRecording::Began(const Document& document, const Spreadsheet& sheet, CAnalysisSupport& analysis) {
  if (!IsOn()) return;
  JobRecorder recorder(recorder_.get());
  std::shared_ptr<Known>& known = known_[&document];
  const bool hasFile = !document.File().empty();
  if (known == nullptr) {
    known = std::make_shared<Known>();
    kept_.push_back(known);
    if (hasFile)
      recorder.Opened(document.File(), ReadingArguments(document.Reading()), known->workbook.get());
  }
  std::unique_ptr<char>& token = known->sheets[sheet.Name()];
  if (token == nullptr) {
    token = std::make_unique<char>();
    if (hasFile) {
      recorder.Took(known->workbook.get(), document.IsProject() ? sheet.Name() : std::string(), token.get());
    } else {
      recorder.Gave("sheet", nullptr, "NewSheet", {PythonText(sheet.Name())}, token.get());
    }
  }
  recorder.Started(token.get(), analysis);
}

void MacroRecording::Shown(CAnalysisSupport& analysis, std::size_t place,
                           const std::shared_ptr<CAnalysisTableDoc>& document) {
  if (analysis.Recorder() == nullptr || analysis.Recorder() != recorder_.get()) return;
  JobRecorder(recorder_.get()).Shown(analysis, place, document.get());
  kept_.push_back(document);
}

void MacroRecording::TookMatrix(const Document& document, const Spreadsheet& sheet,
                                const std::shared_ptr<CAnalysisTableDoc>& matrix) {
  const auto known = known_.find(&document);
  if (!IsOn() || known == known_.end()) return;
  known->second->fitted = known->second->sheets[sheet.Name()].get();
  known->second->matrix = matrix;
}

void MacroRecording::Added(const Document& document, const CAnalysisTableDoc& table) {
  const auto known = known_.find(&document);
  if (!IsOn() || known == known_.end() || !recorder_->Knows(&table) || document.File().empty()) return;
  JobRecorder recorder(recorder_.get());
  recorder.Called(known->second->workbook.get(), "Add", {recorder.NameOf(&table) + ".sheet"});
}

void MacroRecording::Saved(const Document& document) {
  const auto found = known_.find(&document);
  if (!IsOn() || found == known_.end()) return;
  Known& known = *found->second;
  JobRecorder recorder(recorder_.get());
  const std::string path = PythonPath(document.File());
  const auto matrix = std::exchange(known.matrix, nullptr);
  if (matrix != nullptr && known.fitted != nullptr && recorder_->Knows(matrix.get())) {
    recorder.Called(nullptr, "SaveFits",
                    {recorder.NameOf(known.fitted), recorder.NameOf(matrix.get()), path});
  } else if (recorder_->Knows(known.workbook.get())) {
    recorder.Called(known.workbook.get(), "Save", {path});
  }
}

}  // namespace brenvolt::desktop
