#include "apps/cli/profiler_session.h"

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "host/base/error.h"

namespace brenvolt::cli {
namespace {

// What the array of a predictor ends with: whether it is truncated below, where, whether above, where.
constexpr std::size_t kTruncationItems = 4;

constexpr std::string_view kSpecification = "VariableDistributionParams";

// Places count from 1.
Variant Place(std::size_t place) {
  return static_cast<std::int32_t>(place + 1);
}

// As it stands before the "=" of a formula.
std::string QuotedName(const std::string& name) {
  std::string quoted = "'";
  for (const char c : name) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

// The number as automation texts have it; empty where there is none.
Variant Limit(double value) {
  return std::isnan(value) ? Variant(std::string()) : Variant(value);
}

}  // namespace

ProfilerSession::ProfilerSession(Spreadsheet& sheet, JobRecorder& job)
    : session_(sheet, Task::kProfile, job), dialog_(session_.Dialog()) {}

void ProfilerSession::LoadModels(const std::vector<std::filesystem::path>& files) {
  Variant::Array names;
  for (const auto& file : files) names.emplace_back(file.string());
  Put("LoadModels", names);
  TakeNames();
}

void ProfilerSession::SetFormulas(const std::vector<ResponseFormula>& formulas) {
  Variant::Array texts;
  for (const ResponseFormula& formula : formulas) {
    texts.emplace_back(QuotedName(formula.response) + " = " + formula.expression);
  }
  Put("PredictionFormula", texts);
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

bool ProfilerSession::IsPredictorSpecified(std::size_t predictor) const {
  const Variant place = Place(predictor);
  return !dialog_->Get(kSpecification, {&place, 1}).IsEmpty();
}

void ProfilerSession::SetRuns(std::int32_t runs) {
  Put("NumberOfSamples", runs);
}

void ProfilerSession::SetSeed(std::int32_t seed) {
  Put("IsSeedRandomNumber", 1);
  Put("RandomSeedNumber", seed);
}

void ProfilerSession::Correlate() {
  Put("IsEditCorrelation", 1);
}

void ProfilerSession::FitBest() {
  if (session_.Attempt([this] { return dialog_->Get("FitBestDistributions").ToInteger(); }) == 0) {
    throw Error("no predictor was fitted");
  }
}

void ProfilerSession::Fix(std::size_t predictor, double value) {
  PutSpecification(predictor, Variant::Array{Variant("Fixed"), Variant(value)});
}

void ProfilerSession::Truncate(std::size_t predictor, double minimum, double maximum) {
  const Variant place = Place(predictor);
  Variant::Array array = dialog_->Get(kSpecification, {&place, 1}).ToArray();
  if (array.size() <= kTruncationItems) {
    throw Error("it is not random", "the predictor '" + predictors_[predictor] + "' cannot be truncated");
  }
  array.resize(array.size() - kTruncationItems);
  for (const double bound : {minimum, maximum}) {
    array.emplace_back(std::int32_t{1});
    array.emplace_back(bound);
  }
  PutSpecification(predictor, array);
}

void ProfilerSession::PutSpecification(std::size_t predictor, const Variant& specification) {
  const Variant place = Place(predictor);
  session_.Attempt([&] { dialog_->Put(kSpecification, specification, {&place, 1}); });
}

void ProfilerSession::AddNoise(std::size_t response, double standardDeviation) {
  Select(response);
  Put("DependentNoise", 1);
  Put("StdDevY", standardDeviation);
}

void ProfilerSession::Specify(std::size_t response, const SpecificationLimits& limits) {
  Select(response);
  Put("LSL", Limit(limits.lower));
  Put("USL", Limit(limits.upper));
  Put("Target", Limit(limits.target));
}

Table ProfilerSession::Simulate() {
  const Shown shown = Show("SimulationResults");
  if (shown.tables.empty()) throw Error("the analysis returned no table");
  return shown.tables.front();
}

ResponseResults ProfilerSession::ResultsOf(std::size_t response, bool hasSpecification) {
  constexpr std::size_t kTables = 5;
  Select(response);
  Shown summary = Show("SummaryStats");
  if (summary.tables.size() != kTables) throw Error("the analysis returned no summary", responses_[response]);
  ResponseResults results{responses_[response],
                          summary.tables[0],
                          summary.tables[1],
                          summary.tables[2],
                          summary.tables[3],
                          summary.tables[4],
                          nullptr};
  if (!hasSpecification) return results;
  Shown capability = Show("CapabilityStats");
  if (capability.tables.empty()) throw Error("the analysis returned no capability", responses_[response]);
  results.capability = capability.tables.front();
  return results;
}

Graph ProfilerSession::GraphsOf(std::size_t response) {
  Select(response);
  const Shown shown = Show("SummaryGraph");
  if (shown.graphs.empty()) throw Error("the analysis returned no graph", responses_[response]);
  return shown.graphs.front()->Content();
}

std::pair<Table, std::optional<Graph>> ProfilerSession::Defects(std::size_t specifiedResponse) {
  Select(specifiedResponse);
  const std::size_t shownBefore = session_.Documents().size();
  try {
    const Shown shown = Show("DefectProfile");
    if (shown.tables.empty() || shown.graphs.empty()) throw Error("the analysis returned no defects");
    return {shown.tables.front(), shown.graphs.front()->Content()};
  } catch (const AutomationError& error) {
    // The table stands where only its graph cannot be drawn.
    if (session_.Documents().size() == shownBefore) throw;
    std::fprintf(stderr, "%s: %s (%s)\n", kProgram, error.Reason().c_str(), error.Where().c_str());
    return {session_.Documents()[shownBefore], std::nullopt};
  }
}

void ProfilerSession::Select(std::size_t response) {
  Put("DependentforResult", Place(response));
}

void ProfilerSession::Put(std::string_view member, const Variant& value) {
  session_.Attempt([&] { dialog_->Put(member, value); });
}

ProfilerSession::Shown ProfilerSession::Show(std::string_view member) {
  const std::size_t tables = session_.Documents().size();
  const std::size_t graphs = session_.Graphs().size();
  const Variant::Object made = session_.Attempt([&] { return dialog_->Get(member).ToObject(); });
  if (made == nullptr) throw Error("nothing was made", std::string(member));
  const auto after = [](const auto& all, std::size_t count) {
    return std::remove_cvref_t<decltype(all)>(all.begin() + static_cast<std::ptrdiff_t>(count), all.end());
  };
  return {after(session_.Documents(), tables), after(session_.Graphs(), graphs)};
}

}  // namespace brenvolt::cli
