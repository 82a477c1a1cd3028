#include "host/numeric/censored/censored_likelihood.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "host/numeric/censored/standard_logarithms.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/special/log_one_plus.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A value as a standard one; infinite outside of the support.
struct Reduced {
  SecondOrder w;
  SecondOrder logSlope;  // ln |dw/dx|

  static Reduced At(double infinity) { return {{infinity, {}, {}}, {}}; }
};

// What becomes of x by each form: `Standard` is the distribution of w, which falls where x rises if kFalls. Where
// kIsFolded, x counts for both signs of w, and only those that are not negative occur.

// w = (x - location) / scale, or that of logarithms.
template <bool logarithmic>
struct NormalReduction {
  using Standard = StandardNormalLogarithms;
  static constexpr bool kFalls = false;
  static constexpr bool kIsFolded = false;
  double location;
  double scale;
  double offset;

  NormalReduction(std::span<const double> values, double offsetOfAll)
      : location(values[0]), scale(values[1]), offset(offsetOfAll) {}

  Reduced operator()(double x) const {
    if (logarithmic && !(x > offset)) return Reduced::At(-kInfinity);
    const double y = logarithmic ? std::log(x - offset) : x;
    const double w = (y - location) / scale;
    const double slope = 1 / scale;
    return {{w, {-slope, -w}, {{{0, slope}, {slope, w}}}},
            {-std::log(scale) - (logarithmic ? y : 0.0), {0, -1}, {}}};
  }
};

// w = (x - offset) / scale.
struct MagnitudeReduction {
  using Standard = StandardNormalLogarithms;
  static constexpr bool kFalls = false;
  static constexpr bool kIsFolded = true;
  double scale;
  double offset;

  MagnitudeReduction(std::span<const double> values, double offsetOfAll)
      : scale(values[0]), offset(offsetOfAll) {}

  Reduced operator()(double x) const {
    if (x < offset) return Reduced::At(-kInfinity);
    const double w = (x - offset) / scale;
    return {{w, {-w}, {{{w}}}}, {-std::log(scale), {-1}, {}}};
  }
};

// The cumulative hazard, exp(-w), is ((x - offset) / scale) ^ shape.
struct PowerHazardReduction {
  using Standard = StandardExtremeLogarithms;
  static constexpr bool kFalls = true;
  static constexpr bool kIsFolded = false;
  double logScale;
  double shape;
  double offset;

  PowerHazardReduction(std::span<const double> values, double offsetOfAll)
      : logScale(std::log(values[0])), shape(values[1]), offset(offsetOfAll) {}

  Reduced operator()(double x) const {
    if (!(x > offset)) return Reduced::At(kInfinity);
    const double y = std::log(x - offset);
    const double w = -shape * (y - logScale);
    return {{w, {shape, w}, {{{0, shape}, {shape, w}}}}, {std::log(shape) - y, {0, 1}, {}}};
  }
};

// The cumulative hazard, exp(-w), is ((x - offset) / scale) ^ 2 / 2.
struct SquareHazardReduction {
  using Standard = StandardExtremeLogarithms;
  static constexpr bool kFalls = true;
  static constexpr bool kIsFolded = false;
  double logScale;
  double offset;

  SquareHazardReduction(std::span<const double> values, double offsetOfAll)
      : logScale(std::log(values[0])), offset(offsetOfAll) {}

  Reduced operator()(double x) const {
    if (!(x > offset)) return Reduced::At(kInfinity);
    const double y = std::log(x - offset);
    return {{-2 * (y - logScale) + std::numbers::ln2, {2}, {}}, {std::numbers::ln2 - y, {}, {}}};
  }
};

// w = ln(1 + shape z) / shape with z = (x - location) / scale.
struct ExtremeReduction {
  using Standard = StandardExtremeLogarithms;
  static constexpr bool kFalls = false;
  static constexpr bool kIsFolded = false;
  double location;
  double scale;
  double shape;

  ExtremeReduction(std::span<const double> values, double /*offset*/)
      : location(values[0]), scale(values[1]), shape(values[2]) {}

  Reduced operator()(double x) const {
    const double z = (x - location) / scale;
    if (!(1 + shape * z > 0)) return Reduced::At(shape > 0 ? -kInfinity : kInfinity);
    const LogOnePlus of = DifferentiateLogOnePlus(z, shape);
    const double slope = 1 / scale;
    Reduced found;
    SecondOrder& w = found.w;
    w.value = of.value;
    w.first = {-of.byZ * slope, -of.byZ * z, of.byK};
    w.second[0] = {of.byZZ * slope * slope, (of.byZZ * z + of.byZ) * slope, -of.byZK * slope};
    w.second[1] = {w.second[0][1], (of.byZZ * z + of.byZ) * z, -of.byZK * z};
    w.second[2] = {w.second[0][2], w.second[1][2], of.byKK};
    found.logSlope = LogSlope(w);
    return found;
  }

 private:
  // -ln scale - shape w.
  SecondOrder LogSlope(const SecondOrder& w) const {
    constexpr std::size_t kScale = 1;
    constexpr std::size_t kShape = 2;
    SecondOrder found = Compose({-shape * w.value, -shape, 0}, w);
    found.value -= std::log(scale);
    found.first[kScale] -= 1;
    found.first[kShape] -= w.value;
    for (std::size_t i = 0; i < kMostCoordinates; ++i) {
      found.second[i][kShape] -= w.first[i];
      found.second[kShape][i] -= w.first[i];
    }
    return found;
  }
};

template <class Reduction>
class Likelihood {
 public:
  using Standard = typename Reduction::Standard;

  Likelihood(const Reduction& reduction, double offset) : reduction_(reduction), offset_(offset) {}

  SecondOrder Of(const CensoredSample& sample) {
    for (const double x : sample.exact) AddExact(x);
    for (const double x : sample.right) AddAbove(x);
    for (const double x : sample.left) AddBelow(x);
    for (std::size_t i = 0; i < sample.from.size(); ++i) AddBetween(sample.from[i], sample.to[i]);
    if (!std::isfinite(sum_.value)) sum_.value = -kInfinity;
    return sum_;
  }

 private:
  // Whether x lies below or above all that can occur.
  static bool IsBefore(const Reduced& at) {
    return at.w.value == (Reduction::kFalls ? kInfinity : -kInfinity);
  }
  static bool IsBehind(const Reduced& at) {
    return at.w.value == (Reduction::kFalls ? -kInfinity : kInfinity);
  }

  void Add(const SecondOrder& term) {
    sum_ += term;
    if (Reduction::kIsFolded) sum_.value += std::numbers::ln2;
  }
  void AddImpossible() { sum_.value = -kInfinity; }

  void AddExact(double x) {
    const Reduced at = reduction_(x);
    if (IsBefore(at) || IsBehind(at)) return AddImpossible();
    SecondOrder term = Compose(Standard::Density(at.w.value), at.w);
    term += at.logSlope;
    Add(term);
  }

  void AddAbove(double x) {
    const Reduced at = reduction_(x);
    if (IsBefore(at)) return;
    if (IsBehind(at)) return AddImpossible();
    Add(Compose(Reduction::kFalls ? Standard::Below(at.w.value) : Standard::Above(at.w.value), at.w));
  }

  void AddBelow(double x) {
    if (Reduction::kIsFolded) return AddBetween(offset_, x);
    const Reduced at = reduction_(x);
    if (IsBehind(at)) return;
    if (IsBefore(at)) return AddImpossible();
    Add(Compose(Reduction::kFalls ? Standard::Above(at.w.value) : Standard::Below(at.w.value), at.w));
  }

  void AddBetween(double from, double to) {
    const Reduced low = reduction_(from);
    if (IsBefore(low)) return AddBelow(to);
    if (IsBehind(low)) return AddImpossible();
    const Reduced high = reduction_(to);
    if (IsBehind(high)) return AddAbove(from);
    const SecondOrder& a = Reduction::kFalls ? high.w : low.w;
    const SecondOrder& b = Reduction::kFalls ? low.w : high.w;
    const SecondOrder width = b - a;
    Add(Compose(Standard::Between(a.value, width.value), a, width));
  }

  const Reduction& reduction_;
  double offset_;
  SecondOrder sum_;
};

template <class Reduction>
SecondOrder LikelihoodBy(std::span<const double> values, const CensoredSample& sample, double offset) {
  const Reduction reduction(values, offset);
  return Likelihood<Reduction>(reduction, offset).Of(sample);
}

}  // namespace

SecondOrder CensoredLogLikelihood(DistributionCode code, std::span<const double> values,
                                  const CensoredSample& sample, double offset) {
  switch (EntryOf(code).facts.censored) {
    case CensoredForm::kNormal:
      return LikelihoodBy<NormalReduction<false>>(values, sample, offset);
    case CensoredForm::kNormalOfLogarithm:
      return LikelihoodBy<NormalReduction<true>>(values, sample, offset);
    case CensoredForm::kNormalMagnitude:
      return LikelihoodBy<MagnitudeReduction>(values, sample, offset);
    case CensoredForm::kSquareHazard:
      return LikelihoodBy<SquareHazardReduction>(values, sample, offset);
    case CensoredForm::kPowerHazard:
      return LikelihoodBy<PowerHazardReduction>(values, sample, offset);
    case CensoredForm::kExtremeValue:
      return LikelihoodBy<ExtremeReduction>(values, sample, offset);
    case CensoredForm::kNone:
      break;
  }
  return {-kInfinity, {}, {}};
}

}  // namespace brenvolt
