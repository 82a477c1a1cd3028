// The histogram: a distribution given by its classes, each a code and the proportion of it.
#include "host/numeric/distributions/histogram.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/numeric/distributions/common/distribution_forms.h"
#include "host/numeric/estimation/discrete_estimators.h"
#include "host/numeric/special/exact_sums.h"

namespace brenvolt {
namespace {

constexpr std::size_t kClassSize = 2;

// A sum with its rounding errors made good. Ogita, Rump & Oishi (2005), algorithms 4.4 and 5.3.
class AccurateSum {
 public:
  void Add(double x) {
    const TwoPartSum next = ExactSum(sum_, x);
    sum_ = next.high;
    rest_ += next.low;
  }
  void AddProduct(double a, double b) {
    const TwoPartSum product = ExactProduct(a, b);
    Add(product.high);
    rest_ += product.low;
  }
  double Value() const { return sum_ + rest_; }

 private:
  double sum_ = 0.0;
  double rest_ = 0.0;
};

}  // namespace

struct PreparedHistogram;

template <>
struct FormulasOf<Histogram> {
  In values;

  std::size_t Classes() const { return values.size() / kClassSize; }
  double Code(std::size_t i) const { return values[kClassSize * i]; }
  double Proportion(std::size_t i) const { return values[kClassSize * i + 1]; }

  // The sum of the proportions of the codes for which `isIn` holds.
  template <class Predicate>
  double Share(const Predicate& isIn) const {
    AccurateSum sum;
    for (std::size_t i = 0; i < Classes(); ++i) {
      if (isIn(Code(i))) sum.Add(Proportion(i));
    }
    return sum.Value();
  }

  // The mean of the codes' distances from `origin`, each raised by `power`, 1 or 2.
  double Moment(double origin, int power) const {
    AccurateSum sum;
    for (std::size_t i = 0; i < Classes(); ++i) {
      const double distance = Code(i) - origin;
      sum.AddProduct(power == 2 ? Proportion(i) * distance : Proportion(i), distance);
    }
    return sum.Value() / Total();
  }

  double Mean() const { return Moment(0.0, 1); }

  // The second term takes the rounding of the mean back.
  double Variance() const {
    const double mean = Mean();
    const double rest = Moment(mean, 1);
    return Moment(mean, 2) - rest * rest;
  }

  double Total() const {
    return Share([](double) { return true; });
  }

  bool AreConsistent() const { return std::abs(Total() - 1.0) <= kTotalTolerance; }

  double Density(double x) const {
    return Share([x](double code) { return code == x; }) / Total();
  }
  double LogDensity(double x) const { return std::log(Density(x)); }
  double Cdf(double x) const {
    return Share([x](double code) { return code <= x; }) / Total();
  }
  double Complement(double x) const {
    return Share([x](double code) { return code > x; }) / Total();
  }

  // The least code with a share at which `isReached`(code) holds; else the greatest with a share.
  template <class Predicate>
  double LeastReached(const Predicate& isReached) const {
    double least = kInfinity;
    double greatest = -kInfinity;
    for (std::size_t i = 0; i < Classes(); ++i) {
      if (Proportion(i) == 0.0) continue;
      greatest = std::max(greatest, Code(i));
      if (Code(i) < least && isReached(Code(i))) least = Code(i);
    }
    return std::min(least, greatest);
  }

  // At p = 1 the greatest, even where its share is lost in rounding.
  double Quantile(double p) const {
    return LeastReached([&](double code) { return p < 1.0 && Cdf(code) >= p; });
  }
  double ComplementQuantile(double q) const {
    return LeastReached([&](double code) { return Complement(code) <= q; });
  }

  PreparedHistogram Prepared(std::size_t uses) const;

  // No standard errors: a table of classes has no place for them.
  static EstimateResult Estimate(const EstimationInput& input) {
    auto classes = EstimateHistogram(input.sorted);
    if (!classes) return classes.Reason();
    auto estimate = EstimateOfValues(*std::move(classes), EstimateOrigin::kLikelihood);
    estimate.estimatedParameters = static_cast<int>(estimate.values.size() / kClassSize) - 1;
    return estimate;
  }
};

// The codes with a share, ascending, and the functions at them: many values by binary search.
struct PreparedHistogram {
  std::vector<double> codes;
  std::vector<double> density;
  std::vector<double> cdf;
  std::vector<double> complement;

  explicit PreparedHistogram(const FormulasOf<Histogram>& histogram) {
    std::vector<std::pair<double, double>> classes;
    for (std::size_t i = 0; i < histogram.Classes(); ++i) {
      if (histogram.Proportion(i) > 0.0) classes.emplace_back(histogram.Code(i), histogram.Proportion(i));
    }
    std::sort(classes.begin(), classes.end());
    const double total = histogram.Total();
    AccurateSum upTo;
    AccurateSum here;
    for (const auto& [code, proportion] : classes) {
      if (codes.empty() || codes.back() != code) {
        codes.push_back(code);
        density.emplace_back();
        cdf.emplace_back();
        here = {};
      }
      here.Add(proportion);
      upTo.Add(proportion);
      density.back() = here.Value() / total;
      cdf.back() = upTo.Value() / total;
    }
    complement.resize(codes.size());
    AccurateSum above;
    std::size_t place = codes.size();
    for (auto c = classes.rbegin(); c != classes.rend(); ++c) {
      if (place == codes.size() || codes[place] != c->first) complement[--place] = above.Value() / total;
      above.Add(c->second);
    }
  }

  // The number of codes up to x.
  std::size_t CountUpTo(double x) const {
    return static_cast<std::size_t>(std::upper_bound(codes.begin(), codes.end(), x) - codes.begin());
  }

  double Density(double x) const {
    const std::size_t count = CountUpTo(x);
    return count > 0 && codes[count - 1] == x ? density[count - 1] : 0.0;
  }
  double LogDensity(double x) const { return std::log(Density(x)); }

  double Cdf(double x) const {
    const std::size_t count = CountUpTo(x);
    return count == 0 ? 0.0 : cdf[count - 1];
  }

  double Complement(double x) const {
    const std::size_t count = CountUpTo(x);
    return count == 0 ? 1.0 : complement[count - 1];
  }

  double Quantile(double p) const {
    if (p == 1.0) return codes.back();
    const auto reached = std::lower_bound(cdf.begin(), cdf.end(), p) - cdf.begin();
    return codes[std::min(static_cast<std::size_t>(reached), codes.size() - 1)];
  }

  double ComplementQuantile(double q) const {
    const auto reached =
        std::partition_point(complement.begin(), complement.end(), [q](double tail) { return tail > q; });
    return codes[static_cast<std::size_t>(reached - complement.begin())];
  }
};

PreparedHistogram FormulasOf<Histogram>::Prepared(std::size_t /*uses*/) const {
  return PreparedHistogram(*this);
}

template class Distribution<Histogram>;

}  // namespace brenvolt
