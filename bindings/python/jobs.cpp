// Jobs in Python: their structures, filled by keyword, their checks, and what they return.
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "bindings/python/errors.h"
#include "bindings/python/host_call.h"
#include "bindings/python/job_results.h"
#include "bindings/python/module.h"
#include "bindings/python/numpy_arrays.h"
#include "bindings/python/outcome.h"
#include "bindings/python/reading.h"
#include "bindings/python/recording.h"
#include "bindings/python/sheets.h"
#include "bindings/python/variants.h"
#include "host/application/json_text.h"
#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/visible_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/design_job.h"
#include "host/jobs/exchange/exchange_jobs.h"
#include "host/jobs/exchange/preview_job.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_job.h"
#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"
#include "host/jobs/json/fit_json.h"
#include "host/jobs/json/measured_json.h"
#include "host/jobs/json/preview_json.h"
#include "host/jobs/measured/capability_job.h"
#include "host/jobs/measured/censored_fit_job.h"
#include "host/jobs/profile/profile_graphs.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/reports/fit_report.h"
#include "host/jobs/reports/reported_jobs.h"
#include "host/jobs/score_job.h"
#include "host/jobs/simulate_job.h"
#include "host/tables/matrix_sheet.h"

namespace py = pybind11;

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
  const NamedDistribution* distribution = FindDistribution(name);
  if (distribution == nullptr) throw py::value_error(VisibleLine(NoSuchDistribution(name)));
  return static_cast<std::size_t>(distribution - kNamedDistributions.data());
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

std::string Import(const std::filesystem::path& file, const std::filesystem::path& output,
                   const std::string& sheet, const std::string& kind, bool decimalComma,
                   const std::string& name, const TextOptions& text) {
  RequireValue("file", file.string());
  RequireValue("output", output.string());
  ImportJob job{DataOf(file, decimalComma, text), output, name, kind};
  job.data.sheet = sheet;
  return job.Run(TheJob()).Name();
}

// What a file would be read as, as JSON.
std::string Preview(const std::filesystem::path& file, const std::string& sheet, bool decimalComma,
                    const TextOptions& text) {
  PreviewJob job{DataOf(file, decimalComma, text)};
  job.data.sheet = sheet;
  return JsonText(PreviewJson(job.Run()));
}

void Export(const std::string& source, const std::filesystem::path& output, bool decimalComma,
            bool safeCells) {
  RequireValue("source", source);
  RequireValue("output", output.string());
  ExportJob{source, output, decimalComma, safeCells}.Run(TheJob());
}

// The predictions for the cases of an open sheet, or if it is null of the job's file.
Sheet Score(const ScoreJob& job, const Sheet& cases) {
  ScoreRun run = cases != nullptr ? job.Score(cases->Sheet()) : job.Score();
  Sheet predictions = Free(std::make_unique<Spreadsheet>(std::move(run.predictions)));
  Keep(predictions);
  RecordAsInput(cases);
  job.Record(TheJob(), predictions.get(), cases.get());
  predictions->unpredicted = run.unpredicted.Reasons();
  predictions->unavailable = std::move(run.unavailable);
  return predictions;
}

// The report of the command as JSON.
std::string Capability(const CapabilityJob& job, const Sheet& sheet) {
  std::string report;
  CarryOut(nullptr, [&] { report = JsonText(CapabilityJson(RunReported(job, sheet->Sheet(), TheJob()))); });
  return report;
}

// A sheet as input of a job, which starts its analysis when it has prepared the sheet. A sheet that people hold is lent.
JobInput InputOf(const Sheet& sheet, bool isLent, std::shared_ptr<AnalysisRef>& analysis) {
  RecordAsInput(sheet);
  const auto& workbook = sheet->Workbook();
  const auto start = [sheet, &analysis]() -> AnalysisSession& {
    analysis = std::make_shared<AnalysisRef>(sheet);
    return analysis->Session();
  };
  return {sheet->Sheet(), workbook != nullptr ? &workbook->File() : nullptr, sheet.get(), start, isLent};
}

ReportContext ContextOf(AnalysisRef& analysis, bool isFromFile) {
  return {analysis.Input()->Sheet(), analysis.Session().Interface().Messages(),
          isFromFile ? std::string() : kFromProgram};
}

// The analysis, the names of the fitted variables in the order of the results, their fits, and their quantiles as JSON.
py::tuple Fit(const FitJob& job, const Sheet& sheet, bool isLent) {
  std::shared_ptr<AnalysisRef> analysis;
  std::vector<std::string> names;
  std::vector<FittedVariable> fitted;
  std::vector<std::string> quantiles;
  CarryOut(analysis, [&] {
    names = job.Run(InputOf(sheet, isLent, analysis), TheJob());
    fitted = ReadFitResults(*analysis->Session().Dialog(),
                            job.AsksForQuantiles() ? Covariances::kRead : Covariances::kLeftOut, job.Top());
    for (const auto& one : AllQuantiles(job, fitted, analysis->Input()->Sheet()))
      quantiles.push_back(JsonText(QuantilesJson(one)));
  });
  return py::make_tuple(analysis, names, FitDicts(fitted), quantiles);
}

// The correlation matrix of the fits that the open dialog shows, and which are put on the sheet.
Sheet KeepFits(const FitJob& job, const std::shared_ptr<AnalysisRef>& analysis,
               const std::vector<std::string>& fitted) {
  Table matrix;
  CarryOut(analysis, [&] { matrix = job.Keep(analysis->Session(), analysis->Input()->Sheet(), fitted); });
  return std::make_shared<SheetRef>(std::move(matrix));
}

// The place of the fit of a variable that is saved first, from 0; None if none is.
std::optional<std::size_t> FirstSavedOf(const std::shared_ptr<AnalysisRef>& analysis, std::int32_t variable,
                                        const std::vector<int>& fits) {
  std::optional<std::size_t> first;
  CarryOut(analysis, [&] { first = FirstSaved(*analysis->Session().Dialog(), variable, fits); });
  return first;
}

// The report of the fits that the open dialog shows.
void WriteFitReport(FitJob job, const std::shared_ptr<AnalysisRef>& analysis,
                    const std::filesystem::path& path, bool isFromFile) {
  job.report = path;
  JobFaults faults;
  CheckReport(path, faults, ReportKinds::kDocumentsAndWorkbook);
  RequireNone(std::move(faults));
  CarryOut(analysis, [&] {
    RefuseRecordedReport(path, TheJob());
    WriteReportOfFit(job, analysis->Session(), ContextOf(*analysis, isFromFile));
  });
}

void SaveFitted(const FitJob& job, std::shared_ptr<AnalysisRef> analysis,
                const std::vector<std::string>& fitted) {
  CarryOut(analysis, [&] {
    const JobInput input = InputOf(analysis->Input(), true, analysis);
    job.Save(input, analysis->Session(), fitted, TheJob());
  });
}

// A sheet for designed variables.
Sheet NewDesign() {
  const std::string name(kNewDesignSheet);
  Sheet sheet = Free(std::make_unique<Spreadsheet>(name));
  RecordGiven("sheet", nullptr, "NewSheet", {PythonText(name)}, sheet);
  return sheet;
}

// The distributions in their notation, by name.
py::dict NotationsOf(const DesignText& design) {
  py::dict variables;
  for (const NotedVariable& variable : design.variables)
    variables[py::str(variable.name)] = NotationOf(variable.distribution);
  return variables;
}

// The samples, their method and seed, and what they were drawn from. `matrix`, which is given, and `kept`, which belongs to the fits
// and serves the methods that follow one, may be null.
py::tuple Simulate(SimulateJob job, const Sheet& sheet, const Sheet& matrix, const Sheet& kept,
                   bool isFromFile) {
  std::shared_ptr<AnalysisRef> analysis;
  SimulationFindings found;
  job.keepsSamples = true;
  if (matrix != nullptr) job.givenMatrix = DocumentOf(matrix);
  if (kept != nullptr) job.savedMatrix = DocumentOf(kept);
  CarryOut(analysis, [&] { found = RunReported(job, InputOf(sheet, true, analysis), TheJob(), isFromFile); });
  return py::make_tuple(std::make_shared<SheetRef>(found.output), found.method, found.seed,
                        CautionTexts(found.cautions), NotationsOf(found.design), PairDicts(found.results),
                        RepairedMatrix(found.results), found.Notes());
}

// The variables in their notation by name, the correlations as triples, the least eigenvalue of their matrix, and notes.
py::tuple Design(const DesignJob& job, const Sheet& sheet) {
  std::shared_ptr<AnalysisRef> analysis;
  DesignFindings found;
  CarryOut(analysis, [&] { found = job.Run(InputOf(sheet, false, analysis), TheJob()); });
  py::list correlations;
  for (const NotedCorrelation& pair : found.design.correlations)
    correlations.append(py::make_tuple(pair.first, pair.second, pair.value));
  return py::make_tuple(NotationsOf(found.design), correlations, SmallestEigenvalue(found.design),
                        found.notes);
}

// A function of Python as a model. It is called in blocks with the number of the first run and a list of columns, and gives
// a list of columns; what it raises has a message and the block as its arguments.
std::shared_ptr<const ModelFunction> FunctionOf(std::string name, std::vector<std::string> predictors,
                                                std::vector<std::string> responses, py::object function) {
  // Whoever lets go of it last may not hold the interpreter.
  const std::shared_ptr<py::object> held(new py::object(std::move(function)), [](py::object* last) {
    const py::gil_scoped_acquire interpreter;
    delete last;
  });
  const auto predict = [held](std::size_t first, std::span<const std::span<const double>> columns,
                              std::span<const std::span<double>> given) {
    const py::gil_scoped_acquire interpreter;
    try {
      py::list inputs;
      for (const auto& column : columns)
        inputs.append(py::array_t<double>(static_cast<py::ssize_t>(column.size()), column.data()));
      const auto outputs = (*held)(first, inputs).cast<std::vector<Numbers>>();
      for (std::size_t k = 0; k < given.size(); ++k)
        std::copy_n(outputs.at(k).data(), given[k].size(), given[k].begin());
    } catch (const py::error_already_set& fault) {
      const py::tuple said = fault.value().attr("args");
      if (said.size() != 2) throw Error(fault.what());
      throw Error(said[0].cast<std::string>(), said[1].cast<std::string>());
    }
  };
  return std::make_shared<const ModelFunction>(
      ModelFunction{std::move(name), std::move(predictors), std::move(responses), predict});
}

// Of no analysis.
AutomationRef GraphRef(Graph graph) {
  return {std::make_shared<CAnalysisGraphDoc>(std::move(graph)), nullptr};
}

// The graphs of each response by the words for their kinds.
py::list ResponseGraphDicts(const std::vector<ResponseGraphs>& responses) {
  py::list list;
  for (const ResponseGraphs& response : responses) {
    py::dict graphs;
    for (const std::string_view kind : kProfilePlotKinds) {
      auto pages = ProfilePlots({&response, 1}, kind);
      if (!pages.empty()) graphs[py::str(std::string(kind))] = GraphRef(std::move(pages.front().page));
    }
    list.append(graphs);
  }
  return list;
}

// Of samples with what they come from: the distributions in their notation by name, and the correlations asked for.
AutomationRef SampleGraph(const Sheet& sheet, const std::string& kind,
                          const std::map<std::string, std::string>& distributions, bool isTruncated,
                          const std::vector<std::tuple<std::string, std::string, double>>& asked) {
  DataOrigin origin;
  origin.isTruncated = isTruncated;
  for (const auto& [name, notation] : distributions)
    origin.distributions.push_back({name, ReadDistribution(notation)});
  for (const auto& [first, second, value] : asked) origin.Ask(first, second, value);
  auto pages = DataPlots(sheet->Sheet(), kind, origin);
  if (pages.empty()) throw Error("there is nothing to draw");
  return GraphRef(Together(std::move(pages), "Simulated data"));
}

AutomationRef FitGraphWith(const std::shared_ptr<AnalysisRef>& analysis, std::int32_t variable,
                           std::int32_t fit, std::string kind, bool band) {
  Plot plot;
  plot.kind = std::move(kind);
  plot.band = band;
  return InTurn([&] { return GraphRef(FitGraphOf(analysis->Analysis(), variable, fit, plot)); });
}

// Of the fit of a variable, both numbers from 1.
AutomationRef ReturnLevels(const FitJob& job, const std::shared_ptr<AnalysisRef>& analysis,
                           std::size_t variable, std::size_t fit) {
  return InTurn([&] {
    return GraphRef(
        ReturnLevelsOf(job, *analysis->Session().Dialog(), analysis->Input()->Sheet(), variable, fit));
  });
}

// The simulated runs, their seed, what was found, and a function that makes the graphs of the responses, which takes some
// time. `matrix` may be null.
py::tuple Profile(ProfileJob job, const Sheet& sheet, const Sheet& matrix, bool isFromFile) {
  std::shared_ptr<AnalysisRef> analysis;
  ProfileFindings found;
  if (matrix != nullptr) job.givenMatrix = DocumentOf(matrix);
  job.keepsGraphs = true;
  CarryOut(analysis, [&] { found = RunReported(job, InputOf(sheet, true, analysis), TheJob(), isFromFile); });
  const auto kept = std::make_shared<ProfileFindings>(std::move(found));
  const auto graphs = [kept, analysis] {
    CarryOut(analysis, [&] { MakeGraphs(analysis->Session(), *kept); });
    return ResponseGraphDicts(kept->graphs);
  };
  return py::make_tuple(std::make_shared<SheetRef>(kept->simulated), kept->seed, ProfileDict(kept->results),
                        py::cpp_function(graphs));
}

template <class Job>
void Check(const Job& job) {
  RequireNone(job.Check());
}

// The file that the data came from, if they came from one, which no output may replace.
template <class Job>
void DefineData(py::class_<Job>& job) {
  job.def_property("data", nullptr, [](Job& j, std::filesystem::path file) { j.data.file = std::move(file); })
      .def_property("sheet", nullptr, [](Job& j, std::string name) { j.data.sheet = std::move(name); })
      .def_property("decimal_comma", nullptr, [](Job& j, bool comma) { j.data.decimalComma = comma; })
      .def_property("reading", nullptr,
                    [](Job& j, const TextOptions& text) {
                      j.data.text = text;
                      j.data.tell = WarnOfDoubts;
                    })
      .def_property("yes", nullptr, [](Job& j, bool yes) { j.data.yes = yes; });
}

// The fields of the pictures that a job writes.
template <class Job>
void DefinePlot(py::class_<Job>& job) {
  job.def_property("plot", nullptr, [](Job& j, std::filesystem::path file) { j.plot.file = std::move(file); })
      .def_property("plot_kind", nullptr, [](Job& j, std::string kind) { j.plot.kind = std::move(kind); })
      .def_property("plot_theme", nullptr, [](Job& j, std::string theme) { j.plot.theme = std::move(theme); })
      .def_property("plot_width", nullptr, [](Job& j, double width) { j.plot.width = width; });
}

void BindSpecification(py::module_& module) {
  py::class_<ResponseSpecification>(module, "ResponseSpecification")
      .def(py::init([](std::string response, std::optional<double> lower, std::optional<double> target,
                       std::optional<double> upper) {
        SpecificationLimits limits;
        limits.lower = lower.value_or(limits.lower);
        limits.target = target.value_or(limits.target);
        limits.upper = upper.value_or(limits.upper);
        return ResponseSpecification{std::move(response), limits};
      }));
}

// What is entered by hand.
template <class Job>
void DefineInputs(py::class_<Job>& job) {
  using Texts = std::vector<std::string>;
  job.def_property("designed", nullptr, [](Job& j, Texts texts) { j.inputs.designed = std::move(texts); })
      .def_property("named", nullptr,
                    [](Job& j, std::vector<std::pair<std::string, std::string>> named) {
                      j.inputs.named = std::move(named);
                    })
      .def_property("pairs", nullptr,
                    [](Job& j, const std::vector<std::tuple<std::string, std::string, double>>& pairs) {
                      for (const auto& [first, second, value] : pairs)
                        j.inputs.pairs.push_back({first, second, value});
                    })
      .def_property("correlation_table", nullptr,
                    [](Job& j, const Sheet& table) { j.inputs.correlationTable = CopyOf(table); })
      .def_property("from_file", nullptr,
                    [](Job& j, std::filesystem::path file) { j.inputs.fromFile = std::move(file); })
      .def("designed_names", [](const Job& j) {
        JobFaults faults;
        return j.inputs.Read(nullptr, faults).Names();
      });
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
      .def_readwrite("quantiles", &FitJob::quantiles)
      .def_readwrite("exceed", &FitJob::exceed)
      .def_readwrite("return_periods", &FitJob::returnPeriods)
      .def_readwrite("intervals", &FitJob::intervals)
      .def_readwrite("confidence", &FitJob::confidence)
      .def_readwrite("top", &FitJob::top)
      .def_readwrite("weights", &FitJob::weights)
      .def_readwrite("select", &FitJob::select)
      .def_readwrite("save", &FitJob::save)
      .def_readwrite("graphs", &FitJob::graphs)
      .def_readwrite("report", &FitJob::report)
      .def_readwrite("truncate", &FitJob::truncate)
      .def_readwrite("order", &FitJob::order)
      .def("check", &Check<FitJob>)
      .def("run", &Fit)
      .def("keep", &KeepFits)
      .def("save_fits", &SaveFitted)
      .def("return_levels", &ReturnLevels)
      .def("write_report", &WriteFitReport);
  DefineData(job);
  DefinePlot(job);
  job.def_property("plot_band", nullptr, [](FitJob& j, bool band) { j.plot.band = band; });
}

void BindDesignJob(py::module_& module) {
  py::class_<DesignJob> job(module, "DesignJob");
  job.def(py::init<>())
      .def_readwrite("project", &DesignJob::project)
      .def_readwrite("sheet", &DesignJob::sheet)
      .def_property("matrix", nullptr,
                    [](DesignJob& j, std::string name) { j.inputs.matrix = std::move(name); })
      .def("check", &Check<DesignJob>)
      .def("run", &Design);
  DefineInputs(job);
  module.def("_notation", [](std::size_t code, std::vector<double> values, double offset) {
    return NotationOf(
        {static_cast<DistributionCode>(code), std::move(values), offset, std::nullopt, std::nullopt});
  });
}

void BindSimulateJob(py::module_& module) {
  py::class_<SimulateJob> job(module, "SimulateJob");
  job.def(py::init<>())
      .def_readwrite("variables", &SimulateJob::variables)
      .def_readwrite("method", &SimulateJob::method)
      .def_readwrite("samples", &SimulateJob::samples)
      .def_readwrite("seed", &SimulateJob::seed)
      .def_readwrite("truncate", &SimulateJob::truncate)
      .def_readwrite("matrix", &SimulateJob::matrix)
      .def_readwrite("report", &SimulateJob::report)
      .def("check", &Check<SimulateJob>)
      .def("run", &Simulate);
  DefineData(job);
  DefinePlot(job);
  DefineInputs(job);
}

void BindProfileJob(py::module_& module) {
  py::class_<ProfileJob> job(module, "ProfileJob");
  py::class_<ProfileJob::Noise>(job, "Noise").def(py::init<std::string, double>());
  py::class_<ProfileJob::Fixed>(job, "Fixed").def(py::init<std::string, std::variant<double, std::string>>());
  py::class_<ProfileJob::Truncation>(job, "Truncation")
      .def(py::init<std::string, std::optional<double>, std::optional<double>>());
  job.def(py::init<>())
      .def_readwrite("models", &ProfileJob::models)
      .def_readwrite("formulas", &ProfileJob::formulas)
      .def_readwrite("samples", &ProfileJob::samples)
      .def_readwrite("seed", &ProfileJob::seed)
      .def_readwrite("correlated", &ProfileJob::correlated)
      .def_readwrite("fit_best", &ProfileJob::fitBest)
      .def_readwrite("saved_fits", &ProfileJob::savedFits)
      .def_property("matrix", nullptr,
                    [](ProfileJob& j, std::string name) { j.inputs.matrix = std::move(name); })
      .def_readwrite("noise", &ProfileJob::noise)
      .def_readwrite("noise_correlations", &ProfileJob::noiseCorrelations)
      .def_readwrite("specifications", &ProfileJob::specifications)
      .def_readwrite("fixed", &ProfileJob::fixed)
      .def_readwrite("truncate", &ProfileJob::truncate)
      .def_readwrite("output", &ProfileJob::output)
      .def_readwrite("graphs", &ProfileJob::graphs)
      .def_readwrite("report", &ProfileJob::report)
      .def("add_function",
           [](ProfileJob& j, std::string name, std::vector<std::string> predictors,
              std::vector<std::string> responses, py::object function) {
             j.functions.push_back(FunctionOf(std::move(name), std::move(predictors), std::move(responses),
                                              std::move(function)));
           })
      .def("check", &Check<ProfileJob>)
      .def("run", &Profile);
  DefineData(job);
  DefinePlot(job);
  DefineInputs(job);
}

void BindScoreJob(py::module_& module) {
  py::class_<ScoreJob> job(module, "ScoreJob");
  job.def(py::init<>())
      .def_readwrite("model", &ScoreJob::model)
      .def_readwrite("probabilities", &ScoreJob::probabilities)
      .def_readwrite("leave_invalid", &ScoreJob::leaveInvalid)
      .def_readwrite("keep", &ScoreJob::keep)
      .def("check", &Check<ScoreJob>)
      .def("run", &Score, InHost());
  DefineData(job);
}

// The report of the command as JSON.
std::string FitCensored(const CensoredFitJob& job, const Sheet& sheet) {
  std::string report;
  CarryOut(nullptr, [&] { report = JsonText(CensoredJson(RunReported(job, sheet->Sheet(), TheJob()))); });
  return report;
}

void BindCensoredFitJob(py::module_& module) {
  py::class_<CensoredFitJob>(module, "CensoredFitJob")
      .def(py::init([](const FitJob& fit, std::optional<std::string> censor,
                       std::optional<std::string> censorUpper, std::optional<std::string> censorEvent) {
        return CensoredFitJob{fit, std::move(censor), std::move(censorEvent), std::move(censorUpper)};
      }))
      .def("check", &Check<CensoredFitJob>)
      .def("run", &FitCensored);
}

void BindCapabilityJob(py::module_& module) {
  py::class_<CapabilityJob> job(module, "CapabilityJob");
  job.def(py::init<>())
      .def_readwrite("response", &CapabilityJob::response)
      .def_readwrite("specifications", &CapabilityJob::specifications)
      .def_readwrite("subgroup", &CapabilityJob::subgroup)
      .def_readwrite("within", &CapabilityJob::within)
      .def_readwrite("control_chart", &CapabilityJob::controlChart)
      .def_readwrite("rules", &CapabilityJob::rules)
      .def_readwrite("distribution", &CapabilityJob::distribution)
      .def_readwrite("rank_by", &CapabilityJob::rankBy)
      .def_readwrite("report", &CapabilityJob::report)
      .def_readwrite("bootstrap", &CapabilityJob::bootstrap)
      .def_readwrite("bootstrap_seed", &CapabilityJob::bootstrapSeed)
      .def_readwrite("confidence", &CapabilityJob::confidence)
      .def_readwrite("select", &CapabilityJob::select)
      .def("check", &Check<CapabilityJob>)
      .def("run", &Capability);
  DefineData(job);
  DefinePlot(job);
}

}  // namespace

void BindJobs(py::module_& module) {
  BindFitJob(module);
  BindSpecification(module);
  BindDesignJob(module);
  BindSimulateJob(module);
  BindProfileJob(module);
  BindScoreJob(module);
  BindCapabilityJob(module);
  BindCensoredFitJob(module);
  module.attr("NotSet") = kNotSet;
  module.attr("_columns") = ColumnPlaces();
  module.def(
      "_take_former_properties",
      [](const Sheet& sheet, const std::filesystem::path& path) {
        TakeFormerProperties(path, sheet->Sheet());
        TheJob().Called(nullptr, "TakeFormerProperties", {RecordedName(sheet), PythonPath(path)});
      },
      InHost(), py::arg("sheet"), py::arg("path"));
  module.def(
      "save_wait", &SetProjectWait, py::arg("seconds"),
      "Sets how many seconds this process waits for a project that other programs save or use; 60 at first.");
  module.def("_code_of", &CodeOf);
  module.def("_require_value", &RequireValue);
  module.def("_first_saved", &FirstSavedOf);
  py::dict graphs;
  for (const FitGraph& graph : kFitGraphs) graphs[py::str(std::string(graph.word))] = graph.member;
  graphs[py::str(std::string(kFitSummaryGraph.word))] = kFitSummaryGraph.member;
  module.attr("_fit_graphs") = graphs;
  module.def("_save_fits", &SaveFitsOf, InHost(), py::arg("sheet"), py::arg("matrix"), py::arg("path"));
  module.def(
      "_open_project",
      [](const std::filesystem::path& path) {
        auto workbook = std::make_shared<WorkbookRef>(OpenProject(path));
        RecordOpened(workbook, path);
        return workbook;
      },
      InHost(), py::arg("path"));
  module.def(
      "_fitted_sheet",
      [](const std::shared_ptr<WorkbookRef>& workbook, const std::string& name) {
        Spreadsheet& sheet = FittedSheet(workbook->File(), name);
        return Recorded(workbook->RefTo(sheet), sheet.Name());
      },
      InHost());
  module.def("_saved_matrix", &SavedMatrixOf, InHost());
  module.def("_named_matrix", &MatrixNamed, InHost(), py::arg("name"), py::arg("sheet"));
  module.def("_append", &Append, InHost(), py::arg("path"), py::arg("sheets"));
  module.def(
      "_write_fit_graphs",
      [](const std::shared_ptr<AnalysisRef>& analysis, const std::filesystem::path& path) {
        WriteFitGraphs(analysis->Analysis(), path, TheJob());
      },
      InHost(), py::arg("analysis"), py::arg("path"));
  module.def("_import", &Import, InHost(), py::arg("file"), py::arg("project"), py::arg("sheet"),
             py::arg("kind"), py::arg("decimal_comma"), py::arg("name"), py::arg("reading"));
  module.def("_preview", &Preview, InHost(), py::arg("path"), py::arg("sheet"), py::arg("decimal_comma"),
             py::arg("reading"));
  module.def("_export", &Export, InHost(), py::arg("source"), py::arg("file"), py::arg("decimal_comma"),
             py::arg("safe_cells"));
  module.def("_sample_graph", &SampleGraph, InHost());
  module.def("_fit_graph", &FitGraphWith);
  py::list dataKinds;
  for (const std::string_view kind : kDataPlotKinds) dataKinds.append(std::string(kind));
  module.attr("_data_plot_kinds") = dataKinds;
  module.def("_new_design", &NewDesign, InHost());
  module.def(
      "_matrix_from_table",
      [](const Sheet& table) { return Free(MatrixFromTable(table->Sheet(), table->Sheet().Name())); },
      InHost());
}

}  // namespace brenvolt::python
