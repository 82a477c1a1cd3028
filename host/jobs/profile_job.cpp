#include "host/jobs/profile_job.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "host/application/graph_json.h"
#include "host/application/json_text.h"
#include "host/base/files/output_file.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/formula/formula.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt {
namespace {

// What the array of a predictor ends with: whether it is truncated below, where, whether above, where.
constexpr std::size_t kTruncationItems = 4;
constexpr std::string_view kSpecification = "VariableDistributionParams";

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
      : job_(job), seed_(seed), session_(session) {
    session_.Begin(Task::kProfile);
    dialog_ = session_.Dialog();
  }

  // Models come before formulas, which take the places of models of their responses.
  void Prepare() {
    LoadModels();
    SetFormulas();
    Put("NumberOfSamples", AsInteger(job_.samples));
    Put("IsSeedRandomNumber", 1);
    Put("RandomSeedNumber", seed_);
    if (job_.correlated && predictors_.size() < 2)
      throw WrongJob("correlated", "a single predictor has nothing to be correlated with");
    if (job_.correlated) Put("IsEditCorrelation", 1);
    if (job_.fitBest) FitBest();
    SpecifyPredictors();
    RequireRandom();
    SpecifyResponses();
  }

  const std::vector<std::string>& Responses() const { return responses_; }

  std::vector<PredictorUse> Predictors() {
    std::vector<PredictorUse> uses;
    const Variant::Array texts = dialog_->Get("PredictorDistributions").ToArray();
    for (std::size_t i = 0; i < predictors_.size(); ++i)
      uses.push_back({predictors_[i], texts.at(i).ToText()});
    return uses;
  }

  // The simulated runs, why some have no prediction, and the graph of the profiles unless there are too many.
  AnalysisSession::Shown Simulate() {
    auto shown = Show("SimulationResults");
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
    return std::ranges::find(job_.specifications, responses_[response],
                             &ProfileJob::Specification::response) != job_.specifications.end();
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
  void LoadModels() {
    if (job_.models.empty()) return;
    Variant::Array names;
    for (const auto& file : job_.models) names.emplace_back(file.string());
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

  void SpecifyPredictors() {
    for (const ProfileJob::Fixed& one : job_.fixed) {
      const Variant value = std::visit([](const auto& given) { return Variant(given); }, one.value);
      PutSpecification(PredictorPlace(one.predictor, "fixed"), Variant::Array{Variant("Fixed"), value});
    }
    for (std::size_t i = 0; i < predictors_.size(); ++i) {
      if (!SpecificationOf(i).IsEmpty()) continue;
      throw Error("the data have no variable called " + Quoted(predictors_[i]) +
                      " with values to start the predictor from; fix it at a value",
                  job_.data.file.string());
    }
    for (const ProfileJob::Truncation& one : job_.truncate) Truncate(one);
  }

  // What is asked of predictors that are random needs some that are.
  void RequireRandom() {
    std::size_t random = 0;
    for (std::size_t i = 0; i < predictors_.size(); ++i) random += IsRandom(SpecificationOf(i)) ? 1 : 0;
    if (job_.correlated && random == 1)
      throw WrongJob("correlated", "a single random predictor has nothing to be correlated with");
  }

  // The array of a distribution ends with its truncation; that of a fixed value is shorter.
  static bool IsRandom(const Variant& specification) {
    return specification.ToArray().size() > kTruncationItems;
  }

  void Truncate(const ProfileJob::Truncation& truncation) {
    const std::size_t predictor = PredictorPlace(truncation.predictor, "truncate");
    const Variant specification = SpecificationOf(predictor);
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
    PutSpecification(predictor, array);
  }

  void SpecifyResponses() {
    for (const ProfileJob::Noise& one : job_.noise) {
      Select(PlaceOf(one.response, responses_, "noise", "response"));
      Put("DependentNoise", 1);
      Put("StdDevY", one.standardDeviation);
    }
    for (const ProfileJob::Specification& one : job_.specifications) {
      Select(PlaceOf(one.response, responses_, "specifications", "response"));
      Put("LSL", Limit(one.limits.lower));
      Put("USL", Limit(one.limits.upper));
      Put("Target", Limit(one.limits.target));
    }
  }

  std::size_t PredictorPlace(const std::string& name, const std::string& field) const {
    return PlaceOf(name, predictors_, field, "predictor");
  }

  // What the predictor is drawn from; empty if that is not known.
  Variant SpecificationOf(std::size_t predictor) {
    const Variant place = Place(predictor);
    return dialog_->Get(kSpecification, {&place, 1});
  }

  void PutSpecification(std::size_t predictor, const Variant& specification) {
    const Variant place = Place(predictor);
    session_.Attempt([&] { dialog_->Put(kSpecification, specification, {&place, 1}); });
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
  const std::int32_t seed_;
  AnalysisSession& session_;
  std::shared_ptr<AutomationObject> dialog_;
  std::vector<std::string> predictors_;
  std::vector<std::string> responses_;
};

// The graphs of all responses together.
struct SharedGraphs {
  std::optional<Graph> profiles;
  std::optional<Graph> defects;
};

// A response without any prediction has no graphs of its own.
void WriteGraphs(const std::filesystem::path& path, Profiler& profiler, const ProfileResults& results,
                 const SharedGraphs& shared) {
  using Json = nlohmann::ordered_json;
  Json report = {{"responses", Json::array()}};
  for (std::size_t i = 0; i < results.responses.size(); ++i) {
    const ResponseResults& response = results.responses[i];
    report["responses"].push_back(
        {{"name", response.name},
         {"graphs", response.IsPredicted() ? GraphJson(profiler.GraphsOf(i))["panels"] : Json::array()}});
  }
  if (shared.profiles) report["profiles"] = GraphJson(*shared.profiles);
  if (shared.defects) report["defectProfile"] = GraphJson(*shared.defects);
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

}  // namespace

// The files are written when all results are there.
ProfileFindings ProfileJob::Run(const JobInput& input, JobRecorder& recorder) const {
  RequireNone(Check());
  RequireCases(input.sheet);
  RefuseReplacedProject(output);
  if (!graphs.empty()) RefuseProjectTarget(graphs);
  if (!graphs.empty() && recorder.IsRecording()) throw WrongJob("graphs", "graphs cannot be recorded");
  ProfileFindings found;
  found.seed = ChosenSeed(seed);
  Profiler profiler(*this, found.seed, Start(input, data));
  profiler.Prepare();
  SharedGraphs shared;
  const AnalysisSession::Shown simulated = profiler.Simulate();
  found.simulated = simulated.tables.front();
  if (!simulated.graphs.empty()) shared.profiles = simulated.graphs.front()->Content();
  found.results.runs = static_cast<std::int64_t>(samples);
  found.results.predictors = profiler.Predictors();
  for (std::size_t i = 0; i < profiler.Responses().size(); ++i) {
    profiler.TakeResults(i, found.results);
    if (!profiler.IsSpecified(i) || found.results.defects) continue;
    Table defects;
    std::tie(defects, shared.defects) = profiler.Defects(i);
    TakeDefects(*defects, found.results);
  }
  if (simulated.tables.size() > 1) TakeUnpredicted(*simulated.tables[1], found.results);
  RequirePredictions(found.results);
  if (shared.profiles) TakeProfiles(*shared.profiles, found.results);
  found.outputSheet = WriteSimulated(output, found.simulated, recorder);
  if (!graphs.empty()) WriteGraphs(graphs, profiler, found.results, shared);
  return found;
}

ProfileRun ProfileJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  ProfileRun run;
  run.data = OpenJobData(data);
  run.sheet = &run.data.Sheet(data.sheet);
  recorder.Opened(data.file, data.decimalComma, &run.data.workbook);
  recorder.Took(&run.data.workbook, data.sheet, run.sheet);
  static_cast<ProfileFindings&>(run) = Run(run.Input(interface, recorder), recorder);
  return run;
}

}  // namespace brenvolt
