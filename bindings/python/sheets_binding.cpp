// Spreadsheets, variables and workbooks as Python classes.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <cmath>

#include "bindings/python/errors.h"
#include "bindings/python/host_call.h"
#include "bindings/python/module.h"
#include "bindings/python/numpy_arrays.h"
#include "bindings/python/python_interface.h"
#include "bindings/python/reading.h"
#include "bindings/python/recording.h"
#include "bindings/python/sheets.h"
#include "host/base/error.h"
#include "host/base/quoted.h"
#include "host/jobs/base/job_data.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/reports/show_job.h"
#include "host/jobs/safe_cells_option.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/formats/safe_cells.h"
#include "host/tables/numpy_archive.h"

namespace py = pybind11;

namespace brenvolt::python {
namespace {

using Sheet = std::shared_ptr<SheetRef>;
using InHost = py::call_guard<HostCall>;
using Texts = std::map<double, std::string>;

// --- variables

py::array_t<double> View(const std::shared_ptr<const std::vector<double>>& values) {
  return ReadOnlyView(*values, values);
}

py::array_t<double> Values(const VariableRef& variable) {
  return View(InTurn([&] { return variable.Get().SharedValues(); }));
}

void SetValues(const VariableRef& variable, const Numbers& numbers) {
  std::vector<double> values = VectorFrom(numbers);
  const HostCall call;
  RefuseRecordedChange(variable.sheet);
  const std::size_t cases = variable.sheet->Sheet().CaseCount();
  if (values.size() != cases) {
    throw Error(std::to_string(values.size()) + " values for " + std::to_string(cases) + " cases",
                "variable " + variable.Get().Name());
  }
  variable.Get().AssignValues(std::move(values));
}

py::array_t<bool> Missing(const VariableRef& variable) {
  const auto missing = InTurn([&] {
    const Variable& content = variable.Get();
    std::vector<std::uint8_t> flags(content.Size());
    for (std::size_t i = 0; i < flags.size(); ++i) flags[i] = content.IsMissing(i) ? 1 : 0;
    return flags;
  });
  py::array_t<bool> mask(static_cast<py::ssize_t>(missing.size()));
  std::ranges::copy(missing, mask.mutable_data());
  return mask;
}

void SetLabels(const VariableRef& variable, const Texts& labels) {
  RefuseRecordedChange(variable.sheet);
  for (const auto& [value, text] : labels) variable.Get().SetLabel(value, text);
}

// A view of a copy: assignments would not reach the variable, so the view is read-only.
py::object Properties(const VariableRef& variable) {
  const auto properties = InTurn([&] { return std::vector(variable.Get().Properties()); });
  py::dict result;
  for (const auto& [key, value] : properties) result[py::str(key)] = value;
  return py::module_::import("types").attr("MappingProxyType")(result);
}

// --- spreadsheets

std::size_t IndexOf(const Spreadsheet& sheet, const std::string& name) {
  const auto index = sheet.FindVariable(name);
  if (!index) throw Error("no variable called " + Quoted(name), "sheet " + sheet.Name());
  return *index;
}

VariableRef VariableCalled(const Sheet& sheet, const std::string& name) {
  return {sheet, IndexOf(sheet->Sheet(), name)};
}

VariableRef VariableNumber(const Sheet& sheet, std::size_t number) {
  if (number < 1 || number > sheet->Sheet().VariableCount())
    throw Error("no variable " + std::to_string(number), "sheet " + sheet->Sheet().Name());
  return {sheet, number - 1};
}

py::array_t<double> Column(const Sheet& sheet, const std::string& name) {
  return View(InTurn([&] {
    const Spreadsheet& table = sheet->Sheet();
    const auto index = table.FindVariable(name);
    if (!index) throw py::key_error(name);
    return table.VariableAt(*index).SharedValues();
  }));
}

std::vector<std::string> VariableNames(const Sheet& sheet) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < sheet->Sheet().VariableCount(); ++i)
    names.push_back(sheet->Sheet().VariableAt(i).Name());
  return names;
}

// Numbers under a name: of the variable that has it, or of a new one. Labels make a new variable a text
// variable, whose values are the labels' codes.
void SetColumn(const Sheet& sheet, const std::string& name, const Numbers& numbers, const Texts& labels) {
  std::vector<double> values = VectorFrom(numbers);
  const HostCall call;
  RefuseRecordedChange(sheet);
  Spreadsheet& table = sheet->Sheet();
  Variable column(name, 0);
  column.AssignValues(std::move(values));
  if (!labels.empty()) column.SetType(VariableType::kText);
  for (const auto& [value, text] : labels) column.SetLabel(value, text);
  const auto index = table.FindVariable(name);
  if (!index) {
    table.AddVariable(std::move(column));
    return;
  }
  if (column.Size() != table.CaseCount()) {
    throw Error(std::to_string(column.Size()) + " values for " + std::to_string(table.CaseCount()) + " cases",
                "variable " + name);
  }
  table.VariableAt(*index) = std::move(column);
}

std::optional<std::vector<std::string>> CaseNames(const Sheet& sheet) {
  const Spreadsheet& table = sheet->Sheet();
  if (!table.HasCaseNames()) return std::nullopt;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < table.CaseCount(); ++i) names.push_back(table.CaseName(i));
  return names;
}

std::optional<std::string> WeightName(const Sheet& sheet) {
  const auto index = sheet->Sheet().WeightVariable();
  if (!index) return std::nullopt;
  return sheet->Sheet().VariableAt(*index).Name();
}

void SetWeight(const Sheet& sheet, const std::optional<std::string>& name) {
  Spreadsheet& table = sheet->Sheet();
  table.SetWeightVariable(name ? std::optional(IndexOf(table, *name)) : std::nullopt);
  RecordAttribute(sheet, "weight_variable", name);
}

std::optional<std::string> Selection(const Sheet& sheet) {
  const CaseSelection& selection = sheet->Sheet().Selection();
  if (!selection.enabled) return std::nullopt;
  return selection.condition;
}

void SetSelection(const Sheet& sheet, const std::optional<std::string>& condition) {
  if (condition) {
    ApplySelection(sheet->Sheet(), *condition);
  } else {
    sheet->Sheet().SetSelection({});
  }
  RecordAttribute(sheet, "selection", condition);
}

// What limits and weighs the cases, to be put back as it was.
struct Conditions {
  std::optional<std::size_t> weight;
  CaseSelection selection;
};

Conditions ConditionsOf(const Sheet& sheet) {
  return {sheet->Sheet().WeightVariable(), sheet->Sheet().Selection()};
}

void SetConditions(const Sheet& sheet, const Conditions& conditions) {
  sheet->Sheet().SetWeightVariable(conditions.weight);
  sheet->Sheet().SetSelection(conditions.selection);
}

Sheet FreeSheet(Spreadsheet sheet) {
  return std::make_shared<SheetRef>(std::make_unique<Spreadsheet>(std::move(sheet)));
}

template <auto Get, auto Set, class Class>
void TextProperty(Class& type, const char* name, const char* doc) {
  type.def_property(name,
                    py::cpp_function([](const Sheet& sheet) { return (sheet->Sheet().*Get)(); }, InHost()),
                    py::cpp_function(
                        [name](const Sheet& sheet, const std::string& text) {
                          (sheet->Sheet().*Set)(text);
                          RecordAttribute(sheet, name, text);
                        },
                        InHost()),
                    doc);
}

// How a text file is laid out; what is not set is found by looking at the file.
void BindReading(py::module_& module) {
  py::class_<TextOptions>(module, "_Reading")
      .def(py::init<>())
      .def_readwrite("delimiter", &TextOptions::delimiter)
      .def_readwrite("decimal", &TextOptions::decimal)
      .def_readwrite("thousands", &TextOptions::thousands)
      .def_readwrite("header", &TextOptions::header)
      .def_readwrite("units_row", &TextOptions::unitsRow)
      .def_readwrite("comment", &TextOptions::comment)
      .def_readwrite("encoding", &TextOptions::encoding)
      .def_readwrite("missing_text", &TextOptions::missingText)
      .def_readwrite("text", &TextOptions::text);
}

void BindVariable(py::module_& module) {
  py::class_<VariableRef>(module, "Variable", "A variable (column) of a spreadsheet.")
      .def_property("name", py::cpp_function([](const VariableRef& v) { return v.Get().Name(); }, InHost()),
                    py::cpp_function(
                        [](const VariableRef& v, std::string name) {
                          RefuseRecordedChange(v.sheet);
                          v.Get().SetName(std::move(name));
                        },
                        InHost()),
                    "The name by which the sheet, fits and formulas know the variable.")
      .def_property_readonly(
          "number", [](const VariableRef& v) { return v.index + 1; },
          "The number of the variable in its sheet, from 1, as dialogs count.")
      .def_property_readonly(
          "is_text",
          py::cpp_function([](const VariableRef& v) { return v.Get().Type() == VariableType::kText; },
                           InHost()),
          "True for a variable of texts: its values are the codes of its labels.")
      .def_property(
          "values", &Values, &SetValues,
          "The values as a NumPy array, a read-only view without a copy. Assign an array to replace "
          "them all; a view made before keeps the old ones.")
      .def_property("missing_code",
                    py::cpp_function([](const VariableRef& v) { return v.Get().MissingCode(); }, InHost()),
                    py::cpp_function(
                        [](const VariableRef& v, double code) {
                          RefuseRecordedChange(v.sheet);
                          v.Get().SetMissingCode(code);
                        },
                        InHost()),
                    "The value that means a missing one, in addition to NaN, which always does.")
      .def_property_readonly("missing", &Missing, "True for each case whose value is missing.")
      .def_property("labels",
                    py::cpp_function([](const VariableRef& v) { return v.Get().Labels(); }, InHost()),
                    py::cpp_function(&SetLabels, InHost()),
                    "The texts shown for values, by value. Assigning adds to them.")
      .def_property_readonly(
          "properties", &Properties,
          "The named text properties, saved fits among them, as they are now; set_property changes "
          "them.")
      .def(
          "set_property",
          [](const VariableRef& v, const std::string& key, std::string value) {
            RefuseRecordedChange(v.sheet);
            v.Get().SetProperty(key, std::move(value));
          },
          InHost(), py::arg("name"), py::arg("value"), "Sets a text property.")
      .def(
          "remove_property",
          [](const VariableRef& v, const std::string& key) {
            RefuseRecordedChange(v.sheet);
            return v.Get().RemoveProperty(key);
          },
          InHost(), py::arg("name"), "Removes a text property; False where there was none.")
      .def(
          "__len__", [](const VariableRef& v) { return v.Get().Size(); }, InHost())
      .def(
          "__repr__", [](const VariableRef& v) { return "<Variable " + v.Get().Name() + ">"; }, InHost());
}

// A dictionary for each reason, None for what a reason does not have.
py::list ReasonsOf(const std::vector<UnpredictedReason>& reasons) {
  const auto orNone = [](const std::string& text) -> py::object {
    return text.empty() ? py::object(py::none()) : py::object(py::str(text));
  };
  const auto number = [](double value) -> py::object {
    return std::isnan(value) ? py::object(py::none()) : py::object(py::float_(value));
  };
  py::list list;
  for (const UnpredictedReason& reason : reasons) {
    list.append(py::dict(py::arg("field") = orNone(reason.field),
                         py::arg("reason") = std::string(NoPredictionName(reason.reason)),
                         py::arg("value") = orNone(reason.value), py::arg("lowest") = number(reason.lowest),
                         py::arg("highest") = number(reason.highest), py::arg("count") = reason.cases));
  }
  return list;
}

void BindSheet(py::module_& module) {
  py::class_<Conditions>(module, "_Conditions");
  py::class_<SheetRef, Sheet> type(
      module, "Spreadsheet",
      "Variables (columns) over common cases (rows). sheet[name] is a column as a NumPy array.");
  type.def(py::init([](std::string name) { return FreeSheet(Spreadsheet(std::move(name))); }),
           py::arg("name") = "Sheet", "An empty spreadsheet; its first column sets the number of cases.");
  TextProperty<&Spreadsheet::Name, &Spreadsheet::SetName>(type, "name", "The name in its workbook.");
  TextProperty<&Spreadsheet::Title, &Spreadsheet::SetTitle>(type, "title", "The title.");
  TextProperty<&Spreadsheet::Header, &Spreadsheet::SetHeader>(type, "header",
                                                              "The heading of the column of case names.");
  type.def_property(
          "is_matrix",
          py::cpp_function([](const Sheet& s) { return s->Sheet().Kind() == SheetKind::kMatrix; }, InHost()),
          py::cpp_function(
              [](const Sheet& s, bool on) {
                RefuseRecordedChange(s);
                s->Sheet().SetKind(on ? SheetKind::kMatrix : SheetKind::kData);
              },
              InHost()),
          "True for a matrix file: a square matrix with four rows of summaries below.")
      .def_property_readonly("names", py::cpp_function(&VariableNames, InHost()),
                             "The names of the variables.")
      .def_property_readonly(
          "shape",
          py::cpp_function(
              [](const Sheet& s) { return std::pair(s->Sheet().CaseCount(), s->Sheet().VariableCount()); },
              InHost()),
          "Numbers of cases and of variables.")
      .def_property_readonly(
          "unpredicted", [](const Sheet& s) { return ReasonsOf(s->unpredicted); },
          "Of predictions: why cases have none, a dictionary with field, reason, value, lowest, highest and "
          "count for each reason, the most frequent first.")
      .def_property_readonly(
          "unavailable_outputs",
          [](const Sheet& s) {
            std::map<std::string, std::string> reasons;
            for (const UnavailableOutput& output : s->unavailable)
              reasons.emplace(output.name, output.reason);
            return reasons;
          },
          "Of predictions: the outputs that the model declares and that cannot be given, each with the "
          "reason.")
      .def("variable", py::overload_cast<const Sheet&, const std::string&>(&VariableCalled), InHost(),
           py::arg("name"), "The variable of that name, or of that number from 1.")
      .def("variable", py::overload_cast<const Sheet&, std::size_t>(&VariableNumber), InHost(),
           py::arg("number"))
      .def("__getitem__", &Column)
      .def("_set_column", &SetColumn, py::arg("name"), py::arg("values"), py::arg("labels") = Texts())
      .def(
          "__contains__",
          [](const Sheet& s, const std::string& n) { return s->Sheet().FindVariable(n).has_value(); },
          InHost())
      .def(
          "__len__", [](const Sheet& s) { return s->Sheet().CaseCount(); }, InHost())
      .def("__iter__",
           [](const Sheet& s) { return py::iter(py::cast(InTurn([&] { return VariableNames(s); }))); })
      .def(
          "__repr__",
          [](const Sheet& s) {
            const Spreadsheet& t = s->Sheet();
            return "<Spreadsheet " + t.Name() + ": " + std::to_string(t.CaseCount()) + " cases, " +
                   std::to_string(t.VariableCount()) + " variables>";
          },
          InHost())
      .def_property("case_names", py::cpp_function(&CaseNames, InHost()),
                    py::cpp_function(
                        [](const Sheet& s, const std::optional<std::vector<std::string>>& names) {
                          RefuseRecordedChange(s);
                          s->Sheet().SetCaseNames(names.value_or(std::vector<std::string>()));
                        },
                        InHost()),
                    "The names of the cases; None where they have none.")
      .def_property_readonly(
          "_cases_numbered",
          py::cpp_function([](const Sheet& s) { return s->Sheet().AreCasesNumbered(); }, InHost()))
      .def_property("weight_variable", py::cpp_function(&WeightName, InHost()),
                    py::cpp_function(&SetWeight, InHost()),
                    "The name of the variable whose whole numbers say how often a case counts, or None.")
      .def_property("selection", py::cpp_function(&Selection, InHost()),
                    py::cpp_function(&SetSelection, InHost()),
                    "The condition that a case meets to be used, such as \"x > 3 and y = 1\", or None.")
      .def_property("_conditions", py::cpp_function(&ConditionsOf, InHost()),
                    py::cpp_function(&SetConditions, InHost()))
      .def(
          "add_cases",
          [](const Sheet& s, std::size_t count) {
            RefuseRecordedChange(s);
            s->Sheet().AddCases(count);
          },
          InHost(), py::arg("count"), "Appends cases, missing in every variable.")
      .def(
          "copy", [](const Sheet& s) { return FreeSheet(s->Sheet()); }, InHost(), "A copy in no workbook.")
      .def(
          "to_csv",
          [](const Sheet& s, const std::filesystem::path& path, bool decimalComma, bool safeCells) {
            RequireValue("path", path.string());
            WriteCsvFile(safeCells ? WithSafeCells(s->Sheet()) : s->Sheet(), path, FormatOf(decimalComma));
            RecordCall(s, "to_csv",
                       {PythonPath(path), DecimalCommaArgument(decimalComma), SafeCellsArgument(safeCells)});
          },
          InHost(), py::arg("path"), py::arg("decimal_comma") = false, py::arg("safe_cells") = false,
          "Writes a CSV file whose numbers read back exactly; with safe_cells, texts that spreadsheet "
          "programs "
          "would run as formulas get an apostrophe before them. Replaces no project.")
      .def(
          "to_npz",
          [](const Sheet& s, const std::filesystem::path& path) {
            RequireValue("path", path.string());
            RefuseProjectTarget(path);
            WriteNumpyArchive(s->Sheet(), path);
            RecordCall(s, "to_npz", {PythonPath(path)});
          },
          InHost(), py::arg("path"),
          "Writes an archive of NumPy arrays, one per variable, which numpy.load reads. Replaces no "
          "project.")
      .def(
          "to_file",
          [](const Sheet& s, const std::filesystem::path& path) {
            RequireValue("path", path.string());
            JobFaults faults;
            CheckTableTarget("path", path, faults);
            RequireNone(std::move(faults));
            RefuseProjectTarget(path);
            WriteDataFile(s->Sheet(), path);
            RecordCall(s, "to_file", {PythonPath(path)});
          },
          InHost(), py::arg("path"),
          "Writes a data file, by ending .csv, .npz, .xlsx, .sav or .dta. Replaces no project.");
  module.def(
      "read_csv",
      [](const std::filesystem::path& path, bool decimalComma) {
        RequireValue("path", path.string());
        const Sheet sheet = FreeSheet(ReadCsv(path, FormatOf(decimalComma)));
        RecordGiven("sheet", nullptr, "ReadCsv", {PythonPath(path), DecimalCommaArgument(decimalComma)},
                    sheet);
        return sheet;
      },
      InHost(), py::arg("path"), py::arg("decimal_comma") = false,
      "The spreadsheet in a CSV file with a header row.");
}

using Book = std::shared_ptr<WorkbookRef>;

void BindWorkbook(py::module_& module) {
  py::class_<WorkbookRef, Book> type(module, "Workbook",
                                     "A project: spreadsheets and matrix files in one file, by name.");
  type.def(py::init([] {
             auto workbook = std::make_shared<WorkbookRef>();
             RecordMade(workbook);
             return workbook;
           }),
           InHost(), "An empty project without a file.")
      .def_property_readonly("path", &WorkbookRef::Path, InHost(), "The project's file, or None.")
      .def_property_readonly(
          "read_as", [](const Book& book) { return ReadAsText(book->File()); }, InHost(),
          "What is not as usual in the text file that the workbook was read from, such as \"data.csv has "
          "fields "
          "separated by tabs\"; empty if there is nothing.")
      .def_property_readonly("names", py::cpp_function(&WorkbookRef::Names, InHost()),
                             "The names of the sheets in their order.")
      .def(
          "sheet",
          [](const Book& book, const std::string& name) { return Recorded(book->SheetCalled(name), name); },
          InHost(), py::arg("name") = "", "The sheet of that name; without one, the first data sheet.")
      .def(
          "__getitem__",
          [](const Book& book, const std::string& name) {
            Spreadsheet* sheet = book->Content().Find(name);
            if (sheet == nullptr) throw py::key_error(name);
            return Recorded(book->RefTo(*sheet), name);
          },
          InHost())
      .def(
          "__getitem__",
          [](const Book& book, std::ptrdiff_t index) {
            const Sheet sheet = book->SheetAt(index);
            return Recorded(sheet, sheet->Sheet().Name());
          },
          InHost(), py::arg("index"))
      .def(
          "__contains__",
          [](const Book& book, const std::string& name) { return book->Content().Find(name) != nullptr; },
          InHost())
      .def(
          "__len__", [](const Book& book) { return book->Content().SheetCount(); }, InHost())
      .def("__iter__",
           [](const Book& book) { return py::iter(py::cast(InTurn([&] { return book->Names(); }))); })
      .def(
          "add",
          [](const Book& book, const Sheet& sheet) {
            const std::string name = RecordedName(sheet);
            Sheet added = book->Add(sheet);
            RecordGiven("sheet", book.get(), "Add", {name}, added);
            return added;
          },
          InHost(), py::arg("sheet").none(false),
          "Appends a sheet and returns the one in the workbook: a free sheet itself, of any other a copy. "
          "Where its name is taken, a number is put behind it.")
      .def(
          "remove",
          [](const Book& book, const std::string& name) {
            if (book->Content().Find(name) == nullptr) throw py::key_error(name);
            Sheet removed = book->Remove(name);
            RecordGiven("sheet", book.get(), "remove", {PythonText(name)}, removed);
            return removed;
          },
          InHost(), py::arg("name"), "Takes a sheet out and returns it.")
      .def(
          "save",
          [](const Book& book, const std::optional<std::filesystem::path>& path) {
            if (path) RequireValue("path", path->string());
            JobFaults faults;
            if (path) CheckProjectEnding("path", *path, faults);
            RequireNone(std::move(faults));
            book->Save(path);
            TheJob().Called(book.get(), "Save", {path ? PythonPath(*path) : ""});
          },
          InHost(), py::arg("path") = std::nullopt,
          "Writes the project in one step: the file holds its old or its new content, never a mixture. "
          "Without a path, to the file that it was read from or last saved to.")
      .def(
          "report",
          [](const Book& book, const std::filesystem::path& path, const std::string& sheet) {
            const auto file = book->Path();
            if (!file) throw Error("a workbook that is saved nowhere has no report");
            PythonInterface interface;
            ShowJob job;
            job.project = *file;
            job.sheet = sheet;
            job.report = path;
            job.Run(book->File(), interface, TheJob());
          },
          InHost(), py::arg("path"), py::arg("sheet") = "",
          "Writes a report of a sheet, or without its name of all, with tables and pictures, by ending: "
          ".html as one "
          "file, .pdf, or .md with its pictures in a folder beside it.")
      .def(
          "__repr__",
          [](const Book& book) {
            const auto path = book->Path();
            return "<Workbook " + (path ? path->string() : std::string("without a file")) + ": " +
                   std::to_string(book->Content().SheetCount()) + " sheets>";
          },
          InHost());
  module.def(
      "open_workbook",
      [](const std::filesystem::path& path, bool decimalComma, const TextOptions& text,
         const std::optional<std::string>& sheet) {
        JobData data = DataOf(path, decimalComma, text);
        data.sheet = sheet.value_or("");
        data.tell = {};
        DataFile file = OpenJobData(data);
        // A workbook that is wanted as a whole leaves no sheet out.
        if (!sheet)
          std::erase_if(file.doubts, [](const ReadingNote& doubt) { return doubt.field == "sheet"; });
        WarnOfDoubts(file);
        auto workbook = std::make_shared<WorkbookRef>(std::move(file));
        RecordOpened(workbook, path, ReadingArguments(data));
        return workbook;
      },
      InHost(), py::arg("path"), py::arg("decimal_comma") = false, py::arg("reading") = TextOptions(),
      py::arg("sheet") = std::nullopt,
      "Opens a project, or a data file of another kind as a workbook; with the sheet that is wanted of it, "
      "what was found is told "
      "of that one, which without a name is the first.");
}

}  // namespace

void BindSheets(py::module_& module) {
  BindReading(module);
  BindVariable(module);
  BindSheet(module);
  BindWorkbook(module);
}

}  // namespace brenvolt::python
