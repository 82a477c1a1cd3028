// Sums over arrays that have the same bits on every instruction set: eight partial ones, over the values i with the same
// i % 8, whatever the vectors' length. Included once per instruction set.
#if defined(HOST_NUMERIC_VECTOR_PARTIAL_SUMS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef HOST_NUMERIC_VECTOR_PARTIAL_SUMS_INL_H_
#undef HOST_NUMERIC_VECTOR_PARTIAL_SUMS_INL_H_
#else
#define HOST_NUMERIC_VECTOR_PARTIAL_SUMS_INL_H_
#endif

#include <cstddef>

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace brenvolt {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kPartialSums = 8;
using Tag = hn::CappedTag<double, kPartialSums>;
using Vector = hn::Vec<Tag>;
constexpr std::size_t kMostVectors =
    kPartialSums;  // per step of kPartialSums values, where a vector has one lane

double Total(const Vector* partial) {
  const Tag d;
  double s[kPartialSums];
  for (std::size_t i = 0; i < kPartialSums; i += hn::Lanes(d))
    hn::StoreU(partial[i / hn::Lanes(d)], d, s + i);
  return ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace brenvolt
HWY_AFTER_NAMESPACE();

#endif
