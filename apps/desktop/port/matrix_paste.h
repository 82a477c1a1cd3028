// Where cells that a spreadsheet copied go in a symmetric matrix: a whole matrix or one of its triangles, with or without
// the diagonal and the names, or a block of cells.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "apps/desktop/base/text_block.h"

namespace brenvolt::desktop {

struct PastedCell {
  std::size_t row = 0;  // above the diagonal
  std::size_t column = 0;
  std::string text;
};

struct MatrixPaste {
  std::vector<PastedCell> cells;
  std::size_t outside = 0;  // cells that lie beyond the matrix
  std::size_t differing =
      0;  // pairs that both halves have, with different values; that above the diagonal counts
};

// Empty cells and the diagonal are passed over. Where the block has the names of the matrix, its cells go by them, in
// whatever order; a whole matrix or triangle goes to its place, a block as high or as wide as the matrix begins at the
// first row or column; any other begins at `row` and `column`.
MatrixPaste PlaceInMatrix(const TextRows& block, std::span<const std::string> names, std::size_t row,
                          std::size_t column);

}  // namespace brenvolt::desktop
