// Automation objects, documents and analyses as Python classes. What dialogs look like to people, attributes
// with indexes and help texts, is made from the type library by brenvolt/_automation.py.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include "bindings/python/analysis.h"
#include "bindings/python/errors.h"
#include "bindings/python/host_call.h"
#include "bindings/python/module.h"
#include "bindings/python/numpy_arrays.h"
#include "bindings/python/outcome.h"
#include "bindings/python/recording.h"
#include "bindings/python/variants.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/host_interfaces.h"
#include "host/automation/automation_failure.h"
#include "host/automation/type_library.h"
#include "host/base/error.h"
#include "host/graphs/picture.h"
#include "host/jobs/base/plot.h"

namespace py = pybind11;
using namespace pybind11::literals;

namespace brenvolt::python {
namespace {

using InHost = py::call_guard<HostCall>;
using Analysis = std::shared_ptr<AnalysisRef>;

// --- calls

// The name of a method of an object: of a dialog's the system itself knows the name.
std::string MethodName(const AutomationObject& object, const std::string& name, CallKind kind) {
  const char* prefix = kind == CallKind::kGet ? "get_" : kind == CallKind::kPut ? "put_" : "";
  return std::string(object.InterfaceName()) + "::" + prefix + name;
}

Variant CallMember(AutomationObject& object, const std::string& name, CallKind kind,
                   const std::vector<Variant>& arguments) {
  const auto member = object.FindMember(name);
  if (!member) {
    throw AutomationFailure(AutomationCode::kMemberNotFound, "no such member",
                            std::string(object.InterfaceName()) + "." + name);
  }
  Variant result = object.Invoke(*member, kind, arguments);
  const bool refused = kind == CallKind::kMethod && !result.IsEmpty() && !result.ToBoolean();
  if (refused) throw JobFailed(MethodName(object, name, kind));
  return result;
}

Variant Invoke(const AutomationRef& ref, const std::string& name, CallKind kind,
               const std::vector<Variant>& arguments) {
  Variant result;
  CarryOut(
      ref.analysis, [&] { result = CallMember(*ref.object, name, kind, arguments); },
      [&] { return MethodName(*ref.object, name, kind); });
  return result;
}

std::vector<Variant> ArgumentsFrom(const py::tuple& arguments) {
  std::vector<Variant> variants;
  for (const py::handle argument : arguments) variants.push_back(FromPython(argument));
  return variants;
}

py::object Get(const AutomationRef& ref, const std::string& name, const py::args& indexes) {
  return ToPython(Invoke(ref, name, CallKind::kGet, ArgumentsFrom(indexes)), ref.analysis);
}
void Put(const AutomationRef& ref, const std::string& name, const py::args& arguments) {
  Invoke(ref, name, CallKind::kPut, ArgumentsFrom(arguments));
}
py::object Call(const AutomationRef& ref, const std::string& name, const py::args& arguments) {
  return ToPython(Invoke(ref, name, CallKind::kMethod, ArgumentsFrom(arguments)), ref.analysis);
}

// --- documents

std::shared_ptr<SheetRef> SheetOf(const AutomationRef& ref) {
  auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(ref.object);
  return document == nullptr ? nullptr : std::make_shared<SheetRef>(std::move(document));
}

std::shared_ptr<CAnalysisGraphDoc> GraphOf(const AutomationRef& ref) {
  auto graph = std::dynamic_pointer_cast<CAnalysisGraphDoc>(ref.object);
  if (graph == nullptr) throw py::type_error("no graph");
  return graph;
}

constexpr const char* StyleName(SeriesStyle style) {
  switch (style) {
    case SeriesStyle::kPoints:
      return "points";
    case SeriesStyle::kLine:
      return "line";
    case SeriesStyle::kSteps:
      return "steps";
  }
  return "";
}

// The parts of a graph as dictionaries, arrays without a copy; brenvolt/_automation.py names them.
py::dict GraphParts(const AutomationRef& ref) {
  const auto document = GraphOf(ref);
  const Graph& graph = document->Content();
  const auto view = [&](const std::vector<double>& values) { return ReadOnlyView(values, document); };
  py::list bars;
  for (const GraphBars& part : graph.bars)
    bars.append(
        py::dict("name"_a = part.name, "bounds"_a = view(part.bounds), "heights"_a = view(part.heights)));
  py::list series;
  for (const GraphSeries& part : graph.series)
    series.append(py::dict("name"_a = part.name, "style"_a = StyleName(part.style), "x"_a = view(part.x),
                           "y"_a = view(part.y)));
  py::list curves;
  for (const GraphCurve& part : graph.curves) {
    const GraphSeries sampled = SampleCurve(part);
    const auto copy = [](const std::vector<double>& values) {
      return py::array_t<double>(static_cast<py::ssize_t>(values.size()), values.data());
    };
    curves.append(py::dict("name"_a = part.name, "formula"_a = part.formula, "from"_a = part.from,
                           "to"_a = part.to, "whole_numbers"_a = part.wholeNumbers, "x"_a = copy(sampled.x),
                           "y"_a = copy(sampled.y)));
  }
  py::list boxes;
  for (const GraphBox& part : graph.boxes)
    boxes.append(py::dict("name"_a = part.name, "lower_whisker"_a = part.lowerWhisker,
                          "lower_quartile"_a = part.lowerQuartile, "median"_a = part.median,
                          "upper_quartile"_a = part.upperQuartile, "upper_whisker"_a = part.upperWhisker,
                          "mean"_a = part.mean, "outliers"_a = view(part.outliers)));
  py::list bands;
  for (const GraphBand& part : graph.bands)
    bands.append(py::dict("name"_a = part.name, "x"_a = view(part.x), "lower"_a = view(part.lower),
                          "upper"_a = view(part.upper)));
  py::list regions;
  for (const GraphRegion& part : graph.regions)
    regions.append(py::dict("name"_a = part.name, "from"_a = part.from, "to"_a = part.to));
  py::list cells;
  for (const GraphCells& part : graph.cells) {
    const auto shape = py::make_tuple(part.rows.size(), part.columns.size());
    cells.append(py::dict("name"_a = part.name, "columns"_a = part.columns, "rows"_a = part.rows,
                          "values"_a = view(part.values).attr("reshape")(shape)));
  }
  return py::dict("bars"_a = bars, "series"_a = series, "curves"_a = curves, "bands"_a = bands,
                  "regions"_a = regions, "boxes"_a = boxes, "cells"_a = cells,
                  "panel_columns"_a = graph.panelColumns);
}

void SaveGraph(const AutomationRef& ref, const std::filesystem::path& file,
               const std::optional<std::string>& theme, const std::optional<double>& width) {
  Plot plot;
  plot.file = file;
  plot.theme = theme;
  plot.width = width;
  JobFaults faults;
  CheckPlot(plot, {}, faults);
  RequireNone(std::move(faults));
  const Graph& graph = GraphOf(ref)->Content();
  WritePlot(plot, graph.title, {SinglePage(graph.title, graph)});
}

// A small picture; nothing where none can be drawn.
std::optional<std::string> SmallPicture(const AutomationRef& ref) {
  constexpr int kWidth = 480;
  if (!WhyNoPictures().empty()) return std::nullopt;
  const auto document = GraphOf(ref);
  return DrawPictures({&document->Content(), 1}, {PictureFormat::kSvg, PictureTheme::kLight, kWidth});
}

// --- the type library

constexpr const char* TypeName(AutomationType type) {
  switch (type) {
    case AutomationType::kNone:
      return "";
    case AutomationType::kBoolean:
      return "bool";
    case AutomationType::kInteger:
      return "int";
    case AutomationType::kReal:
      return "float";
    case AutomationType::kText:
      return "str";
    case AutomationType::kVariant:
      return "object";
    case AutomationType::kObject:
      return "document";
    case AutomationType::kEnumeration:
      return "enumeration";
  }
  return "";
}

py::dict DescriptionOf(const MemberDescription& member) {
  py::list indexes;
  for (const ArgumentDescription& index : member.indexes)
    indexes.append(py::make_tuple(py::str(std::string(index.name)), TypeName(index.type)));
  return py::dict("name"_a = std::string(member.name), "method"_a = member.kind == MemberKind::kMethod,
                  "indexes"_a = indexes, "get"_a = TypeName(member.get), "put"_a = TypeName(member.put),
                  "enumeration"_a = std::string(member.enumeration), "help"_a = std::string(member.help),
                  "variable_list"_a = member.variableList);
}

// The interfaces of the host's own objects, those of the dialogs with the base of all first, and the
// enumerations, as dictionaries. Loads the analysis module.
py::dict TypeLibraryParts() {
  const TypeLibrary* library = nullptr;
  {
    const HostCall call;
    PythonInterface interface;
    Application application(interface);
    application.Module();
    library = FindTypeLibrary("BrvSRA");
  }
  if (library == nullptr) RaiseError("the analysis module describes no interfaces", {});
  const auto described = [](const InterfaceDescription& description) {
    py::list members;
    for (const MemberDescription& member : description.members) members.append(DescriptionOf(member));
    return py::dict("name"_a = std::string(description.name), "help"_a = std::string(description.help),
                    "members"_a = members);
  };
  py::list host;
  for (const InterfaceDescription* description : kHostInterfaces) host.append(described(*description));
  py::list interfaces;
  for (const InterfaceDescription& description : library->interfaces)
    interfaces.append(described(description));
  py::list enumerations;
  for (const EnumerationDescription& description : library->enumerations) {
    py::list constants;
    for (const std::string_view constant : description.constants) constants.append(std::string(constant));
    enumerations.append(py::dict("name"_a = std::string(description.name),
                                 "help"_a = std::string(description.help), "constants"_a = constants));
  }
  return py::dict("host"_a = host, "interfaces"_a = interfaces, "enumerations"_a = enumerations);
}

// --- analyses

AutomationRef DialogOf(const Analysis& analysis) {
  auto dialog = analysis->Analysis().GetDialgInterface();
  if (dialog == nullptr) throw Error("the analysis has no open dialog");
  return {std::move(dialog), analysis};
}

std::vector<AutomationRef> DocumentsOf(const Analysis& analysis) {
  std::vector<AutomationRef> documents;
  for (const Variant::Object& document : analysis->Interface().Documents()) {
    RecordShown(*analysis, documents.size(), document);
    documents.push_back({document, analysis});
  }
  return documents;
}

}  // namespace

void BindAutomation(py::module_& module) {
  py::class_<AutomationRef>(module, "AutomationRef",
                            "An automation object; brenvolt.AutomationObject wraps it.")
      .def_property_readonly("interface",
                             [](const AutomationRef& ref) { return ref.object->InterfaceName(); })
      .def("has", [](const AutomationRef& ref,
                     const std::string& name) { return ref.object->FindMember(name).has_value(); })
      .def("get", &Get)
      .def("put", &Put)
      .def("call", &Call)
      .def("sheet", &SheetOf)
      .def("graph", &GraphParts)
      .def("save_graph", &SaveGraph)
      .def("small_picture", &SmallPicture)
      .def_property_readonly("identity", [](const AutomationRef& ref) {
        return reinterpret_cast<std::uintptr_t>(ref.object.get());
      });
  py::class_<Message>(module, "Message", "A message that the system showed.")
      .def_readonly("text", &Message::text, "What it says.")
      .def_readonly("where", &Message::where, "What it is about; may be empty.")
      .def_readonly("caption", &Message::caption, "The caption of its box.")
      .def("__repr__", [](const Message& message) { return "<Message " + message.text + ">"; });
  py::class_<AnalysisRef, Analysis>(module, "AnalysisRef")
      .def(py::init<std::shared_ptr<SheetRef>>(), InHost(), py::arg("sheet").none(false))
      .def_property_readonly("dialog", py::cpp_function(&DialogOf, InHost()))
      .def_property_readonly("documents", py::cpp_function(&DocumentsOf, InHost()))
      .def_property_readonly(
          "messages", py::cpp_function(
                          [](const Analysis& a) { return std::vector(a->Interface().Messages()); }, InHost()))
      .def_property_readonly("sheet", py::cpp_function(&AnalysisRef::Input, InHost()));
  module.def("_type_library", &TypeLibraryParts);
}

}  // namespace brenvolt::python
