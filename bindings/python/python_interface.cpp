#include "bindings/python/python_interface.h"

#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace py = pybind11;

namespace brenvolt::python {

void PythonInterface::ThrowIfInterrupted() {
  if (!interruption_) return;
  const py::error_already_set raised = *interruption_;
  interruption_.reset();
  throw py::error_already_set(raised);
}

MessageAnswer PythonInterface::ShowMessage(const Message& message) {
  messages_.push_back(message);
  return MessageAnswer::kOk;
}

void PythonInterface::ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) {
  documents_.push_back(std::move(document));
}

void PythonInterface::ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) {
  documents_.push_back(std::move(graph));
}

bool PythonInterface::IsExternallyCancelled() {
  if (interruption_) return true;
  const py::gil_scoped_acquire acquire;
  if (PyErr_CheckSignals() == 0) return false;
  interruption_.emplace();
  return true;
}

}  // namespace brenvolt::python
