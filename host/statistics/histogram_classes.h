// Classes for histograms and frequency tables, with bounds that a person would write.
#pragma once

#include <span>
#include <vector>

namespace brenvolt {

// The classes of a histogram, and what one unit of the fitted curve is worth in it: the width of a class for
// a density or a probability of whole numbers, 1 for the probability of a class.
struct HistogramClasses {
  std::vector<double> bounds;
  double width = 1;
};

// Continuous values: equal round steps (host/base/axis_scaling.h), at least as many as Sturges (1926) asks
// for, 1 + log2 n, at most 2.5 times that, and no more than 50. Discrete ones: a class is one whole number
// around its middle, or a round number of them if there are more than 50; if not all values are whole,
// a class is one distinct value, its bounds midway to its neighbours. Ascending finite values, at least one.
HistogramClasses ClassesOf(std::span<const double> sorted, bool continuous);

// Whether all values are whole numbers that leave room for halves between them.
bool AreWhole(std::span<const double> sorted);

}  // namespace brenvolt
