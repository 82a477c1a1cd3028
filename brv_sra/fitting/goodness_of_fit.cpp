#include "brv_sra/fitting/goodness_of_fit.h"

#include <array>

#include "host/numeric/kolmogorov_smirnov.h"

namespace brenvolt::sra {
namespace {

// By distribution code.
constexpr std::array<TestCode, kDistributionCount> kTestCodes{
    TestCode::kNormal,   TestCode::kLogNormal, TestCode::kFoldedNormal,    TestCode::kHalfNormal,
    TestCode::kRayleigh, TestCode::kWeibull,   TestCode::kGaussianMixture, TestCode::kJohnson,
    TestCode::kGev,      TestCode::kGpd,       TestCode::kTriangular,      TestCode::kBinomial,
    TestCode::kPoisson,  TestCode::kGeometric, TestCode::kBernoulli,       TestCode::kHistogram};

}  // namespace

void TestFit(DistributionFit& fit, std::span<const double> sorted, ChiSquareBinning /*binning*/) {
  const DistributionSpecification& law = fit.specification;
  const TestCode code = kTestCodes[static_cast<std::size_t>(law.code)];
  TestResult result;
  const auto tested =
      IsNotSet(law.offset)
          ? ComputeKolmogorovSmirnovTest(code, law.values, sorted, result.statistic)
          : ComputeKolmogorovSmirnovTest(code, law.values, sorted, law.offset, result.statistic);
  if (tested == 0) return;
  std::int32_t error = 0;
  result.pValue =
      ComputeKolmogorovSmirnovPvalue(static_cast<std::int64_t>(sorted.size()), result.statistic, error);
  if (error == 0) fit.kolmogorovSmirnov = result;
}

}  // namespace brenvolt::sra
