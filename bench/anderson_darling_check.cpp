// Holds the distribution function of the Anderson-Darling statistic to simulation.
//
//     anderson_darling_check [SAMPLES] > brv_sra/fitting/reference/anderson_darling_distribution.csv
//
// For n = 2, 5, 8, 20, 100: counts 1e7 samples on a grid of 0.005 up to 10, prints to standard error where
// the function lies farthest from the simulated one, and writes the simulated one at 25 points. The streams
// are not those of the corrections.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/anderson_darling_sampling.h"
#include "brv_sra/fitting/anderson_darling.h"

namespace {

constexpr std::size_t kSizes[] = {2, 5, 8, 20, 100};
constexpr std::int32_t kFirstSeed = 71952;  // samples of n take the stream of kFirstSeed + n
constexpr double kSpacing = 0.005;
constexpr std::size_t kPoints = 2001;
// Multiples of the spacing, on and between the points of the tables.
constexpr std::size_t kTablePoints[] = {30,  45,  50,  55,  64,  80,  95,  110, 127, 140,  155,  170, 188,
                                        205, 230, 260, 301, 350, 400, 505, 600, 777, 1000, 1100, 1500};

struct Largest {
  double difference = 0;
  double z = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const long samples = argc > 1 ? std::atol(argv[1]) : 10'000'000;
  std::printf("n,z,probability,standard_error\n");
  for (const std::size_t n : kSizes) {
    const auto counts = brenvolt::bench::CountStatistics(
        n, samples, kFirstSeed + static_cast<std::int32_t>(n), kSpacing, kPoints);
    const std::vector<double> f = counts.DistributionFunction();
    Largest all;
    Largest beyond;  // from z = 1 on, where p-values of interest lie
    for (std::size_t i = 0; i < kPoints; ++i) {
      const double z = kSpacing * static_cast<double>(i);
      const double difference =
          brenvolt::sra::AndersonDarlingDistribution(static_cast<std::int64_t>(n), z) - f[i];
      if (std::abs(difference) > std::abs(all.difference)) all = {difference, z};
      if (z >= 1 && std::abs(difference) > std::abs(beyond.difference)) beyond = {difference, z};
    }
    std::fprintf(stderr, "n = %zu: largest difference %+.5f at z = %.3f; from z = 1 on %+.5f at z = %.3f\n",
                 n, all.difference, all.z, beyond.difference, beyond.z);
    for (const std::size_t i : kTablePoints) {
      const double error = std::sqrt(f[i] * (1.0 - f[i]) / static_cast<double>(counts.samples));
      std::printf("%zu,%.3f,%.6f,%.6f\n", n, kSpacing * static_cast<double>(i), f[i], error);
    }
  }
}
