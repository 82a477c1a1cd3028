#include "brv_sra/fitting/goodness_of_fit.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/anderson_darling.h"
#include "brv_sra/fitting/chi_square.h"
#include "host/numeric/goodness_of_fit/anderson_darling_sum.h"

namespace brenvolt::sra {
namespace {

double OffsetOf(const DistributionSpecification& fit) {
  return HasOffset(fit.code) && !IsNotSet(fit.offset) ? fit.offset : 0.0;
}

// One pass over blocks of values, so that the probabilities of a large sample need no memory. The offset is
// subtracted from the values, as the Kolmogorov-Smirnov test does.
void TestContinuous(DistributionFit& fit, std::span<const double> sorted) {
  constexpr std::size_t kBlock = 2048;
  const double offset = OffsetOf(fit.specification);
  const SpecifiedDistribution distribution(fit.specification.code, fit.specification.values, 0.0);
  if (!distribution.IsValid() || !std::isfinite(offset)) return;
  std::array<double, kBlock> buffer;
  KolmogorovSmirnovDistance distance(sorted.size());
  AndersonDarlingSum sum(sorted.size());
  for (std::size_t begin = 0; begin < sorted.size(); begin += kBlock) {
    const auto x = sorted.subspan(begin, std::min(kBlock, sorted.size() - begin));
    const std::span<double> z(buffer.data(), x.size());
    for (std::size_t i = 0; i < x.size(); ++i) z[i] = x[i] - offset;
    distribution.Cdf(z, z);
    for (const double p : z) distance.Feed(p, p);
    sum.Add(z);
  }
  if (!distance.IsComplete()) return;  // a probability could not be computed
  fit.kolmogorovSmirnov.statistic = distance.Greatest();
  fit.andersonDarling.statistic = sum.Statistic();
}

void TestDiscrete(DistributionFit& fit, std::span<const double> sorted) {
  const SpecifiedDistribution distribution(fit.specification);
  if (!distribution.IsValid()) return;
  const auto statistic = TestKolmogorovSmirnov(distribution, sorted);
  if (statistic) fit.kolmogorovSmirnov.statistic = *statistic;
}

void RunTests(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning binning,
              bool withPValues) {
  fit.kolmogorovSmirnov = {};
  fit.andersonDarling = {};
  fit.chiSquare = {};
  if (!fit.IsValid() || sorted.empty()) return;
  if (IsContinuous(fit.specification.code)) {
    TestContinuous(fit, sorted);
  } else {
    TestDiscrete(fit, sorted);
  }
  fit.chiSquare = ComputeChiSquareTest(fit, sorted, binning, withPValues);
}

void AddPValues(DistributionFit& fit, std::int64_t n) {
  // A statistic that is set comes from values, and is a number.
  if (!IsNotSet(fit.kolmogorovSmirnov.statistic))
    fit.kolmogorovSmirnov.pValue = *KolmogorovSmirnovPValue(n, fit.kolmogorovSmirnov.statistic);
  if (!IsNotSet(fit.andersonDarling.statistic)) {
    fit.andersonDarling.pValue = 1.0 - AndersonDarlingDistribution(n, fit.andersonDarling.statistic);
  }
}

}  // namespace

void TestFit(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning binning) {
  RunTests(fit, sorted, binning, true);
  AddPValues(fit, static_cast<std::int64_t>(sorted.size()));
}

void TestFitStatistics(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning binning) {
  RunTests(fit, sorted, binning, false);
}

}  // namespace brenvolt::sra
