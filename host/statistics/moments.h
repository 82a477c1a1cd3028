// Summary moments of a sample in one pass.
#pragma once

#include <cstdint>
#include <span>

#include "host/base/almost_equal.h"
#include "host/base/bytes.h"

namespace brenvolt {

struct Moments {
  std::int64_t count = 0;    // valid values, each case as often as its weight
  std::int64_t missing = 0;  // cases left out because the value is missing
  double mean = kNotSet;
  double standardDeviation = kNotSet;
  double skewness = kNotSet;
  double kurtosis = kNotSet;  // excess
  double minimum = kNotSet;
  double maximum = kNotSet;
  double logMean = kNotSet;  // of the natural logarithms; not set if a value is not positive
  double logStandardDeviation = kNotSet;
};

// Running central moments by one-pass updates (Welford 1962; third and fourth moments: Pébay 2008,
// eqs. 2.8-2.9), each kept divided by the count, and running moments of the logarithms while every value is
// positive. Deviations count in a power of two near the greatest of them, so that their fourth powers neither
// overflow nor vanish in any units.
class MomentAccumulator {
 public:
  // Takes a value `copies` times, copies >= 1.
  void Add(double x, std::int64_t copies);
  // Takes every value of a block once, much faster than one at a time: the block's own moments in two passes,
  // joined to those before (Pébay 2008, eqs. 3.1-3.3). From then on the logarithms have no moments.
  void Add(std::span<const double> block);
  void CountMissing() { ++missing_; }
  // Takes all that another one took, as a block.
  void Join(const MomentAccumulator& block);
  // The moments of what was added: skewness and kurtosis with their small-sample corrections, standard
  // deviations with divisor n - 1. All are kNotSet if the sample is too small for them.
  Moments Finish() const;
  // What was added by blocks, as bytes.
  void Put(ByteWriter& bytes) const;
  static MomentAccumulator Get(ByteReader& bytes);

 private:
  void AddOnce(double x);
  void Rescale(double deviation);
  double Unit() const;  // of the central moments; 0 while they are all 0
  void AddLogarithm(double x, std::int64_t copies);

  std::int64_t count_ = 0;
  std::int64_t missing_ = 0;
  double mean_ = 0;
  int exponent_ = 0;          // of the unit of the central moments
  double inverseUnit_ = 0;    // 2^-exponent_
  double longDeviation_ = 0;  // a deviation beyond it asks for a larger unit
  double m2_ = 0;
  double m3_ = 0;
  double m4_ = 0;
  double minimum_ = 0;
  double maximum_ = 0;
  bool logarithms_ = true;
  double logMean_ = 0;
  double logSum_ = 0;
};

}  // namespace brenvolt
