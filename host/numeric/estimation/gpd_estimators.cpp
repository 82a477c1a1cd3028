// Generalized Pareto above a threshold. Grimshaw (1993): with r = shape / scale and the excesses y, the
// likelihood is greatest, for given r, at shape = mean(ln(1 + r y)), which leaves a function of r alone. With
// w(y, r) = ln(1 + r y) / r and A = mean(w), so that scale = A and shape = r A, the mean log-likelihood is
//   -(ln A + r A + 1),   with derivative   -(A' / A + mean(y / (1 + r y))),
// both smooth through r = 0.
#include "host/numeric/estimation/gpd_estimators.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/likelihood_sums.h"
#include "host/numeric/special/bracketed_root.h"

namespace brenvolt {
namespace {

using estimation::Ask;
using estimation::CheckAboveOffset;
using estimation::CompensatedSum;
using estimation::ScaledSample;
using estimation::ScaleFrom;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeastShape = -1.0;  // the likelihood is unbounded beyond

struct Profile {
  double scale = 0.0;
  double shape = 0.0;
  double logLikelihood = -kInfinity;  // mean
  double slope = 0.0;
};

// Values each of which represents `weight` values, and on both sides values that represent only themselves.
struct WeightedValues {
  std::vector<double> low;
  std::vector<double> middle;
  std::vector<double> high;
  double weight = 1.0;
};

// The sums over values that make a profile.
struct ProfileSums {
  double count = 0.0;
  double w = 0.0;
  double wByRatio = 0.0;
  double shapeByRatio = 0.0;

  void Add(const ProfileSums& more, double weight) {
    count += weight * more.count;
    w += weight * more.w;
    wByRatio += weight * more.wByRatio;
    shapeByRatio += weight * more.shapeByRatio;
  }
};

ProfileSums SumProfile(std::span<const double> values, double ratio) {
  const auto [w, wByRatio, shapeByRatio] = SumPareto(values, ratio);
  return {static_cast<double>(values.size()), w, wByRatio, shapeByRatio};
}

Profile FromSums(const ProfileSums& sums, double ratio) {
  Profile profile;
  profile.scale = sums.w / sums.count;
  profile.shape = ratio * profile.scale;
  profile.logLikelihood = -(std::log(profile.scale) + profile.shape + 1.0);
  profile.slope = -(sums.wByRatio / sums.w + sums.shapeByRatio / sums.count);
  return profile;
}

Profile ProfileAt(std::span<const double> values, double ratio) {
  return FromSums(SumProfile(values, ratio), ratio);
}

Profile ProfileAt(const WeightedValues& values, double ratio) {
  ProfileSums sums = SumProfile(values.low, ratio);
  sums.Add(SumProfile(values.high, ratio), 1.0);
  sums.Add(SumProfile(values.middle, ratio), values.weight);
  return FromSums(sums, ratio);
}

// shape / scale from the end of the support, -1 / greatest, to far into heavy tails, dense near 0. Where every
// value but those at the threshold is far beyond scale / shape, the likelihood only falls: there the grid ends.
std::vector<double> RatioGrid(std::span<const double> sorted) {
  constexpr int kPerDecade = 6;
  constexpr double kFarBeyond = 1e6;
  constexpr double kGreatestRatio = 1e300;
  const double greatest = sorted.back();
  const double least = *std::ranges::find_if(sorted, [](double y) { return y > 0.0; });
  std::vector<double> grid;
  for (int j = 14 * kPerDecade; j >= 1; --j) {
    grid.push_back(-(1.0 - std::pow(10.0, -static_cast<double>(j) / kPerDecade)) / greatest);
  }
  for (int j = 1; j <= 4 * kPerDecade; ++j) {
    grid.push_back(-(1.0 - std::pow(10.0, -1.0 / kPerDecade)) / greatest *
                   std::pow(10.0, -static_cast<double>(j) / kPerDecade));
  }
  const double heaviest = std::min(kFarBeyond / least, kGreatestRatio);
  for (double ratio = 1e-4 / greatest; ratio < heaviest; ratio *= std::pow(10.0, 1.0 / kPerDecade)) {
    grid.push_back(ratio);
  }
  return grid;
}

// Two neighbours of the grid between which the slope changes from positive to negative, and the root there.
struct Peak {
  double low;
  double high;
  double ratio;
};

template <class Values>
double SlopeAt(const Values& values, double ratio, const EstimationPoll& poll) {
  Ask(poll);
  return ProfileAt(values, ratio).slope;
}

template <class Values>
std::vector<Peak> Peaks(const Values& values, const std::vector<double>& grid, const EstimationPoll& poll) {
  std::vector<Peak> peaks;
  double previous = SlopeAt(values, grid[0], poll);
  for (std::size_t i = 1; i < grid.size(); ++i) {
    const double slope = SlopeAt(values, grid[i], poll);
    if (previous > 0.0 && slope <= 0.0) {
      const double ratio = SolveBracketed([&](double r) { return SlopeAt(values, r, poll); }, grid[i - 1],
                                          grid[i], previous, slope);
      peaks.push_back({grid[i - 1], grid[i], ratio});
    }
    previous = slope;
  }
  return peaks;
}

// A large sample by some hundred values: evenly placed ones between its ends, and those at its ends as they
// are, since the greatest ones decide where a bounded support may end.
WeightedValues ThinnedBetweenEnds(std::span<const double> sorted, std::size_t count) {
  constexpr std::size_t kEnd = 64;
  const auto middle = sorted.subspan(kEnd, sorted.size() - 2 * kEnd);
  const auto low = sorted.first(kEnd);
  const auto high = sorted.last(kEnd);
  return {{low.begin(), low.end()},
          Thinned(middle, count),
          {high.begin(), high.end()},
          static_cast<double>(middle.size()) / static_cast<double>(count)};
}

// The part of the grid some steps to both sides of a peak.
std::vector<double> GridAround(const std::vector<double>& grid, const Peak& peak) {
  constexpr std::ptrdiff_t kSteps = 8;
  const auto first = std::ranges::lower_bound(grid, peak.low) - grid.begin();
  const auto last = std::ranges::lower_bound(grid, peak.high) - grid.begin();
  const auto size = static_cast<std::ptrdiff_t>(grid.size());
  return {grid.begin() + std::max<std::ptrdiff_t>(0, first - kSteps),
          grid.begin() + std::min(size, last + kSteps + 1)};
}

// The useful peaks of a large sample from those of a thinned one; nothing when one of them has no peak near.
// Peaks beyond the least shape are left out: they hang on the extremes, which thinning moves.
std::optional<std::vector<Peak>> PeaksByThinning(std::span<const double> sorted, std::size_t count,
                                                 const std::vector<double>& grid,
                                                 const EstimationPoll& poll) {
  constexpr double kMargin = 0.1;
  const WeightedValues thin = ThinnedBetweenEnds(sorted, count);
  std::vector<Peak> peaks;
  for (const Peak& peak : Peaks(thin, grid, poll)) {
    if (ProfileAt(thin, peak.ratio).shape < kLeastShape - kMargin) continue;
    const auto ratio =
        SolveFallingNear([&](double r) { return SlopeAt(sorted, r, poll); }, peak.ratio, peak.low, peak.high);
    if (ratio) {
      peaks.push_back({peak.low, peak.high, *ratio});
      continue;
    }
    const std::vector<Peak> near = Peaks(sorted, GridAround(grid, peak), poll);
    if (near.empty()) return std::nullopt;
    peaks.insert(peaks.end(), near.begin(), near.end());
  }
  return peaks;
}

std::vector<Peak> UsefulPeaks(std::span<const double> sorted, const EstimationPoll& poll) {
  const std::vector<double> grid = RatioGrid(sorted);
  if (sorted.size() <= kLargeSample) return Peaks(sorted, grid, poll);
  const auto peaks = PeaksByThinning(sorted, kThinnedSample, grid, poll);
  return peaks ? *peaks : Peaks(sorted, grid, poll);
}

// The greatest local maximum with shape > -1; a log-likelihood of minus infinity when there is none.
Profile GreatestMaximum(std::span<const double> sorted, const EstimationPoll& poll) {
  Profile best;
  for (const Peak& peak : UsefulPeaks(sorted, poll)) {
    const Profile maximum = ProfileAt(sorted, peak.ratio);
    if (maximum.shape > kLeastShape && maximum.logLikelihood > best.logLikelihood) best = maximum;
  }
  return best;
}

// The excesses, sorted and scaled.
EstimationResult<ScaledSample> Prepare(std::span<const double> data, double threshold) {
  if (auto checked = CheckAboveOffset(data, 2, threshold, true); !checked) return checked.Reason();
  ScaledSample sample = ScaleFrom(data, threshold);
  if (estimation::IsAnyNotFinite(sample.values)) return Fault{EstimationFault::kNotFinite};
  if (!std::ranges::is_sorted(sample.values)) std::ranges::sort(sample.values);
  if (sample.values.front() == sample.values.back()) return Fault{EstimationFault::kNoSpread};
  return sample;
}

EstimationResult<ParetoEstimate> IfFinite(const ParetoEstimate& estimate) {
  if (!std::isfinite(estimate.scale) || !std::isfinite(estimate.shape))
    return Fault{EstimationFault::kNotFinite};
  return estimate;
}

}  // namespace

EstimationResult<ParetoEstimate> EstimatePareto(std::span<const double> data, double threshold,
                                                const EstimationPoll& poll) {
  const auto sample = Prepare(data, threshold);
  if (!sample) return sample.Reason();
  const Profile maximum = GreatestMaximum(sample->values, poll);
  if (!(maximum.logLikelihood > -kInfinity)) return Fault{EstimationFault::kNoMaximum};
  return IfFinite({sample->InUnitsOfData(maximum.scale), maximum.shape});
}

EstimationResult<ParetoEstimate> EstimateParetoByMoments(std::span<const double> data, double threshold) {
  const auto sample = Prepare(data, threshold);
  if (!sample) return sample.Reason();
  // Hosking & Wallis (1987), section 4: a_s is the moment of y (1 - F)^s.
  const std::span<const double> values = sample->values;
  const auto n = static_cast<double>(values.size());
  CompensatedSum sum0;
  CompensatedSum sum1;
  for (std::size_t i = 0; i < values.size(); ++i) {
    sum0.Add(values[i] / n);
    sum1.Add(values[i] / n * ((n - 1.0 - static_cast<double>(i)) / (n - 1.0)));
  }
  const double a0 = sum0.Value();
  const double a1 = sum1.Value();
  const double spread = a0 - 2.0 * a1;
  if (!(spread > 0.0) || !(a1 > 0.0)) return Fault{EstimationFault::kNoSolution};
  return IfFinite({sample->InUnitsOfData(2.0 * a0 * a1 / spread), 2.0 - a0 / spread});
}

}  // namespace brenvolt
