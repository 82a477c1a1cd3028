#include "host/statistics/correlation_tests.h"

#include <algorithm>
#include <array>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <limits>
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

std::vector<double> SpearmanMatrix(std::span<const std::span<const double>> columns) {
  const std::size_t k = columns.size();
  std::vector<double> matrix(k * k);
  const bool isComplete = std::ranges::all_of(columns, [](std::span<const double> column) {
    return std::ranges::none_of(column, [](double x) { return std::isnan(x); });
  });
  if (isComplete && k > 0 && columns.front().size() > 1) {
    const std::size_t n = columns.front().size();
    std::vector<double> rows(n * k);
    std::vector<double> ranks(n);
    for (std::size_t j = 0; j < k; ++j) {
      AverageRanks(columns[j], ranks);
      for (std::size_t i = 0; i < n; ++i) rows[i * k + j] = ranks[i];
    }
    PearsonCorrelation(rows, n, k, matrix);
    return matrix;
  }
  for (std::size_t i = 0; i < k; ++i) {
    matrix[i * k + i] = 1;
    for (std::size_t j = 0; j < i; ++j) {
      const double coefficient = SpearmanTest(columns[i], columns[j]).coefficient;
      matrix[i * k + j] = matrix[j * k + i] =
          IsNotSet(coefficient) ? std::numeric_limits<double>::quiet_NaN() : coefficient;
    }
  }
  return matrix;
}

}  // namespace brenvolt
