// Monte Carlo values of a variable whose candidates may be rejected, in the order of the stream.
//
// Where a value draws depends on how many candidates were rejected before it. So the candidates of every
// place of the stream are made in bulk, a window of places at a time, and the values then hop over them:
// in runs from one rejected candidate to the next, while the other cores make the next window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "brv_sra/simulation/sampling/variable_sampler.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {

class CandidateDraws {
 public:
  // The first value draws at `position`. The sampler must be valid and have candidates, and must outlive the
  // object.
  CandidateDraws(const VariableSampler& sampler, const RandomStream& stream, std::uint64_t position);
  CandidateDraws(const CandidateDraws&) = delete;
  CandidateDraws& operator=(const CandidateDraws&) = delete;

  // The next values; the same whether they are asked for at once or in parts.
  void Draw(std::span<double> out);
  // The position of the draw after the last one used.
  std::uint64_t Position() const { return position_; }

 private:
  // The candidates that begin at places from `first` on. Values begin at the first `starts` places; the
  // candidates of the last ones lie behind these.
  struct Window {
    std::uint64_t first = 0;
    std::size_t starts = 0;
    std::vector<double> candidates;
    std::vector<std::uint32_t> rejected;  // their places from `first`, packed at the start of each block
    std::vector<std::size_t> rejectedInBlock;

    std::uint64_t End() const { return first + starts; }
  };

  void Prepare(Window& window, std::uint64_t first, std::size_t starts) const;
  void FillBlock(Window& window, std::size_t block) const;
  std::size_t NextRejected(std::size_t place);
  void CopyRun(std::size_t place, std::span<double> out) const;
  double AfterRejection(std::size_t& start) const;
  std::size_t Hop(std::span<double> out, std::size_t row);
  void InvertRejected(std::span<double> out);

  const VariableSampler& sampler_;
  RandomStream stream_;
  std::uint64_t position_;
  std::size_t draws_;   // of a candidate
  std::size_t stride_;  // places of a value whose first candidate is accepted
  std::size_t most_;    // places of a value
  Window current_;
  Window next_;
  std::size_t block_ = 0;  // of current_, and the rejected place in it, up to which the values have come
  std::size_t inBlock_ = 0;
  std::vector<std::size_t> fallbacks_;  // values of the current call that no candidate gave
};

}  // namespace brenvolt::sra
