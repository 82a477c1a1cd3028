#include "brv_sra/simulation/sampling/variable_sampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/simulation/sampling/candidate_draws.h"
#include "brv_sra/simulation/sampling/random_permutation.h"
#include "host/base/parallel.h"
#include "host/base/truncated_tail.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt::sra {
namespace {

constexpr double kTruncatedLower = kTruncatedTail;
constexpr double kTruncatedUpper = 1 - kTruncatedTail;
constexpr double kUnbounded = 1e300;
constexpr std::size_t kTile = 1024;         // values whose draws stay in the nearest caches
constexpr std::size_t kBlock = 16 * kTile;  // values of one task
constexpr std::size_t kValuesPerPoll = std::size_t{1} << 18;
// A uniform deviate of 0 represents those up to the next, 2^-53: their middle is used.
constexpr double kMiddleOfZero = 0x1p-54;
constexpr double kLargestProbability = 1 - 0x1p-53;

bool IsSentinel(double x) {
  return std::isnan(x) || x == kInvalidQuantile;
}

// The first value of a discrete distribution from `limit` on: a level, or a whole number.
double FirstFrom(const DistributionSpecification& specification, double limit) {
  if (specification.code != DistributionCode::kHistogram) return std::ceil(limit);
  double first = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < specification.values.size(); i += 2)
    if (specification.values[i] >= limit) first = std::min(first, specification.values[i]);
  return first;
}
double LastUpTo(const DistributionSpecification& specification, double limit) {
  if (specification.code != DistributionCode::kHistogram) return std::floor(limit);
  double last = -std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < specification.values.size(); i += 2)
    if (specification.values[i] <= limit) last = std::max(last, specification.values[i]);
  return last;
}

}  // namespace

VariableSampler::VariableSampler(const DistributionSpecification& specification, bool truncate,
                                 ParameterSource source)
    : specification_(specification),
      distribution_(specification_),
      lowest_(-kUnbounded),
      highest_(kUnbounded),
      leastValue_(-kUnbounded),
      mostValue_(kUnbounded) {
  if (!distribution_.IsValid()) return;
  SetRanges(truncate, source);
  valid_ = HasValues();
  if (!valid_) return;
  candidates_.emplace(specification_);
}

void VariableSampler::SetRanges(bool truncate, ParameterSource source) {
  if (truncate) {
    lowerProbability_ = kTruncatedLower;
    upperProbability_ = kTruncatedUpper;
    lowest_ = distribution_.Quantile(kTruncatedLower);
    highest_ = distribution_.Quantile(kTruncatedUpper);
  }
  if (source == ParameterSource::kUserSpecified && specification_.truncateBelow) {
    lowerProbability_ = std::max(lowerProbability_, distribution_.Cdf(specification_.truncationMinimum));
    lowest_ = specification_.truncationMinimum <= lowest_ ? lowest_ : specification_.truncationMinimum;
  }
  if (source == ParameterSource::kUserSpecified && specification_.truncateAbove) {
    upperProbability_ = std::min(upperProbability_, distribution_.Cdf(specification_.truncationMaximum));
    highest_ = specification_.truncationMaximum >= highest_ ? highest_ : specification_.truncationMaximum;
  }
  leastProbability_ = lowerProbability_ > 0 ? lowerProbability_ : kMiddleOfZero * upperProbability_;
  mostProbability_ = std::min(upperProbability_, std::max(lowerProbability_, kLargestProbability));
  const bool isContinuous = IsContinuous(specification_.code);
  leastValue_ = isContinuous || lowest_ <= -kUnbounded ? lowest_ : FirstFrom(specification_, lowest_);
  mostValue_ = isContinuous || highest_ >= kUnbounded ? highest_ : LastUpTo(specification_, highest_);
}

bool VariableSampler::HasValues() const {
  // Not so if a limit is NaN. Limits between two neighbouring values of a discrete distribution leave no value.
  if (!(leastValue_ <= mostValue_)) return false;
  if (IsSentinel(distribution_.Quantile(0.5))) return false;
  if (!(leastProbability_ <= mostProbability_) || upperProbability_ <= 0) return false;
  // Beyond the last value whose probability a double tells from 1, nothing is left.
  if (!(distribution_.Quantile(leastProbability_) < std::numeric_limits<double>::infinity())) return false;
  return IsContinuous(specification_.code) || distribution_.Quantile(mostProbability_) >= lowest_;
}

double VariableSampler::LargestMagnitude() const {
  return std::max(std::abs(distribution_.Quantile(leastProbability_)),
                  std::abs(distribution_.Quantile(mostProbability_)));
}

void VariableSampler::Invert(std::span<double> probabilities) const {
  for (double& p : probabilities) {
    const double raised = p <= lowerProbability_ ? leastProbability_ : p;
    p = raised > mostProbability_ ? mostProbability_ : raised;
  }
  InvertInside(probabilities);
}

void VariableSampler::InvertInside(std::span<double> probabilities) const {
  distribution_.Quantile(probabilities, probabilities);
  if (leastValue_ > -kUnbounded)
    for (double& x : probabilities) x = x < leastValue_ ? leastValue_ : x;
  if (mostValue_ < kUnbounded)
    for (double& x : probabilities) x = x > mostValue_ ? mostValue_ : x;
}

std::optional<std::size_t> VariableSampler::FixedDraws() const {
  const std::size_t draws = candidates_->Draws();
  if (draws > 0 && !(candidates_->Lowest() >= lowest_ && candidates_->Highest() <= highest_))
    return std::nullopt;
  return 1 + draws;
}

void VariableSampler::DrawFixed(const RandomStream& stream, std::uint64_t position,
                                std::span<double> out) const {
  std::array<double, kTile*(1 + Candidates::kMostDraws)> draws;
  std::array<double, kTile> first;
  const std::size_t stride = 1 + candidates_->Draws();
  for (std::size_t begin = 0; begin < out.size(); begin += kTile) {
    const std::size_t count = std::min(kTile, out.size() - begin);
    const std::span<double> tile = out.subspan(begin, count);
    if (stride == 2) {  // the fallbacks' draws in between are never used
      stream.FillAlternate(position + stride * begin + 1, {first.data(), count});
      candidates_->Fill({first.data(), count}, tile, tile);
      continue;
    }
    const std::span<double> used(draws.data(), stride * count);
    stream.FillUniform(position + stride * begin, used);
    if (stride == 1) {
      vector_forms::ProbabilitiesInRange(used, RangeOfStrata(1), tile);
      InvertInside(tile);
      continue;
    }
    for (std::size_t i = 0; i < count; ++i) {
      first[i] = used[3 * i + 1];
      tile[i] = used[3 * i + 2];
    }
    candidates_->Fill({first.data(), count}, tile, tile);
  }
}

std::uint64_t VariableSampler::DrawInOrder(const RandomStream& stream, std::uint64_t position,
                                           std::span<double> out, const Cancellation& cancelled) const {
  if (const auto fixed = FixedDraws()) {
    ParallelBlocks(out.size(), kBlock, [&](std::size_t begin, std::size_t end) {
      cancelled.Poll();
      DrawFixed(stream, position + *fixed * begin, out.subspan(begin, end - begin));
    });
    return position + *fixed * out.size();
  }
  CandidateDraws draws(*this, stream, position);
  for (std::size_t begin = 0; begin < out.size(); begin += kValuesPerPoll) {
    cancelled.Poll();
    draws.Draw(out.subspan(begin, std::min(kValuesPerPoll, out.size() - begin)));
  }
  return draws.Position();
}

vector_forms::ProbabilityRange VariableSampler::RangeOfStrata(std::size_t strata) const {
  const double width = (upperProbability_ - lowerProbability_) / static_cast<double>(strata);
  return {lowerProbability_, width, leastProbability_, mostProbability_};
}

// `out` may be `strata`.
template <class Stratum>
void VariableSampler::FillStrata(const RandomStream& stream, std::uint64_t position, std::size_t samples,
                                 std::span<const Stratum> strata, std::span<double> out) const {
  const vector_forms::ProbabilityRange range = RangeOfStrata(samples);
  std::array<double, kTile> uniforms;
  for (std::size_t begin = 0; begin < out.size(); begin += kTile) {
    const std::span<double> tile = out.subspan(begin, std::min(kTile, out.size() - begin));
    stream.FillUniform(position + begin, {uniforms.data(), tile.size()});
    vector_forms::ProbabilitiesInStrata(uniforms, strata.subspan(begin, tile.size()), range, tile);
    InvertInside(tile);
  }
}

void VariableSampler::DrawStrata(const RandomStream& stream, std::uint64_t position, std::size_t samples,
                                 std::span<const std::int32_t> strata, std::span<double> out) const {
  FillStrata(stream, position, samples, strata, out);
}

std::uint64_t VariableSampler::DrawStratified(const RandomStream& stream, std::uint64_t position,
                                              std::span<double> out, const Cancellation& cancelled) const {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<double>(i);
  position = Shuffle(stream, position, out, cancelled);
  ParallelBlocks(out.size(), kBlock, [&](std::size_t begin, std::size_t end) {
    cancelled.Poll();
    const std::span<double> block = out.subspan(begin, end - begin);
    FillStrata(stream, position + begin, out.size(), std::span<const double>(block), block);
  });
  return position + out.size();
}

std::optional<std::uint64_t> ColumnDrawCount(const VariableSampler& sampler, bool latinHypercube,
                                             std::uint64_t samples) {
  if (latinHypercube) return samples + (samples > 1 ? samples : 0);
  const auto draws = sampler.FixedDraws();
  if (!draws) return std::nullopt;
  return *draws * samples;
}

}  // namespace brenvolt::sra
