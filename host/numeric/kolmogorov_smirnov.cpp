// The statistic of the Kolmogorov-Smirnov test. A table maps a test code to its distribution function and the
// number of its parameters; data pass through it in pieces, so that a test allocates nothing.
#include "host/numeric/kolmogorov_smirnov.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "host/numeric/distributions.h"

namespace brenvolt {
namespace {

using Parameters = std::span<const double>;

// Distribution functions over arrays; a threshold may follow the parameters of a type that has one.
double ThresholdAt(Parameters p, std::size_t index) {
  return p.size() > index ? p[index] : 0.0;
}

void NormalCdf(Parameters p, std::span<const double> x, std::span<double> out) {
  normal::Cdf(x, p[0], p[1], out);
}
void LogNormalCdf(Parameters p, std::span<const double> x, std::span<double> out) {
  lognormal::Cdf(x, p[0], p[1], ThresholdAt(p, 2), out);
}
void WeibullCdf(Parameters p, std::span<const double> x, std::span<double> out) {
  weibull::Cdf(x, p[0], p[1], ThresholdAt(p, 2), out);
}
void PoissonCdf(Parameters p, std::span<const double> x, std::span<double> out) {
  poisson::Cdf(x, p[0], out);
}

struct TestedLaw {
  TestCode code;
  std::size_t fewestParameters;
  std::size_t mostParameters;
  bool isDiscrete;  // jumps at whole numbers only
  void (*cdf)(Parameters, std::span<const double>, std::span<double>);
};

constexpr TestedLaw kTestedLaws[] = {
    {TestCode::kNormal, 2, 2, false, NormalCdf},
    {TestCode::kLogNormal, 2, 3, false, LogNormalCdf},
    {TestCode::kWeibull, 2, 3, false, WeibullCdf},
    {TestCode::kPoisson, 1, 1, true, PoissonCdf},
};

const TestedLaw* FindLaw(TestCode code) {
  const auto* found = std::find_if(std::begin(kTestedLaws), std::end(kTestedLaws),
                                   [code](const TestedLaw& law) { return law.code == code; });
  return found == std::end(kTestedLaws) ? nullptr : found;
}

bool IsProbability(double p) {
  return p >= 0.0 && p <= 1.0;
}

// The largest distance so far, fed with F(x) and the limit F(x-) of one value after the other in ascending
// order. With i values fed, F_n is i/n from this value on and at least (i-1)/n before it. F rises between
// values, so its distance above F_n is greatest just before a value, its distance below at one; among equal
// values the first and the last give the two.
class Distance {
 public:
  explicit Distance(std::size_t n) : n_(static_cast<double>(n)) {}

  void Feed(double at, double before) {
    isComplete_ = isComplete_ && IsProbability(at) && IsProbability(before);
    const double above = before - fed_ / n_;
    fed_ += 1.0;
    greatest_ = std::max({greatest_, above, fed_ / n_ - at});
  }
  bool IsComplete() const { return isComplete_; }
  double Greatest() const { return greatest_; }

 private:
  double n_;
  double fed_ = 0.0;
  double greatest_ = 0.0;
  bool isComplete_ = true;
};

}  // namespace

double KolmogorovSmirnovStatistic(std::span<const double> sortedProbabilities) {
  if (sortedProbabilities.empty()) return kNotSet;
  Distance distance(sortedProbabilities.size());
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

  constexpr std::size_t kPiece = 256;
  std::array<double, kPiece> x;
  std::array<double, kPiece> at;
  std::array<double, kPiece> before;
  Distance distance(sortedData.size());
  for (std::size_t start = 0; start < sortedData.size(); start += kPiece) {
    const std::size_t size = std::min(kPiece, sortedData.size() - start);
    for (std::size_t i = 0; i < size; ++i) x[i] = sortedData[start + i] - offset;
    const std::span<const double> values(x.data(), size);
    law->cdf(parameters, values, at);
    if (law->isDiscrete) {
      for (std::size_t i = 0; i < size; ++i) x[i] = std::ceil(x[i]) - 1.0;
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
