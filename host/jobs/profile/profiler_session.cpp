#include "host/jobs/profile/profiler_session.h"

#include <algorithm>

#include "host/analysis/run_bounds.h"

namespace brenvolt {

ProfilerSession::ProfilerSession(const ProfileJob& job, std::int32_t seed, AnalysisSession& session)
    : job_(job), batches_(static_cast<std::int64_t>(job.samples), seed), session_(session) {
  session_.Begin(Task::kProfile);
  dialog_ = session_.Dialog();
}

void ProfilerSession::AddNote(std::string note) {
  notes_.push_back(std::move(note));
}

void ProfilerSession::LoadModels(const Variant::Array& models) {
  PutPredictions("LoadModels", models);
}

void ProfilerSession::SetFormulas(const Variant::Array& formulas) {
  PutPredictions("PredictionFormula", formulas);
}

void ProfilerSession::PutPredictions(std::string_view member, const Variant::Array& predictions) {
  const std::size_t messages = session_.Interface().Messages().size();
  Put(member, predictions);
  NoteMessages(messages);
  TakeNames();
}

void ProfilerSession::TakeNames() {
  const auto names = [this](std::string_view member) {
    std::vector<std::string> list;
    for (const Variant& name : dialog_->Get(member).ToArray()) list.push_back(name.ToText());
    return list;
  };
  predictors_ = names("Predictors");
  responses_ = names("Dependents");
}

void ProfilerSession::FitBest() {
  if (session_.Attempt([this] { return dialog_->Get("FitBestDistributions").ToInteger(); }) == 0)
    throw Error("no predictor was fitted");
}

void ProfilerSession::Select(std::size_t response) {
  Put("DependentforResult", static_cast<std::int32_t>(response + 1));
}

void ProfilerSession::Put(std::string_view member, const Variant& value) {
  session_.Attempt([&] { dialog_->Put(member, value); });
}

void ProfilerSession::PutBatch(std::int64_t batch) {
  const std::int32_t runs = batches_.Runs(batch);
  Put(runs < kFewestProfilerRuns ? "NumberOfRuns" : "NumberOfSamples", runs);
  Put("IsSeedRandomNumber", 1);
  Put("RandomSeedNumber", batches_.Seed(batch));
}

AnalysisSession::Shown ProfilerSession::Simulate() {
  const std::size_t messages = session_.Interface().Messages().size();
  auto shown = Show("SimulationResults");
  NoteMessages(messages);
  if (shown.tables.empty()) throw Error("the analysis returned no table");
  return shown;
}

const Spreadsheet& ProfilerSession::Refill(std::int64_t batch) {
  Put("IsAutoUpdateSameSheet", 1);
  PutBatch(batch);
  const Variant::Object made =
      session_.Attempt([this] { return dialog_->Get("SimulationResults").ToObject(); });
  const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(made);
  if (document == nullptr) throw Error("the analysis returned no table");
  return document->Table();
}

bool ProfilerSession::IsSpecified(std::size_t response) const {
  return std::ranges::find(job_.specifications, responses_[response], &ResponseSpecification::response) !=
         job_.specifications.end();
}

void ProfilerSession::TakeResults(std::size_t response, ProfileResults& results) {
  Select(response);
  const auto summary = Show("SummaryStats").tables;
  if (!IsSpecified(response)) return TakeResponse(responses_[response], summary, nullptr, results);
  const auto capability = Show("CapabilityStats").tables;
  if (capability.empty()) throw Error("the analysis returned no capability", responses_[response]);
  TakeResponse(responses_[response], summary, capability.front().get(), results);
}

std::pair<Table, std::optional<Graph>> ProfilerSession::Defects(std::size_t response) {
  Select(response);
  const std::size_t shownBefore = DocumentCount();
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

// What the dialog has told since it had told so much.
void ProfilerSession::NoteMessages(std::size_t from) {
  const auto& messages = session_.Interface().Messages();
  for (std::size_t i = from; i < messages.size(); ++i) {
    const std::string& where = messages[i].where;
    AddNote(messages[i].text + (where.empty() ? "" : " (" + where + ")"));
  }
}

AnalysisSession::Shown ProfilerSession::Show(std::string_view member) {
  const std::size_t before = DocumentCount();
  const Variant::Object made = session_.Attempt([&] { return dialog_->Get(member).ToObject(); });
  if (made == nullptr) throw Error("the analysis returned nothing", std::string(member));
  return session_.ShownSince(before);
}

}  // namespace brenvolt
