#include "bindings/python/analysis.h"

#include "bindings/python/recording.h"

namespace brenvolt::python {

AnalysisRef::AnalysisRef(std::shared_ptr<SheetRef> input)
    : input_(std::move(input)), document_(interface_, &input_->Sheet()) {
  document_.SetInputTable(&input_->Sheet(), input_->Document());
  document_.SetDataOpener([this](const std::filesystem::path& path) { return OpenInput(path); });
  analysis_ = application_.NewAnalysis(document_);
  RecordStarted(*this);
}

AnalysisRef::~AnalysisRef() {
  ForgetAnalysis(*this);
  if (analysis_ != nullptr) analysis_->BeforeClose();
}

Spreadsheet* AnalysisRef::OpenInput(const std::filesystem::path& path) {
  const auto workbook = std::make_shared<WorkbookRef>(OpenDataFile(path, {}));
  formerInputs_.push_back(input_);
  input_ = workbook->SheetCalled({});
  return &input_->Sheet();
}

}  // namespace brenvolt::python
