// The folded normal has the likelihood equations (Leone, Nelson & Nottingham 1961)
//   location = mean(x tanh(x location / scale^2)),  scale^2 = mean(x^2) - location^2.
// With d = mean(x) - location they become one equation in d on [0, mean(x)],
//   d = mean(2 x / (exp(2 x location / scale^2) + 1)),  scale^2 = variance(x) + d (2 mean(x) - d),
// without cancellation however small the spread is relative to the mean. d = mean(x), which is location 0,
// always solves it and is a maximum or a saddle; d = 0 is the normal distribution far from the fold.
#include "host/numeric/estimation/folded_normal_estimator.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/estimation/likelihood_sums.h"
#include "host/numeric/special/bracketed_root.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

using estimation::AboveOffset;
using estimation::Ask;
using estimation::Mean;
using estimation::MeanSquare;
using estimation::SumOverBlocks;

class FoldedLikelihood {
 public:
  // `poll` has to outlive it.
  FoldedLikelihood(std::span<const double> values, const EstimationPoll& poll)
      : values_(values), poll_(poll), mean_(Mean(values)), variance_(MeanSquare(values, mean_)) {}

  double SampleMean() const { return mean_; }
  double SampleVariance() const { return variance_; }
  double ScaleSquared(double d) const { return variance_ + d * (2.0 * mean_ - d); }

  // Positive where the likelihood grows with d.
  double Excess(double d) const {
    Ask(poll_);
    const double slope = 2.0 * (mean_ - d) / ScaleSquared(d);
    const double sum = SumFolded(values_, slope);
    return sum / static_cast<double>(values_.size()) - d;
  }

  // Mean log-likelihood, without constants.
  double LogLikelihood(double d) const {
    Ask(poll_);
    const double location = mean_ - d;
    const double scaleSquared = ScaleSquared(d);
    const double slope = -2.0 * location / scaleSquared;
    const double sum = SumOverBlocks(values_, [&](std::span<const double> x, std::span<double> out) {
      for (std::size_t i = 0; i < x.size(); ++i) out[i] = slope * x[i];
      elementary::Exp(out, out);
      elementary::Log1p(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) {
        const double z = x[i] - location;
        out[i] -= 0.5 * z * z / scaleSquared;
      }
    });
    return sum / static_cast<double>(values_.size()) - 0.5 * std::log(scaleSquared);
  }

 private:
  std::span<const double> values_;
  const EstimationPoll& poll_;
  double mean_;
  double variance_;
};

// d from nearly 0 to nearly the mean, in steps of a factor of two from either end.
std::vector<double> FoldedGrid(double mean) {
  constexpr int kNearZero = 60;
  constexpr int kNearMean = 17;  // nearer than 2^-17 the likelihood is flat to its last bits
  std::vector<double> grid = {0.0};
  for (int k = kNearZero; k >= 1; --k) grid.push_back(std::scalbn(mean, -k));
  for (int k = 2; k <= kNearMean; ++k) grid.push_back(mean - std::scalbn(mean, -k));
  return grid;
}

// Two neighbours of the grid between which the excess changes from positive to negative, and the root there.
struct FoldedRoot {
  double low;
  double high;
  double d;
};

std::vector<FoldedRoot> FoldedRoots(const FoldedLikelihood& likelihood) {
  const auto excessAt = [&](double d) { return likelihood.Excess(d); };
  const std::vector<double> grid = FoldedGrid(likelihood.SampleMean());
  std::vector<FoldedRoot> roots;
  double previous = excessAt(grid[0]);
  for (std::size_t i = 1; i < grid.size(); ++i) {
    const double excess = excessAt(grid[i]);
    if (previous > 0.0 && excess <= 0.0)
      roots.push_back(
          {grid[i - 1], grid[i], SolveBracketed(excessAt, grid[i - 1], grid[i], previous, excess)});
    previous = excess;
  }
  return roots;
}

// The roots of a large sample from those of a thinned one; nothing when one of them has no root near.
std::optional<std::vector<FoldedRoot>> FoldedRootsByThinning(const FoldedLikelihood& likelihood,
                                                             std::span<const double> sorted,
                                                             const EstimationPoll& poll) {
  const std::vector<double> thin = Thinned(sorted, kThinnedSample);
  std::vector<FoldedRoot> roots = FoldedRoots(FoldedLikelihood(thin, poll));
  for (FoldedRoot& root : roots) {
    const double high = std::min(2.0 * root.high, likelihood.SampleMean());
    const auto d = SolveFallingNear([&](double at) { return likelihood.Excess(at); }, std::min(root.d, high),
                                    0.5 * root.low, high);
    if (!d) return std::nullopt;
    root.d = *d;
  }
  return roots;
}

double BestFoldedRoot(const FoldedLikelihood& likelihood, std::span<const double> values,
                      const EstimationPoll& poll) {
  std::optional<std::vector<FoldedRoot>> roots;
  if (values.size() > kLargeSample && std::ranges::is_sorted(values))
    roots = FoldedRootsByThinning(likelihood, values, poll);
  if (!roots) roots = FoldedRoots(likelihood);
  if (likelihood.Excess(0.0) <= 0.0) roots->push_back({0.0, 0.0, 0.0});
  double best = likelihood.SampleMean();
  double bestLogLikelihood = likelihood.LogLikelihood(best);
  for (const FoldedRoot& root : *roots) {
    const double value = likelihood.LogLikelihood(root.d);
    if (!(value > bestLogLikelihood)) continue;
    best = root.d;
    bestLogLikelihood = value;
  }
  return best;
}

}  // namespace

EstimationResult<FoldedNormalEstimate> EstimateFoldedNormal(std::span<const double> data, double offset,
                                                            const EstimationPoll& poll) {
  auto sample = AboveOffset(data, offset, true);
  if (!sample) return sample.Reason();
  const std::span<const double> values = sample->values;
  const FoldedLikelihood likelihood(values, poll);
  const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
  if (*least == *greatest || !(likelihood.SampleVariance() > 0.0)) return Fault{EstimationFault::kNoSpread};

  const double d = BestFoldedRoot(likelihood, values, poll);
  return FoldedNormalEstimate{sample->InUnitsOfData(likelihood.SampleMean() - d),
                              sample->InUnitsOfData(std::sqrt(likelihood.ScaleSquared(d)))};
}

}  // namespace brenvolt
