// The statistic of the Kolmogorov-Smirnov test. A table maps a test code to its distribution function and the
// number of its parameters; data pass through it in pieces, so that a test allocates nothing.
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "host/numeric/distributions/distributions.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using In = std::span<const double>;
using Out = std::span<double>;

// An array form whose parameters are P = double…; those that a caller leaves out at the end, thresholds, are
// 0.
template <class... P>
struct Separate {
  template <void (*cdf)(In, P..., Out)>
  static void Cdf(In p, In x, Out out) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
      cdf(x, (i < p.size() ? p[i] : 0.0)..., out);
    }
    (std::index_sequence_for<P...>());
  }
};
using One = Separate<double>;
using Two = Separate<double, double>;
using Three = Separate<double, double, double>;
using Five = Separate<double, double, double, double, double>;

template <void (*cdf)(In, In, Out)>
void VectorCdf(In p, In x, Out out) {
  cdf(x, p, out);
}

// The threshold comes first, or not at all.
void GpdCdf(In p, In x, Out out) {
  const In law = p.last(2);
  gpd::Cdf(x, law[0], law[1], p.size() > 2 ? p[0] : 0.0, out);
}

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

struct TestedLaw {
  TestCode code;
  std::size_t fewestParameters;
  std::size_t mostParameters;
  bool isDiscrete;
  void (*cdf)(In parameters, In x, Out out);
};

constexpr TestedLaw kTestedLaws[] = {
    {TestCode::kNormal, 2, 2, false, Two::Cdf<normal::Cdf>},
    {TestCode::kLogNormal, 2, 3, false, Three::Cdf<lognormal::Cdf>},
    {TestCode::kWeibull, 2, 3, false, Three::Cdf<weibull::Cdf>},
    {TestCode::kRayleigh, 1, 2, false, Two::Cdf<rayleigh::Cdf>},
    {TestCode::kFoldedNormal, 2, 3, false, Three::Cdf<folded_normal::Cdf>},
    {TestCode::kHalfNormal, 1, 2, false, Two::Cdf<half_normal::Cdf>},
    {TestCode::kGaussianMixture, 3, kAnyNumber, false, VectorCdf<gaussian_mixture::Cdf>},
    {TestCode::kJohnson, 5, 5, false, Five::Cdf<johnson::Cdf>},
    {TestCode::kGev, 3, 3, false, Three::Cdf<gev::Cdf>},
    {TestCode::kGpd, 2, 3, false, GpdCdf},
    {TestCode::kTriangular, 3, 3, false, Three::Cdf<triangular::Cdf>},
    {TestCode::kPoisson, 1, 1, true, One::Cdf<poisson::Cdf>},
    {TestCode::kBinomial, 2, 2, true, Two::Cdf<binomial::Cdf>},
    {TestCode::kGeometric, 1, 1, true, One::Cdf<geometric::Cdf>},
    {TestCode::kBernoulli, 1, 1, true, One::Cdf<bernoulli::Cdf>},
    {TestCode::kHistogram, 2, kAnyNumber, true, VectorCdf<histogram::Cdf>},
};

const TestedLaw* FindLaw(TestCode code) {
  const auto* found = std::find_if(std::begin(kTestedLaws), std::end(kTestedLaws),
                                   [code](const TestedLaw& law) { return law.code == code; });
  return found == std::end(kTestedLaws) ? nullptr : found;
}

}  // namespace

double KolmogorovSmirnovStatistic(std::span<const double> sortedProbabilities) {
  if (sortedProbabilities.empty()) return kNotSet;
  KolmogorovSmirnovDistance distance(sortedProbabilities.size());
  for (const double z : sortedProbabilities) distance.Feed(z, z);
  return distance.IsComplete() ? distance.Greatest() : kNotSet;
}

std::int32_t ComputeKolmogorovSmirnovTest(TestCode code, std::span<const double> parameters,
                                          std::span<const double> sortedData, double offset,
                                          double& statistic) {
  statistic = kNotSet;
  const TestedLaw* law = FindLaw(code);
  if (law == nullptr || sortedData.empty() || !std::isfinite(offset)) return 0;
  if (parameters.size() < law->fewestParameters || parameters.size() > law->mostParameters) return 0;

  constexpr std::size_t kPiece = 1024;
  std::array<double, kPiece> x;
  std::array<double, kPiece> at;
  std::array<double, kPiece> before;
  KolmogorovSmirnovDistance distance(sortedData.size());
  for (std::size_t start = 0; start < sortedData.size(); start += kPiece) {
    const std::size_t size = std::min(kPiece, sortedData.size() - start);
    for (std::size_t i = 0; i < size; ++i) x[i] = sortedData[start + i] - offset;
    const std::span<const double> values(x.data(), size);
    law->cdf(parameters, values, at);
    if (law->isDiscrete) {
      for (std::size_t i = 0; i < size; ++i) x[i] = std::nextafter(x[i], -kInfinity);
      law->cdf(parameters, values, before);
    }
    for (std::size_t i = 0; i < size; ++i) distance.Feed(at[i], law->isDiscrete ? before[i] : at[i]);
  }
  if (!distance.IsComplete()) return 0;
  statistic = distance.Greatest();
  return 1;
}

std::int32_t ComputeKolmogorovSmirnovTest(TestCode code, std::span<const double> parameters,
                                          std::span<const double> sortedData, double& statistic) {
  return ComputeKolmogorovSmirnovTest(code, parameters, sortedData, 0.0, statistic);
}

}  // namespace brenvolt
