#include "apps/desktop/port/matrix_paste.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <utility>

#include "host/base/number_text.h"

namespace brenvolt::desktop {
namespace {

using Places = std::vector<std::size_t>;

struct Place {
  std::size_t row = 0;
  std::size_t column = 0;
};

bool IsNumber(const std::string& cell) {
  return ParseTravelledNumber(cell).has_value();
}

// Names: something stands there, and no number.
bool AreNames(const std::vector<std::string>& cells) {
  return std::ranges::any_of(cells, [](const std::string& cell) { return !cell.empty(); }) &&
         std::ranges::none_of(cells, IsNumber);
}

// A block without the names at its edges, which stand beside it.
class NamedBlock {
 public:
  explicit NamedBlock(const TextRows& block) : rows_(block) {
    for (auto& row : rows_) {
      for (std::string& cell : row) cell = Trim(cell);
    }
    const bool hasNumbers =
        std::ranges::any_of(rows_, [](const auto& row) { return std::ranges::any_of(row, IsNumber); });
    if (!hasNumbers) return;
    if (AreNames(rows_.front())) {
      columnNames_ = std::move(rows_.front());
      rows_.erase(rows_.begin());
    }
    TakeRowNames();
  }

  const TextRows& Rows() const { return rows_; }
  std::size_t Width() const {
    std::size_t width = 0;
    for (const auto& row : rows_) width = std::max(width, row.size());
    return width;
  }
  // The names of one edge are those of the other of a square block as well.
  const std::vector<std::string>& RowNames() const {
    return rowNames_.empty() && columnNames_.size() == rows_.size() ? columnNames_ : rowNames_;
  }
  const std::vector<std::string>& ColumnNames() const {
    return columnNames_.empty() && rowNames_.size() == Width() ? rowNames_ : columnNames_;
  }

 private:
  void TakeRowNames() {
    std::vector<std::string> first;
    for (const auto& row : rows_) first.push_back(row.empty() ? std::string() : row.front());
    if (!AreNames(first)) return;
    rowNames_ = std::move(first);
    for (auto& row : rows_) {
      if (!row.empty()) row.erase(row.begin());
    }
    if (columnNames_.size() > Width()) columnNames_.erase(columnNames_.begin());
  }

  TextRows rows_;
  std::vector<std::string> rowNames_;
  std::vector<std::string> columnNames_;
};

// The places of all of these names in the matrix; nothing if one is not there, or is there twice.
std::optional<Places> PlacesOf(const std::vector<std::string>& wanted, std::span<const std::string> names) {
  Places places;
  for (const std::string& name : wanted) {
    if (std::ranges::count(names, name) != 1) return std::nullopt;
    places.push_back(static_cast<std::size_t>(std::ranges::find(names, name) - names.begin()));
  }
  if (places.empty() || std::set<std::size_t>(places.begin(), places.end()).size() != places.size())
    return std::nullopt;
  return places;
}

Places Sequence(std::size_t first, std::size_t count) {
  Places places(count);
  std::iota(places.begin(), places.end(), first);
  return places;
}

// Whether a block that begins at a place gives each pair of a matrix of k variables once, and 1 on the diagonal if that.
bool IsWholeTriangle(const TextRows& rows, std::size_t k, Place at) {
  std::size_t above = 0;
  std::size_t below = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < rows[i].size(); ++j) {
      if (rows[i][j].empty()) continue;
      if (at.row + i == at.column + j) {
        if (ParseTravelledNumber(rows[i][j]) != 1.0) return false;
        continue;
      }
      ++(at.row + i < at.column + j ? above : below);
    }
  }
  return std::max(above, below) == k * (k - 1) / 2 && std::min(above, below) == 0;
}

Place BeginOf(const NamedBlock& block, std::size_t k, Place current) {
  const std::size_t height = block.Rows().size();
  const std::size_t width = block.Width();
  if (k > 2 && height + 1 >= k && width + 1 >= k && height <= k && width <= k) {
    for (const Place at : {Place{0, 0}, Place{0, 1}, Place{1, 0}}) {
      if (at.row + height <= k && at.column + width <= k && IsWholeTriangle(block.Rows(), k, at)) return at;
    }
  }
  return {height >= k ? 0 : current.row, width >= k ? 0 : current.column};
}

}  // namespace

MatrixPaste PlaceInMatrix(const TextRows& block, std::span<const std::string> names, std::size_t row,
                          std::size_t column) {
  const NamedBlock named(block);
  const std::size_t k = names.size();
  const Place begin = BeginOf(named, k, {row, column});
  auto rows = PlacesOf(named.RowNames(), names);
  auto columns = PlacesOf(named.ColumnNames(), names);
  if (!rows) rows = Sequence(begin.row, named.Rows().size());
  if (!columns) columns = Sequence(begin.column, named.Width());
  MatrixPaste paste;
  std::map<std::pair<std::size_t, std::size_t>, std::string> halves[2];  // above the diagonal, and below it
  for (std::size_t i = 0; i < named.Rows().size(); ++i) {
    for (std::size_t j = 0; j < named.Rows()[i].size(); ++j) {
      const std::string& text = named.Rows()[i][j];
      if (text.empty()) continue;
      const std::size_t r = (*rows)[i];
      const std::size_t c = j < columns->size() ? (*columns)[j] : k;
      if (r >= k || c >= k) {
        ++paste.outside;
      } else if (r != c) {
        halves[r < c ? 0 : 1][std::minmax(r, c)] = text;
      }
    }
  }
  for (const auto& [place, text] : halves[1]) {
    const auto [above, isOnly] = halves[0].emplace(place, text);
    if (!isOnly && above->second != text && ParseTravelledNumber(above->second) != ParseTravelledNumber(text))
      ++paste.differing;
  }
  for (auto& [place, text] : halves[0]) paste.cells.push_back({place.first, place.second, std::move(text)});
  return paste;
}

}  // namespace brenvolt::desktop
