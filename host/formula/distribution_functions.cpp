#include "host/formula/distribution_functions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "host/numeric/distributions/distributions.h"

namespace brenvolt {
namespace {

template <std::size_t>
using Real = double;

// Calls a distribution's functions with their parameters from an array.
template <class Places>
struct Unpacked;
template <std::size_t... kPlaces>
struct Unpacked<std::index_sequence<kPlaces...>> {
  using Scalar = double(double, Real<kPlaces>...);
  using Array = void(std::span<const double>, Real<kPlaces>..., std::span<double>);
  static double Call(Scalar* function, double x, const double* p) { return function(x, p[kPlaces]...); }
  static void Call(Array* function, std::span<const double> x, const double* p, std::span<double> out) {
    function(x, p[kPlaces]..., out);
  }
};
template <std::size_t kParameters>
using WithParameters = Unpacked<std::make_index_sequence<kParameters>>;

enum class Answer : std::uint8_t { kProbability, kQuantile };

// A type's sentinels become missing values.
template <Answer kAnswer>
double OrMissing(double value) {
  const bool invalid = kAnswer == Answer::kQuantile ? value == kInvalidQuantile : IsNotSet(value);
  return invalid ? kMissingResult : value;
}

// The kernel of a function whose array form takes the parameters once; the scalar form serves parameters that
// change from case to case. Parameters that are left out are 0.
template <std::size_t kParameters, Answer kAnswer, typename WithParameters<kParameters>::Scalar* kScalar,
          typename WithParameters<kParameters>::Array* kArray>
void Kernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  using Functions = WithParameters<kParameters>;
  const BlockArgument x = arguments[0];
  const auto given = arguments.subspan(1);
  std::array<double, kParameters> values{};
  const auto gather = [&](std::size_t i) {
    for (std::size_t p = 0; p < given.size(); ++p) values[p] = given[p].At(i);
  };
  if (!x.constant && std::ranges::all_of(given, &BlockArgument::constant)) {
    gather(0);
    Functions::Call(kArray, std::span(x.values, out.size()), values.data(), out);
    for (double& value : out) value = OrMissing<kAnswer>(value);
    return;
  }
  for (std::size_t i = 0; i < out.size(); ++i) {
    gather(i);
    out[i] = OrMissing<kAnswer>(Functions::Call(kScalar, x.At(i), values.data()));
  }
}

template <Answer kAnswer, double (*kFunction)(double, std::span<const double>)>
void ListKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  std::array<double, kMostArguments> storage{};
  const std::span<double> values(storage.data(), arguments.size() - 1);
  for (std::size_t i = 0; i < out.size(); ++i) {
    for (std::size_t p = 0; p < values.size(); ++p) values[p] = arguments[p + 1].At(i);
    out[i] = OrMissing<kAnswer>(kFunction(arguments[0].At(i), values));
  }
}

// The parameters of the generalized Pareto curves begin with the threshold.
namespace threshold_first {
double Density(double x, double threshold, double scale, double shape) {
  return gpd::Density(x, scale, shape, threshold);
}
double Cdf(double x, double threshold, double scale, double shape) {
  return gpd::Cdf(x, scale, shape, threshold);
}
void Density(std::span<const double> x, double threshold, double scale, double shape, std::span<double> out) {
  gpd::Density(x, scale, shape, threshold, out);
}
void Cdf(std::span<const double> x, double threshold, double scale, double shape, std::span<double> out) {
  gpd::Cdf(x, scale, shape, threshold, out);
}
}  // namespace threshold_first

// The kernels of the three functions of a type. A function's scalar and array form have one name.
// NOLINTBEGIN(cppcoreguidelines-macro-usage): an overloaded name cannot be passed on otherwise
#define BRENVOLT_DENSITY(type, parameters) \
  Kernel<parameters, Answer::kProbability, type::Density, type::Density>
#define BRENVOLT_CDF(type, parameters) Kernel<parameters, Answer::kProbability, type::Cdf, type::Cdf>
#define BRENVOLT_QUANTILE(type, parameters) \
  Kernel<parameters, Answer::kQuantile, type::Quantile, type::Quantile>
#define BRENVOLT_FUNCTIONS(name, type, optional, parameters)                                              \
  {name "Density", BRENVOLT_DENSITY(type, parameters), 1 + (parameters) - (optional), 1 + (parameters)},  \
      {name "Cdf", BRENVOLT_CDF(type, parameters), 1 + (parameters) - (optional), 1 + (parameters)}, {    \
    name "Quantile", BRENVOLT_QUANTILE(type, parameters), 1 + (parameters) - (optional), 1 + (parameters) \
  }
#define BRENVOLT_CURVES(density, cdf, type, fewest, parameters)                    \
  {density, BRENVOLT_DENSITY(type, parameters), 1 + (fewest), 1 + (parameters)}, { \
    cdf, BRENVOLT_CDF(type, parameters), 1 + (fewest), 1 + (parameters)            \
  }
// NOLINTEND(cppcoreguidelines-macro-usage)

constexpr FormulaFunction kFunctions[] = {
    BRENVOLT_FUNCTIONS("Normal", normal, 0, 2),
    BRENVOLT_FUNCTIONS("LogNormal", lognormal, 1, 3),
    BRENVOLT_FUNCTIONS("FoldedNormal", folded_normal, 1, 3),
    BRENVOLT_FUNCTIONS("HalfNormal", half_normal, 1, 2),
    BRENVOLT_FUNCTIONS("Rayleigh", rayleigh, 1, 2),
    BRENVOLT_FUNCTIONS("Weibull", weibull, 1, 3),
    BRENVOLT_FUNCTIONS("Johnson", johnson, 0, 5),
    BRENVOLT_FUNCTIONS("GeneralizedExtremeValue", gev, 0, 3),
    BRENVOLT_FUNCTIONS("GeneralizedPareto", gpd, 1, 3),
    BRENVOLT_FUNCTIONS("Triangular", triangular, 0, 3),
    BRENVOLT_FUNCTIONS("Binomial", binomial, 0, 2),
    BRENVOLT_FUNCTIONS("Poisson", poisson, 0, 1),
    BRENVOLT_FUNCTIONS("Geometric", geometric, 0, 1),
    {"GaussianMixtureDensity", ListKernel<Answer::kProbability, gaussian_mixture::Density>, 4,
     kMostArguments},
    {"GaussianMixtureCdf", ListKernel<Answer::kProbability, gaussian_mixture::Cdf>, 4, kMostArguments},
    {"GaussianMixtureQuantile", ListKernel<Answer::kQuantile, gaussian_mixture::Quantile>, 4, kMostArguments},
    BRENVOLT_CURVES("Normal", "iNormal", normal, 2, 2),
    BRENVOLT_CURVES("Lognorm", "iLognorm", lognormal, 2, 3),
    BRENVOLT_CURVES("FoldedNormal", "iFoldedNormal", folded_normal, 2, 3),
    {"FoldeNormal", BRENVOLT_DENSITY(folded_normal, 3), 3, 4},
    BRENVOLT_CURVES("HalfNormal", "iHalfNormal", half_normal, 1, 2),
    BRENVOLT_CURVES("Rayl", "IRayl", rayleigh, 1, 2),
    BRENVOLT_CURVES("weibull", "iWeibull", weibull, 3, 3),
    BRENVOLT_CURVES("Johnson", "iJohnson", johnson, 5, 5),
    BRENVOLT_CURVES("GEV", "IGEV", gev, 3, 3),
    BRENVOLT_CURVES("GPD", "IGPD", threshold_first, 3, 3),
    BRENVOLT_CURVES("Triangular", "iTriangular", triangular, 3, 3),
    BRENVOLT_CURVES("Binom", "iBinom", binomial, 2, 2),
    BRENVOLT_CURVES("Poisson", "iPoisson", poisson, 1, 1),
    BRENVOLT_CURVES("Geom", "iGeom", geometric, 1, 1),
};

}  // namespace

std::span<const FormulaFunction> DistributionFunctions() {
  return kFunctions;
}

}  // namespace brenvolt
