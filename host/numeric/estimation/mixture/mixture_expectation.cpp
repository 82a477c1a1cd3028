// Compiled once per instruction set, like vector_forms.cpp.
#include "host/numeric/estimation/mixture/mixture_expectation.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/estimation/mixture/mixture_expectation.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "host/numeric/vector/partial_sums-inl.h"
#include "host/numeric/vector/vector_formulas-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

constexpr std::size_t kStride = MixtureExpectation::kBlock;

// The density of a component as 2^(constant + factor (x - mean)^2).
struct Density {
  double mean;
  double constant;
  double factor;

  explicit Density(const MixtureComponent& c)
      : mean(c.mean),
        constant((std::log(c.proportion / c.deviation) - kLogSqrtTwoPi) * std::numbers::log2e),
        factor(-0.5 * std::numbers::log2e / c.deviation / c.deviation) {}

  HWY_INLINE Vector LogTwoAt(Tag d, Vector x) const {
    const Vector distance = hn::Sub(x, hn::Set(d, mean));
    return hn::Add(hn::Set(d, constant), hn::Mul(hn::Set(d, factor), hn::Mul(distance, distance)));
  }
};

// 2^x for x held to [-1022, 1023]: the Chebyshev interpolant of degree 10 on [-1/2, 1/2], relative error
// 5e-16.
HWY_INLINE Vector ClampedExpTwo(Tag d, Vector x) {
  static constexpr double kSeries[] = {7.072585949269223e-09,
                                       1.0208690299958306e-07,
                                       1.321544258792169e-06,
                                       1.5252657260200837e-05,
                                       0.0001540353044173605,
                                       0.0013333558230164974,
                                       0.009618129107606888,
                                       0.05550410866444772,
                                       0.24022650695910097,
                                       0.69314718055995,
                                       1.0};
  const Vector within = hn::Max(hn::Min(x, hn::Set(d, 1023.0)), hn::Set(d, -1022.0));
  const Vector whole = RoundToWhole(d, within);
  return hn::Mul(TwofoldHorner(d, kSeries, hn::Sub(within, whole)), PowerOfTwo(d, whole));
}

constexpr std::size_t kPowers = 5;       // of the standardised values, from 0
constexpr std::size_t kCoordinates = 3;  // of a component

// A total density below it has lost digits, or all, to the smallest doubles.
constexpr double kLeastTotal = 1e-200;

// One block of values, `count` of them and padding up to whole steps.
class Block {
 public:
  Block(const double* x, std::size_t count, double* densities)
      : x_(x), count_(count), densities_(densities) {}

  // Fills the densities and the reciprocals of their totals and returns the log-likelihood.
  double Evaluate(std::span<const MixtureComponent> mixture, double* inverse) {
    const Tag d;
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const Density density(mixture[c]);
      double* row = densities_ + c * kStride;
      for (std::size_t i = 0; i < Padded(); i += lanes) {
        const Vector value = ClampedExpTwo(d, density.LogTwoAt(d, hn::LoadU(d, x_ + i)));
        hn::StoreU(value, d, row + i);
        hn::StoreU(c == 0 ? value : hn::Add(hn::LoadU(d, inverse + i), value), d, inverse + i);
      }
    }
    Vector sums[kMostVectors];
    std::fill_n(sums, kMostVectors, hn::Zero(d));
    for (std::size_t i = 0; i < Padded(); i += kPartialSums) {
      for (std::size_t j = 0; j < kPartialSums / lanes; ++j) {
        sums[j] = hn::Add(sums[j], LogTotal(d, mixture, i + j * lanes, inverse));
      }
    }
    return Total(sums);
  }

  void AddSums(const MixtureComponent& component, std::size_t c, const double* inverse,
               ResponsibilitySums& sums) const {
    const Tag d;
    const std::size_t lanes = hn::Lanes(d);
    const double* row = densities_ + c * kStride;
    const Vector mean = hn::Set(d, component.mean);
    Vector weights[kMostVectors];
    Vector firsts[kMostVectors];
    Vector seconds[kMostVectors];
    std::fill_n(weights, kMostVectors, hn::Zero(d));
    std::fill_n(firsts, kMostVectors, hn::Zero(d));
    std::fill_n(seconds, kMostVectors, hn::Zero(d));
    for (std::size_t i = 0; i < Padded(); i += kPartialSums) {
      for (std::size_t j = 0; j < kPartialSums / lanes; ++j) {
        const std::size_t at = i + j * lanes;
        const Vector weight = hn::Mul(hn::LoadU(d, row + at), hn::LoadU(d, inverse + at));
        const Vector distance = hn::Sub(hn::LoadU(d, x_ + at), mean);
        const Vector first = hn::Mul(weight, distance);
        weights[j] = hn::Add(weights[j], weight);
        firsts[j] = hn::Add(firsts[j], first);
        seconds[j] = hn::Add(seconds[j], hn::Mul(first, distance));
      }
    }
    sums.weight += Total(weights);
    sums.first += Total(firsts);
    sums.second += Total(seconds);
  }

  // Adds the sums over the block of each component's responsibility r times powers of z = (x - mean) / deviation,
  // r, r z, … r z^4, and writes the slopes of the values' log-likelihoods by its coordinates, r, r z and r (z^2 - 1).
  void AddPowers(const MixtureComponent& component, std::size_t c, const double* inverse, double* slopes,
                 double* powers) const {
    const Tag d;
    const std::size_t lanes = hn::Lanes(d);
    const double* row = densities_ + c * kStride;
    const Vector mean = hn::Set(d, component.mean);
    const Vector scale = hn::Set(d, 1.0 / component.deviation);
    Vector sums[kPowers][kMostVectors];
    for (auto& sum : sums) std::fill_n(sum, kPartialSums / lanes, hn::Zero(d));
    for (std::size_t i = 0; i < Padded(); i += kPartialSums) {
      for (std::size_t j = 0; j < kPartialSums / lanes; ++j) {
        const std::size_t at = i + j * lanes;
        const Vector z = hn::Mul(hn::Sub(hn::LoadU(d, x_ + at), mean), scale);
        Vector power = hn::Mul(hn::LoadU(d, row + at), hn::LoadU(d, inverse + at));
        Vector terms[kPowers];
        for (std::size_t k = 0; k < kPowers; ++k, power = hn::Mul(power, z)) {
          terms[k] = power;
          sums[k][j] = hn::Add(sums[k][j], power);
        }
        hn::StoreU(terms[0], d, slopes + at);
        hn::StoreU(terms[1], d, slopes + kStride + at);
        hn::StoreU(hn::Sub(terms[2], terms[0]), d, slopes + 2 * kStride + at);
      }
    }
    for (std::size_t k = 0; k < kPowers; ++k) powers[k] += Total(sums[k]);
  }

  // The sum over the block of the products of two slopes.
  double Product(const double* a, const double* b) const {
    const Tag d;
    const std::size_t lanes = hn::Lanes(d);
    Vector sums[kMostVectors];
    std::fill_n(sums, kPartialSums / lanes, hn::Zero(d));
    for (std::size_t i = 0; i < Padded(); i += kPartialSums) {
      for (std::size_t j = 0; j < kPartialSums / lanes; ++j) {
        const std::size_t at = i + j * lanes;
        sums[j] = hn::Add(sums[j], hn::Mul(hn::LoadU(d, a + at), hn::LoadU(d, b + at)));
      }
    }
    return Total(sums);
  }

 private:
  std::size_t Padded() const { return (count_ + kPartialSums - 1) / kPartialSums * kPartialSums; }

  // The logarithms of one vector of totals, which their reciprocals replace; 0 for the padding.
  HWY_INLINE Vector LogTotal(Tag d, std::span<const MixtureComponent> mixture, std::size_t i,
                             double* inverse) {
    Vector total = hn::LoadU(d, inverse + i);
    Vector unit = hn::Zero(d);
    if (HWY_UNLIKELY(!hn::AllTrue(d, hn::Ge(total, hn::Set(d, kLeastTotal))))) {
      unit = Rescale(d, mixture, i, total);
    }
    Vector log = hn::Add(unit, LogOfPositive<!kMayBeSubnormal>(d, total));
    Vector reciprocal = hn::Div(hn::Set(d, 1.0), total);
    if (HWY_UNLIKELY(i + hn::Lanes(d) > count_)) {
      const auto isWithin = hn::FirstN(d, i < count_ ? count_ - i : 0);
      log = hn::IfThenElseZero(isWithin, log);
      reciprocal = hn::IfThenElseZero(isWithin, reciprocal);
    }
    hn::StoreU(reciprocal, d, inverse + i);
    return log;
  }

  // If the total is too small, the densities and their total in units of the greatest one; returns the
  // logarithm of the unit.
  HWY_NOINLINE Vector Rescale(Tag d, std::span<const MixtureComponent> mixture, std::size_t i,
                              Vector& total) {
    const auto isLost = hn::Not(hn::Ge(total, hn::Set(d, kLeastTotal)));
    const Vector x = hn::LoadU(d, x_ + i);
    Vector greatest = hn::Set(d, -kVectorInfinity);
    for (const MixtureComponent& component : mixture) {
      const Vector log = Density(component).LogTwoAt(d, x);
      greatest = hn::IfThenElse(hn::Gt(log, greatest), log, greatest);
    }
    Vector rescaled = hn::Zero(d);
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      double* to = densities_ + c * kStride + i;
      const Vector value = ClampedExpTwo(d, hn::Sub(Density(mixture[c]).LogTwoAt(d, x), greatest));
      rescaled = hn::Add(rescaled, value);
      hn::StoreU(hn::IfThenElse(isLost, value, hn::LoadU(d, to)), d, to);
    }
    total = hn::IfThenElse(isLost, rescaled, total);
    return hn::IfThenElseZero(isLost, hn::Mul(greatest, hn::Set(d, std::numbers::ln2)));
  }

  const double* x_;
  std::size_t count_;
  double* densities_;
};

// take(block, inverse) is given each block with its densities and the reciprocals of their totals. Returns the
// log-likelihood.
template <class Take>
double ForBlocks(std::span<const double> values, std::span<const MixtureComponent> mixture, double* densities,
                 const Take& take) {
  HWY_ALIGN double padded[kStride];
  HWY_ALIGN double inverse[kStride];
  double logLikelihood = 0.0;
  for (std::size_t begin = 0; begin < values.size(); begin += kStride) {
    const std::span<const double> x = values.subspan(begin, std::min(kStride, values.size() - begin));
    const double* from = x.data();
    if (x.size() % kPartialSums != 0) {
      std::fill_n(padded, kStride, x.front());
      std::copy(x.begin(), x.end(), padded);
      from = padded;
    }
    Block block(from, x.size(), densities);
    logLikelihood += block.Evaluate(mixture, inverse);
    take(block, inverse);
  }
  return logLikelihood;
}

}  // namespace

double Expectation(std::span<const double> values, std::span<const MixtureComponent> mixture,
                   std::span<ResponsibilitySums> sums, double* densities) {
  return ForBlocks(values, mixture, densities, [&](const Block& block, const double* inverse) {
    for (std::size_t c = 0; c < mixture.size(); ++c) block.AddSums(mixture[c], c, inverse, sums[c]);
  });
}

// `powers` become the sums of AddPowers, `products` those of the slopes' products, on and below the diagonal.
double Derivatives(std::span<const double> values, std::span<const MixtureComponent> mixture,
                   double* densities, double* slopes, double* powers, double* products) {
  const std::size_t n = kCoordinates * mixture.size();
  return ForBlocks(values, mixture, densities, [&](const Block& block, const double* inverse) {
    for (std::size_t c = 0; c < mixture.size(); ++c)
      block.AddPowers(mixture[c], c, inverse, slopes + kCoordinates * c * kStride, powers + kPowers * c);
    for (std::size_t a = 0; a < n; ++a) {
      for (std::size_t b = 0; b <= a; ++b)
        products[a * n + b] += block.Product(slopes + a * kStride, slopes + b * kStride);
    }
  });
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {

HWY_EXPORT(Expectation);
HWY_EXPORT(Derivatives);

namespace {

bool IsRegular(std::span<const MixtureComponent> mixture) {
  return std::all_of(mixture.begin(), mixture.end(), [](const MixtureComponent& c) {
    return c.proportion > 0.0 && c.deviation > 0.0 && std::isfinite(c.proportion / c.deviation) &&
           std::isfinite(c.mean) && std::isfinite(1.0 / c.deviation / c.deviation);
  });
}

}  // namespace

double MixtureExpectation::Run(std::span<const double> values, std::span<const MixtureComponent> mixture,
                               std::span<ResponsibilitySums> sums) {
  std::fill(sums.begin(), sums.end(), ResponsibilitySums{});
  if (!IsRegular(mixture)) return std::numeric_limits<double>::quiet_NaN();
  return HWY_DYNAMIC_DISPATCH(Expectation)(values, mixture, sums, densities_.data());
}

// A component's log density ln(proportion) - ln(deviation) - z^2 / 2 has the slopes 1, z and z^2 - 1 by its
// coordinates; the expectation of their products and of the second derivatives makes its block of the second derivatives,
// from which the products of the values' own slopes are taken.
MixtureDerivatives MixtureExpectation::Differentiate(std::span<const double> values,
                                                     std::span<const MixtureComponent> mixture) {
  constexpr std::size_t kPowers = 5;
  const std::size_t n = 3 * mixture.size();
  MixtureDerivatives derivatives{std::numeric_limits<double>::quiet_NaN(), std::vector<double>(n),
                                 std::vector<double>(n * n)};
  if (!IsRegular(mixture)) return derivatives;
  slopes_.resize(n * kBlock);
  std::vector<double> powers(kPowers * mixture.size());
  std::vector<double>& information = derivatives.information;
  derivatives.logLikelihood = HWY_DYNAMIC_DISPATCH(Derivatives)(
      values, mixture, densities_.data(), slopes_.data(), powers.data(), information.data());
  const auto count = static_cast<double>(values.size());
  for (std::size_t c = 0; c < mixture.size(); ++c) {
    const double* m = powers.data() + kPowers * c;
    const double own[] = {m[0],
                          m[1],
                          m[2] - m[0],
                          m[1],
                          m[2] - m[0],
                          m[3] - 3.0 * m[1],
                          m[2] - m[0],
                          m[3] - 3.0 * m[1],
                          m[4] - 4.0 * m[2] + m[0]};
    for (std::size_t a = 0; a < 3; ++a) {
      derivatives.gradient[3 * c + a] = own[a];
      for (std::size_t b = 0; b <= a; ++b) information[(3 * c + a) * n + 3 * c + b] -= own[3 * a + b];
    }
    // Of the total of the proportions.
    const double share = mixture[c].proportion;
    derivatives.gradient[3 * c] -= count * share;
    information[3 * c * n + 3 * c] += count * share;
    for (std::size_t b = 0; b <= c; ++b)
      information[3 * c * n + 3 * b] -= count * share * mixture[b].proportion;
  }
  for (std::size_t a = 0; a < n; ++a)
    for (std::size_t b = 0; b < a; ++b) information[b * n + a] = information[a * n + b];
  return derivatives;
}

}  // namespace brenvolt
#endif
