// The floating-point environment of one thread for the duration of a numeric job.
#pragma once

#include <cfenv>

namespace brenvolt {

// While it exists, the thread that made it rounds to nearest, flushes results too small for a normal number
// to zero (on processors that can; subnormal data keep their values), and no floating-point exception traps,
// whatever was set before. The destructor restores the environment as it was, flags included, on every way
// out. Guards nest. Construct and destroy it on one thread.
class FloatingPointGuard {
 public:
  FloatingPointGuard();
  ~FloatingPointGuard();
  FloatingPointGuard(const FloatingPointGuard&) = delete;
  FloatingPointGuard& operator=(const FloatingPointGuard&) = delete;

  // Clears the flags that former operations raised.
  static void ClearFlags();

 private:
  std::fenv_t previous_;
};

}  // namespace brenvolt
