#include "host/base/process/floating_point_guard.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace brenvolt {
namespace {

// Part of the environment that fegetenv saves, so that nothing else has to restore it.
void FlushToZero() {
#if defined(__SSE2__)
  _MM_SET_FLUSH_ZERO_MODE(_MM_FLUSH_ZERO_ON);
#elif defined(__aarch64__) && defined(__GNUC__)
  constexpr unsigned long long kFlushToZero = 1ULL << 24U;
  unsigned long long control = 0;
  asm volatile("mrs %0, fpcr" : "=r"(control));
  asm volatile("msr fpcr, %0" : : "r"(control | kFlushToZero));
#endif
}

}  // namespace

FloatingPointGuard::FloatingPointGuard() {
  std::feholdexcept(&previous_);  // saves, clears the flags, masks
  std::fesetround(FE_TONEAREST);
  FlushToZero();
}

FloatingPointGuard::~FloatingPointGuard() {
  std::fesetenv(&previous_);
}

}  // namespace brenvolt
