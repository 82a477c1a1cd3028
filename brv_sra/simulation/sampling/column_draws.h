// A column of a simulation whose variables do not depend on each other, drawn a piece at a time: the values
// that the generators draw all at once (sample_generation.h), for outputs that no memory holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "brv_sra/simulation/sampling/simulation_design.h"
#include "brv_sra/simulation/sampling/variable_sampler.h"
#include "host/analysis/analysis_memory.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {

// Rows come in their order, and again after Restart. A Monte Carlo column takes no memory of its own; a Latin
// hypercube column takes four bytes a sample for its strata, from the first piece drawn until Release.
class ColumnDraws {
 public:
  // Variable `variable` of the design; its first draw is the one at `position` of the stream.
  ColumnDraws(const SimulationDesign& design, std::size_t variable, const RandomStream& stream,
              std::uint64_t position);

  // False when the distribution cannot be sampled; Draw must then not be called.
  bool IsValid() const { return sampler_.IsValid(); }
  // The position after the column's last draw; nothing if values take draws as they come.
  std::optional<std::uint64_t> KnownEnd() const;
  // The position after the last draw made; that of the column when all rows are drawn.
  std::uint64_t Position() const { return position_; }
  // The next values. False when one is not finite. Throws std::bad_alloc when memory is short.
  bool Draw(std::span<double> out);
  void Restart() { GoTo(0); }
  // Goes to a row: if values take draws as they come to the first one, to one of Entries, or to the one that is next.
  void GoTo(std::size_t row);
  void Release() { strata_ = {}; }

  // Where rows draw in the stream whose values take draws as they come: every rowsApart-th one, the first one first.
  void SetEntries(std::size_t rowsApart, std::vector<std::uint64_t> entries);

 private:
  void DrawStrata(std::span<double> out);

  VariableSampler sampler_;
  RandomStream stream_;
  std::uint64_t start_;
  std::size_t samples_;
  bool latinHypercube_;
  std::size_t row_ = 0;
  std::uint64_t position_;
  std::size_t rowsApart_ = 0;
  std::vector<std::uint64_t> entries_;
  std::uint64_t strataEnd_ = 0;         // the position after the draws of the permutation
  AnalysisArray<std::int32_t> strata_;  // empty until they are known
};

// True when no value is infinite or NaN.
bool AreFinite(std::span<const double> values);

}  // namespace brenvolt::sra
