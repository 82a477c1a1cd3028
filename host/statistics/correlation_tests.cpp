#include "host/statistics/correlation_tests.h"

#include <algorithm>
#include <array>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <vector>

#include "host/numeric/algebra/correlation.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt {
namespace {

struct Pairs {
  std::vector<double> x;
  std::vector<double> y;
};

Pairs CompletePairs(std::span<const double> x, std::span<const double> y) {
  Pairs pairs;
  pairs.x.reserve(x.size());
  pairs.y.reserve(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (std::isnan(x[i]) || std::isnan(y[i])) continue;
    pairs.x.push_back(x[i]);
    pairs.y.push_back(y[i]);
  }
  return pairs;
}

CorrelationTest Correlate(const Pairs& pairs) {
  const std::size_t n = pairs.x.size();
  std::vector<double> rows(2 * n);
  for (std::size_t i = 0; i < n; ++i) {
    rows[2 * i] = pairs.x[i];
    rows[2 * i + 1] = pairs.y[i];
  }
  std::array<double, 4> matrix{};
  PearsonCorrelation(rows, n, 2, matrix);
  CorrelationTest test{static_cast<std::int64_t>(n)};
  if (std::isnan(matrix[1])) return test;
  test.coefficient = matrix[1];
  test.pValue = CorrelationPValue(test.coefficient, test.count);
  return test;
}

}  // namespace

double CorrelationPValue(double coefficient, std::int64_t count) {
  if (count < 3 || IsNotSet(coefficient)) return kNotSet;
  const auto degrees = static_cast<double>(count - 2);
  const double rest = (1 - coefficient) * (1 + coefficient);
  if (rest <= 0) return 0;
  const double t = std::abs(coefficient) * std::sqrt(degrees / rest);
  return std::min(1.0, 2 * cdf(complement(boost::math::students_t(degrees), t)));
}

CorrelationTest SpearmanTest(std::span<const double> x, std::span<const double> y) {
  Pairs pairs = CompletePairs(x, y);
  std::vector<double> ranks(pairs.x.size());
  AverageRanks(pairs.x, ranks);
  pairs.x.swap(ranks);
  AverageRanks(pairs.y, ranks);
  pairs.y.swap(ranks);
  return Correlate(pairs);
}

}  // namespace brenvolt
