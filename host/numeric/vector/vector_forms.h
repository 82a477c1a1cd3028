// The innermost formulas, as scalars and over arrays, on the widest vectors that the machine offers.
//
// Every formula has one source, written for any number of lanes; the scalar form runs it on one lane. It uses
// only operations that IEEE 754 rounds correctly (+, -, *, /, square root, comparisons and bits), never a
// fused multiply-add. So scalar and array forms give the same bits, on every instruction set.
//
// Arrays: `out` has the length of the input at least and may be the input itself. Parameters are taken as
// valid; callers check them.
#pragma once

#include <cstdint>
#include <span>

namespace brenvolt::elementary {

// The functions of the mathematical library, correct to about one unit in the last place, with its values for
// zeros, infinities, NaN and arguments outside the domain.
double Exp(double x);
double Log(double x);
void Exp(std::span<const double> x, std::span<double> out);
void Log(std::span<const double> x, std::span<double> out);
void Log1p(std::span<const double> x, std::span<double> out);

}  // namespace brenvolt::elementary

namespace brenvolt::vector_forms {

// The normal distribution function and quantile: NaN in, NaN out; kInvalidQuantile for a p outside [0, 1]. The other
// distributions have theirs beside their formulas.
double NormalCdf(double x, double location, double scale);
void NormalCdf(std::span<const double> x, double location, double scale, std::span<double> out);
double NormalQuantile(double p, double location, double scale);
void NormalQuantile(std::span<const double> p, double location, double scale, std::span<double> out);

// sd times the normal deviate of each uniform deviate; see NormalFromUniform.
void NormalsFromUniforms(std::span<const double> u, double sd, std::span<double> out);
// The same plus a location.
void NormalsFromUniforms(std::span<const double> u, double sd, double location, std::span<double> out);

// Probabilities that uniform deviates represent.
struct ProbabilityRange {
  double lower = 0;  // the probability of 0
  double width = 1;  // of the range, or of one of its strata of equal probability
  double least = 0;  // replaces `lower`, and what rounding leads below it
  double most = 1;   // rounding leads not above this
};
// out[i] = lower + u[i] width.
void ProbabilitiesInRange(std::span<const double> u, const ProbabilityRange& range, std::span<double> out);
// out[i] = lower + strata[i] width + u[i] width, strata counted from 0. `out` may be `strata`.
void ProbabilitiesInStrata(std::span<const double> u, std::span<const std::int32_t> strata,
                           const ProbabilityRange& range, std::span<double> out);
void ProbabilitiesInStrata(std::span<const double> u, std::span<const double> strata,
                           const ProbabilityRange& range, std::span<double> out);

// The uniform deviates of the Philox 4x32-10 blocks firstBlock, firstBlock + 1, … under a key, two of each
// block. `out` has an even length. Layout: random_stream.cpp.
void PhiloxUniforms(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, std::span<double> out);
// The same of the first or the second half of each block alone; `out` has any length.
void PhiloxHalves(std::uint32_t key0, std::uint32_t key1, std::uint64_t firstBlock, bool second,
                  std::span<double> out);

}  // namespace brenvolt::vector_forms
