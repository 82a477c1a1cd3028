#include "brv_sra/matrix/dialogs/correlation_verdict.h"

#include <cmath>

#include "brv_sra/matrix/correlation_target.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"
#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/algebra/symmetric_eigen.h"

namespace brenvolt::sra {
namespace {

std::string Readable(double x) {
  return FormatNumber("%.4g", x);
}

// "h, a: -0.9 -> -0.5"
std::string ChangeLine(const std::string& first, const std::string& second, double from, double to) {
  return first + ", " + second + ": " + Readable(from) + " -> " + Readable(to);
}

std::vector<double> EigenvaluesOf(std::span<const double> matrix, std::size_t k) {
  std::vector<double> values(k);
  if (k == 0 || !SymmetricEigen(matrix, k, values)) return {};
  return values;
}

}  // namespace

MatrixVerdict VerdictOnCorrelations(std::span<const double> matrix, std::span<const std::string> names) {
  const std::size_t k = names.size();
  MatrixVerdict verdict;
  verdict.eigenvalues = EigenvaluesOf(matrix, k);
  const auto factored = FactorTarget(matrix, k);
  verdict.text = ResourceString(factored ? kDesignIsPositiveDefinite : kDesignCannotBeRepaired);
  if (!factored || !factored->repair) return verdict;
  const CorrelationRepair& repair = *factored->repair;
  verdict.text = FormatResource(kDesignWouldBeRepaired, Readable(repair.smallestEigenvalue),
                                ChangeLine(names[repair.column], names[repair.row], repair.from, repair.to));
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = i + 1; j < k; ++j) {
      const double from = matrix[i * k + j];
      const double to = repair.matrix[i * k + j];
      if (Readable(from) != Readable(to)) verdict.changes.push_back(ChangeLine(names[i], names[j], from, to));
    }
  }
  return verdict;
}

MatrixVerdict VerdictOnNoiseCorrelations(const std::vector<double>& matrix) {
  const auto k = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(matrix.size()))));
  MatrixVerdict verdict;
  verdict.eigenvalues = EigenvaluesOf(matrix, k);
  std::vector<double> factor = matrix;
  verdict.text = ResourceString(Cholesky(factor, k) ? kDesignIsPositiveDefinite : kCorrelationsCarryNoNoise);
  return verdict;
}

}  // namespace brenvolt::sra
