#include "brv_sra/simulation/correlation_induction.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "brv_sra/simulation/sampling/matrix_columns.h"
#include "brv_sra/simulation/sampling/random_permutation.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "host/base/parallel.h"
#include "host/controls/polled_loop.h"
#include "host/numeric/algebra/cholesky.h"
#include "host/numeric/algebra/correlation.h"
#include "host/numeric/algebra/matrix_product.h"
#include "host/numeric/distributions/normal.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kRowsPerLook = std::size_t{1} << 18;  // rows between two looks at the clock

// Calls body(places, buffers) for the columns 0 … k - 1 in order, as many at a time as there are buffers.
template <class Body>
void ForColumnBatches(std::span<const std::size_t> places, const ColumnBuffers& buffers, const Body& body) {
  for (std::size_t from = 0; from < places.size(); from += buffers.Most()) {
    const std::size_t count = std::min(buffers.Most(), places.size() - from);
    body(places.subspan(from, count), buffers.First(count));
  }
}

std::vector<std::size_t> FirstPlaces(std::size_t k) {
  std::vector<std::size_t> places(k);
  for (std::size_t c = 0; c < k; ++c) places[c] = c;
  return places;
}

void FillNormalScores(std::span<double> scores) {
  const auto cells = static_cast<double>(scores.size() + 1);
  ParallelBlocks(scores.size(), kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
    const std::span<double> block = scores.subspan(begin, end - begin);
    for (std::size_t i = begin; i < end; ++i) scores[i] = static_cast<double>(i + 1) / cells;
    Distribution<Normal>(0, 1).Quantile(block, block);
  });
}

// M = P Q^-1, Q the Cholesky factor of the scores' own correlation; nothing if that has no factor.
bool CorrectTransform(std::span<const double> scores, std::size_t n, std::size_t k,
                      std::vector<double>& transform) {
  std::vector<double> correlation(k * k);
  PearsonCorrelation(scores, n, k, correlation);
  if (std::ranges::any_of(correlation, [](double r) { return std::isnan(r); })) return false;
  if (!Cholesky(correlation, k)) return false;
  std::vector<double> inverse(k * k);
  if (!InvertLowerTriangle(correlation, k, inverse)) return false;
  const std::vector<double> factor = std::exchange(transform, std::vector<double>(k * k));
  Multiply(RowMajor(factor, k, k), RowMajor(inverse, k, k), transform);
  return true;
}

// T = S M', in place, some rows at a time.
void TransformScores(std::span<double> scores, std::size_t n, std::size_t k,
                     std::span<const double> transform, ProgressBar& progress) {
  const std::size_t blockRows = std::clamp<std::size_t>(40'000 / (k * k), 64, 1024);
  const MatrixView transposed = RowMajor(transform, k, k).Transposed();
  for (std::size_t from = 0; from < n; from += kRowsPerLook) {
    const std::size_t rows = std::min(kRowsPerLook, n - from);
    ParallelBlocks(rows, blockRows, [&](std::size_t begin, std::size_t end) {
      const std::span<double> block = scores.subspan((from + begin) * k, (end - begin) * k);
      std::vector<double> product(block.size());
      Multiply(RowMajor(block, end - begin, k), transposed, product);
      std::ranges::copy(product, block.begin());
    });
    progress.Step(static_cast<std::int64_t>(rows));
  }
}

// 32-bit numbers in the memory of doubles.
class PackedNumbers {
 public:
  explicit PackedNumbers(double* memory) : bytes_(reinterpret_cast<unsigned char*>(memory)) {}
  std::uint32_t operator[](std::size_t i) const {
    std::uint32_t value;
    std::memcpy(&value, bytes_ + i * sizeof value, sizeof value);
    return value;
  }
  void Set(std::size_t i, std::uint32_t value) {
    std::memcpy(bytes_ + i * sizeof value, &value, sizeof value);
  }

 private:
  unsigned char* bytes_;
};

// Replaces the column's values by their ranks in its own memory. valueAt(i) is the value of row i.
//
// The row rides in the last bits of the value's mantissa through a plain sort, which is three times as fast
// as one of pairs; values that agree in the bits before are then put into their order.
template <class ValueAt>
void RankColumn(std::span<double> column, const ValueAt& valueAt) {
  const std::size_t n = column.size();
  const std::uint64_t rowBits = (std::uint64_t{1} << std::bit_width(n - 1)) - 1;
  for (std::size_t i = 0; i < n; ++i)
    column[i] = std::bit_cast<double>((std::bit_cast<std::uint64_t>(column[i]) & ~rowBits) | i);
  SortAscending(column);
  const auto bits = [&](std::size_t r) { return std::bit_cast<std::uint64_t>(column[r]); };
  for (std::size_t r = 0; r + 1 < n; ++r) {
    if (((bits(r) ^ bits(r + 1)) & ~rowBits) != 0) continue;
    std::size_t end = r + 2;
    while (end < n && ((bits(r) ^ bits(end)) & ~rowBits) == 0) ++end;
    std::sort(column.begin() + static_cast<std::ptrdiff_t>(r),
              column.begin() + static_cast<std::ptrdiff_t>(end), [&](double a, double b) {
                const std::size_t i = std::bit_cast<std::uint64_t>(a) & rowBits;
                const std::size_t j = std::bit_cast<std::uint64_t>(b) & rowBits;
                const double x = valueAt(i);
                const double y = valueAt(j);
                return x != y ? x < y : i < j;
              });
    r = end - 1;
  }
  // The rows by rank into the first half of the memory, the ranks by row into the second, then the ranks as
  // reals over all of it: in each pass what is overwritten has been read before.
  PackedNumbers rows(column.data());
  for (std::size_t r = 0; r < n; ++r) rows.Set(r, static_cast<std::uint32_t>(bits(r) & rowBits));
  for (std::size_t r = 0; r < n; ++r) rows.Set(n + rows[r], static_cast<std::uint32_t>(r));
  for (std::size_t i = 0; i < n; ++i) column[i] = static_cast<double>(rows[n + i]);
}

// Moves the columns of the n x k matrix at the start of `matrix` to their places in rows of `stride`; zero in
// all other places.
void SpreadColumns(std::span<double> matrix, std::size_t n, std::span<const std::size_t> places,
                   std::size_t stride) {
  const std::size_t k = places.size();
  if (k == stride) return;
  std::vector<double> row(k);
  for (std::size_t i = n; i-- > 0;) {
    std::copy_n(matrix.data() + i * k, k, row.data());
    std::fill_n(matrix.data() + i * stride, stride, 0.0);
    for (std::size_t c = 0; c < k; ++c) matrix[i * stride + places[c]] = row[c];
  }
}

bool GenerateOnly(const SimulationDesign& design, std::span<double> matrix, const RunProgress& bars) {
  const auto progress = Computing(bars, matrix.size() + 1);
  return UsesLatinHypercube(design.method) ? GenerateLatinHypercube(design, matrix, *progress)
                                           : GenerateMonteCarlo(design, matrix, *progress);
}

// Puts the ranks of the transformed scores into the sample matrix, in the places of the samples.
CorrelationInduction RankScores(const SimulationDesign& design, TargetFactor factor, std::span<double> matrix,
                                const RunProgress& bars) {
  const auto n = static_cast<std::size_t>(design.numberOfSamples);
  const std::vector<std::size_t> active = design.ActiveVariables();
  const std::size_t k = active.size();
  CorrelationInduction result;
  result.repair = std::move(factor.repair);
  const std::span<double> scores = matrix.first(n * k);
  {
    const auto progress = Computing(bars, 2 * n + 1);
    BuildVanDerWaerdenScores(scores, n, k, *progress);
    PolledParallelFor(1, *progress, [&](std::size_t, const Cancellation&) {
      result.scoreCorrection = CorrectTransform(scores, n, k, factor.factor);
    });
    TransformScores(scores, n, k, factor.factor, *progress);
  }
  const auto progress = Computing(bars, (design.variables.size() + 1) * n + 1);
  ReplaceByRanks(scores, n, k, *progress);
  SpreadColumns(matrix, n, active, design.variables.size());
  return result;
}

}  // namespace

Result<CorrelationInduction> InduceRankCorrelation(const SimulationDesign& design,
                                                   std::span<const double> target, std::span<double> matrix,
                                                   const RunProgress& bars) {
  const Fault notSampled{FaultIdentifier::kNotSampled};
  const std::size_t k = design.ActiveVariables().size();
  if (design.numberOfSamples == 1 || k == 0) {
    if (!GenerateOnly(design, matrix, bars)) return notSampled;
    return CorrelationInduction();
  }
  Result<TargetFactor> factor = FactorTarget(target, k);
  if (!factor) return factor.Reason();
  CorrelationInduction result = RankScores(design, *std::move(factor), matrix, bars);
  const auto progress = Computing(bars, matrix.size() + 1);
  if (!ReorderByScoreRanks(design, matrix, *progress)) return notSampled;
  return result;
}

void BuildVanDerWaerdenScores(std::span<double> scores, std::size_t n, std::size_t k, ProgressBar& progress) {
  const std::vector<std::size_t> columns = FirstPlaces(k);
  const RandomStream stream = ProcessStream();
  const std::uint64_t draws = n > 1 ? n : 0;  // of a column
  const std::uint64_t start = ProcessStreamPosition();
  const ColumnBuffers buffers(n, k);
  std::size_t stepped = 0;
  ForColumnBatches(columns, buffers, [&](auto places, auto batch) {
    // The scores themselves are shuffled: the permutation of 1 … n that the same draws make, looked up.
    FillNormalScores(batch[0]);
    ParallelFor(places.size() - 1, [&](std::size_t c) { std::ranges::copy(batch[0], batch[c + 1].begin()); });
    PolledParallelFor(places.size(), progress, [&](std::size_t c, const Cancellation& cancelled) {
      Shuffle(stream, start + places[c] * draws, batch[c], cancelled);
    });
    WriteColumns(batch, places, k, scores);
    const std::size_t done = n * (places.back() + 1) / k;
    progress.Step(static_cast<std::int64_t>(done - std::exchange(stepped, done)));
  });
  SetProcessStreamPosition(start + k * draws);
}

void ReplaceByRanks(std::span<double> scores, std::size_t n, std::size_t k, ProgressBar& progress) {
  const std::vector<std::size_t> columns = FirstPlaces(k);
  const ColumnBuffers buffers(n, k);
  ForColumnBatches(columns, buffers, [&](auto places, auto batch) {
    ReadColumns(scores, k, places, batch);
    PolledParallelFor(places.size(), progress, [&](std::size_t c, const Cancellation& cancelled) {
      cancelled.Poll();
      RankColumn(batch[c], [&, at = places[c]](std::size_t i) { return scores[i * k + at]; });
    });
    WriteColumns(batch, places, k, scores);
    progress.Step(static_cast<std::int64_t>(n * places.size()));
  });
}

bool ReorderByScoreRanks(const SimulationDesign& design, std::span<double> matrix, ProgressBar& progress) {
  const auto n = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t stride = design.variables.size();
  const std::vector<std::size_t> active = design.ActiveVariables();
  const ColumnBuffers buffers(n, active.size());
  bool done = true;
  ForColumnBatches(active, buffers, [&](auto places, auto batch) {
    done = done && GenerateColumns(design, UsesLatinHypercube(design.method), places, batch, progress);
    if (!done) return;
    PolledParallelFor(places.size(), progress, [&](std::size_t c, const Cancellation& cancelled) {
      cancelled.Poll();
      SortAscending(batch[c]);
    });
    ParallelBlocks(n, kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        double* row = matrix.data() + i * stride;
        for (std::size_t c = 0; c < places.size(); ++c) {
          double& place = row[places[c]];
          place = batch[c][static_cast<std::size_t>(place)];
        }
      }
    });
    progress.Step(static_cast<std::int64_t>(n * places.size()));
  });
  return done;
}

}  // namespace brenvolt::sra
