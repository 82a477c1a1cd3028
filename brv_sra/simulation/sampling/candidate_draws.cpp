#include "brv_sra/simulation/sampling/candidate_draws.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "brv_sra/simulation/sampling/candidates.h"
#include "host/base/parallel.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kMostCandidates = 5;
constexpr std::size_t kTile = 1024;           // candidates whose draws stay in the nearest cache
constexpr std::size_t kBlock = 8 * kTile;     // candidates that one task makes
constexpr std::size_t kMostStarts = 1 << 16;  // of a window
constexpr std::size_t kGroup = 8;             // candidates looked at together
constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

struct ValueRange {
  double lowest;
  double highest;

  bool Holds(double x) const { return x >= lowest && x <= highest; }
};

// All comparisons of a group of constant size are made, by vectors.
bool HoldsAll(ValueRange range, std::span<const double, kGroup> group) {
  std::int64_t held = 0;
  for (const double x : group) held += static_cast<std::int64_t>(x >= range.lowest) & (x <= range.highest);
  return held == kGroup;
}

// Lists the places, counted from `from`, of the candidates beyond the range; returns how many there are. Few
// are: whole groups are passed over at once. One more place than there are candidates may be written to.
std::size_t ListRejected(std::span<const double> candidates, std::size_t from, ValueRange range,
                         std::uint32_t* places) {
  std::size_t count = 0;
  for (std::size_t begin = 0; begin < candidates.size(); begin += kGroup) {
    const auto group = candidates.subspan(begin, std::min(kGroup, candidates.size() - begin));
    if (group.size() == kGroup && HoldsAll(range, group.first<kGroup>())) continue;
    for (std::size_t i = 0; i < group.size(); ++i) {
      places[count] = static_cast<std::uint32_t>(from + begin + i);
      count += range.Holds(group[i]) ? 0 : 1;
    }
  }
  return count;
}

ValueRange RangeOf(const VariableSampler& sampler) {
  return {sampler.LowestValue(), sampler.HighestValue()};
}

}  // namespace

CandidateDraws::CandidateDraws(const VariableSampler& sampler, const RandomStream& stream,
                               std::uint64_t position)
    : sampler_(sampler),
      stream_(stream),
      position_(position),
      draws_(sampler.NaturalGenerator().Draws()),
      stride_(1 + draws_),
      most_(1 + kMostCandidates * draws_) {
  current_.first = position;
}

void CandidateDraws::Prepare(Window& window, std::uint64_t first, std::size_t starts) const {
  window.first = first;
  window.starts = starts;
  window.candidates.resize(starts + most_);
  window.rejected.resize(starts + most_);
  window.rejectedInBlock.resize((window.candidates.size() + kBlock - 1) / kBlock);
}

void CandidateDraws::FillBlock(Window& window, std::size_t block) const {
  std::array<double, kTile + Candidates::kMostDraws - 1> uniforms;
  const std::size_t begin = block * kBlock;
  const std::size_t end = std::min(window.candidates.size(), begin + kBlock);
  std::size_t rejected = 0;
  std::array<std::uint32_t, kTile + 1> places;
  for (std::size_t from = begin; from < end; from += kTile) {
    const auto tile = std::span(window.candidates).subspan(from, std::min(kTile, end - from));
    const std::span<double> used(uniforms.data(), tile.size() + draws_ - 1);
    stream_.FillUniform(window.first + from, used);
    sampler_.NaturalGenerator().Fill(used.first(tile.size()), used.last(tile.size()), tile);
    const std::size_t found = ListRejected(tile, from, RangeOf(sampler_), places.data());
    std::copy_n(places.data(), found, window.rejected.data() + begin + rejected);
    rejected += found;
  }
  window.rejectedInBlock[block] = rejected;
}

// The first rejected candidate that a value looks at first, when the values from the one with its first
// candidate at `place` on take the first that they look at; kNone without any in the window. Never asked for
// a place before one found earlier.
std::size_t CandidateDraws::NextRejected(std::size_t place) {
  for (; block_ < current_.rejectedInBlock.size(); ++block_, inBlock_ = 0) {
    const std::uint32_t* list = current_.rejected.data() + block_ * kBlock;
    for (; inBlock_ < current_.rejectedInBlock[block_]; ++inBlock_) {
      const std::size_t rejected = list[inBlock_];
      if (rejected >= place && (rejected - place) % stride_ == 0) return rejected;
    }
  }
  return kNone;
}

// Values that each take their first candidate, that of the first at `place`.
void CandidateDraws::CopyRun(std::size_t place, std::span<double> out) const {
  const double* from = current_.candidates.data() + place;
  if (stride_ == 2) {  // a constant, so that it is done with vectors
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = from[2 * i];
  } else {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = from[stride_ * i];
  }
}

// The value that begins at `start` and whose first candidate is rejected; moves on to the start of the next.
// Not a number if no candidate is accepted: candidates that are accepted are numbers.
double CandidateDraws::AfterRejection(std::size_t& start) const {
  const std::size_t end = start + most_;
  for (std::size_t place = start + stride_; place < end; place += draws_) {
    if (!RangeOf(sampler_).Holds(current_.candidates[place])) continue;
    start = place + draws_;
    return current_.candidates[place];
  }
  start = end;
  return std::numeric_limits<double>::quiet_NaN();
}

// The values from `row` on that begin in the current window; returns the row after them.
std::size_t CandidateDraws::Hop(std::span<double> out, std::size_t row) {
  std::size_t start = static_cast<std::size_t>(position_ - current_.first);
  while (row < out.size() && start < current_.starts) {
    const std::size_t rejected = NextRejected(start + 1);
    const std::size_t inWindow = (current_.starts - start + stride_ - 1) / stride_;
    const std::size_t run =
        std::min({out.size() - row, inWindow, rejected == kNone ? kNone : (rejected - start - 1) / stride_});
    CopyRun(start + 1, out.subspan(row, run));
    row += run;
    start += run * stride_;
    if (row == out.size() || start >= current_.starts) break;
    const std::size_t fallback = start;
    out[row] = AfterRejection(start);
    if (out[row] != out[row]) {
      const double width = sampler_.UpperProbability() - sampler_.LowerProbability();
      out[row] = sampler_.LowerProbability() + stream_.Uniform(current_.first + fallback) * width;
      fallbacks_.push_back(row);
    }
    ++row;
  }
  position_ = current_.first + start;
  return row;
}

void CandidateDraws::Draw(std::span<double> out) {
  std::size_t row = 0;
  while (row < out.size()) {
    if (position_ >= current_.End()) {
      std::swap(current_, next_);
      block_ = 0;
      inBlock_ = 0;
      if (position_ < current_.first || position_ >= current_.End()) {  // nothing was made ahead
        Prepare(current_, position_, std::clamp((out.size() - row) * stride_, most_, kMostStarts));
        ParallelFor(current_.rejectedInBlock.size(), [&](std::size_t block) { FillBlock(current_, block); });
      }
    }
    const std::size_t wanted = (out.size() - row) * stride_;
    const auto left = static_cast<std::size_t>(current_.End() - position_);
    const bool ahead = wanted > left;
    if (ahead) Prepare(next_, current_.End(), std::clamp(wanted - left, most_, kMostStarts));
    ParallelFor(ahead ? 1 + next_.rejectedInBlock.size() : 1, [&](std::size_t task) {
      if (task == 0) {
        row = Hop(out, row);
      } else {
        FillBlock(next_, task - 1);
      }
    });
    InvertRejected(out);
  }
}

void CandidateDraws::InvertRejected(std::span<double> out) {
  ParallelBlocks(fallbacks_.size(), kBlock, [&](std::size_t begin, std::size_t end) {
    std::vector<double> values(end - begin);
    for (std::size_t r = begin; r < end; ++r) values[r - begin] = out[fallbacks_[r]];
    sampler_.Invert(values);
    for (std::size_t r = begin; r < end; ++r) out[fallbacks_[r]] = values[r - begin];
  });
  fallbacks_.clear();
}

}  // namespace brenvolt::sra
