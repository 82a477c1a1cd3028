#include "brv_sra/distributions/catalogue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/base/spaced_keys.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

std::vector<DistributionCode> AllCodes() {
  std::vector<DistributionCode> codes;
  codes.reserve(kDistributionCount);
  for (std::int32_t i = 0; i < kDistributionCount; ++i) codes.push_back(static_cast<DistributionCode>(i));
  return codes;
}

TEST(Catalogue, PersistedNumbersNamesAndKeysOfEveryTypeStay) {
  const struct {
    std::int32_t number;
    std::string_view internalKey, compactKey, spacedKey;
    bool offset;
    std::size_t values;
  } rows[] = {
      {0, "scNormalDistr", "Normal", "Normal", false, 2},
      {1, "scLogNormal", "LogNormal", "Log Normal", true, 2},
      {2, "scFoldedNormal", "FoldedNormal", "Folded Normal", true, 2},
      {3, "scHalfNormal", "HalfNormal", "Half Normal", true, 1},
      {4, "scRayleigh", "Rayleigh", "Rayleigh", true, 1},
      {5, "scWeibull", "Weibull", "Weibull", true, 2},
      {6, "scGaussianMixture", "GaussianMixture", "Gaussian Mixture", false, 3},
      {7, "scJohnson", "Johnson", "Johnson", false, 5},
      {8, "scGenExtreme", "GeneralExtremeValue", "General Extreme Value", false, 3},
      {9, "scGenPareto", "GeneralPareto", "General Pareto", true, 2},
      {10, "scTriangular", "Triangular", "Triangular", false, 3},
      {11, "scBinomial", "Binomial", "Binomial", false, 2},
      {12, "scPoisson", "Poisson", "Poisson", false, 1},
      {13, "scGeometric", "Geometric", "Geometric", false, 1},
      {14, "scBernoulli", "Bernoulli", "Bernoulli", false, 1},
      {15, "scDiscrete", "Histogram", "Histogram", false, 2},
  };
  for (const auto& row : rows) {
    const auto code = CodeFromNumber(row.number);
    ASSERT_TRUE(code.has_value());
    EXPECT_EQ(InternalKey(*code), row.internalKey);
    EXPECT_EQ(CompactKey(*code), row.compactKey);
    EXPECT_EQ(SpacedKey(*code), row.spacedKey);
    EXPECT_EQ(IsContinuous(*code), row.number <= 10);
    EXPECT_EQ(HasOffset(*code), row.offset);
    EXPECT_EQ(Facts(*code).ParameterCount(), row.values);
  }
  EXPECT_FALSE(CodeFromNumber(-1));
  EXPECT_FALSE(CodeFromNumber(16));
  EXPECT_THROW(Facts(static_cast<DistributionCode>(16)), std::out_of_range);
}

TEST(Catalogue, EveryFormOfAKeyLeadsBackToItsType) {
  for (const DistributionCode code : AllCodes()) {
    const std::string marker(kDontTranslate);
    for (const std::string_view key : {CompactKey(code), SpacedKey(code)}) {
      EXPECT_EQ(CodeFromKey(key), code) << key;
      EXPECT_EQ(CodeFromKey(marker + std::string(key)), code) << key;
    }
    EXPECT_EQ(CodeFromKey(InternalKey(code)), code);
  }
  for (const std::string_view unknown :
       {"", "normal", "Normal ", "DontTranslate!!", "DontTranslate!!scWeibull", "sc"}) {
    EXPECT_FALSE(CodeFromKey(unknown)) << unknown;
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

TEST(Catalogue, EveryValueHasAStoredForm) {
  for (const DistributionCode code : AllCodes()) {
    for (std::size_t i = 0; i < Facts(code).ParameterCount(); ++i) {
      EXPECT_NO_THROW(StoredFault(code, i)) << SpacedKey(code);
      EXPECT_EQ(StoredKey(code, i).empty(), StoredKey(code, 0).empty()) << SpacedKey(code);
    }
  }
}

}  // namespace
}  // namespace brenvolt::sra
