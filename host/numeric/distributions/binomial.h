// The binomial distribution: successes, each of probability `proportion`, in a number of trials.
#pragma once

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

struct Binomial {
  static constexpr DistributionFacts kFacts{
      .code = DistributionCode::kBinomial,
      .name = "Binomial",
      .shortName = "binom",
      .isContinuous = false,
      .parameters = {{{"proportion", ParameterRange::kProportion, ParameterUnit::kNone},
                      {"trials", ParameterRange::kTrials, ParameterUnit::kNone}}},
      .curves = {"Binom", "iBinom"}};
};

extern template class Distribution<Binomial>;

}  // namespace brenvolt
