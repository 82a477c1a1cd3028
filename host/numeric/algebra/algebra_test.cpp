// The linear algebra against mpmath's values (reference/algebra.csv) and against the bounds that backward
// stable methods keep on random matrices.
#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/algebra/correlation.h"
#include "host/numeric/algebra/matrix_product.h"
#include "host/numeric/algebra/symmetric_eigen.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/instruction_sets_support_test.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt {
namespace {

using Matrix = std::vector<double>;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct ReferenceMatrix {
  std::size_t k = 0;
  std::map<std::string, Matrix> quantities;
};

std::map<std::string, ReferenceMatrix> ReadReferences() {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/reference/algebra.csv");
  std::map<std::string, ReferenceMatrix> references;
  for (std::string line; std::getline(file, line);) {
    std::istringstream cells(line);
    std::string name, quantity, cell;
    std::getline(cells, name, ',');
    std::getline(cells, quantity, ',');
    std::getline(cells, cell, ',');
    ReferenceMatrix& reference = references[name];
    reference.k = std::stoul(cell);
    Matrix& values = reference.quantities[quantity];
    while (std::getline(cells, cell, ',')) values.push_back(std::strtod(cell.c_str(), nullptr));
  }
  return references;
}

double Largest(const Matrix& values) {
  double largest = 0;
  for (const double x : values) largest = std::max(largest, std::abs(x));
  return largest;
}

double LargestDifference(const Matrix& a, const Matrix& b) {
  double largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double difference = std::abs(a[i] - b[i]);
    if (!(difference <= largest)) largest = difference;  // NaN counts
  }
  return largest;
}

Matrix Product(const Matrix& a, const Matrix& b, std::size_t k) {
  Matrix product(k * k);
  Multiply(RowMajor(a, k, k), RowMajor(b, k, k), product);
  return product;
}

Matrix Transposed(const Matrix& a, std::size_t k) {
  Matrix result(k * k);
  for (std::size_t i = 0; i < k; ++i)
    for (std::size_t j = 0; j < k; ++j) result[j * k + i] = a[i * k + j];
  return result;
}

Matrix Identity(std::size_t k) {
  Matrix result(k * k);
  for (std::size_t i = 0; i < k; ++i) result[i * k + i] = 1;
  return result;
}

Matrix RandomSymmetric(std::size_t k, std::int32_t seed) {
  Matrix a(k * k);
  RandomStream(seed).FillNormal(0, 1.0, a);
  MirrorLowerTriangle(a, k);
  return a;
}

// The residual is scaled so that huge and tiny matrices neither overflow nor vanish.
void ExpectDecomposition(const Matrix& matrix, std::size_t k, const std::string& name) {
  Matrix values(k), vectors(k * k), rebuilt(k * k);
  ASSERT_TRUE(SymmetricEigen(matrix, k, values, vectors)) << name;
  EXPECT_TRUE(std::ranges::is_sorted(values)) << name;
  const double bound = 8 * kEpsilon * static_cast<double>(k);
  EXPECT_LE(LargestDifference(Product(vectors, Transposed(vectors, k), k), Identity(k)), bound) << name;
  Matrix image = Product(vectors, matrix, k);  // A is symmetric: rows v' A
  for (std::size_t i = 0; i < k * k; ++i) image[i] -= values[i / k] * vectors[i];
  const double norm = std::max(std::abs(values.front()), std::abs(values.back()));
  EXPECT_LE(Largest(image), bound * norm) << name;
  RebuildSymmetric(values, vectors, k, rebuilt);
  EXPECT_LE(LargestDifference(rebuilt, matrix), bound * norm) << name;
}

TEST(AlgebraReference, EigenvaluesAgreeWithMpmath) {
  const auto references = ReadReferences();
  ASSERT_GE(references.size(), 15U);
  for (const auto& [name, reference] : references) {
    const std::size_t k = reference.k;
    const Matrix& matrix = reference.quantities.at("matrix");
    const Matrix& expected = reference.quantities.at("eigenvalues");
    Matrix values(k);
    ASSERT_TRUE(SymmetricEigen(matrix, k, values)) << name;
    EXPECT_LE(LargestDifference(values, expected), 4 * kEpsilon * static_cast<double>(k) * Largest(expected))
        << name;
    ExpectDecomposition(matrix, k, name);
  }
}

// Forward errors grow with the condition of the matrix (Higham 2002, theorems 10.8 and 14.1).
TEST(AlgebraReference, CholeskyAndInverseAgreeWithMpmath) {
  std::size_t compared = 0;
  for (const auto& [name, reference] : ReadReferences()) {
    const std::size_t k = reference.k;
    Matrix factor = reference.quantities.at("matrix");
    const MatrixResult factored = Cholesky(factor, k);
    const Matrix& values = reference.quantities.at("eigenvalues");
    if (!reference.quantities.contains("cholesky")) {
      EXPECT_EQ(factored.Reason().identifier, MatrixFault::kNotPositiveDefinite) << name;
      continue;
    }
    const double error = 2 * kEpsilon * static_cast<double>(k) * values.back() / values.front();
    if (error > 0.01) continue;  // singular to working precision: either answer is right
    ++compared;
    ASSERT_TRUE(factored) << name;
    const Matrix& expected = reference.quantities.at("cholesky");
    EXPECT_LE(LargestDifference(factor, expected), error * Largest(expected)) << name;
    Matrix inverse(k * k);
    ASSERT_TRUE(InvertLowerTriangle(factor, k, inverse)) << name;
    const Matrix& expectedInverse = reference.quantities.at("inverse");
    EXPECT_LE(LargestDifference(inverse, expectedInverse), error * Largest(expectedInverse)) << name;
  }
  EXPECT_GE(compared, 8U);
}

// Sizes on both sides of every block length and of the switch to threads.
TEST(SymmetricEigen, ResidualAndOrthogonalityKeepTheirBoundsOnRandomMatrices) {
  for (const std::size_t k : {2, 3, 7, 8, 9, 31, 33, 63, 64, 65, 129, 200, 300, 333})
    ExpectDecomposition(RandomSymmetric(k, static_cast<std::int32_t>(k)), k, std::to_string(k));
}

TEST(SymmetricEigen, HardSpectraConverge) {
  constexpr std::size_t k = 60;
  Matrix vectors(k * k), ignored(k);
  ASSERT_TRUE(SymmetricEigen(RandomSymmetric(k, 3), k, ignored, vectors));
  const std::map<std::string, double (*)(std::size_t)> spectra{
      {"all but one equal", [](std::size_t j) { return j == 0 ? -1.0 : 2.0; }},
      {"geometric to 1e-300", [](std::size_t j) { return std::pow(10.0, -5.0 * static_cast<double>(j)); }},
      {"clusters",
       [](std::size_t j) { return static_cast<double>(j / 20) + 1e-15 * static_cast<double>(j); }},
      {"rank one", [](std::size_t j) { return j == 5 ? 1.0 : 0.0; }},
      {"plus and minus", [](std::size_t j) { return j % 2 == 0 ? 1.0 : -1.0; }}};
  for (const auto& [name, spectrum] : spectra) {
    Matrix values(k), matrix(k * k);
    for (std::size_t j = 0; j < k; ++j) values[j] = spectrum(j);
    RebuildSymmetric(values, vectors, k, matrix);
    ExpectDecomposition(matrix, k, name);
  }
}

TEST(Algebra, NotFiniteInputGivesAFaultAndNothingElse) {
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    for (const std::size_t at : {0, 3, 15}) {  // (0,0), (3,0) by symmetry of the place below, (3,3)
      Matrix matrix = Identity(4);
      matrix[at == 3 ? 12 : at] = bad;
      Matrix values(4, 7.0), vectors(16, 7.0);
      EXPECT_EQ(SymmetricEigen(matrix, 4, values, vectors).Reason(), Fault{MatrixFault::kNotFinite});
      EXPECT_EQ(values, Matrix(4, 7.0));
      EXPECT_EQ(InvertLowerTriangle(matrix, 4, vectors).Reason(), Fault{MatrixFault::kNotFinite});
      EXPECT_EQ(Cholesky(matrix, 4).Reason(), Fault{MatrixFault::kNotFinite});
    }
  }
}

TEST(Algebra, OnlyTheLowerTriangleIsRead) {
  Matrix matrix{4, kNaN, kNaN, 2, 5, kNaN, 1, 3, 6};
  Matrix values(3), inverse(9);
  EXPECT_TRUE(SymmetricEigen(matrix, 3, values));
  EXPECT_NEAR(values[0] + values[1] + values[2], 15, 1e-13);
  EXPECT_TRUE(Cholesky(matrix, 3));
  EXPECT_EQ(matrix[1], 0);
  EXPECT_TRUE(InvertLowerTriangle(matrix, 3, inverse));
}

TEST(Cholesky, ReproducesTheMatrixAndItsInverseAcrossBlocks) {
  for (const std::size_t k : {1, 5, 63, 64, 65, 128, 200, 300}) {
    const Matrix noise = RandomSymmetric(k, 9);
    Matrix matrix = Product(noise, noise, k);
    for (std::size_t i = 0; i < k; ++i) matrix[i * k + i] += 1;
    Matrix factor = matrix, inverse(k * k);
    ASSERT_TRUE(Cholesky(factor, k)) << k;
    const double bound = 4 * kEpsilon * static_cast<double>(k);
    EXPECT_LE(LargestDifference(Product(factor, Transposed(factor, k), k), matrix), bound * Largest(matrix))
        << k;
    ASSERT_TRUE(InvertLowerTriangle(factor, k, inverse));
    EXPECT_LE(LargestDifference(Product(factor, inverse, k), Identity(k)),
              bound * Largest(factor) * std::max(1.0, Largest(inverse)))
        << k;
  }
}

TEST(Cholesky, NamesTheRefusedPivot) {
  constexpr std::size_t k = 100;
  for (const std::size_t pivot : {0, 1, 63, 64, 99}) {
    Matrix matrix = Identity(k);
    matrix[pivot * k + pivot] = -1e-3;
    EXPECT_EQ(Cholesky(matrix, k, SmallPivot::kLift).Reason(),
              (Fault{MatrixFault::kNotPositiveDefinite, std::to_string(pivot)}));
  }
}

// Equal rows leave a pivot that is zero but for rounding.
TEST(Cholesky, SingularMatrixIsRefusedOrLiftedAsAsked) {
  const Matrix singular{1.3, 0.7, 0.7, 0.7, 1.1, 1.1, 0.7, 1.1, 1.1};
  Matrix refused = singular;
  EXPECT_EQ(Cholesky(refused, 3).Reason(), (Fault{MatrixFault::kNotPositiveDefinite, "2"}));
  Matrix lifted = singular;
  EXPECT_TRUE(Cholesky(lifted, 3, SmallPivot::kLift));
  EXPECT_LE(LargestDifference(Product(lifted, Transposed(lifted, 3), 3), singular), 8 * kEpsilon);
}

TEST(Cholesky, ZeroOnTheDiagonalOfAFactorIsSingular) {
  Matrix inverse(4);
  EXPECT_EQ(InvertLowerTriangle(Matrix{1, 0, 2, 0}, 2, inverse).Reason(), Fault{MatrixFault::kSingular});
}

TEST(MatrixProduct, EqualsTheNaiveSumForEveryTransposeAndShape) {
  struct Shape {
    std::size_t m, depth, n;
  };
  for (const auto& [m, depth, n] :
       {Shape{1, 1, 1}, {6, 3, 8}, {7, 256, 9}, {13, 257, 17}, {100, 513, 50}, {5, 0, 4}}) {
    Matrix a(m * depth), b(depth * n), aT(m * depth);
    RandomStream(1).FillNormal(0, 1.0, a);
    RandomStream(2).FillNormal(0, 1.0, b);
    for (std::size_t i = 0; i < m; ++i)
      for (std::size_t l = 0; l < depth; ++l) aT[l * m + i] = a[i * depth + l];
    Matrix expected(m * n), direct(m * n, 5.0), transposed(m * n);
    for (std::size_t i = 0; i < m; ++i)
      for (std::size_t j = 0; j < n; ++j)
        for (std::size_t l = 0; l < depth; ++l) expected[i * n + j] += a[i * depth + l] * b[l * n + j];
    Multiply(RowMajor(a, m, depth), RowMajor(b, depth, n), direct);
    Multiply(RowMajor(aT, depth, m).Transposed(), RowMajor(b, depth, n), transposed);
    EXPECT_LE(LargestDifference(direct, expected), 1e-12) << m;
    EXPECT_EQ(direct, transposed) << m;
  }
}

// Pearson's coefficient over the complete pairs in long double, about their first values.
double PlainCoefficient(const Matrix& data, std::size_t n, std::size_t k, std::size_t a, std::size_t b) {
  long double count = 0, x = 0, y = 0, xx = 0, yy = 0, xy = 0;
  const auto each = [&](const auto& body) {
    std::size_t origin = n;
    for (std::size_t i = 0; i < n; ++i) {
      if (std::isnan(data[i * k + a]) || std::isnan(data[i * k + b])) continue;
      origin = std::min(origin, i);
      body(static_cast<long double>(data[i * k + a]) - data[origin * k + a],
           static_cast<long double>(data[i * k + b]) - data[origin * k + b]);
    }
  };
  each([&](long double u, long double v) { ++count, x += u, y += v; });
  x /= count;
  y /= count;
  each([&](long double u, long double v) {
    xx += (u - x) * (u - x);
    yy += (v - y) * (v - y);
    xy += (u - x) * (v - y);
  });
  return static_cast<double>(xy / std::sqrt(xx * yy));
}

TEST(Correlation, AgreesWithExtendedPrecisionWhateverLocationScaleAndMissing) {
  constexpr std::size_t n = 1000;
  constexpr std::size_t k = 13;
  for (const double missing : {0.0, 0.1, 0.6}) {
    Matrix data(n * k), uniforms(n * k), correlation(k * k);
    RandomStream(4).FillNormal(0, 1.0, data);
    RandomStream(5).FillUniform(0, uniforms);
    for (std::size_t i = 0; i < n * k; ++i) {
      const std::size_t j = i % k;
      if (j > 0) data[i] += 0.8 * data[i - 1];
    }
    for (std::size_t i = 0; i < n * k; ++i)
      if (uniforms[i] < missing) data[i] = kNaN;
    // Locations and scales by powers of two, so that the columns keep their digits.
    for (std::size_t i = 0; i < n; ++i) {
      data[i * k + 1] = data[i * k + 1] * 0x1p400;
      data[i * k + 2] = data[i * k + 2] * 0x1p-400;
      data[i * k + 3] += 1e9;
      data[i * k + 4] += 1e15;
    }
    PearsonCorrelation(data, n, k, correlation);
    for (std::size_t a = 0; a < k; ++a) {
      EXPECT_EQ(correlation[a * k + a], 1);
      for (std::size_t b = 0; b < a; ++b) {
        EXPECT_NEAR(correlation[a * k + b], PlainCoefficient(data, n, k, a, b), 2e-15)
            << a << ' ' << b << ' ' << missing;
        EXPECT_EQ(correlation[a * k + b], correlation[b * k + a]);
      }
    }
  }
}

// The far value counts in the mean of its column, but not in the pair.
TEST(Correlation, FarValueMissingInTheOtherColumnDoesNotCancelThePair) {
  const Matrix data{1, 2, 2, 3, 3, 7, 4, 5, 1e14, kNaN};
  Matrix correlation(4);
  PearsonCorrelation(data, 5, 2, correlation);
  EXPECT_NEAR(correlation[1], PlainCoefficient(data, 5, 2, 0, 1), 1e-15);
}

TEST(Correlation, UndefinedCoefficientsAreNaNAndSpareTheOthers) {
  // Columns: good, constant, infinite once, missing but once, constant where the first is present, opposite
  // of good.
  const Matrix data{1, 0.1, 1, kNaN, 5, -1, 2,    0.1, kInfinity, 3,    5, -2,
                    4, 0.1, 2, kNaN, 5, -4, kNaN, 0.1, 7,         kNaN, 9, 8};
  constexpr std::size_t k = 6;
  Matrix correlation(k * k);
  PearsonCorrelation(data, 4, k, correlation);
  for (std::size_t i = 0; i < k; ++i) {
    const bool defined = i == 0 || i == 5;
    EXPECT_EQ(std::isnan(correlation[i]), !defined) << i;
    EXPECT_EQ(std::isnan(correlation[i * k + i]), i == 1 || i == 2 || i == 3) << i;
  }
  EXPECT_EQ(correlation[5], -1);
  PearsonCorrelation(Matrix{1, 2}, 1, 2, std::span(correlation).first(4));
  EXPECT_TRUE(std::isnan(correlation[0]) && std::isnan(correlation[1]));
}

// Correlation, eigenvalues and vectors, Cholesky factor, its inverse, and the sorted data of one large
// problem.
std::vector<Matrix> WholeJob() {
  constexpr std::size_t k = 340;
  constexpr std::size_t n = 700;
  Matrix data(n * k);
  RandomStream(6).FillNormal(0, 1.0, data);
  data[17] = kNaN;
  std::vector<Matrix> results(4, Matrix(k * k));
  Matrix values(k);
  PearsonCorrelation(data, n, k, results[0]);
  EXPECT_TRUE(SymmetricEigen(results[0], k, values, results[1]));
  results[2] = results[0];
  EXPECT_TRUE(Cholesky(results[2], k));
  EXPECT_TRUE(InvertLowerTriangle(results[2], k, results[3]));
  results.push_back(values);
  SortAscending(data);
  data.pop_back();  // the NaN, which would equal nothing
  results.push_back(data);
  return results;
}

TEST(Algebra, ResultsDoNotDependOnTheNumberOfThreads) {
  const auto run = [](std::size_t threads) {
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
    return WholeJob();
  };
  const std::vector<Matrix> one = run(1);
  EXPECT_NE(Largest(one[3]), 0);
  EXPECT_EQ(run(2), one);
  EXPECT_EQ(run(5), one);
}

TEST(Algebra, ResultsDoNotDependOnTheInstructionSet) {
  const std::vector<Matrix> best = WholeJob();
  UnderEveryInstructionSet([&] { EXPECT_EQ(WholeJob(), best); });
}

}  // namespace
}  // namespace brenvolt
