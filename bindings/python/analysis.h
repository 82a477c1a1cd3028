// An analysis over a spreadsheet, and the automation objects that come from it, as Python holds them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bindings/python/python_interface.h"
#include "bindings/python/sheets.h"
#include "host/application/application.h"

namespace brenvolt::python {

class AnalysisRef {
 public:
  // Starts an analysis over a sheet, which it keeps; its startup dialog is open then. Throws Error.
  explicit AnalysisRef(std::shared_ptr<SheetRef> input);
  ~AnalysisRef();
  AnalysisRef(const AnalysisRef&) = delete;
  AnalysisRef& operator=(const AnalysisRef&) = delete;

  CAnalysisSupport& Analysis() { return *analysis_; }
  PythonInterface& Interface() { return interface_; }
  // The input, which a dialog may have exchanged.
  std::shared_ptr<SheetRef> Input() const { return input_; }

 private:
  Spreadsheet* OpenInput(const std::filesystem::path& path);

  PythonInterface interface_;
  Application application_{interface_};
  std::shared_ptr<SheetRef> input_;
  std::vector<std::shared_ptr<SheetRef>> formerInputs_;
  CAnalysisDoc document_;
  std::unique_ptr<CAnalysisSupport> analysis_;
};

// An automation object; null is no analysis's.
struct AutomationRef {
  Variant::Object object;
  std::shared_ptr<AnalysisRef> analysis;
};

}  // namespace brenvolt::python
