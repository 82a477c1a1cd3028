#include "host/numeric/vector/sorting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "host/numeric/random/random_stream.h"

namespace brenvolt {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

enum class Shape { kRandom, kTies, kAscending, kDescending, kConstant, kExtremes };

std::vector<double> Values(Shape shape, std::size_t n) {
  std::vector<double> values(n);
  RandomStream(7).FillUniform(0, values);
  const std::vector<double> special{-kInfinity, kInfinity, 0.0, -0.0, 5e-324, -5e-324, 1.7e308, -1.7e308};
  for (std::size_t i = 0; i < n; ++i) {
    const double u = values[i];
    switch (shape) {
      case Shape::kRandom:
        values[i] = u - 0.5;
        break;
      case Shape::kTies:
        values[i] = std::floor(8 * u);
        break;
      case Shape::kAscending:
        values[i] = static_cast<double>(i);
        break;
      case Shape::kDescending:
        values[i] = -static_cast<double>(i);
        break;
      case Shape::kConstant:
        values[i] = 3.25;
        break;
      case Shape::kExtremes:
        values[i] = special[static_cast<std::size_t>(8 * u)];
        break;
    }
  }
  return values;
}

bool Precedes(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return !std::isnan(a) && std::isnan(b);
  return a < b || (a == b && std::signbit(a) && !std::signbit(b));
}

std::vector<std::uint64_t> Bits(const std::vector<double>& values) {
  std::vector<std::uint64_t> bits;
  for (const double x : values) bits.push_back(std::bit_cast<std::uint64_t>(x));
  return bits;
}

class EveryShapeAndLength : public testing::TestWithParam<Shape> {
 protected:
  // Around the switch to the vectorised sort, its base case and its recursion.
  const std::vector<std::size_t> lengths{0, 1, 2, 3, 31, 32, 33, 64, 257, 1000, 4099, 100'000};
};

TEST_P(EveryShapeAndLength, SortGivesTheBitsOfTheStandardSort) {
  for (const std::size_t n : lengths) {
    std::vector<double> values = Values(GetParam(), n);
    for (std::size_t i = 5; i < n; i += 97) values[i] = kNaN;
    std::vector<double> expected = values;
    std::ranges::stable_sort(expected, Precedes);
    SortAscending(values);
    ASSERT_EQ(Bits(values), Bits(expected)) << n;
  }
}

TEST_P(EveryShapeAndLength, OrderIsThatOfAStableSort) {
  for (const std::size_t n : lengths) {
    std::vector<double> values = Values(GetParam(), n);
    for (std::size_t i = 5; i < n; i += 97) values[i] = kNaN;
    std::vector<std::size_t> expected(n);
    std::iota(expected.begin(), expected.end(), 0);
    std::ranges::stable_sort(expected,
                             [&](std::size_t a, std::size_t b) { return Precedes(values[a], values[b]); });
    std::vector<std::size_t> order(n);
    SortedOrder(values, order);
    ASSERT_EQ(order, expected) << n;
  }
}

INSTANTIATE_TEST_SUITE_P(Sorting, EveryShapeAndLength,
                         testing::Values(Shape::kRandom, Shape::kTies, Shape::kAscending, Shape::kDescending,
                                         Shape::kConstant, Shape::kExtremes));

TEST(Sorting, RanksOfTiesAreTheirMeanAndZerosTie) {
  const std::vector<double> values{2.0, 0.0, kNaN, 2.0, -0.0, -7.0, 2.0, kInfinity};
  const std::vector<double> expected{5, 2.5, kNaN, 5, 2.5, 1, 5, 7};
  std::vector<double> ranks(values.size());
  AverageRanks(values, ranks);
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_TRUE(ranks[i] == expected[i] || (std::isnan(ranks[i]) && std::isnan(expected[i]))) << i;
  }
}

TEST(Sorting, NaNsOfEitherSignAreLast) {
  std::vector<double> values(200, 1.0);
  values[0] = std::copysign(kNaN, -1.0);
  values[1] = kNaN;
  values[199] = kInfinity;
  SortAscending(values);
  EXPECT_EQ(values[197], kInfinity);
  EXPECT_TRUE(std::isnan(values[198]) && std::isnan(values[199]));
}

}  // namespace
}  // namespace brenvolt
