// The layered product of Goto & van de Geijn (2008), "Anatomy of high-performance matrix multiplication":
// panels of both factors are packed in the order in which the tile kernel reads them.
#include "host/numeric/algebra/matrix_product.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "host/base/parallel.h"
#include "host/numeric/vector/algebra_kernels.h"

namespace brenvolt {
namespace {

using kernels::kTileColumns;
using kernels::kTileRows;

constexpr std::size_t kDepth = 256;         // terms of a packed panel: two panels fit the first-level cache
constexpr std::size_t kPanelsPerTask = 8;   // row panels that a thread multiplies at a time
constexpr std::size_t kSmallWork = 40'000;  // products below which threads cost more than they save

std::size_t PanelCount(std::size_t n, std::size_t size) {
  return (n + size - 1) / size;
}

// Packs rows [first, first + size) of columns [begin, end) of the view; rows beyond the view count as zero.
void PackPanel(const MatrixView& view, std::size_t first, std::size_t size, std::size_t begin,
               std::size_t end, double* out) {
  const std::size_t rows = std::min(size, view.rows - first);
  for (std::size_t l = begin; l < end; ++l, out += size) {
    const double* in = view.data + first * view.rowStep + l * view.columnStep;
    for (std::size_t i = 0; i < rows; ++i) out[i] = in[i * view.rowStep];
    for (std::size_t i = rows; i < size; ++i) out[i] = 0;
  }
}

void AddTile(const std::array<double, kTileRows * kTileColumns>& tile, double sign, std::size_t row,
             std::size_t column, std::size_t rows, std::size_t columns, const ProductTarget& target) {
  for (std::size_t i = 0; i < rows; ++i) {
    const std::size_t at = (row + i) * target.stride + column;
    for (std::size_t j = 0; j < columns; ++j) {
      const double term = sign * tile[i * kTileColumns + j];
      double& sum = target.data[at + j];
      const double total = sum + term;
      if (target.low != nullptr) {  // the error of the addition (Knuth 1969, theorem 4.2.2 B)
        const double part = total - sum;
        target.low[at + j] += (sum - (total - part)) + (term - part);
      }
      sum = total;
    }
  }
}

struct PackedDepth {
  std::vector<double> left;
  std::vector<double> right;
};

// One row panel of the left factor against every column panel of the right one.
void AddRowPanel(std::size_t panel, std::size_t depth, const PackedDepth& packed, std::size_t rows,
                 std::size_t columns, double sign, const ProductTarget& target) {
  std::array<double, kTileRows * kTileColumns> tile;
  const std::size_t row = panel * kTileRows;
  const std::size_t tileRows = std::min(kTileRows, rows - row);
  const std::size_t end = target.part == ProductPart::kAll ? columns : std::min(columns, row + tileRows);
  for (std::size_t column = 0; column < end; column += kTileColumns) {
    kernels::MultiplyTile(packed.left.data() + row * depth, packed.right.data() + column * depth, depth,
                          tile.data());
    AddTile(tile, sign, row, column, tileRows, std::min(kTileColumns, columns - column), target);
  }
}

}  // namespace

MatrixView RowMajor(std::span<const double> data, std::size_t rows, std::size_t columns) {
  return {data.data(), rows, columns, columns, 1};
}

void AddProduct(const MatrixView& a, const MatrixView& b, double sign, const ProductTarget& target) {
  const std::size_t rowPanels = PanelCount(a.rows, kTileRows);
  const std::size_t columnPanels = PanelCount(b.columns, kTileColumns);
  const MatrixView bT = b.Transposed();
  const std::size_t most = std::min(kDepth, a.columns);
  PackedDepth packed{std::vector<double>(rowPanels * kTileRows * most),
                     std::vector<double>(columnPanels * kTileColumns * most)};
  for (std::size_t begin = 0; begin < a.columns; begin += kDepth) {
    const std::size_t end = std::min(begin + kDepth, a.columns);
    const std::size_t depth = end - begin;
    const auto pack = [&](std::size_t first, std::size_t last) {
      for (std::size_t p = first; p < last; ++p) {
        if (p < rowPanels) {
          PackPanel(a, p * kTileRows, kTileRows, begin, end, packed.left.data() + p * kTileRows * depth);
        } else {
          const std::size_t q = p - rowPanels;
          PackPanel(bT, q * kTileColumns, kTileColumns, begin, end,
                    packed.right.data() + q * kTileColumns * depth);
        }
      }
    };
    const auto multiply = [&](std::size_t first, std::size_t last) {
      for (std::size_t p = first; p < last; ++p)
        AddRowPanel(p, depth, packed, a.rows, b.columns, sign, target);
    };
    if (a.rows * b.columns * depth <= kSmallWork) {
      pack(0, rowPanels + columnPanels);
      multiply(0, rowPanels);
    } else {
      ParallelBlocks(rowPanels + columnPanels, 2 * kPanelsPerTask, pack);
      ParallelBlocks(rowPanels, kPanelsPerTask, multiply);
    }
  }
}

void Multiply(const MatrixView& a, const MatrixView& b, std::span<double> product) {
  std::ranges::fill(product, 0.0);
  AddProduct(a, b, 1, {product.data(), b.columns});
}

void MirrorLowerTriangle(std::span<double> matrix, std::size_t k) {
  for (std::size_t i = 0; i < k; ++i)
    for (std::size_t j = 0; j < i; ++j) matrix[j * k + i] = matrix[i * k + j];
}

}  // namespace brenvolt
