#include "host/statistics/normality.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/goodness_of_fit/anderson_darling_sum.h"
#include "host/numeric/vector/sorting.h"
#include "host/numeric/vector/vector_forms.h"
#include "host/statistics/moments.h"

namespace brenvolt {
namespace {

constexpr std::int64_t kFewest = 8;
constexpr double kEndOfTable = 10.0;

// A² of sorted standard scores. The upper tail is the lower one of the negative score, so that neither
// probability is one minus a number close to one.
double StatisticOf(std::span<const double> scores) {
  const std::size_t n = scores.size();
  std::vector<double> below(n);
  std::vector<double> above(n);
  std::transform(scores.begin(), scores.end(), above.begin(), [](double score) { return -score; });
  vector_forms::NormalCdf(scores, 0, 1, below);
  vector_forms::NormalCdf(above, 0, 1, above);
  for (std::vector<double>* tail : {&below, &above}) {
    for (double& probability : *tail) probability = std::max(probability, std::numeric_limits<double>::min());
  }
  AndersonDarlingSum sum(n);
  sum.Add(below, above);
  return sum.Statistic();
}

double PValueOf(double statistic, std::int64_t count) {
  const auto n = static_cast<double>(count);
  const double a = std::min(statistic * (1 + 0.75 / n + 2.25 / (n * n)), kEndOfTable);
  if (a < 0.2) return 1 - std::exp(-13.436 + 101.14 * a - 223.73 * a * a);
  if (a < 0.34) return 1 - std::exp(-8.318 + 42.796 * a - 59.938 * a * a);
  if (a < 0.6) return std::exp(0.9177 - 4.279 * a - 1.38 * a * a);
  return std::exp(1.2937 - 5.709 * a + 0.0186 * a * a);
}

}  // namespace

NormalityTest TestNormality(std::span<const double> values) {
  MomentAccumulator accumulator;
  std::vector<double> scores;
  scores.reserve(values.size());
  for (const double x : values) {
    if (std::isnan(x)) continue;
    accumulator.Add(x, 1);
    scores.push_back(x);
  }
  const Moments moments = accumulator.Finish();
  NormalityTest test{moments.count};
  if (test.count < kFewest || !(moments.standardDeviation > 0) || !std::isfinite(moments.standardDeviation)) {
    return test;
  }
  for (double& score : scores) score = (score - moments.mean) / moments.standardDeviation;
  SortAscending(scores);
  test.statistic = StatisticOf(scores);
  test.pValue = PValueOf(test.statistic, test.count);
  return test;
}

}  // namespace brenvolt
