#include "brv_sra/profiler/profiler_run.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <string>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/profiler/profiler_prediction.h"
#include "brv_sra/simulation/correlation_induction.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/analysis/analysis_memory.h"
#include "host/base/parallel.h"
#include "host/base/quoted.h"
#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {
namespace {

using enum FaultIdentifier;

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kRowsPerCopy = 4096;

bool IsCorrelated(const ProfilerDesign& design) {
  return design.simulateCorrelations &&
         std::ranges::count_if(design.predictors, &ProfilerPredictor::IsRandom) > 1;
}

// The random predictors as a design of the simulation.
SimulationDesign DesignOfDraws(const ProfilerDesign& design, std::vector<std::size_t>& places) {
  SimulationDesign draws;
  for (std::size_t j = 0; j < design.predictors.size(); ++j) {
    const ProfilerPredictor& predictor = design.predictors[j];
    if (!predictor.IsRandom()) continue;
    places.push_back(j);
    draws.variables.push_back({static_cast<int>(j + 1), predictor.name, predictor.specification, {}});
  }
  draws.numberOfSamples = design.runs;
  const bool correlated = IsCorrelated(design);
  draws.method = correlated ? SimulationMethod::kLatinHypercubeImanConover : SimulationMethod::kMonteCarlo;
  if (!correlated) return draws;
  const std::size_t m = design.predictors.size();
  for (const std::size_t i : places) {
    for (const std::size_t j : places) draws.correlations.push_back(design.correlations[i * m + j]);
  }
  return draws;
}

// The dependents that noise moves: those with the choice and a deviation above 0.
std::vector<std::size_t> Noisy(const ProfilerDesign& design) {
  std::vector<std::size_t> noisy;
  for (std::size_t k = 0; k < design.dependents.size(); ++k) {
    const ProfilerDependent& dependent = design.dependents[k];
    if (dependent.addNoise && dependent.standardDeviation > 0) noisy.push_back(k);
  }
  return noisy;
}

// The lower triangular L of the noise's covariance matrix L L', over the given dependents; empty if that
// is singular.
std::vector<double> NoiseFactor(const ProfilerDesign& design, std::span<const std::size_t> noisy) {
  const std::size_t d = design.dependents.size();
  std::vector<double> covariance;
  for (const std::size_t i : noisy) {
    for (const std::size_t j : noisy) {
      covariance.push_back(design.dependents[i].standardDeviation * design.correlationsY[i * d + j] *
                           design.dependents[j].standardDeviation);
    }
  }
  if (!Cholesky(covariance, noisy.size())) return {};
  return covariance;
}

Result<void> CheckPredictors(const ProfilerDesign& design) {
  for (const ProfilerPredictor& predictor : design.predictors) {
    if (predictor.setting == PredictorSetting::kFixed && !std::isfinite(predictor.fixedValue))
      return Fault{kFixedValueNotFinite, predictor.name};
    if (!predictor.IsRandom()) continue;
    if (auto fault = CheckSpecification(predictor.specification, CheckPurpose::kSimulation))
      return CausedBy(std::move(fault->fault), kInvalidPredictor, predictor.name);
  }
  std::vector<std::size_t> places;
  return CheckSampling(DesignOfDraws(design, places));
}

// A name in a formula that nothing is known of is the formula's fault; a model's predictor is its own.
Result<void> CheckPrediction(const ProfilerDesign& design, const ProfilerPrediction& prediction,
                             std::size_t k) {
  const ProfilerDependent& dependent = design.dependents[k];
  if (!prediction.IsPredicted(k)) return Fault{kNothingPredicts, dependent.name};
  for (const std::size_t j : prediction.ReadBy(k)) {
    const ProfilerPredictor& predictor = design.predictors[j];
    if (predictor.setting != PredictorSetting::kNone) continue;
    if (dependent.formula.empty())
      return Fault{kModelPredictorUnspecified, predictor.name, dependent.model->Name()};
    return Fault{kFormulaPredictorUnspecified, dependent.name, predictor.name};
  }
  return {};
}

// Whether each model can read what others predict.
Result<void> CheckChains(const ProfilerDesign& design) {
  for (const ProfilerDependent& dependent : design.dependents) {
    if (!dependent.formula.empty() || dependent.model == nullptr) continue;
    for (const ModelField& field : dependent.model->Predictors()) {
      const auto place = field.isUsed ? design.FindDependent(field.name) : std::nullopt;
      if (place && design.dependents[*place].HoldsTexts() != field.isText)
        return Fault{kFieldTypesDiffer, field.name};
    }
  }
  return {};
}

// The dependent, of which its name is known alone.
ProfilerDependent WithoutPrediction(ProfilerDependent dependent) {
  dependent.model = nullptr;
  dependent.formula.clear();
  return dependent;
}

Result<void> CheckPredictions(const ProfilerDesign& design) {
  // One formula after the other, so that the fault has its dependent.
  ProfilerDesign one = design;
  for (std::size_t k = 0; k < design.dependents.size(); ++k) {
    const ProfilerDependent& dependent = design.dependents[k];
    for (ProfilerDependent& other : one.dependents) other = WithoutPrediction(other);
    one.dependents[k] = dependent;
    try {
      if (auto checked = CheckPrediction(one, ProfilerPrediction(one), k); !checked) return checked;
    } catch (const FormulaError& error) {
      return Fault{kFormulaInvalid, dependent.name, error.Where() + ": " + error.what()};
    }
  }
  const auto circular = ProfilerPrediction(design).PredictedFromItself();
  return circular ? Result<void>(Fault{kPredictedFromItself, design.dependents[*circular].name})
                  : Result<void>();
}

Result<void> CheckNoise(const ProfilerDesign& design) {
  for (const ProfilerDependent& dependent : design.dependents) {
    const double deviation = dependent.standardDeviation;
    if (dependent.addNoise && !(std::isfinite(deviation) && deviation >= 0))  // kNotSet is negative
      return Fault{kInvalidNoise, dependent.name};
  }
  const std::vector<std::size_t> noisy = Noisy(design);
  if (design.IsNoiseMultivariate() && !noisy.empty() && NoiseFactor(design, noisy).empty())
    return Fault{kSingularNoise};
  return {};
}

// Draws from a distribution within its truncation become draws from it within the parts of its predictor's range, in
// the same order: each keeps its probability, as a share of that of the parts.
void KeepToParts(const ProfilerPredictor& predictor, std::span<double> column) {
  constexpr double kLeast = std::numeric_limits<double>::min();
  constexpr double kMost = 1 - std::numeric_limits<double>::epsilon() / 2;
  const DistributionSpecification& specification = predictor.specification;
  const SpecifiedDistribution distribution(specification);
  const double lowest = specification.truncateBelow ? specification.truncationMinimum : -kInfinity;
  const double highest = specification.truncateAbove ? specification.truncationMaximum : kInfinity;
  const auto below = [&](double x) { return std::isinf(x) ? (x > 0 ? 1.0 : 0.0) : distribution.Cdf(x); };
  double all = 0;
  for (const NumberRange& part : predictor.parts) all += below(part.high) - below(part.low);
  const double first = below(lowest);
  const double whole = below(highest) - first;
  if (!(all > 0 && whole > 0)) return;
  for (double& x : column) {
    double rest = (distribution.Cdf(x) - first) / whole * all;
    for (const NumberRange& part : predictor.parts) {
      const double begin = below(part.low);
      const double share = below(part.high) - begin;
      const bool isLast = &part == &predictor.parts.back();
      if (rest > share && !isLast) {
        rest -= share;
        continue;
      }
      const double p = std::clamp(begin + std::min(rest, share), kLeast, kMost);
      x = std::clamp(distribution.Quantile(p), part.low, part.high);
      break;
    }
  }
}

// Random predictors from the stream into their columns; returns what became of their correlations.
Result<CorrelationInduction> DrawRandom(const ProfilerDesign& design,
                                        std::span<const std::span<double>> columns, const RunProgress& bars) {
  std::vector<std::size_t> places;
  const SimulationDesign draws = DesignOfDraws(design, places);
  const std::size_t k = places.size();
  const auto runs = static_cast<std::size_t>(design.runs);
  AnalysisArray<double> matrix(runs * k);
  Result<CorrelationInduction> induction = CorrelationInduction();
  if (InducesCorrelation(draws.method)) {
    induction = InduceRankCorrelation(draws, draws.correlations, matrix.Span(), bars);
  } else {
    const auto progress = Computing(bars, runs * k + 1);
    if (!GenerateMonteCarlo(draws, matrix.Span(), *progress)) induction = Fault{kNotSampled};
  }
  if (!induction) return induction.Reason().identifier == kNotSampled ? SamplingFault(draws) : induction;
  const std::span<const double> drawn = matrix.Span();
  ParallelBlocks(runs, kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
    for (std::size_t c = 0; c < k; ++c) {
      double* column = columns[places[c]].data();
      for (std::size_t i = begin; i < end; ++i) column[i] = drawn[i * k + c];
    }
  });
  for (const std::size_t place : places) {
    if (design.predictors[place].keepsToParts) KeepToParts(design.predictors[place], columns[place]);
  }
  return induction;
}

// Adds L z to every run, z standard normal deviates; the deviates of a run are consecutive in the stream.
void AddNoise(const ProfilerDesign& design, std::span<const std::span<double>> dependents) {
  const std::vector<std::size_t> noisy = Noisy(design);
  if (noisy.empty()) return;
  const std::size_t k = noisy.size();
  const auto runs = static_cast<std::size_t>(design.runs);
  const std::vector<double> factor = design.IsNoiseMultivariate()
                                         ? NoiseFactor(design, noisy)
                                         : std::vector<double>{design.dependents[0].standardDeviation};
  const std::uint64_t start = ProcessStreamPosition();
  AnalysisArray<double> deviates(runs * k);
  ProcessStream().FillNormal(start, 1.0, deviates.Span());
  SetProcessStreamPosition(start + runs * k);
  const std::span<const double> z = deviates.Span();
  ParallelBlocks(runs, kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      for (std::size_t row = 0; row < k; ++row) {
        double noise = 0;
        for (std::size_t c = 0; c <= row; ++c) noise += factor[row * k + c] * z[i * k + c];
        dependents[noisy[row]][i] += noise;
      }
    }
  });
}

// A column of `value`s. Its values are texts where labels are known and nothing is added to the codes.
Variable MakeColumn(const std::string& name, std::size_t runs, double value,
                    const std::map<double, std::string>& labels, bool exact) {
  Variable column(name, 0);
  column.AssignValues(std::vector<double>(runs, value));
  if (!exact || labels.empty()) return column;
  column.SetType(VariableType::kText);
  for (const auto& [code, text] : labels) column.SetLabel(code, text);
  return column;
}

std::unique_ptr<Spreadsheet> MakeOutput(const ProfilerDesign& design) {
  const auto runs = static_cast<std::size_t>(design.runs);
  auto sheet = std::make_unique<Spreadsheet>("", runs);
  for (const ProfilerPredictor& predictor : design.predictors) {
    const bool fixed = predictor.setting == PredictorSetting::kFixed;
    sheet->AddVariable(
        MakeColumn(predictor.name, runs, fixed ? predictor.fixedValue : kMissing, predictor.labels, true));
  }
  for (const ProfilerDependent& dependent : design.dependents) {
    sheet->AddVariable(MakeColumn(
        dependent.name, runs, kMissing,
        dependent.formula.empty() ? dependent.labels : std::map<double, std::string>(), !dependent.addNoise));
  }
  sheet->NumberCases();
  return sheet;
}

std::vector<std::span<double>> ColumnsFrom(Spreadsheet& sheet, std::size_t first, std::size_t count) {
  std::vector<std::span<double>> columns;
  for (std::size_t j = 0; j < count; ++j) columns.push_back(sheet.VariableAt(first + j).MutableValues());
  return columns;
}

void Seed(const ProfilerDesign& design) {
  const auto now = static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::time(nullptr)));
  SeedProcessStream(design.seeded ? design.seed : static_cast<std::int32_t>(now));
}

}  // namespace

Result<void> CheckDesign(const ProfilerDesign& design) {
  if (std::ranges::none_of(design.predictors, &ProfilerPredictor::IsRandom)) {
    // Responses that are predicted from each other alone have no predictor that could be random.
    auto checked = design.predictors.empty() ? CheckPredictions(design) : Result<void>();
    return checked ? Fault{kNoRandomPredictor} : checked;
  }
  for (const auto check : {CheckPredictors, CheckPredictions, CheckChains, CheckNoise}) {
    if (auto checked = check(design); !checked) return checked;
  }
  return {};
}

Result<ProfilerRun> RunProfiler(const ProfilerDesign& design, const RunProgress& bars) {
  if (auto checked = CheckDesign(design); !checked) return checked.Reason();
  ProfilerRun run;
  const std::size_t m = design.predictors.size();
  const std::size_t d = design.dependents.size();
  const ProfilerPrediction prediction(design);
  run.output = MakeOutput(design);
  const std::vector<std::span<double>> predictors = ColumnsFrom(*run.output, 0, m);
  const std::vector<std::span<double>> dependents = ColumnsFrom(*run.output, m, d);
  Seed(design);
  auto induction = DrawRandom(design, predictors, bars);
  if (!induction) return induction.Reason();
  run.repair = std::move(induction->repair);
  run.independent = !IsCorrelated(design);
  run.scoreCorrection = induction->scoreCorrection;
  const auto progress = Computing(bars, static_cast<std::size_t>(design.runs) * d + 1);
  progress->ShowNow();
  const std::vector<std::span<const double>> drawn(predictors.begin(), predictors.end());
  run.unpredicted = prediction.Predict(drawn, dependents, *progress);
  AddNoise(design, dependents);
  return run;
}

ProfiledColumns ColumnsOf(const Spreadsheet& output, std::size_t predictors, const ProfilerDesign& design) {
  ProfiledColumns columns;
  for (std::size_t j = 0; j < output.VariableCount(); ++j) {
    const Variable& column = output.VariableAt(j);
    if (j < predictors) {
      columns.predictors.push_back({column.Name(), column.Values()});
      continue;
    }
    const auto place = design.FindDependent(column.Name());
    columns.responses.push_back(
        {column.Name(), column.Values(), place ? design.dependents[*place].limits : SpecificationLimits()});
  }
  return columns;
}

}  // namespace brenvolt::sra
