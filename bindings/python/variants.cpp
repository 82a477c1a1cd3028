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

// How deep sequences may lie in each other; a list that holds itself has no end.
constexpr int kMostDepth = 32;

Variant From(const py::handle& value, int depth);

Variant ArrayFrom(const py::handle& sequence, int depth) {
  if (depth >= kMostDepth) {
    throw py::value_error("an automation call passes at most " + std::to_string(kMostDepth) +
                          " sequences inside each other");
  }
  Variant::Array array;
  for (const py::handle element : sequence) {
    array.push_back(element.is_none() ? Variant(kNotSet) : From(element, depth + 1));
  }
  return array;
}

std::string TextFrom(const py::handle& text) {
  Py_ssize_t size = 0;
  const char* characters = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (characters != nullptr) return {characters, static_cast<std::size_t>(size)};
  PyErr_Clear();
  throw py::value_error("the text contains half of a surrogate pair, which is not a character");
}

std::int64_t IntegerFrom(const py::handle& value) {
  const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
  if (!whole) throw py::error_already_set();
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(whole.ptr(), &overflow);
  if (overflow != 0) throw py::value_error("an automation call passes whole numbers of at most 64 bits");
  return number;
}

[[noreturn]] void Refuse(const py::handle& value) {
  throw py::type_error("an automation call cannot pass a " + std::string(py::str(py::type::of(value))));
}

// Bytes are not treated as numbers.
bool IsBytes(const py::handle& value) {
  return PyBytes_Check(value.ptr()) || PyByteArray_Check(value.ptr()) || PyMemoryView_Check(value.ptr());
}

double NumberFrom(const py::handle& value) {
  const double number = PyFloat_AsDouble(value.ptr());
  if (number != -1 || !PyErr_Occurred()) return number;
  PyErr_Clear();
  Refuse(value);
}

Variant From(const py::handle& value, int depth) {
  if (value.is_none()) return {};
  if (py::isinstance<py::bool_>(value)) return value.cast<bool>();
  if (IsBytes(value)) Refuse(value);
  if (py::hasattr(value, "tolist")) {
    const py::object plain = value.attr("tolist")();
    if (!py::hasattr(plain, "tolist")) return From(plain, depth);
  }
  if (PyIndex_Check(value.ptr())) return IntegerFrom(value);
  if (py::isinstance<py::str>(value)) return TextFrom(value);
  if (py::hasattr(value, "_automation")) return value.attr("_automation").cast<AutomationRef>().object;
  if (py::isinstance<SheetRef>(value))
    return Variant::Object(DocumentOf(value.cast<std::shared_ptr<SheetRef>>()));
  if (py::isinstance<py::sequence>(value)) return ArrayFrom(value, depth);
  return NumberFrom(value);
}

}  // namespace

std::shared_ptr<CAnalysisTableDoc> DocumentOf(const std::shared_ptr<SheetRef>& sheet) {
  if (sheet->Document() != nullptr) return sheet->Document();
  auto document = std::make_shared<CAnalysisTableDoc>(std::make_unique<Spreadsheet>(sheet->Sheet()));
  RecordPassed(sheet, document);
  return document;
}

py::object ToPython(const Variant& value, const std::shared_ptr<AnalysisRef>& analysis) {
  return value.Visit(PythonMaker{analysis});
}

Variant FromPython(const py::handle& value) {
  return From(value, 0);
}

}  // namespace brenvolt::python
