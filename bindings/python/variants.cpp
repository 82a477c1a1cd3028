#include "bindings/python/variants.h"

#include <string>

#include "bindings/python/analysis.h"
#include "bindings/python/recording.h"
#include "host/base/almost_equal.h"

namespace py = pybind11;

namespace brenvolt::python {
namespace {

struct PythonMaker {
  const std::shared_ptr<AnalysisRef>& analysis;

  py::object operator()(std::monostate) const { return py::none(); }
  py::object operator()(bool value) const { return py::bool_(value); }
  py::object operator()(std::int32_t value) const { return py::int_(value); }
  py::object operator()(std::int64_t value) const { return py::int_(value); }
  py::object operator()(double value) const { return py::float_(value); }
  py::object operator()(const std::string& value) const { return py::str(value); }
  py::object operator()(const Variant::Object& value) const {
    if (value == nullptr) return py::none();
    return py::cast(AutomationRef{value, analysis});
  }
  py::object operator()(const Variant::Array& value) const {
    py::list list;
    for (const Variant& element : value) list.append(ToPython(element, analysis));
    return list;
  }
};

Variant::Object DocumentOf(const std::shared_ptr<SheetRef>& sheet) {
  if (sheet->Document() != nullptr) return sheet->Document();
  auto document = std::make_shared<CAnalysisTableDoc>(std::make_unique<Spreadsheet>(sheet->Sheet()));
  RecordPassed(sheet, document);
  return document;
}

Variant ArrayFrom(const py::handle& sequence) {
  Variant::Array array;
  for (const py::handle element : sequence) {
    array.push_back(element.is_none() ? Variant(kNotSet) : FromPython(element));
  }
  return array;
}

bool IsNumber(const py::handle& value) {
  return PyFloat_Check(value.ptr()) || PyNumber_Check(value.ptr());
}

}  // namespace

py::object ToPython(const Variant& value, const std::shared_ptr<AnalysisRef>& analysis) {
  return value.Visit(PythonMaker{analysis});
}

Variant FromPython(const py::handle& value) {
  if (value.is_none()) return {};
  if (py::isinstance<py::bool_>(value)) return value.cast<bool>();
  if (py::hasattr(value, "tolist")) {
    const py::object plain = value.attr("tolist")();
    if (!py::hasattr(plain, "tolist")) return FromPython(plain);
  }
  if (PyIndex_Check(value.ptr())) return value.cast<std::int64_t>();
  if (py::isinstance<py::str>(value)) return value.cast<std::string>();
  if (py::hasattr(value, "_automation")) return value.attr("_automation").cast<AutomationRef>().object;
  if (py::isinstance<SheetRef>(value)) return DocumentOf(value.cast<std::shared_ptr<SheetRef>>());
  if (py::isinstance<py::sequence>(value)) return ArrayFrom(value);
  if (IsNumber(value)) return value.cast<double>();
  throw py::type_error("an automation call cannot pass a " + std::string(py::str(py::type::of(value))));
}

}  // namespace brenvolt::python
