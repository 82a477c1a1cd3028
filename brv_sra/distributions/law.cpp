#include "brv_sra/distributions/law.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "host/numeric/distributions.h"

namespace brenvolt::sra {
namespace {

using In = std::span<const double>;
using Out = std::span<double>;

// The functions of a type over its values in catalogue order.
struct LawFunctions {
  std::size_t valueCount;  // 0: repeated groups
  bool (*isValid)(In values);
  double (*density)(double x, In values, double offset);
  double (*logDensity)(double x, In values, double offset);
  double (*cdf)(double x, In values, double offset);
  double (*complement)(double x, In values, double offset);
  double (*quantile)(double p, In values, double offset);
  double (*complementQuantile)(double q, In values, double offset);
  void (*densities)(In x, In values, double offset, Out out);
  void (*logDensities)(In x, In values, double offset, Out out);
  void (*cdfs)(In x, In values, double offset, Out out);
  void (*complements)(In x, In values, double offset, Out out);
  void (*quantiles)(In p, In values, double offset, Out out);
  void (*complementQuantiles)(In q, In values, double offset, Out out);
};

// How a type's functions take their values: `kCount` single ones, followed by the offset or not; or all as
// one span.
enum class Shape { kPlain, kWithOffset, kGroups };

template <Shape kShape, std::size_t kCount, class Call>
auto Spread(In values, double offset, const Call& call) {
  if constexpr (kShape == Shape::kGroups) {
    return call(values);
  } else {
    return [&]<std::size_t... index>(std::index_sequence<index...>) {
      if constexpr (kShape == Shape::kWithOffset) {
        return call(values[index]..., offset);
      } else {
        return call(values[index]...);
      }
    }
    (std::make_index_sequence<kCount>());
  }
}

// NOLINTBEGIN(cppcoreguidelines-macro-usage): overloads cannot be passed as template arguments by name alone
#define BRENVOLT_LAW_SCALAR(ns, function)                                                            \
  [](double x, In values, double offset) {                                                           \
    return Spread<kShape, kCount>(values, offset, [&](auto... p) { return ns::function(x, p...); }); \
  }
#define BRENVOLT_LAW_ARRAY(ns, function)                                                    \
  [](In x, In values, double offset, Out out) {                                             \
    Spread<kShape, kCount>(values, offset, [&](auto... p) { ns::function(x, p..., out); }); \
  }
#define BRENVOLT_LAW(ns, shape, count)                                                                    \
  [] {                                                                                                    \
    constexpr Shape kShape = shape;                                                                       \
    constexpr std::size_t kCount = count;                                                                 \
    constexpr Shape kOwnValues = kShape == Shape::kWithOffset ? Shape::kPlain : kShape;                   \
    return LawFunctions{kCount,                                                                           \
                        [](In values) {                                                                   \
                          return Spread<kOwnValues, kCount>(values, 0.0,                                  \
                                                            [](auto... p) { return ns::IsValid(p...); }); \
                        },                                                                                \
                        BRENVOLT_LAW_SCALAR(ns, Density),                                                 \
                        BRENVOLT_LAW_SCALAR(ns, LogDensity),                                              \
                        BRENVOLT_LAW_SCALAR(ns, Cdf),                                                     \
                        BRENVOLT_LAW_SCALAR(ns, Complement),                                              \
                        BRENVOLT_LAW_SCALAR(ns, Quantile),                                                \
                        BRENVOLT_LAW_SCALAR(ns, ComplementQuantile),                                      \
                        BRENVOLT_LAW_ARRAY(ns, Density),                                                  \
                        BRENVOLT_LAW_ARRAY(ns, LogDensity),                                               \
                        BRENVOLT_LAW_ARRAY(ns, Cdf),                                                      \
                        BRENVOLT_LAW_ARRAY(ns, Complement),                                               \
                        BRENVOLT_LAW_ARRAY(ns, Quantile),                                                 \
                        BRENVOLT_LAW_ARRAY(ns, ComplementQuantile)};                                      \
  }()

const LawFunctions& FunctionsOf(DistributionCode code) {
  static const std::array<LawFunctions, kDistributionCount> kLaws = {
      BRENVOLT_LAW(normal, Shape::kPlain, 2),
      BRENVOLT_LAW(lognormal, Shape::kWithOffset, 2),
      BRENVOLT_LAW(folded_normal, Shape::kWithOffset, 2),
      BRENVOLT_LAW(half_normal, Shape::kWithOffset, 1),
      BRENVOLT_LAW(rayleigh, Shape::kWithOffset, 1),
      BRENVOLT_LAW(weibull, Shape::kWithOffset, 2),
      BRENVOLT_LAW(gaussian_mixture, Shape::kGroups, 0),
      BRENVOLT_LAW(johnson, Shape::kPlain, 5),
      BRENVOLT_LAW(gev, Shape::kPlain, 3),
      BRENVOLT_LAW(gpd, Shape::kWithOffset, 2),
      BRENVOLT_LAW(triangular, Shape::kPlain, 3),
      BRENVOLT_LAW(binomial, Shape::kPlain, 2),
      BRENVOLT_LAW(poisson, Shape::kPlain, 1),
      BRENVOLT_LAW(geometric, Shape::kPlain, 1),
      BRENVOLT_LAW(bernoulli, Shape::kPlain, 1),
      BRENVOLT_LAW(histogram, Shape::kGroups, 0)};
  return kLaws[static_cast<std::size_t>(code)];
}

#undef BRENVOLT_LAW
#undef BRENVOLT_LAW_ARRAY
#undef BRENVOLT_LAW_SCALAR
// NOLINTEND(cppcoreguidelines-macro-usage)

// Too few values for a type are invalid, whatever they are.
bool HasItsValues(const LawFunctions& functions, In values) {
  return functions.valueCount == 0 || values.size() == functions.valueCount;
}

}  // namespace

Law::Law(const DistributionSpecification& specification)
    : Law(specification.code, specification.values, specification.offset) {}

Law::Law(DistributionCode code, std::span<const double> values, double offset)
    : code_(code), values_(values), offset_(IsNotSet(offset) ? 0.0 : offset) {}

bool Law::IsValid() const {
  const LawFunctions& functions = FunctionsOf(code_);
  return HasItsValues(functions, values_) && functions.isValid(values_) && std::isfinite(offset_);
}

namespace {

double Evaluate(double (*LawFunctions::*function)(double, In, double), DistributionCode code, double x,
                In values, double offset, double invalid) {
  const LawFunctions& functions = FunctionsOf(code);
  return HasItsValues(functions, values) ? (functions.*function)(x, values, offset) : invalid;
}

}  // namespace

double Law::Density(double x) const {
  return Evaluate(&LawFunctions::density, code_, x, values_, offset_, kInvalidProbability);
}
double Law::LogDensity(double x) const {
  return Evaluate(&LawFunctions::logDensity, code_, x, values_, offset_, kInvalidProbability);
}
double Law::Cdf(double x) const {
  return Evaluate(&LawFunctions::cdf, code_, x, values_, offset_, kInvalidProbability);
}
double Law::Complement(double x) const {
  return Evaluate(&LawFunctions::complement, code_, x, values_, offset_, kInvalidProbability);
}
double Law::Quantile(double p) const {
  return Evaluate(&LawFunctions::quantile, code_, p, values_, offset_, kInvalidQuantile);
}
double Law::ComplementQuantile(double q) const {
  return Evaluate(&LawFunctions::complementQuantile, code_, q, values_, offset_, kInvalidQuantile);
}

namespace {

void EvaluateAll(void (*LawFunctions::*function)(In, In, double, Out), DistributionCode code, In x, In values,
                 double offset, double invalid, Out out) {
  const LawFunctions& functions = FunctionsOf(code);
  if (HasItsValues(functions, values)) return (functions.*function)(x, values, offset, out);
  std::fill_n(out.begin(), x.size(), invalid);
}

}  // namespace

void Law::Density(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::densities, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::LogDensity(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::logDensities, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::Cdf(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::cdfs, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::Complement(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::complements, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::Quantile(std::span<const double> p, std::span<double> out) const {
  EvaluateAll(&LawFunctions::quantiles, code_, p, values_, offset_, kInvalidQuantile, out);
}
void Law::ComplementQuantile(std::span<const double> q, std::span<double> out) const {
  EvaluateAll(&LawFunctions::complementQuantiles, code_, q, values_, offset_, kInvalidQuantile, out);
}

}  // namespace brenvolt::sra
