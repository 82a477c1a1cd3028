#include "host/numeric/algebra/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "host/base/parallel.h"
#include "host/numeric/algebra/matrix_product.h"
#include "host/numeric/vector/algebra_kernels.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt {
namespace {

constexpr std::size_t kRowBlock = 64;           // rows whose share of a product is summed apart
constexpr std::size_t kSerialRows = 320;        // matrices below this are faster on one thread
constexpr std::size_t kReflectedRows = 8;       // rows that share one reading of a Householder vector
constexpr std::size_t kRotationBatch = 32'768;  // rotations kept before they are applied together
constexpr std::size_t kMaxIterations = 60;      // per eigenvalue; two or three are usual
constexpr double kNegligible = 1e-100;          // against entries of which the largest is about 1

void Blocks(bool parallel, std::size_t count, std::size_t block,
            const std::function<void(std::size_t, std::size_t)>& body) {
  if (parallel) return ParallelBlocks(count, block, body);
  for (std::size_t i = 0; i < count; i += block) body(i, std::min(count, i + block));
}

// sqrt(a^2 + b^2) by operations that are rounded alike everywhere.
double Hypotenuse(double a, double b) {
  const double large = std::max(std::abs(a), std::abs(b));
  if (large == 0) return 0;
  const double ratio = std::min(std::abs(a), std::abs(b)) / large;
  return large * std::sqrt(1 + ratio * ratio);
}

// Reduces a symmetric matrix (lower triangle, overwritten) from its last row upward to tridiagonal form
// T = H_1 ... H_{k-1} A H_{k-1} ... H_1 with H_i = I - factor[i] v_i v_i', v_i kept in row i before the
// diagonal. The update of rank 2 of one step and the product of the next step share one pass over the matrix.
class Tridiagonalisation {
 public:
  Tridiagonalisation(std::vector<double>& matrix, std::size_t k)
      : matrix_(matrix), k_(k), diagonal(k), subdiagonal(k), factor(k), w_(k), next_(k), zeros_(k) {
    partial_.resize((k / kRowBlock + 1) * k);
    const double* v = zeros_.data();
    for (std::size_t i = k - 1; i > 0; --i) {
      diagonal[i] = Row(i)[i];
      MakeReflection(i);
      MultiplyUpdated(i, v);
      v = Row(i);
      FinishStep(i);
      UpdateRow(i - 1, v);
    }
    diagonal[0] = Row(0)[0];
  }

 private:
  std::vector<double>& matrix_;
  std::size_t k_;

 public:
  std::vector<double> diagonal;
  std::vector<double> subdiagonal;  // [i] couples i - 1 and i
  std::vector<double> factor;

 private:
  double* Row(std::size_t i) { return matrix_.data() + i * k_; }

  // Replaces row i by the vector that reflects it onto its last element before the diagonal.
  void MakeReflection(std::size_t i) {
    double* x = Row(i);
    double largest = 0;
    for (std::size_t t = 0; t + 1 < i; ++t) largest = std::max(largest, std::abs(x[t]));
    subdiagonal[i] = x[i - 1];
    if (largest < kNegligible) {
      std::fill(x, x + i, 0.0);
      return;
    }
    const double norm = std::sqrt(kernels::Dot(x, x, i));
    const double last = x[i - 1];
    subdiagonal[i] = -std::copysign(norm, last);
    x[i - 1] = last - subdiagonal[i];
    for (std::size_t t = 0; t < i; ++t) x[t] /= norm;
    factor[i] = 1 / (1 + std::abs(last) / norm);
  }

  // Applies the update (v, w_) of the step before to the rows above i, and sets next_ to their product with
  // v_i.
  void MultiplyUpdated(std::size_t i, const double* v) {
    const double* x = Row(i);
    Blocks(i >= kSerialRows, i, kRowBlock, [&](std::size_t begin, std::size_t end) {
      double* y = partial_.data() + begin / kRowBlock * k_;
      std::fill(y, y + end, 0.0);
      const kernels::RankTwoStep step{v, w_.data(), x, y};
      for (std::size_t j = begin; j < end; ++j) {
        double* row = Row(j);
        const double dot = kernels::UpdateAndMultiply(row, v[j], w_[j], x[j], step, j);
        row[j] -= 2 * v[j] * w_[j];
        y[j] += dot + row[j] * x[j];
      }
    });
    std::fill(next_.begin(), next_.begin() + static_cast<std::ptrdiff_t>(i), 0.0);
    for (std::size_t begin = 0; begin < i; begin += kRowBlock) {
      const double* y = partial_.data() + begin / kRowBlock * k_;
      kernels::AddMultiple(1, y, next_.data(), std::min(i, begin + kRowBlock));
    }
  }

  // w = p - (f / 2) (v'p) v with p = f A v (Golub & Van Loan 2013, section 8.3.1).
  void FinishStep(std::size_t i) {
    const double* v = Row(i);
    const double f = factor[i];
    for (std::size_t t = 0; t < i; ++t) w_[t] = f * next_[t];
    kernels::AddMultiple(-0.5 * f * kernels::Dot(v, w_.data(), i), v, w_.data(), i);
  }

  void UpdateRow(std::size_t j, const double* v) {
    double* row = Row(j);
    for (std::size_t t = 0; t <= j; ++t) row[t] -= v[j] * w_[t] + w_[j] * v[t];
  }

  std::vector<double> w_;
  std::vector<double> next_;
  std::vector<double> zeros_;
  std::vector<double> partial_;
};

// The transpose of H_{k-1} ... H_1; its rows are independent of each other.
std::vector<double> TransposedReflections(const std::vector<double>& matrix,
                                          const std::vector<double>& factor) {
  const std::size_t k = factor.size();
  std::vector<double> result(k * k);
  for (std::size_t i = 0; i < k; ++i) result[i * k + i] = 1;
  Blocks(k >= kSerialRows, k, kReflectedRows, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin + 1; i < k; ++i) {
      if (factor[i] == 0) continue;
      const double* v = matrix.data() + i * k;
      for (std::size_t r = begin; r < std::min(end, i); ++r) {
        double* row = result.data() + r * k;
        kernels::AddMultiple(-factor[i] * kernels::Dot(row, v, i), v, row, i);
      }
    }
  });
  return result;
}

// Rotations of the rows of a matrix, applied in batches: panels of columns are independent and fit a cache.
class RotationBatch {
 public:
  RotationBatch(std::vector<double>& matrix, std::size_t k) : matrix_(matrix), k_(k) {}

  void Add(std::size_t row, double cosine, double sine) {
    if (!matrix_.empty()) rotations_.push_back({row, cosine, sine});
  }

  void ApplyIfFull() {
    if (rotations_.size() >= kRotationBatch) Apply();
  }

  void Apply() {
    if (rotations_.empty()) return;
    Blocks(k_ * rotations_.size() > 100'000, k_, kernels::kRotationWidth,
           [&](std::size_t begin, std::size_t end) {
             kernels::ApplyRotations(rotations_, matrix_.data() + begin, k_, end - begin);
           });
    rotations_.clear();
  }

 private:
  std::vector<double>& matrix_;
  std::size_t k_;
  std::vector<kernels::Rotation> rotations_;
};

// One implicit QL sweep over the unreduced block first..last (Wilkinson & Reinsch 1971, II/4, procedure
// imtql2).
void SweepBlock(std::size_t first, std::size_t last, std::vector<double>& d, std::vector<double>& e,
                RotationBatch& rotations) {
  double g = (d[first + 1] - d[first]) / (2 * e[first]);
  g = d[last] - d[first] + e[first] / (g + std::copysign(Hypotenuse(g, 1), g));
  double sine = 1;
  double cosine = 1;
  double p = 0;
  for (std::size_t i = last; i-- > first;) {
    const double f = sine * e[i];
    const double b = cosine * e[i];
    const double r = Hypotenuse(f, g);
    e[i + 1] = r;
    if (r == 0) {  // underflow has split the block
      d[i + 1] -= p;
      e[last] = 0;
      return;
    }
    sine = f / r;
    cosine = g / r;
    g = d[i + 1] - p;
    const double t = (d[i] - g) * sine + 2 * cosine * b;
    p = sine * t;
    d[i + 1] = g + p;
    g = cosine * t - b;
    rotations.Add(i, cosine, sine);
  }
  d[first] -= p;
  e[first] = g;
  e[last] = 0;
}

// Diagonalises the tridiagonal matrix (d, e), where e[i] couples i and i + 1.
MatrixResult ImplicitQl(std::vector<double>& d, std::vector<double>& e, RotationBatch& rotations) {
  const std::size_t k = d.size();
  for (std::size_t first = 0; first < k; ++first) {
    for (std::size_t iteration = 0;; ++iteration) {
      std::size_t last = first;
      const auto coupled = [&](std::size_t i) {
        return std::abs(e[i]) >
               std::numeric_limits<double>::epsilon() / 2 * (std::abs(d[i]) + std::abs(d[i + 1]));
      };
      while (last + 1 < k && coupled(last)) ++last;
      if (last == first) break;
      if (iteration == kMaxIterations) return Fault{MatrixFault::kNoConvergence};
      SweepBlock(first, last, d, e, rotations);
      rotations.ApplyIfFull();
    }
  }
  rotations.Apply();
  return {};
}

// The exponent that brings the largest entry of the lower triangle near 1; false when an entry is not finite.
bool FindScale(std::span<const double> matrix, std::size_t k, int& exponent) {
  double largest = 0;
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const double size = std::abs(matrix[i * k + j]);
      if (!std::isfinite(size)) return false;
      largest = std::max(largest, size);
    }
  }
  exponent = largest == 0 ? 0 : std::ilogb(largest);
  return true;
}

}  // namespace

MatrixResult SymmetricEigen(std::span<const double> matrix, std::size_t k, std::span<double> values,
                            std::span<double> vectors) {
  if (k == 0) return {};
  int exponent = 0;
  if (!FindScale(matrix, k, exponent)) return Fault{MatrixFault::kNotFinite};
  std::vector<double> work(matrix.begin(), matrix.begin() + static_cast<std::ptrdiff_t>(k * k));
  for (std::size_t i = 0; i < k; ++i)
    for (std::size_t j = 0; j <= i; ++j) work[i * k + j] = std::ldexp(work[i * k + j], -exponent);

  Tridiagonalisation form(work, k);
  std::vector<double> rows;
  if (!vectors.empty()) rows = TransposedReflections(work, form.factor);
  std::vector<double> coupling(k);
  std::copy(form.subdiagonal.begin() + 1, form.subdiagonal.end(), coupling.begin());
  RotationBatch rotations(rows, k);
  if (auto diagonalised = ImplicitQl(form.diagonal, coupling, rotations); !diagonalised) return diagonalised;

  std::vector<std::size_t> order(k);
  SortedOrder(form.diagonal, order);
  for (std::size_t j = 0; j < k; ++j) {
    values[j] = std::ldexp(form.diagonal[order[j]], exponent);
    if (!vectors.empty()) std::copy_n(rows.data() + order[j] * k, k, vectors.data() + j * k);
  }
  return {};
}

void RebuildSymmetric(std::span<const double> values, std::span<const double> vectors, std::size_t k,
                      std::span<double> matrix) {
  std::vector<double> scaled(vectors.begin(), vectors.end());
  for (std::size_t j = 0; j < k; ++j)
    for (std::size_t i = 0; i < k; ++i) scaled[j * k + i] *= values[j];
  std::ranges::fill(matrix, 0.0);
  AddProduct(RowMajor(scaled, k, k).Transposed(), RowMajor(vectors, k, k), 1,
             {matrix.data(), k, nullptr, ProductPart::kLowerTriangle});
  MirrorLowerTriangle(matrix, k);
}

}  // namespace brenvolt
