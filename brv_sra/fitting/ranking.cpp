#include "brv_sra/fitting/ranking.h"

#include <cmath>
#include <map>

namespace brenvolt::sra {
namespace {

double StatisticOf(const DistributionFit& fit, RankingCriterion criterion) {
  switch (criterion) {
    case RankingCriterion::kChiSquare:
      return fit.chiSquare.statistic;
    case RankingCriterion::kAndersonDarling:
      return fit.andersonDarling.statistic;
    case RankingCriterion::kKolmogorovSmirnov:
      break;
  }
  return fit.kolmogorovSmirnov.statistic;
}

// No key is a NaN, which has no place in an order.
double RankingKey(const DistributionFit& fit, RankingCriterion criterion) {
  const double statistic = StatisticOf(fit, criterion);
  const bool hasKey = fit.IsValid() && !IsNotSet(statistic) && !std::isnan(statistic);
  return hasKey ? statistic : kInvalidRankingKey;
}

}  // namespace

std::vector<std::size_t> RankFits(std::span<const DistributionFit> fits, RankingCriterion criterion) {
  std::multimap<double, std::size_t> order;
  for (std::size_t i = 0; i < fits.size(); ++i) order.emplace(RankingKey(fits[i], criterion), i);
  std::vector<std::size_t> ranked;
  for (const auto& [key, index] : order) ranked.push_back(index);
  return ranked;
}

std::optional<std::size_t> DefaultFit(std::span<const DistributionFit> fits,
                                      std::span<const std::size_t> ranked) {
  for (const std::size_t index : ranked) {
    if (fits[index].IsValid()) return index;
  }
  return std::nullopt;
}

}  // namespace brenvolt::sra
