// What speaks against simulating from the best fit, although it is the best: values that the data rule out, and
// moments that no sample lacks.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

// How far a fit reaches beyond its data.
struct FitReach {
  std::string fit;  // its name, for people
  // The probabilities of values below and above 0; NaN if the data have such values themselves.
  double belowZero;
  double aboveZero;
  double infiniteMoment;  // the order of the lowest one: 1 the mean, 2 the variance; NaN if neither is
  double ksPValue =
      std::numeric_limits<double>::quiet_NaN();  // of the Kolmogorov-Smirnov test; NaN without one
  std::string_view identifier = {};              // of its distribution, for programs: "lognormal"
};

struct FitCaution {
  enum class Kind : std::uint8_t { kBelowZero, kAboveZero, kInfiniteMean, kInfiniteVariance };

  Kind kind;
  std::string fit;
  std::string_view identifier;  // of its distribution
  double probability;           // of the values that the data rule out; NaN if it is about a moment
  std::string instead = {};     // the best fit that needs no caution; empty if all do
  std::string_view insteadIdentifier = {};
  // Of that one, which may itself be refused; NaN without a test.
  double insteadKsPValue = std::numeric_limits<double>::quiet_NaN();

  // The kind in JSON: "below-zero", ….
  std::string Name() const;
  // For people, a sentence without its full stop.
  std::string Text() const;
};

// Of the first of a variable's fits, which are given in the order in which they are saved.
std::vector<FitCaution> CautionsAgainstFirst(std::span<const FitReach> fits);

}  // namespace brenvolt
