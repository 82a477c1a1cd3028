// The standard normal distribution, on which the normal, its relatives and the random stream stand.
//
// The quantile and the logarithm in it use only +, -, *, /, square root and the bits of a double, so that the
// same operations on vectors give the same bits as here. Inline, since all of this is the innermost part of
// loops.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

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

// P(Z <= z) = erfc(-z / sqrt 2) / 2. The rounding error e of the argument t of erfc would show as 2 t e in
// the result, so it is carried along: erfc(t + e) = erfc(t) - 2 e exp(-t^2) / sqrt(pi), with exp(-t^2) =
// exp(-z^2 / 2). Relative error below 1e-15 in the body, 1e-14 at 1e-300.
inline double StandardNormalCdf(double z) {
  constexpr double kHigh = std::numbers::sqrt2 / 2.0;
  constexpr double kLow = -4.8336466567264567e-17;  // sqrt(1/2) - kHigh
  constexpr double kReach = 40.0;                   // P(Z <= -40) is below the smallest double
  if (z < -kReach) return 0.0;
  if (z > kReach) return 1.0;
  const double t = -z * kHigh;
  const double error = std::fma(-z, kHigh, -t) - z * kLow;
  return 0.5 * std::erfc(t) - std::numbers::inv_sqrtpi * error * std::exp(-0.5 * z * z);
}

// ln x for positive finite x: x = 2^k m with m in [sqrt(1/2), sqrt 2), ln m = 2 artanh s by its series.
inline double BitwiseLog(double x) {
  constexpr double kSmallestNormal = std::numeric_limits<double>::min();
  constexpr std::uint64_t kSqrtHalfBits = 0x3FE6A09E667F3BCDULL;
  constexpr int kMantissaBits = 52;
  const bool isSubnormal = x < kSmallestNormal;
  const auto bits = std::bit_cast<std::uint64_t>(isSubnormal ? x * 0x1p54 : x);
  const std::uint64_t shifted = bits - kSqrtHalfBits;
  const auto exponent = static_cast<std::int64_t>(shifted) >> kMantissaBits;
  const double m = std::bit_cast<double>(bits - (static_cast<std::uint64_t>(exponent) << kMantissaBits));
  const double k = static_cast<double>(exponent) - (isSubnormal ? 54.0 : 0.0);

  const double s = (m - 1.0) / (m + 1.0);
  const double s2 = s * s;
  double series = 1.0 / 23.0;
  for (int odd = 21; odd >= 3; odd -= 2) series = series * s2 + 1.0 / odd;
  // 2 s = f - s f with f = m - 1 exact, which keeps the leading part free of the division's rounding.
  const double f = m - 1.0;
  const double rest = 2.0 * s * s2 * series - s * f;
  return k * kLogTwoHigh + (f + (rest + k * kLogTwoLow));
}

// The z <= 0 with P(Z <= z) = p, for 0 < p <= 1/2. Wichura (1988), algorithm AS 241, routine PPND16.
inline double StandardNormalLowerQuantile(double p) {
  constexpr double kA[] = {2.5090809287301226727e+3, 3.3430575583588128105e+4, 6.7265770927008700853e+4,
                           4.5921953931549871457e+4, 1.3731693765509461125e+4, 1.9715909503065514427e+3,
                           1.3314166789178437745e+2, 3.3871328727963666080e+0};
  constexpr double kB[] = {
      5.2264952788528545610e+3, 2.8729085735721942674e+4, 3.9307895800092710610e+4, 2.1213794301586595867e+4,
      5.3941960214247511077e+3, 6.8718700749205790830e+2, 4.2313330701600911252e+1, 1.0};
  constexpr double kC[] = {7.74545014278341407640e-4, 2.27238449892691845833e-2, 2.41780725177450611770e-1,
                           1.27045825245236838258e+0, 3.64784832476320460504e+0, 5.76949722146069140550e+0,
                           4.63033784615654529590e+0, 1.42343711074968357734e+0};
  constexpr double kD[] = {1.05075007164441684324e-9, 5.47593808499534494600e-4,
                           1.51986665636164571966e-2, 1.48103976427480074590e-1,
                           6.89767334985100004550e-1, 1.67638483018380384940e+0,
                           2.05319162663775882187e+0, 1.0};
  constexpr double kE[] = {2.01033439929228813265e-7, 2.71155556874348757815e-5, 1.24266094738807843860e-3,
                           2.65321895265761230930e-2, 2.96560571828504891230e-1, 1.78482653991729133580e+0,
                           5.46378491116411436990e+0, 6.65790464350110377720e+0};
  constexpr double kF[] = {2.04426310338993978564e-15, 1.42151175831644588870e-7,
                           1.84631831751005468180e-5,  7.86869131145613259100e-4,
                           1.48753612908506148525e-2,  1.36929880922735805310e-1,
                           5.99832206555887937690e-1,  1.0};
  const auto ratio = [](const double(&upper)[8], const double(&lower)[8], double r) {
    double above = upper[0];
    double below = lower[0];
    for (int i = 1; i < 8; ++i) {
      above = above * r + upper[i];
      below = below * r + lower[i];
    }
    return above / below;
  };

  const double q = p - 0.5;
  if (q >= -0.425) return q * ratio(kA, kB, 0.180625 - q * q);
  const double r = std::sqrt(-BitwiseLog(p));
  return r <= 5.0 ? -ratio(kC, kD, r - 1.6) : -ratio(kE, kF, r - 5.0);
}

// The z with P(Z <= z) = p, for 0 <= p <= 1.
inline double StandardNormalQuantile(double p) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const bool isLower = p <= 0.5;
  const double tail = isLower ? p : 1.0 - p;
  const double z = tail > 0.0 ? StandardNormalLowerQuantile(tail) : -kInfinity;
  return isLower ? z : -z;
}

// The normal deviate of a uniform deviate u, a multiple of 2^-53 in [0, 1): the quantile at u + 2^-54, the
// centre of the cell that u stands for, hence finite and symmetric. The centre is formed in the nearer tail,
// where it is exact.
inline double NormalFromUniform(double u) {
  const bool isLower = u < 0.5;
  const double z = StandardNormalLowerQuantile(isLower ? u + 0x1p-54 : (1.0 - u) - 0x1p-54);
  return isLower ? z : -z;
}

}  // namespace brenvolt
