#include "host/statistics/sensitivity.h"

#include <algorithm>
#include <cmath>

#include "host/base/parallel.h"
#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/algebra/correlation.h"
#include "host/statistics/equal_count_classes.h"
#include "host/statistics/moments.h"

namespace brenvolt {
namespace {

// The columns without the cases in which any of them is NaN, the response last. A predictor that has no value at
// all leaves out no case; its column is constant.
std::vector<std::vector<double>> CompleteColumns(std::span<const double> response,
                                                 std::span<const std::span<const double>> predictors) {
  const std::vector<double> constant(response.size());
  std::vector<std::span<const double>> all;
  for (const std::span<const double> predictor : predictors) {
    const bool isEmpty = std::ranges::all_of(predictor, [](double x) { return std::isnan(x); });
    all.push_back(isEmpty ? std::span<const double>(constant) : predictor);
  }
  all.push_back(response);
  std::vector<std::vector<double>> columns(all.size());
  for (std::size_t i = 0; i < response.size(); ++i) {
    const auto isMissing = [i](std::span<const double> column) { return std::isnan(column[i]); };
    if (std::ranges::any_of(all, isMissing)) continue;
    for (std::size_t j = 0; j < all.size(); ++j) columns[j].push_back(all[j][i]);
  }
  return columns;
}

// The means of the classes against the mean of all, as a share of the sum of squares.
double FirstOrder(std::span<const double> predictor, std::span<const double> response) {
  const std::size_t n = response.size();
  const auto [order, classes] = OrderCases(predictor);
  MomentAccumulator all;
  for (const double y : response) all.Add(y, 1);
  const Moments moments = all.Finish();
  const double total = moments.standardDeviation * moments.standardDeviation * static_cast<double>(n - 1);
  const double freedom = static_cast<double>(n) - static_cast<double>(classes.size());
  if (!(total > 0) || freedom <= 0) return kNotSet;
  double within = 0;
  for (const EqualCountClass& one : classes) {
    MomentAccumulator members;
    for (std::size_t r = one.begin; r < one.end; ++r) members.Add(response[order[r]], 1);
    const double deviation = members.Finish().standardDeviation;
    within += deviation * deviation * static_cast<double>(one.end - one.begin - 1);
  }
  return std::max(0.0, 1 - within / total * static_cast<double>(n - 1) / freedom);
}

// The solution b of R b = r by forward and back substitution in the factor of R.
std::vector<double> SolveFactored(std::span<const double> factor, std::vector<double> b) {
  const std::size_t k = b.size();
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < i; ++j) b[i] -= factor[i * k + j] * b[j];
    b[i] /= factor[i * k + i];
  }
  for (std::size_t i = k; i-- > 0;) {
    for (std::size_t j = i + 1; j < k; ++j) b[i] -= factor[j * k + i] * b[j];
    b[i] /= factor[i * k + i];
  }
  return b;
}

// Fills the standardized coefficients of the predictors that vary, from the correlations of all columns.
void Regress(const std::vector<double>& correlations, std::size_t columns, SensitivityTable& table) {
  const std::size_t response = columns - 1;
  std::vector<std::size_t> varying;
  for (std::size_t j = 0; j < response; ++j) {
    if (!std::isnan(correlations[j * columns + response])) varying.push_back(j);
  }
  const std::size_t k = varying.size();
  if (k == 0 || table.count <= static_cast<std::int64_t>(k) + 1) return;
  std::vector<double> matrix(k * k);
  std::vector<double> right(k);
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < k; ++j) matrix[i * k + j] = correlations[varying[i] * columns + varying[j]];
    right[i] = correlations[varying[i] * columns + response];
  }
  if (!Cholesky(matrix, k)) return;
  const std::vector<double> coefficients = SolveFactored(matrix, right);
  table.rSquared = 0;
  for (std::size_t i = 0; i < k; ++i) {
    SensitivityRow& row = table.rows[varying[i]];
    row.standardizedCoefficient = coefficients[i];
    row.linearContribution = coefficients[i] * coefficients[i];
    table.rSquared += coefficients[i] * right[i];
  }
  // Rounding may carry a sum of exact shares past the whole.
  table.rSquared = std::clamp(table.rSquared, 0.0, 1.0);
}

void FillRankContributions(std::vector<SensitivityRow>& rows) {
  const auto square = [](const SensitivityRow& row) {
    return IsNotSet(row.rank.coefficient) ? 0 : row.rank.coefficient * row.rank.coefficient;
  };
  double total = 0;
  for (const SensitivityRow& row : rows) total += square(row);
  if (total == 0) return;
  for (SensitivityRow& row : rows) row.rankContribution = square(row) / total;
}

}  // namespace

SensitivityTable AnalyseSensitivity(std::span<const double> response,
                                    std::span<const std::span<const double>> predictors) {
  const auto columns = CompleteColumns(response, predictors);
  const std::vector<double>& y = columns.back();
  const std::size_t n = y.size();
  const std::size_t k = columns.size();
  SensitivityTable table;
  table.count = static_cast<std::int64_t>(n);
  table.rows.resize(predictors.size());
  std::vector<double> rows(n * k);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < k; ++j) rows[i * k + j] = columns[j][i];
  }
  std::vector<double> correlations(k * k);
  PearsonCorrelation(rows, n, k, correlations);
  ParallelFor(predictors.size(), [&](std::size_t j) {
    SensitivityRow& row = table.rows[j];
    row.predictor = j;
    row.rank = SpearmanTest(columns[j], y);
    row.linear.count = table.count;
    const double r = correlations[j * k + k - 1];
    if (std::isnan(r)) return;
    row.linear.coefficient = r;
    row.linear.pValue = CorrelationPValue(r, table.count);
    row.firstOrder = FirstOrder(columns[j], y);
  });
  Regress(correlations, k, table);
  FillRankContributions(table.rows);
  std::ranges::stable_sort(table.rows, std::ranges::greater{}, &SensitivityRow::rankContribution);
  return table;
}

}  // namespace brenvolt
