// Sums over a sample by which likelihoods are climbed, in one pass, on the widest vectors that the machine offers. With
// w(z, k) = ln(1 + k z) / k (log_one_plus.h).
//
// Sums run over fixed blocks of values in a fixed order, so that the results have the same bits on every instruction
// set.
#pragma once

#include <optional>
#include <span>

namespace brenvolt {

// Of the values' log densities -(1 + shape) w - exp(-w), with z = (x - location) / scale and without ln(scale), and
// of their derivatives by location (l), ln(scale) (s) and shape (k); those by the location in units of 1 / scale.
struct ExtremeValueSums {
  double value = 0.0;
  double l = 0.0;
  double s = 0.0;
  double k = 0.0;
  double ll = 0.0;
  double ls = 0.0;
  double ss = 0.0;
  double lk = 0.0;
  double sk = 0.0;
  double kk = 0.0;
};

// Over one value or more, ascending. Nothing when one is at or beyond the end of the support, where 1 + shape z <= 0.
std::optional<ExtremeValueSums> SumExtremeValue(std::span<const double> sorted, double location,
                                                double inverseScale, double shape);

// Over excesses y >= 0, with r = shape / scale: of w(y, r), of its derivative by r, and of y / (1 + r y). Where 1 + r y
// <= 0 for one of them they are NaN or infinite.
struct ParetoSums {
  double w = 0.0;
  double wByRatio = 0.0;
  double shapeByRatio = 0.0;
};
ParetoSums SumPareto(std::span<const double> excesses, double ratio);

// The sum of 2 x / (exp(slope x) + 1), by which the folded normal's location is found.
double SumFolded(std::span<const double> values, double slope);

}  // namespace brenvolt
