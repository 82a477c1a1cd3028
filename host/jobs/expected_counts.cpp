#include "host/jobs/expected_counts.h"

#include <algorithm>
#include <cmath>

#include "host/base/truncated_tail.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

void AddDensity(const AnyDistribution& distribution, double from, double to, double factor,
                GraphSeries& expected) {
  expected.style = SeriesStyle::kLine;
  for (std::size_t i = 0; i < kCurvePoints; ++i) {
    const double x = std::lerp(from, to, static_cast<double>(i) / (kCurvePoints - 1));
    const double density = distribution.Density(x);
    if (!std::isfinite(density)) continue;  // a pole
    expected.x.push_back(x);
    expected.y.push_back(density * factor);
  }
}

// A class holds its upper bound, the first its lower one as well.
void AddClasses(const AnyDistribution& distribution, std::span<const double> bounds, double count,
                GraphSeries& expected) {
  expected.style = SeriesStyle::kPoints;
  for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
    const double below = distribution.Cdf(i == 0 ? std::nextafter(bounds[i], -INFINITY) : bounds[i]);
    expected.x.push_back(bounds[i] / 2 + bounds[i + 1] / 2);
    expected.y.push_back(count * (distribution.Cdf(bounds[i + 1]) - below));
  }
}

}  // namespace

GraphSeries ExpectedCounts(const NotedDistribution& noted, bool isTruncated, std::span<const double> bounds,
                           double count) {
  GraphSeries expected;
  expected.name = NotationOf(noted);
  const AnyDistribution distribution(noted.code, noted.values, IsNotSet(noted.offset) ? 0 : noted.offset);
  if (!distribution.Facts().isContinuous) {
    if (!isTruncated && !noted.minimum && !noted.maximum) AddClasses(distribution, bounds, count, expected);
    return expected;
  }
  double low = isTruncated ? kTruncatedTail : 0;
  double high = isTruncated ? 1 - kTruncatedTail : 1;
  if (noted.minimum) low = std::max(low, distribution.Cdf(*noted.minimum));
  if (noted.maximum) high = std::min(high, distribution.Cdf(*noted.maximum));
  if (!(low < high)) return expected;
  const double from = std::max(bounds.front(), low > 0 ? distribution.Quantile(low) : -INFINITY);
  const double to = std::min(bounds.back(), high < 1 ? distribution.Quantile(high) : INFINITY);
  const double factor = count * (bounds[1] - bounds[0]) / (high - low);
  if (from < to) AddDensity(distribution, from, to, factor, expected);
  return expected;
}

}  // namespace brenvolt
