// The run of a fit over small sheets: which values enter, what is fitted, ranked and refused.
#include "brv_sra/fitting/fit_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/fitting/sample_reader.h"
#include "brv_sra/fitting/save_settings.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();

Spreadsheet SheetOf(const std::vector<std::vector<double>>& columns) {
  Spreadsheet sheet("data");
  for (const auto& values : columns) {
    Variable variable("V" + std::to_string(sheet.VariableCount() + 1), 0);
    variable.AssignValues(values);
    sheet.AddVariable(std::move(variable));
  }
  return sheet;
}

FitSpecification Continuous(std::vector<std::int16_t> variables) {
  FitSpecification specification;
  specification.continuous = std::move(variables);
  specification.continuousSpecifications.resize(specification.continuous.size());
  for (auto& each : specification.continuousSpecifications) each.fit[0] = true;
  return specification;
}

struct FitRun : testing::Test {
  HeadlessUserInterface port;
  std::vector<VariableFit> Run(const Spreadsheet& sheet, const FitSpecification& specification) {
    return *RunFit(sheet, specification, {}, port);
  }
  // Of a run that must fail.
  Fault FaultOf(const Spreadsheet& sheet, const FitSpecification& specification) {
    return RunFit(sheet, specification, {}, port).Reason();
  }
};

TEST_F(FitRun, PairwiseUsesEachVariablesOwnValidCasesCasewiseTheCommonOnes) {
  const Spreadsheet sheet = SheetOf({{1, 2, kNan, 4, 6}, {5, kNan, 7, 8, 9}});
  FitSpecification specification = Continuous({1, 2});
  auto results = Run(sheet, specification);
  EXPECT_EQ(results[0].moments.count, 4);
  EXPECT_EQ(results[0].moments.missing, 1);
  EXPECT_EQ(results[1].moments.count, 4);
  specification.deletion = DeletionMode::kCasewise;
  results = Run(sheet, specification);
  EXPECT_EQ(results[0].moments.count, 3);
  EXPECT_EQ(results[1].moments.count, 3);
  EXPECT_EQ(results[1].moments.minimum, 5);
}

TEST_F(FitRun, WeightsRepeatCasesAndMustBeWholeNumbers) {
  Spreadsheet sheet = SheetOf({{1, 2, 4}, {2, 0, 3}});
  sheet.SetWeightVariable(1);
  EXPECT_EQ(Run(sheet, Continuous({1}))[0].moments.count, 5);
  const auto nearlyTwo = std::nextafter(2.0, 3.0);
  for (const auto& [weight, accepted] : {std::pair{nearlyTwo, true},
                                         {std::nextafter(2.0, 1.0), false},
                                         {2.5, false},
                                         {-1.0, false},
                                         {kNan, false},
                                         {HUGE_VAL, false},
                                         {1e12, false}}) {
    sheet.VariableAt(1).MutableValues()[0] = weight;
    if (accepted) {
      EXPECT_EQ(Run(sheet, Continuous({1}))[0].moments.count, 5) << weight;
    } else {
      EXPECT_FALSE(RunFit(sheet, Continuous({1}), {}, port)) << weight;
    }
  }
}

TEST_F(FitRun, WeightsThatAreRefusedAreNamed) {
  using enum FaultIdentifier;
  Spreadsheet sheet = SheetOf({{1, 2, 4}, {2, 0, 3}});
  sheet.SetWeightVariable(1);
  for (const auto& [weight, fault] : {std::pair{2.5, Fault{kWeightNotWhole, "V2", "3"}},
                                      {2147483647.0, Fault{kWeightsTooLarge, "V2"}},
                                      {1e12, Fault{kWeightsTooLarge, "V2"}}}) {
    sheet.VariableAt(1).MutableValues()[2] = weight;
    EXPECT_EQ(FaultOf(sheet, Continuous({1})), fault) << weight;
  }
}

TEST_F(FitRun, CaseOfLargeWeightIsCopiedWhole) {
  Spreadsheet sheet = SheetOf({{1, 7}, {1, 2'500'001}});
  sheet.SetWeightVariable(1);
  const auto progress = std::make_unique<ProgressBar>(port, "", 2);
  const Sample sample = ReadSample(sheet, 1, *AcceptedCases(sheet, true, true), *progress);
  ASSERT_EQ(sample.values.size(), 2'500'002U);
  EXPECT_EQ(sample.values.back(), 7);
  EXPECT_EQ(sample.moments.count, 2'500'002);
}

TEST_F(FitRun, CasesAreCountedAsTheSelectionLeavesThem) {
  Spreadsheet sheet = SheetOf({{1, 2, 4, 9, kNan}, {2, 0, 3, 1, 1}});
  sheet.SetSelection({true, "", {1, 1, 1, 0, 1}});
  CaseCounts counts;
  (void)RunFit(sheet, Continuous({1}), {}, port, &counts);
  EXPECT_EQ(counts.input, 5);
  EXPECT_EQ(counts.accepted, 4);
  EXPECT_FALSE(counts.weighted);
  sheet.SetWeightVariable(1);
  FitSpecification casewise = Continuous({1});
  casewise.deletion = DeletionMode::kCasewise;
  (void)RunFit(sheet, casewise, {}, port, &counts);
  EXPECT_EQ(counts.accepted, 4) << "neither weight 0 nor missing data is a matter of selection";
  EXPECT_TRUE(counts.weighted);
  (void)RunFit(sheet, Continuous({1}), {false, false}, port, &counts);
  EXPECT_EQ(counts.accepted, 5);
  EXPECT_FALSE(counts.weighted);
}

TEST_F(FitRun, NameOfAResultIsOneLine) {
  Spreadsheet sheet = SheetOf({{1, 2, 4}});
  sheet.VariableAt(0).SetName("  shop\nfloor ");
  EXPECT_EQ(Run(sheet, Continuous({1}))[0].name, "shop floor");
}

TEST_F(FitRun, SelectionLeavesCasesOut) {
  Spreadsheet sheet = SheetOf({{1, 2, 4, 100}});
  sheet.SetSelection({true, "v1 < 50", {1, 1, 1, 0}});
  EXPECT_EQ(Run(sheet, Continuous({1}))[0].moments.maximum, 4);
}

TEST_F(FitRun, VariableWithoutSpreadIsInvalid) {
  const Spreadsheet sheet = SheetOf({{3, 3, 3}, {1, 2, 4}, {kNan, kNan, kNan}, {kNan, 7, kNan}});
  const auto results = Run(sheet, Continuous({1, 2, 3, 4}));
  EXPECT_TRUE(results[0].invalid);
  EXPECT_FALSE(results[1].invalid);
  EXPECT_TRUE(results[2].invalid);
  EXPECT_TRUE(results[3].invalid);
  EXPECT_TRUE(AnyIsFitted(results));
  EXPECT_FALSE(AnyIsFitted(Run(sheet, Continuous({1, 3}))));
}

TEST_F(FitRun, InfiniteValueEndsTheFitOfItsVariableAlone) {
  const auto results = Run(SheetOf({{3, HUGE_VAL, 5, kNan}, {1, 2, 4, 7}}), Continuous({1, 2}));
  EXPECT_TRUE(results[0].invalid);
  EXPECT_EQ(results[0].moments.count, 3);
  EXPECT_EQ(results[0].moments.missing, 1);
  EXPECT_TRUE(std::isnan(results[0].moments.mean));
  EXPECT_EQ(results[0].fault, (Fault{FaultIdentifier::kInfiniteValue, "V1", "2"}));
  EXPECT_EQ(FirstFault(results), results[0].fault);
  EXPECT_FALSE(results[1].fault);
  EXPECT_TRUE(results[1].HasValidFit());
}

// The orders by two of the tests are fixed for macros, which ask for the rule where they want it.
TEST_F(FitRun, FitsThatTheDataContradictAreNoDefaultForSavingWhereTheyRankLast) {
  using enum RankingCriterion;
  const Spreadsheet sheet = SheetOf({{1, 2, 2.5, 3, 3.5, 5, 7}});
  const std::pair<RankingCriterion, std::ptrdiff_t> cases[] = {
      {kKolmogorovSmirnov, 1}, {kAndersonDarling, 1}, {kChiSquare, 0}, {kAkaike, 0}, {kBayes, 0}};
  for (const auto& [criterion, triangular] : cases) {
    FitSpecification specification = Continuous({1});
    for (const auto code : {DistributionCode::kNormal, DistributionCode::kTriangular})
      specification.continuousSpecifications[0].fit[PlaceInKind(code)] = true;
    specification.continuousCriterion = criterion;
    const auto results = Run(sheet, specification);
    const auto saved = CodesOf(results[0], DefaultOrder(results[0]));
    EXPECT_EQ(std::ranges::count(saved, DistributionCode::kTriangular), triangular)
        << static_cast<int>(criterion);
    EXPECT_EQ(std::ranges::count(saved, DistributionCode::kNormal), 1);
  }
}

TEST_F(FitRun, DataLimitIsTakenIn32Bits) {
  EXPECT_TRUE(FitsDataLimit(1, 32'768'000));  // 262,144,000 bytes
  EXPECT_FALSE(FitsDataLimit(1, 32'768'001));
  EXPECT_TRUE(FitsDataLimit(1, 1ULL << 29U)) << "2^32 bytes are 0 in 32 bits";
}

std::vector<std::vector<double>> Columns(std::size_t count, std::size_t cases) {
  std::mt19937_64 engine(17);
  std::normal_distribution<double> normal;
  std::vector<std::vector<double>> columns(count, std::vector<double>(cases));
  for (auto& column : columns) {
    for (double& x : column) x = std::exp(0.5 * normal(engine));
  }
  return columns;
}

void CheckAll(ContinuousSpecification& specification) {
  specification.fit.fill(true);
  specification.offsets.fill(0);
  specification.mixtures = 2;
}

// Every result in company equals the one alone, to the last bit, and is in the order of the lists.
TEST_F(FitRun, ResultsDoNotDependOnTheOtherVariables) {
  const Spreadsheet sheet = SheetOf(Columns(9, 120));
  FitSpecification together = Continuous({9, 1, 2, 3, 4, 5, 6, 7, 8});
  for (auto& specification : together.continuousSpecifications) CheckAll(specification);
  const auto results = Run(sheet, together);
  ASSERT_EQ(results.size(), 9U);
  for (std::size_t i = 0; i < results.size(); ++i) {
    FitSpecification alone = Continuous({together.continuous[i]});
    CheckAll(alone.continuousSpecifications[0]);
    const VariableFit single = Run(sheet, alone)[0];
    EXPECT_EQ(results[i].variableNumber, together.continuous[i]);
    EXPECT_EQ(results[i].ranked, single.ranked);
    ASSERT_EQ(results[i].fits.size(), 11U);
    for (std::size_t f = 0; f < 11; ++f) {
      EXPECT_EQ(results[i].fits[f].specification.values, single.fits[f].specification.values);
      EXPECT_EQ(results[i].fits[f].standardErrors, single.fits[f].standardErrors);
      EXPECT_EQ(results[i].fits[f].logLikelihood, single.fits[f].logLikelihood);
      EXPECT_EQ(results[i].fits[f].kolmogorovSmirnov.pValue, single.fits[f].kolmogorovSmirnov.pValue);
    }
  }
}

TEST_F(FitRun, ChangedNumberOfMixturesIsReportedWhereTheMixtureIsChecked) {
  const Spreadsheet sheet = SheetOf(Columns(4, 30));
  FitSpecification specification = Continuous({1, 2, 3, 4});
  for (auto& each : specification.continuousSpecifications) CheckAll(each);
  specification.continuousSpecifications[0].mixtures = 16;
  specification.continuousSpecifications[1].mixtures = 1;
  specification.continuousSpecifications[2].mixtures = 16;
  specification.continuousSpecifications[2].fit[6] = false;
  const auto results = Run(sheet, specification);
  EXPECT_EQ(results[0].mixtures, 15);
  EXPECT_EQ(results[1].mixtures, 2);
  EXPECT_EQ(results[2].mixtures, kNotSetCount);
  EXPECT_EQ(results[3].mixtures, kNotSetCount);
  EXPECT_EQ(results[1].fits[6].specification.values.size(), 6U);
  FitSpecification two = Continuous({1, 2});
  two.continuousSpecifications[0].fit[6] = true;
  for (auto& each : two.continuousSpecifications) each.mixtures = 2;
  const auto few = Run(SheetOf({{1, 2, 4}, {1, 2, 4}}), two);
  EXPECT_EQ(few[0].mixtures, kNotSetCount) << "two it remains, and the fit says that they are too many";
  EXPECT_EQ(few[0].fits[1].fault, (brenvolt::Fault{EstimationFault::kTooManyComponents, "2", "3"}));
  EXPECT_EQ(few[1].mixtures, kNotSetCount);
}

TEST_F(FitRun, PercentilesThatFailEndTheFitOfTheirVariableAlone) {
  auto columns = Columns(3, 12);
  for (const std::size_t tied : {1U, 2U}) columns[tied] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2};
  FitSpecification specification = Continuous({1, 2, 3});
  for (auto& each : specification.continuousSpecifications) {
    each.fit[PlaceInKind(DistributionCode::kJohnson)] = true;
    each.johnsonByPercentiles = true;
  }
  const auto results = Run(SheetOf(columns), specification);
  EXPECT_TRUE(results[0].HasValidFit());
  for (const std::size_t tied : {1U, 2U}) {
    EXPECT_TRUE(results[tied].invalid && results[tied].fits.empty());
    EXPECT_EQ(results[tied].fault, (Fault{FaultIdentifier::kPercentilesNotFitted, results[tied].name}));
  }
  FitSpecification first = Continuous({1});
  first.continuousSpecifications[0] = specification.continuousSpecifications[0];
  const auto few = Run(SheetOf({{1, 2, 4, 7}}), first);
  EXPECT_EQ(few[0].fault, (Fault{FaultIdentifier::kTooFewForPercentiles, "V1", "4"}));
}

TEST_F(FitRun, FaultOfAValueNamesItsCase) {
  FitSpecification specification;
  specification.discrete = {1};
  specification.discreteSpecifications.resize(1);
  specification.discreteSpecifications[0].fit.fill(true);
  const auto results = Run(SheetOf({{7, 3, 2.5, 2.5, 1.5}}), specification);
  ASSERT_EQ(results[0].fits.size(), 5U);
  for (const std::size_t i : {0U, 1U, 2U}) {
    EXPECT_EQ(results[0].fits[i].fault, (brenvolt::Fault{EstimationFault::kFraction, "1.5"}));
    EXPECT_EQ(results[0].fits[i].faultyCase, 5);
  }
  EXPECT_TRUE(results[0].fits[4].IsValid()) << "a histogram takes any values";
}

TEST_F(FitRun, DiscreteVariablesFollowWithTheirFiveTypes) {
  FitSpecification specification = Continuous({2});
  specification.discrete = {1};
  specification.discreteSpecifications.resize(1);
  specification.discreteSpecifications[0].fit.fill(true);
  const auto results = Run(SheetOf({{0, 1, 1, 0, 1, 1}, {1, 2, 4, 8, 9, 7}}), specification);
  ASSERT_EQ(results.size(), 2U);
  ASSERT_EQ(results[1].fits.size(), 5U);
  for (const DistributionFit& fit : results[1].fits) EXPECT_TRUE(fit.IsValid());
  EXPECT_EQ(results[1].fits[0].specification.values, (std::vector<double>{2.0 / 3, 1}));
  for (const VariableFit& result : results) {
    double best = -1;
    for (const DistributionFit& fit : result.fits) best = std::max(best, fit.kolmogorovSmirnov.pValue);
    EXPECT_EQ(result.bestKolmogorovSmirnovPValue, best);
    EXPECT_GT(best, 0);
  }
}

TEST(Estimation, ValueWithoutLogarithmRulesOutTheLogNormalOnly) {
  ContinuousSpecification specification;
  specification.fit[0] = true;
  specification.fit[PlaceInKind(DistributionCode::kLogNormal)] = true;
  specification.offsets[PlaceInKind(DistributionCode::kLogNormal)] = -10;
  const std::vector<double> sorted{-1, 2, 3, 5};
  Moments moments;
  moments.logMean = kNotSet;
  const auto fits = *FitContinuousDistributions({sorted, moments}, specification,
                                                ChiSquareBinning::kEqualProbabilities, [] {});
  ASSERT_EQ(fits.size(), 2U);
  EXPECT_TRUE(fits[0].IsValid());
  EXPECT_FALSE(fits[1].IsValid());
  EXPECT_EQ(fits[1].fault, (brenvolt::Fault{EstimationFault::kUndefinedLogarithm, "-1", "-10"}));
  EXPECT_TRUE(IsNotSet(fits[1].kolmogorovSmirnov.pValue));
  EXPECT_EQ(RankFits(fits, {}), (std::vector<std::size_t>{0, 1}));
}

TEST(Ranking, FailedFitsComeLastAndTiesKeepTheFixedOrder) {
  std::vector<DistributionFit> fits(4);
  const double statistics[] = {0.2, kNotSet, 0.1, 0.1};
  for (std::size_t i = 0; i < fits.size(); ++i) {
    fits[i].specification.values = {IsNotSet(statistics[i]) ? kNotSet : 1.0};
    fits[i].kolmogorovSmirnov.statistic = statistics[i];
  }
  EXPECT_EQ(RankFits(fits, {}), (std::vector<std::size_t>{2, 3, 0, 1}));
}

}  // namespace
}  // namespace brenvolt::sra
