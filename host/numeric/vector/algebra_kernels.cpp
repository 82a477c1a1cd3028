#include "host/numeric/vector/algebra_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "host/numeric/vector/algebra_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace brenvolt::kernels::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kLanes = 8;  // partial sums of a dot product, whatever the width of a register
const hn::CappedTag<double, kLanes> kTag;
HWY_INLINE std::size_t Width() {
  return hn::Lanes(kTag);
}

bool HasWideRegisters() {
  return HWY_MAX_BYTES >= 32;
}

HWY_INLINE double SumOfLanes(const double* sums) {
  return ((sums[0] + sums[4]) + (sums[2] + sums[6])) + ((sums[1] + sums[5]) + (sums[3] + sums[7]));
}

double Dot(const double* HWY_RESTRICT a, const double* HWY_RESTRICT b, std::size_t n) {
  alignas(64) double sums[kLanes] = {};
  const std::size_t whole = n - n % kLanes;
  // Each register column is a sum of its own; compilers keep the (at most four) of them in registers.
  for (std::size_t lane = 0; lane < kLanes; lane += 4 * Width()) {
    auto s0 = hn::Zero(kTag), s1 = s0, s2 = s0, s3 = s0;
    const std::size_t registers = HWY_MIN(std::size_t{4}, kLanes / Width());
    for (std::size_t i = lane; i < whole; i += kLanes) {
      s0 = hn::Add(s0, hn::Mul(hn::LoadU(kTag, a + i), hn::LoadU(kTag, b + i)));
      if (registers > 1) {
        const std::size_t j = i + Width();
        s1 = hn::Add(s1, hn::Mul(hn::LoadU(kTag, a + j), hn::LoadU(kTag, b + j)));
      }
      if (registers > 2) {
        const std::size_t j = i + 2 * Width();
        s2 = hn::Add(s2, hn::Mul(hn::LoadU(kTag, a + j), hn::LoadU(kTag, b + j)));
        s3 = hn::Add(s3, hn::Mul(hn::LoadU(kTag, a + j + Width()), hn::LoadU(kTag, b + j + Width())));
      }
    }
    hn::StoreU(s0, kTag, sums + lane);
    if (registers > 1) hn::StoreU(s1, kTag, sums + lane + Width());
    if (registers > 2) hn::StoreU(s2, kTag, sums + lane + 2 * Width());
    if (registers > 2) hn::StoreU(s3, kTag, sums + lane + 3 * Width());
  }
  for (std::size_t i = whole; i < n; ++i) sums[i - whole] += a[i] * b[i];
  return SumOfLanes(sums);
}

void AddMultiple(double factor, const double* HWY_RESTRICT x, double* HWY_RESTRICT y, std::size_t n) {
  const auto f = hn::Set(kTag, factor);
  std::size_t i = 0;
  for (; i + Width() <= n; i += Width())
    hn::StoreU(hn::Add(hn::LoadU(kTag, y + i), hn::Mul(f, hn::LoadU(kTag, x + i))), kTag, y + i);
  for (; i < n; ++i) y[i] += factor * x[i];
}

double UpdateAndMultiply(double* HWY_RESTRICT row, double v, double w, double x, const RankTwoStep& step,
                         std::size_t n) {
  alignas(64) double sums[kLanes] = {};
  const auto vs = hn::Set(kTag, v);
  const auto ws = hn::Set(kTag, w);
  const auto xs = hn::Set(kTag, x);
  const std::size_t whole = n - n % kLanes;
  for (std::size_t i = 0; i < whole; i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; lane += Width()) {
      const std::size_t j = i + lane;
      const auto change =
          hn::Add(hn::Mul(vs, hn::LoadU(kTag, step.w + j)), hn::Mul(ws, hn::LoadU(kTag, step.v + j)));
      const auto updated = hn::Sub(hn::LoadU(kTag, row + j), change);
      hn::StoreU(updated, kTag, row + j);
      hn::StoreU(hn::Add(hn::LoadU(kTag, step.y + j), hn::Mul(xs, updated)), kTag, step.y + j);
      const auto sum = hn::Load(kTag, sums + lane);
      hn::Store(hn::Add(sum, hn::Mul(updated, hn::LoadU(kTag, step.x + j))), kTag, sums + lane);
    }
  }
  for (std::size_t i = whole; i < n; ++i) {
    row[i] -= v * step.w[i] + w * step.v[i];
    step.y[i] += x * row[i];
    sums[i - whole] += row[i] * step.x[i];
  }
  return SumOfLanes(sums);
}

// A row that two neighbouring rotations share is loaded again from the first-level cache; the panel of
// columns stays in the second-level one.
void ApplyRotations(std::span<const Rotation> rotations, double* matrix, std::size_t stride,
                    std::size_t width) {
  for (const Rotation& rotation : rotations) {
    double* HWY_RESTRICT lower = matrix + rotation.row * stride;
    double* HWY_RESTRICT upper = lower + stride;
    const auto c = hn::Set(kTag, rotation.cosine);
    const auto s = hn::Set(kTag, rotation.sine);
    std::size_t i = 0;
    for (; i + Width() <= width; i += Width()) {
      const auto a = hn::LoadU(kTag, lower + i);
      const auto b = hn::LoadU(kTag, upper + i);
      hn::StoreU(hn::Add(hn::Mul(s, a), hn::Mul(c, b)), kTag, upper + i);
      hn::StoreU(hn::Sub(hn::Mul(c, a), hn::Mul(s, b)), kTag, lower + i);
    }
    for (; i < width; ++i) {
      const double a = lower[i];
      const double b = upper[i];
      upper[i] = rotation.sine * a + rotation.cosine * b;
      lower[i] = rotation.cosine * a - rotation.sine * b;
    }
  }
}

// One register column of the tile at a time: six sums, which every instruction set can hold.
void MultiplyTile(const double* HWY_RESTRICT a, const double* HWY_RESTRICT b, std::size_t depth,
                  double* HWY_RESTRICT tile) {
  static_assert(kTileRows == 6);
  const std::size_t width = Width();
  for (std::size_t column = 0; column < kTileColumns; column += 2 * width) {
    auto s0 = hn::Zero(kTag), s1 = s0, s2 = s0, s3 = s0, s4 = s0, s5 = s0;
    auto t0 = s0, t1 = s0, t2 = s0, t3 = s0, t4 = s0, t5 = s0;
    const bool two = width < kTileColumns;
    for (std::size_t l = 0; l < depth; ++l) {
      const double* al = a + l * kTileRows;
      const auto bs = hn::LoadU(kTag, b + l * kTileColumns + column);
      const auto a0 = hn::Set(kTag, al[0]), a1 = hn::Set(kTag, al[1]), a2 = hn::Set(kTag, al[2]);
      const auto a3 = hn::Set(kTag, al[3]), a4 = hn::Set(kTag, al[4]), a5 = hn::Set(kTag, al[5]);
      s0 = hn::Add(s0, hn::Mul(a0, bs));
      s1 = hn::Add(s1, hn::Mul(a1, bs));
      s2 = hn::Add(s2, hn::Mul(a2, bs));
      s3 = hn::Add(s3, hn::Mul(a3, bs));
      s4 = hn::Add(s4, hn::Mul(a4, bs));
      s5 = hn::Add(s5, hn::Mul(a5, bs));
      if (!two) continue;
      const auto bt = hn::LoadU(kTag, b + l * kTileColumns + column + width);
      t0 = hn::Add(t0, hn::Mul(a0, bt));
      t1 = hn::Add(t1, hn::Mul(a1, bt));
      t2 = hn::Add(t2, hn::Mul(a2, bt));
      t3 = hn::Add(t3, hn::Mul(a3, bt));
      t4 = hn::Add(t4, hn::Mul(a4, bt));
      t5 = hn::Add(t5, hn::Mul(a5, bt));
    }
    double* out = tile + column;
    for (const auto& s : {s0, s1, s2, s3, s4, s5}) {
      hn::StoreU(s, kTag, out);
      out += kTileColumns;
    }
    if (!two) continue;
    out = tile + column + width;
    for (const auto& t : {t0, t1, t2, t3, t4, t5}) {
      hn::StoreU(t, kTag, out);
      out += kTileColumns;
    }
  }
}

}  // namespace brenvolt::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace brenvolt::kernels {

HWY_EXPORT(HasWideRegisters);
HWY_EXPORT(Dot);
HWY_EXPORT(AddMultiple);
HWY_EXPORT(UpdateAndMultiply);
HWY_EXPORT(ApplyRotations);
HWY_EXPORT(MultiplyTile);

bool HasWideRegisters() {
  return HWY_DYNAMIC_DISPATCH(HasWideRegisters)();
}

double Dot(const double* a, const double* b, std::size_t n) {
  return HWY_DYNAMIC_DISPATCH(Dot)(a, b, n);
}

void AddMultiple(double factor, const double* x, double* y, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(AddMultiple)(factor, x, y, n);
}

double UpdateAndMultiply(double* row, double v, double w, double x, const RankTwoStep& step, std::size_t n) {
  return HWY_DYNAMIC_DISPATCH(UpdateAndMultiply)(row, v, w, x, step, n);
}

void ApplyRotations(std::span<const Rotation> rotations, double* matrix, std::size_t stride,
                    std::size_t width) {
  HWY_DYNAMIC_DISPATCH(ApplyRotations)(rotations, matrix, stride, width);
}

void MultiplyTile(const double* a, const double* b, std::size_t depth, double* tile) {
  HWY_DYNAMIC_DISPATCH(MultiplyTile)(a, b, depth, tile);
}

}  // namespace brenvolt::kernels
#endif
