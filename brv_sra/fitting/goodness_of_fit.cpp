#include "brv_sra/fitting/goodness_of_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/law.h"
#include "brv_sra/fitting/anderson_darling.h"
#include "brv_sra/fitting/chi_square.h"

namespace brenvolt::sra {
namespace {

constexpr std::array<TestCode, kDistributionCount> kTestCodes{
    TestCode::kNormal,   TestCode::kLogNormal, TestCode::kFoldedNormal,    TestCode::kHalfNormal,
    TestCode::kRayleigh, TestCode::kWeibull,   TestCode::kGaussianMixture, TestCode::kJohnson,
    TestCode::kGev,      TestCode::kGpd,       TestCode::kTriangular,      TestCode::kBinomial,
    TestCode::kPoisson,  TestCode::kGeometric, TestCode::kBernoulli,       TestCode::kHistogram};

double OffsetOf(const DistributionSpecification& fit) {
  return HasOffset(fit.code) && !IsNotSet(fit.offset) ? fit.offset : 0.0;
}

// The fitted probabilities of all values, the offset subtracted from these as the Kolmogorov-Smirnov test
// does. None for an invalid fit.
std::vector<double> ProbabilitiesOf(const DistributionSpecification& fit, std::span<const double> sorted) {
  const double offset = OffsetOf(fit);
  const Law law(fit.code, fit.values, 0.0);
  if (!law.IsValid() || !std::isfinite(offset)) return {};
  std::vector<double> z(sorted.begin(), sorted.end());
  if (offset != 0.0) {
    for (double& x : z) x -= offset;
  }
  law.Cdf(z, z);
  return z;
}

// kNotSet where a probability could not be computed.
double AndersonDarlingStatistic(std::span<const double> z) {
  const bool isComplete = std::ranges::all_of(z, [](double p) { return p >= 0.0 && p <= 1.0; });
  return isComplete ? andersonDarling(z) : kNotSet;
}

void TestContinuous(DistributionFit& fit, std::span<const double> sorted) {
  const std::vector<double> z = ProbabilitiesOf(fit.specification, sorted);
  if (z.empty()) return;
  fit.kolmogorovSmirnov.statistic = KolmogorovSmirnovStatistic(z);
  fit.andersonDarling.statistic = AndersonDarlingStatistic(z);
}

void TestDiscrete(DistributionFit& fit, std::span<const double> sorted) {
  const Law law(fit.specification);
  if (!law.IsValid()) return;
  ComputeKolmogorovSmirnovTest(TestCodeOf(fit.specification.code), fit.specification.values, sorted,
                               fit.kolmogorovSmirnov.statistic);
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
  if (!IsNotSet(fit.kolmogorovSmirnov.statistic)) {
    std::int32_t error = 0;
    fit.kolmogorovSmirnov.pValue = ComputeKolmogorovSmirnovPvalue(n, fit.kolmogorovSmirnov.statistic, error);
    if (error != 0) fit.kolmogorovSmirnov = {};
  }
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

TestCode TestCodeOf(DistributionCode code) {
  return kTestCodes[static_cast<std::size_t>(code)];
}

}  // namespace brenvolt::sra
