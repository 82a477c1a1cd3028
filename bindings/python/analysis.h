// An analysis over a spreadsheet, and the automation objects that come from it, as Python holds them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bindings/python/python_interface.h"
#include "bindings/python/sheets.h"
#include "host/jobs/base/analysis_session.h"

namespace brenvolt::python {

class AnalysisRef {
 public:
  // Starts an analysis over a sheet, which it keeps; its startup dialog is open then. Throws Error.
  explicit AnalysisRef(std::shared_ptr<SheetRef> input);
  ~AnalysisRef();
  AnalysisRef(const AnalysisRef&) = delete;
  AnalysisRef& operator=(const AnalysisRef&) = delete;

  AnalysisSession& Session() { return session_; }
  CAnalysisSupport& Analysis() { return session_.Analysis(); }
  PythonInterface& Interface() { return interface_; }
  // The input, which a dialog may have exchanged.
  std::shared_ptr<SheetRef> Input() const { return input_; }

 private:
  Spreadsheet* OpenInput(const std::filesystem::path& path);
  void OfferMatricesBeside(const SheetRef& input);

  PythonInterface interface_;
  std::shared_ptr<SheetRef> input_;
  std::vector<std::shared_ptr<SheetRef>> formerInputs_;
  AnalysisSession session_;
};

// An automation object; a null `analysis` means that it belongs to none.
struct AutomationRef {
  Variant::Object object;
  std::shared_ptr<AnalysisRef> analysis;
};

}  // namespace brenvolt::python
