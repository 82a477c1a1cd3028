#include "brv_sra/matrix/correlation_target.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/base/almost_equal.h"
#include "host/base/correlation_rules.h"
#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/algebra/symmetric_eigen.h"

namespace brenvolt::sra {
namespace {

constexpr double kSmallestRepaired = 1e-15;

bool IsNegative(double x) {
  return x < 0 && !AlmostEqual(x, 0.0);
}

struct Decomposition {
  std::vector<double> values;
  std::vector<double> vectors;

  explicit Decomposition(std::size_t k) : values(k), vectors(k * k) {}
  bool Of(std::span<const double> matrix) {
    return static_cast<bool>(SymmetricEigen(matrix, values.size(), values, vectors));
  }
};

// Whether a repaired matrix's eigenvalues, ascending, are positive as far as a decomposition can tell.
bool ArePositiveUpToRounding(std::span<const double> values) {
  const double rounding =
      static_cast<double>(values.size()) * std::numeric_limits<double>::epsilon() * values.back();
  return values.front() >= -rounding;
}

CorrelationRepair DescribeRepair(std::span<const double> before, std::span<const double> after, std::size_t k,
                                 double smallestEigenvalue) {
  CorrelationRepair repair;
  repair.smallestEigenvalue = smallestEigenvalue;
  repair.matrix.assign(after.begin(), after.end());
  double largest = -1;
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const double change = std::abs(after[i * k + j] - before[i * k + j]);
      if (!(change > largest)) continue;
      largest = change;
      repair.row = i;
      repair.column = j;
      repair.from = before[i * k + j];
      repair.to = after[i * k + j];
    }
  }
  return repair;
}

}  // namespace

void RepairCorrelationMatrix(std::span<double> matrix, std::size_t k, std::span<double> eigenvalues,
                             std::span<const double> eigenvectors) {
  for (double& value : eigenvalues)
    if (IsNegative(value)) value = kSmallestRepaired;
  RebuildSymmetric(eigenvalues, eigenvectors, k, matrix);
  std::vector<double> roots(k);
  for (std::size_t i = 0; i < k; ++i) roots[i] = std::sqrt(matrix[i * k + i]);
  for (std::size_t i = 0; i < k; ++i)
    for (std::size_t j = 0; j < k; ++j) matrix[i * k + j] /= roots[i] * roots[j];
  for (std::size_t i = 0; i < k; ++i) matrix[i * k + i] = 1;
}

Result<TargetFactor> FactorTarget(std::span<const double> matrix, std::size_t k) {
  const Fault unusable{FaultIdentifier::kCorrelationsUnusable};
  TargetFactor result;
  std::vector<double> target(k * k);
  for (std::size_t i = 0; i < k; ++i) {
    target[i * k + i] = 1;
    for (std::size_t j = 0; j < i; ++j) target[i * k + j] = target[j * k + i] = matrix[i * k + j];
  }
  Decomposition eigen(k);
  if (!eigen.Of(target)) return unusable;
  if (!std::ranges::all_of(eigen.values, IsPositiveEigenvalue)) {
    const std::vector<double> given = target;
    const double smallest = eigen.values.front();
    RepairCorrelationMatrix(target, k, eigen.values, eigen.vectors);
    if (!eigen.Of(target) || !ArePositiveUpToRounding(eigen.values)) return unusable;
    result.repair = DescribeRepair(given, target, k, smallest);
  }
  if (!Cholesky(target, k, SmallPivot::kLift)) return unusable;
  result.factor = std::move(target);
  return result;
}

}  // namespace brenvolt::sra
