#include "stream_tests.h"

#include <algorithm>
#include <array>
#include <bit>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <cstdint>
#include <numeric>

#include "host/numeric/distributions/normal.h"
#include "host/numeric/distributions/poisson.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"
#include "host/numeric/vector/sorting.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::stream_tests {
namespace {

constexpr int kBits = 53;

std::uint64_t Bits(double u) {
  return static_cast<std::uint64_t>(u * 0x1p53);
}

// The upper or the lower bits of a deviate, as a whole number.
template <int kCount>
std::uint64_t High(double u) {
  return Bits(u) >> (kBits - kCount);
}

template <int kCount>
std::uint64_t Low(double u) {
  return Bits(u) & ((std::uint64_t{1} << kCount) - 1);
}

double ChiSquarePvalue(std::span<const double> counts, std::span<const double> probabilities) {
  const double n = std::accumulate(counts.begin(), counts.end(), 0.0);
  double statistic = 0.0;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const double expected = n * probabilities[i];
    statistic += (counts[i] - expected) * (counts[i] - expected) / expected;
  }
  const auto freedom = static_cast<double>(counts.size() - 1);
  // Below exp(-500), or as near to 1 (Laurent & Massart 2000, lemma 1), and beyond the reach of the gamma
  // function.
  if (statistic > freedom + 60.0 * std::sqrt(freedom) + 2000.0) return 0.0;
  if (statistic < freedom - 2.0 * std::sqrt(500.0 * freedom)) return 1.0;
  return boost::math::gamma_q(0.5 * freedom, 0.5 * statistic);
}

double EqualCellsPvalue(std::span<const double> counts) {
  return ChiSquarePvalue(counts,
                         std::vector<double>(counts.size(), 1.0 / static_cast<double>(counts.size())));
}

double MiddlePoissonPvalue(double count, double mean) {
  const Distribution<Poisson> poisson(mean);
  const double below = count > 0.0 ? poisson.Cdf(count - 1.0) : 0.0;
  return 1.0 - 0.5 * (poisson.Cdf(count) + below);
}

// Cells of a cube of kDimensions, each 2^kEach wide, from the part of each deviate that `part` takes.
template <int kDimensions, int kEach, std::uint64_t (*part)(double)>
double Equidistribution(Sample sample) {
  std::vector<double> counts(std::size_t{1} << (kDimensions * kEach));
  for (std::size_t i = 0; i + kDimensions <= sample.size(); i += kDimensions) {
    std::uint64_t cell = 0;
    for (int j = 0; j < kDimensions; ++j)
      cell = cell << kEach | part(sample[i + static_cast<std::size_t>(j)]);
    ++counts[cell];
  }
  return EqualCellsPvalue(counts);
}

// Lengths of the gaps between deviates in [low, low + 1/16).
template <int kSixteenths>
double Gap(Sample sample) {
  constexpr double kHit = 1.0 / 16.0;
  constexpr std::size_t kLongest = 100;
  std::vector<double> counts(kLongest + 1);
  std::vector<double> probabilities(kLongest + 1);
  for (std::size_t t = 0; t < kLongest; ++t) {
    probabilities[t] = kHit * std::pow(1.0 - kHit, static_cast<double>(t));
  }
  probabilities[kLongest] = std::pow(1.0 - kHit, static_cast<double>(kLongest));
  std::size_t length = 0;
  for (const double u : sample) {
    if (High<4>(u) != kSixteenths) {
      ++length;
      continue;
    }
    ++counts[std::min(length, kLongest)];
    length = 0;
  }
  return ChiSquarePvalue(counts, probabilities);
}

// Lengths of monotonic runs, the value after each run left out, so that runs are independent.
template <bool kIsUp>
double Runs(Sample sample) {
  constexpr std::size_t kLongest = 8;
  std::array<double, kLongest> counts = {};
  std::array<double, kLongest> probabilities = {};
  double factorial = 1.0;
  for (std::size_t r = 1; r < kLongest; ++r) {
    factorial *= static_cast<double>(r);
    probabilities[r - 1] = 1.0 / factorial - 1.0 / (factorial * static_cast<double>(r + 1));
  }
  probabilities[kLongest - 1] = 1.0 / (factorial * static_cast<double>(kLongest));
  std::size_t length = 1;
  for (std::size_t i = 1; i < sample.size(); ++i) {
    if (kIsUp ? sample[i] > sample[i - 1] : sample[i] < sample[i - 1]) {
      ++length;
      continue;
    }
    ++counts[std::min(length, kLongest) - 1];
    length = 1;
    ++i;  // left out; the next run starts after it
  }
  return ChiSquarePvalue(counts, probabilities);
}

template <std::size_t kLag>
double SerialCorrelation(Sample sample) {
  double sum = 0.0;
  const std::size_t count = sample.size() - kLag;
  for (std::size_t i = 0; i < count; ++i) sum += (sample[i] - 0.5) * (sample[i + kLag] - 0.5);
  return StandardNormalCdf(12.0 * sum / std::sqrt(static_cast<double>(count)));
}

// Equal spacings among 2^14 birthdays in a year of 2^40 days: Poisson with mean 1 (Marsaglia 1985).
template <std::uint64_t (*day)(double)>
double BirthdaySpacings(Sample sample) {
  constexpr std::size_t kBirthdays = std::size_t{1} << 14;
  std::vector<double> days(kBirthdays);
  double equal = 0.0;
  double sets = 0.0;
  for (std::size_t begin = 0; begin + kBirthdays <= sample.size(); begin += kBirthdays, ++sets) {
    for (std::size_t i = 0; i < kBirthdays; ++i) days[i] = static_cast<double>(day(sample[begin + i]));
    SortAscending(days);
    std::adjacent_difference(days.begin(), days.end(), days.begin());
    SortAscending(days);
    for (std::size_t i = 1; i < kBirthdays; ++i) equal += days[i] == days[i - 1] ? 1.0 : 0.0;
  }
  return MiddlePoissonPvalue(equal, sets);
}

// S(n, k) for small n.
double StirlingSecond(int n, int k) {
  if (k == 0 || k > n) return n == 0 && k == 0 ? 1.0 : 0.0;
  std::vector<double> row = {1.0};
  for (int i = 1; i <= n; ++i) {
    std::vector<double> next(static_cast<std::size_t>(i) + 1, 0.0);
    for (std::size_t j = 1; j < next.size(); ++j) {
      next[j] = row[j - 1] + (j < row.size() ? static_cast<double>(j) * row[j] : 0.0);
    }
    row = std::move(next);
  }
  return row[static_cast<std::size_t>(k)];
}

// Draws until all of eight coupons are there.
double CouponCollector(Sample sample) {
  constexpr int kCoupons = 8;
  constexpr int kLongest = 50;
  std::vector<double> counts(kLongest - kCoupons + 1);
  std::vector<double> probabilities(counts.size());
  const double factorial = std::tgamma(kCoupons + 1.0);
  for (int r = kCoupons; r < kLongest; ++r) {
    probabilities[static_cast<std::size_t>(r - kCoupons)] =
        factorial / std::pow(kCoupons, r) * StirlingSecond(r - 1, kCoupons - 1);
  }
  probabilities.back() =
      1.0 - factorial / std::pow(kCoupons, kLongest - 1) * StirlingSecond(kLongest - 1, kCoupons);
  unsigned seen = 0;
  int length = 0;
  for (const double u : sample) {
    seen |= 1U << High<3>(u);
    ++length;
    if (seen != (1U << kCoupons) - 1) continue;
    ++counts[static_cast<std::size_t>(std::min(length, kLongest) - kCoupons)];
    seen = 0;
    length = 0;
  }
  return ChiSquarePvalue(counts, probabilities);
}

// Different values among five of sixteen.
template <std::uint64_t (*card)(double)>
double Poker(Sample sample) {
  constexpr int kHand = 5;
  constexpr double kCards = 16.0;
  std::array<double, kHand> counts = {};
  std::array<double, kHand> probabilities = {};
  double falling = 1.0;
  for (int r = 1; r <= kHand; ++r) {
    falling *= kCards - r + 1.0;
    probabilities[static_cast<std::size_t>(r - 1)] =
        falling / std::pow(kCards, kHand) * StirlingSecond(kHand, r);
  }
  for (std::size_t i = 0; i + kHand <= sample.size(); i += kHand) {
    unsigned seen = 0;
    for (std::size_t j = 0; j < kHand; ++j) seen |= 1U << card(sample[i + j]);
    ++counts[static_cast<std::size_t>(std::popcount(seen) - 1)];
  }
  return ChiSquarePvalue(counts, probabilities);
}

// The greatest of eight, to the eighth power, is uniform.
double MaximumOfEight(Sample sample) {
  constexpr std::size_t kCells = 1024;
  std::vector<double> counts(kCells);
  for (std::size_t i = 0; i + 8 <= sample.size(); i += 8) {
    const double greatest = *std::max_element(sample.begin() + static_cast<std::ptrdiff_t>(i),
                                              sample.begin() + static_cast<std::ptrdiff_t>(i + 8));
    ++counts[static_cast<std::size_t>(std::pow(greatest, 8.0) * kCells)];
  }
  return EqualCellsPvalue(counts);
}

int Rank(std::array<std::uint32_t, 32> rows) {
  int rank = 0;
  for (int column = 0; column < 32; ++column) {
    const auto pivot = std::find_if(rows.begin() + rank, rows.end(),
                                    [&](std::uint32_t row) { return (row >> column & 1U) != 0; });
    if (pivot == rows.end()) continue;
    std::swap(*pivot, rows[static_cast<std::size_t>(rank)]);
    const std::uint32_t chosen = rows[static_cast<std::size_t>(rank)];
    for (auto row = rows.begin() + rank + 1; row != rows.end(); ++row) {
      if ((*row >> column & 1U) != 0) *row ^= chosen;
    }
    ++rank;
  }
  return rank;
}

// Ranks of 32 x 32 matrices over the field of two elements (Marsaglia & Tsay 1985).
template <std::uint64_t (*row)(double)>
double MatrixRank(Sample sample) {
  constexpr int kSize = 32;
  constexpr std::size_t kRanks = 4;  // 32, 31, 30 and the rest
  std::array<double, kRanks> counts = {};
  std::array<double, kRanks> probabilities = {};
  double rest = 1.0;
  for (int lost = 0; lost + 1 < static_cast<int>(kRanks); ++lost) {
    const int rank = kSize - lost;
    double p = std::exp2(rank * (2 * kSize - rank) - kSize * kSize);
    for (int i = 0; i < rank; ++i) {
      p *= std::pow(1.0 - std::exp2(i - kSize), 2.0) / (1.0 - std::exp2(i - rank));
    }
    probabilities[static_cast<std::size_t>(lost)] = p;
    rest -= p;
  }
  probabilities.back() = rest;
  std::array<std::uint32_t, kSize> rows;
  for (std::size_t i = 0; i + kSize <= sample.size(); i += kSize) {
    for (std::size_t j = 0; j < kSize; ++j) rows[j] = static_cast<std::uint32_t>(row(sample[i + j]));
    ++counts[std::min(static_cast<std::size_t>(kSize - Rank(rows)), kRanks - 1)];
  }
  return ChiSquarePvalue(counts, probabilities);
}

// Balls that fall into an urn that is not empty: 2^14 balls, 2^20 urns, two deviates a ball. Mean and
// variance of the empty urns are exact, their sum over many sets is taken as normal.
double Collisions(Sample sample) {
  constexpr std::size_t kBalls = std::size_t{1} << 14;
  constexpr std::size_t kUrns = std::size_t{1} << 20;
  std::vector<bool> isFull(kUrns);
  double collisions = 0.0;
  double sets = 0.0;
  for (std::size_t begin = 0; begin + 2 * kBalls <= sample.size(); begin += 2 * kBalls, ++sets) {
    std::fill(isFull.begin(), isFull.end(), false);
    for (std::size_t i = begin; i < begin + 2 * kBalls; i += 2) {
      const std::size_t urn = High<10>(sample[i]) << 10 | High<10>(sample[i + 1]);
      if (isFull[urn]) ++collisions;
      isFull[urn] = true;
    }
  }
  const long double m = kUrns;
  const long double n = kBalls;
  const long double logOne = n * std::log1p(-1.0L / m);  // of the probability that an urn, or two, stay empty
  const long double logTwo = n * std::log1p(-2.0L / m);
  const long double one = std::exp(logOne);
  const auto mean = static_cast<double>(n + m * std::expm1(logOne));
  const auto variance = static_cast<double>(m * (m - 1.0L) * one * one * std::expm1(logTwo - 2.0L * logOne) +
                                            m * one * (1.0L - one));
  return 1.0 - StandardNormalCdf((collisions - sets * mean) / std::sqrt(sets * variance));
}

std::vector<double> Normals(Sample sample) {
  std::vector<double> normals(sample.size());
  vector_forms::NormalsFromUniforms(sample, 1.0, normals);
  return normals;
}

double NormalBody(Sample sample) {
  std::vector<double> values = Normals(sample);
  Distribution<Normal>(0.0, 1.0).Cdf(values, values);
  return UniformityPvalue(values);
}

// Those beyond three standard deviations, on both sides.
double NormalTail(Sample sample) {
  constexpr double kFrom = 3.0;
  std::vector<double> values;
  const double whole = StandardNormalCdf(-kFrom);
  for (const double z : Normals(sample)) {
    if (std::abs(z) > kFrom) values.push_back(StandardNormalCdf(-std::abs(z)) / whole);
  }
  return UniformityPvalue(values);
}

// How many are beyond four standard deviations.
double NormalFarTailCount(Sample sample) {
  constexpr double kFrom = 4.0;
  double count = 0.0;
  for (const double z : Normals(sample)) count += std::abs(z) > kFrom ? 1.0 : 0.0;
  return MiddlePoissonPvalue(count, 2.0 * StandardNormalCdf(-kFrom) * static_cast<double>(sample.size()));
}

}  // namespace

double UniformityPvalue(std::span<double> values) {
  SortAscending(values);
  return *KolmogorovSmirnovPValue(std::ssize(values), KolmogorovSmirnovStatistic(values));
}

std::vector<Test> AllTests() {
  return {{"equidistribution, 1 dimension, high bits", Equidistribution<1, 12, High<12>>},
          {"equidistribution, 1 dimension, low bits", Equidistribution<1, 12, Low<12>>},
          {"equidistribution, 2 dimensions, high bits", Equidistribution<2, 6, High<6>>},
          {"equidistribution, 2 dimensions, low bits", Equidistribution<2, 6, Low<6>>},
          {"equidistribution, 3 dimensions, high bits", Equidistribution<3, 4, High<4>>},
          {"equidistribution, 3 dimensions, low bits", Equidistribution<3, 4, Low<4>>},
          {"gaps, lowest sixteenth", Gap<0>},
          {"gaps, ninth sixteenth", Gap<8>},
          {"runs up", Runs<true>},
          {"runs down", Runs<false>},
          {"serial correlation, lag 1", SerialCorrelation<1>},
          {"serial correlation, lag 2", SerialCorrelation<2>},
          {"serial correlation, lag 3", SerialCorrelation<3>},
          {"serial correlation, lag 8", SerialCorrelation<8>},
          {"serial correlation, lag 64", SerialCorrelation<64>},
          {"serial correlation, lag 4096", SerialCorrelation<4096>},
          {"birthday spacings, high bits", BirthdaySpacings<High<40>>},
          {"birthday spacings, low bits", BirthdaySpacings<Low<40>>},
          {"coupon collector", CouponCollector},
          {"poker, high bits", Poker<High<4>>},
          {"poker, low bits", Poker<Low<4>>},
          {"maximum of eight", MaximumOfEight},
          {"rank of matrices, high bits", MatrixRank<High<32>>},
          {"rank of matrices, low bits", MatrixRank<Low<32>>},
          {"collisions", Collisions},
          {"normals, body", NormalBody},
          {"normals, beyond 3 sigma", NormalTail},
          {"normals, count beyond 4 sigma", NormalFarTailCount}};
}

}  // namespace brenvolt::stream_tests
