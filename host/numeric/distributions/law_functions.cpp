#include "host/numeric/distributions/law_functions.h"

#include <array>
#include <utility>

#include "host/numeric/distributions/distributions.h"

namespace brenvolt {
namespace {

using In = LawFunctions::In;
using Out = LawFunctions::Out;

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
#define BRENVOLT_LAW_MOMENT(ns, function)                                                        \
  [](In values, double offset) {                                                                 \
    return Spread<kShape, kCount>(values, offset, [](auto... p) { return ns::function(p...); }); \
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
                        BRENVOLT_LAW_ARRAY(ns, ComplementQuantile),                                       \
                        BRENVOLT_LAW_MOMENT(ns, Mean),                                                    \
                        BRENVOLT_LAW_MOMENT(ns, Variance)};                                               \
  }()

constexpr std::array<LawFunctions, 16> kLaws = {BRENVOLT_LAW(normal, Shape::kPlain, 2),
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

#undef BRENVOLT_LAW
#undef BRENVOLT_LAW_MOMENT
#undef BRENVOLT_LAW_ARRAY
#undef BRENVOLT_LAW_SCALAR
// NOLINTEND(cppcoreguidelines-macro-usage)

}  // namespace

std::span<const LawFunctions, 16> AllLawFunctions() {
  return kLaws;
}

}  // namespace brenvolt
