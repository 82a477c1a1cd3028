#include "host/graphs/sampling_bands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace brenvolt {
namespace {

const ArrayFunction kUniform = [](std::span<const double> p, std::span<double> x) {
  std::ranges::copy(p, x.begin());
};

// The least of n uniform values lies below u with probability 1 - (1 - u)^n, the greatest with u^n.
TEST(SamplingBands, LimitsOfTheExtremesAreThoseOfTheirDistributions) {
  const GraphBand band = QuantileBand(10, kUniform, "band");
  ASSERT_EQ(band.x.size(), 10u);
  EXPECT_NEAR(band.x[0], 0.05, 1e-15);
  EXPECT_NEAR(band.lower[0], 1 - std::pow(0.975, 0.1), 1e-12);
  EXPECT_NEAR(band.upper[0], 1 - std::pow(0.025, 0.1), 1e-12);
  EXPECT_NEAR(band.lower[9], std::pow(0.025, 0.1), 1e-12);
  EXPECT_NEAR(band.upper[9], std::pow(0.975, 0.1), 1e-12);
}

// Quantiles of Beta(3, 8), as printed by R 4.2: qbeta(c(0.025, 0.975), 3, 8).
TEST(SamplingBands, LimitsBetweenAreQuantilesOfABetaDistribution) {
  const GraphBand band = QuantileBand(10, kUniform, "band");
  EXPECT_NEAR(band.lower[2], 0.06673951118, 1e-7);
  EXPECT_NEAR(band.upper[2], 0.55609546231, 1e-7);
}

TEST(SamplingBands, TheBandOfProbabilitiesIsThatOfQuantilesTurned) {
  const GraphBand quantiles = QuantileBand(50, kUniform, "band");
  const GraphBand band = ProbabilityBand(50, "band");
  EXPECT_EQ(band.upper.back(), 1);
  EXPECT_EQ(band.lower.front(), 0);
  for (std::size_t k = 0; k < band.x.size(); ++k) {
    EXPECT_LE(band.lower[k], band.x[k] + 0.5 / 50) << band.x[k];
    EXPECT_GE(band.upper[k], band.x[k] - 0.5 / 50) << band.x[k];
  }
  // At the lower limit of a rank its plotting position is the upper limit of probabilities.
  const auto after = std::ranges::upper_bound(band.x, quantiles.lower[24]) - band.x.begin();
  EXPECT_LE(band.upper[static_cast<std::size_t>(after) - 1], quantiles.x[24]);
  EXPECT_GE(band.upper[static_cast<std::size_t>(after)], quantiles.x[24]);
}

TEST(SamplingBands, TheyNarrowWithTheSizeAndHoldForOneValue) {
  const auto width = [](std::size_t count) {
    const GraphBand band = ProbabilityBand(count, "band");
    return band.upper[100] - band.lower[100];
  };
  EXPECT_NEAR(width(10'000), 2 * 1.96 * 0.5 / 100, 1e-3);
  EXPECT_LT(width(10'000'000), 0.001);
  EXPECT_EQ(QuantileBand(1, kUniform, "band").x.size(), 1u);
}

}  // namespace
}  // namespace brenvolt
