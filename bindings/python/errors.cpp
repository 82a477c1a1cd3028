#include "bindings/python/errors.h"

#include <pybind11/pybind11.h>

#include <exception>

#include "bindings/python/module.h"
#include "host/base/error.h"
#include "host/base/visible_text.h"
#include "host/jobs/base/empty_text.h"
#include "host/jobs/base/job_fault.h"

namespace py = pybind11;

namespace brenvolt::python {
namespace {

py::object InPackage(const char* name) {
  return py::module_::import("brenvolt._errors").attr(name);
}

void SetError(const CallFailure& failure) {
  const py::object type = InPackage("Error");
  const py::object error = type(failure.text, failure.where, failure.method, failure.code);
  if (!failure.note.empty()) error.attr("add_note")(VisibleLine(failure.note));
  PyErr_SetObject(type.ptr(), error.ptr());
}

// What people know a field as: functions take designed variables as `variables`.
std::string ArgumentOf(const std::string& field) {
  return field == "designed" ? "variables" : Spelled(field, '_');
}

// A line for each fault.
std::string TextOf(const JobFaults& faults) {
  std::string text;
  for (const JobFault& fault : faults)
    text += (text.empty() ? "" : "\n") + VisibleLine(fault.message + " (" + ArgumentOf(fault.field) + ")");
  return text;
}

void Translate(std::exception_ptr thrown) {
  try {
    if (thrown) std::rethrow_exception(thrown);
  } catch (const Error& error) {
    SetError({error.what(), error.Where(), {}, {}, {}});
  } catch (const WrongJob& wrong) {
    PyErr_SetString(PyExc_ValueError, TextOf(wrong.Faults()).c_str());
  } catch (const UserCancelled&) {
    PyErr_SetNone(PyExc_KeyboardInterrupt);
  }
}

}  // namespace

void RaiseError(const std::string& text, const std::string& where) {
  RaiseError(CallFailure{text, where, {}, {}, {}});
}

void RaiseError(const CallFailure& failure) {
  SetError(failure);
  throw py::error_already_set();
}

void RequireValue(const std::string& field, const std::string& text) {
  if (text.empty() && !MayBeEmpty(field)) throw WrongJob(field, kEmptyText);
}

void Warn(const Message& message) {
  const std::string text = message.where.empty() ? message.text : message.text + " (" + message.where + ")";
  InPackage("warn")(text);
}

void BindErrors(py::module_& module) {
  module.def("visible_line", &VisibleLine, py::arg("text"),
             "The text as messages show it: what a terminal would obey made visible.");
  py::register_exception_translator(&Translate);
}

}  // namespace brenvolt::python
