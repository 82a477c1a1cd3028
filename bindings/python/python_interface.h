// The user interface of an analysis in Python: messages, which are kept, become warnings or errors; Ctrl-C
// cancels.
#pragma once

#include <pybind11/pybind11.h>

#include <optional>

#include "host/analysis/ports/program_interface.h"

namespace brenvolt::python {

// Called by the host without the interpreter lock, by the analysis's own calls with it.
class PythonInterface : public ProgramInterface {
 public:
  // Rethrows what a signal handler raised (KeyboardInterrupt, as a rule) since the last time. With the
  // interpreter lock held.
  void ThrowIfInterrupted();

  void ShowProgress(std::string_view /*caption*/, std::int64_t /*done*/, std::int64_t /*total*/) override {}
  void EndProgress() override {}
  // Runs the handlers of signals that came. True once one of them raised.
  bool IsExternallyCancelled() override;

 private:
  std::optional<pybind11::error_already_set> interruption_;
};

}  // namespace brenvolt::python
