#include "bindings/python/reading.h"

#include <pybind11/pybind11.h>

namespace py = pybind11;

namespace brenvolt::python {

JobData DataOf(const std::filesystem::path& file, bool decimalComma, const TextOptions& text) {
  JobData data;
  data.file = file;
  data.decimalComma = decimalComma;
  data.text = text;
  data.tell = WarnOfDoubts;
  return data;
}

void WarnOfDoubts(const DataFile& file) {
  if (file.doubts.empty()) return;
  const py::gil_scoped_acquire interpreter;
  const py::object warn = py::module_::import("brenvolt._errors").attr("warn");
  for (const ReadingNote& doubt : file.doubts)
    warn(doubt.message + (doubt.field.empty() ? "" : " (" + Spelled(doubt.field, '_') + ")"));
}

}  // namespace brenvolt::python
