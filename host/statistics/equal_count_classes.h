// Classes of a variable that hold about equally many cases, against which another variable is profiled.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace brenvolt {

struct EqualCountClass {
  std::size_t begin = 0;  // ranks from 0, [begin, end)
  std::size_t end = 0;
  double minimum = 0;
  double median = 0;
  double maximum = 0;
};

// Up to `classes` classes of ascending values without NaN. Equal values share a class, so that a variable of
// few values has a class for each; no class is empty.
std::vector<EqualCountClass> EqualCountClasses(std::span<const double> sorted, std::size_t classes);

// The cases in the order of a variable, those where it is NaN last, and its classes over the others.
struct OrderedCases {
  std::vector<std::size_t> order;
  std::vector<EqualCountClass> classes;
};
// Without a number of classes (0) there are 20, as long as each holds some 50 cases.
OrderedCases OrderCases(std::span<const double> variable, std::size_t classes = 0);

}  // namespace brenvolt
