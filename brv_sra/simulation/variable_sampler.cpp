#include "brv_sra/simulation/variable_sampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/simulation/candidate_draws.h"
#include "brv_sra/simulation/random_permutation.h"
#include "host/base/parallel.h"
#include "host/numeric/distributions.h"

namespace brenvolt::sra {
namespace {

constexpr double kTruncatedLower = 0.005;
constexpr double kTruncatedUpper = 0.995;
constexpr double kUnbounded = 1e300;
constexpr std::size_t kTile = 1024;         // values whose draws stay in the nearest caches
constexpr std::size_t kBlock = 16 * kTile;  // values of one task
// The ends of what a uniform deviate stands for.
constexpr double kSmallestProbability = 0x1p-54;
constexpr double kLargestProbability = 1 - 0x1p-53;

bool IsSentinel(double x) {
  return std::isnan(x) || x == kInvalidQuantile;
}

}  // namespace

VariableSampler::VariableSampler(const DistributionSpecification& specification, bool truncate,
                                 ParameterSource source)
    : specification_(specification), law_(specification_), lowest_(-kUnbounded), highest_(kUnbounded) {
  if (!law_.IsValid()) return;
  SetRanges(truncate, source);
  valid_ = HasValues();
  if (!valid_) return;
  candidates_.emplace(specification_);
}

void VariableSampler::SetRanges(bool truncate, ParameterSource source) {
  if (truncate) {
    lowerProbability_ = kTruncatedLower;
    upperProbability_ = kTruncatedUpper;
    lowest_ = law_.Quantile(kTruncatedLower);
    highest_ = law_.Quantile(kTruncatedUpper);
  }
  if (source == ParameterSource::kUserSpecified && specification_.truncateBelow) {
    lowerProbability_ = std::max(lowerProbability_, law_.Cdf(specification_.truncationMinimum));
    lowest_ = std::max(lowest_, specification_.truncationMinimum);
  }
  if (source == ParameterSource::kUserSpecified && specification_.truncateAbove) {
    upperProbability_ = std::min(upperProbability_, law_.Cdf(specification_.truncationMaximum));
    highest_ = std::min(highest_, specification_.truncationMaximum);
  }
  leastProbability_ = std::max(lowerProbability_, std::min(kSmallestProbability, upperProbability_));
  mostProbability_ = std::min(upperProbability_, std::max(lowerProbability_, kLargestProbability));
}

bool VariableSampler::HasValues() const {
  if (IsSentinel(law_.Quantile(0.5)) || !(lowest_ <= highest_)) return false;
  if (!(leastProbability_ <= mostProbability_) || upperProbability_ <= 0) return false;
  // Beyond the last value whose probability a double tells from 1, nothing is left.
  if (!(law_.Quantile(leastProbability_) < std::numeric_limits<double>::infinity())) return false;
  if (IsContinuous(specification_.code)) return true;
  // Limits between two neighbouring values leave none.
  const double last = law_.Quantile(mostProbability_);
  return last >= lowest_ && last <= highest_;
}

void VariableSampler::Invert(std::span<double> probabilities) const {
  for (double& p : probabilities) {
    const double raised = p < leastProbability_ ? leastProbability_ : p;
    p = raised > mostProbability_ ? mostProbability_ : raised;
  }
  InvertInside(probabilities);
}

void VariableSampler::InvertInside(std::span<double> probabilities) const {
  law_.Quantile(probabilities, probabilities);
  if (!IsContinuous(specification_.code)) return;
  if (lowest_ > -kUnbounded)
    for (double& x : probabilities) x = x < lowest_ ? lowest_ : x;
  if (highest_ < kUnbounded)
    for (double& x : probabilities) x = x > highest_ ? highest_ : x;
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
    if (stride == 2) {  // the fallbacks' draws in between are never looked at
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
                                           std::span<double> out) const {
  if (const auto fixed = FixedDraws()) {
    ParallelBlocks(out.size(), kBlock, [&](std::size_t begin, std::size_t end) {
      DrawFixed(stream, position + *fixed * begin, out.subspan(begin, end - begin));
    });
    return position + *fixed * out.size();
  }
  CandidateDraws draws(*this, stream, position);
  draws.Draw(out);
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
                                              std::span<double> out) const {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<double>(i);
  position = Shuffle(stream, position, out);
  ParallelBlocks(out.size(), kBlock, [&](std::size_t begin, std::size_t end) {
    const std::span<double> block = out.subspan(begin, end - begin);
    FillStrata(stream, position + begin, out.size(), std::span<const double>(block), block);
  });
  return position + out.size();
}

}  // namespace brenvolt::sra
