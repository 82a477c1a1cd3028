#include "brv_sra/distributions/validity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/distributions/catalogue.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;
using enum FaultIdentifier;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct ValidityRow {
  DistributionCode code;
  std::vector<double> values;
  std::optional<Fault> fault;
  std::size_t index = 0;
};

Fault Invalid(std::string word, std::string name) {
  return {kInvalidParameter, std::move(word), std::move(name)};
}
Fault NoProportion(std::string word, std::string name) {
  return {kInvalidProportion, std::move(word), std::move(name)};
}

void Expect(const ValidityRow& row) {
  const auto found = CheckValues(row.code, row.values);
  const std::string about = std::string(SpacedKey(row.code)) + " " + testing::PrintToString(row.values);
  EXPECT_EQ(found ? std::optional(found->fault) : std::nullopt, row.fault) << about;
  EXPECT_EQ(found ? found->valueIndex : row.index, row.index) << about;
}

TEST(Validity, SetsOfValuesThatFitsProduceAreValid) {
  const ValidityRow rows[] = {
      {kNormal, {-3, 1e-300}, {}},
      {kLogNormal, {-2.5, 0.1}, {}},  // the mean of the logarithms of values below 1
      {kFoldedNormal, {0, 1}, {}},
      {kHalfNormal, {2}, {}},
      {kWeibull, {0.5, 12}, {}},
      {kJohnson, {1, -3, 0.5, 1, -7}, {}},
      {kJohnson, {4, 0, 1, 1, 0}, {}},
      {kGeneralExtremeValue, {0, 1, -0.4}, {}},
      {kGeneralPareto, {1, -0.4}, {}},
      {kTriangular, {2, 2, 2}, {}},
      {kTriangular, {-1, 5, 5}, {}},
      {kBinomial, {0, 1}, {}},
      {kBinomial, {1, 2147483647.0}, {}},
      {kBernoulli, {0.5}, {}},
      {kGaussianMixture, {0.333333, 0, 1, 0.333333, 5, 1, 0.333333, 9, 2}, {}},
      {kHistogram, {1, 0.333333333333, 2, 0.333333333333, 3, 0.333333333333}, {}},
      {kHistogram, {7, 1}, {}},
  };
  for (const ValidityRow& row : rows) Expect(row);
}

TEST(Validity, AValueOutsideItsRangeIsNamedWithItsDistribution) {
  const ValidityRow rows[] = {
      {kNormal, {kInfinity, 1}, Invalid("location", "Normal"), 0},
      {kNormal, {0, 0}, Invalid("scale", "Normal"), 1},
      {kNormal, {0, -1e-300}, Invalid("scale", "Normal"), 1},
      {kNormal, {0}, Invalid("scale", "Normal"), 1},
      {kNormal, {0, 1, 2}, Invalid("scale", "Normal"), 2},
      {kLogNormal, {0, 0}, Invalid("shape", "LogNormal"), 1},
      {kWeibull, {1, kNan}, Invalid("shape", "Weibull"), 1},
      {kGeneralExtremeValue, {0, 1, kNan}, Invalid("shape", "GeneralExtremeValue"), 2},
      {kJohnson, {5, 0, 1, 1, 0}, Invalid("type", "Johnson"), 0},
      {kJohnson, {2.5, 0, 1, 1, 0}, Invalid("type", "Johnson"), 0},
      {kJohnson, {2, 0, 0, 1, 0}, Invalid("delta", "Johnson"), 2},
      {kJohnson, {2, 0, 1, -1, 0}, Invalid("lambda", "Johnson"), 3},
      {kTriangular, {3, 5, 2}, Invalid("min", "Triangular"), 0},
      {kTriangular, {1, 5, 6}, Invalid("max", "Triangular"), 2},
      {kBinomial, {0.5, 2.5}, Invalid("trials", "Binomial"), 1},
      {kBinomial, {0.5, 0}, Invalid("trials", "Binomial"), 1},
      {kBinomial, {0.5, 0x1p54}, Invalid("trials", "Binomial"), 1},
      {kPoisson, {0}, Invalid("mean", "Poisson"), 0},
      {kGeometric, {1.0000001}, NoProportion("proportion", "Geometric"), 0},
      // Without any chance of success there is no distribution.
      {kGeometric, {0}, NoProportion("proportion", "Geometric"), 0},
      {kBernoulli, {-0.1}, NoProportion("proportion", "Bernoulli"), 0},
      {kBernoulli, {}, Invalid("proportion", "Bernoulli"), 0},
      {kHistogram, {1, 0.5, 2}, Invalid("proportion", "Histogram"), 3},
      {kHistogram, {kNotSet, 0.5, 2, 0.5}, Invalid("code", "Histogram"), 0},
      {kHistogram, {1, 1.5, 2, -0.5}, NoProportion("proportion", "Histogram"), 1},
      {kGaussianMixture, {0.5, 0, 1, 0.5, 1, 0}, Invalid("standard deviation", "GaussianMixture"), 5},
      {kGaussianMixture, {0.5, 0, 1, 0.4, 1, 1}, Invalid("proportion", "GaussianMixture"), 6},
      {kGaussianMixture, {0.5, 0, 1, 0.5}, Invalid("mean", "GaussianMixture"), 4},
  };
  for (const ValidityRow& row : rows) Expect(row);
}

TEST(Validity, HistogramThatLosesAThousandthFails) {
  Expect({kHistogram, {1, 0.5, 2, 0.499}, Fault{kInvalidTotalProportion}, 4});
  Expect({kHistogram, {1, 0.5, 2, 0.50003}, Fault{kInvalidTotalProportion}, 4});
  Expect({kHistogram, {}, Fault{kInvalidTotalProportion}, 0});
}

TEST(Validity, MixturesHoldTwoToTwentyComponents) {
  for (const std::size_t count : {0U, 1U, 2U, 20U, 21U}) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) {
      for (const double value : {1.0 / static_cast<double>(count), 0.0, 1.0}) values.push_back(value);
    }
    const bool isValid = count >= 2 && count <= 20;
    const auto fault = isValid ? std::nullopt : std::optional(Fault{kInvalidMixtureCount});
    Expect({kGaussianMixture, values, fault, values.size()});
  }
}

TEST(Validity, OnlyValuesWithinFifteenUnitsOfTheMarkCountAsNotGiven) {
  double nearby = kNotSet;
  for (int i = 0; i < 15; ++i) nearby = std::nextafter(nearby, 0.0);
  const double beyond = std::nextafter(nearby, 0.0);
  const double oneUnitBelow = std::nextafter(kNotSet, -1e9);
  for (const double notGiven : {kNotSet, oneUnitBelow, nearby}) {
    EXPECT_TRUE(CheckValues(kNormal, std::vector{notGiven, 1.0})) << notGiven;
  }
  for (const double given : {-443.9, beyond})
    EXPECT_FALSE(CheckValues(kNormal, std::vector{given, 1.0})) << given;
}

TEST(Validity, OffsetAndTrialsHaveFaultsOfTheirOwn) {
  const auto identifier = [](const DistributionSpecification& specification, CheckPurpose purpose) {
    const auto found = CheckSpecification(specification, purpose);
    return found ? std::optional(found->fault.identifier) : std::nullopt;
  };
  DistributionSpecification weibull{.code = kWeibull, .values = {1, 2}};
  EXPECT_EQ(identifier(weibull, CheckPurpose::kEntry), kInvalidOffset);
  EXPECT_EQ(CheckSpecification(weibull)->valueIndex, 2U);
  weibull.offset = kNan;
  EXPECT_EQ(identifier(weibull, CheckPurpose::kEntry), kInvalidOffset);
  weibull.offset = -5;
  EXPECT_EQ(identifier(weibull, CheckPurpose::kEntry), std::nullopt);
  EXPECT_EQ(identifier({.code = kNormal, .values = {0, 1}}, CheckPurpose::kEntry), std::nullopt);
  const DistributionSpecification binomial{.code = kBinomial, .values = {0.5, -1}};
  EXPECT_EQ(identifier(binomial, CheckPurpose::kSimulation), kInvalidTrials);
  EXPECT_EQ(identifier(binomial, CheckPurpose::kEntry), kInvalidParameter);
}

}  // namespace
}  // namespace brenvolt::sra
