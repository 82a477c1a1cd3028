// The histogram: a distribution given by its classes, each a code and the proportion of it.
#include <algorithm>
#include <limits>
#include <vector>

#include "host/numeric/exact_sums.h"
#include "host/numeric/law_forms.h"

namespace brenvolt::histogram {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kClassSize = 2;
constexpr double kTotalTolerance = 2e-5;

struct Law {
  std::span<const double> values;

  std::size_t Classes() const { return values.size() / kClassSize; }
  double Code(std::size_t i) const { return values[kClassSize * i]; }
  double Proportion(std::size_t i) const { return values[kClassSize * i + 1]; }

  // The sum of the proportions of the codes for which `isIn` holds, with the rounding errors made good.
  template <class Predicate>
  double Share(const Predicate& isIn) const {
    double sum = 0.0;
    double rest = 0.0;
    for (std::size_t i = 0; i < Classes(); ++i) {
      if (!isIn(Code(i))) continue;
      const TwoPartSum next = ExactSum(sum, Proportion(i));
      sum = next.high;
      rest += next.low;
    }
    return sum + rest;
  }

  double Total() const {
    return Share([](double) { return true; });
  }

  bool IsValid() const {
    if (values.empty() || values.size() % kClassSize != 0) return false;
    for (std::size_t i = 0; i < Classes(); ++i) {
      if (!std::isfinite(Code(i)) || !(Proportion(i) >= 0.0)) return false;
    }
    return std::abs(Total() - 1.0) <= kTotalTolerance;
  }

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
};

// The codes with a share, ascending, and the distribution function at them: many values by binary search,
// with the bits of the single ones.
struct Prepared {
  std::vector<double> codes;
  std::vector<double> cdf;

  explicit Prepared(const Law& law) {
    for (std::size_t i = 0; i < law.Classes(); ++i) {
      if (law.Proportion(i) > 0.0) codes.push_back(law.Code(i));
    }
    std::sort(codes.begin(), codes.end());
    codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
    for (const double code : codes) cdf.push_back(law.Cdf(code));
  }

  double Cdf(double x) const {
    const auto above = std::upper_bound(codes.begin(), codes.end(), x) - codes.begin();
    return above == 0 ? 0.0 : cdf[static_cast<std::size_t>(above) - 1];
  }

  double Quantile(double p) const {
    if (p == 1.0) return codes.back();
    const auto reached = std::lower_bound(cdf.begin(), cdf.end(), p) - cdf.begin();
    return codes[std::min(static_cast<std::size_t>(reached), codes.size() - 1)];
  }
};

}  // namespace

bool IsValid(std::span<const double> classes) {
  return Law{classes}.IsValid();
}

double Density(double x, std::span<const double> classes) {
  return ProbabilityAt(Law{classes}, &Law::Density, x);
}

double LogDensity(double x, std::span<const double> classes) {
  return ProbabilityAt(Law{classes}, &Law::LogDensity, x);
}

double Cdf(double x, std::span<const double> classes) {
  return ProbabilityAt(Law{classes}, &Law::Cdf, x);
}

double Complement(double x, std::span<const double> classes) {
  return ProbabilityAt(Law{classes}, &Law::Complement, x);
}

double Quantile(double p, std::span<const double> classes) {
  return QuantileAt(Law{classes}, &Law::Quantile, p);
}

double ComplementQuantile(double q, std::span<const double> classes) {
  return QuantileAt(Law{classes}, &Law::ComplementQuantile, q);
}

void Cdf(std::span<const double> x, std::span<const double> classes, std::span<double> out) {
  if (!IsValid(classes)) return FillInvalid(x.size(), kInvalidProbability, out);
  const Prepared prepared(Law{classes});
  ProbabilitiesAt(true, x, out, [&](double at) { return prepared.Cdf(at); });
}

void Quantile(std::span<const double> p, std::span<const double> classes, std::span<double> out) {
  if (!IsValid(classes)) return FillInvalid(p.size(), kInvalidQuantile, out);
  const Prepared prepared(Law{classes});
  QuantilesAt(true, p, out, [&](double at) { return prepared.Quantile(at); });
}

}  // namespace brenvolt::histogram
