#include "host/numeric/censored/censored_likelihood.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// What the members of a row are to agree to: a part of the greatest of them, or of what they are differences of.
double ToleranceOf(const std::vector<double>& expected, double share) {
  double greatest = 1;
  for (const double x : expected) greatest = std::max(greatest, std::abs(x));
  return share * greatest;
}

TEST(CensoredLikelihoodReference, DerivativesAreThoseOfTheDistributionFunctions) {
  struct Row {
    DistributionCode code;
    std::vector<double> values;
    double lower;
    double upper;
    double logLikelihood;
    std::vector<double> first;
    std::vector<double> second;  // the lower triangle, row after row
  };
  const Row rows[] = {
#include "host/numeric/censored/reference/likelihood.inc"
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(row.code) << ": " << row.lower << " to "
                                    << row.upper);
    CensoredSample sample;
    sample.Add({row.lower, row.upper});
    const SecondOrder found = CensoredLogLikelihood(row.code, row.values, sample, 0);
    // An interval of a millionth leaves as many digits fewer.
    const bool isNarrow = row.lower < row.upper && row.upper - row.lower < 1e-3;
    const double share = isNarrow ? 1e-9 : 1e-12;
    EXPECT_NEAR(found.value, row.logLikelihood, share * std::max(1.0, std::abs(row.logLikelihood)));
    std::size_t place = 0;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      EXPECT_NEAR(found.first[i], row.first[i], ToleranceOf(row.first, share)) << i;
      for (std::size_t j = 0; j <= i; ++j, ++place) {
        EXPECT_NEAR(found.second[i][j], row.second[place], ToleranceOf(row.second, share)) << i << j;
        EXPECT_NEAR(found.second[j][i], row.second[place], ToleranceOf(row.second, share)) << i << j;
      }
    }
  }
}

TEST(CensoredLikelihood, ValuesOutsideOfTheSupportAreImpossibleOrSayNothing) {
  struct Case {
    const char* what;
    DistributionCode code;
    std::vector<double> values;
    CensoredValue value;
    double expected;
  };
  constexpr auto kExtremes = DistributionCode::kGeneralExtremeValue;
  const std::vector<double> ending{0, 1, -0.5};    // at 2
  const std::vector<double> beginning{0, 1, 0.5};  // at -2
  const Case cases[] = {
      {"beyond the end", kExtremes, ending, CensoredValue::Exact(2.5), -kInfinity},
      {"above what is beyond it", kExtremes, ending, CensoredValue::Right(2.5), -kInfinity},
      {"below what is beyond it", kExtremes, ending, CensoredValue::Left(2.5), 0},
      {"before the beginning", kExtremes, beginning, CensoredValue::Left(-3), -kInfinity},
      {"above what is before it", kExtremes, beginning, CensoredValue::Right(-3), 0},
      {"around the support", kExtremes, beginning, {-3, kInfinity}, 0},
      {"before the beginning of life", DistributionCode::kWeibull, {1, 2}, CensoredValue::Right(0), 0},
      {"a scale of 0", DistributionCode::kNormal, {1, 0}, CensoredValue::Exact(2), -kInfinity}};
  for (const Case& c : cases) {
    CensoredSample sample;
    sample.Add(c.value);
    EXPECT_EQ(CensoredLogLikelihood(c.code, c.values, sample, 0).value, c.expected) << c.what;
  }
}

}  // namespace
}  // namespace brenvolt
