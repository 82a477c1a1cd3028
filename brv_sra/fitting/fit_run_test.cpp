// The run of a fit over small sheets: which values enter, what is fitted, ranked and refused.
#include "brv_sra/fitting/fit_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "brv_sra/fitting/estimation.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/fitting/sample_reader.h"
#include "host/analysis/headless_user_interface.h"
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
  return specification;
}

struct FitRun : testing::Test {
  HeadlessUserInterface port;
  std::vector<VariableFit> Run(const Spreadsheet& sheet, const FitSpecification& specification) {
    return RunFit(sheet, specification, {}, port);
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
                                         {std::nextafter(2.0, 1.0), true},
                                         {2.5, false},
                                         {-1.0, false},
                                         {kNan, false},
                                         {HUGE_VAL, false},
                                         {1e12, false}}) {
    sheet.VariableAt(1).MutableValues()[0] = weight;
    if (accepted) {
      EXPECT_EQ(Run(sheet, Continuous({1}))[0].moments.count, 5) << weight;
    } else {
      EXPECT_THROW(Run(sheet, Continuous({1})), CDispatchException) << weight;
    }
  }
}

TEST_F(FitRun, SelectionLeavesCasesOut) {
  Spreadsheet sheet = SheetOf({{1, 2, 4, 100}});
  sheet.SetSelection({true, "v1 < 50", {1, 1, 1, 0}});
  EXPECT_EQ(Run(sheet, Continuous({1}))[0].moments.maximum, 4);
}

TEST_F(FitRun, VariableWithoutSpreadIsInvalidAndAloneEndsTheRun) {
  const Spreadsheet sheet = SheetOf({{3, 3, 3}, {1, 2, 4}, {kNan, kNan, kNan}, {kNan, 7, kNan}});
  const auto results = Run(sheet, Continuous({1, 2, 3, 4}));
  EXPECT_TRUE(results[0].invalid);
  EXPECT_FALSE(results[1].invalid);
  EXPECT_TRUE(results[2].invalid);
  EXPECT_TRUE(results[3].invalid);
  try {
    Run(sheet, Continuous({1, 3}));
    ADD_FAILURE() << "nothing to fit";
  } catch (const CDispatchException& error) {
    EXPECT_STREQ(error.what(), "No valid variables to proceed with the analysis");
  }
}

TEST_F(FitRun, InfiniteValueIsNamed) {
  const Spreadsheet sheet = SheetOf({{3, HUGE_VAL, 5}});
  try {
    Run(sheet, Continuous({1}));
    ADD_FAILURE();
  } catch (const NumericalException& error) {
    EXPECT_EQ(error.Where(), "case 2");
  }
}

TEST_F(FitRun, DataLimitIsTakenIn32Bits) {
  EXPECT_TRUE(FitsDataLimit(1, 32'768'000));  // 262,144,000 bytes
  EXPECT_FALSE(FitsDataLimit(1, 32'768'001));
  EXPECT_TRUE(FitsDataLimit(1, 1ULL << 29U)) << "2^32 bytes are 0 in 32 bits";
}

TEST(Estimation, ValueWithoutLogarithmRulesOutTheLogNormalOnly) {
  ContinuousSpecification specification;
  specification.fit[static_cast<std::size_t>(FlagOfContinuous(DistributionCode::kLogNormal))] = true;
  specification.offsets[0] = -10;
  const std::vector<double> sorted{-1, 2, 3, 5};
  Moments moments;
  moments.logMean = kNotSet;
  const auto fits = FitContinuousDistributions({sorted, moments}, specification,
                                               ChiSquareBinning::kEqualProbabilities, [] {});
  ASSERT_EQ(fits.size(), 2U);
  EXPECT_TRUE(fits[0].IsValid());
  EXPECT_FALSE(fits[1].IsValid());
  EXPECT_TRUE(IsNotSet(fits[1].kolmogorovSmirnov.pValue));
  EXPECT_EQ(RankFits(fits, RankingCriterion::kKolmogorovSmirnov), (std::vector<std::size_t>{0, 1}));
}

TEST(Ranking, FailedFitsComeLastAndTiesKeepTheFixedOrder) {
  std::vector<DistributionFit> fits(4);
  const double statistics[] = {0.2, kNotSet, 0.1, 0.1};
  for (std::size_t i = 0; i < fits.size(); ++i) {
    fits[i].specification.values = {IsNotSet(statistics[i]) ? kNotSet : 1.0};
    fits[i].kolmogorovSmirnov.statistic = statistics[i];
  }
  EXPECT_EQ(RankFits(fits, RankingCriterion::kKolmogorovSmirnov), (std::vector<std::size_t>{2, 3, 0, 1}));
}

}  // namespace
}  // namespace brenvolt::sra
