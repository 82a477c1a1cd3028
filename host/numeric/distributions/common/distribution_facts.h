// What is known of a distribution apart from its functions.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brenvolt {

// Persisted and visible to automation: the values must not change.
enum class DistributionCode : std::int32_t {
  kNormal = 0,
  kLogNormal,
  kFoldedNormal,
  kHalfNormal,
  kRayleigh,
  kWeibull,
  kGaussianMixture,
  kJohnson,
  kGeneralExtremeValue,
  kGeneralPareto,
  kTriangular,
  kBinomial,
  kPoisson,
  kGeometric,
  kBernoulli,
  kHistogram
};

inline constexpr int kDistributionCount = static_cast<int>(DistributionCode::kHistogram) + 1;
// The codes below it are continuous.
inline constexpr int kContinuousCount = static_cast<int>(DistributionCode::kBinomial);
inline constexpr int kDiscreteCount = kDistributionCount - kContinuousCount;

// What a parameter may be. No range holds an infinity or NaN.
enum class ParameterRange : std::uint8_t {
  kFinite,
  kPositive,
  kProportion,          // from 0 to 1
  kPositiveProportion,  // above 0 and up to 1
  kTrials,              // a whole number from 1 to 2^53
  kJohnsonFamily        // 1 (SL), 2 (SU), 3 (SB), 4 (SN)
};

inline bool IsInRange(double x, ParameterRange range) {
  constexpr double kMostTrials = 0x1p53;
  switch (range) {
    case ParameterRange::kFinite:
      return std::isfinite(x);
    case ParameterRange::kPositive:
      return x > 0.0 && std::isfinite(x);
    case ParameterRange::kProportion:
      return x >= 0.0 && x <= 1.0;
    case ParameterRange::kPositiveProportion:
      return x > 0.0 && x <= 1.0;
    case ParameterRange::kTrials:
      return x >= 1.0 && x <= kMostTrials && x == std::floor(x);
    case ParameterRange::kJohnsonFamily:
      return x == 1.0 || x == 2.0 || x == 3.0 || x == 4.0;
  }
  return false;
}

// The widest distance from 1 of the total of a histogram's proportions or a mixture's coefficients: above the
// rounding of twenty numbers typed with six decimals, far below a share that someone forgot to enter. The
// functions take each share relative to the total.
inline constexpr double kTotalTolerance = 2e-5;

// What the size of a parameter is to be seen against.
enum class ParameterUnit : std::uint8_t {
  kData,  // a place or a size among the data
  kLogarithmOfData,
  kNone
};

struct ParameterFacts {
  std::string_view name;
  ParameterRange range = ParameterRange::kFinite;
  ParameterUnit unit = ParameterUnit::kData;
};

// Where the formula of a curve takes the offset, a threshold that shifts the support. A list of parameters
// holds the threshold at its end, but for kFirst.
enum class OffsetPlace : std::uint8_t {
  kNone,   // the distribution has none
  kWithX,  // beside x, as x - offset
  kFirst,  // before the parameters
  kLast    // after them
};

// The names of a distribution's curves in formulas, spelled as graphs know them.
struct CurveNames {
  std::string_view density;
  std::string_view cumulative;
  std::string_view shiftedDensity = density;  // of x - offset
};

// How a likelihood over values of which some are known by bounds alone reduces a value x to a standard one.
enum class CensoredForm : std::uint8_t {
  kNone,               // the distribution is not fitted to such values
  kNormal,             // (x - location) / scale is normal
  kNormalOfLogarithm,  // (ln(x - offset) - location) / scale is
  kNormalMagnitude,    // (x - offset) / scale is the magnitude of a normal value
  kPowerHazard,        // the cumulative hazard is ((x - offset) / scale) ^ shape
  kSquareHazard,       // it is ((x - offset) / scale) ^ 2 / 2
  kExtremeValue        // ln(1 + shape (x - location) / scale) / shape is a standard extreme value
};

// What a fit costs, for callers that run several.
struct EstimationCost {
  bool copiesSample = false;
  int slowness = 0;  // the higher, the longer it takes
};

struct DistributionFacts {
  static constexpr std::size_t kMostParameters = 5;

  DistributionCode code;
  std::string_view name;              // in one word
  std::string_view longName = name;   // in the names of its functions in formulas and of automation members
  std::string_view macroName = name;  // in the constants of macros
  std::string_view shortName = {};    // by which people also call it
  std::string_view otherName = {};    // in lower case, as statistics packages have taught them
  bool isContinuous = true;
  OffsetPlace offset = OffsetPlace::kNone;
  bool isUserDefined = false;  // the parameters repeat, in any number of groups: components, classes
  std::array<ParameterFacts, kMostParameters> parameters;  // in the order of the values; of one group
  CurveNames curves{};                                     // none if steps draw it
  EstimationCost estimation{};
  CensoredForm censored = CensoredForm::kNone;

  constexpr bool HasOffset() const { return offset != OffsetPlace::kNone; }
  constexpr std::size_t ParameterCount() const {
    std::size_t count = 0;
    while (count < kMostParameters && !parameters[count].name.empty()) ++count;
    return count;
  }
};

}  // namespace brenvolt
