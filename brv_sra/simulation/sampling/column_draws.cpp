#include "brv_sra/simulation/sampling/column_draws.h"

#include <bit>
#include <cassert>
#include <numeric>
#include <utility>

#include "brv_sra/simulation/sampling/random_permutation.h"
#include "host/base/parallel.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kRowsPerTask = std::size_t{1} << 14;

}  // namespace

// By the bits of the exponent, all set: integers, so that the loop is done with vectors.
bool AreFinite(std::span<const double> values) {
  constexpr std::uint64_t kMagnitude = ~std::uint64_t{0} >> 1;
  constexpr std::uint64_t kLastExponentBit = std::uint64_t{1} << 52;
  std::uint64_t carried = 0;
  for (const double x : values) carried |= (std::bit_cast<std::uint64_t>(x) & kMagnitude) + kLastExponentBit;
  return carried >> 63 == 0;
}

ColumnDraws::ColumnDraws(const SimulationDesign& design, std::size_t variable, const RandomStream& stream,
                         std::uint64_t position)
    : sampler_(design.variables[variable].specification, design.truncate, design.source),
      stream_(stream),
      start_(position),
      samples_(static_cast<std::size_t>(design.numberOfSamples)),
      latinHypercube_(UsesLatinHypercube(design.method)),
      position_(position) {}

std::optional<std::uint64_t> ColumnDraws::KnownEnd() const {
  const auto draws = ColumnDrawCount(sampler_, latinHypercube_, samples_);
  if (!draws) return std::nullopt;
  return start_ + *draws;
}

bool ColumnDraws::Draw(std::span<double> out) {
  if (latinHypercube_) {
    DrawStrata(out);
  } else {
    position_ = sampler_.DrawInOrder(stream_, position_, out);
  }
  row_ += out.size();
  return AreFinite(out);
}

void ColumnDraws::DrawStrata(std::span<double> out) {
  if (strata_.size() == 0) {
    strata_ = AnalysisArray<std::int32_t>(samples_);
    std::iota(strata_.data(), strata_.data() + samples_, 0);
    strataEnd_ = Shuffle(stream_, start_, strata_.Span());
    position_ = strataEnd_ + row_;
  }
  ParallelBlocks(out.size(), kRowsPerTask, [&](std::size_t begin, std::size_t end) {
    sampler_.DrawStrata(stream_, position_ + begin, samples_,
                        strata_.Span().subspan(row_ + begin, end - begin), out.subspan(begin, end - begin));
  });
  position_ += out.size();
}

void ColumnDraws::GoTo(std::size_t row) {
  if (row == row_) return;
  row_ = row;
  if (latinHypercube_) {
    position_ = strata_.size() == 0 ? start_ : strataEnd_ + row;
  } else if (const auto fixed = sampler_.FixedDraws()) {
    position_ = start_ + *fixed * row;
  } else if (row == 0) {
    position_ = start_;
  } else {
    assert(row % rowsApart_ == 0);
    position_ = entries_.at(row / rowsApart_);
  }
}

void ColumnDraws::SetEntries(std::size_t rowsApart, std::vector<std::uint64_t> entries) {
  rowsApart_ = rowsApart;
  entries_ = std::move(entries);
}

}  // namespace brenvolt::sra
