// The distribution function and the quantile over arrays, of a distribution that has them in stages: entries for the
// dispatch to the machine's instruction set. Included once per set, after the distribution has defined, in the unnamed
// namespace of HWY_NAMESPACE,
//
// - Cdf(run, parameters...) and Quantile(run, parameters...), which hand their stages to a run (vector_loops-inl.h);
// - kParameters, the number of these parameters;
// - QuantileRun, the run of quantiles over an array.
//
// Then HWY_DYNAMIC_DISPATCH(CdfOverArray)(x, {parameters...}, out), and QuantileOverArray in the same way.
#if defined(HOST_NUMERIC_DISTRIBUTIONS_ARRAY_FORMS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef HOST_NUMERIC_DISTRIBUTIONS_ARRAY_FORMS_INL_H_
#undef HOST_NUMERIC_DISTRIBUTIONS_ARRAY_FORMS_INL_H_
#else
#define HOST_NUMERIC_DISTRIBUTIONS_ARRAY_FORMS_INL_H_
#endif

#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "host/numeric/vector/vector_loops-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

using Parameters = std::array<double, kParameters>;

template <std::size_t... I>
void RunCdf(const ArrayRun& run, const Parameters& parameters, std::index_sequence<I...> /*places*/) {
  Cdf(run, parameters[I]...);
}

template <std::size_t... I>
void RunQuantile(const QuantileRun& run, const Parameters& parameters, std::index_sequence<I...> /*places*/) {
  Quantile(run, parameters[I]...);
}

void CdfOverArray(std::span<const double> x, const Parameters& parameters, std::span<double> out) {
  RunCdf(ArrayRun{x, out}, parameters, std::make_index_sequence<kParameters>());
}

void QuantileOverArray(std::span<const double> p, const Parameters& parameters, std::span<double> out) {
  RunQuantile(QuantileRun{p, out}, parameters, std::make_index_sequence<kParameters>());
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt {
namespace {

HWY_EXPORT(CdfOverArray);
HWY_EXPORT(QuantileOverArray);

}  // namespace
}  // namespace brenvolt
#endif

#endif
