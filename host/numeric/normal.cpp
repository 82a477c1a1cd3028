// The normal distribution: z = (x - location) / scale, taken once.
#include "host/numeric/law_forms.h"
#include "host/numeric/standard_normal.h"

namespace brenvolt::normal {

bool IsValid(double location, double scale) {
  return std::isfinite(location) && IsPositiveFinite(scale);
}

namespace {

auto CdfFormula(double location, double scale) {
  return [=](double x) { return StandardNormalCdf((x - location) / scale); };
}

auto QuantileFormula(double location, double scale) {
  return [=](double p) { return location + scale * StandardNormalQuantile(p); };
}

}  // namespace

double Density(double x, double location, double scale) {
  return ProbabilityAt(IsValid(location, scale), x, [=](double at) {
    return ExpMinusHalfSquare((at - location) / scale) * kInverseSqrtTwoPi / scale;
  });
}

double LogDensity(double x, double location, double scale) {
  return ProbabilityAt(IsValid(location, scale), x, [=](double at) {
    const double z = (at - location) / scale;
    return -0.5 * z * z - std::log(scale) - kLogSqrtTwoPi;
  });
}

double Cdf(double x, double location, double scale) {
  return ProbabilityAt(IsValid(location, scale), x, CdfFormula(location, scale));
}

double Complement(double x, double location, double scale) {
  return ProbabilityAt(IsValid(location, scale), x,
                       [=](double at) { return StandardNormalCdf((location - at) / scale); });
}

double Quantile(double p, double location, double scale) {
  return QuantileAt(IsValid(location, scale), p, QuantileFormula(location, scale));
}

double ComplementQuantile(double q, double location, double scale) {
  return QuantileAt(IsValid(location, scale), q,
                    [=](double tail) { return location - scale * StandardNormalQuantile(tail); });
}

void Cdf(std::span<const double> x, double location, double scale, std::span<double> out) {
  ProbabilitiesAt(IsValid(location, scale), x, out, CdfFormula(location, scale));
}

void Quantile(std::span<const double> p, double location, double scale, std::span<double> out) {
  QuantilesAt(IsValid(location, scale), p, out, QuantileFormula(location, scale));
}

}  // namespace brenvolt::normal
