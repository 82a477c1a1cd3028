#include "brv_sra/fitting/anderson_darling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <numbers>
#include <sstream>

#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/numeric/goodness_of_fit/anderson_darling_sum.h"

namespace brenvolt::sra {
namespace {

// The sum as it is defined, in long double.
double ByDefinition(const std::vector<double>& z) {
  const auto n = static_cast<long double>(z.size());
  long double sum = 0;
  for (std::size_t i = 0; i < z.size(); ++i) {
    const long double low = std::max(static_cast<long double>(z[i]), 0x1p-53L);
    const long double high = std::max(1.0L - z[i], 0x1p-53L);
    const long double weight = 2.0L * static_cast<long double>(i) + 1.0L;
    sum += weight * std::log(low) + (2.0L * n - weight) * std::log(high);
  }
  return static_cast<double>(-n - sum / n);
}

TEST(AndersonDarlingStatistic, ClampedEndsAndTextbookValues) {
  const double clamped = -1.0 + 53.0 * std::numbers::ln2;
  struct Case {
    std::vector<double> z;
    double statistic;
  };
  const Case cases[] = {
      {{0.5}, -1.0 + 2.0 * std::numbers::ln2},
      {{0.0}, clamped},
      {{1.0}, clamped},
      {{1e-30}, clamped},
      {{0.25, 0.75}, -2.0 - (std::log(0.25) + 3.0 * std::log(0.75))},
      {{0.0, 1.0}, -2.0 + 53.0 * std::numbers::ln2},
  };
  for (const Case& c : cases) EXPECT_DOUBLE_EQ(andersonDarling(c.z), c.statistic) << c.z[0];
}

TEST(AndersonDarlingStatistic, LargeSamplesKeepTheirDigits) {
  // Sizes around the ends of blocks and lanes; the sum is up to n times the statistic.
  for (const std::size_t n : {7U, 511U, 512U, 513U, 1029U, 300'000U}) {
    std::vector<double> z(n);
    for (std::size_t i = 0; i < n; ++i)
      z[i] = std::pow((static_cast<double>(i) + 0.5) / static_cast<double>(n), 1.01);
    EXPECT_NEAR(andersonDarling(z), ByDefinition(z), 1e-15 * static_cast<double>(n) + 1e-13) << n;
    AndersonDarlingSum inParts(n);
    for (std::size_t i = 0; i < n; i += 1024)
      inParts.Add(std::span(z).subspan(i, std::min<std::size_t>(1024, n - i)));
    EXPECT_EQ(inParts.Statistic(), andersonDarling(z)) << n;
    std::vector<double> complements;
    for (const double p : z) complements.push_back(1.0 - p);
    AndersonDarlingSum ofBoth(n);
    ofBoth.Add(z, complements);
    EXPECT_EQ(ofBoth.Statistic(), andersonDarling(z)) << n;
  }
}

TEST(AndersonDarlingStatistic, NoValuesAreRefused) {
  try {
    andersonDarling({});
    ADD_FAILURE();
  } catch (const NumericalException& error) {
    EXPECT_STREQ(error.what(), "andersonDarling: n <= 0");
  }
  for (const std::int64_t n : {0, -1}) {
    try {
      AndersonDarlingDistribution(n, 1.0);
      ADD_FAILURE();
    } catch (const NumericalException& error) {
      EXPECT_STREQ(error.what(), "n <= 0");
    }
  }
}

TEST(AndersonDarlingDistributionFunction, SeamsAndEnds) {
  const double above5 = std::nextafter(5.0, 6.0);
  struct Case {
    std::int64_t n;
    double z;
    double probability;
  };
  const Case cases[] = {
      {1, 0.38629436111989, 0.0},
      {1, 37.816242111357, 1.0},
      {1, 1.0, std::sqrt(1.0 - 4.0 * std::exp(-2.0))},
      {2, 0.0, 0.0},
      {2, -1.0, 0.0},
      {10, 0.04, 0.0},
      // Between z = 0.05 and 0.10 by hand: u = -0.8, no correction.
      {10, 0.06, (-2 * 1.7315e-10 + 2.80781e-05) * -0.08 + (2.80781e-05 - 1.7315e-10) * -0.8 + 2.80781e-05},
      {10, 0.25, 0.02960552 - 0.000187},
      {1'000'000'000, 0.35, 0.10357152},
      {10, 5.0, 0.99712528 - 0.000188},
      {10, above5, 1.0 - std::exp(-1.03 - 1.06 * 5.0) / 10 - std::exp(-0.56 - 1.06 * 5.0)},
      {10, 1e6, 1.0},
      {10, std::numeric_limits<double>::infinity(), 1.0},
  };
  for (const Case& c : cases)
    EXPECT_NEAR(AndersonDarlingDistribution(c.n, c.z), c.probability, 1e-9) << c.n << ' ' << c.z;
  EXPECT_TRUE(std::isnan(AndersonDarlingDistribution(10, std::nan(""))));
}

TEST(AndersonDarlingDistributionFunction, RisesAndStaysWithinProbabilities) {
  for (const std::int64_t n : {1, 2, 3, 10, 1000}) {
    double last = 0;
    for (double z = 0; z < 20; z += 0.0025) {
      const double f = AndersonDarlingDistribution(n, z);
      EXPECT_GE(f, 0);
      EXPECT_LE(f, 1);
      EXPECT_GE(f, last) << n << ' ' << z;
      last = f;
    }
  }
}

// The simulated distribution function of 1e7 samples per size; how far the function may lie from it.
TEST(AndersonDarlingDistributionReference, AgreesWithSimulation) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/brv_sra/fitting/reference/anderson_darling_distribution.csv");
  std::string line;
  std::getline(file, line);
  int rows = 0;
  std::map<int, double> largest;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    char comma = 0;
    int n = 0;
    double z = 0, simulated = 0;
    fields >> n >> comma >> z >> comma >> simulated;
    const double difference = std::abs(AndersonDarlingDistribution(n, z) - simulated);
    double limit = z < 0.4 ? 0.002 : 0.0005;
    if (n == 2) limit = z < 0.4 ? 0.03 : 0.011;  // docs/evidence/anderson-darling.md
    EXPECT_LT(difference, limit) << line;
    largest[n] = std::max(largest[n], difference);
    ++rows;
  }
  EXPECT_EQ(rows, 125);
  for (const auto& [n, difference] : largest)
    RecordProperty("LargestDifference" + std::to_string(n), std::to_string(difference));
}

}  // namespace
}  // namespace brenvolt::sra
