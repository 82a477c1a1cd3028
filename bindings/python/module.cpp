// The extension module of the Python package: the host's objects as Python's. What people call is the package
// beside it, brenvolt/.
#include "bindings/python/module.h"

#include <pybind11/stl.h>

#include <map>

#include "apps/base/version.h"
#include "host/graphs/palette.h"

namespace {

// The light one: a program that draws for a dark screen has a style of its own.
std::map<std::string, std::vector<std::string>> ColoursByName() {
  using brenvolt::ColourText;
  const brenvolt::Palette& palette = brenvolt::PaletteOf(brenvolt::PictureTheme::kLight);
  std::vector<std::string> lines;
  for (const brenvolt::Colour& line : palette.lines) lines.push_back(ColourText(line));
  return {{"bar", {ColourText(palette.bar)}},
          {"bar_edge", {ColourText(palette.barEdge)}},
          {"negative_bar", {ColourText(palette.negativeBar)}},
          {"point", {ColourText(palette.point)}},
          {"reference", {ColourText(palette.reference)}},
          {"marker", {ColourText(palette.marker)}},
          {"lines", lines}};
}

}  // namespace

PYBIND11_MODULE(_brenvolt, module) {
  module.doc() = "The host of Brenvolt Distributions & Simulation; use the package brenvolt.";
  module.attr("__version__") = BRENVOLT_VERSION;
  module.def(
      "version_text", [] { return brenvolt::VersionText("brenvolt"); },
      "What brenvolt --version says: version, commit, compiler, instruction set, libraries.");
  module.def("palette", ColoursByName,
             "The colours of the pictures that the command draws, as #rrggbb, by what has them.");
  brenvolt::python::BindErrors(module);
  brenvolt::python::BindSheets(module);
  brenvolt::python::BindDistributions(module);
  brenvolt::python::BindAutomation(module);
  brenvolt::python::BindJobs(module);
  brenvolt::python::BindRecording(module);
}
