// Compiled once per instruction set, like vector_forms.cpp.
#include "host/numeric/estimation/likelihood_sums.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/estimation/likelihood_sums.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h:
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/vector/partial_sums-inl.h"
#include "host/numeric/vector/vector_formulas-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

// Sums over a block, kCount at a time. Terms(x, out) gives those of a vector of values; of the last step those beyond the
// values do not count.
template <std::size_t kCount, class Terms>
HWY_INLINE std::array<double, kCount> SumBlock(std::span<const double> values, const Terms& terms) {
  const Tag d;
  const std::size_t lanes = hn::Lanes(d);
  Vector sums[kCount][kMostVectors];
  for (auto& sum : sums) std::fill_n(sum, kPartialSums / lanes, hn::Zero(d));
  Vector out[kCount];
  const std::size_t whole = values.size() / kPartialSums * kPartialSums;
  for (std::size_t i = 0; i < whole; i += kPartialSums) {
    for (std::size_t j = 0; j < kPartialSums / lanes; ++j) {
      terms(hn::LoadU(d, values.data() + i + j * lanes), out);
      for (std::size_t c = 0; c < kCount; ++c) sums[c][j] = hn::Add(sums[c][j], out[c]);
    }
  }
  if (whole < values.size()) {
    double rest[kPartialSums];
    std::fill_n(rest, kPartialSums, values[whole]);
    std::copy(values.begin() + static_cast<std::ptrdiff_t>(whole), values.end(), rest);
    for (std::size_t j = 0; j < kPartialSums / lanes; ++j) {
      const std::size_t before = whole + j * lanes;
      if (before >= values.size()) break;
      const auto isValue = hn::FirstN(d, std::min(lanes, values.size() - before));
      terms(hn::LoadU(d, rest + j * lanes), out);
      for (std::size_t c = 0; c < kCount; ++c)
        sums[c][j] = hn::Add(sums[c][j], hn::IfThenElseZero(isValue, out[c]));
    }
  }
  std::array<double, kCount> totals;
  for (std::size_t c = 0; c < kCount; ++c) totals[c] = Total(sums[c]);
  return totals;
}

// ln(1 + u) / u and its first two derivatives by u; for |u| < kSeriesReach from the power series, which the quotients would
// lose digits to. The terms left out are below 2^-53 of the sum.
constexpr double kSeriesReach = 0.03;
constexpr double kSeries[] = {1.0 / 13, -1.0 / 12, 1.0 / 11, -1.0 / 10, 1.0 / 9,  -1.0 / 8, 1.0 / 7,
                              -1.0 / 6, 1.0 / 5,   -1.0 / 4, 1.0 / 3,   -1.0 / 2, 1.0};
constexpr double kFirstSeries[] = {12.0 / 13, -11.0 / 12, 10.0 / 11, -9.0 / 10, 8.0 / 9, -7.0 / 8,
                                   6.0 / 7,   -5.0 / 6,   4.0 / 5,   -3.0 / 4,  2.0 / 3, -1.0 / 2};
constexpr double kSecondSeries[] = {132.0 / 13, -110.0 / 12, 90.0 / 11, -72.0 / 10, 56.0 / 9, -42.0 / 8,
                                    30.0 / 7,   -20.0 / 6,   12.0 / 5,  -6.0 / 4,   2.0 / 3};

// w(z, k) and the derivatives by k.
struct TailTerms {
  Vector inverse;  // 1 / (1 + k z)
  Vector value;
  Vector byK;
  Vector byKK;
};

// 1 / k may be infinite: where k is 0 the series alone counts.
template <bool kSecond>
HWY_INLINE TailTerms TermsAt(Tag d, Vector z, Vector k, Vector inverseK) {
  const Vector one = hn::Set(d, 1.0);
  const Vector u = hn::Mul(k, z);
  TailTerms terms;
  terms.inverse = hn::Div(one, hn::Add(one, u));
  terms.byKK = hn::Zero(d);
  const auto isNear = hn::Lt(hn::Abs(u), hn::Set(d, kSeriesReach));
  const bool anyNear = !hn::AllFalse(d, isNear);
  const Vector zz = hn::Mul(z, z);
  if (anyNear) {
    terms.value = hn::Mul(z, TwofoldHorner(d, kSeries, u));
    terms.byK = hn::Mul(zz, TwofoldHorner(d, kFirstSeries, u));
    if constexpr (kSecond) terms.byKK = hn::Mul(hn::Mul(zz, z), TwofoldHorner(d, kSecondSeries, u));
    if (hn::AllTrue(d, isNear)) return terms;
  }
  const Vector value = hn::Mul(Log1p(d, u), inverseK);
  const Vector zByBase = hn::Mul(z, terms.inverse);
  const Vector byK = hn::Mul(hn::Sub(zByBase, value), inverseK);
  Vector byKK = terms.byKK;
  if constexpr (kSecond)
    byKK = hn::Neg(hn::Mul(hn::Add(hn::Mul(zByBase, zByBase), hn::Add(byK, byK)), inverseK));
  terms.value = anyNear ? hn::IfThenElse(isNear, terms.value, value) : value;
  terms.byK = anyNear ? hn::IfThenElse(isNear, terms.byK, byK) : byK;
  terms.byKK = anyNear ? hn::IfThenElse(isNear, terms.byKK, byKK) : byKK;
  return terms;
}

}  // namespace

ExtremeValueSums ExtremeValue(std::span<const double> values, double location, double inverseScale,
                              double shape) {
  const Tag d;
  const Vector k = hn::Set(d, shape);
  const Vector inverseK = hn::Set(d, 1.0 / shape);
  const Vector onePlusShape = hn::Set(d, 1.0 + shape);
  const auto terms = [&](Vector x, Vector* out) {
    const Vector z = hn::Mul(hn::Sub(x, hn::Set(d, location)), hn::Set(d, inverseScale));
    const TailTerms w = TermsAt<true>(d, z, k, inverseK);
    const Vector t = Exp(d, hn::Neg(w.value));
    // Of the log density by w, by z and the shape, at fixed scale; -t is its second derivative by w.
    const Vector byW = hn::Sub(t, onePlusShape);
    const Vector byZ = hn::Mul(byW, w.inverse);
    const Vector tByZ = hn::Mul(t, w.inverse);
    const Vector byZZ = hn::Neg(hn::Mul(w.inverse, hn::Add(hn::Mul(k, byZ), tByZ)));
    const Vector byZK =
        hn::Neg(hn::Mul(w.inverse, hn::Add(hn::Add(hn::Mul(z, byZ), hn::Mul(t, w.byK)), hn::Set(d, 1.0))));
    const Vector zByZ = hn::Mul(z, byZ);
    const Vector byZOfSlope = hn::Add(hn::Mul(z, byZZ), byZ);
    out[0] = hn::Neg(hn::Add(hn::Mul(onePlusShape, w.value), t));
    out[1] = hn::Neg(byZ);
    out[2] = hn::Neg(zByZ);
    out[3] = hn::Sub(hn::Mul(byW, w.byK), w.value);
    out[4] = byZZ;
    out[5] = byZOfSlope;
    out[6] = hn::Mul(z, byZOfSlope);
    out[7] = hn::Neg(byZK);
    out[8] = hn::Neg(hn::Mul(z, byZK));
    out[9] = hn::Sub(hn::Sub(hn::Mul(byW, w.byKK), hn::Mul(t, hn::Mul(w.byK, w.byK))), hn::Add(w.byK, w.byK));
  };
  constexpr std::size_t kSums = 10;
  std::array<double, kSums> totals{};
  estimation::CompensatedSum value;
  for (std::size_t begin = 0; begin < values.size(); begin += estimation::kBlock) {
    const auto block = values.subspan(begin, std::min(estimation::kBlock, values.size() - begin));
    const std::array<double, kSums> sum = SumBlock<kSums>(block, terms);
    value.Add(sum[0]);
    for (std::size_t c = 1; c < kSums; ++c) totals[c] += sum[c];
  }
  const auto& [first, l, s, byShape, ll, ls, ss, lk, sk, kk] = totals;
  return {value.Value(), l, s, byShape, ll, ls, ss, lk, sk, kk};
}

ParetoSums Pareto(std::span<const double> excesses, double ratio) {
  const Tag d;
  const Vector r = hn::Set(d, ratio);
  const Vector inverseRatio = hn::Set(d, 1.0 / ratio);
  estimation::CompensatedSum w;
  estimation::CompensatedSum byRatio;
  estimation::CompensatedSum shape;
  const auto terms = [&](Vector y, Vector* out) {
    const TailTerms term = TermsAt<false>(d, y, r, inverseRatio);
    out[0] = term.value;
    out[1] = term.byK;
    out[2] = hn::Mul(y, term.inverse);
  };
  for (std::size_t begin = 0; begin < excesses.size(); begin += estimation::kBlock) {
    const auto sum =
        SumBlock<3>(excesses.subspan(begin, std::min(estimation::kBlock, excesses.size() - begin)), terms);
    w.Add(sum[0]);
    byRatio.Add(sum[1]);
    shape.Add(sum[2]);
  }
  return {w.Value(), byRatio.Value(), shape.Value()};
}

double Folded(std::span<const double> values, double slope) {
  const Tag d;
  const auto terms = [&](Vector x, Vector* out) {
    const Vector divisor = hn::Add(Exp(d, hn::Mul(hn::Set(d, slope), x)), hn::Set(d, 1.0));
    out[0] = hn::Div(hn::Add(x, x), divisor);
  };
  estimation::CompensatedSum sum;
  for (std::size_t begin = 0; begin < values.size(); begin += estimation::kBlock)
    sum.Add(
        SumBlock<1>(values.subspan(begin, std::min(estimation::kBlock, values.size() - begin)), terms)[0]);
  return sum.Value();
}

}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {

HWY_EXPORT(ExtremeValue);
HWY_EXPORT(Pareto);
HWY_EXPORT(Folded);

std::optional<ExtremeValueSums> SumExtremeValue(std::span<const double> sorted, double location,
                                                double inverseScale, double shape) {
  for (const double x : {sorted.front(), sorted.back()})
    if (!(1.0 + shape * ((x - location) * inverseScale) > 0.0)) return std::nullopt;
  return HWY_DYNAMIC_DISPATCH(ExtremeValue)(sorted, location, inverseScale, shape);
}

ParetoSums SumPareto(std::span<const double> excesses, double ratio) {
  return HWY_DYNAMIC_DISPATCH(Pareto)(excesses, ratio);
}

double SumFolded(std::span<const double> values, double slope) {
  return HWY_DYNAMIC_DISPATCH(Folded)(values, slope);
}

}  // namespace brenvolt
#endif
