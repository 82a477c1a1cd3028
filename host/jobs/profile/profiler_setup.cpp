#include "host/jobs/profile/profiler_setup.h"

#include <algorithm>
#include <cmath>

#include "host/base/nearest_name.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/formula/formula.h"
#include "host/jobs/base/project_files.h"
#include "host/models/model_function.h"

namespace brenvolt {
namespace {

// What the array of a predictor ends with: whether it is truncated below, where, whether above, where.
constexpr std::size_t kTruncationItems = 4;

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

class Setup {
 public:
  Setup(const ProfileJob& job, const JobInput& input, ProfilerSession& profiler)
      : job_(job), input_(input), profiler_(profiler) {}

  // Models come before formulas, which take the places of models of their responses.
  void Predictions() {
    LoadModels();
    SetFormulas();
  }

  // Returns the variables given by hand that are no predictors.
  std::vector<std::string> Predictors(JobRecorder& recorder) {
    const bool takesSaved = job_.savedFits && !job_.fitBest;
    const DesignText saved =
        takesSaved ? SavedDistributions(profiler_.Session().Interface(), input_.sheet) : DesignText();
    if (job_.fitBest) profiler_.FitBest();
    if (!job_.savedFits && (job_.fitBest || !Inputs().AnySaved(input_.sheet)))
      profiler_.AddNote("No saved distribution would have been drawn, so that nothing was left out.");
    Inputs().TakeSaved(saved);
    auto unread = Inputs().TakeGiven(job_.inputs, input_.sheet.VariableCount() == 0);
    Correlate(!saved.variables.empty(), recorder);
    SpecifyPredictors();
    RequireRandom();
    return unread;
  }

  void SpecifyResponses() {
    for (const ProfileJob::Noise& one : job_.noise) {
      profiler_.Select(PlaceOf(one.response, profiler_.Responses(), "noise", "response"));
      profiler_.Put("DependentNoise", 1);
      profiler_.Put("StdDevY", one.standardDeviation);
    }
    std::vector<std::string> noisy;
    for (const ProfileJob::Noise& one : job_.noise) noisy.push_back(one.response);
    CorrelateNoise(profiler_.Session(), job_.noiseCorrelations, profiler_.Responses(), noisy);
    for (const ResponseSpecification& one : job_.specifications) {
      profiler_.Select(PlaceOf(one.response, profiler_.Responses(), "specifications", "response"));
      profiler_.Put("LSL", Limit(one.limits.lower));
      profiler_.Put("USL", Limit(one.limits.upper));
      profiler_.Put("Target", Limit(one.limits.target));
    }
  }

 private:
  const PredictorInputs& Inputs() const { return profiler_.Predictors(); }
  const std::vector<std::string>& Names() const { return profiler_.PredictorNames(); }

  void LoadModels() {
    if (job_.models.empty() && job_.functions.empty()) return;
    Variant::Array names;
    for (const auto& file : job_.models) names.emplace_back(file.string());
    for (const auto& function : job_.functions) names.emplace_back(ProvidedModel::AddressOf(*function));
    profiler_.LoadModels(names);
  }

  void SetFormulas() {
    if (job_.formulas.empty()) return;
    Variant::Array texts;
    for (const std::string& text : job_.formulas) texts.emplace_back(PlainFormula(text));
    profiler_.SetFormulas(texts);
  }

  // Those of the predictors: as their columns, or as the matrix that belongs to the distributions saved with these, which a
  // design without cases follows unasked; then what a person gives.
  void Correlate(bool drawsSaved, JobRecorder& recorder) {
    JobFaults faults;
    std::vector<NotedCorrelation> given = job_.inputs.Read(&Names(), faults).correlations;
    RequireNone(std::move(faults));
    const auto isPredictor = [this](const std::string& name) {
      return std::ranges::find(Names(), name) != Names().end();
    };
    std::erase_if(given, [&](const NotedCorrelation& pair) {
      return !isPredictor(pair.first) || !isPredictor(pair.second);
    });
    const std::string& name = job_.inputs.matrix;
    const bool isGiven = !name.empty() || job_.givenMatrix != nullptr;
    std::vector<NotedCorrelation> pairs;
    const bool isDesign = input_.sheet.CaseCount() == 0 && !isGiven && Names().size() > 1;
    if (drawsSaved && (job_.correlated || isDesign)) pairs = CorrelationsIn(MatrixFor({}, input_).get());
    const auto isCorrelated = [](const NotedCorrelation& pair) { return pair.value != 0; };
    if (!job_.correlated && !isGiven && given.empty() && std::ranges::none_of(pairs, isCorrelated)) return;
    if (job_.correlated && !drawsSaved && input_.sheet.CaseCount() == 0)
      throw WrongJob("correlated", "there are no data to take the correlations from");
    if (Names().size() < 2) {
      throw WrongJob(job_.correlated ? "correlated"
                     : isGiven       ? "matrix"
                                     : "correlations",
                     "there is only one predictor, so it cannot be correlated with another");
    }
    Table matrix = job_.givenMatrix;
    if (!name.empty()) matrix = RecordedMatrix(name, MatrixFor(name, input_), input_, recorder);
    if (auto note = WhatMatrixLacks(matrix, Names())) profiler_.AddNote(*std::move(note));
    pairs.insert(pairs.end(), given.begin(), given.end());
    Inputs().Correlate(job_.correlated, matrix, pairs);
  }

  void SpecifyPredictors() {
    for (const ProfileJob::Fixed& one : job_.fixed) {
      const Variant value = std::visit([](const auto& given) { return Variant(given); }, one.value);
      PutGiven("fixed", one.predictor, Variant::Array{Variant("Fixed"), value});
    }
    for (std::size_t i = 0; i < Names().size(); ++i) {
      if (!Inputs().SpecificationOf(i).IsEmpty()) continue;
      const std::string nearest = NearestKnown(Names()[i]);
      throw Error("the data have no variable called " + Quoted(Names()[i]) +
                      " with values to start the predictor from" +
                      (nearest.empty() ? "" : "; did you mean " + nearest + "?") +
                      (nearest.empty() ? "; give" : " Otherwise give") +
                      " it a distribution, or fix it at a value",
                  job_.data.file.string());
    }
    for (const ProfileJob::Truncation& one : job_.truncate) Truncate(one);
  }

  // Of the data and of what is given by hand; empty if nothing is near.
  std::string NearestKnown(const std::string& predictor) const {
    JobFaults none;
    std::vector<std::string> known = job_.inputs.Read(nullptr, none).Names();
    for (std::string& name : VariableNamesOf(input_.sheet)) known.push_back(std::move(name));
    std::erase(known, predictor);
    return NearestName(predictor, known);
  }

  // What a person gives for a predictor. Throws WrongJob with the words of the dialog where it takes it not.
  void PutGiven(const std::string& field, const std::string& predictor, const Variant& specification) {
    const std::size_t place = PredictorPlace(predictor, field);
    try {
      Inputs().Put(place, specification);
    } catch (const AutomationError& error) {
      throw WrongJob(field, Quoted(predictor) + ": " + error.Reason());
    }
  }

  // What is asked of predictors that are random needs some that are.
  void RequireRandom() {
    std::size_t random = 0;
    for (std::size_t i = 0; i < Names().size(); ++i) random += IsRandom(Inputs().SpecificationOf(i)) ? 1 : 0;
    if (job_.correlated && random == 1)
      throw WrongJob("correlated",
                     "only one predictor is drawn at random, so it cannot be correlated with another");
  }

  // The array of a distribution ends with its truncation; that of a fixed value is shorter.
  static bool IsRandom(const Variant& specification) {
    return specification.ToArray().size() > kTruncationItems;
  }

  void Truncate(const ProfileJob::Truncation& truncation) {
    const std::size_t predictor = PredictorPlace(truncation.predictor, "truncate");
    const Variant specification = Inputs().SpecificationOf(predictor);
    if (!IsRandom(specification))
      throw WrongJob("truncate", Quoted(truncation.predictor) + " is not drawn at random");
    Variant::Array array = specification.ToArray();
    const std::size_t values = array.size() - kTruncationItems;
    const bool isTruncated = array[values].ToBoolean() || array[values + 2].ToBoolean();
    if (!truncation.minimum && !truncation.maximum && !isTruncated)
      throw WrongJob("truncate", Quoted(truncation.predictor) + " has no bounds that could be removed");
    array.resize(values);
    for (const auto& bound : {truncation.minimum, truncation.maximum}) {
      array.emplace_back(std::int32_t{bound ? 1 : 0});
      array.emplace_back(bound.value_or(0));
    }
    PutGiven("truncate", truncation.predictor, array);
  }

  std::size_t PredictorPlace(const std::string& name, const std::string& field) const {
    return PlaceOf(name, Names(), field, "predictor");
  }

  const ProfileJob& job_;
  const JobInput& input_;
  ProfilerSession& profiler_;
};

}  // namespace

std::vector<std::string> SetUpProfiler(const ProfileJob& job, const JobInput& input, JobRecorder& recorder,
                                       ProfilerSession& profiler) {
  Setup setup(job, input, profiler);
  setup.Predictions();
  profiler.PutBatch(0);
  auto unread = setup.Predictors(recorder);
  setup.SpecifyResponses();
  return unread;
}

}  // namespace brenvolt
