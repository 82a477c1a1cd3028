#include "brv_sra/simulation/variable_sampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/simulation/random_permutation.h"
#include "host/base/parallel.h"
#include "host/numeric/distributions.h"

namespace brenvolt::sra {
namespace {

constexpr double kTruncatedLower = 0.005;
constexpr double kTruncatedUpper = 0.995;
constexpr double kUnbounded = 1e300;
constexpr std::size_t kMostCandidates = 5;
constexpr std::size_t kTile = 1024;           // values whose draws stay in the nearest caches
constexpr std::size_t kBlock = 16 * kTile;    // values of one task
constexpr std::size_t kMostPlaces = 1 << 17;  // draws looked at together where candidates may be rejected
// A uniform deviate of 0 stands for those up to the next, 2^-53: for their middle.
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
      law_(specification_),
      lowest_(-kUnbounded),
      highest_(kUnbounded),
      leastValue_(-kUnbounded),
      mostValue_(kUnbounded) {
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
    lowest_ = specification_.truncationMinimum <= lowest_ ? lowest_ : specification_.truncationMinimum;
  }
  if (source == ParameterSource::kUserSpecified && specification_.truncateAbove) {
    upperProbability_ = std::min(upperProbability_, law_.Cdf(specification_.truncationMaximum));
    highest_ = specification_.truncationMaximum >= highest_ ? highest_ : specification_.truncationMaximum;
  }
  leastProbability_ = lowerProbability_ > 0 ? lowerProbability_ : kMiddleOfZero * upperProbability_;
  mostProbability_ = std::min(upperProbability_, std::max(lowerProbability_, kLargestProbability));
  const bool isContinuous = IsContinuous(specification_.code);
  leastValue_ = isContinuous || lowest_ <= -kUnbounded ? lowest_ : FirstFrom(specification_, lowest_);
  mostValue_ = isContinuous || highest_ >= kUnbounded ? highest_ : LastUpTo(specification_, highest_);
}

bool VariableSampler::HasValues() const {
  // Not so where a limit is NaN. Of a discrete type, limits between two neighbouring values leave none.
  if (!(leastValue_ <= mostValue_)) return false;
  if (IsSentinel(law_.Quantile(0.5))) return false;
  if (!(leastProbability_ <= mostProbability_) || upperProbability_ <= 0) return false;
  // Beyond the last value whose probability a double tells from 1, nothing is left.
  if (!(law_.Quantile(leastProbability_) < std::numeric_limits<double>::infinity())) return false;
  return IsContinuous(specification_.code) || law_.Quantile(mostProbability_) >= lowest_;
}

double VariableSampler::LargestMagnitude() const {
  return std::max(std::abs(law_.Quantile(leastProbability_)), std::abs(law_.Quantile(mostProbability_)));
}

void VariableSampler::Invert(std::span<double> probabilities) const {
  for (double& p : probabilities) {
    const double raised = p <= 0 || p < lowerProbability_ ? leastProbability_ : p;
    p = raised > mostProbability_ ? mostProbability_ : raised;
  }
  law_.Quantile(probabilities, probabilities);
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
    if (stride == 2) {  // the fallbacks' draws in between are never looked at
      stream.FillAlternate(position + stride * begin + 1, {first.data(), count});
      candidates_->Fill({first.data(), count}, tile, tile);
      continue;
    }
    const std::span<double> used(draws.data(), stride * count);
    stream.FillUniform(position + stride * begin, used);
    if (stride == 1) {
      for (std::size_t i = 0; i < count; ++i)
        tile[i] = lowerProbability_ + used[i] * (upperProbability_ - lowerProbability_);
      Invert(tile);
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
  // Where a value draws depends on how many candidates were rejected before. So the candidates of every place
  // in the stream are made in bulk, then the values hop over them.
  const std::size_t draws = candidates_->Draws();
  const std::size_t most = 1 + kMostCandidates * draws;  // places of one value
  std::vector<double> uniforms;
  std::vector<double> candidates;
  std::vector<std::size_t> rejected;
  std::size_t row = 0;
  while (row < out.size()) {
    cancelled.Poll();
    const std::size_t places = std::clamp((out.size() - row) * (1 + draws), most, kMostPlaces);
    uniforms.resize(places + draws - 1);
    candidates.resize(places);
    ParallelBlocks(places, kBlock, [&](std::size_t begin, std::size_t end) {
      const std::size_t last = end == places ? uniforms.size() : end;
      stream.FillUniform(position + begin, std::span(uniforms).subspan(begin, last - begin));
    });
    ParallelBlocks(places, kBlock, [&](std::size_t begin, std::size_t end) {
      const std::span<const double> from(uniforms);
      candidates_->Fill(from.subspan(begin, end - begin), from.subspan(begin + draws - 1, end - begin),
                        std::span(candidates).subspan(begin, end - begin));
    });
    std::size_t place = 0;
    rejected.clear();
    for (; row < out.size() && place + most <= places; ++row) {
      const double fallback = uniforms[place];
      const std::size_t end = place + most;
      for (++place; place < end; place += draws)
        if (candidates[place] >= lowest_ && candidates[place] <= highest_) break;
      if (place < end) {
        out[row] = candidates[place];
        place += draws;
      } else {
        out[row] = lowerProbability_ + fallback * (upperProbability_ - lowerProbability_);
        rejected.push_back(row);
      }
    }
    InvertRejected(rejected, out);
    position += place;
  }
  return position;
}

void VariableSampler::InvertRejected(std::span<const std::size_t> rows, std::span<double> out) const {
  ParallelBlocks(rows.size(), kBlock, [&](std::size_t begin, std::size_t end) {
    std::vector<double> values(end - begin);
    for (std::size_t r = begin; r < end; ++r) values[r - begin] = out[rows[r]];
    Invert(values);
    for (std::size_t r = begin; r < end; ++r) out[rows[r]] = values[r - begin];
  });
}

// stratum(i) is the stratum of out[i], counted from 0; it is asked for before out[i] is written.
template <class Stratum>
void VariableSampler::FillStrata(const RandomStream& stream, std::uint64_t position, std::size_t samples,
                                 const Stratum& stratum, std::span<double> out) const {
  const double width = (upperProbability_ - lowerProbability_) / static_cast<double>(samples);
  std::array<double, kTile> uniforms;
  for (std::size_t begin = 0; begin < out.size(); begin += kTile) {
    const std::span<double> tile = out.subspan(begin, std::min(kTile, out.size() - begin));
    stream.FillUniform(position + begin, {uniforms.data(), tile.size()});
    for (std::size_t i = 0; i < tile.size(); ++i)
      tile[i] = lowerProbability_ + stratum(begin + i) * width + uniforms[i] * width;
    Invert(tile);
  }
}

void VariableSampler::DrawStrata(const RandomStream& stream, std::uint64_t position, std::size_t samples,
                                 std::span<const std::int32_t> strata, std::span<double> out) const {
  FillStrata(
      stream, position, samples, [&](std::size_t i) { return static_cast<double>(strata[i]); }, out);
}

std::uint64_t VariableSampler::DrawStratified(const RandomStream& stream, std::uint64_t position,
                                              std::span<double> out, const Cancellation& cancelled) const {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<double>(i);
  position = Shuffle(stream, position, out);
  ParallelBlocks(out.size(), kBlock, [&](std::size_t begin, std::size_t end) {
    cancelled.Poll();
    const std::span<double> block = out.subspan(begin, end - begin);
    FillStrata(
        stream, position + begin, out.size(), [&](std::size_t i) { return block[i]; }, block);
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
