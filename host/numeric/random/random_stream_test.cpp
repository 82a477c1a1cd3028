// The stream against the published vectors of its cipher, its layout, and the distribution of its draws.
#include "host/numeric/random/random_stream.h"

#include <Random123/philox.h>
#include <gtest/gtest.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "host/numeric/distributions/normal.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"

namespace brenvolt {
namespace {

TEST(RandomStream, CipherGivesPublishedVectors) {
  using Cipher = r123::Philox4x32;
  struct Vector {
    Cipher::ctr_type counter;
    Cipher::key_type key;
    Cipher::ctr_type result;
  };
  const Vector vectors[] = {
      {{{0, 0, 0, 0}}, {{0, 0}}, {{0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}}},
      {{{0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff}},
       {{0xffffffff, 0xffffffff}},
       {{0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}}},
      {{{0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344}},
       {{0xa4093822, 0x299f31d0}},
       {{0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}}},
  };
  for (const Vector& v : vectors) EXPECT_EQ(Cipher{}(v.counter, v.key), v.result);
}

TEST(RandomStream, LayoutOfDrawsIsTheDocumentedOne) {
  constexpr std::int32_t kSeed = -7;
  for (const std::uint64_t block : {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{0x123456789ABCDEF}}) {
    const auto words = r123::Philox4x32{}(
        {{static_cast<std::uint32_t>(block), static_cast<std::uint32_t>(block >> 32), 0, 0}},
        {{static_cast<std::uint32_t>(kSeed), 0x42525654}});
    for (const unsigned half : {0U, 1U}) {
      const std::uint64_t bits = words[2 * half] | static_cast<std::uint64_t>(words[2 * half + 1]) << 32;
      EXPECT_EQ(RandomStream(kSeed).Uniform(2 * block + half),
                static_cast<double>(bits >> 11) / 9007199254740992.0);
    }
  }
}

TEST(RandomStream, BulkEqualsOneByOneAtAnyPositionAndLength) {
  constexpr std::int32_t kSeed = 12345;
  constexpr double kSd = 2.5;
  const RandomStream stream(kSeed);
  for (const std::uint64_t position : {0ULL, 1ULL, 6ULL, 7ULL, 8589934591ULL}) {
    for (const std::size_t size : {0U, 1U, 2U, 3U, 10U, 11U}) {
      std::vector<double> uniforms(size);
      std::vector<double> normals(size);
      stream.FillUniform(position, uniforms);
      stream.FillNormal(position, kSd, normals);
      SeedProcessStream(kSeed);
      SetProcessStreamPosition(position);
      for (const double value : uniforms) EXPECT_EQ(value, NextUniform());
      SetProcessStreamPosition(position);
      for (const double value : normals) EXPECT_EQ(value, NextNormal(kSd));
      EXPECT_EQ(ProcessStreamPosition(), position + size);
    }
  }
}

TEST(RandomStream, EverySecondDrawIsThatOfTheWholeStream) {
  const RandomStream stream(-3);
  for (const std::uint64_t position : {0ULL, 1ULL, 6ULL, 8589934591ULL, 0x123456789ABCDEF0ULL}) {
    for (const std::size_t size : {0U, 1U, 7U, 16U, 17U, 100U}) {
      std::vector<double> alternate(size);
      stream.FillAlternate(position, alternate);
      for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(alternate[i], stream.Uniform(position + 2 * i)) << i;
    }
  }
}

TEST(RandomStream, SeedingRestartsWithoutDrawing) {
  SeedProcessStream(-42);
  EXPECT_EQ(ProcessStreamPosition(), 0U);
  const double first = NextUniform();
  EXPECT_EQ(ProcessStreamPosition(), 1U);
  EXPECT_NE(NextUniform(), first);
  SeedProcessStream(-42);
  EXPECT_EQ(NextUniform(), first);
  SeedProcessStream(42);
  EXPECT_NE(NextUniform(), first);

  SeedProcessStream(0);
  EXPECT_EQ(ProcessStream().Seed(), 0);
  EXPECT_EQ(NextUniform(), RandomStream(0).Uniform(0));
}

// A substream that ran through its parent, or through one of its neighbours, would repeat their draws.
TEST(RandomStream, SubstreamsShareNoDrawWithEachOtherOrTheirParent) {
  const RandomStream parent(9);
  std::vector<double> draws;
  const auto add = [&draws](const RandomStream& stream) {
    std::vector<double> some(1001);
    stream.FillUniform(3, some);
    for (std::size_t i = 0; i < some.size(); ++i) ASSERT_EQ(some[i], stream.Uniform(3 + i));
    draws.insert(draws.end(), some.begin(), some.end());
  };
  add(parent);
  add(RandomStream(10).Substream(0, 0));
  for (const std::uint64_t first : {0ULL, 1ULL, 1ULL << 40U}) {
    for (const std::uint64_t second : {0ULL, 1ULL, 1ULL << 40U}) add(parent.Substream(first, second));
  }
  add(parent.Substream(0, 0).Substream(0, 0));
  std::ranges::sort(draws);
  EXPECT_EQ(std::ranges::adjacent_find(draws), draws.end());
}

TEST(RandomStream, JumpDiscardsTheHeldHalfOfABlock) {
  SeedProcessStream(5);
  NextUniform();
  SetProcessStreamPosition(1001);
  EXPECT_EQ(NextUniform(), RandomStream(5).Uniform(1001));
}

// P-values of a million draws under the hypothesis; a sound stream falls below the limit once in a million
// tests.
constexpr double kLeastPvalue = 1e-6;
constexpr double kGreatestDeviation =
    4.8916;  // of a standard normal with that probability on both sides together
constexpr std::size_t kDraws = 1'000'000;

double KolmogorovSmirnov(std::vector<double> probabilities) {
  std::sort(probabilities.begin(), probabilities.end());
  return *KolmogorovSmirnovPValue(std::ssize(probabilities), KolmogorovSmirnovStatistic(probabilities));
}

struct Moments {
  double mean = 0.0;
  double variance = 0.0;
  double lagProduct = 0.0;  // mean product of neighbours' deviations
};

Moments MomentsOf(const std::vector<double>& x) {
  Moments m;
  const auto n = static_cast<double>(x.size());
  for (const double value : x) m.mean += value / n;
  for (std::size_t i = 0; i < x.size(); ++i) {
    m.variance += (x[i] - m.mean) * (x[i] - m.mean) / n;
    if (i > 0) m.lagProduct += (x[i] - m.mean) * (x[i - 1] - m.mean) / n;
  }
  return m;
}

TEST(RandomStream, UniformsAreUniformAndUncorrelated) {
  const double root = std::sqrt(static_cast<double>(kDraws));
  for (const std::int32_t seed : {1, -1, 20260, 65535}) {
    SCOPED_TRACE(seed);
    std::vector<double> u(kDraws);
    RandomStream(seed).FillUniform(0, u);
    const Moments m = MomentsOf(u);
    EXPECT_LT(std::abs(m.mean - 0.5) * root * std::sqrt(12.0), kGreatestDeviation);
    EXPECT_LT(std::abs(m.variance - 1.0 / 12) * root * std::sqrt(180.0), kGreatestDeviation);
    EXPECT_LT(std::abs(m.lagProduct) * root * 12.0, kGreatestDeviation);
    EXPECT_GT(KolmogorovSmirnov(u), kLeastPvalue);
  }
}

TEST(RandomStream, NormalsAreNormal) {
  constexpr double kSd = 3.0;
  const double root = std::sqrt(static_cast<double>(kDraws));
  for (const std::int32_t seed : {2, -300}) {
    SCOPED_TRACE(seed);
    std::vector<double> x(kDraws);
    RandomStream(seed).FillNormal(17, kSd, x);
    const Moments m = MomentsOf(x);
    EXPECT_LT(std::abs(m.mean) * root / kSd, kGreatestDeviation);
    EXPECT_LT(std::abs(m.variance / (kSd * kSd) - 1.0) * root / std::sqrt(2.0), kGreatestDeviation);
    Distribution<Normal>(0.0, kSd).Cdf(x, x);
    EXPECT_GT(KolmogorovSmirnov(x), kLeastPvalue);
  }
}

TEST(RandomStream, SeedsNextToEachOtherGiveUncorrelatedStreams) {
  std::vector<double> left(kDraws);
  std::vector<double> right(kDraws);
  RandomStream(100).FillUniform(0, left);
  RandomStream(101).FillUniform(0, right);
  double product = 0.0;
  for (std::size_t i = 0; i < kDraws; ++i) product += (left[i] - 0.5) * (right[i] - 0.5);
  EXPECT_LT(std::abs(product) * 12.0 / std::sqrt(static_cast<double>(kDraws)), kGreatestDeviation);
}

TEST(RandomStream, LongFillsAreTheSameOnAnyNumberOfThreads) {
  constexpr std::size_t kLength = 300'001;
  constexpr double kSd = 2.5;
  const RandomStream stream(77);
  for (const std::uint64_t position : {0ULL, 12'345ULL}) {
    for (const int threads : {1, 2, 3, 7}) {
      const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                      static_cast<std::size_t>(threads));
      tbb::task_arena arena(threads);
      std::vector<double> uniforms(kLength);
      std::vector<double> normals(kLength);
      arena.execute([&] {
        stream.FillUniform(position, uniforms);
        stream.FillNormal(position, kSd, normals);
      });
      SeedProcessStream(77);
      SetProcessStreamPosition(position);
      for (std::size_t i = 0; i < kLength; ++i) ASSERT_EQ(uniforms[i], NextUniform()) << threads << ' ' << i;
      SetProcessStreamPosition(position);
      for (std::size_t i = 0; i < kLength; ++i) ASSERT_EQ(normals[i], NextNormal(kSd)) << threads << ' ' << i;
    }
  }
}

}  // namespace
}  // namespace brenvolt
