// The parts of the extension module. Each adds its classes and functions; later parts use those of earlier
// ones.
#pragma once

#include <pybind11/pybind11.h>

namespace brenvolt::python {

// Exceptions of the host as those of the package.
void BindErrors(pybind11::module_& module);
// Spreadsheets, their variables, and workbooks.
void BindSheets(pybind11::module_& module);
// The base of the sixteen distributions.
void BindDistributions(pybind11::module_& module);
// Automation objects, documents, and analyses.
void BindAutomation(pybind11::module_& module);
// What jobs share with the command: its words, and how projects are saved.
void BindJobs(pybind11::module_& module);
// Recording what is done as a macro.
void BindRecording(pybind11::module_& module);

}  // namespace brenvolt::python
