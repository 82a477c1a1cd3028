#include "host/jobs/profile_job.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/analysis/action_recording.h"
#include "host/analysis/run_bounds.h"
#include "host/application/graph_json.h"
#include "host/application/json_text.h"
#include "host/base/files/output_file.h"
#include "host/base/nearest_name.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/formula/formula.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/long_profile.h"
#include "host/jobs/predictor_inputs.h"
#include "host/jobs/profile_plots.h"
#include "host/tables/csv.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {
namespace {

// What the array of a predictor ends with: whether it is truncated below, where, whether above, where.
constexpr std::size_t kTruncationItems = 4;

// Places count from 1.
Variant Place(std::size_t place) {
  return static_cast<std::int32_t>(place + 1);
}

// As it is written before the "=" of a formula.
std::string QuotedName(const std::string& name) {
  std::string quoted = "'";
  for (const char c : name) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

std::string PlainFormula(const std::string& text) {
  const FormulaAssignment assignment = SplitAssignment(text);
  return QuotedName(*assignment.name) + " = " +
         std::string(Trim(std::string_view(text).substr(assignment.begin)));
}

// The number as automation texts have it; empty if there is none.
Variant Limit(double value) {
  return std::isnan(value) ? Variant(std::string()) : Variant(value);
}

// The place of a name in a list of the profiler's.
std::size_t PlaceOf(const std::string& name, const std::vector<std::string>& names, const std::string& field,
                    const std::string& kind) {
  const auto found = std::ranges::find(names, name);
  if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
  std::string list;
  for (const std::string& one : names) list += (list.empty() ? "" : ", ") + one;
  throw WrongJob(field, "no " + kind + " called " + Quoted(name) + "; the " + kind + "s are " + list);
}

// The dialog of the profiler, with predictors and responses by their places from 0.
class Profiler {
 public:
  Profiler(const ProfileJob& job, std::int32_t seed, AnalysisSession& session)
      : job_(job), batches_(static_cast<std::int64_t>(job.samples), seed), session_(session) {
    session_.Begin(Task::kProfile);
    dialog_ = session_.Dialog();
  }

  // Models come before formulas, which take the places of models of their responses.
  void Prepare(const JobInput& input, JobRecorder& recorder) {
    const std::size_t shown = session_.Interface().Messages().size();
    LoadModels();
    SetFormulas();
    NoteMessages(shown);
    PutBatch(0);
    const bool takesSaved = job_.savedFits && !job_.fitBest;
    const DesignText saved =
        takesSaved ? SavedDistributions(session_.Interface(), input.sheet) : DesignText();
    if (job_.fitBest) FitBest();
    if (!job_.savedFits && (job_.fitBest || !inputs_.AnySaved(input.sheet)))
      notes_.push_back("No saved distribution would have been drawn, so that nothing was left out.");
    inputs_.TakeSaved(saved);
    unread_ = inputs_.TakeGiven(job_.inputs, input.sheet.VariableCount() == 0);
    Correlate(!saved.variables.empty(), input, recorder);
    SpecifyPredictors(input.sheet);
    RequireRandom();
    SpecifyResponses();
  }

  const std::vector<std::string>& Responses() const { return responses_; }

  // What models and formulas leave out of the data.
  const std::vector<std::string>& Notes() const { return notes_; }

  const PredictorInputs& Predictors() const { return inputs_; }
  // The variables given by hand that are no predictors.
  const std::vector<std::string>& Unread() const { return unread_; }

  const RunBatches& Batches() const { return batches_; }
  // The runs of the next simulation.
  void PutBatch(std::int64_t batch) {
    const std::int32_t runs = batches_.Runs(batch);
    Put(runs < kFewestProfilerRuns ? "NumberOfRuns" : "NumberOfSamples", runs);
    Put("IsSeedRandomNumber", 1);
    Put("RandomSeedNumber", batches_.Seed(batch));
  }
  // Lets go of what is shown of further batches.
  void KeepDocuments(std::size_t count) { session_.Interface().KeepDocuments(count); }
  std::size_t DocumentCount() const { return session_.Interface().Documents().size(); }
  // The runs of a batch, in the sheet of the first, which is filled anew.
  const Spreadsheet& Refill(std::int64_t batch) {
    Put("IsAutoUpdateSameSheet", 1);
    PutBatch(batch);
    const Variant::Object made =
        session_.Attempt([this] { return dialog_->Get("SimulationResults").ToObject(); });
    const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(made);
    if (document == nullptr) throw Error("the analysis returned no table");
    return document->Table();
  }

  // The simulated runs, why some have no prediction, and the graph of the profiles unless there are too many.
  AnalysisSession::Shown Simulate() {
    const std::size_t messages = session_.Interface().Messages().size();
    auto shown = Show("SimulationResults");
    NoteMessages(messages);
    if (shown.tables.empty()) throw Error("the analysis returned no table");
    return shown;
  }

  void TakeResults(std::size_t response, ProfileResults& results) {
    Select(response);
    const auto summary = Show("SummaryStats").tables;
    if (!IsSpecified(response)) return TakeResponse(responses_[response], summary, nullptr, results);
    const auto capability = Show("CapabilityStats").tables;
    if (capability.empty()) throw Error("the analysis returned no capability", responses_[response]);
    TakeResponse(responses_[response], summary, capability.front().get(), results);
  }

  // The histogram with its best fit and the tornado graph of a response.
  const Graph& GraphsOf(std::size_t response) {
    Select(response);
    const auto shown = Show("SummaryGraph");
    if (shown.graphs.empty()) throw Error("the analysis returned no graph", responses_[response]);
    return shown.graphs.front()->Content();
  }

  bool IsSpecified(std::size_t response) const {
    return std::ranges::find(job_.specifications, responses_[response], &ResponseSpecification::response) !=
           job_.specifications.end();
  }

  // The table of the counts of defects and the graph of the profiles, for which the response is specified.
  std::pair<Table, std::optional<Graph>> Defects(std::size_t response) {
    Select(response);
    const std::size_t shownBefore = session_.Interface().Documents().size();
    try {
      const auto shown = Show("DefectProfile");
      if (shown.tables.empty() || shown.graphs.empty()) throw Error("the analysis returned no defects");
      return {shown.tables.front(), shown.graphs.front()->Content()};
    } catch (const AutomationError& error) {
      // The tables are kept if only their graph cannot be drawn.
      const auto tables = session_.ShownSince(shownBefore).tables;
      if (tables.empty()) throw;
      session_.Interface().ShowMessage({error.Reason(), error.Where(), {}});
      return {tables.front(), std::nullopt};
    }
  }

 private:
  // What the dialog has told since it had told so much.
  void NoteMessages(std::size_t from) {
    const auto& messages = session_.Interface().Messages();
    for (std::size_t i = from; i < messages.size(); ++i) {
      const std::string& where = messages[i].where;
      notes_.push_back(messages[i].text + (where.empty() ? "" : " (" + where + ")"));
    }
  }

  void LoadModels() {
    if (job_.models.empty() && job_.functions.empty()) return;
    Variant::Array names;
    for (const auto& file : job_.models) names.emplace_back(file.string());
    for (const auto& function : job_.functions) names.emplace_back(ProvidedModel::AddressOf(*function));
    Put("LoadModels", names);
    TakeNames();
  }

  void SetFormulas() {
    if (job_.formulas.empty()) return;
    Variant::Array texts;
    for (const std::string& text : job_.formulas) texts.emplace_back(PlainFormula(text));
    Put("PredictionFormula", texts);
    TakeNames();
  }

  void TakeNames() {
    const auto names = [this](std::string_view member) {
      std::vector<std::string> list;
      for (const Variant& name : dialog_->Get(member).ToArray()) list.push_back(name.ToText());
      return list;
    };
    predictors_ = names("Predictors");
    responses_ = names("Dependents");
  }

  void FitBest() {
    if (session_.Attempt([this] { return dialog_->Get("FitBestDistributions").ToInteger(); }) == 0) {
      throw Error("no predictor was fitted");
    }
  }

  // Those of the predictors: as their columns, or as the matrix that belongs to the distributions saved with these, which a
  // design without cases follows unasked; then what a person gives.
  void Correlate(bool drawsSaved, const JobInput& input, JobRecorder& recorder) {
    JobFaults faults;
    std::vector<NotedCorrelation> given = job_.inputs.Read(&predictors_, faults).correlations;
    RequireNone(std::move(faults));
    const auto isPredictor = [this](const std::string& name) {
      return std::ranges::find(predictors_, name) != predictors_.end();
    };
    std::erase_if(given, [&](const NotedCorrelation& pair) {
      return !isPredictor(pair.first) || !isPredictor(pair.second);
    });
    const std::string& name = job_.inputs.matrix;
    const bool isGiven = !name.empty() || job_.givenMatrix != nullptr;
    std::vector<NotedCorrelation> pairs;
    const bool isDesign = input.sheet.CaseCount() == 0 && !isGiven && predictors_.size() > 1;
    if (drawsSaved && (job_.correlated || isDesign)) pairs = CorrelationsIn(MatrixFor({}, input).get());
    const auto isCorrelated = [](const NotedCorrelation& pair) { return pair.value != 0; };
    if (!job_.correlated && !isGiven && given.empty() && std::ranges::none_of(pairs, isCorrelated)) return;
    if (job_.correlated && !drawsSaved && input.sheet.CaseCount() == 0)
      throw WrongJob("correlated", "there are no data whose correlations could be followed");
    if (predictors_.size() < 2) {
      throw WrongJob(job_.correlated ? "correlated"
                     : isGiven       ? "matrix"
                                     : "correlations",
                     "a single predictor has nothing to be correlated with");
    }
    Table matrix = job_.givenMatrix;
    if (!name.empty()) matrix = RecordedMatrix(name, MatrixFor(name, input), input, recorder);
    if (auto note = WhatMatrixLacks(matrix, predictors_)) notes_.push_back(*std::move(note));
    pairs.insert(pairs.end(), given.begin(), given.end());
    inputs_.Correlate(job_.correlated, matrix, pairs);
  }

  void SpecifyPredictors(const Spreadsheet& data) {
    for (const ProfileJob::Fixed& one : job_.fixed) {
      const Variant value = std::visit([](const auto& given) { return Variant(given); }, one.value);
      PutGiven("fixed", one.predictor, Variant::Array{Variant("Fixed"), value});
    }
    for (std::size_t i = 0; i < predictors_.size(); ++i) {
      if (!inputs_.SpecificationOf(i).IsEmpty()) continue;
      const std::string nearest = NearestKnown(predictors_[i], data);
      throw Error("the data have no variable called " + Quoted(predictors_[i]) +
                      " with values to start the predictor from" +
                      (nearest.empty() ? "" : "; did you mean " + nearest + "?") +
                      (nearest.empty() ? "; give" : " Otherwise give") +
                      " it a distribution, or fix it at a value",
                  job_.data.file.string());
    }
    for (const ProfileJob::Truncation& one : job_.truncate) Truncate(one);
  }

  // Of the data and of what is given by hand; empty if nothing is near.
  std::string NearestKnown(const std::string& predictor, const Spreadsheet& data) const {
    JobFaults none;
    std::vector<std::string> known = job_.inputs.Read(nullptr, none).Names();
    for (std::string& name : VariableNamesOf(data)) known.push_back(std::move(name));
    std::erase(known, predictor);
    return NearestName(predictor, known);
  }

  // What a person gives for a predictor. Throws WrongJob with the words of the dialog where it takes it not.
  void PutGiven(const std::string& field, const std::string& predictor, const Variant& specification) {
    const std::size_t place = PredictorPlace(predictor, field);
    try {
      inputs_.Put(place, specification);
    } catch (const AutomationError& error) {
      throw WrongJob(field, Quoted(predictor) + ": " + error.Reason());
    }
  }

  // What is asked of predictors that are random needs some that are.
  void RequireRandom() {
    std::size_t random = 0;
    for (std::size_t i = 0; i < predictors_.size(); ++i)
      random += IsRandom(inputs_.SpecificationOf(i)) ? 1 : 0;
    if (job_.correlated && random == 1)
      throw WrongJob("correlated", "a single random predictor has nothing to be correlated with");
  }

  // The array of a distribution ends with its truncation; that of a fixed value is shorter.
  static bool IsRandom(const Variant& specification) {
    return specification.ToArray().size() > kTruncationItems;
  }

  void Truncate(const ProfileJob::Truncation& truncation) {
    const std::size_t predictor = PredictorPlace(truncation.predictor, "truncate");
    const Variant specification = inputs_.SpecificationOf(predictor);
    if (!IsRandom(specification))
      throw WrongJob("truncate", Quoted(truncation.predictor) + " is not drawn at random");
    Variant::Array array = specification.ToArray();
    const std::size_t values = array.size() - kTruncationItems;
    const bool isTruncated = array[values].ToBoolean() || array[values + 2].ToBoolean();
    if (!truncation.minimum && !truncation.maximum && !isTruncated)
      throw WrongJob("truncate", Quoted(truncation.predictor) + " has no range that could be lifted");
    array.resize(values);
    for (const auto& bound : {truncation.minimum, truncation.maximum}) {
      array.emplace_back(std::int32_t{bound ? 1 : 0});
      array.emplace_back(bound.value_or(0));
    }
    PutGiven("truncate", truncation.predictor, array);
  }

  void SpecifyResponses() {
    for (const ProfileJob::Noise& one : job_.noise) {
      Select(PlaceOf(one.response, responses_, "noise", "response"));
      Put("DependentNoise", 1);
      Put("StdDevY", one.standardDeviation);
    }
    std::vector<std::string> noisy;
    for (const ProfileJob::Noise& one : job_.noise) noisy.push_back(one.response);
    CorrelateNoise(session_, job_.noiseCorrelations, responses_, noisy);
    for (const ResponseSpecification& one : job_.specifications) {
      Select(PlaceOf(one.response, responses_, "specifications", "response"));
      Put("LSL", Limit(one.limits.lower));
      Put("USL", Limit(one.limits.upper));
      Put("Target", Limit(one.limits.target));
    }
  }

  std::size_t PredictorPlace(const std::string& name, const std::string& field) const {
    return PlaceOf(name, predictors_, field, "predictor");
  }

  void Select(std::size_t response) { Put("DependentforResult", Place(response)); }

  void Put(std::string_view member, const Variant& value) {
    session_.Attempt([&] { dialog_->Put(member, value); });
  }

  AnalysisSession::Shown Show(std::string_view member) {
    const std::size_t before = session_.Interface().Documents().size();
    const Variant::Object made = session_.Attempt([&] { return dialog_->Get(member).ToObject(); });
    if (made == nullptr) throw Error("the analysis returned nothing", std::string(member));
    return session_.ShownSince(before);
  }

  const ProfileJob& job_;
  const RunBatches batches_;
  AnalysisSession& session_;
  std::shared_ptr<AutomationObject> dialog_;
  std::vector<std::string> predictors_;
  std::vector<std::string> unread_;
  std::vector<std::string> responses_;
  std::vector<std::string> notes_;
  PredictorInputs inputs_{session_, predictors_};
};

// The graphs of all responses together.
struct SharedGraphs {
  std::optional<Graph> profiles;
  std::optional<Graph> defects;
};

// Beyond the runs that the dialog takes at once, the graphs are those of the first ones.
std::vector<std::string> GraphNotes(const RunBatches& batches) {
  if (batches.Count() == 1) return {};
  const std::int64_t last = batches.Count() - 1;
  return {"the first " + std::to_string(batches.Runs(0)) + " of " +
          std::to_string(batches.FirstRun(last) + batches.Runs(last)) + " runs are shown"};
}

// A response without any prediction has no graphs of its own. No macro has these as steps.
std::vector<ResponseGraphs> CollectGraphs(Profiler& profiler, CAnalysisSupport& analysis,
                                          const ProfileResults& results, const SharedGraphs& shared) {
  const ActionRecording none(analysis);
  std::vector<ResponseGraphs> responses;
  for (std::size_t i = 0; i < results.responses.size(); ++i) {
    const ResponseResults& response = results.responses[i];
    ResponseGraphs graphs;
    graphs.name = response.name;
    graphs.notes = GraphNotes(profiler.Batches());
    if (response.IsPredicted()) {
      graphs.graphs = profiler.GraphsOf(i).panels;
      graphs.capability = CapabilityLines(response);
    }
    if (shared.profiles) graphs.profiles = PanelsOf(*shared.profiles, response.name);
    if (shared.defects) graphs.defectProfiles = PanelsOf(*shared.defects, response.name);
    responses.push_back(std::move(graphs));
  }
  return responses;
}

void WriteGraphs(const std::filesystem::path& path, const std::vector<ResponseGraphs>& responses,
                 const SharedGraphs& shared) {
  using Json = nlohmann::ordered_json;
  Json report = {{"responses", Json::array()}};
  for (const ResponseGraphs& response : responses) {
    Json graphs = Json::array();
    for (const Graph& graph : response.graphs) graphs.push_back(GraphJson(graph));
    report["responses"].push_back({{"name", response.name}, {"graphs", std::move(graphs)}});
  }
  if (shared.profiles) report["profiles"] = GraphJson(*shared.profiles);
  if (shared.defects) report["defectProfile"] = GraphJson(*shared.defects);
  if (!responses.empty() && !responses.front().notes.empty()) report["notes"] = responses.front().notes;
  OutputFile file(path);
  file.Write(JsonText(report));
  file.Commit();
}

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

// The tables of the runs that the dialog has simulated.
void TakeResults(Profiler& profiler, const AnalysisSession::Shown& simulated, ProfileFindings& found,
                 SharedGraphs& shared) {
  ProfileResults& results = found.results;
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
  NoteUnread(profiler.Unread(), results);
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

// The further batches of a profile whose first one is done, and its runs piece by piece in their file.
void RunOn(Profiler& profiler, const std::filesystem::path& output, std::int64_t& firstRun,
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
  std::int64_t current = 0;
  bool isSimulated = true;  // the first batch
  const auto simulate = [&](std::int64_t batch, const BatchSink& take) {
    if (std::exchange(isSimulated, false)) return take(found.simulated->Table());
    current = batch;
    firstRun = batches.FirstRun(batch);
    take(profiler.Refill(batch));
    profiler.KeepDocuments(shown);
  };
  const auto take = [&](const Spreadsheet& simulated) {
    if (auto* csv = std::get_if<CsvPieces>(&pieces)) csv->Append(simulated);
    if (auto* archive = std::get_if<NumpyPieces>(&pieces)) archive->Append(simulated);
    for (std::size_t i = 0; found.results.defects && current > 0 && i < profiler.Responses().size(); ++i) {
      if (!profiler.IsSpecified(i)) continue;
      ProfileResults more;
      TakeDefects(*profiler.Defects(i).first, more);
      AddDefects(*more.defects, *found.results.defects);
      break;
    }
  };
  ExtendResults(batches, simulate, take, found.results);
  if (auto* csv = std::get_if<CsvPieces>(&pieces)) csv->Commit();
  if (auto* archive = std::get_if<NumpyPieces>(&pieces)) archive->Commit();
}

}  // namespace

// The files are written when all results are there.
ProfileFindings ProfileJob::Run(const JobInput& input, JobRecorder& recorder) const {
  RequireNone(Check());
  RequireCases(input.sheet);
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
  Profiler profiler(*this, found.seed, session);
  profiler.Prepare(input, recorder);
  SharedGraphs shared;
  const AnalysisSession::Shown simulated = profiler.Simulate();
  found.simulated = simulated.tables.front();
  if (!simulated.graphs.empty()) shared.profiles = simulated.graphs.front()->Content();
  TakeResults(profiler, simulated, found, shared);
  const bool isWhole = profiler.Batches().Count() == 1;
  if (isWhole) found.outputSheet = WriteSimulated(output, found.simulated, recorder);
  if (plot.IsAsked() || !graphs.empty() || !report.empty() || keepsGraphs) {
    if (shared.profiles) AddProfileBands(found.simulated->Table(), *shared.profiles);
    found.graphs = CollectGraphs(profiler, session.Analysis(), found.results, shared);
  }
  if (!graphs.empty()) WriteGraphs(graphs, found.graphs, shared);
  if (plot.IsAsked()) WritePlot(plot, "Simulated responses", ProfilePlots(found.graphs, plot.Kind()));
  if (!isWhole) RunOn(profiler, output, *firstRun, found);
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
    throw WrongJob("sheet", "without a project there is no sheet to choose");
  } else {
    OpenNewDesign(run, recorder);
  }
  JobInput input = run.Input(interface, recorder);
  if (data.file.empty()) input.home = nullptr;
  static_cast<ProfileFindings&>(run) = Run(input, recorder);
  return run;
}

}  // namespace brenvolt
