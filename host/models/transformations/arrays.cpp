#include "host/models/transformations/arrays.h"

#include <cmath>

#include "host/models/transformations/predicate.h"

namespace brenvolt::pmml {
namespace {

std::vector<double> Numbers(const Element& element) {
  std::vector<double> numbers;
  for (const std::string& item : SplitArray(element.Content())) {
    const auto number = ReadReal(item);
    if (!number) element.Fail("\"" + item + "\" is no number");
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
      indices = Numbers(child);
    } else if (child.Is("REAL-Entries") || child.Is("INT-Entries")) {
      entries = Numbers(child);
    } else {
      child.Refuse();
    }
    child.RefuseAnythingElse();
  }
  if (indices.size() != entries.size()) array.Fail("the array has not an entry for each index");
  std::vector<double> numbers(count, otherwise);
  for (std::size_t k = 0; k < indices.size(); ++k) {
    const double index = indices[k];
    if (!(index >= 1) || index > static_cast<double>(count) || index != std::floor(index)) {
      array.Fail("the array has an index outside of 1 to " + std::to_string(count));
    }
    numbers[static_cast<std::size_t>(index) - 1] = entries[k];
  }
  return numbers;
}

}  // namespace

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

}  // namespace brenvolt::pmml
