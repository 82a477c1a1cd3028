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
      {RankingCriterion::kChiSquare, {1, 3, 2, 4, 0}, 1},
      // A statistic beyond the key of failed fits comes after them by this one.
      {RankingCriterion::kAndersonDarling, {3, 1, 0, 2, 4}, 3},
  };
  for (const Case& c : cases) {
    const auto ranked = RankFits(fits, {.criterion = c.criterion, .count = 10});
    EXPECT_EQ(ranked, c.ranked) << static_cast<int>(c.criterion);
    EXPECT_EQ(DefaultFit(fits, ranked), c.best) << static_cast<int>(c.criterion);
  }
}

// What beats every other fit by every statistic is of no use where the data cannot have come from it.
TEST(RankingOrder, FitsThatTheDataContradictComeLastByEveryCriterion) {
  DistributionFit failed = Fit(0.001, 0.001, 0.001);
  failed.specification.values = {kNotSet};
  DistributionFit contradicted = Fit(0.01, 0.01, 0.01);
  contradicted.valuesWithoutDensity = 3;
  DistributionFit simple = Fit(0.3, 5000, 3);
  simple.logLikelihood = -100;
  simple.estimatedParameters = 1;
  DistributionFit rich = Fit(0.2, 7, 2000);
  rich.logLikelihood = -98;
  rich.estimatedParameters = 2;
  DistributionFit infinite =
      Fit(0.4, kNotSet, 5);  // a density of the sample that is infinite has no logarithm
  const std::vector<DistributionFit> fits{failed, contradicted, infinite, simple, rich};
  using enum RankingCriterion;
  const struct {
    Ranking ranking;
    std::vector<std::size_t> ranked;
  } cases[] = {
      {{kKolmogorovSmirnov, 1000, true}, {4, 3, 2, 1, 0}},
      {{kChiSquare, 1000, true}, {4, 3, 2, 1, 0}},
      {{kAndersonDarling, 1000, true}, {3, 2, 4, 1, 0}},
      {{kChiSquare, 1000, false}, {4, 3, 2, 1, 0}},
      {{kAkaike, 1000, true}, {4, 3, 2, 1, 0}},
      {{kAkaike, 1000, false}, {4, 3, 2, 1, 0}},
      {{kBayes, 1000, true}, {3, 4, 2, 1, 0}},
      {{kKolmogorovSmirnov, 1000, false}, {1, 4, 3, 2, 0}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RankFits(fits, c.ranking), c.ranked)
        << static_cast<int>(c.ranking.criterion) << " " << c.ranking.contradictedLast;
  }
}

TEST(RankingOrder, DefaultFitPassesOverFailedFitsRankedFirst) {
  DistributionFit failed = Fit(0.1, 1, 1);
  failed.specification.values = {kNotSet};
  const std::vector<DistributionFit> fits{failed, Fit(0.5, 1, 5000)};
  const auto ranked = RankFits(fits, {.criterion = RankingCriterion::kAndersonDarling, .count = 10});
  EXPECT_EQ(ranked.front(), 0U);
  EXPECT_EQ(DefaultFit(fits, ranked), 1U);
  EXPECT_EQ(DefaultFit(std::vector{failed}, std::vector<std::size_t>{0}), std::nullopt);
}

}  // namespace
}  // namespace brenvolt::sra
