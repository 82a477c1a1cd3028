#include "bindings/python/analysis.h"

#include "bindings/python/recording.h"

namespace brenvolt::python {

AnalysisRef::AnalysisRef(std::shared_ptr<SheetRef> input)
    : input_(std::move(input)), session_(interface_, input_->Sheet()) {
  session_.Input().SetInputTable(&input_->Sheet(), input_->Document());
  session_.Input().SetDataOpener([this](const std::filesystem::path& path) { return OpenInput(path); });
  RecordStarted(*this);
}

AnalysisRef::~AnalysisRef() {
  ForgetAnalysis(*this);
  Analysis().BeforeClose();
}

Spreadsheet* AnalysisRef::OpenInput(const std::filesystem::path& path) {
  const auto workbook = std::make_shared<WorkbookRef>(OpenDataFile(path, {}));
  formerInputs_.push_back(input_);
  input_ = workbook->SheetCalled({});
  return &input_->Sheet();
}

}  // namespace brenvolt::python
