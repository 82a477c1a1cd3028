// Why an estimator has no estimate, and what it returns.
#pragma once

#include <cstdint>

#include "host/base/number_text.h"
#include "host/base/result.h"

namespace brenvolt {

// What a fault is about, and its detail, are numbers as ShortestNumber writes them.
enum class EstimationFault : std::uint8_t {
  kNoValues,
  kTooFewValues,        // about how many there are, the detail is how many are needed
  kValueAtOffset,       // about the offset, where the density is 0
  kValueBelowOffset,    // about the value, the detail is the offset
  kNoSpread,            // all values equal, or so nearly that the fit degenerates to a point
  kEqualPercentiles,    // the values between two of the percentiles are all equal
  kNotFinite,           // a value is NaN or infinite, or a result would be
  kNoMaximum,           // the likelihood grows towards an end of the parameters instead of having a maximum
  kNoSolution,          // no member of the family has the moments of the sample
  kTooManyComponents,   // about their number, the detail is the number of values
  kInvalidArgument,     // a number of components or a spacing of percentiles that cannot be
  kNoConvergence,       // Newton's method did not end, or its result is not positive
  kSumVanishes,         // a sum of powers is too small to divide by
  kPowerOverflows,      // a power would be too large
  kInvalidTrials,       // about the number of trials, which is below 1
  kFraction,            // about the value, where a count is needed, as are the next three
  kNegativeCount,       // about the value
  kAboveTrials,         // about the value, the detail is the number of trials
  kNeitherZeroNorOne,   // about the value
  kAllZero,             // where the distribution needs a positive mean
  kUndefinedLogarithm,  // about the value, at or below 0; the detail is the offset
  kMeansNotSet          // a first parameter that reads as no value
};

template <class T>
using EstimationResult = Result<T, EstimationFault>;

// A fault about numbers.
inline Fault<EstimationFault> FaultAbout(EstimationFault identifier, double about) {
  return {identifier, ShortestNumber(about)};
}
inline Fault<EstimationFault> FaultAbout(EstimationFault identifier, double about, double detail) {
  return {identifier, ShortestNumber(about), ShortestNumber(detail)};
}

}  // namespace brenvolt
