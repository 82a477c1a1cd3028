#include "host/models/kinds/comparison_measure.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brenvolt::pmml {
namespace {

Compare ReadCompare(const Element& element, Compare otherwise) {
  return element.Choice<Compare>("compareFunction",
                                 {{"absDiff", Compare::kAbsDiff},
                                  {"gaussSim", Compare::kGaussSim},
                                  {"delta", Compare::kDelta},
                                  {"equal", Compare::kEqual}},
                                 otherwise);
}

constexpr std::array<std::pair<std::string_view, Metric>, 9> kMetrics{{
    {"euclidean", Metric::kEuclidean},
    {"squaredEuclidean", Metric::kSquaredEuclidean},
    {"chebychev", Metric::kChebychev},
    {"cityBlock", Metric::kCityBlock},
    {"minkowski", Metric::kMinkowski},
    {"simpleMatching", Metric::kSimpleMatching},
    {"jaccard", Metric::kJaccard},
    {"tanimoto", Metric::kTanimoto},
    {"binarySimilarity", Metric::kBinary},
}};

}  // namespace

double ComparisonField::Of(double x, double y) const {
  switch (compare) {
    case Compare::kAbsDiff:
      return std::fabs(x - y);
    case Compare::kGaussSim:
      return std::exp(-std::numbers::ln2 * (x - y) * (x - y) / (scale * scale));
    case Compare::kDelta:
      return x == y ? 0 : 1;
    case Compare::kEqual:
      return x == y ? 1 : 0;
  }
  return kMissing;
}

ComparisonMeasure::ComparisonMeasure(const Element& element) {
  isSimilarity_ = element.Choice<bool>("kind", {{"distance", false}, {"similarity", true}});
  compare_ = ReadCompare(element, Compare::kAbsDiff);
  element.PassOver({"minimum", "maximum"});
  element.RefuseOtherAttributes();
  const Element metric = element.OnlyChild();
  const auto known =
      std::ranges::find_if(kMetrics, [&](const auto& entry) { return metric.Is(entry.first); });
  if (known == kMetrics.end()) metric.Refuse();
  metric_ = known->second;
  if (metric_ == Metric::kMinkowski) {
    power_ = metric.Real("p-parameter");
    if (!(power_ > 0)) metric.Fail("the power must be above 0");
  }
  if (metric_ == Metric::kBinary) {
    constexpr std::array<const char*, 4> kUpper{"c00-parameter", "c01-parameter", "c10-parameter",
                                                "c11-parameter"};
    constexpr std::array<const char*, 4> kLower{"d00-parameter", "d01-parameter", "d10-parameter",
                                                "d11-parameter"};
    for (std::size_t k = 0; k < kUpper.size(); ++k) {
      upper_[k] = metric.Real(kUpper[k]);
      lower_[k] = metric.Real(kLower[k]);
    }
  }
  metric.RefuseAnythingElse();
}

double ComparisonMeasure::Between(std::span<const ComparisonField> fields, std::span<const double> record,
                                  std::span<const double> centre) const {
  if (metric_ >= Metric::kSimpleMatching) return Matching(record, centre);
  double sum = 0;
  double greatest = 0;
  double present = 0;
  double all = 0;
  for (std::size_t k = 0; k < fields.size(); ++k) {
    all += fields[k].missingWeight;
    if (std::isnan(record[k])) continue;
    present += fields[k].missingWeight;
    const double c = fields[k].Of(record[k], centre[k]);
    greatest = std::fmax(greatest, fields[k].weight * c);
    switch (metric_) {
      case Metric::kCityBlock:
        sum += fields[k].weight * c;
        break;
      case Metric::kMinkowski:
        sum += fields[k].weight * std::pow(c, power_);
        break;
      default:
        sum += fields[k].weight * c * c;
    }
  }
  if (present == 0) return kMissing;
  const double adjustment = all / present;
  switch (metric_) {
    case Metric::kEuclidean:
      return std::sqrt(sum * adjustment);
    case Metric::kChebychev:
      return greatest * adjustment;
    case Metric::kMinkowski:
      return std::pow(sum * adjustment, 1 / power_);
    default:
      return sum * adjustment;
  }
}

// Over 0/1 values: a11 counts the fields where both are 1, a10 those where the record alone is, and so on.
double ComparisonMeasure::Matching(std::span<const double> record, std::span<const double> centre) const {
  std::array<double, 4> a{};
  for (std::size_t k = 0; k < record.size(); ++k) {
    if (std::isnan(record[k])) continue;
    a[(record[k] != 0 ? 2U : 0U) + (centre[k] != 0 ? 1U : 0U)] += 1;
  }
  const auto [a00, a01, a10, a11] = a;
  switch (metric_) {
    case Metric::kSimpleMatching:
      return (a11 + a00) / (a11 + a10 + a01 + a00);
    case Metric::kJaccard:
      return a11 / (a11 + a10 + a01);
    case Metric::kTanimoto:
      return (a11 + a00) / (a11 + 2 * (a10 + a01) + a00);
    default:
      break;
  }
  double upper = 0;
  double lower = 0;
  for (std::size_t k = 0; k < a.size(); ++k) {
    upper += upper_[k] * a[k];
    lower += lower_[k] * a[k];
  }
  return upper / lower;
}

ComparisonField ReadComparisonField(const Element& element, const ComparisonMeasure& measure) {
  ComparisonField field;
  field.weight = element.Real("fieldWeight", 1);
  field.compare = ReadCompare(element, measure.DefaultCompare());
  if (field.compare == Compare::kGaussSim) {
    const auto scale = element.FindReal("similarityScale");
    if (!scale || !(*scale > 0)) element.Fail("the comparison gaussSim needs a similarityScale above 0");
    field.scale = *scale;
  }
  element.PassOver({"similarityScale"});
  return field;
}

}  // namespace brenvolt::pmml
