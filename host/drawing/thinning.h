// Data thinned to what a picture can show, so that ten million points cost little more than those that are seen.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace brenvolt {

// A rectangle of values cut into cells, about as large as what can be told apart.
struct CellGrid {
  double xFrom = 0;
  double xTo = 1;
  double yFrom = 0;
  double yTo = 1;
  std::size_t columns = 1;
  std::size_t rows = 1;
};

// The indexes of some of the points, ascending: the first in every cell, and the extremes of x and of y exactly.
// Points outside of the grid or without a value are left out.
std::vector<std::size_t> ThinPoints(std::span<const double> x, std::span<const double> y,
                                    const CellGrid& grid);

// The same of a line through the points in their order: of successive points in one column the first, the last,
// the lowest and the highest, so that the line covers the same pixels. Points without a value are left out.
std::vector<std::size_t> ThinLine(std::span<const double> x, std::span<const double> y, const CellGrid& grid);

}  // namespace brenvolt
