// The 1/n corrections of the distribution function of the Anderson-Darling statistic by simulation, for
// brv_sra/fitting/reference/make_anderson_darling_tables.py.
//
//     anderson_darling_corrections LIMIT [N [SAMPLES]] > CORRECTIONS
//
// LIMIT: the limiting distribution function F at z = 0, 0.05, …, 5.10, one line each (the script prints it).
// Writes n (F_n - F) at each point, with its standard error. The committed table is that of the defaults,
// n = 8 with 4e8 samples; docs/evidence/anderson-darling.md says why n = 8.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "bench/anderson_darling_sampling.h"

namespace {
constexpr double kSpacing = 0.05;
constexpr std::size_t kPoints = 103;
constexpr std::int32_t kFirstSeed = 19520;  // samples of n take the stream of kFirstSeed + n
}  // namespace

int main(int argc, char** argv) {
  std::vector<double> limit;
  std::ifstream file(argc > 1 ? argv[1] : "");
  for (double value = 0; file >> value;) limit.push_back(value);
  const long n = argc > 2 ? std::atol(argv[2]) : 8;
  const long samples = argc > 3 ? std::atol(argv[3]) : 400'000'000;
  if (limit.size() != kPoints || n < 2 || samples < 1) {
    std::fprintf(stderr, "usage: anderson_darling_corrections LIMIT [N [SAMPLES]]; LIMIT holds %zu values\n",
                 kPoints);
    return 2;
  }
  const auto counts = brenvolt::bench::CountStatistics(
      static_cast<std::size_t>(n), samples, kFirstSeed + static_cast<std::int32_t>(n), kSpacing, kPoints);
  const std::vector<double> f = counts.DistributionFunction();
  std::printf("k,z,correction,standard_error\n");
  for (std::size_t k = 0; k < kPoints; ++k) {
    const double error = std::sqrt(f[k] * (1.0 - f[k]) / static_cast<double>(counts.samples));
    std::printf("%zu,%.2f,%.6f,%.6f\n", k, kSpacing * static_cast<double>(k),
                static_cast<double>(n) * (f[k] - limit[k]), static_cast<double>(n) * error);
  }
}
