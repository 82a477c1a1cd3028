#include "host/numeric/estimation/likelihood_sums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/instruction_sets_support_test.h"

namespace brenvolt {
namespace {

using Sums = std::array<long double, 10>;

std::vector<double> Sorted(std::size_t count) {
  std::vector<double> values(count);
  RandomStream(4).FillNormal(0, 1.0, values);
  std::ranges::sort(values);
  return values;
}

std::array<double, 10> AsArray(const ExtremeValueSums& s) {
  return {s.value, s.l, s.s, s.k, s.ll, s.ls, s.ss, s.lk, s.sk, s.kk};
}

// ln(1 + k z) / k by quotient, or by its power series where the quotient would lose digits.
long double W(long double z, long double k) {
  const long double u = k * z;
  if (std::abs(u) > 0.01L) return std::log1p(u) / k;
  long double sum = 0.0L;
  for (int j = 40; j >= 0; --j) sum = 1.0L / (j + 1) - u * sum;
  return z * sum;
}

// The log density without ln(scale) as a function of location (in scales), ln(scale) and shape, from a place on.
struct Surface {
  double x;
  double location;
  double scale;
  double shape;

  long double At(long double l, long double s, long double k) const {
    const long double z = (x - location - l * scale) / (scale * std::exp(s));
    const long double w = W(z, shape + k);
    return -(1.0L + shape + k) * w - std::exp(-w);
  }
};

// By differences.
void AddDerivatives(const Surface& f, Sums& sums) {
  constexpr long double h = 2e-4L;
  const auto first = [&](int a) {
    const auto at = [&](long double d) { return f.At(a == 0 ? d : 0, a == 1 ? d : 0, a == 2 ? d : 0); };
    return (8 * (at(h) - at(-h)) - (at(2 * h) - at(-2 * h))) / (12 * h);
  };
  const auto second = [&](int a, int b) {
    const auto at = [&](long double c, long double d) {
      long double point[3] = {};
      point[a] += c;
      point[b] += d;
      return f.At(point[0], point[1], point[2]);
    };
    return (at(h, h) - at(h, -h) - at(-h, h) + at(-h, -h)) / (4 * h * h);
  };
  const long double terms[] = {f.At(0, 0, 0), first(0),     first(1),     first(2),     second(0, 0),
                               second(0, 1),  second(1, 1), second(0, 2), second(1, 2), second(2, 2)};
  for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += terms[i];
}

TEST(LikelihoodSums, ExtremeValueSumsAreThoseOfTheLogDensityAndItsDerivatives) {
  for (const double shape : {-0.3, -1e-3, 0.0, 1e-9, 0.02, 0.4}) {
    for (const std::size_t count : {1U, 8U, 13U, 700U}) {
      const std::vector<double> values = Sorted(count);
      const double location = -0.2;
      const double scale = 1.5;
      const auto sums = SumExtremeValue(values, location, 1.0 / scale, shape);
      ASSERT_TRUE(sums) << shape;
      Sums expected{};
      for (const double x : values) AddDerivatives({x, location, scale, shape}, expected);
      const auto computed = AsArray(*sums);
      const auto n = static_cast<double>(count);
      EXPECT_NEAR(computed[0], expected[0], 1e-12 * n) << shape << " " << count;
      for (std::size_t i = 1; i < computed.size(); ++i)
        EXPECT_NEAR(computed[i], expected[i], 1e-5 * n + 1e-4 * std::abs(expected[i]))
            << shape << " " << count << " " << i;
    }
  }
}

TEST(LikelihoodSums, ParetoSumsAreThoseOfTheDefinitions) {
  for (const double ratio : {-0.3, -1e-8, 0.0, 1e-3, 5.0, 1e200}) {
    for (const std::size_t count : {1U, 15U, 700U}) {
      std::vector<double> values = Sorted(count);
      for (double& x : values) x = std::abs(x) / 4.0;
      Sums expected{};
      for (const double y : values) {
        const long double u = static_cast<long double>(ratio) * y;
        const long double byRatio =
            std::abs(u) > 1e-3L
                ? (y / (1.0L + u) - W(y, ratio)) / ratio
                : y * static_cast<long double>(y) * (-0.5L + u * (2.0L / 3 - u * (0.75L - 0.8L * u)));
        expected[0] += W(y, ratio);
        expected[1] += byRatio;
        expected[2] += y / (1.0L + u);
      }
      const auto [w, wByRatio, shapeByRatio] = SumPareto(values, ratio);
      const auto isNear = [](double computed, long double wanted) {
        EXPECT_NEAR(computed, wanted, 1e-11 * std::abs(wanted));
      };
      isNear(w, expected[0]);
      isNear(wByRatio, expected[1]);
      isNear(shapeByRatio, expected[2]);
    }
  }
}

TEST(LikelihoodSums, FoldedSumIsThatOfTheDefinition) {
  std::vector<double> values = Sorted(700);
  for (double& x : values) x = std::abs(x);
  for (const double slope : {0.0, 1e-9, 0.7, 400.0, 1e6}) {
    long double expected = 0.0L;
    for (const double x : values)
      expected += 2.0L * x / (std::exp(static_cast<long double>(slope) * x) + 1.0L);
    EXPECT_NEAR(SumFolded(values, slope), expected, 1e-13 * expected) << slope;
  }
}

TEST(LikelihoodSums, ValuesBeyondTheSupportHaveNoSums) {
  const std::vector<double> values = {-3.0, 0.0, 2.0};
  EXPECT_FALSE(SumExtremeValue(values, 0.0, 1.0, -0.5));  // the end is at 2
  EXPECT_FALSE(SumExtremeValue(values, 0.0, 1.0, 0.4));
  EXPECT_TRUE(SumExtremeValue(values, 0.0, 1.0, 0.3));
}

TEST(LikelihoodSums, EveryInstructionSetGivesTheSameBits) {
  const std::vector<double> values = Sorted(1003);
  std::vector<double> excesses = values;
  for (double& x : excesses) x = std::abs(x);
  const auto chosen = AsArray(*SumExtremeValue(values, 0.1, 0.8, 0.03));
  const ParetoSums pareto = SumPareto(excesses, 0.02);
  const double folded = SumFolded(excesses, 1.3);
  UnderEveryInstructionSet([&] {
    EXPECT_EQ(AsArray(*SumExtremeValue(values, 0.1, 0.8, 0.03)), chosen);
    EXPECT_EQ(SumFolded(excesses, 1.3), folded);
    EXPECT_EQ(SumPareto(excesses, 0.02).w, pareto.w);
    EXPECT_EQ(SumPareto(excesses, 0.02).wByRatio, pareto.wByRatio);
    EXPECT_EQ(SumPareto(excesses, 0.02).shapeByRatio, pareto.shapeByRatio);
  });
}

}  // namespace
}  // namespace brenvolt
