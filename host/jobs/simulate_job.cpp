#include "host/jobs/simulate_job.h"

#include <limits>

#include "host/jobs/dialog_words.h"
#include "host/jobs/output_files.h"
#include "host/jobs/project_files.h"

namespace brenvolt {
namespace {

constexpr double kMostInteger = std::numeric_limits<std::int32_t>::max();

void PutMatrix(const SimulateJob& job, SimulationRun& run, std::unique_ptr<Spreadsheet> matrix,
               JobRecorder& recorder) {
  if (matrix == nullptr) return;
  const Variant::Object document = std::make_shared<CAnalysisTableDoc>(std::move(matrix));
  const std::string sheet = recorder.NameOf(run.sheet);
  if (job.matrix.empty()) {
    recorder.Gave("matrix", nullptr, "SavedMatrix", {sheet}, document.get());
  } else {
    recorder.Gave("matrix", nullptr, "NamedMatrix", {PythonText(job.matrix), sheet}, document.get());
  }
  run.session->Dialog()->Put("CorrelationMatrix", document);
}

// The run shows its output, then a repaired matrix; its results show the summary, then correlations.
void RunToSheet(SimulationRun& run) {
  AnalysisSession& session = *run.session;
  session.Ok();
  const auto produced = session.ShownSince(0).tables;
  if (produced.empty()) return;
  run.output = produced.front();
  if (produced.size() > 1) run.repairedMatrix = produced.back();
  session.Ok();
  const auto results = session.ShownSince(produced.size()).tables;
  run.summary = results.front();
  if (results.size() > 1) run.correlations = results.back();
}

void RunToFile(SimulationRun& run, const std::filesystem::path& file) {
  const Variant name(file.string());
  const Variant::Object summary = run.session->Attempt([&] {
    return run.session->Dialog()->Get("SimulationFile", {&name, 1}).ToObject();
  });
  run.summary = std::dynamic_pointer_cast<CAnalysisTableDoc>(summary);
}

void WriteIntoProject(const std::filesystem::path& path, SimulationRun& run, JobRecorder& recorder) {
  std::vector<Table> tables{run.output};
  if (run.repairedMatrix != nullptr) tables.push_back(run.repairedMatrix);
  const auto names = AppendTables(path, tables, recorder);
  run.outputSheet = names.front();
  if (run.repairedMatrix != nullptr) run.matrixSheet = names.back();
}

// Writes what is not written yet. A repaired matrix goes with the data: "x.csv" and
// "x-repaired-matrix.csv".
void Write(const std::filesystem::path& path, SimulationRun& run, JobRecorder& recorder) {
  run.file = path;
  if (path.empty()) return;
  if (HasProjectEnding(path)) {
    WriteIntoProject(path, run, recorder);
    return;
  }
  if (run.output == nullptr) return;
  WriteTable(path, *run.output, recorder);
  if (run.repairedMatrix == nullptr || !IsRegularTarget(path)) return;
  run.matrixFile = path.parent_path() / (path.stem().string() + "-repaired-matrix.csv");
  WriteTable(run.matrixFile, *run.repairedMatrix, recorder);
}

}  // namespace

JobFaults SimulateJob::Check() const {
  JobFaults faults;
  CheckOnce("variables", variables, faults);
  CheckWord("method", method, kSimulationMethods, faults);
  CheckWholeNumber("samples", samples, 1, kMostInteger, faults);
  if (seed) CheckWholeNumber("seed", *seed, 0, kMostInteger, faults);
  if (!matrix.empty() && kSimulationMethods.contains(method) && !InducesCorrelation(method)) {
    faults.push_back(
        {"matrix", "only methods that induce correlation follow a matrix; " + method + " does not"});
  }
  CheckDataTarget("output", output, faults);
  CheckTargetsApart({{"data", data.file}, {"matrix", matrix}}, {{"output", output}}, faults);
  return faults;
}

void SimulateJob::Specify(AnalysisSession& session, const Spreadsheet& sheet) const {
  RequireNone(Check());
  session.Begin(Task::kSimulate);
  const auto dialog = session.Dialog();
  if (!variables.empty()) dialog->Put("Variables", AsVariant(NumbersOf(sheet, variables)));
  dialog->Put(kSimulationMethods.at(method), true);
  dialog->Put("NumberOfSamples", AsInteger(samples));
  dialog->Put("IsSeedRandomNumber", seed.has_value());
  if (seed) dialog->Put("RandomSeedNumber", AsInteger(*seed));
  dialog->Put("TruncateSimulationData", truncate);
}

void SimulateJob::ChooseSeed() {
  if (!seed) seed = DrawSeed();
}

SimulationRun SimulateJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  RefuseReplacedProject(output);
  SimulateJob seeded = *this;
  seeded.ChooseSeed();
  SimulationRun run;
  run.seed = AsInteger(*seeded.seed);
  run.data = OpenProject(data.file);
  run.sheet = &FittedSheet(run.data, data.sheet);
  const bool isCorrelated = InducesCorrelation(method);
  std::unique_ptr<Spreadsheet> chosen;
  if (isCorrelated) {
    chosen = matrix.empty() ? SavedMatrix(run.data.workbook, *run.sheet)
                            : NamedMatrix(matrix, run.data.workbook, "matrix " + matrix);
  }
  recorder.Opened(data.file, false, &run.data.workbook);
  recorder.Took(&run.data.workbook, run.sheet->Name(), run.sheet);
  run.Start(interface, recorder);
  seeded.Specify(*run.session, *run.sheet);
  PutMatrix(*this, run, std::move(chosen), recorder);
  if (isCorrelated || HasProjectEnding(output)) {
    RunToSheet(run);
  } else {
    RunToFile(run, output);
  }
  if (run.summary == nullptr) return run;
  run.RecordShown(recorder);
  Write(output, run, recorder);
  return run;
}

}  // namespace brenvolt
