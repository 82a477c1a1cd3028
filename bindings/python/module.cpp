// The extension module of the Python package: the host's objects as Python's. What people call is the package
// beside it, brenvolt/.
#include "bindings/python/module.h"

PYBIND11_MODULE(_brenvolt, module) {
  module.doc() = "The host of Brenvolt Distributions & Simulation; use the package brenvolt.";
  module.attr("__version__") = BRENVOLT_VERSION;
  brenvolt::python::BindErrors(module);
  brenvolt::python::BindSheets(module);
  brenvolt::python::BindDistributions(module);
  brenvolt::python::BindAutomation(module);
  brenvolt::python::BindJobs(module);
  brenvolt::python::BindRecording(module);
}
