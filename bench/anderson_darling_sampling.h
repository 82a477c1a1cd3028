// The distribution of the Anderson-Darling statistic by simulation, for the programs next to this header: how
// many of many samples of n uniform deviates have a statistic up to each point of a grid.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

#include "host/base/parallel.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::bench {

// Over the points z_i = i spacing: counts[i] samples of all have a statistic above z_(i-1), up to z_i.
struct StatisticCounts {
  double spacing;
  std::vector<std::int64_t> counts;
  std::int64_t samples = 0;

  // The share of samples with a statistic up to each point.
  std::vector<double> DistributionFunction() const {
    std::vector<double> result;
    std::int64_t sum = 0;
    for (const std::int64_t count : counts) {
      sum += count;
      result.push_back(static_cast<double>(sum) / static_cast<double>(samples));
    }
    return result;
  }
};

// The statistics of samples of n, many at a time. Sorted uniform deviates come without sorting, as partial
// sums of n + 1 exponential deviates over their total (Devroye 1986, V.3.2): 53 bits each.
class StatisticSampler {
 public:
  StatisticSampler(std::size_t n, std::size_t samples)
      : n_(n), samples_(samples), deviates_((n + 1) * samples), low_(n * samples), high_(n * samples) {}

  // Statistics of the samples whose deviates start at a position of the stream.
  void Fill(const RandomStream& stream, std::uint64_t position, std::span<double> statistics) {
    stream.FillUniform(position, deviates_);
    for (double& u : deviates_) u = 1.0 - u;
    elementary::Log(deviates_, deviates_);
    for (std::size_t s = 0; s < samples_; ++s) TakeSorted(s);
    elementary::Log(low_, low_);
    elementary::Log(high_, high_);
    const auto n = static_cast<double>(n_);
    for (std::size_t s = 0; s < samples_; ++s) {
      double sum = 0;
      for (std::size_t i = 0; i < n_; ++i) {
        const double weight = 2.0 * static_cast<double>(i) + 1.0;
        sum += weight * low_[s * n_ + i] + (2.0 * n - weight) * high_[s * n_ + i];
      }
      statistics[s] = -n - sum / n;
    }
  }

 private:
  void TakeSorted(std::size_t s) {
    constexpr double kLowest = 0x1p-53;
    const double* deviates = &deviates_[s * (n_ + 1)];
    double total = 0;
    for (std::size_t i = 0; i <= n_; ++i) total += deviates[i];
    double sum = 0;
    for (std::size_t i = 0; i < n_; ++i) {
      sum += deviates[i];
      const double z = sum / total;
      low_[s * n_ + i] = std::max(z, kLowest);
      high_[s * n_ + i] = std::max(1.0 - z, kLowest);
    }
  }

  std::size_t n_;
  std::size_t samples_;
  std::vector<double> deviates_;
  std::vector<double> low_;
  std::vector<double> high_;
};

// Counts over `samples` samples (rounded up to whole blocks) of the stream of `seed`. A function of its
// arguments alone, whatever the number of cores.
inline StatisticCounts CountStatistics(std::size_t n, std::int64_t samples, std::int32_t seed, double spacing,
                                       std::size_t points) {
  constexpr std::size_t kBatch = 64;
  constexpr std::size_t kBatchesPerBlock = 256;
  const auto wanted = static_cast<std::size_t>(samples);
  const std::size_t blocks = (wanted + kBatch * kBatchesPerBlock - 1) / (kBatch * kBatchesPerBlock);
  StatisticCounts result{spacing, std::vector<std::int64_t>(points, 0),
                         static_cast<std::int64_t>(blocks * kBatch * kBatchesPerBlock)};
  std::mutex adding;
  ParallelFor(blocks, [&](std::size_t block) {
    const RandomStream stream(seed);
    StatisticSampler sampler(n, kBatch);
    std::vector<std::int64_t> counts(points, 0);
    std::array<double, kBatch> statistics;
    for (std::size_t batch = 0; batch < kBatchesPerBlock; ++batch) {
      const std::uint64_t first = (block * kBatchesPerBlock + batch) * kBatch * (n + 1);
      sampler.Fill(stream, first, statistics);
      for (const double z : statistics) {
        // The first point that is not below z; 1e-12 of a step lets a statistic on a point count there.
        const double place = std::max(0.0, z / spacing - 1e-12);
        const auto point = static_cast<std::size_t>(std::min(place + 1.0, 1e9));
        if (point < points) ++counts[point];
      }
    }
    const std::scoped_lock lock(adding);
    for (std::size_t i = 0; i < points; ++i) result.counts[i] += counts[i];
  });
  return result;
}

}  // namespace brenvolt::bench
