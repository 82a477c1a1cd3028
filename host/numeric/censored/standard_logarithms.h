// Logarithms of densities and probabilities of the two standard distributions to which those of life data reduce, with
// their derivatives.
#pragma once

#include <cmath>

#include "host/numeric/censored/second_order.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {

struct StandardNormalLogarithms {
  static Slopes Density(double w) { return {-0.5 * w * w - kLogSqrtTwoPi, -w, -1}; }

  // P(W > w): its logarithm falls at the rate of the hazard h, whose slope is h (h - w).
  static Slopes Above(double w) {
    constexpr double kTail = 12;
    if (w > kTail) {
      const double excess = ExcessOfHazard(w);
      const double hazard = w + excess;
      return {-0.5 * w * w - kLogSqrtTwoPi - std::log(hazard), -hazard, -hazard * excess};
    }
    const double above = StandardNormalCdf(-w);
    const double hazard = DensityAt(w) / above;
    return {std::log(above), -hazard, -hazard * (hazard - w)};
  }

  static Slopes Below(double w) {
    const Slopes above = Above(-w);
    return {above.value, -above.first, above.second};
  }

  // P(a < W <= b), b = a + width, by a and the width: for narrow intervals the derivatives by both ends cancel. By the tail
  // in which the probabilities are smaller, so that their difference keeps its digits.
  static PairSlopes Between(double a, double width) {
    const double b = a + width;
    const double below = StandardNormalCdf(b);
    const double above = StandardNormalCdf(-a);
    const double p = below < above ? below - StandardNormalCdf(a) : above - StandardNormalCdf(-b);
    const double atA = DensityAt(a) / p;
    const double byWidth = DensityAt(b) / p;
    const double byA = atA * std::expm1(-width * (a + 0.5 * width));
    return {std::log(p),
            byA,
            byWidth,
            -width * byWidth - a * byA - byA * byA,
            -byWidth * (b + byA),
            -byWidth * (b + byWidth)};
  }

 private:
  static double DensityAt(double w) { return ExpMinusHalfSquare(w) * kInverseSqrtTwoPi; }

  // By the continued fraction of the tail (Abramowitz & Stegun 1964, 26.2.14), which this many levels settle there.
  static double ExcessOfHazard(double w) {
    constexpr int kLevels = 40;
    double rest = 0;
    for (int k = kLevels; k > 0; --k) rest = k / (w + rest);
    return rest;
  }
};

// That of the largest extreme value: P(W <= w) = exp(-t), t = exp(-w).
struct StandardExtremeLogarithms {
  static Slopes Density(double w) {
    const double t = std::exp(-w);
    return {-w - t, t - 1, -t};
  }

  static Slopes Below(double w) {
    const double t = std::exp(-w);
    return {-t, t, -t};
  }

  static Slopes Above(double w) {
    constexpr double kCertain = 700;  // values of t beyond which no probability is left below
    const double t = std::exp(-w);
    if (t > kCertain) return {0, 0, 0};
    if (t == 0) return {-w, -1, 0};
    const double hazard = t / std::expm1(t);
    return {std::log(-std::expm1(-t)), -hazard, hazard * (1 - t - hazard)};
  }

  // P(a < W <= a + width) = exp(-t) (exp(d) - 1) with t at a, and d by how much it is less at the end.
  static PairSlopes Between(double a, double width) {
    const double t = std::exp(-a);
    const double d = -t * std::expm1(-width);
    const double atEnd = t * std::exp(-width);
    const double share = -std::expm1(-d);
    const double r = 1 / share;
    const double rest = std::exp(-d) / share;  // r - 1
    return {std::log(share) - atEnd,
            t - d * r,
            r * atEnd,
            d * r - t - d * d * r * rest,
            -atEnd * r * (1 - d * rest),
            -atEnd * r * (1 + atEnd * rest)};
  }
};

}  // namespace brenvolt
