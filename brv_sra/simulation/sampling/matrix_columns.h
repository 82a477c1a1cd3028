// Columns between buffers of their own and a row-major matrix, a cache's worth of rows at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "host/analysis/analysis_memory.h"
#include "host/base/parallel.h"
#include "host/base/prefetch.h"

namespace brenvolt::sra {

inline constexpr std::size_t kRowsPerCopy = 4096;
inline constexpr std::size_t kRowsInNearestCache = 64;
// Columns handled together: their neighbours in a row share its cache lines.
inline constexpr std::size_t kMostColumns = 16;

// Buffers for some columns at a time, which take at most half of what a matrix of all of them takes (but one
// column at least). Throws std::bad_alloc when memory is short.
class ColumnBuffers {
 public:
  ColumnBuffers(std::size_t rows, std::size_t columns)
      : values_(rows * std::clamp<std::size_t>(columns / 2, 1, kMostColumns)) {
    const std::size_t most = std::clamp<std::size_t>(columns / 2, 1, kMostColumns);
    for (std::size_t c = 0; c < most; ++c) columns_.push_back(values_.Span().subspan(c * rows, rows));
  }

  std::size_t Most() const { return columns_.size(); }
  std::span<const std::span<double>> First(std::size_t count) const { return {columns_.data(), count}; }

 private:
  AnalysisArray<double> values_;
  std::vector<std::span<double>> columns_;
};

// Asks for the values' memory ahead of their being written.
inline void FetchForWriting(std::span<double> values) {
  constexpr std::size_t kCacheLine = 8;
  for (std::size_t i = 0; i < values.size(); i += kCacheLine) PrefetchForWriting(values.data() + i);
}

// matrix[i * stride + places[c]] = columns[c][i] over the rows [begin, end) of the columns, which are
// the rows from `firstRow` of the matrix.
inline void WriteRows(std::span<const std::span<double>> columns, std::span<const std::size_t> places,
                      std::size_t begin, std::size_t end, std::size_t firstRow, std::size_t stride,
                      std::span<double> matrix) {
  for (std::size_t from = begin; from < end; from += kRowsInNearestCache) {
    const std::size_t rows = std::min(kRowsInNearestCache, end - from);
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const double* in = columns[c].data() + from;
      double* out = matrix.data() + (firstRow + from) * stride + places[c];
      for (std::size_t i = 0; i < rows; ++i) out[i * stride] = in[i];
    }
  }
}

// The same for whole columns, on all cores.
inline void WriteColumns(std::span<const std::span<double>> columns, std::span<const std::size_t> places,
                         std::size_t stride, std::span<double> matrix) {
  if (columns.empty()) return;
  ParallelBlocks(columns[0].size(), kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
    WriteRows(columns, places, begin, end, 0, stride, matrix);
  });
}

// columns[c][i] = matrix[i * stride + places[c]].
inline void ReadColumns(std::span<const double> matrix, std::size_t stride,
                        std::span<const std::size_t> places, std::span<const std::span<double>> columns) {
  if (columns.empty()) return;
  ParallelBlocks(columns[0].size(), kRowsPerCopy, [&](std::size_t begin, std::size_t end) {
    for (std::size_t from = begin; from < end; from += kRowsInNearestCache) {
      const std::size_t rows = std::min(kRowsInNearestCache, end - from);
      for (std::size_t c = 0; c < columns.size(); ++c) {
        const double* in = matrix.data() + from * stride + places[c];
        double* out = columns[c].data() + from;
        for (std::size_t i = 0; i < rows; ++i) out[i] = in[i * stride];
      }
    }
  });
}

}  // namespace brenvolt::sra
