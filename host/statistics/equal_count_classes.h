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

// A number of classes for so many cases: 20, as long as each holds some 50.
std::size_t UsualClassCount(std::size_t cases);

}  // namespace brenvolt
