#include "brv_sra/fitting/ranking.h"

#include <gtest/gtest.h>

#include <limits>

namespace brenvolt::sra {
namespace {

DistributionFit Fit(double kolmogorovSmirnov, double chiSquare, double andersonDarling) {
  DistributionFit fit;
  fit.specification.values = {1.0};
  fit.kolmogorovSmirnov.statistic = kolmogorovSmirnov;
  fit.chiSquare.statistic = chiSquare;
  fit.andersonDarling.statistic = andersonDarling;
  return fit;
}

TEST(RankingOrder, EveryCriterionUsesItsOwnStatisticAndTiesKeepTheFixedOrder) {
  DistributionFit failed = Fit(0.001, 0.001, 0.001);
  failed.specification.values = {kNotSet};
  const std::vector<DistributionFit> fits{failed, Fit(0.3, 7, 1.5), Fit(0.2, 9, kNotSet), Fit(0.2, 7, 0.5),
                                          Fit(0.4, std::numeric_limits<double>::quiet_NaN(), 2000)};
  struct Case {
    RankingCriterion criterion;
    std::vector<std::size_t> ranked;
    std::size_t best;
  };
  const Case cases[] = {
      {RankingCriterion::kKolmogorovSmirnov, {2, 3, 1, 4, 0}, 2},
      {RankingCriterion::kChiSquare, {1, 3, 2, 0, 4}, 1},
      // A statistic beyond the key of failed fits comes after them.
      {RankingCriterion::kAndersonDarling, {3, 1, 0, 2, 4}, 3},
  };
  for (const Case& c : cases) {
    const auto ranked = RankFits(fits, c.criterion);
    EXPECT_EQ(ranked, c.ranked) << static_cast<int>(c.criterion);
    EXPECT_EQ(DefaultFit(fits, ranked), c.best) << static_cast<int>(c.criterion);
  }
}

TEST(RankingOrder, DefaultFitPassesOverFailedFitsRankedFirst) {
  DistributionFit failed = Fit(0.1, 1, 1);
  failed.specification.values = {kNotSet};
  const std::vector<DistributionFit> fits{failed, Fit(0.5, 5000, 1)};
  const auto ranked = RankFits(fits, RankingCriterion::kChiSquare);
  EXPECT_EQ(ranked.front(), 0U);
  EXPECT_EQ(DefaultFit(fits, ranked), 1U);
  EXPECT_EQ(DefaultFit(std::vector{failed}, std::vector<std::size_t>{0}), std::nullopt);
}

}  // namespace
}  // namespace brenvolt::sra
