// How often the intervals of indices by percentiles hold the true index: prints docs/evidence/capability-intervals.md.
#include <cstdio>
#include <limits>
#include <utility>
#include <vector>

#include "host/numeric/distributions/distribution_table.h"
#include "host/statistics/capability.h"
#include "host/statistics/fit_intervals.h"

namespace brenvolt {
namespace {

constexpr double kConfidence = 0.95;
constexpr std::size_t kSamples = 2000;
constexpr std::size_t kResamples = 399;

struct Truth {
  const char* name;
  FittedValues fit;
  SpecificationLimits limits;
};

PercentileCapability CapabilityOf(const FittedValues& fit, const SpecificationLimits& limits) {
  const AnyDistribution distribution(fit.code, fit.values, fit.offset);
  return *AnalysePercentiles(
      {[&](double p) { return distribution.Quantile(p); }, [&](double x) { return distribution.Cdf(x); },
       [&](double x) { return distribution.Complement(x); }},
      limits);
}

bool Holds(const ConfidenceInterval& interval, double truth) {
  return !IsNotSet(interval.lower) && interval.lower <= truth && truth <= interval.upper;
}

void PrintRow(const Truth& truth, std::size_t count) {
  const PercentileCapability expected = CapabilityOf(truth.fit, truth.limits);
  const RandomStream stream(11);
  std::size_t indices = 0;
  std::size_t parts = 0;
  for (std::size_t i = 0; i < kSamples; ++i) {
    std::vector<double> sample(count);
    stream.Substream(i, count).FillUniform(0, sample);
    AnyDistribution(truth.fit.code, truth.fit.values, truth.fit.offset).Quantile(sample, sample);
    const auto fit = FitSample(truth.fit.code, std::move(sample), truth.fit.offset, {}, [] {});
    if (!fit) continue;
    const FitBootstrap bootstrap(*fit, count, kResamples, stream.Substream(i, count + 1), {}, [] {});
    std::vector<double> least;
    std::vector<double> total;
    for (const FittedValues& one : bootstrap.Fits()) {
      const PercentileCapability found = CapabilityOf(one, truth.limits);
      least.push_back(found.indices.least);
      total.push_back(found.expected.total);
    }
    indices += Holds(PercentileInterval(std::move(least), kConfidence), expected.indices.least) ? 1 : 0;
    parts += Holds(PercentileInterval(std::move(total), kConfidence), expected.expected.total) ? 1 : 0;
  }
  const auto share = [](std::size_t held) { return 100.0 * static_cast<double>(held) / kSamples; };
  std::printf("| %s | %zu | %.2f | %.1f %% | %.1f %% |\n", truth.name, count, expected.indices.least,
              share(indices), share(parts));
}

void Print() {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  const Truth truths[] = {
      {"Weibull, shape 2", {DistributionCode::kWeibull, {100, 2}, 0, {}}, {kNone, 270, kNone}},
      {"Weibull, shape 2", {DistributionCode::kWeibull, {100, 2}, 0, {}}, {2, 320, kNone}},
      {"Log Normal, shape 0.3", {DistributionCode::kLogNormal, {0, 0.3}, 0, {}}, {0.4, 2.5, kNone}}};
  std::printf(
      "# Intervals of indices by percentiles\n\nHow often 95 %% intervals by parametric bootstrap hold the "
      "true Ppk by "
      "percentiles and the true parts per million,\nwhere the right distribution is fitted. `build/bench/"
      "capability_coverage` prints this page: %zu samples of each kind,\n%zu samples of each bootstrap. The "
      "standard "
      "error of the shares is 0.5 %%.\n\n| distribution | values | Ppk | Ppk held | PPM held "
      "|\n|---|---|---|---|---|\n",
      kSamples, kResamples);
  for (const Truth& truth : truths) {
    for (const std::size_t count : {50, 200}) PrintRow(truth, count);
  }
}

}  // namespace
}  // namespace brenvolt

int main() {
  brenvolt::Print();
}
