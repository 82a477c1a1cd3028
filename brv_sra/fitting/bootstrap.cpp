#include "brv_sra/fitting/bootstrap.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/goodness_of_fit.h"
#include "host/base/cancellation.h"
#include "host/base/parallel.h"
#include "host/base/process/floating_point_guard.h"
#include "host/numeric/goodness_of_fit/chi_square_tail.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

constexpr std::int64_t kBlockValues = 4'000;     // drawn before a worker looks for its next block
constexpr std::int64_t kHeldValues = 4'000'000;  // in the samples of all workers, at least one sample

// How many samples count for a test, and how many of them are at least as far from their estimate as the
// data.
struct Tally {
  std::atomic<std::int32_t> tested{0};
  std::atomic<std::int32_t> asExtreme{0};

  void Count(bool isAsExtreme) {
    tested.fetch_add(1, std::memory_order_relaxed);
    if (isAsExtreme) asExtreme.fetch_add(1, std::memory_order_relaxed);
  }
  double PValue() const { return tested > 0 ? (1.0 + asExtreme) / (1.0 + tested) : kNotSet; }
};

struct Tallies {
  std::atomic<std::int32_t> fitted{0};
  Tally kolmogorovSmirnov;
  Tally chiSquare;
  Tally andersonDarling;
};

// Statistics of discrete distributions take few values, and those of one that reproduces its data, as Bernoulli
// does, are 0 but for rounding: what differs by rounding is as extreme.
bool IsAsLarge(double sample, double data) {
  constexpr double kRounding = 1e-10;
  return sample >= data - kRounding * std::max(1.0, std::abs(data));
}

bool IsAsExtreme(const ChiSquareResult& sample, const ChiSquareResult& data) {
  if (sample.degreesOfFreedom == data.degreesOfFreedom) return IsAsLarge(sample.statistic, data.statistic);
  return ChiSquareTail(sample.statistic, sample.degreesOfFreedom) <=
         ChiSquareTail(data.statistic, data.degreesOfFreedom);
}

void Compare(const TestResult& sample, const TestResult& data, Tally& tally) {
  if (IsNotSet(sample.statistic) || IsNotSet(data.statistic)) return;
  tally.Count(IsAsLarge(sample.statistic, data.statistic));
}

void Compare(const ChiSquareResult& sample, const ChiSquareResult& data, Tally& tally) {
  if (IsNotSet(sample.statistic) || IsNotSet(data.statistic)) return;
  tally.Count(IsAsExtreme(sample, data));
}

// Sample number `index` of a job, sorted, in `values`; false if the distribution gave a value that is not
// finite.
bool Draw(const BootstrapJob& job, std::int64_t index, std::vector<double>& values, Moments& moments) {
  constexpr double kLeastProbability = 0x1p-54;           // for a deviate of 0, which has no quantile
  const std::int64_t stride = job.count + job.count % 2;  // samples begin where the stream's blocks do
  values.resize(static_cast<std::size_t>(job.count));
  job.stream.FillUniform(static_cast<std::uint64_t>(index * stride), values);
  for (double& u : values) u = std::max(u, kLeastProbability);
  SpecifiedDistribution(job.fit->specification).Quantile(values, values);
  MomentAccumulator accumulator;
  for (const double x : values) {
    if (!std::isfinite(x)) return false;
    accumulator.Add(x, 1);
  }
  moments = accumulator.Finish();
  SortAscending(values);
  return true;
}

void JudgeSample(const BootstrapJob& job, std::int64_t index, ChiSquareBinning binning, const Poll& poll,
                 std::vector<double>& values, Tallies& tallies) {
  const FloatingPointGuard guard;
  Moments moments;
  if (!Draw(job, index, values, moments)) return;
  if (IsContinuous(job.fit->specification.code) && moments.standardDeviation <= 0) return;
  DistributionFit fit = job.estimate({values, moments}, poll);
  if (!fit.IsValid()) return;
  TestFitStatistics(fit, values, binning);
  tallies.fitted.fetch_add(1, std::memory_order_relaxed);
  Compare(fit.kolmogorovSmirnov, job.fit->kolmogorovSmirnov, tallies.kolmogorovSmirnov);
  Compare(fit.chiSquare, job.fit->chiSquare, tallies.chiSquare);
  Compare(fit.andersonDarling, job.fit->andersonDarling, tallies.andersonDarling);
}

// Only estimates from probability-weighted moments have such a shape, mostly of data far from the type.
bool IsUnboundedAtItsEnd(const DistributionSpecification& specification) {
  constexpr double kLeastShape = -1.0;
  switch (specification.code) {
    case DistributionCode::kGeneralExtremeValue:
      return specification.values[2] < kLeastShape;
    case DistributionCode::kGeneralPareto:
      return specification.values[1] < kLeastShape;
    default:
      return false;
  }
}

bool CanBeJudged(const BootstrapJob& job) {
  const DistributionSpecification& specification = job.fit->specification;
  return job.fit->IsValid() && job.count > 0 && SpecifiedDistribution(specification).IsValid() &&
         !IsUnboundedAtItsEnd(specification);
}

// The samples of all jobs in blocks of consecutive ones, those of every job before the next of any, so that a
// slow type is not left for the end.
class Schedule {
 public:
  struct Block {
    std::size_t job;
    std::int64_t begin;
    std::int64_t end;
  };

  Schedule(std::span<const BootstrapJob> jobs, std::int32_t samples) : samples_(samples) {
    for (std::size_t j = 0; j < jobs.size(); ++j) {
      if (!CanBeJudged(jobs[j])) continue;
      drawn_.push_back(j);
      largest_ = std::max(largest_, jobs[j].count);
    }
    blockSize_ = std::clamp<std::int64_t>(kBlockValues / largest_, 1, samples);
  }

  std::int64_t Samples() const { return static_cast<std::int64_t>(drawn_.size()) * samples_; }
  std::size_t Blocks() const {
    return drawn_.size() * static_cast<std::size_t>((samples_ + blockSize_ - 1) / blockSize_);
  }
  Block BlockAt(std::size_t i) const {
    const std::int64_t begin = static_cast<std::int64_t>(i / drawn_.size()) * blockSize_;
    return {drawn_[i % drawn_.size()], begin, std::min(begin + blockSize_, samples_)};
  }
  // How many blocks may be at work, for the memory of their samples.
  std::size_t Workers() const {
    return std::min(Blocks(), static_cast<std::size_t>(std::max<std::int64_t>(kHeldValues / largest_, 1)));
  }

 private:
  std::vector<std::size_t> drawn_;
  std::int64_t samples_;
  std::int64_t largest_ = 1;
  std::int64_t blockSize_ = 1;
};

RandomStream StreamOf(std::int32_t seed, const VariableFit& variable, DistributionCode code) {
  return RandomStream(seed).Substream(static_cast<std::uint64_t>(variable.variableNumber),
                                      static_cast<std::uint64_t>(code));
}

}  // namespace

void RunBootstrap(std::span<const BootstrapJob> jobs, std::int32_t samples, ChiSquareBinning binning,
                  const RunProgress& bars) {
  const Schedule schedule(jobs, samples);
  if (schedule.Samples() == 0) return;
  std::vector<Tallies> tallies(jobs.size());
  std::atomic<std::size_t> next{0};
  std::atomic<std::int64_t> done{0};
  Cancellation cancellation;
  const Poll poll = [&cancellation] { cancellation.Poll(); };
  const auto work = [&](std::size_t /*worker*/) {
    std::vector<double> values;
    for (std::size_t i = next++; i < schedule.Blocks(); i = next++) {
      const auto [job, begin, end] = schedule.BlockAt(i);
      for (std::int64_t index = begin; index < end; ++index) {
        cancellation.Poll();
        JudgeSample(jobs[job], index, binning, poll, values, tallies[job]);
        ++done;
      }
    }
  };
  const auto progress = Computing(bars, static_cast<std::size_t>(schedule.Samples()) + 1);
  progress->ShowNow();
  ParallelForWatched(schedule.Workers(), work, [&] {
    try {
      progress->Step(done.exchange(0));
    } catch (...) {
      cancellation.Request();
      throw;
    }
  });
  for (std::size_t j = 0; j < jobs.size(); ++j) {
    const Tallies& t = tallies[j];
    jobs[j].fit->bootstrap = {t.kolmogorovSmirnov.PValue(), t.chiSquare.PValue(), t.andersonDarling.PValue(),
                              t.fitted};
  }
}

void BootstrapResults(std::vector<VariableFit>& results, const FitSpecification& specification,
                      const RunProgress& bars) {
  if (specification.bootstrapSamples <= 0) return;
  const std::size_t continuous = specification.continuous.size();
  std::vector<BootstrapJob> jobs;
  for (std::size_t v = 0; v < results.size(); ++v) {
    for (DistributionFit& fit : results[v].fits) {
      const DistributionCode code = fit.specification.code;
      BootstrapJob job{
          &fit, results[v].moments.count, StreamOf(specification.bootstrapSeed, results[v], code), {}};
      if (results[v].continuous) {
        job.estimate = [code, &all = specification.continuousSpecifications[v]](const SortedSample& sample,
                                                                                const Poll& poll) {
          return EstimateContinuous(code, sample, all, poll);
        };
      } else {
        job.estimate = [code, &all = specification.discreteSpecifications[v - continuous]](
                           const SortedSample& sample, const Poll& /*poll*/) {
          return EstimateDiscrete(code, sample, all);
        };
      }
      jobs.push_back(std::move(job));
    }
  }
  RunBootstrap(jobs, specification.bootstrapSamples, specification.binning, bars);
}

}  // namespace brenvolt::sra
