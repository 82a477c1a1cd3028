// What the fit dialogs share through the analysis object: what is to be fitted, and the results.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/specification.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/numeric/estimation/distribution_estimate.h"
#include "host/statistics/moments.h"

namespace brenvolt::sra {

enum class DeletionMode : std::int32_t {
  kPairwise = 1,  // each variable uses all of its own valid cases
  kCasewise = 2   // a case missing in any selected variable is dropped for all
};

enum class RankingCriterion : std::int32_t {
  kKolmogorovSmirnov = 1,
  kChiSquare = 2,
  kAndersonDarling = 3,
  kAkaike = 4,
  kBayes = 5
};

enum class ChiSquareBinning : std::int32_t { kEqualProbabilities = 0, kEqualIntervals = 1 };

// The place of a distribution among those of its kind, continuous or discrete.
constexpr std::size_t PlaceInKind(DistributionCode code) {
  const auto place = static_cast<std::size_t>(code);
  return place < kContinuousCount ? place : place - kContinuousCount;
}

// What is to be fitted to one variable, by PlaceInKind: nothing unless specified. What is checked for a newly
// selected variable is the dialog's choice.
struct ContinuousSpecification {
  using Offsets = std::array<double, kContinuousCount>;
  static constexpr Offsets kNoOffsets = [] {
    Offsets offsets;
    offsets.fill(kNotSet);
    return offsets;
  }();

  std::array<bool, kContinuousCount> fit{};
  Offsets offsets = kNoOffsets;  // only those of distributions that have one count
  bool johnsonByPercentiles = false;
  std::int32_t mixtures = kNotSetCount;

  bool operator==(const ContinuousSpecification&) const = default;
};

struct DiscreteSpecification {
  std::array<bool, kDiscreteCount> fit{};
  std::int32_t trials = kNotSetCount;
  bool useTrials = false;

  bool operator==(const DiscreteSpecification&) const = default;
};

// Two lists of spreadsheet variable numbers (from 1) with a specification for each entry.
struct FitSpecification {
  std::vector<std::int16_t> continuous;
  std::vector<std::int16_t> discrete;
  std::vector<ContinuousSpecification> continuousSpecifications;
  std::vector<DiscreteSpecification> discreteSpecifications;
  DeletionMode deletion = DeletionMode::kPairwise;
  RankingCriterion continuousCriterion = RankingCriterion::kKolmogorovSmirnov;
  RankingCriterion discreteCriterion = RankingCriterion::kKolmogorovSmirnov;
  ChiSquareBinning binning = ChiSquareBinning::kEqualProbabilities;
  // Whether fits that the data contradict rank behind all others and are no default for saving. By chi-square and the
  // information criteria they always do.
  bool contradictedLast = false;
  // Samples of the parametric bootstrap per distribution, 0 for none, and where its random numbers start.
  std::int32_t bootstrapSamples = 0;
  std::int32_t bootstrapSeed = 1;
};

struct TestResult {
  double statistic = kNotSet;
  double pValue = kNotSet;
};

struct ChiSquareResult {
  double statistic = kNotSet;
  std::int32_t degreesOfFreedom = kNotSetCount;
  double pValue = kNotSet;
};

// The p-values of the three tests by parametric bootstrap: the parameters are estimated again from each
// sample, as they were from the data. kNotSet if the test has no statistic or none was asked for.
struct BootstrapResult {
  double kolmogorovSmirnov = kNotSet;
  double chiSquare = kNotSet;
  double andersonDarling = kNotSet;
  std::int32_t samples = 0;  // those whose fit succeeded
};

// One distribution of one variable. The values are in catalogue order; the first is kNotSet if the fit
// failed.
struct DistributionFit {
  DistributionSpecification specification;
  EstimateOrigin origin = EstimateOrigin::kNone;          // what the values come from
  std::optional<brenvolt::Fault<EstimationFault>> fault;  // why there are none
  std::int64_t faultyCase = 0;         // of the sheet, from 1: the case of the value that the fault is about
  std::vector<double> standardErrors;  // one per value, or none if the estimator gives none
  std::vector<double> covariance;      // of the values, row by row, or none
  int estimatedParameters = 0;         // how many of the values the data determined
  // At the values; kNotSet also where a value of the sample has density 0.
  double logLikelihood = kNotSet;
  std::int64_t valuesWithoutDensity = 0;  // of the sample: those at which the density is 0
  TestResult kolmogorovSmirnov;
  ChiSquareResult chiSquare;
  TestResult andersonDarling;  // continuous distributions only
  BootstrapResult bootstrap;

  bool IsValid() const { return !specification.values.empty() && !IsNotSet(specification.values.front()); }
  // The sample cannot have come from this distribution.
  bool IsContradicted() const { return valuesWithoutDensity > 0; }
  // Akaike (1974) and Schwarz (1978), smaller is better; kNotSet without a log-likelihood.
  double Aic() const;
  double Bic(std::int64_t count) const;
};

// What is saved of a variable's fits (save_settings.h).
struct SaveSettings {
  bool selected = true;            // whether the variable takes part at all
  std::vector<std::size_t> order;  // indices into the fits, best first; none: the default order
  Truncation truncation;
  std::vector<DistributionSpecification>
      userDefined;                                 // the person's own values, each distribution at most once
  std::vector<DistributionCode> userDefinedOrder;  // none: the default order
};

struct VariableFit {
  int variableNumber = 0;
  std::string name;
  bool continuous = true;
  bool invalid = false;        // no spread, no valid case or a fault: nothing was fitted
  std::optional<Fault> fault;  // of this variable alone: an infinite value, percentiles that cannot be fitted
  Moments moments;
  std::int64_t distinctValues = 0;       // among the valid ones; 0 where nothing was fitted
  std::int32_t mixtures = kNotSetCount;  // the components taken, where those asked for were out of bounds
  std::vector<DistributionFit> fits;     // the checked distributions in the fixed order
  std::vector<std::size_t> ranked;       // indices into fits, best first
  bool contradictedLast = false;         // whether they were so ranked
  // The largest Kolmogorov-Smirnov p-value among the fits; kNotSet without one.
  double bestKolmogorovSmirnovPValue = kNotSet;
  SaveSettings saving;

  bool HasValidFit() const;
};

// The cases that a run had before it.
struct CaseCounts {
  std::int32_t input = 0;     // of the input spreadsheet
  std::int32_t accepted = 0;  // by its case selection
  bool weighted = false;      // whether case weights were in force
};

struct FitState {
  FitSpecification specification;
  // What was to be fitted when the fit started; the results belong to it.
  FitSpecification committed;
  CaseCounts cases;                  // of the results
  std::vector<VariableFit> results;  // continuous variables, then discrete ones
  std::size_t firstShown = 0;        // the first variable with a valid fit; 0 if none has
  bool saveUserDefined = false;      // save the person's own values and orders if there are any
};

inline double DistributionFit::Aic() const {
  return !IsNotSet(logLikelihood) ? 2.0 * (estimatedParameters - logLikelihood) : kNotSet;
}

inline double DistributionFit::Bic(std::int64_t count) const {
  return !IsNotSet(logLikelihood)
             ? estimatedParameters * std::log(static_cast<double>(count)) - 2.0 * logLikelihood
             : kNotSet;
}

inline bool VariableFit::HasValidFit() const {
  for (const DistributionFit& fit : fits) {
    if (fit.IsValid()) return true;
  }
  return false;
}

}  // namespace brenvolt::sra
