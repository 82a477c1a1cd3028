#include "brv_sra/fitting/ranking.h"

#include <map>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

// After every statistic that a valid fit can have.
constexpr double kInvalidKey = 1000;

double RankingKey(const DistributionFit& fit, RankingCriterion criterion) {
  const double statistic =
      criterion == RankingCriterion::kKolmogorovSmirnov ? fit.kolmogorovSmirnov.statistic : kNotSet;
  return fit.IsValid() && !IsNotSet(statistic) ? statistic : kInvalidKey;
}

}  // namespace

std::vector<std::size_t> RankFits(std::span<const DistributionFit> fits, RankingCriterion criterion) {
  std::multimap<double, std::size_t> order;
  for (std::size_t i = 0; i < fits.size(); ++i) order.emplace(RankingKey(fits[i], criterion), i);
  std::vector<std::size_t> ranked;
  for (const auto& [key, index] : order) ranked.push_back(index);
  return ranked;
}

std::string RankingTitle(RankingCriterion criterion) {
  switch (criterion) {
    case RankingCriterion::kChiSquare:
      return std::string(ResourceString(kTitleRankedByChiSquare));
    case RankingCriterion::kAndersonDarling:
      return std::string(ResourceString(kTitleRankedByAndersonDarling));
    case RankingCriterion::kKolmogorovSmirnov:
      break;
  }
  return std::string(ResourceString(kTitleRankedByKolmogorovSmirnov));
}

}  // namespace brenvolt::sra
