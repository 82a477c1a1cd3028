#include "brv_sra/distributions/variable_properties.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;
using enum FaultIdentifier;
using Cause = std::optional<Fault>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Every test states its decimal separator and leaves the former one behind.
class VariableProperties : public testing::Test {
 protected:
  void SetUp() override { SetUserNumberLocale({'.'}); }
  void TearDown() override { SetUserNumberLocale(former_); }

  std::string Property(std::string_view key) const {
    return store_.Get(1, key).value_or("(no such property)");
  }

  void Write(const std::vector<DistributionSpecification>& ranked, const Truncation& truncation = {}) {
    WriteDistributionProperties(&store_, {.variableNumber = 1, .ranked = ranked, .truncation = truncation});
  }

  VariableDistributions Read() const {
    const int one = 1;
    return ReadDistributionProperties(store_, std::span(&one, 1))->front();
  }

  // The cause of the fault of a read, or nothing.
  Cause ReadFault() const {
    const int one = 1;
    const auto read = ReadDistributionProperties(store_, std::span(&one, 1));
    if (read) return std::nullopt;
    EXPECT_EQ(read.Reason().identifier, kInvalidProperties);
    EXPECT_EQ(read.Reason().about, "Var1");
    return *read.Reason().cause;
  }
  // The same after the given properties were set over those of a good Normal fit.
  Cause FaultOf(const std::vector<std::pair<std::string, std::string>>& properties) {
    sheet_ = Spreadsheet("Data", 0, 2);
    Write({{.code = kNormal, .values = {0, 1}}});
    for (const auto& [key, value] : properties) store_.Set(1, key, value);
    return ReadFault();
  }
  // The same for a variable whose only distribution has the given value.
  Cause ValueFault(DistributionCode code, const std::string& value) {
    const std::string name(SpacedKey(code));
    return FaultOf({{"zOrder", name + ";"}, {name, value}});
  }

  NumberLocale former_ = UserNumberLocale();
  Spreadsheet sheet_{"Data", 0, 2};
  SheetPropertyStore store_{sheet_, SpacedKey};
};

TEST_F(VariableProperties, TextOfEveryTypeIsExact) {
  const struct {
    DistributionSpecification specification;
    std::string_view text;
  } rows[] = {
      {{.code = kNormal, .values = {1.234567890123, 0.5}},
       "(Location=1.234567890123e+00; Scale=5.000000000000e-01)"},
      {{.code = kLogNormal, .values = {-1, 2}, .offset = 2.5},
       "(Scale=-1.000000000000e+00; Shape=2.000000000000e+00; Offset=2.500000000000e+00)"},
      {{.code = kFoldedNormal, .values = {3, 4}, .offset = 0},
       "(Scale=3.000000000000e+00; Shape=4.000000000000e+00; Offset=0.000000000000e+00)"},
      {{.code = kHalfNormal, .values = {4}}, "(Scale=4.000000000000e+00; Offset=0.000000000000e+00)"},
      {{.code = kRayleigh, .values = {4}, .offset = -1},
       "(Scale=4.000000000000e+00; Offset=-1.000000000000e+00)"},
      {{.code = kWeibull, .values = {1, 2}, .offset = 3},
       "(Scale=1.000000000000e+00; Shape=2.000000000000e+00; Offset=3.000000000000e+00)"},
      {{.code = kGaussianMixture, .values = {0.25, -1, 2, 0.75, 10, 3}},
       "(2.500000e-01; -1.000000e+00; 2.000000e+00; 7.500000e-01; 1.000000e+01; 3.000000e+00)"},
      {{.code = kJohnson, .values = {2, 0.5, 1.5, 3, -4}},
       "(2.000000e+00; 5.000000e-01; 1.500000e+00; 3.000000e+00; -4.000000e+00)"},
      {{.code = kGeneralExtremeValue, .values = {1, 2, -0.1}},
       "(Location=1.000000000000e+00; Scale=2.000000000000e+00; Shape=-1.000000000000e-01)"},
      {{.code = kGeneralPareto, .values = {2, 0.1}, .offset = 1},
       "(Scale=2.000000000000e+00; Shape=1.000000000000e-01; Offset=1.000000000000e+00)"},
      {{.code = kTriangular, .values = {1, 3, 2}},
       "(Min=1.000000000000e+00; Max=3.000000000000e+00; Mode=2.000000000000e+00)"},
      {{.code = kBinomial, .values = {0.25, 12}},
       "(Proportion=2.500000000000e-01; NumberOfTrials=1.200000000000e+01)"},
      {{.code = kPoisson, .values = {2}}, "(Mean=2.000000000000e+00)"},
      {{.code = kGeometric, .values = {0.5}}, "(Proportion=5.000000000000e-01)"},
      {{.code = kBernoulli, .values = {0.5}}, "(Proportion=5.000000000000e-01)"},
      {{.code = kHistogram, .values = {1, 0.25, 4, 0.75}},
       "(1.000000000000e+00; 2.500000000000e-01; 4.000000000000e+00; 7.500000000000e-01)"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(DistributionPropertyText(row.specification), row.text);
    Write({row.specification});
    const auto read = Read().ranked;
    ASSERT_EQ(read.size(), 1U) << row.text;
    EXPECT_EQ(read[0].code, row.specification.code);
    EXPECT_EQ(read[0].values, row.specification.values) << row.text;
    const double offset = IsNotSet(row.specification.offset) ? 0.0 : row.specification.offset;
    EXPECT_EQ(read[0].offset, HasOffset(row.specification.code) ? offset : kNotSet) << row.text;
  }
}

TEST_F(VariableProperties, NumbersAreWrittenTheUsersWayAndReadWithEitherSeparator) {
  SetUserNumberLocale({','});
  Write({{.code = kNormal, .values = {1.234567890123, 0.5}},
         {.code = kGaussianMixture, .values = {0.25, -1, 2, 0.75, 10, 3}}},
        {.below = true, .minimum = -2.5, .maximum = 4});
  EXPECT_EQ(Property("Normal"), "(Location=1,234567890123e+00; Scale=5,000000000000e-01)");
  EXPECT_EQ(Property("Gaussian Mixture"),
            "(2,500000e-01; -1,000000e+00; 2,000000e+00; 7,500000e-01; 1,000000e+01; 3,000000e+00)");
  EXPECT_EQ(Property("zTruncProp"), "(1; 0; -2,500000e+00; 4,000000e+00)");
  const VariableDistributions read = Read();
  EXPECT_EQ(read.ranked[0].values, (std::vector{1.234567890123, 0.5}));
  EXPECT_EQ(read.truncation.minimum, -2.5);
  SetUserNumberLocale({'.'});
  EXPECT_EQ(Read().truncation.minimum, -2.5);
  for (const char separator : {'.', ','}) {
    SetUserNumberLocale({separator});
    EXPECT_EQ(ValueFault(kPoisson, "(Mean=2.5)"), std::nullopt);
    EXPECT_EQ(ValueFault(kPoisson, "(Mean=2,5)"), std::nullopt);
    EXPECT_EQ(ValueFault(kPoisson, "(Mean=1.002,5)"), Fault{kPropertyValuesInvalid});
  }
}

// Parts of 100.00003 mm and a few hundredths of a micrometre: seven digits would move them by deviations.
TEST_F(VariableProperties, PreciseFitsKeepTheDigitsThatTheirQuantilesNeed) {
  const DistributionSpecification rows[] = {
      {.code = kGaussianMixture, .values = {0.25, 100.00003, 1e-5, 0.75, 100.00006, 2e-5}},
      {.code = kGaussianMixture, .values = {1.0 / 3, -1e-9, 2e-13, 2.0 / 3, 1e-9, 3e-13}},
      {.code = kJohnson, .values = {2, 0.123456789012, 1.987654321098, 3.14159e-5, 100.00003}},
      {.code = kJohnson, .values = {3, -0.3, 1.1, 12345.678901, -6789.0123456}},
      {.code = kJohnson, .values = {1, 4.2, 0.7, 1, 1e6 + 1e-3}},
      {.code = kJohnson, .values = {4, -100.00003 / 1e-5, 1 / 1e-5, 1, 0}},
      {.code = kNormal, .values = {100.00003 / 3, 1e-5 / 7}},
      {.code = kLogNormal, .values = {std::log(1e-5 / 7), 0.3 / 7}, .offset = 100.00003},
      {.code = kLogNormal, .values = {std::log(100.00003), 1e-7 / 7}, .offset = 0},
      {.code = kFoldedNormal, .values = {100.00003 / 3, 1e-5 / 7}, .offset = -1.0 / 3},
      {.code = kHalfNormal, .values = {1e-5 / 7}, .offset = 100.00003 / 3},
      {.code = kRayleigh, .values = {1e-5 / 7}, .offset = 100.00003 / 3},
      {.code = kWeibull, .values = {1e-5 / 7, 2.0 / 3}, .offset = 100.00003 / 3},
      {.code = kWeibull, .values = {100.00003 / 3, 1e7 / 3}, .offset = 0},
      {.code = kGeneralExtremeValue, .values = {100.00003 / 3, 1e-5 / 7, -0.1 / 3}},
      {.code = kGeneralPareto, .values = {1e-5 / 7, 0.1 / 3}, .offset = 100.00003 / 3},
      {.code = kTriangular, .values = {100.00003 / 3, 100.00006 / 3, 100.00004 / 3}},
      {.code = kBinomial, .values = {1.0 / 3, 1e9}},
      {.code = kPoisson, .values = {1e9 / 3}},
      {.code = kGeometric, .values = {1e-9 / 3}},
      {.code = kBernoulli, .values = {1.0 / 3}},
      {.code = kHistogram, .values = {100.00003 / 3, 1.0 / 3, 100.00004 / 3, 2.0 / 3}},
  };
  std::set<DistributionCode> codes;
  for (const DistributionSpecification& row : rows) {
    Write({row}, {.below = true, .minimum = 100.00001});
    const VariableDistributions read = Read();
    ASSERT_EQ(read.ranked.size(), 1U);
    EXPECT_EQ(read.truncation.minimum, 100.00001);
    codes.insert(row.code);
    const SpecifiedDistribution before(row);
    const SpecifiedDistribution after(read.ranked[0]);
    const double spread = std::sqrt(before.Variance());
    for (const double p : {1e-6, 3e-5, 1e-3, 0.05, 0.2, 0.4, 0.5}) {
      EXPECT_NEAR(after.Quantile(p), before.Quantile(p), 1e-9 * spread) << DistributionPropertyText(row);
      EXPECT_NEAR(after.ComplementQuantile(p), before.ComplementQuantile(p), 1e-9 * spread)
          << DistributionPropertyText(row);
    }
  }
  EXPECT_EQ(codes.size(), static_cast<std::size_t>(kDistributionCount));
}

TEST_F(VariableProperties, OrderAndTruncationFollowTheRank) {
  Write({{.code = kLogNormal, .values = {0, 1}, .offset = 0},
         {.code = kWeibull, .values = {1, 2}, .offset = 0}},
        {.below = false, .above = true, .minimum = 3, .maximum = 8});
  EXPECT_EQ(Property("zOrder"), "Log Normal;Weibull;");
  EXPECT_EQ(Property("zTruncProp"), "(0; 1; 3.000000e+00; 8.000000e+00)");
  EXPECT_EQ(Property("InvalidFit"), "(no such property)");
  const VariableDistributions read = Read();
  ASSERT_EQ(read.ranked.size(), 2U);
  EXPECT_EQ(read.ranked[0].code, kLogNormal);
  EXPECT_EQ(read.ranked[1].code, kWeibull);
  for (const DistributionSpecification& specification : read.ranked) {
    EXPECT_FALSE(specification.truncateBelow);
    EXPECT_TRUE(specification.truncateAbove);
    EXPECT_EQ(specification.truncationMinimum, 3);  // read, not in force
    EXPECT_EQ(specification.truncationMaximum, 8);
  }
}

TEST_F(VariableProperties, AFitThatNoReaderWouldTakeIsNotWritten) {
  Write({{.code = kNormal, .values = {kNotSet, 1}},
         {.code = kWeibull, .values = {1, 2}, .offset = kInfinity},
         {.code = kGaussianMixture,
          .values = {0.5, -444.000000000001, 1, 0.5, 0, 1}},  // prints as -4.440000e+02
         {.code = kRayleigh, .values = {1}}});
  EXPECT_EQ(Property("zOrder"), "Rayleigh;");
  EXPECT_EQ(Property("Normal"), "(no such property)");
  EXPECT_EQ(Read().ranked.size(), 1U);
}

TEST_F(VariableProperties, AFitThatIsNoLongerInTheOrderIsRemovedAndNothingElse) {
  store_.Set(1, "Unit", "mm");
  Write({{.code = kNormal, .values = {1, 2}}, {.code = kTriangular, .values = {0, 2, 1}}});
  Write({{.code = kGeneralExtremeValue, .values = {1, 2, 0}}});
  EXPECT_EQ(Property("Normal"), "(no such property)");
  EXPECT_EQ(Property("Triangular"), "(no such property)");
  EXPECT_EQ(Property("Unit"), "mm");
  EXPECT_EQ(Read().ranked.size(), 1U);
}

TEST_F(VariableProperties, AVariableWithoutAnyFitIsMarkedUntilItHasOne) {
  Write({{.code = kNormal, .values = {0, -1}}});
  EXPECT_EQ(Property("zOrder"), "");
  EXPECT_EQ(Property("InvalidFit"), "1");
  EXPECT_TRUE(ReadFault());
  Write({{.code = kNormal, .values = {0, 1}}});
  EXPECT_EQ(Property("InvalidFit"), "0");
  EXPECT_EQ(Read().ranked.size(), 1U);
}

TEST_F(VariableProperties, BoundAtInfinityIsWrittenAsNoBound) {
  EXPECT_EQ(TruncationPropertyText({true, true, -kInfinity, 5}), "(0; 1; -4.440000e+02; 5.000000e+00)");
  EXPECT_EQ(TruncationPropertyText({}), "(0; 0; -4.440000e+02; -4.440000e+02)");
}

TEST_F(VariableProperties, TruncationFaultCoversEveryMalformedValue) {
  for (const std::string_view text :
       {"", "()", "(0; 0; 1.0)", "(0; 0; 1.0; 2.0; 3.0)", "(2; 0; 1; 2)", "(-1; 0; 1; 2)", "(yes; 0; 1; 2)",
        "(0; 0; nan; 1)", "(0; 0; 1; 1e999)", "(0,0,1,2)", "(1; 1; 5; 4)", "(1; 0; -4.440000e+02; 4)",
        "(0; 1; 4; -444)"}) {
    EXPECT_EQ(FaultOf({{"zTruncProp", std::string(text)}}), Fault{kTruncationPropertyInvalid}) << text;
  }
  for (const std::string_view text : {"(0; 0; -444; -444)", "0;0;5;4", " (1 1 4 4) ", "(0;;0; ;1;2;)"}) {
    EXPECT_EQ(FaultOf({{"zTruncProp", std::string(text)}}), std::nullopt) << text;
  }
  sheet_.VariableAt(0).RemoveProperty("zTruncProp");
  EXPECT_TRUE(ReadFault());
}

TEST_F(VariableProperties, OrderFaultsTellEmptyUnknownMissingAndRepeatedNames) {
  const struct {
    std::string order;
    Cause fault;
  } rows[] = {
      {"", Fault{kOrderPropertyInvalid}},
      {";;", Fault{kOrderPropertyInvalid}},
      {std::string("\0Normal;", 8), Fault{kOrderPropertyInvalid}},
      {"Normal;Cauchy;", Fault{kPropertyMissing, "Cauchy"}},
      {"Normal ;", Fault{kPropertyMissing, "Normal "}},
      {"Normal Weibull;", Fault{kPropertyMissing, "Normal Weibull"}},
      {"Normal;Log Normal;", Fault{kPropertyMissing, "Log Normal"}},
      {"Normal;Normal;", Fault{kOrderCountsDiffer}},
      {"Normal", {}},
      {"(;  Normal;)", {}},
  };
  for (const auto& row : rows) EXPECT_EQ(FaultOf({{"zOrder", row.order}}), row.fault) << row.order;
  EXPECT_EQ(FaultOf({{"zOrder", "Cauchy;"}, {"Cauchy", "(Scale=1)"}}), Fault{kOrderPropertyInvalid});
  EXPECT_EQ(FaultOf({{"zOrder", "Normal;Weibull;"}, {"Normal", "()"}}),
            (Fault{kPropertyValueMissing, "Normal", "Var1"}));
  for (const std::string_view empty : {"", "()", " ( ) ", "("}) {
    EXPECT_EQ(FaultOf({{"Normal", std::string(empty)}}), (Fault{kPropertyValueMissing, "Normal", "Var1"}));
  }
}

TEST_F(VariableProperties, AMissingPropertyIsReportedBeforeABadValue) {
  EXPECT_EQ(FaultOf({{"zOrder", "Normal;Poisson;"}, {"Normal", "(junk)"}}),
            (Fault{kPropertyMissing, "Poisson"}));
}

TEST_F(VariableProperties, MalformedItemsAreTheGeneralFault) {
  const std::pair<DistributionCode, std::string> rows[] = {
      {kNormal, "(Location=1)"},
      {kNormal, "(Location=1; Scale=2; Shape=3)"},
      {kNormal, "(Location=1; Scale=2; Scale=2)"},
      {kNormal, "(Location=1; Scale=2; Offset=0)"},
      {kNormal, "(location=1; Scale=2)"},
      {kNormal, "(Location=1; Scale= 2)"},
      {kNormal, "(Location=1; Scale=2x)"},
      {kNormal, "(Location=1; Scale=)"},
      {kNormal, "(Location=1; Scale=inf)"},
      {kNormal, "(Location=nan; Scale=1)"},
      {kNormal, "(Location=1; Scale=1e400)"},
      {kNormal, "(1; 2)"},
      {kNormal, "((Location=1; Scale=2))"},
      {kNormal, "(; ;)"},
      {kFoldedNormal, "(Location=1; Scale=2; Offset=0)"},
      {kWeibull, "(Scale=1; Shape=2; Offset=0; Offset=0)"},
      {kGaussianMixture, "(0.5; 0; 1; 0.5; 1)"},
      {kGaussianMixture, "(; ;)"},
      {kJohnson, "(2; 0; 1; 1)"},
      {kJohnson, "(2; 0; 1; 1; 0; 0)"},
      {kHistogram, "(1; 0.5; 2)"},
      {kHistogram, "(Code=1; Proportion=1)"},
  };
  for (const auto& [code, value] : rows)
    EXPECT_EQ(ValueFault(code, value), Fault{kPropertyValuesInvalid}) << value;
}

TEST_F(VariableProperties, ValuesThatBreakARuleAreNamedWithDistributionAndVariable) {
  const auto stored = [](FaultIdentifier identifier, std::string name) {
    return Fault{identifier, std::move(name), "1"};
  };
  const struct {
    DistributionCode code;
    std::string value;
    Cause fault;
  } rows[] = {
      {kBernoulli, "(Proportion=1.5)", stored(kStoredProportionInvalid, "Bernoulli")},
      {kPoisson, "(Mean=0)", stored(kStoredMeanInvalid, "Poisson")},
      {kBinomial, "(Proportion=0.5; NumberOfTrials=2.5)", stored(kStoredTrialsInvalid, "Binomial")},
      {kNormal, "(Location=-444; Scale=1)", stored(kStoredLocationInvalid, "Normal")},
      {kNormal, "(Scale=0; Location=1)", stored(kStoredScaleInvalid, "Normal")},
      {kWeibull, "(Scale=1; Shape=-1; Offset=0)", stored(kStoredShapeInvalid, "Weibull")},
      {kWeibull, "(Scale=1; Shape=1; Offset=-444)", stored(kStoredOffsetInvalid, "Weibull")},
      {kFoldedNormal, "(Scale=1; Shape=0; Offset=0)", stored(kStoredScaleInvalid, "FoldedNormal")},
      {kJohnson, "(2; 0; 1; 0; 0)", stored(kStoredScaleInvalid, "Johnson")},
      {kHistogram, "(1; 1.5; 2; -0.5)", stored(kStoredProportionInvalid, "Histogram")},
      {kHistogram, "(1; 0.5; 2; 0.499)", Fault{kInvalidTotalProportion}},
      {kGaussianMixture, "(1; 0; 1)", Fault{kInvalidMixtureCount}},
      {kGaussianMixture, "(0.5; 0; 0; 0.5; 1; 1)", stored(kStoredScaleInvalid, "GaussianMixture")},
      {kTriangular, "(Min=2; Max=3; Mode=1)", Fault{kInvalidParameter, "min", "Triangular"}},
  };
  for (const auto& row : rows) EXPECT_EQ(ValueFault(row.code, row.value), row.fault) << row.value;
}

TEST_F(VariableProperties, HandWrittenValuesMayReorderItemsAndLeaveTheOffsetOut) {
  EXPECT_EQ(ValueFault(kWeibull, " (Shape=2;Scale=1) "), std::nullopt);
  const auto read = Read().ranked.front();
  EXPECT_EQ(read.values, (std::vector{1.0, 2.0}));
  EXPECT_EQ(read.offset, 0.0);
}

TEST_F(VariableProperties, FaultOfALaterVariableEndsTheWholeReadAndNamesItsNumber) {
  Write({{.code = kNormal, .values = {0, 1}}});
  WriteDistributionProperties(&store_, {2, {{.code = kPoisson, .values = {1}}}, {}});
  const std::vector<int> both{2, 1};
  EXPECT_EQ(ReadDistributionProperties(store_, both)->front().ranked.front().code, kPoisson);
  store_.Set(2, "Poisson", "(Mean=-1)");
  const auto read = ReadDistributionProperties(store_, std::vector{1, 2});
  ASSERT_FALSE(read);
  EXPECT_EQ(read.Reason().about, "Var2");
  EXPECT_EQ(*read.Reason().cause, (Fault{kStoredMeanInvalid, "Poisson", "2"}));
}

TEST_F(VariableProperties, SheetStoreLeavesVariablesThatDoNotExistAlone) {
  for (const int number : {-1, 0, 3}) {
    store_.Set(number, "Normal", "x");
    EXPECT_FALSE(store_.Get(number, "Normal")) << number;
    EXPECT_EQ(store_.VariableName(number), "") << number;
    EXPECT_FALSE(ReadDistributionProperties(store_, std::span(&number, 1)));
  }
  EXPECT_TRUE(sheet_.VariableAt(0).Properties().empty());
  EXPECT_TRUE(sheet_.VariableAt(1).Properties().empty());
  WriteDistributionProperties(nullptr, {});
}

// Names as a translation would have them.
std::string_view Translated(DistributionCode code) {
  return code == kNormal ? "Normalverteilung" : code == kLogNormal ? "Lognormalverteilung" : SpacedKey(code);
}

TEST_F(VariableProperties, NamesOfAnotherLanguageAreWrittenAndThoseOfNoneAreReadAsWell) {
  SheetPropertyStore translated(sheet_, Translated);
  Write({{.code = kLogNormal, .values = {0, 1}, .offset = 0}, {.code = kNormal, .values = {3, 4}}});
  const int one = 1;
  auto read = ReadDistributionProperties(translated, std::span(&one, 1));
  ASSERT_TRUE(read);
  ASSERT_EQ(read->front().ranked.size(), 2U);
  EXPECT_EQ(read->front().ranked.front().code, kLogNormal);
  WriteDistributionProperties(&translated, read->front());
  EXPECT_EQ(Property("zOrder"), "Lognormalverteilung;Normalverteilung;");
  EXPECT_EQ(Property("Normal"), "(no such property)") << "it would pass for another fit";
  read = ReadDistributionProperties(translated, std::span(&one, 1));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->front().ranked.back().values, (std::vector<double>{3, 4}));
  store_.Set(1, "Normal", "(Location=1; Scale=1)");
  store_.Set(1, "zOrder", "Normal;Normalverteilung;");
  read = ReadDistributionProperties(translated, std::span(&one, 1));
  ASSERT_FALSE(read);
  EXPECT_EQ(*read.Reason().cause, Fault{kOrderCountsDiffer}) << "one distribution under two names";
}

}  // namespace
}  // namespace brenvolt::sra
