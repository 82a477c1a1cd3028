#include "brv_sra/simulation/sampling/sample_generation.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <memory>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "brv_sra/simulation/sampling/candidate_draws.h"
#include "brv_sra/simulation/sampling/column_draws.h"
#include "brv_sra/simulation/sampling/matrix_columns.h"
#include "brv_sra/simulation/sampling/random_permutation.h"
#include "brv_sra/simulation/sampling/variable_sampler.h"
#include "host/analysis/analysis_memory.h"
#include "host/base/parallel.h"
#include "host/controls/polled_loop.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt::sra {
namespace {

constexpr std::uint64_t kDiscardedDraws = 100;
constexpr double kTwoTo32 = 4294967296.0;
// Rows between two looks at the clock, and rows whose values one task holds before it writes them.
constexpr std::size_t kRowsPerLook = std::size_t{1} << 18;
constexpr std::size_t kRowsPerTile = 256;

using Sampler = std::unique_ptr<const VariableSampler>;

// Null when the variable cannot be sampled.
Sampler MakeSampler(const SimulationDesign& design, std::size_t variable) {
  auto sampler = std::make_unique<const VariableSampler>(design.variables[variable].specification,
                                                         design.truncate, design.source);
  return sampler->IsValid() ? std::move(sampler) : nullptr;
}

// Columns of which any row can be drawn at once: Monte Carlo columns whose values all take the same number of
// draws, or Latin hypercube columns once their strata are known.
struct OpenColumns {
  std::vector<Sampler> samplers;
  std::vector<std::uint64_t> positions;
  std::vector<std::size_t> places;
  std::size_t samples = 0;
  AnalysisArray<std::int32_t> strata;  // of the first column, then of the next, …; none under Monte Carlo

  // The values of some rows of a column. False when one is not finite; candidates of a fixed number of draws
  // always are.
  bool Draw(const RandomStream& stream, std::size_t column, std::size_t row, std::span<double> out) const {
    const VariableSampler& sampler = *samplers[column];
    if (strata.size() == 0) {
      const std::size_t draws = *sampler.FixedDraws();
      sampler.DrawFixed(stream, positions[column] + draws * row, out);
      return draws > 1 || AreFinite(out);
    }
    sampler.DrawStrata(stream, positions[column] + row, samples,
                       strata.Span().subspan(column * samples + row, out.size()), out);
    return AreFinite(out);
  }

  // Draws the permutations at the columns' positions and moves these on to the draws of the rows.
  void ShuffleStrata(const RandomStream& stream, ProgressBar& progress) {
    strata = AnalysisArray<std::int32_t>(samples * places.size());
    PolledParallelFor(places.size(), progress, [&](std::size_t c, const Cancellation& cancelled) {
      const std::span<std::int32_t> column = strata.Span().subspan(c * samples, samples);
      std::iota(column.begin(), column.end(), 0);
      positions[c] = Shuffle(stream, positions[c], column, cancelled);
    });
  }
};

// One task's rows, a few at a time: column by column into a buffer in the cache, then row by row into the
// matrix. False when a value is not finite.
bool DrawRows(const OpenColumns& columns, const RandomStream& stream, std::size_t begin, std::size_t end,
              std::size_t stride, std::span<double> matrix) {
  std::array<double, kMostColumns * kRowsPerTile> buffer;
  std::array<std::span<double>, kMostColumns> tile;
  const std::size_t count = columns.places.size();
  for (std::size_t row = begin; row < end; row += kRowsPerTile) {
    const std::size_t rows = std::min(kRowsPerTile, end - row);
    FetchForWriting(matrix.subspan(row * stride, rows * stride));
    for (std::size_t c = 0; c < count; ++c) {
      tile[c] = {buffer.data() + c * kRowsPerTile, rows};
      if (!columns.Draw(stream, c, row, tile[c])) return false;
    }
    WriteRows({tile.data(), count}, columns.places, 0, rows, row, stride, matrix);
  }
  return true;
}

class MatrixGenerator {
 public:
  MatrixGenerator(const SimulationDesign& design, bool latinHypercube, std::span<double> matrix,
                  ProgressBar& progress)
      : design_(design),
        latinHypercube_(latinHypercube),
        samples_(static_cast<std::size_t>(design.numberOfSamples)),
        matrix_(matrix),
        progress_(progress) {}

  bool Run() {
    for (const std::size_t j : design_.ActiveVariables()) {
      Sampler sampler = MakeSampler(design_, j);
      if (!sampler) return false;
      const auto draws = ColumnDrawCount(*sampler, latinHypercube_, samples_);
      if (!draws) {
        if (!DrawInOrder(*sampler, j)) return false;
        continue;
      }
      columns_.samplers.push_back(std::move(sampler));
      columns_.positions.push_back(position_);
      columns_.places.push_back(j);
      position_ += *draws;
      if (columns_.places.size() == kMostColumns && !DrawGathered()) return false;
    }
    WriteDrawn();
    if (!DrawGathered()) return false;
    SetProcessStreamPosition(position_);
    return true;
  }

 private:
  // The columns gathered so far, all of them together.
  bool DrawGathered() {
    OpenColumns columns = std::exchange(columns_, OpenColumns());
    if (columns.places.empty()) return true;
    columns.samples = samples_;
    if (latinHypercube_) columns.ShuffleStrata(stream_, progress_);
    for (std::size_t from = 0; from < samples_; from += kRowsPerLook) {
      const std::size_t rows = std::min(kRowsPerLook, samples_ - from);
      std::atomic<bool> isFinite = true;
      ParallelBlocks(rows, kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
        if (!DrawRows(columns, stream_, from + begin, from + end, design_.variables.size(), matrix_))
          isFinite = false;
      });
      if (!isFinite) return false;
      progress_.Step(static_cast<std::int64_t>(rows * columns.places.size()));
    }
    return true;
  }

  bool DrawInOrder(const VariableSampler& sampler, std::size_t place) {
    const std::span<double> column = ColumnToDraw();
    CandidateDraws draws(sampler, stream_, position_);
    for (std::size_t from = 0; from < samples_; from += kRowsPerLook) {
      const std::span<double> rows = column.subspan(from, std::min(kRowsPerLook, samples_ - from));
      draws.Draw(rows);
      if (!AreFinite(rows)) return false;
      progress_.Step(static_cast<std::int64_t>(rows.size()));
    }
    position_ = draws.Position();
    drawn_.push_back(place);
    if (buffers_ && drawn_.size() == buffers_->Most()) WriteDrawn();
    return true;
  }

  // A single column is the matrix itself; of others some are drawn, then written together.
  std::span<double> ColumnToDraw() {
    if (design_.variables.size() == 1) return matrix_;
    if (!buffers_) buffers_.emplace(samples_, design_.variables.size());
    return buffers_->First(drawn_.size() + 1).back();
  }

  void WriteDrawn() {
    if (!buffers_) return;
    WriteColumns(buffers_->First(drawn_.size()), drawn_, design_.variables.size(), matrix_);
    drawn_.clear();
  }

  const SimulationDesign& design_;
  bool latinHypercube_;
  std::size_t samples_;
  std::span<double> matrix_;
  ProgressBar& progress_;
  RandomStream stream_ = ProcessStream();
  std::uint64_t position_ = ProcessStreamPosition();
  OpenColumns columns_;
  std::optional<ColumnBuffers> buffers_;  // of columns drawn in order
  std::vector<std::size_t> drawn_;        // their places in the matrix
};

}  // namespace

void SeedRandomStream(bool seeded, double seed) {
  const double negated = seeded ? -std::fmod(std::trunc(seed), kTwoTo32)
                                : std::fmod(static_cast<double>(std::time(nullptr)), kTwoTo32);
  const auto start =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(negated)));
  SeedProcessStream(start);
  SetProcessStreamPosition(start == 0 ? kDiscardedDraws : kDiscardedDraws + 1);
}

bool GenerateMonteCarlo(const SimulationDesign& design, std::span<double> matrix, ProgressBar& progress) {
  return MatrixGenerator(design, false, matrix, progress).Run();
}

bool GenerateLatinHypercube(const SimulationDesign& design, std::span<double> matrix, ProgressBar& progress) {
  return MatrixGenerator(design, true, matrix, progress).Run();
}

bool GenerateColumns(const SimulationDesign& design, bool latinHypercube,
                     std::span<const std::size_t> variables, std::span<const std::span<double>> columns,
                     ProgressBar& progress) {
  const RandomStream stream = ProcessStream();
  std::uint64_t position = ProcessStreamPosition();
  std::vector<Sampler> samplers(variables.size());
  std::vector<std::uint64_t> positions(variables.size());
  for (std::size_t c = 0; c < variables.size(); ++c) {
    samplers[c] = MakeSampler(design, variables[c]);
    if (!samplers[c]) return false;
    positions[c] = position;
    if (const auto draws = ColumnDrawCount(*samplers[c], latinHypercube, columns[c].size())) {
      position += *draws;
      continue;
    }
    // Where it ends shows only when it is drawn.
    PolledParallelFor(1, progress, [&](std::size_t, const Cancellation& cancelled) {
      position = samplers[c]->DrawInOrder(stream, position, columns[c], cancelled);
    });
    samplers[c].reset();
  }
  SetProcessStreamPosition(position);
  std::atomic<bool> areFinite = true;
  PolledParallelFor(variables.size(), progress, [&](std::size_t c, const Cancellation& cancelled) {
    if (samplers[c] && latinHypercube)
      samplers[c]->DrawStratified(stream, positions[c], columns[c], cancelled);
    if (samplers[c] && !latinHypercube) samplers[c]->DrawInOrder(stream, positions[c], columns[c], cancelled);
    if (!AreFinite(columns[c])) areFinite = false;
  });
  return areFinite;
}

}  // namespace brenvolt::sra
