#include "brv_sra/fitting/ranking.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <utility>

namespace brenvolt::sra {
namespace {

// A smaller one comes first.
enum class Standing : std::uint8_t { kRanked, kWithoutStatistic, kContradicted, kFailed };

double StatisticOf(const DistributionFit& fit, const Ranking& ranking) {
  switch (ranking.criterion) {
    case RankingCriterion::kChiSquare:
      return fit.chiSquare.statistic;
    case RankingCriterion::kAndersonDarling:
      return fit.andersonDarling.statistic;
    case RankingCriterion::kAkaike:
      return fit.Aic();
    case RankingCriterion::kBayes:
      return fit.Bic(ranking.count);
    case RankingCriterion::kKolmogorovSmirnov:
      break;
  }
  return fit.kolmogorovSmirnov.statistic;
}

// No key is a NaN, which has no place in an order.
std::pair<Standing, double> RankingKey(const DistributionFit& fit, const Ranking& ranking) {
  const double statistic = StatisticOf(fit, ranking);
  const bool hasKey = fit.IsValid() && !IsNotSet(statistic) && !std::isnan(statistic);
  const double key = hasKey ? statistic : kInvalidRankingKey;
  if (!RanksContradictedLast(ranking)) return {Standing::kRanked, key};
  if (!fit.IsValid()) return {Standing::kFailed, key};
  if (fit.IsContradicted()) return {Standing::kContradicted, key};
  return {hasKey ? Standing::kRanked : Standing::kWithoutStatistic, key};
}

}  // namespace

bool RanksContradictedLast(const Ranking& ranking) {
  return ranking.contradictedLast || (ranking.criterion != RankingCriterion::kKolmogorovSmirnov &&
                                      ranking.criterion != RankingCriterion::kAndersonDarling);
}

std::vector<std::size_t> RankFits(std::span<const DistributionFit> fits, const Ranking& ranking) {
  std::multimap<std::pair<Standing, double>, std::size_t> order;
  for (std::size_t i = 0; i < fits.size(); ++i) order.emplace(RankingKey(fits[i], ranking), i);
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
