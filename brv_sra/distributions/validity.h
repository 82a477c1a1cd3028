// Whether values make a distribution.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

// Who asks: a number of trials has a fault of its own in a simulation.
enum class CheckPurpose : std::uint8_t { kEntry, kSimulation };

// Why a set of values is not valid, and which value it is about (an index into `values`, or the number of
// values for the offset and for a rule about all values together).
struct ValidityFault {
  Fault fault;
  std::size_t valueIndex;
};
// Nothing when the values are valid, otherwise the first fault in the order of the values. The rules:
//
// - Each parameter is given (not kNotSet) and in the range of the distribution's facts.
// - A distribution holds exactly its values; the last group of a user-defined one is complete.
// - Triangular: minimum <= mode <= maximum; all three may be equal.
// - Histogram: the proportions add up to 1 within kTotalTolerance; no class at all adds up to 0.
// - Gaussian mixture: kFewestMixtures to kMostMixtures components; the coefficients add up to 1 within kTotalTolerance.
//
// A proportion that is given but out of range, totals, component counts and, in a simulation, numbers of trials
// have a fault of their own; every other one is an invalid parameter.
std::optional<ValidityFault> CheckValues(DistributionCode code, std::span<const double> values,
                                         CheckPurpose purpose = CheckPurpose::kEntry);
// The rule about one value alone, by its index.
std::optional<ValidityFault> CheckValue(DistributionCode code, std::size_t index, double value,
                                        CheckPurpose purpose = CheckPurpose::kEntry);
// The same as CheckValues including the offset of distributions that have one: it must be given and finite.
std::optional<ValidityFault> CheckSpecification(const DistributionSpecification& specification,
                                                CheckPurpose purpose = CheckPurpose::kEntry);

}  // namespace brenvolt::sra
