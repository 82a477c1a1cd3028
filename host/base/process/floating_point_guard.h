// The floating-point environment of one thread for the duration of a numeric job.
#pragma once

#include <cfenv>

namespace brenvolt {

// While it exists, the thread that made it rounds to nearest, flushes results too small for a normal number
// to zero (on processors that can; subnormal data keep their values), and no floating-point exception traps,
// whatever was set before. Trapping an invalid operation, a division by zero or an overflow would turn it
// into a signal, from which C++ cannot return to the caller, and vector code raises flags for lanes that it
// then discards. So exceptions are masked, and callers check that the results are finite: a fit whose
// values are not is a failed fit. The destructor restores the environment as it was, flags included, on every
// way out. Guards nest. Construct and destroy it on one thread.
class FloatingPointGuard {
 public:
  FloatingPointGuard();
  ~FloatingPointGuard();
  FloatingPointGuard(const FloatingPointGuard&) = delete;
  FloatingPointGuard& operator=(const FloatingPointGuard&) = delete;

 private:
  std::fenv_t previous_;
};

}  // namespace brenvolt
