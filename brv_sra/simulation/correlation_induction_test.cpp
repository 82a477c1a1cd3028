#include "brv_sra/simulation/correlation_induction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "brv_sra/simulation/sampling/reference_generator_test.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/sampling/sampled_distributions_test.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/base/parallel.h"
#include "host/numeric/algebra/correlation.h"
#include "host/numeric/distributions/normal.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Matrix = std::vector<double>;

// The lower triangular L with matrix = L L'.
Matrix PlainCholesky(const Matrix& a, std::size_t k) {
  Matrix l(k * k);
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = a[i * k + j];
      for (std::size_t t = 0; t < j; ++t) sum -= l[i * k + t] * l[j * k + t];
      l[i * k + j] = i == j ? std::sqrt(sum) : sum / l[j * k + j];
    }
  }
  return l;
}

// b = a^-1 for lower triangular a.
Matrix PlainInverse(const Matrix& a, std::size_t k) {
  Matrix b(k * k);
  for (std::size_t j = 0; j < k; ++j) {
    for (std::size_t i = j; i < k; ++i) {
      double sum = i == j ? 1 : 0;
      for (std::size_t t = j; t < i; ++t) sum -= a[i * k + t] * b[t * k + j];
      b[i * k + j] = sum / a[i * k + i];
    }
  }
  return b;
}

std::vector<double> ColumnOf(const Matrix& m, std::size_t k, std::size_t j) {
  std::vector<double> column;
  for (std::size_t i = j; i < m.size(); i += k) column.push_back(m[i]);
  return column;
}

double Correlation(const std::vector<double>& x, const std::vector<double>& y) {
  const auto n = static_cast<double>(x.size());
  const double mx = std::accumulate(x.begin(), x.end(), 0.0) / n;
  const double my = std::accumulate(y.begin(), y.end(), 0.0) / n;
  double xx = 0;
  double yy = 0;
  double xy = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    xx += (x[i] - mx) * (x[i] - mx);
    yy += (y[i] - my) * (y[i] - my);
    xy += (x[i] - mx) * (y[i] - my);
  }
  return xy / std::sqrt(xx * yy);
}

std::vector<std::size_t> OrderOf(const std::vector<double>& values) {
  std::vector<std::size_t> order(values.size());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return values[i]; });
  return order;
}

// The method step by step, for a positive definite target and more samples than variables.
Matrix PlainInduction(const SimulationDesign& design, const Matrix& target) {
  const auto n = static_cast<std::size_t>(design.numberOfSamples);
  const std::vector<std::size_t> active = design.ActiveVariables();
  const std::size_t k = active.size();
  std::vector<std::vector<double>> s(k, std::vector<double>(n));
  for (std::size_t c = 0; c < k; ++c) {
    const std::vector<double> perm = reference::Permutation(n);
    for (std::size_t i = 0; i < n; ++i)
      s[c][i] = Distribution<Normal>(0, 1).Quantile(perm[i] / static_cast<double>(n + 1));
  }
  Matrix e(k * k);
  Matrix wanted(k * k);
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < k; ++j) {
      e[i * k + j] = Correlation(s[i], s[j]);
      wanted[i * k + j] = i == j ? 1 : target[std::max(i, j) * k + std::min(i, j)];
    }
  }
  const Matrix p = PlainCholesky(wanted, k);
  const Matrix inverse = PlainInverse(PlainCholesky(e, k), k);
  Matrix samples = reference::Generate(design, design.method == SimulationMethod::kLatinHypercubeImanConover);
  for (std::size_t c = 0; c < k; ++c) {
    std::vector<double> t(n);
    for (std::size_t l = 0; l < k; ++l) {
      double m = 0;
      for (std::size_t r = 0; r < k; ++r) m += p[c * k + r] * inverse[r * k + l];
      for (std::size_t i = 0; i < n; ++i) t[i] += s[l][i] * m;
    }
    const std::size_t stride = design.variables.size();
    std::vector<double> values = ColumnOf(samples, stride, active[c]);
    std::ranges::sort(values);
    const std::vector<std::size_t> order = OrderOf(t);
    for (std::size_t r = 0; r < n; ++r) samples[order[r] * stride + active[c]] = values[r];
  }
  return samples;
}

// A target without structure: the correlation of k columns of noise over rows that share some of it.
Matrix RandomTarget(std::size_t k, std::int32_t seed) {
  const std::size_t n = 3 * k;
  Matrix noise(n * k);
  RandomStream(seed).FillNormal(0, 1.0, noise);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = 1; j < k; ++j) noise[i * k + j] += 0.5 * noise[i * k + j - 1];
  Matrix target(k * k);
  PearsonCorrelation(noise, n, k, target);
  return target;
}

struct Induction : testing::Test {
  HeadlessUserInterface port;
  SimulationDesign design;
  CorrelationInduction result;
  std::optional<FaultIdentifier> fault;  // if there is no result

  void SetUp() override {
    for (std::size_t j = 0; j < 8; ++j)
      design.variables.push_back(
          VariableOf(DistributionCode::kWeibull, {80, 1.0 + static_cast<double>(j)}, 5));
    design.method = SimulationMethod::kImanConover;
    design.numberOfSamples = 1000;
  }

  Matrix Run(const Matrix& target, double seed = 9) {
    Matrix matrix(static_cast<std::size_t>(design.numberOfSamples) * design.variables.size());
    SeedRandomStream(true, seed);
    const Result<CorrelationInduction> induction = InduceRankCorrelation(design, target, matrix, port);
    fault = induction ? std::nullopt : std::optional(induction.Reason().identifier);
    result = induction ? *induction : CorrelationInduction();
    return matrix;
  }
};

TEST_F(Induction, AgreesWithTheMethodStepByStep) {
  design.variables = SampledDistributions();
  design.excluded = {3, 11};
  const std::size_t k = design.variables.size() - 2;
  const Matrix target = RandomTarget(k, 4);
  for (const std::size_t threads : {1, 4}) {
    const ThreadLimit limit(threads);
    for (const auto method : {SimulationMethod::kImanConover, SimulationMethod::kLatinHypercubeImanConover}) {
      for (const bool truncate : {false, true}) {
        for (const std::int32_t n : {40, 3000}) {
          design.method = method;
          design.truncate = truncate;
          design.numberOfSamples = n;
          const Matrix matrix = Run(target);
          const auto position = ProcessStreamPosition();
          EXPECT_TRUE(!fault && result.scoreCorrection && !result.repair);
          SeedRandomStream(true, 9);
          EXPECT_EQ(matrix, PlainInduction(design, target)) << "n " << n << ", threads " << threads;
          EXPECT_EQ(position, ProcessStreamPosition());
        }
      }
    }
  }
}

TEST_F(Induction, ReachesTheTargetAndKeepsEveryColumnsValues) {
  design.numberOfSamples = 10'000;
  const std::size_t k = design.variables.size();
  for (std::int32_t seed = 1; seed <= 10; ++seed) {
    const Matrix target = RandomTarget(k, seed);
    design.method =
        seed % 2 == 0 ? SimulationMethod::kImanConover : SimulationMethod::kLatinHypercubeImanConover;
    const Matrix matrix = Run(target, seed);
    ASSERT_FALSE(fault);
    // What the generator drew, after the draws of the permutations.
    SeedRandomStream(true, seed);
    SetProcessStreamPosition(ProcessStreamPosition() + k * 10'000);
    const Matrix drawn = reference::Generate(design, seed % 2 == 1);
    Matrix scores(matrix.size());
    Matrix ranks(matrix.size());
    for (std::size_t j = 0; j < k; ++j) {
      std::vector<double> before = ColumnOf(drawn, k, j);
      std::vector<double> after = ColumnOf(matrix, k, j);
      std::vector<double> rank(after.size());
      AverageRanks(after, rank);
      for (std::size_t i = 0; i < rank.size(); ++i) {
        ranks[i * k + j] = rank[i];
        scores[i * k + j] = Distribution<Normal>(0, 1).Quantile(rank[i] / 10'001);
      }
      std::ranges::sort(before);
      std::ranges::sort(after);
      EXPECT_EQ(before, after) << "column " << j;
    }
    Matrix ofScores(k * k);
    Matrix ofRanks(k * k);
    PearsonCorrelation(scores, 10'000, k, ofScores);
    PearsonCorrelation(ranks, 10'000, k, ofRanks);
    for (std::size_t i = 0; i < k * k; ++i) {
      EXPECT_NEAR(ofScores[i], target[i], 0.001);
      // Kruskal (1958): what Spearman's coefficient is under normal scores, up to 0.018 from the target.
      EXPECT_NEAR(ofRanks[i], 6 / std::numbers::pi * std::asin(target[i] / 2), 0.015);
    }
  }
}

TEST_F(Induction, TargetsThatAreNotPositiveDefinite) {
  struct Case {
    const char* what;
    double correlation;  // of every pair of three
    bool usable;
    bool repaired;
    double used;
  };
  const Case cases[] = {{"fine", -0.4, true, false, -0.4},
                        {"indefinite", -0.9, true, true, -0.5},
                        {"a missing entry", kNaN, false, false, 0},
                        {"infinite", INFINITY, false, false, 0}};
  design.variables.resize(3);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    // Above the diagonal and on it nothing is read.
    const Matrix target{7, kNaN, kNaN, c.correlation, 7, kNaN, c.correlation, c.correlation, 7};
    const Matrix matrix = Run(target);
    ASSERT_TRUE(fault == (c.usable ? std::nullopt : std::optional(FaultIdentifier::kCorrelationsUnusable)));
    ASSERT_EQ(result.repair.has_value(), c.repaired);
    if (!c.usable) continue;
    Matrix ranks(matrix.size());
    for (std::size_t j = 0; j < 3; ++j) {
      std::vector<double> rank(1000);
      AverageRanks(ColumnOf(matrix, 3, j), rank);
      for (std::size_t i = 0; i < rank.size(); ++i) ranks[3 * i + j] = rank[i];
    }
    EXPECT_NEAR(Correlation(ColumnOf(ranks, 3, 0), ColumnOf(ranks, 3, 2)), c.used, 0.03);
    if (!c.repaired) continue;
    EXPECT_NEAR(result.repair->smallestEigenvalue, 1 - 2 * 0.9, 1e-14);
    EXPECT_EQ(result.repair->from, -0.9);
    EXPECT_NEAR(result.repair->to, -0.5, 1e-14);
    EXPECT_GT(result.repair->row, result.repair->column);
    for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(result.repair->matrix[i], i % 4 == 0 ? 1 : -0.5, 1e-14);
  }
}

// Eigenvalues of 1e-15 are below the error of decomposing a large matrix: a repair must not fail by it.
TEST_F(Induction, EveryRepairedMatrixCanBeUsed) {
  for (const std::size_t k : {2, 5, 20, 60}) {
    for (std::int32_t seed = 1; seed <= 20; ++seed) {
      Matrix target(k * k);
      RandomStream(seed).FillUniform(0, target);
      for (double& r : target) r = 2 * r - 1;
      const Result<TargetFactor> factored = FactorTarget(target, k);
      ASSERT_TRUE(factored) << "size " << k << ", seed " << seed;
      const TargetFactor& factor = *factored;
      ASSERT_EQ(factor.factor.size(), k * k) << "size " << k << ", seed " << seed;
      if (!factor.repair) continue;
      EXPECT_LT(factor.repair->smallestEigenvalue, 0);
      for (std::size_t i = 0; i < k; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
          double product = 0;
          for (std::size_t t = 0; t < k; ++t) product += factor.factor[i * k + t] * factor.factor[j * k + t];
          EXPECT_NEAR(product, factor.repair->matrix[i * k + j], 1e-7) << "a lifted pivot moves little";
        }
      }
    }
  }
}

TEST_F(Induction, PerfectCorrelationPutsBothColumnsInOneOrder) {
  design.variables.resize(2);
  for (const double r : {1.0, -1.0}) {
    const Matrix matrix = Run({1, r, r, 1});
    ASSERT_FALSE(fault);
    std::vector<double> first = ColumnOf(matrix, 2, 0);
    for (double& x : first) x *= r;
    EXPECT_EQ(OrderOf(first), OrderOf(ColumnOf(matrix, 2, 1)));
  }
}

TEST_F(Induction, TooFewSamplesForTheCorrectionStillGiveTheirValues) {
  const Matrix target = RandomTarget(8, 3);
  for (const std::int32_t n : {1, 2, 3, 8, 9}) {
    design.numberOfSamples = n;
    const Matrix matrix = Run(target);
    EXPECT_FALSE(fault);
    EXPECT_EQ(result.scoreCorrection, n == 1 || n > 8) << n;
    SeedRandomStream(true, 9);
    const auto draws = static_cast<std::uint64_t>(n > 1 ? 8 * n : 0);
    SetProcessStreamPosition(ProcessStreamPosition() + draws);
    const Matrix drawn = reference::Generate(design, false);
    for (std::size_t j = 0; j < 8; ++j)
      EXPECT_TRUE(std::ranges::is_permutation(ColumnOf(matrix, 8, j), ColumnOf(drawn, 8, j))) << n;
  }
}

// Values that agree in all bits but the last ones, in both signs, and equal ones.
TEST_F(Induction, RanksTellNeighbouringValuesApart) {
  std::vector<double> values;
  for (const double x : {1.0, -1.0, 0.0, -3.5, 1e-310}) {
    double up = x;
    for (int i = 0; i < 50; ++i) {
      values.push_back(up);
      values.push_back(x);
      up = std::nextafter(up, i % 3 == 0 ? -INFINITY : INFINITY);
    }
  }
  std::vector<double> ranks = values;
  const auto progress = std::make_unique<ProgressBar>(port, "", 1);
  ReplaceByRanks(ranks, ranks.size(), 1, *progress);
  std::vector<std::size_t> order(values.size());
  SortedOrder(values, order);
  for (std::size_t r = 0; r < order.size(); ++r) ASSERT_EQ(ranks[order[r]], static_cast<double>(r));
}

TEST_F(Induction, FailuresAreToldApartAndReleaseTheirMemory) {
  const Matrix target = RandomTarget(8, 3);
  const auto before = OutstandingAnalysisBlocks();
  for (const std::size_t allocations : {0, 1, 2}) {
    LimitAnalysisAllocations(allocations);
    EXPECT_THROW(Run(target), std::bad_alloc) << allocations;
    LimitAnalysisAllocations(kNoAllocationLimit);
  }
  design.variables[5].specification.values = {-1, 1};
  Run(target);
  EXPECT_TRUE(fault == FaultIdentifier::kNotSampled);
  EXPECT_EQ(OutstandingAnalysisBlocks(), before);
}

}  // namespace
}  // namespace brenvolt::sra
