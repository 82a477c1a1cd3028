#include "host/jobs/profile/profile_job.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "host/analysis/run_bounds.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/profile/profile_graphs.h"
#include "host/jobs/profile/profile_workbook.h"
#include "host/jobs/profile/profiler_setup.h"
#include "host/rounds/crew.h"
#include "host/tables/csv.h"
#include "host/tables/formats/workbook_file.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {
namespace {

// "no run has a prediction (Y: field x, the model does not accept the number: 3 to 5)".
void RequirePredictions(const ProfileResults& results) {
  if (std::ranges::any_of(results.responses, &ResponseResults::IsPredicted)) return;
  std::string reasons;
  for (const ResponseResults& response : results.responses) {
    reasons += (reasons.empty() ? "" : "; ") + response.name;
    if (!response.unpredicted.empty()) reasons += ": " + ReasonText(response.unpredicted.front());
  }
  throw Error("no run has a prediction", reasons);
}

// Returns the sheet's name where it goes into a project.
std::string WriteSimulated(const std::filesystem::path& path, const Table& simulated, JobRecorder& recorder) {
  if (path.empty()) return {};
  if (HasProjectEnding(path)) return AppendTables(path, {simulated}, recorder).front();
  WriteTable(path, *simulated, recorder);
  return {};
}

void NoteUnread(const std::vector<std::string>& unread, ProfileResults& results) {
  if (unread.empty()) return;
  std::string note = "Variables that nothing reads are left out: ";
  for (const std::string& name : unread) note += (name == unread.front() ? "" : ", ") + name;
  results.notes.push_back(note + ".");
}

// Beyond the runs that the dialog takes at once, the graphs are those of the first ones.
std::vector<std::string> GraphNotes(const RunBatches& batches) {
  if (batches.Count() == 1) return {};
  const std::int64_t last = batches.Count() - 1;
  return {"the first " + std::to_string(batches.Runs(0)) + " of " +
          std::to_string(batches.FirstRun(last) + batches.Runs(last)) + " runs are shown"};
}

// The tables and the shared graphs of the runs that the dialog has simulated.
void TakeResults(ProfilerSession& profiler, const std::vector<std::string>& unread,
                 const AnalysisSession::Shown& simulated, ProfileFindings& found) {
  ProfileResults& results = found.results;
  SharedGraphs& shared = found.shared;
  found.simulated = simulated.tables.front();
  if (!simulated.graphs.empty()) shared.profiles = simulated.graphs.front()->Content();
  found.graphNotes = GraphNotes(profiler.Batches());
  results.runs = profiler.Batches().Runs(0);
  results.predictors = profiler.Predictors().Uses(found.simulated->Table());
  results.method = profiler.Predictors().Method();
  results.correlations = profiler.Predictors().Correlations();
  results.notes = profiler.Notes();
  for (std::size_t i = 0; i < profiler.Responses().size(); ++i) {
    profiler.TakeResults(i, results);
    if (!profiler.IsSpecified(i) || results.defects) continue;
    Table defects;
    std::tie(defects, shared.defects) = profiler.Defects(i);
    TakeDefects(*defects, results);
  }
  if (simulated.tables.size() > 1) TakeUnpredicted(*simulated.tables[1], results);
  RequirePredictions(results);
  NoteUnread(unread, results);
  if (shared.profiles) TakeProfiles(*shared.profiles, found.simulated->Table(), results);
}

// Functions that know their runs by the numbers in all batches.
std::vector<std::shared_ptr<const ModelFunction>> Numbered(
    const std::vector<std::shared_ptr<const ModelFunction>>& functions,
    const std::shared_ptr<std::int64_t>& firstRun) {
  std::vector<std::shared_ptr<const ModelFunction>> numbered;
  for (const auto& function : functions) {
    ModelFunction copy = *function;
    copy.predict = [function, firstRun](std::size_t first, auto predictors, auto dependents) {
      function->predict(static_cast<std::size_t>(*firstRun) + first, predictors, dependents);
    };
    numbered.push_back(std::make_shared<const ModelFunction>(std::move(copy)));
  }
  return numbered;
}

// The counts of defects in the batch that was simulated last, as ExtendResults adds them up.
std::vector<double> DefectsIn(ProfilerSession& profiler) {
  std::vector<double> counts;
  for (std::size_t i = 0; i < profiler.Responses().size(); ++i) {
    if (!profiler.IsSpecified(i)) continue;
    ProfileResults batch;
    TakeDefects(*profiler.Defects(i).first, batch);
    for (const ResultRow& row : batch.defects->rows)
      counts.insert(counts.end(), {row.Number("defects"_column), row.Number("defect_runs"_column)});
    break;
  }
  return counts;
}

// The further batches of a profile whose first one is done, and its runs piece by piece in their file.
void RunOn(ProfilerSession& profiler, const std::filesystem::path& output, std::int64_t& firstRun,
           ProfileFindings& found) {
  const RunBatches& batches = profiler.Batches();
  found.simulated =
      std::make_shared<CAnalysisTableDoc>(std::make_unique<Spreadsheet>(found.simulated->Table()));
  std::variant<std::monostate, CsvPieces, NumpyPieces> pieces;
  if (IsNumpyArchiveName(output)) {
    pieces.emplace<NumpyPieces>(output);
  } else if (!output.empty()) {
    pieces.emplace<CsvPieces>(output);
  }
  const std::size_t shown = profiler.DocumentCount();
  const auto simulate = [&](std::int64_t batch, const BatchSink& take) {
    if (batch == 0) return take(found.simulated->Table());
    firstRun = batches.FirstRun(batch);
    take(profiler.Refill(batch));
    profiler.KeepDocuments(shown);
  };
  const auto take = [&](const Spreadsheet& simulated) {
    if (auto* csv = std::get_if<CsvPieces>(&pieces)) csv->Append(simulated);
    if (auto* archive = std::get_if<NumpyPieces>(&pieces)) archive->Append(simulated);
  };
  const auto count = [&profiler] { return DefectsIn(profiler); };
  ExtendResults(batches, simulate, take, count, found.results);
  if (auto* csv = std::get_if<CsvPieces>(&pieces)) csv->Commit();
  if (auto* archive = std::get_if<NumpyPieces>(&pieces)) archive->Commit();
}

}  // namespace

// The files are written when all results are there.
ProfileFindings ProfileJob::Run(const JobInput& input, JobRecorder& recorder) const {
  RequireNone(Check());
  KeptRounds kept(rounds);
  RequireCases(input.sheet);
  if (!TheCrew().RunsInOrder() && samples > kMostProfilerRuns && !output.empty()) {
    throw WrongJob("output", "several processes, or one with a checkpoint, do not write more than " +
                                 std::to_string(kMostProfilerRuns) + " runs");
  }
  RefuseRecordedPlot(plot, recorder);
  RefuseRecordedReport(report, recorder);
  RefuseReplacedProject(output);
  if (!graphs.empty()) RefuseProjectTarget(graphs);
  RequireRecordable(recorder);
  const auto firstRun = std::make_shared<std::int64_t>(0);
  std::deque<ProvidedModel> provided;
  for (const auto& function : Numbered(functions, firstRun)) provided.emplace_back(function);
  ProfileFindings found;
  found.seed = ChosenSeed(seed);
  AnalysisSession& session = Start(input, data);
  ProfilerSession profiler(*this, found.seed, session);
  const std::vector<std::string> unread = SetUpProfiler(*this, input, recorder, profiler);
  TakeResults(profiler, unread, profiler.Simulate(), found);
  const bool isWhole = profiler.Batches().Count() == 1;
  if (TheCrew().Rank() > 0) {  // rank 0 writes
    if (!isWhole) RunOn(profiler, {}, *firstRun, found);
    return found;
  }
  const bool drawsGraphs = plot.IsAsked() || !graphs.empty() || !report.empty() || IsWorkbookName(output);
  if (isWhole && !IsWorkbookName(output))
    found.outputSheet = WriteSimulated(output, found.simulated, recorder);
  if (drawsGraphs || (keepsGraphs && !isWhole)) MakeGraphs(session, found);
  if (IsWorkbookName(output)) {
    WriteProfileWorkbook(found, output);
    RecordTable(output, *found.simulated, recorder);
  }
  if (!graphs.empty()) WriteGraphs(graphs, found);
  if (plot.IsAsked()) WritePlot(plot, "Simulated responses", ProfilePlots(found.graphs, plot.Kind()));
  if (!isWhole) RunOn(profiler, output, *firstRun, found);
  kept.End();
  return found;
}

void ProfileJob::RequireRecordable(const JobRecorder& recorder) const {
  if (!recorder.IsRecording()) return;
  if (!graphs.empty()) throw WrongJob("graphs", "graphs cannot be recorded");
  if (!functions.empty()) throw WrongJob("functions", "a function of the program cannot be recorded");
  if (samples > kMostProfilerRuns)
    throw WrongJob("samples", "a macro takes up to " + std::to_string(kMostProfilerRuns) + " runs");
}

ProfileRun ProfileJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  ProfileRun run;
  if (!data.file.empty()) {
    run.data = OpenJobData(data);
    run.sheet = &run.data.Sheet(data.sheet);
    recorder.Opened(data.file, ReadingArguments(data), &run.data.workbook);
    recorder.Took(&run.data.workbook, data.sheet, run.sheet);
  } else if (inputs.IsEmpty()) {
    throw WrongJob("data",
                   "nothing to draw predictors from: give data, or variables with their distributions");
  } else if (!data.sheet.empty()) {
    throw WrongJob("sheet", "a sheet can be chosen only in a project, and none is given");
  } else {
    OpenNewDesign(run, recorder);
  }
  JobInput input = run.Input(interface, recorder);
  if (data.file.empty()) input.home = nullptr;
  static_cast<ProfileFindings&>(run) = Run(input, recorder);
  return run;
}

}  // namespace brenvolt
