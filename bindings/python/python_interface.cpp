#include "bindings/python/python_interface.h"

namespace py = pybind11;

namespace brenvolt::python {

void PythonInterface::ThrowIfInterrupted() {
  if (!interruption_) return;
  const py::error_already_set raised = *interruption_;
  interruption_.reset();
  throw py::error_already_set(raised);
}

bool PythonInterface::IsExternallyCancelled() {
  if (interruption_) return true;
  const py::gil_scoped_acquire acquire;
  if (PyErr_CheckSignals() == 0) return false;
  interruption_.emplace();
  return true;
}

}  // namespace brenvolt::python
