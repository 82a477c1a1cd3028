#include "brv_sra/distributions/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<DistributionCode> AllCodes() {
  std::vector<DistributionCode> codes;
  codes.reserve(kDistributionCount);
  for (std::int32_t i = 0; i < kDistributionCount; ++i) codes.push_back(static_cast<DistributionCode>(i));
  return codes;
}

TEST(Catalogue, PersistedNumbersNamesAndKeysOfEveryTypeStay) {
  const struct {
    std::int32_t number;
    std::string_view internalKey, compactKey, spacedKey, name;
    bool offset;
    std::size_t values;
  } rows[] = {
      {0, "scNormalDistr", "Normal", "Normal", "Normal", false, 2},
      {1, "scLogNormal", "LogNormal", "Log Normal", "Log Normal", true, 2},
      {2, "scFoldedNormal", "FoldedNormal", "Folded Normal", "Folded Normal", true, 2},
      {3, "scHalfNormal", "HalfNormal", "Half Normal", "Half Normal", true, 1},
      {4, "scRayleigh", "Rayleigh", "Rayleigh", "Rayleigh", true, 1},
      {5, "scWeibull", "Weibull", "Weibull", "Weibull", true, 2},
      {6, "scGaussianMixture", "GaussianMixture", "Gaussian Mixture", "Gaussian Mixture", false, 3},
      {7, "scJohnson", "Johnson", "Johnson", "Johnson", false, 5},
      {8, "scGenExtreme", "GeneralExtremeValue", "General Extreme Value", "General Extreme Value", false, 3},
      {9, "scGenPareto", "GeneralPareto", "General Pareto", "General Pareto", true, 2},
      {10, "scTriangular", "Triangular", "Triangular", "Triangular", false, 3},
      {11, "scBinomial", "Binomial", "Binomial", "Binomial", false, 2},
      {12, "scPoisson", "Poisson", "Poisson", "Poisson", false, 1},
      {13, "scGeometric", "Geometric", "Geometric", "Geometric", false, 1},
      {14, "scBernoulli", "Bernoulli", "Bernoulli", "Bernoulli", false, 1},
      {15, "scDiscrete", "Histogram", "Histogram", "Histogram", false, 2},
  };
  for (const auto& row : rows) {
    const auto code = CodeFromNumber(row.number);
    ASSERT_TRUE(code.has_value());
    EXPECT_EQ(InternalKey(*code), row.internalKey);
    EXPECT_EQ(DisplayName(*code), row.name);
    EXPECT_EQ(Entry(*code).displayNameResource, 10036 + row.number);
    EXPECT_EQ(CompactKey(*code), row.compactKey);
    EXPECT_EQ(SpacedKey(*code), row.spacedKey);
    EXPECT_EQ(IsContinuous(*code), row.number <= 10);
    EXPECT_EQ(HasOffset(*code), row.offset);
    EXPECT_EQ(Parameters(*code).size(), row.values);
  }
  EXPECT_FALSE(CodeFromNumber(-1));
  EXPECT_FALSE(CodeFromNumber(16));
  EXPECT_THROW(Entry(static_cast<DistributionCode>(16)), std::out_of_range);
}

TEST(Catalogue, EveryFormOfAKeyLeadsBackToItsType) {
  for (const DistributionCode code : AllCodes()) {
    const std::string marker(kDontTranslate);
    for (const std::string_view key : {CompactKey(code), SpacedKey(code)}) {
      EXPECT_EQ(CodeFromKey(key), code) << key;
      EXPECT_EQ(CodeFromKey(marker + std::string(key)), code) << key;
    }
    EXPECT_EQ(CodeFromKey(InternalKey(code)), code);
    EXPECT_EQ(CodeFromDisplayName(DisplayName(code)), code);
  }
  for (const std::string_view unknown :
       {"", "normal", "Normal ", "DontTranslate!!", "DontTranslate!!scWeibull", "sc"}) {
    EXPECT_FALSE(CodeFromKey(unknown)) << unknown;
  }
}

TEST(Catalogue, DisplayNamesAreComparedAsWholeTexts) {
  for (const std::string_view name : {"Log", "Log Normal2", "LogNormal", ""}) {
    EXPECT_FALSE(CodeFromDisplayName(name)) << name;
  }
}

TEST(Catalogue, DescriptionsPrintEveryValueWithFourDecimals) {
  const double values[] = {1.23456, -2, 10, 4, 5};
  const struct {
    DistributionCode code;
    std::string_view text;
  } rows[] = {
      {kNormal, "Normal(location=1.2346, scale=-2.0000)"},
      {kLogNormal, "Log Normal(scale=1.2346, shape=-2.0000)"},
      {kFoldedNormal, "Folded Normal(location=1.2346, scale=-2.0000)"},
      {kHalfNormal, "Half Normal(scale=1.2346)"},
      {kRayleigh, "Rayleigh(scale=1.2346)"},
      {kWeibull, "Weibull(scale=1.2346, shape=-2.0000)"},
      {kGaussianMixture, "Gaussian Mixture"},
      {kJohnson, "Johnson"},
      {kGeneralExtremeValue, "General Extreme Value(location=1.2346, scale=-2.0000, shape=10.0000)"},
      {kGeneralPareto, "General Pareto(scale=1.2346, shape=-2.0000)"},
      {kTriangular, "Triangular(min=1.2346, max=-2.0000, mode10.0000)"},
      {kBinomial, "Binomial(proportion=1.2346, N=-2.0000)"},
      {kPoisson, "Poisson(mean=1.2346)"},
      {kGeometric, "Geometric(proportion=1.2346)"},
      {kBernoulli, "Bernoulli(proportion=1.2346)"},
      {kHistogram, "Histogram"},
  };
  for (const auto& row : rows) EXPECT_EQ(Description(row.code, values), row.text);
  EXPECT_EQ(Description(kNormal, std::span(values, 1)), "Normal(location=1.2346, scale=-444.0000)");
}

struct ValidityRow {
  DistributionCode code;
  std::vector<double> values;
  std::string message;  // empty: valid
  std::size_t index = 0;
};

std::string Invalid(std::string_view word, std::string_view name) {
  return "Invalid " + std::string(word) + " parameter entry for " + std::string(name) + " distribution. ";
}

void Expect(const ValidityRow& row) {
  const auto fault = CheckValues(row.code, row.values);
  const std::string about = std::string(DisplayName(row.code)) + " " + testing::PrintToString(row.values);
  EXPECT_EQ(fault ? fault->message : "", row.message) << about;
  EXPECT_EQ(fault ? fault->valueIndex : row.index, row.index) << about;
}

TEST(Catalogue, SetsOfValuesThatFitsProduceAreValid) {
  const ValidityRow rows[] = {
      {kNormal, {-3, 1e-300}, ""},
      {kLogNormal, {-2.5, 0.1}, ""},  // the mean of the logarithms of values below 1
      {kFoldedNormal, {0, 1}, ""},
      {kHalfNormal, {2}, ""},
      {kWeibull, {0.5, 12}, ""},
      {kJohnson, {1, -3, 0.5, 1, -7}, ""},
      {kJohnson, {4, 0, 1, 1, 0}, ""},
      {kGeneralExtremeValue, {0, 1, -0.4}, ""},
      {kGeneralPareto, {1, -0.4}, ""},
      {kTriangular, {2, 2, 2}, ""},
      {kTriangular, {-1, 5, 5}, ""},
      {kBinomial, {0, 1}, ""},
      {kBinomial, {1, 2147483647.0}, ""},
      {kBernoulli, {0.5}, ""},
      {kGaussianMixture, {0.333333, 0, 1, 0.333333, 5, 1, 0.333333, 9, 2}, ""},
      {kHistogram, {1, 0.333333333333, 2, 0.333333333333, 3, 0.333333333333}, ""},
      {kHistogram, {7, 1}, ""},
  };
  for (const ValidityRow& row : rows) Expect(row);
}

TEST(Catalogue, AValueOutsideItsRangeIsNamedWithItsDistribution) {
  const ValidityRow rows[] = {
      {kNormal, {kInfinity, 1}, Invalid("location", "Normal"), 0},
      {kNormal, {0, 0}, Invalid("scale", "Normal"), 1},
      {kNormal, {0, -1e-300}, Invalid("scale", "Normal"), 1},
      {kNormal, {0}, Invalid("scale", "Normal"), 1},
      {kNormal, {0, 1, 2}, Invalid("scale", "Normal"), 2},
      {kLogNormal, {0, 0}, Invalid("shape", "Log Normal"), 1},
      {kWeibull, {1, kNan}, Invalid("shape", "Weibull"), 1},
      {kGeneralExtremeValue, {0, 1, kNan}, Invalid("shape", "General Extreme Value"), 2},
      {kJohnson, {5, 0, 1, 1, 0}, Invalid("type", "Johnson"), 0},
      {kJohnson, {2.5, 0, 1, 1, 0}, Invalid("type", "Johnson"), 0},
      {kJohnson, {2, 0, 0, 1, 0}, Invalid("shape 2", "Johnson"), 2},
      {kJohnson, {2, 0, 1, -1, 0}, Invalid("scale", "Johnson"), 3},
      {kTriangular, {3, 5, 2}, Invalid("minimum and/or mode", "Triangular"), 0},
      {kTriangular, {1, 5, 6}, Invalid("mode and/or maximum", "Triangular"), 2},
      {kBinomial, {0.5, 2.5}, Invalid("trials", "Binomial"), 1},
      {kBinomial, {0.5, 0}, Invalid("trials", "Binomial"), 1},
      {kBinomial, {0.5, 0x1p54}, Invalid("trials", "Binomial"), 1},
      {kPoisson, {0}, Invalid("mean", "Poisson"), 0},
      {kGeometric,
       {1.0000001},
       Invalid("proportion", "Geometric") + "Proportion should be between 0 and 1.",
       0},
      // Without any chance of success there is no distribution.
      {kGeometric, {0}, Invalid("proportion", "Geometric") + "Proportion should be between 0 and 1.", 0},
      {kBernoulli, {-0.1}, Invalid("proportion", "Bernoulli") + "Proportion should be between 0 and 1.", 0},
      {kBernoulli, {}, Invalid("proportion", "Bernoulli"), 0},
      {kHistogram, {1, 0.5, 2}, Invalid("code and/or proportion", "Histogram"), 3},
      {kHistogram, {kNotSet, 0.5, 2, 0.5}, Invalid("code and/or proportion", "Histogram"), 0},
      {kHistogram,
       {1, 1.5, 2, -0.5},
       Invalid("code and/or proportion", "Histogram") + "Proportion should be between 0 and 1.",
       1},
      {kGaussianMixture, {0.5, 0, 1, 0.5, 1, 0}, Invalid("standard deviation", "Gaussian Mixture"), 5},
      {kGaussianMixture, {0.5, 0, 1, 0.4, 1, 1}, Invalid("mixing coefficient", "Gaussian Mixture"), 6},
      {kGaussianMixture, {0.5, 0, 1, 0.5}, Invalid("mean", "Gaussian Mixture"), 4},
  };
  for (const ValidityRow& row : rows) Expect(row);
}

TEST(Catalogue, HistogramThatLosesAThousandthFails) {
  const std::string message =
      "Invalid total proportion. Total proportion of the discrete distribution should be equal to 1.";
  Expect({kHistogram, {1, 0.5, 2, 0.499}, message, 4});
  Expect({kHistogram, {1, 0.5, 2, 0.50003}, message, 4});
  Expect({kHistogram, {}, message, 0});
}

TEST(Catalogue, MixturesHoldTwoToTwentyComponents) {
  const std::string message = "Invalid number of mixtures. Valid Range is 1<x<21";
  for (const std::size_t count : {0U, 1U, 2U, 20U, 21U}) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) {
      for (const double value : {1.0 / static_cast<double>(count), 0.0, 1.0}) values.push_back(value);
    }
    Expect({kGaussianMixture, values, count >= 2 && count <= 20 ? "" : message, values.size()});
  }
}

TEST(Catalogue, OnlyValuesWithinFifteenUnitsOfTheMarkCountAsNotGiven) {
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

TEST(Catalogue, OffsetAndTrialsHaveATextForEachPurpose) {
  const auto message = [](const DistributionSpecification& specification, CheckPurpose purpose) {
    const auto fault = CheckSpecification(specification, purpose);
    return fault ? fault->message : std::string();
  };
  DistributionSpecification weibull{.code = kWeibull, .values = {1, 2}};
  EXPECT_EQ(message(weibull, CheckPurpose::kEntry), ResourceString(10011));
  EXPECT_EQ(message(weibull, CheckPurpose::kFit), ResourceString(10004));
  EXPECT_EQ(CheckSpecification(weibull)->valueIndex, 2U);
  weibull.offset = kNan;
  EXPECT_EQ(message(weibull, CheckPurpose::kEntry), ResourceString(10011));
  weibull.offset = -5;
  EXPECT_EQ(message(weibull, CheckPurpose::kEntry), "");
  EXPECT_EQ(message({.code = kNormal, .values = {0, 1}}, CheckPurpose::kEntry), "");
  EXPECT_EQ(message({.code = kBinomial, .values = {0.5, -1}}, CheckPurpose::kSimulation),
            "Invalid number of trials. Please check to have the number of trials greater than 0.");
}

TEST(Catalogue, MacroTextWritesOffsetsBoundsAndValuesNotGiven) {
  const struct {
    DistributionSpecification specification;
    std::string_view text;
  } rows[] = {
      {{.code = kNormal, .values = {1, kNotSet}}, "Array(scNormalDistr, 1.000000e+00, Nothing, 0, 0, 0, 0)"},
      {{.code = kWeibull, .values = {2, 0.5}, .offset = 3},
       "Array(scWeibull, 2.000000e+00, 5.000000e-01, 3.000000e+00, 0, 0, 0, 0)"},
      {{.code = kRayleigh, .values = {2}}, "Array(scRayleigh, 2.000000e+00, Nothing, 0, 0, 0, 0)"},
      {{.code = kPoisson,
        .values = {4},
        .truncationMinimum = 1,
        .truncationMaximum = 9,
        .truncateBelow = true},
       "Array(scPoisson, 4.000000e+00, 1, 1.000000e+00, 0, 0)"},
      {{.code = kTriangular,
        .values = {0, 2, 1},
        .truncationMinimum = 0.25,
        .truncationMaximum = 1.75,
        .truncateBelow = true,
        .truncateAbove = true},
       "Array(scTriangular, 0.000000e+00, 2.000000e+00, 1.000000e+00, 1, 2.500000e-01, 1, 1.750000e+00)"},
      {{.code = kHistogram, .values = {}}, "Array(scDiscrete, 0, 0, 0, 0)"},
  };
  for (const auto& row : rows) EXPECT_EQ(MacroText(row.specification), row.text);
}

TEST(Catalogue, MacroTextHasMoreDigitsOnlyWhereSixDecimalsLoseSome) {
  EXPECT_EQ(MacroText({.code = kWeibull, .values = {1.0 / 3, 0.5}, .offset = kNotSet}),
            "Array(scWeibull, 3.3333333333333331e-01, 5.000000e-01, Nothing, 0, 0, 0, 0)");
}

TEST(Catalogue, DescriptionAndWordsMatchTheNumberOfParameters) {
  for (const DistributionCode code : AllCodes()) {
    const CatalogueEntry& entry = Entry(code);
    const auto conversions = static_cast<int>(std::ranges::count(entry.descriptionFormat, '%'));
    EXPECT_TRUE(conversions == 0 || conversions == std::ssize(Parameters(code))) << DisplayName(code);
    for (const Parameter& parameter : Parameters(code)) {
      EXPECT_NE(ResourceString(parameter.headingResource), "") << DisplayName(code);
      EXPECT_NE(ResourceString(parameter.wordResource), "") << DisplayName(code);
    }
  }
}

}  // namespace
}  // namespace brenvolt::sra
