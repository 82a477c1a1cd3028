// How far apart, or how alike, two records are: ComparisonMeasure of clusters and neighbours.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "host/models/transformations/expression_element.h"

namespace brenvolt::pmml {

enum class Metric : std::uint8_t {
  kEuclidean,
  kSquaredEuclidean,
  kChebychev,
  kCityBlock,
  kMinkowski,
  kSimpleMatching,
  kJaccard,
  kTanimoto,
  kBinary
};
enum class Compare : std::uint8_t { kAbsDiff, kGaussSim, kDelta, kEqual };

struct ComparisonField {
  Slot slot = kNoSlot;
  double weight = 1;
  Compare compare = Compare::kAbsDiff;
  double scale = 1;          // of kGaussSim: the distance at which the similarity is 1/2
  double missingWeight = 1;  // what a missing value of this field takes from the whole

  // The comparison of two values of the field.
  double Of(double x, double y) const;
};

class ComparisonMeasure {
 public:
  explicit ComparisonMeasure(const Element& element);

  Compare DefaultCompare() const { return compare_; }
  // Greater is nearer.
  bool IsSimilarity() const { return isSimilarity_; }
  // Of a record and a centre; missing values of the record are left out and the rest is scaled up. NaN where
  // all are missing.
  double Between(std::span<const ComparisonField> fields, std::span<const double> record,
                 std::span<const double> centre) const;

 private:
  double Matching(std::span<const double> record, std::span<const double> centre) const;

  Metric metric_ = Metric::kEuclidean;
  Compare compare_ = Compare::kAbsDiff;
  bool isSimilarity_ = false;
  double power_ = 2;
  std::array<double, 4> upper_{};  // of kBinary: c00, c01, c10, c11
  std::array<double, 4> lower_{};
};

// The attributes compareFunction, similarityScale and fieldWeight of a field.
ComparisonField ReadComparisonField(const Element& element, const ComparisonMeasure& measure);

}  // namespace brenvolt::pmml
