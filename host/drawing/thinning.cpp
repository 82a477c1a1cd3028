#include "host/drawing/thinning.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace brenvolt {
namespace {

// No more points, and no longer a line, than this are shown as they are.
constexpr std::size_t kFewPoints = 1000;
constexpr std::size_t kShortLine = 4000;

std::vector<std::size_t> FiniteOf(std::span<const double> x, std::span<const double> y) {
  std::vector<std::size_t> kept;
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (std::isfinite(x[i]) && std::isfinite(y[i])) kept.push_back(i);
  }
  return kept;
}

// Which of so many equal parts of a range a value lies in; its upper end belongs to the last.
class Parts {
 public:
  Parts(double from, double to, std::size_t count)
      : from_(from), scale_(to > from ? static_cast<double>(count) / (to - from) : 0), last_(count - 1) {}

  // False for a value outside of the range, or none.
  bool Find(double value, std::size_t& part) const {
    const double place = (value - from_) * scale_;
    if (!(place >= 0 && place <= static_cast<double>(last_) + 1)) return false;
    part = std::min(static_cast<std::size_t>(place), last_);
    return true;
  }

 private:
  double from_;
  double scale_;
  std::size_t last_;
};

// The points of a line in one column.
struct ColumnRun {
  std::size_t first;
  std::size_t last;
  std::size_t lowest;
  std::size_t highest;

  void AddTo(std::vector<std::size_t>& kept) const {
    std::size_t some[] = {first, lowest, highest, last};
    std::ranges::sort(some);
    std::ranges::unique_copy(some, std::back_inserter(kept));
  }
};

}  // namespace

std::vector<std::size_t> ThinPoints(std::span<const double> x, std::span<const double> y,
                                    const CellGrid& grid) {
  const Parts columns(grid.xFrom, grid.xTo, grid.columns);
  const Parts rows(grid.yFrom, grid.yTo, grid.rows);
  std::vector<char> taken(grid.columns * grid.rows, 0);
  std::vector<std::size_t> kept;
  std::size_t extremes[4] = {};
  bool isFirst = true;
  for (std::size_t i = 0; i < x.size(); ++i) {
    std::size_t column = 0;
    std::size_t row = 0;
    if (!columns.Find(x[i], column) || !rows.Find(y[i], row)) continue;
    if (isFirst) std::ranges::fill(extremes, i);
    isFirst = false;
    if (x[i] < x[extremes[0]]) extremes[0] = i;
    if (x[i] > x[extremes[1]]) extremes[1] = i;
    if (y[i] < y[extremes[2]]) extremes[2] = i;
    if (y[i] > y[extremes[3]]) extremes[3] = i;
    char& cell = taken[row * grid.columns + column];
    if (cell != 0 && x.size() > kFewPoints) continue;
    cell = 1;
    kept.push_back(i);
  }
  if (kept.empty()) return kept;
  kept.insert(kept.end(), std::begin(extremes), std::end(extremes));
  std::ranges::sort(kept);
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  return kept;
}

std::vector<std::size_t> ThinLine(std::span<const double> x, std::span<const double> y,
                                  const CellGrid& grid) {
  if (x.size() <= kShortLine) return FiniteOf(x, y);
  const Parts columns(grid.xFrom, grid.xTo, grid.columns);
  std::vector<std::size_t> kept;
  ColumnRun run{};
  std::size_t current = grid.columns;
  for (std::size_t i = 0; i < x.size(); ++i) {
    std::size_t column = 0;
    if (!std::isfinite(y[i]) || !columns.Find(x[i], column)) continue;
    if (column != current) {
      if (current != grid.columns) run.AddTo(kept);
      run = {i, i, i, i};
      current = column;
      continue;
    }
    run.last = i;
    if (y[i] < y[run.lowest]) run.lowest = i;
    if (y[i] > y[run.highest]) run.highest = i;
  }
  if (current != grid.columns) run.AddTo(kept);
  return kept;
}

}  // namespace brenvolt
