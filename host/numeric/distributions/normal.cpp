// The normal distribution: z = (x - location) / scale, taken once.
#include "host/numeric/distributions/law_forms.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::normal {

bool IsValid(double location, double scale) {
  return std::isfinite(location) && IsPositiveFinite(scale);
}

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
  return ProbabilityAt(IsValid(location, scale), x,
                       [=](double at) { return vector_forms::NormalCdf(at, location, scale); });
}

double Complement(double x, double location, double scale) {
  return ProbabilityAt(IsValid(location, scale), x,
                       [=](double at) { return StandardNormalCdf((location - at) / scale); });
}

double Quantile(double p, double location, double scale) {
  return QuantileAt(IsValid(location, scale), p,
                    [=](double at) { return vector_forms::NormalQuantile(at, location, scale); });
}

double ComplementQuantile(double q, double location, double scale) {
  return QuantileAt(IsValid(location, scale), q,
                    [=](double tail) { return location - scale * StandardNormalQuantile(tail); });
}

void Cdf(std::span<const double> x, double location, double scale, std::span<double> out) {
  if (!IsValid(location, scale)) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::NormalCdf(x, location, scale, out);
}

void Quantile(std::span<const double> p, double location, double scale, std::span<double> out) {
  if (!IsValid(location, scale)) return FillInvalid(p.size(), kInvalidQuantile, out);
  vector_forms::NormalQuantile(p, location, scale, out);
}

void Complement(std::span<const double> x, double location, double scale, std::span<double> out) {
  if (!IsValid(location, scale)) return FillInvalid(x.size(), kInvalidProbability, out);
  vector_forms::NormalCdf(x, location, -scale, out);
}

void ComplementQuantile(std::span<const double> q, double location, double scale, std::span<double> out) {
  if (!IsValid(location, scale)) return FillInvalid(q.size(), kInvalidQuantile, out);
  vector_forms::NormalQuantile(q, location, -scale, out);
}

BRENVOLT_ARRAY_BY_SCALAR(Density, (double location, double scale), location, scale);
BRENVOLT_ARRAY_BY_SCALAR(LogDensity, (double location, double scale), location, scale);

double Mean(double location, double scale) {
  return MomentAt(IsValid(location, scale), [=] { return location; });
}

double Variance(double location, double scale) {
  return MomentAt(IsValid(location, scale), [=] { return scale * scale; });
}

}  // namespace brenvolt::normal
