// The Johnson member with given moments: which family by the side of the lognormal line on which skewness and
// kurtosis lie (Johnson 1949; Hill, Hill & Holder 1976), its shape by bracketed equations, its location and
// scale by the mean and the standard deviation. Solved for positive skewness and mirrored at the end.
#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <limits>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/johnson/johnson_bounded_moments.h"
#include "host/numeric/estimation/johnson/johnson_estimators.h"
#include "host/numeric/estimation/johnson/johnson_fit.h"

namespace brenvolt {
namespace {

constexpr double kNormalTolerance = 1e-6;  // of skewness and kurtosis
constexpr double kLineTolerance = 1e-6;    // of the kurtosis, relative
constexpr int kRootBits = 46;

// The root between two ends, or the end nearer to one where rounding hides the change of sign.
template <typename Function>
double SolveBetween(const Function& function, double low, double high) {
  const double atLow = function(low);
  const double atHigh = function(high);
  if (!(atLow * atHigh < 0.0)) return std::abs(atLow) < std::abs(atHigh) ? low : high;
  std::uintmax_t steps = 200;
  const auto bracket = boost::math::tools::toms748_solve(
      function, low, high, atLow, atHigh, boost::math::tools::eps_tolerance<double>(kRootBits), steps);
  return 0.5 * (bracket.first + bracket.second);
}

// With omega = exp(1 / delta^2) the lognormal has skewness^2 = (omega - 1)(omega + 2)^2. Returns omega - 1.
double LognormalOmegaLessOne(double skewness) {
  const double s = std::sinh(std::asinh(0.5 * skewness) / 3.0);
  return 4.0 * s * s;
}

// Excess kurtosis of the lognormal: omega^4 + 2 omega^3 + 3 omega^2 - 6, in e = omega - 1.
double LognormalKurtosis(double e) {
  return e * (16.0 + e * (15.0 + e * (6.0 + e)));
}

// Mean 0, standard deviation 1, skewness > 0.
JohnsonFit FitLognormal(double skewness) {
  const double e = LognormalOmegaLessOne(skewness);
  const double logOmega = std::log1p(e);
  const double mean = 1.0 / std::sqrt(e);
  JohnsonFit fit{JohnsonFamily::kLognormal};
  fit.delta = 1.0 / std::sqrt(logOmega);
  fit.gamma = fit.delta * (0.5 * logOmega - std::log(mean));
  fit.xi = -mean;
  return fit;
}

// Tuenter (2001), eqs. for m and omega; excess kurtosis above the lognormal line.
JohnsonFit FitUnbounded(double skewness, double kurtosis) {
  const auto mOf = [kurtosis](double e) {
    const double omega = 1.0 + e;
    return -2.0 +
           std::sqrt(4.0 + 2.0 * (omega * omega - (kurtosis + 6.0) / (omega * omega + 2.0 * omega + 3.0)));
  };
  const auto excess = [&](double e) {
    const double m = mOf(e);
    const double factor = e + 3.0 + 0.5 * m;
    return (e - m) * factor * factor - skewness * skewness;
  };
  // Between the lognormal member of this kurtosis, where m = 0, and the symmetric one.
  const double symmetric = std::sqrt(-1.0 + std::sqrt(2.0 * (kurtosis + 2.0))) - 1.0;
  double low = 0.0;
  double high = symmetric;
  for (int step = 0; step < 200 && high - low > 1e-16 * high; ++step) {
    const double middle = 0.5 * (low + high);
    (LognormalKurtosis(middle) < kurtosis ? low : high) = middle;
  }
  const double lognormal = high;
  const double e = skewness == 0.0 ? symmetric : SolveBetween(excess, lognormal, symmetric);

  const double omega = 1.0 + e;
  const double m = std::max(mOf(e), 1e-15);
  const double sinhSquared = std::max(0.0, (omega + 1.0) / (2.0 * omega) * (e / m - 1.0));
  JohnsonFit fit{JohnsonFamily::kUnbounded};
  fit.delta = 1.0 / std::sqrt(std::log1p(e));
  fit.gamma = -fit.delta * std::asinh(std::sqrt(sinhSquared));
  fit.lambda = 1.0 / std::sqrt(0.5 * e * (omega * (1.0 + 2.0 * sinhSquared) + 1.0));
  fit.xi = -fit.lambda * std::sqrt(omega * sinhSquared);
  return fit;
}

// The gamma >= 0 that gives the skewness at this delta; the farthest of use where the lognormal limit has no
// more.
double GammaOfSkewness(double skewness, double delta) {
  if (skewness == 0.0) return 0.0;
  // If the bound is beyond the reach of the fourth moment, and its effect on the values beyond the last
  // bit.
  const double farthest = 34.0 * delta + 4.0 / delta;
  double high = std::min(1.0, farthest);
  while (MomentsOfBounded(high, delta).skewness < skewness) {
    if (high >= farthest) return farthest;
    high = std::min(2.0 * high, farthest);
  }
  return SolveBetween([&](double g) { return MomentsOfBounded(g, delta).skewness - skewness; }, 0.0, high);
}

// False when the moments are too close to those of two points.
bool FitBounded(double skewness, double kurtosis, JohnsonFit& fit) {
  constexpr double kLeastDelta = 2e-3;
  const auto excess = [&](double delta) {
    return MomentsOfBounded(GammaOfSkewness(skewness, delta), delta).kurtosis - kurtosis;
  };
  // The lognormal of this skewness bounds delta; without skewness nothing does.
  double high = skewness > 0.0 ? 1.0 / std::sqrt(std::log1p(LognormalOmegaLessOne(skewness))) : 1.0;
  if (skewness == 0.0) {
    while (excess(high) < 0.0 && high < 1e5) high *= 2.0;
  }
  double low = 0.5 * high;
  while (excess(low) > 0.0) {
    high = low;
    low *= 0.5;
    if (low < kLeastDelta) return false;
  }
  const double delta = SolveBetween(excess, low, high);
  const double gamma = GammaOfSkewness(skewness, delta);
  const BoundedMoments moments = MomentsOfBounded(gamma, delta);
  fit = {JohnsonFamily::kBounded, gamma, delta, 1.0 / moments.deviation, -moments.mean / moments.deviation};
  return true;
}

// The member of -y.
JohnsonFit Mirrored(const JohnsonFit& fit) {
  JohnsonFit mirrored = fit;
  mirrored.gamma = -fit.gamma;
  mirrored.xi = fit.family == JohnsonFamily::kBounded ? -fit.xi - fit.lambda : -fit.xi;
  return mirrored;
}

bool FitStandardised(double skewness, double kurtosis, JohnsonFit& fit) {
  if (std::abs(skewness) <= kNormalTolerance && std::abs(kurtosis) <= kNormalTolerance) {
    fit = {};
    return true;
  }
  const double magnitude = std::abs(skewness);
  const double line = LognormalKurtosis(LognormalOmegaLessOne(magnitude));
  const bool isOnLine = std::abs(kurtosis - line) <= kLineTolerance * std::max(line, 1e-2);
  if (isOnLine && skewness > 0.0) {
    fit = FitLognormal(skewness);
    return true;
  }
  if (isOnLine) kurtosis = line + kLineTolerance * std::max(line, 1e-2);
  if (kurtosis > line) {
    fit = FitUnbounded(magnitude, kurtosis);
  } else if (!FitBounded(magnitude, kurtosis, fit)) {
    return false;
  }
  if (skewness < 0.0) fit = Mirrored(fit);
  return true;
}

}  // namespace

EstimationResult<JohnsonEstimate> EstimateJohnsonByMoments(double mean, double standardDeviation,
                                                           double skewness, double kurtosis) {
  const double moments[] = {mean, standardDeviation, skewness, kurtosis};
  if (estimation::IsAnyNotFinite(moments)) return Fault{EstimationFault::kNotFinite};
  if (!(standardDeviation > 0.0)) return Fault{EstimationFault::kNoSpread};
  JohnsonFit fit;
  // Of every distribution: kurtosis >= skewness^2 + 1, or 2 less in excess of the normal one.
  const bool isPossible = kurtosis > skewness * skewness - 2.0;
  if (!isPossible || !FitStandardised(skewness, kurtosis, fit)) {
    return Fault{EstimationFault::kNoSolution, FormatNumber("%.6g", skewness),
                 FormatNumber("%.6g", kurtosis)};
  }
  return InUnitsOfData(fit, mean, standardDeviation);
}

}  // namespace brenvolt
