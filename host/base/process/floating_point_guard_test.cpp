#include "host/base/process/floating_point_guard.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <thread>

namespace brenvolt {
namespace {

// Through volatile, so that the processor computes and not the compiler.
double HalfOfTheSmallestNormal() {
  volatile double x = std::numeric_limits<double>::min();
  return x / 2;
}

void Raise(int flags) {
  volatile double zero = 0;
  volatile double result = 0;
  if ((flags & FE_DIVBYZERO) != 0) result = 1 / zero;
  if ((flags & FE_INVALID) != 0) result = zero / zero;
  static_cast<void>(result);
}

TEST(FloatingPointGuard, PreviousStateIsRestoredAfterAThrow) {
  std::fenv_t before;
  std::fegetenv(&before);
  std::fesetround(FE_UPWARD);
  Raise(FE_DIVBYZERO);
  const double half = HalfOfTheSmallestNormal();
  try {
    const FloatingPointGuard guard;
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO), 0);
    Raise(FE_INVALID);
    throw std::runtime_error("out");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(std::fegetround(), FE_UPWARD);
  EXPECT_NE(std::fetestexcept(FE_DIVBYZERO), 0);
  EXPECT_EQ(std::fetestexcept(FE_INVALID), 0) << "a flag of the job leaks out";
  EXPECT_EQ(HalfOfTheSmallestNormal(), half) << "flushing to zero leaks out";
  std::fesetenv(&before);
}

TEST(FloatingPointGuard, FlushesNestsAndLeavesOtherThreadsAlone) {
#if defined(__SSE2__) || defined(__aarch64__)
  constexpr double kFlushed = 0;
#else
  const double kFlushed = std::numeric_limits<double>::min() / 2;
#endif
  const FloatingPointGuard outer;
  {
    const FloatingPointGuard inner;
    EXPECT_EQ(HalfOfTheSmallestNormal(), kFlushed);
  }
  EXPECT_EQ(HalfOfTheSmallestNormal(), kFlushed) << "the inner guard took the outer one's environment";
}

#if defined(__GLIBC__)
TEST(FloatingPointGuard, UnmaskedExceptionsDoNotTrapWithinAndTrapAgainAfterwards) {
  feenableexcept(FE_DIVBYZERO | FE_INVALID);
  {
    const FloatingPointGuard guard;
    Raise(FE_DIVBYZERO | FE_INVALID);
  }
  EXPECT_EQ(fegetexcept(), FE_DIVBYZERO | FE_INVALID);
  fedisableexcept(FE_ALL_EXCEPT);
}
#endif

}  // namespace
}  // namespace brenvolt
