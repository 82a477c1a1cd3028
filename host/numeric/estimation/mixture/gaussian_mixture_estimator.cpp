// The search for the Gaussian mixture of greatest likelihood: every start runs a few steps (the short runs of
// Biernacki, Celeux & Govaert 2003), the best of them to the end; changes of the mixture found are starts,
// too.
#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "host/numeric/estimation/centred_sample.h"
#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/mixture/mixture_climber.h"
#include "host/numeric/estimation/mixture/mixture_starts.h"
#include "host/numeric/special/bracketed_root.h"

namespace brenvolt {
namespace {

using estimation::CheckSample;
using estimation::Mean;
using estimation::MeanSquare;
using estimation::ScaledSample;
using estimation::ScaleFrom;
using mixture::Candidate;
using mixture::Climber;
using mixture::Component;
using mixture::Mixture;
using mixture::RunShort;
using mixture::RunToTheEnd;
using mixture::SplitAndMerged;
using mixture::Starts;
using mixture::WithOneMore;
using mixture::WithTail;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kSearchedWhole = 2'500;  // the search costs hundreds of passes over its values
constexpr std::size_t kSearchedThin = 2'048;

void SortByMean(Mixture& mixture) {
  std::sort(mixture.begin(), mixture.end(), [](const Component& a, const Component& b) {
    return a.mean != b.mean ? a.mean < b.mean : a.deviation < b.deviation;
  });
}

// Two components in one place are one: a saddle of the likelihood, from which symmetric data cannot move.
bool HasTwins(const Mixture& mixture) {
  constexpr double kLeastDistance = 0.01;  // in standard deviations
  for (std::size_t a = 0; a < mixture.size(); ++a) {
    for (std::size_t b = a + 1; b < mixture.size(); ++b) {
      const double distance = std::max(std::abs(mixture[a].mean - mixture[b].mean),
                                       std::abs(mixture[a].deviation - mixture[b].deviation));
      if (distance < kLeastDistance * std::min(mixture[a].deviation, mixture[b].deviation)) return true;
    }
  }
  return false;
}

// The best short runs, best first.
std::vector<Candidate> BestShortRuns(Climber& climber, const std::vector<Mixture>& starts,
                                     std::size_t count) {
  std::vector<Candidate> runs;
  for (const Mixture& start : starts) {
    Candidate run = RunShort(climber, start);
    if (run.logLikelihood > -kInfinity) runs.push_back(std::move(run));
  }
  std::stable_sort(runs.begin(), runs.end(),
                   [](const Candidate& a, const Candidate& b) { return a.logLikelihood > b.logLikelihood; });
  if (runs.size() > count) runs.resize(count);
  return runs;
}

// Whether both are one maximum, to which different starts have led.
bool IsSame(const Mixture& a, const Mixture& b) {
  constexpr double kSame = 1e-5;
  for (std::size_t c = 0; c < a.size(); ++c) {
    const double distance =
        std::max(std::abs(a[c].mean - b[c].mean), std::abs(a[c].deviation - b[c].deviation)) / a[c].deviation;
    if (std::max(distance, std::abs(a[c].proportion - b[c].proportion)) > kSame) return false;
  }
  return true;
}

// The maxima that the runs end at, each once; a run without one stands as it is.
std::vector<Candidate> Ends(Climber& climber, const std::vector<Candidate>& runs) {
  std::vector<Candidate> ends;
  for (const Candidate& run : runs) {
    Candidate end = RunToTheEnd(climber, run.mixture);
    if (end.mixture.empty()) end = run;
    SortByMean(end.mixture);
    const auto isSame = [&end](const Candidate& other) { return IsSame(other.mixture, end.mixture); };
    if (std::ranges::none_of(ends, isSame)) ends.push_back(std::move(end));
  }
  return ends;
}

// `isStart`: the mixture found only gives starts for one with a component more.
Candidate SearchMixture(std::span<const double> sorted, std::size_t components, double deviation,
                        const EstimationPoll& poll, bool isStart = false) {
  // A few components deserve a thorough search; with many, there is little to choose between the maxima.
  constexpr std::size_t kFew = 6;
  constexpr std::size_t kSketched = 512;  // values that the short runs look at
  const bool isThorough = components <= kFew;
  const std::size_t longRuns = !isThorough ? 3 : isStart ? 12 : 40;
  const std::size_t neighbourRuns = !isThorough ? 1 : isStart ? 4 : 8;
  const int rounds = isThorough && !isStart ? 3 : 1;
  if (components == 1) return {{{1.0, Mean(sorted), deviation}}, 0.0};
  const std::vector<double> thin = Thinned(sorted, kSketched);
  Climber sketch(thin, components, deviation, poll);
  Climber climber(sorted, components, deviation, poll);
  Candidate best;
  const auto improve = [&](const std::vector<Mixture>& starts, std::size_t runs) {
    bool isBetter = false;
    std::vector<Candidate> ends = BestShortRuns(sketch, starts, runs);
    if (thin.size() < sorted.size()) ends = Ends(sketch, ends);
    for (const Candidate& run : ends) {
      Candidate end = RunToTheEnd(climber, run.mixture);
      if (!(end.logLikelihood > best.logLikelihood + 1e-10) || HasTwins(end.mixture)) continue;
      best = std::move(end);
      isBetter = true;
    }
    SortByMean(best.mixture);
    return isBetter;
  };
  std::vector<Mixture> starts = Starts(sorted, components, deviation);
  if (isThorough && components > 1) {
    const Candidate fewer = SearchMixture(sorted, components - 1, deviation, poll, true);
    for (Mixture& start : WithOneMore(fewer.mixture)) starts.push_back(std::move(start));
  }
  improve(starts, longRuns);
  for (int round = 0; round < rounds && components > 2 && !best.mixture.empty(); ++round) {
    if (!improve(SplitAndMerged(best.mixture), neighbourRuns)) break;
  }
  return best;
}

// The mixture found in a thinned sample climbed from over samples of rising size: their maxima lie close, as evenly placed
// values tell the distribution far better than as many random ones. Empty if the mixture collapses.
Candidate Refined(std::span<const double> sorted, std::size_t known, Mixture mixture, double deviation,
                  const EstimationPoll& poll) {
  constexpr std::size_t kRise = 16;
  Candidate best = {std::move(mixture)};
  while (known < sorted.size() && !best.mixture.empty()) {
    known = std::min(known * kRise, sorted.size());
    const std::vector<double> thin = known < sorted.size() ? Thinned(sorted, known) : std::vector<double>();
    Climber climber(thin.empty() ? sorted : std::span<const double>(thin), best.mixture.size(), deviation,
                    poll);
    best = RunToTheEnd(climber, best.mixture);
  }
  return best;
}

// The mixture with a component of a few values in a tail, which thinning leaves out, if it is better.
Candidate BestWithTail(std::span<const double> sorted, const Mixture& fewer, double leastLogLikelihood,
                       double deviation, const EstimationPoll& poll) {
  constexpr int kSteps = 5;
  constexpr std::size_t kSeen = 32;  // thinned values; a component of more is found among them
  const std::size_t most = kSeen * sorted.size() / kSearchedThin;
  Climber climber(sorted, fewer.size() + 1, deviation, poll);
  Candidate best;
  for (Mixture& start : WithTail(fewer, sorted, most, deviation)) {
    Mixture image = start;
    const double logLikelihood = climber.Step(image);
    if (logLikelihood > best.logLikelihood) best = {std::move(image), logLikelihood};
  }
  for (int step = 0; step < kSteps && !best.mixture.empty(); ++step) {
    if (climber.IsCollapsed(best.mixture)) return {};
    best.logLikelihood = climber.Step(best.mixture);
  }
  if (!(best.logLikelihood > leastLogLikelihood)) return {};
  return RunToTheEnd(climber, best.mixture);
}

// A large sample is searched thinned.
Candidate FitSorted(std::span<const double> sorted, std::size_t components, double deviation,
                    const EstimationPoll& poll) {
  if (sorted.size() <= kSearchedWhole) return SearchMixture(sorted, components, deviation, poll);
  const std::vector<double> thin = Thinned(sorted, kSearchedThin);
  const Candidate ofThin = SearchMixture(thin, components, deviation, poll);
  if (ofThin.mixture.empty()) return SearchMixture(sorted, components, deviation, poll);
  Candidate best = Refined(sorted, thin.size(), ofThin.mixture, deviation, poll);
  if (best.mixture.empty()) return SearchMixture(sorted, components, deviation, poll);
  if (components > 1) {
    const Candidate fewer = SearchMixture(thin, components - 1, deviation, poll, true);
    Candidate other;
    if (!fewer.mixture.empty())
      other = BestWithTail(sorted, fewer.mixture, best.logLikelihood, deviation, poll);
    if (other.logLikelihood > best.logLikelihood && !HasTwins(other.mixture)) best = std::move(other);
  }
  SortByMean(best.mixture);
  return best;
}

}  // namespace

EstimationResult<std::vector<double>> EstimateGaussianMixture(std::span<const double> data,
                                                              std::int32_t components,
                                                              const EstimationPoll& poll) {
  if (auto checked = CheckSample(data, 2); !checked) return checked.Reason();
  if (components < 1) return FaultAbout(EstimationFault::kInvalidArgument, components);
  const auto count = static_cast<std::size_t>(components);
  if (2 * count > data.size()) {
    return FaultAbout(EstimationFault::kTooManyComponents, components, static_cast<double>(data.size()));
  }
  const auto centred = estimation::SortedAndCentred(data);
  if (!centred) return centred.Reason();
  const ScaledSample& sample = *centred;
  const double deviation = std::sqrt(MeanSquare(sample.values, Mean(sample.values)));
  const Candidate best = FitSorted(sample.values, count, deviation, poll);
  if (best.mixture.empty()) return FaultAbout(EstimationFault::kNoMaximum, components);
  std::vector<double> values;
  values.reserve(3 * count);
  for (const Component& component : best.mixture) {
    values.insert(values.end(), {component.proportion, sample.origin + sample.InUnitsOfData(component.mean),
                                 sample.InUnitsOfData(component.deviation)});
  }
  if (estimation::IsAnyNotFinite(values)) return Fault{EstimationFault::kNotFinite};
  return values;
}

std::optional<std::size_t> NearSpike(std::span<const double> mixture, double count) {
  constexpr double kFewValues = 10.0;
  constexpr double kNarrow = 0.1;
  std::size_t narrowest = 0;
  double widest = 0.0;
  for (std::size_t c = 0; 3 * c < mixture.size(); ++c) {
    widest = std::max(widest, mixture[3 * c + 2]);
    if (mixture[3 * c + 2] < mixture[3 * narrowest + 2]) narrowest = c;
  }
  const bool isNear =
      mixture[3 * narrowest] * count < kFewValues && mixture[3 * narrowest + 2] < kNarrow * widest;
  return isNear ? std::optional(narrowest) : std::nullopt;
}

}  // namespace brenvolt
