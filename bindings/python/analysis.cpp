#include "bindings/python/analysis.h"

#include "bindings/python/recording.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt::python {

AnalysisRef::AnalysisRef(std::shared_ptr<SheetRef> input)
    : input_(std::move(input)), session_(interface_, input_->Sheet()) {
  session_.Input().SetInputTable(&input_->Sheet(), input_->Document());
  session_.Input().SetDataOpener([this](const std::filesystem::path& path) { return OpenInput(path); });
  OfferMatricesBeside(*input_);
  RecordStarted(*this);
}

AnalysisRef::~AnalysisRef() {
  ForgetAnalysis(*this);
  Analysis().BeforeClose();
}

void AnalysisRef::OfferMatricesBeside(const SheetRef& input) {
  if (input.Workbook() != nullptr) {
    OfferMatrices(session_.Input(), input.Workbook()->Content());
  } else {
    session_.Input().SetMatrixSource({});
  }
}

Spreadsheet* AnalysisRef::OpenInput(const std::filesystem::path& path) {
  const auto workbook = std::make_shared<WorkbookRef>(OpenDataFile(path, {}));
  formerInputs_.push_back(input_);
  input_ = workbook->SheetCalled({});
  OfferMatricesBeside(*input_);
  return &input_->Sheet();
}

}  // namespace brenvolt::python
