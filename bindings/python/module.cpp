// The extension module of the Python package: the host's objects as Python's. What people call is the package
// beside it, brenvolt/.
#include "bindings/python/module.h"

#include "apps/base/version.h"

PYBIND11_MODULE(_brenvolt, module) {
  module.doc() = "The host of Brenvolt Distributions & Simulation; use the package brenvolt.";
  module.attr("__version__") = BRENVOLT_VERSION;
  module.def(
      "version_text", [] { return brenvolt::VersionText("brenvolt"); },
      "What brenvolt --version says: version, commit, compiler, instruction set, libraries.");
  brenvolt::python::BindErrors(module);
  brenvolt::python::BindSheets(module);
  brenvolt::python::BindDistributions(module);
  brenvolt::python::BindAutomation(module);
  brenvolt::python::BindJobs(module);
  brenvolt::python::BindRecording(module);
}
