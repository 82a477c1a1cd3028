// The triangular distribution: its density rises in a line from min to mode and falls in one to max.
#include "host/numeric/distributions/triangular.h"

#include <algorithm>
#include <cmath>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/triangular_estimator.h"

namespace brenvolt {

template <>
struct FormulasOf<Triangular> {
  double min;
  double max;
  double mode;

  bool AreConsistent() const { return min <= mode && mode <= max && std::isfinite(max - min); }

  double Width() const { return max - min; }
  double Rise() const { return mode - min; }
  double Fall() const { return max - mode; }

  double Density(double x) const {
    if (x < min || x > max) return 0.0;
    const double peak = 2.0 / Width();
    if (x < mode) return peak * ((x - min) / Rise());
    return x > mode ? peak * ((max - x) / Fall()) : peak;
  }

  double LogDensity(double x) const { return std::log(Density(x)); }

  // Sums of areas, never a difference, so that neither tail cancels where the mode lies at its end. At a single point
  // the end counts first: all of the distribution lies at or below it.
  double Cdf(double x) const {
    if (x >= max) return 1.0;
    if (x <= min) return 0.0;
    if (x < mode) return (x - min) / Width() * ((x - min) / Rise());
    return x == mode ? Rise() / Width()
                     : Rise() / Width() + (x - mode) / Width() * (((max - x) + Fall()) / Fall());
  }

  double Complement(double x) const {
    if (x >= max) return 0.0;
    if (x <= min) return 1.0;
    if (x > mode) return (max - x) / Width() * ((max - x) / Fall());
    return x == mode ? Fall() / Width()
                     : Fall() / Width() + (mode - x) / Width() * (((x - min) + Rise()) / Rise());
  }

  // The distance from an end that leaves the area p on its side, before the mode.
  double FromEnd(double p, double side) const { return std::sqrt(p) * std::sqrt(Width()) * std::sqrt(side); }

  // The distance from the mode, on a side, at which the area between is p - (Width() - side) / Width().
  double FromMode(double p, double side) const {
    const double excess = std::max(0.0, p * Width() - (Width() - side));
    return excess / (1.0 + std::sqrt(std::max(0.0, 1.0 - excess / side)));
  }

  double Quantile(double p) const {
    if (p == 0.0) return min;
    if (p == 1.0) return max;
    if (p * Width() < Rise()) return min + FromEnd(p, Rise());
    return p < 0.5 ? mode + FromMode(p, Fall()) : max - FromEnd(1.0 - p, Fall());
  }

  double ComplementQuantile(double q) const {
    if (q == 0.0) return max;
    if (q == 1.0) return min;
    if (q * Width() < Fall()) return max - FromEnd(q, Fall());
    return q < 0.5 ? mode - FromMode(q, Rise()) : min + FromEnd(1.0 - q, Rise());
  }

  double Mean() const { return min + (Width() + Rise()) / 3.0; }
  double Variance() const { return (Rise() * Width() + Fall() * Fall()) / 18.0; }

  // No standard errors: the extremes of a sample are not asymptotically normal.
  static EstimateResult Estimate(const EstimationInput& input) {
    const auto fit = EstimateTriangular(input.sorted, input.poll);
    if (!fit) return fit.Reason();
    return EstimateOfValues({fit->minimum, fit->maximum, fit->mode}, EstimateOrigin::kExtremes);
  }
};

template class Distribution<Triangular>;

}  // namespace brenvolt
