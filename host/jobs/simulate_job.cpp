#include "host/jobs/simulate_job.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "host/analysis/run_bounds.h"
#include "host/base/number_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/simulation_workbook.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/rounds/crew.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/formats/workbook_file.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {
namespace {

constexpr double kMostInteger = std::numeric_limits<std::int32_t>::max();

// Inversion draws the values above a lower bound, so that of counts the bound itself is left out.
std::vector<std::string> WhatBoundsLeaveOut(const std::vector<NotedVariable>& drawn) {
  std::vector<std::string> notes;
  for (const NotedVariable& variable : drawn) {
    const auto& [code, values, offset, minimum, maximum, levels] = variable.distribution;
    if (EntryOf(code).facts.isContinuous || !minimum || *minimum != std::floor(*minimum)) continue;
    notes.push_back(variable.name + ": Latin hypercube sampling leaves out the lower bound " +
                    ShortestNumber(*minimum) + " itself; a bound of " + ShortestNumber(*minimum - 0.5) +
                    " keeps it");
  }
  return notes;
}

// That a method draws each variable by itself, if there are correlations to be left out.
std::vector<std::string> WhatIsNotFollowed(const std::vector<NotedCorrelation>& pairs,
                                           const std::string& method) {
  if (pairs.empty()) return {};
  const auto strength = [](const NotedCorrelation& pair) { return std::abs(pair.value); };
  const NotedCorrelation& most = *std::ranges::max_element(pairs, {}, strength);
  const std::string one = most.first + " and " + most.second + ", " + FormatNumber("%.4g", most.value) + ",";
  const std::string which = pairs.size() == 1 ? "The correlation of " + one + " is"
                                              : "The correlations of " + std::to_string(pairs.size()) +
                                                    " pairs, the strongest that of " + one + " are";
  return {which + " left out: " + method +
          " draws each variable by itself; the iman-conover methods follow correlations."};
}

// What the variables of the open dialog are drawn from; nothing where the run will say what is wrong with it.
std::vector<NotedVariable> ReadSimulated(AutomationObject& dialog, const Spreadsheet& sheet) {
  std::vector<NotedVariable> drawn;
  try {
    for (const ResultRow& row : ReadResultTable(dialog.Get("SavedFits")).rows) {
      if (row.Number("saved_place"_column) != 1) continue;
      const auto bound = [&row](const ResultColumn& column) {
        const double value = row.Number(column);
        return std::isnan(value) ? std::nullopt : std::optional(value);
      };
      const double offset = row.Number("offset"_column);
      const auto place = static_cast<std::size_t>(row.Number("variable_number"_column)) - 1;
      drawn.push_back({sheet.VariableAt(place).Name(),
                       {static_cast<DistributionCode>(static_cast<int>(row.Number("code"_column))),
                        row.Numbered("parameter"_column), std::isnan(offset) ? kNotSet : offset,
                        bound("minimum"_column), bound("maximum"_column)}});
    }
  } catch (const AutomationError&) {
    return {};
  }
  return drawn;
}

// The run shows its output, then a repaired matrix. True if it produced any.
bool RunToSheet(AnalysisSession& session, SimulationFindings& found) {
  session.Ok();
  const auto produced = session.ShownSince(0).tables;
  if (produced.empty()) return false;
  found.output = produced.front();
  if (produced.size() > 1) found.repairedMatrix = produced.back();
  return true;
}

// The results show the summary, then correlations.
void Summarize(AnalysisSession& session, SimulationFindings& found) {
  const std::size_t before = session.Interface().Documents().size();
  session.Ok();
  const auto shown = session.ShownSince(before).tables;
  const CAnalysisTableDoc* pairs = shown.size() > 1 ? shown.back().get() : nullptr;
  found.results = ReadSimulationResults(*shown.front(), pairs, found.output.get());
}

// True if there was anything to write.
bool RunToFile(AnalysisSession& session, const std::filesystem::path& file, SimulationFindings& found) {
  const Variant name(file.string());
  const Variant::Object summary = session.Attempt([&] {
    return session.Dialog()->Get("SimulationFile", {&name, 1}).ToObject();
  });
  const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(summary);
  if (document != nullptr) found.results = ReadSimulationResults(*document, nullptr, nullptr);
  return document != nullptr;
}

void WriteIntoProject(const std::filesystem::path& path, SimulationFindings& run, JobRecorder& recorder) {
  std::vector<Table> tables{run.output};
  if (run.repairedMatrix != nullptr) tables.push_back(run.repairedMatrix);
  const auto names = AppendTables(path, tables, recorder);
  run.outputSheet = names.front();
  if (run.repairedMatrix != nullptr) run.matrixSheet = names.back();
}

// Writes what is not written yet. A repaired matrix goes with the data: "x.csv" and
// "x-repaired-matrix.csv".
void Write(const SimulateJob& job, SimulationFindings& run, JobRecorder& recorder) {
  const std::filesystem::path& path = job.output;
  run.file = path;
  if (path.empty()) return;
  if (HasProjectEnding(path)) {
    WriteIntoProject(path, run, recorder);
    return;
  }
  if (run.output == nullptr) return;
  if (IsWorkbookName(path)) {
    WriteSimulationWorkbook(job, run, path);
    RecordTable(path, *run.output, recorder);
  } else {
    WriteTable(path, *run.output, recorder);
  }
  if (run.repairedMatrix == nullptr || !IsRegularTarget(path)) return;
  run.matrixFile = path.parent_path() / (path.stem().string() + "-repaired-matrix.csv");
  WriteTable(run.matrixFile, *run.repairedMatrix, recorder);
}

}  // namespace

std::vector<std::string> SimulationFindings::Notes() const {
  std::vector<std::string> notes = methodNotes;
  for (std::string& note : results.Notes()) notes.push_back(std::move(note));
  return notes;
}

JobFaults SimulateJob::Check() const {
  JobFaults faults;
  CheckOnce("variables", variables, faults);
  if (method) CheckWord("method", *method, kSimulationMethods, faults);
  CheckWholeNumber("samples", samples, 1, kMostFileSamples, faults);
  CheckCount(faults);
  if (seed) CheckWholeNumber("seed", *seed, 0, kMostInteger, faults);
  CheckInputs(faults);
  CheckMethod(faults);
  CheckDataTarget("output", output, faults);
  CheckSize("output", output, samples, faults);
  CheckPlot(plot, kDataPlotKinds, faults);
  CheckReport(report, faults);
  CheckRounds(faults);
  CheckTargetsApart(
      {{"data", data.file}, {"matrix", matrix}, {"fromFile", inputs.fromFile}},
      {{"output", output}, {"plot", plot.file}, {"report", report}, {"checkpoint", rounds.checkpoint}},
      faults);
  return faults;
}

bool SimulateJob::IsInPieces() const {
  const bool keepsData = keepsSamples || keepsTable || plot.IsAsked() || !report.empty();
  const bool hasPieces = !HasDataEnding(output) || HasEnding(output, ".csv") || IsNumpyArchiveName(output);
  return hasPieces && !keepsData && !HasProjectEnding(output) && !(method && InducesCorrelation(*method));
}

void SimulateJob::CheckCount(JobFaults& faults) const {
  if (!(samples > kMostInteger && samples <= kMostFileSamples)) return;
  if (IsInPieces() && (!method || *method == "monte-carlo")) return;
  faults.push_back(
      {"samples", "more than " + ShortestNumber(kMostInteger) +
                      " samples can only be drawn by monte-carlo and summarised, or written to a .csv "
                      "or .npz file; they cannot be kept, shown or reported"});
}

// Samples that are in a file already when a job goes on are not drawn again.
void SimulateJob::CheckRounds(JobFaults& faults) const {
  rounds.Check(faults);
  if (!rounds.checkpoint.empty() && !output.empty())
    faults.push_back({"checkpoint", "is kept of a summary; samples that are written cannot be gone on with"});
}

void SimulateJob::CheckCrew(JobFaults& faults) const {
  if (TheCrew().RunsInOrder() || IsInPieces()) return;
  if (method && InducesCorrelation(*method)) {
    faults.push_back(
        {"method", *method + " puts whole columns in order, which one process does by itself: run it on one, "
                             "without checkpoint, or take monte-carlo or latin-hypercube"});
  } else {
    faults.push_back(
        {plot.IsAsked()    ? "plot"
         : !report.empty() ? "report"
                           : "output",
         "several processes, or one with a checkpoint, do not keep the samples, so that these can only be "
         "summarised, or written to a .csv or .npz file"});
  }
}

void SimulateJob::CheckMethod(JobFaults& faults) const {
  if (!method || !kSimulationMethods.contains(*method) || InducesCorrelation(*method)) return;
  const auto refuse = [&](const char* field, const std::string& what) {
    faults.push_back({field, "only methods that induce correlation " + what + "; " + *method + " does not"});
  };
  if (!matrix.empty() || givenMatrix != nullptr) refuse("matrix", "follow a matrix");
  if (inputs.HasCorrelations()) refuse("correlations", "follow correlations");
  if (plot.kind == kScatterKind || plot.kind == kHeatMapKind) refuse("plotKind", "have one to show");
}

// What stands in place of a project. Correlations alone have one to be entered in.
void SimulateJob::CheckInputs(JobFaults& faults) const {
  if (inputs.IsEmpty()) return;
  if (!data.file.empty())
    faults.push_back(
        {"project",
         "give either a project or variables by hand; to change the distributions of a project use design"});
  if (!data.sheet.empty())
    faults.push_back({"sheet", "a sheet can be chosen only in a project, and none is given"});
  const std::vector<std::string> none;
  const std::size_t before = faults.size();
  const DesignText design = inputs.ReadNumeric(&none, faults);
  if (design.variables.empty() && faults.size() == before)
    faults.push_back({"designed", "a simulation without a project needs at least one variable"});
}

std::vector<std::string> SimulateJob::DrawnNames(const JobInput& input) const {
  if (!variables.empty()) return variables;
  if (!inputs.IsEmpty()) {
    JobFaults none;
    return inputs.Read(nullptr, none).Names();
  }
  std::vector<std::string> names;
  for (std::size_t i = 0; i < input.sheet.VariableCount(); ++i) {
    const Variable& variable = input.sheet.VariableAt(i);
    if (variable.Property(kOrderProperty)) names.push_back(variable.Name());
  }
  return names;
}

std::vector<NotedCorrelation> SimulateJob::KnownCorrelations(const JobInput& input,
                                                             const std::vector<std::string>& drawn) const {
  JobFaults none;
  std::vector<NotedCorrelation> pairs = inputs.Read(nullptr, none).correlations;
  if (inputs.IsEmpty()) {
    const auto saved = savedMatrix == nullptr ? MatrixFor({}, input) : nullptr;
    pairs = CorrelationsIn(savedMatrix == nullptr ? saved.get() : &savedMatrix->Table());
  }
  const auto isDrawn = [&drawn](const std::string& name) {
    return std::ranges::find(drawn, name) != drawn.end();
  };
  std::erase_if(pairs,
                [&](const NotedCorrelation& pair) { return !isDrawn(pair.first) || !isDrawn(pair.second); });
  return pairs;
}

// A saved matrix is followed by itself only where it has a number for every pair: one that lacks a variable would end
// the run, and nobody asked for it.
std::string SimulateJob::ChosenMethod(const JobInput& input) const {
  constexpr const char* kFollowing = "iman-conover";
  if (!matrix.empty() || givenMatrix != nullptr || inputs.HasCorrelations()) return kFollowing;
  const std::vector<std::string> drawn = DrawnNames(input);
  const std::vector<NotedCorrelation> pairs = KnownCorrelations(input, drawn);
  const bool isWhole =
      !inputs.IsEmpty() ||
      (pairs.size() == drawn.size() * (drawn.size() - 1) / 2 &&
       std::ranges::all_of(pairs, [](const NotedCorrelation& pair) { return std::isfinite(pair.value); }));
  const bool isAny = std::ranges::any_of(pairs, [](const NotedCorrelation& pair) { return pair.value != 0; });
  return isWhole && isAny ? kFollowing : "monte-carlo";
}

Table SimulateJob::FollowedMatrix(const JobInput& input, JobRecorder& recorder) const {
  if (givenMatrix != nullptr || !InducesCorrelation(*method)) return givenMatrix;
  if (savedMatrix != nullptr && matrix.empty()) return savedMatrix;
  return RecordedMatrix(matrix, MatrixFor(matrix, input), input, recorder);
}

std::vector<NotedCorrelation> SimulateJob::LeftOut(const JobInput& input,
                                                   const std::vector<NotedVariable>& drawn) const {
  if (InducesCorrelation(*method)) return {};
  std::vector<std::string> names;
  for (const NotedVariable& variable : drawn) names.push_back(variable.name);
  std::vector<NotedCorrelation> pairs = KnownCorrelations(input, names);
  std::erase_if(pairs, [](const NotedCorrelation& pair) { return pair.value == 0; });
  return pairs;
}

void SimulateJob::OpenDialog(AnalysisSession& session, const Table& follows) const {
  if (inputs.IsEmpty()) return session.Begin(Task::kSimulate);
  JobFaults faults;
  const std::vector<std::string> none;
  const DesignText design = inputs.Read(&none, faults);
  RequireNone(std::move(faults));
  BeginDesigned(session, design, follows);
}

void SimulateJob::Specify(AnalysisSession& session, const Spreadsheet& sheet, std::int32_t chosenSeed) const {
  const auto dialog = session.Dialog();
  if (!variables.empty()) dialog->Put("Variables", AsVariant(NumbersOf(sheet, variables, "variables")));
  dialog->Put(kSimulationMethods.at(*method), true);
  dialog->Put("NumberOfSamples", AsInteger(std::min(samples, kMostInteger)));
  if (samples > kMostInteger) dialog->Put("NumberOfFileSamples", samples);
  dialog->Put("IsSeedRandomNumber", true);
  dialog->Put("RandomSeedNumber", chosenSeed);
  dialog->Put("TruncateSimulationData", truncate);
}

DataOrigin SimulateJob::Origin(const SimulationFindings& found) const {
  return OriginOf(found.design, truncate, found.results);
}

SimulationFindings SimulateJob::Run(const JobInput& input, JobRecorder& recorder) const {
  RequireNone(Check());
  if (method) return RunByMethod(input, recorder);
  SimulateJob chosen = *this;
  chosen.method = ChosenMethod(input);
  JobFaults faults;
  chosen.CheckMethod(faults);
  chosen.CheckCount(faults);
  RequireNone(std::move(faults));
  return chosen.RunByMethod(input, recorder);
}

SimulationFindings SimulateJob::RunByMethod(const JobInput& input, JobRecorder& recorder) const {
  RefuseRecordedPlot(plot, recorder);
  RefuseRecordedReport(report, recorder);
  RefuseReplacedProject(output);
  KeptRounds kept(rounds);
  JobFaults crew;
  CheckCrew(crew);
  RequireNone(std::move(crew));
  SimulationFindings found;
  found.method = *method;
  found.seed = ChosenSeed(seed);
  AnalysisSession& session = Start(input, data);
  const Table follows = FollowedMatrix(input, recorder);
  OpenDialog(session, follows);
  Specify(session, input.sheet, found.seed);
  found.cautions = ReadSavedCautions(*session.Dialog(), input.sheet);
  found.design.variables = ReadSimulated(*session.Dialog(), input.sheet);
  if (method->starts_with("latin-hypercube")) found.methodNotes = WhatBoundsLeaveOut(found.design.variables);
  for (std::string& note : WhatIsNotFollowed(LeftOut(input, found.design.variables), *method))
    found.methodNotes.push_back(std::move(note));
  if (auto note = inputs.IsEmpty() ? std::nullopt : WhatMatrixLacks(follows, found.design.Names()))
    found.methodNotes.push_back(*std::move(note));
  if (inputs.IsEmpty() && InducesCorrelation(*method) && follows != nullptr)
    session.Dialog()->Put("CorrelationMatrix", Variant::Object(follows));
  const bool toSheet = !IsInPieces();
  const bool isDone = toSheet ? RunToSheet(session, found) : RunToFile(session, output, found);
  if (!isDone) throw Error("nothing was produced: this method has no generator", *method);
  const bool showsResults = plot.IsAsked() || !report.empty() || IsWorkbookName(output);
  if (toSheet && (!keepsSamples || showsResults || InducesCorrelation(*method))) Summarize(session, found);
  found.design.correlations = found.results.Asked();
  RecordShown(session, recorder);
  Write(*this, found, recorder);
  if (plot.IsAsked())
    WritePlot(plot, "Simulated data", DataPlots(found.output->Table(), plot.Kind(), Origin(found)));
  kept.End();
  return found;
}

SimulationRun SimulateJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  SimulationRun run;
  if (inputs.IsEmpty()) {
    if (data.file.empty())
      throw WrongJob("project", "nothing to simulate: give a project, or variables with their distributions");
    run.data = OpenProject(data.file);
    run.sheet = &FittedSheet(run.data, data.sheet);
    recorder.Opened(data.file, {}, &run.data.workbook);
    recorder.Took(&run.data.workbook, run.sheet->Name(), run.sheet);
  } else {
    OpenNewDesign(run, recorder);
  }
  JobInput input = run.Input(interface, recorder);
  if (!inputs.IsEmpty()) input.home = nullptr;
  static_cast<SimulationFindings&>(run) = Run(input, recorder);
  return run;
}

}  // namespace brenvolt
