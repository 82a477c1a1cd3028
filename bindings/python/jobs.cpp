// What jobs in Python share with the command: the words for what dialogs offer, and how projects are saved.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include "bindings/python/host_call.h"
#include "bindings/python/module.h"
#include "bindings/python/recording.h"
#include "bindings/python/sheets.h"
#include "host/analysis/result_columns.h"
#include "host/base/almost_equal.h"
#include "host/base/quoted.h"
#include "host/jobs/dialog_words.h"
#include "host/jobs/exchange.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/project_files.h"
#include "host/tables/matrix_sheet.h"

namespace py = pybind11;
using namespace pybind11::literals;

namespace brenvolt::python {
namespace {

using InHost = py::call_guard<HostCall>;
using Sheet = std::shared_ptr<SheetRef>;

Sheet Free(std::unique_ptr<Spreadsheet> sheet) {
  return sheet == nullptr ? nullptr : std::make_shared<SheetRef>(std::move(sheet));
}

std::unique_ptr<Spreadsheet> CopyOf(const Sheet& sheet) {
  return sheet == nullptr ? nullptr : std::make_unique<Spreadsheet>(sheet->Sheet());
}

py::list FittedTypes() {
  py::list types;
  for (const FittedType& type : kFittedTypes) {
    types.append(py::dict("name"_a = std::string(type.name), "continuous"_a = type.continuous,
                          "check"_a = std::string(type.check), "offset"_a = std::string(type.offset)));
  }
  return types;
}

// The code of a distribution that a person names. Throws ValueError that lists the names.
std::size_t CodeOf(const std::string& name) {
  const FittedType* type = FindFittedType(name);
  if (type == nullptr)
    throw py::value_error("no distribution called " + Quoted(name) + "; there are " + FittedTypeNames());
  return static_cast<std::size_t>(type - kFittedTypes.data());
}

// The columns of result tables by the names that frames give them.
py::dict ResultColumns() {
  using namespace result_column;
  const std::pair<const char*, std::string_view> columns[] = {
      {"kind", kKind},
      {"n", kCount},
      {"missing", kMissing},
      {"code", kCode},
      {"description", kDescription},
      {"offset", kOffset},
      {"ks", kKolmogorovSmirnov},
      {"ks_p", kKolmogorovSmirnovPValue},
      {"chi_square", kChiSquare},
      {"chi_square_df", kChiSquareDegrees},
      {"chi_square_p", kChiSquarePValue},
      {"ad", kAndersonDarling},
      {"ad_p", kAndersonDarlingPValue},
      {"log_likelihood", kLogLikelihood},
      {"aic", kAic},
      {"bic", kBic},
      {"bootstrap_ks_p", kBootstrapKolmogorovSmirnov},
      {"bootstrap_chi_square_p", kBootstrapChiSquare},
      {"bootstrap_ad_p", kBootstrapAndersonDarling},
      {"bootstrap_samples", kBootstrapSamples},
      {"reason", kReason},
      {"parameter", kParameter},
      {"standard_error", kStandardError},
      {"covariance", kCovariance},
  };
  py::dict dictionary;
  for (const auto& [name, column] : columns) dictionary[name] = std::string(column);
  return dictionary;
}

py::dict DictOf(const Choices& choices) {
  py::dict dictionary;
  for (const auto& [word, member] : choices) dictionary[py::str(word)] = std::string(member);
  return dictionary;
}

void RequireProjectEnding(const std::filesystem::path& path) {
  if (!HasProjectEnding(path))
    throw std::invalid_argument("a project's file ends in .bvw, not as " + path.string());
}

// Saves a fitted sheet with its correlation matrix. A sheet of a project that is saved to the project's own
// file stays where it is; otherwise it is merged into the project at `path`.
void SaveFits(const Sheet& sheet, const Sheet& matrix, const std::filesystem::path& path) {
  RequireProjectEnding(path);
  const auto& workbook = sheet->Workbook();
  std::error_code ignored;
  const bool own = workbook != nullptr && workbook->Path() &&
                   std::filesystem::equivalent(*workbook->Path(), path, ignored);
  if (own) {
    if (matrix != nullptr) PutCorrelationMatrix(workbook->Content(), sheet->Sheet().Name(), CopyOf(matrix));
    workbook->Save(path);
  } else {
    MergeIntoProject(path, sheet->Sheet(), CopyOf(matrix));
  }
  TheJob().Called(nullptr, "SaveFits",
                  {RecordedName(sheet), matrix != nullptr ? RecordedName(matrix) : "None", PythonPath(path)});
}

Sheet SavedMatrixOf(const Sheet& sheet) {
  const auto& workbook = sheet->Workbook();
  if (workbook == nullptr) return nullptr;
  Sheet matrix = Free(SavedMatrix(workbook->Content(), sheet->Sheet()));
  RecordGiven("matrix", nullptr, "SavedMatrix", {RecordedName(sheet)}, matrix);
  return matrix;
}

Sheet MatrixNamed(const std::string& name, const Sheet& sheet) {
  const Workbook none;
  const auto& workbook = sheet->Workbook();
  Sheet matrix = Free(NamedMatrix(name, workbook == nullptr ? none : workbook->Content(), "matrix " + name));
  RecordGiven("matrix", nullptr, "NamedMatrix", {PythonText(name), RecordedName(sheet)}, matrix);
  return matrix;
}

std::vector<std::string> Append(const std::filesystem::path& path, const std::vector<Sheet>& sheets) {
  RequireProjectEnding(path);
  std::vector<std::unique_ptr<Spreadsheet>> copies;
  JobRecorder::Arguments arguments{PythonPath(path)};
  for (const Sheet& sheet : sheets) {
    copies.push_back(CopyOf(sheet));
    arguments.push_back(RecordedName(sheet));
  }
  auto names = AppendToProject(path, std::move(copies));
  TheJob().Called(nullptr, "Append", arguments);
  return names;
}

CsvFormat Format(bool decimalComma) {
  return decimalComma ? CsvFormat::DecimalComma() : CsvFormat{};
}

std::string Keyword(const char* name, const std::string& text) {
  return text.empty() ? text : name + PythonText(text);
}

std::string Import(const std::filesystem::path& file, const std::filesystem::path& project,
                   const std::string& sheet, const std::string& kind, bool decimalComma) {
  RequireProjectEnding(project);
  if (!kind.empty() && kind != "data" && kind != "matrix")
    throw std::invalid_argument("kind is 'data' or 'matrix', not " + Quoted(kind));
  const Spreadsheet imported = ImportIntoProject({file, Format(decimalComma), sheet, kind}, project);
  TheJob().Called(nullptr, "Import",
                  {PythonPath(file), PythonPath(project), Keyword("sheet=", sheet), Keyword("kind=", kind),
                   DecimalCommaArgument(decimalComma)});
  return imported.Name();
}

void Export(const std::string& source, const std::filesystem::path& output, bool decimalComma) {
  ExportFromProject(source, output, Format(decimalComma));
  TheJob().Called(nullptr, "Export",
                  {PythonText(source), PythonPath(output), DecimalCommaArgument(decimalComma)});
}

Sheet Score(const std::filesystem::path& model, const std::filesystem::path& data, const std::string& sheet,
            bool probabilities, bool leaveInvalid, bool decimalComma) {
  ScoreOptions options;
  options.classProbabilities = probabilities;
  options.invalid = leaveInvalid ? InvalidValues::kMissing : InvalidValues::kError;
  Sheet predictions =
      Free(std::make_unique<Spreadsheet>(ScoreFile(model, data, Format(decimalComma), sheet, options)));
  RecordGiven("predictions", nullptr, "Score",
              {PythonPath(model), PythonPath(data), Keyword("sheet=", sheet),
               probabilities ? "probabilities=True" : "", leaveInvalid ? "leave_invalid=True" : "",
               DecimalCommaArgument(decimalComma)},
              predictions);
  return predictions;
}

}  // namespace

void BindJobs(py::module_& module) {
  module.attr("_fitted_types") = FittedTypes();
  module.attr("_criteria") = DictOf(kCriteria);
  module.attr("_discrete_criteria") = DictOf(kDiscreteCriteria);
  module.attr("_binnings") = DictOf(kBinnings);
  module.attr("_deletions") = DictOf(kDeletions);
  module.attr("_simulation_methods") = DictOf(kSimulationMethods);
  module.attr("_result_columns") = ResultColumns();
  module.attr("NotSet") = kNotSet;
  module.def(
      "_take_former_properties",
      [](const Sheet& sheet, const std::filesystem::path& path) {
        TakeFormerProperties(path, sheet->Sheet());
        TheJob().Called(nullptr, "TakeFormerProperties", {RecordedName(sheet), PythonPath(path)});
      },
      InHost());
  module.def("_require_project_ending", &RequireProjectEnding);
  module.def("_code_of", &CodeOf);
  module.def("_induces_correlation", &InducesCorrelation);
  module.def("_save_fits", &SaveFits, InHost());
  module.def(
      "_fitted_sheet",
      [](const std::shared_ptr<WorkbookRef>& workbook) -> Sheet {
        Spreadsheet* sheet = FirstFittedSheet(workbook->Content());
        return sheet == nullptr ? nullptr : Recorded(workbook->RefTo(*sheet), sheet->Name());
      },
      InHost());
  module.def("_saved_matrix", &SavedMatrixOf, InHost());
  module.def("_named_matrix", &MatrixNamed, InHost());
  module.def("_append", &Append, InHost());
  module.def(
      "_write_fit_graphs",
      [](const std::shared_ptr<AnalysisRef>& analysis, const std::filesystem::path& path) {
        WriteFitGraphs(analysis->Analysis(), path, TheJob());
      },
      InHost());
  module.def("_import", &Import, InHost());
  module.def("_export", &Export, InHost());
  module.def("_score", &Score, InHost());
  module.def(
      "_matrix_from_table",
      [](const Sheet& table) {
        return Free(MatrixFromTable(table->Sheet(), "matrix " + table->Sheet().Name()));
      },
      InHost());
}

}  // namespace brenvolt::python
