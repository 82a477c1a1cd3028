#include "host/models/document/arrays.h"

#include <algorithm>
#include <cmath>

namespace brenvolt::pmml {
namespace {

std::vector<double> NumbersOf(const std::vector<std::string>& items, const Element& at) {
  std::vector<double> numbers;
  for (const std::string& item : items) {
    const auto number = ReadReal(item);
    if (!number) at.Fail("\"" + item + "\" is not a number");
    numbers.push_back(*number);
  }
  return numbers;
}

// Entries by index, from 1; the others have the default value.
std::vector<double> ReadSparse(const Element& array, std::size_t count) {
  std::vector<double> indices;
  std::vector<double> entries;
  array.PassOver({"n"});
  const double otherwise = array.Real("defaultValue", 0);
  array.RefuseOtherAttributes();
  for (const Element& child : array.Children()) {
    if (child.Is("Indices")) {
      indices = NumbersOf(SplitArray(child.Content()), child);
    } else if (child.Is("REAL-Entries") || child.Is("INT-Entries")) {
      entries = NumbersOf(SplitArray(child.Content()), child);
    } else {
      child.Refuse();
    }
    child.RefuseAnythingElse();
  }
  if (indices.size() != entries.size()) array.Fail("the array does not have an entry for each index");
  std::vector<double> numbers(count, otherwise);
  for (std::size_t k = 0; k < indices.size(); ++k) {
    const double index = indices[k];
    if (!(index >= 1) || index > static_cast<double>(count) || index != std::floor(index)) {
      array.Fail("the array has an index outside 1 to " + std::to_string(count));
    }
    numbers[static_cast<std::size_t>(index) - 1] = entries[k];
  }
  return numbers;
}

}  // namespace

std::vector<std::string> SplitArray(std::string_view content) {
  std::vector<std::string> items;
  std::size_t at = 0;
  while ((at = content.find_first_not_of(kBlanks, at)) != std::string_view::npos) {
    if (content[at] != '"') {
      const auto end = std::min(content.find_first_of(kBlanks, at), content.size());
      items.emplace_back(content.substr(at, end - at));
      at = end;
      continue;
    }
    std::string item;
    for (++at; at < content.size() && content[at] != '"'; ++at) {
      if (content[at] == '\\' && at + 1 < content.size() && content[at + 1] == '"') ++at;
      item += content[at];
    }
    items.push_back(std::move(item));
    at = std::min(at + 1, content.size());
  }
  return items;
}

std::vector<std::string> ReadArray(const Element& array) {
  array.Choice<int>("type", {{"int", 0}, {"real", 0}, {"string", 0}}, 0);
  const auto count = array.FindInteger("n");
  array.RefuseAnythingElse();
  std::vector<std::string> items = SplitArray(array.Content());
  if (count && static_cast<std::size_t>(std::max(*count, 0)) != items.size()) {
    array.Fail("the array declares " + std::to_string(*count) + " items and holds " +
               std::to_string(items.size()));
  }
  return items;
}

std::vector<double> ReadRealArray(const Element& array) {
  return NumbersOf(ReadArray(array), array);
}

std::vector<double> ReadNumbers(const Element& array, std::size_t count) {
  if (array.Is("REAL-SparseArray") || array.Is("INT-SparseArray")) return ReadSparse(array, count);
  if (!array.Is("Array")) array.Refuse();
  std::vector<double> numbers = ReadRealArray(array);
  if (numbers.size() != count) {
    array.Fail("the array holds " + std::to_string(numbers.size()) + " numbers instead of " +
               std::to_string(count));
  }
  return numbers;
}

std::vector<std::vector<std::optional<std::string>>> ReadInlineTable(const Element& table,
                                                                     std::span<const std::string> columns) {
  table.RefuseOtherAttributes();
  std::vector<std::vector<std::optional<std::string>>> rows;
  for (const Element& row : table.Children()) {
    if (!row.Is("row")) row.Refuse();
    auto& cells = rows.emplace_back(columns.size());
    for (const Element& cell : row.Children()) {
      const auto column = std::ranges::find_if(columns, [&](const std::string& name) {
        return Element(cell).Is(name.substr(name.find(':') + 1));
      });
      if (column == columns.end()) continue;
      for (auto at = column; at != columns.end(); ++at) {
        if (cell.Is(at->substr(at->find(':') + 1))) {
          cells[static_cast<std::size_t>(at - columns.begin())] = std::string(TrimXml(cell.Content()));
        }
      }
    }
  }
  return rows;
}

}  // namespace brenvolt::pmml
