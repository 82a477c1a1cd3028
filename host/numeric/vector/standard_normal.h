// The standard normal distribution, on which the normal, its relatives and the random stream are built.
//
// The functions are those of vector_forms.h at one value; array forms give the same bits.
#pragma once

#include <cmath>

namespace brenvolt {

inline constexpr double kInverseSqrtTwoPi = 0.39894228040143267794;
inline constexpr double kLogSqrtTwoPi = 0.91893853320467274178;
// ln 2 in two parts; the first has 21 trailing zero bits, so that its product with any exponent is exact.
inline constexpr double kLogTwoHigh = 6.93147180369123816490e-01;
inline constexpr double kLogTwoLow = 1.90821492927058770002e-10;

// exp(-z^2 / 2), the rounding of the square made good.
inline double ExpMinusHalfSquare(double z) {
  const double square = z * z;
  const double rest = std::fma(z, z, -square);
  const double main = std::exp(-0.5 * square);
  return main > 0.0 ? main * (1.0 - 0.5 * rest) : 0.0;
}

// P(Z <= z). Held to the reference tables: 1e-13 relative in the body, 1e-10 down to 1e-300.
double StandardNormalCdf(double z);

// The z with P(Z <= z) = p, for 0 <= p <= 1.
double StandardNormalQuantile(double p);

// The normal deviate of a uniform deviate u, a multiple of 2^-53 in [0, 1): the quantile at u + 2^-54, the
// centre of the cell that u represents, hence finite and symmetric.
double NormalFromUniform(double u);

}  // namespace brenvolt
