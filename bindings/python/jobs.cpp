// What jobs in Python share with the command: the words for what dialogs offer, and how projects are saved.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <initializer_list>
#include <span>

#include "bindings/python/host_call.h"
#include "bindings/python/module.h"
#include "bindings/python/outcome.h"
#include "bindings/python/recording.h"
#include "bindings/python/sheets.h"
#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/quoted.h"
#include "host/jobs/dialog_words.h"
#include "host/jobs/exchange.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_job.h"
#include "host/jobs/fit_results.h"
#include "host/jobs/project_files.h"
#include "host/jobs/score_job.h"
#include "host/jobs/simulate_job.h"
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

// The code of a distribution that a person names. Throws ValueError that lists the names.
std::size_t CodeOf(const std::string& name) {
  const FittedType* type = FindFittedType(name);
  if (type == nullptr)
    throw py::value_error("no distribution called " + Quoted(name) + "; there are " + FittedTypeNames());
  return static_cast<std::size_t>(type - kFittedTypes.data());
}

// The numbers of those of the columns that a row has, in the order of frames.
py::dict NumbersOf(const ResultRow& row, std::initializer_list<std::span<const ResultColumn>> groups) {
  py::dict numbers;
  for (const auto& columns : groups) {
    for (const ResultColumn& column : columns) {
      if (row.Has(column)) numbers[py::str(std::string(column.identifier))] = row.Number(column);
    }
  }
  return numbers;
}

py::dict FitDict(const FittedDistribution& fit) {
  using namespace result_columns;
  return py::dict("code"_a = fit.code, "name"_a = fit.name, "parameters"_a = fit.parameters,
                  "offset"_a = fit.offset, "standard_errors"_a = fit.standardErrors, "reason"_a = fit.reason,
                  "statistics"_a = NumbersOf(fit.statistics, {kTests, kLikelihood, kBootstrap}));
}

// What the open dialog of the fit results tells of each variable.
py::list FitResults(const std::shared_ptr<AnalysisRef>& analysis) {
  const auto variables = InTurn([&] {
    const auto dialog = analysis->Analysis().GetDialgInterface();
    if (dialog == nullptr) throw Error("the analysis has no open dialog");
    return ReadFitResults(*dialog, Covariances::kLeftOut);
  });
  py::list list;
  for (const FittedVariable& variable : variables) {
    py::list fits;
    for (const FittedDistribution& fit : variable.fits) fits.append(FitDict(fit));
    list.append(py::dict("name"_a = variable.name, "continuous"_a = variable.isContinuous,
                         "moments"_a = NumbersOf(variable.moments, {result_columns::kMoments}),
                         "fits"_a = fits));
  }
  return list;
}

void RequireProjectEnding(const char* field, const std::filesystem::path& path) {
  JobFaults faults;
  CheckProjectEnding(field, path, faults);
  RequireNone(std::move(faults));
}

void SaveFitsOf(const Sheet& sheet, const Sheet& matrix, const std::filesystem::path& path) {
  RequireProjectEnding("path", path);
  const auto& workbook = sheet->Workbook();
  SaveFits(sheet->Sheet(), CopyOf(matrix), workbook != nullptr ? &workbook->File() : nullptr, path);
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
  RequireProjectEnding("path", path);
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
  RequireProjectEnding("project", project);
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
  const ScoreJob job{model, {data, sheet, decimalComma}, probabilities, leaveInvalid, {}};
  Sheet predictions = Free(std::make_unique<Spreadsheet>(job.Score()));
  Keep(predictions);
  job.Record(TheJob(), predictions.get());
  return predictions;
}

// The names of the fitted variables, in the order of the results.
std::vector<std::string> Fit(const FitJob& job, AnalysisRef& analysis) {
  std::vector<std::string> names;
  CarryOut(&analysis, [&] { names = job.Fit(analysis.Session(), analysis.Input()->Sheet()); });
  return names;
}

void SpecifySaving(const FitJob& job, AnalysisRef& analysis, const std::vector<std::string>& fitted) {
  CarryOut(&analysis, [&] { job.SpecifySaving(*analysis.Session().Dialog(), fitted); });
}

void SpecifySimulation(const SimulateJob& job, AnalysisRef& analysis) {
  CarryOut(&analysis, [&] { job.Specify(analysis.Session(), analysis.Input()->Sheet()); });
}

void BindFitJob(py::module_& module) {
  py::class_<FitJob> job(module, "FitJob");
  py::class_<FitJob::Offset>(job, "Offset").def(py::init<std::string, std::string, double>());
  py::class_<FitJob::Count>(job, "Count").def(py::init<std::string, double>());
  py::class_<FitJob::Truncation>(job, "Truncation")
      .def(py::init<std::string, std::optional<double>, std::optional<double>>());
  py::class_<FitJob::Order>(job, "Order").def(py::init<std::string, std::vector<std::string>>());
  using Names = std::vector<std::string>;
  job.def(py::init<>())
      .def_property("continuous", nullptr, [](FitJob& j, Names names) { j.variables.continuous = names; })
      .def_property("discrete", nullptr, [](FitJob& j, Names names) { j.variables.discrete = names; })
      .def_readwrite("distributions", &FitJob::distributions)
      .def_readwrite("rank_by", &FitJob::rankBy)
      .def_readwrite("discrete_rank_by", &FitJob::discreteRankBy)
      .def_readwrite("binning", &FitJob::binning)
      .def_readwrite("missing", &FitJob::missing)
      .def_readwrite("offsets", &FitJob::offsets)
      .def_readwrite("mixtures", &FitJob::mixtures)
      .def_readwrite("trials", &FitJob::trials)
      .def_readwrite("johnson_percentiles", &FitJob::johnsonPercentiles)
      .def_readwrite("bootstrap", &FitJob::bootstrap)
      .def_readwrite("bootstrap_seed", &FitJob::bootstrapSeed)
      .def_readwrite("save", &FitJob::save)
      .def_readwrite("truncate", &FitJob::truncate)
      .def_readwrite("order", &FitJob::order)
      .def("check", [](const FitJob& j) { RequireNone(j.Check()); })
      .def("run", &Fit)
      .def("specify_saving", &SpecifySaving);
}

void BindSimulateJob(py::module_& module) {
  py::class_<SimulateJob>(module, "SimulateJob")
      .def(py::init<>())
      .def_readwrite("variables", &SimulateJob::variables)
      .def_readwrite("method", &SimulateJob::method)
      .def_readwrite("samples", &SimulateJob::samples)
      .def_readwrite("seed", &SimulateJob::seed)
      .def_readwrite("truncate", &SimulateJob::truncate)
      .def_readwrite("matrix", &SimulateJob::matrix)
      .def("check", [](const SimulateJob& job) { RequireNone(job.Check()); })
      .def("choose_seed", &SimulateJob::ChooseSeed)
      .def("specify", &SpecifySimulation);
}

}  // namespace

void BindJobs(py::module_& module) {
  BindFitJob(module);
  BindSimulateJob(module);
  module.attr("NotSet") = kNotSet;
  module.def(
      "_take_former_properties",
      [](const Sheet& sheet, const std::filesystem::path& path) {
        TakeFormerProperties(path, sheet->Sheet());
        TheJob().Called(nullptr, "TakeFormerProperties", {RecordedName(sheet), PythonPath(path)});
      },
      InHost());
  module.def("_code_of", &CodeOf);
  module.def("_induces_correlation", &InducesCorrelation);
  module.def("_save_fits", &SaveFitsOf, InHost());
  module.def(
      "_fitted_sheet",
      [](const std::shared_ptr<WorkbookRef>& workbook, const std::string& name) {
        Spreadsheet& sheet = FittedSheet(workbook->File(), name);
        return Recorded(workbook->RefTo(sheet), sheet.Name());
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
  module.def("_fit_results", &FitResults);
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
