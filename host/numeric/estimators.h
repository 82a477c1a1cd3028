// Maximum-likelihood estimators of distribution parameters from one sample. Each returns 0 for success and a
// non-zero code, also stored in `error`, for failure; on failure the parameter slots hold kNotSet.
#pragma once

#include <cstdint>
#include <span>

namespace brenvolt {

enum class EstimationError : std::int32_t {
  kNone = 0,
  kTooFewValues = 1,         // fewer than two values
  kValueOutsideSupport = 2,  // a value at or below the offset
  kNoSpread = 3,             // all values equal
  kNotFinite = 4             // a value is NaN or infinite, or a result would be
};

// Normal: parameters = {mean, standard deviation}. The standard deviation is the maximum-likelihood one, with
// divisor n. `flag` is reserved and must be 0.
std::int32_t FitNormalDistribution(std::int32_t flag, std::span<const double> data,
                                   std::span<double, 2> parameters, EstimationError& error);

// Log Normal: parameters = {mean, standard deviation} of ln(x - offset), divisor n.
std::int32_t FitLognormalDistribution(std::int32_t flag, std::span<const double> data, double offset,
                                      std::span<double, 2> parameters, EstimationError& error);

}  // namespace brenvolt
