// What the profiler simulates: predictors with their distributions, dependents with what predicts them, how
// many runs, and the correlations. Knows no dialog.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/distributions/specification.h"
#include "host/analysis/run_bounds.h"
#include "host/models/prediction_model.h"
#include "host/statistics/specification_limits.h"

namespace brenvolt::sra {

enum class PredictorSetting : std::uint8_t {
  kNone,   // nothing is specified; no run is possible
  kFixed,  // one value in every run
  kRandom  // drawn from its distribution
};

struct ProfilerPredictor {
  std::string name;
  PredictorSetting setting = PredictorSetting::kNone;
  double fixedValue = 0;
  DistributionSpecification specification;  // with its truncation
  // The range of the data, as guidance for people; NaN if it is not known.
  double lowest = std::numeric_limits<double>::quiet_NaN();
  double highest = std::numeric_limits<double>::quiet_NaN();
  // The range of numbers that its models declare as valid, if they have no prediction for others. Distributions
  // that are taken from the data are truncated to it.
  double lowestAllowed = -std::numeric_limits<double>::infinity();
  double highestAllowed = std::numeric_limits<double>::infinity();
  // The parts of that range, ascending, where it has gaps; a distribution that keeps to them is drawn from as it is
  // within them.
  std::vector<NumberRange> parts;
  bool keepsToParts = false;
  // The numbers that its models list, if they have no prediction for others; else none.
  std::set<double> listed;
  // Of a predictor of texts, the text of each value: 1, 2, … as in the first model that has them, or in the
  // data where no model lists any. Specified, fixed and simulated values represent these texts. Of truth
  // values that the data hold as texts, the texts of 0 and 1.
  std::map<double, std::string> labels;
  bool holdsTexts = false;
  bool takesAnyText = false;  // neither a model nor the data list its texts
  bool categorical = false;

  bool IsRandom() const { return setting == PredictorSetting::kRandom; }
  // What lies between the parts that its distribution keeps to.
  std::vector<NumberRange> Gaps() const;
};

struct ProfilerDependent {
  std::string name;
  // The model that predicts it; null if it has none.
  std::shared_ptr<const PredictionModel> model;
  // Takes precedence over the model; empty if there is none. The expression alone: "A + 2*B".
  std::string formula;
  // The earlier formulas, the latest last: undoing a formula returns to it.
  std::vector<std::string> formerFormulas;
  bool addNoise = false;
  double standardDeviation = kNotSet;    // of the noise
  SpecificationLimits limits;            // NaN if not given
  std::map<double, std::string> labels;  // of the model's classes

  // A formula predicts numbers.
  bool HoldsTexts() const { return formula.empty() && !labels.empty(); }
};

struct ProfilerDesign {
  std::vector<ProfilerPredictor> predictors;  // in the order in which they were first met
  std::vector<ProfilerDependent> dependents;
  // Predictors that nothing reads any more, with what a person specified; they return under their names.
  std::vector<ProfilerPredictor> retired;
  std::int32_t runs = kUsualProfilerRuns;
  bool seeded = false;
  std::int32_t seed = 1000;
  bool simulateCorrelations = false;
  // Row-major, symmetric with unit diagonal: of the predictors, and of the noise of the dependents.
  std::vector<double> correlations;
  std::vector<double> correlationsY;

  // With one dependent noise is drawn for it alone, with several jointly for those that have any.
  bool IsNoiseMultivariate() const { return dependents.size() > 1; }
  std::optional<std::size_t> FindPredictor(std::string_view name) const;
  std::optional<std::size_t> FindDependent(std::string_view name) const;
  // Appends one, uncorrelated with the others, and returns its place.
  std::size_t AddPredictor(ProfilerPredictor predictor);
  std::size_t AddDependent(ProfilerDependent dependent);
  // Takes a predictor and its correlations out.
  void RetirePredictor(std::size_t place);
};

// The names of predictors, or of dependents.
template <class Item>
std::vector<std::string> NamesOf(const std::vector<Item>& items) {
  std::vector<std::string> names;
  for (const Item& item : items) names.push_back(item.name);
  return names;
}

}  // namespace brenvolt::sra
