// The way from Python into the host.
#pragma once

#include <pybind11/pybind11.h>

#include <mutex>

namespace brenvolt::python {

// The host does one thing at a time: it has one random stream, and its documents have no locks. While a call
// runs, other Python threads go on until they call the host themselves. A call may be made inside another one
// of its thread (a signal handler that uses the package).
//
// Made with the interpreter lock held; while it exists, no Python object may be touched.
class HostCall {
 public:
  HostCall() : turn_(Turn()) {}

 private:
  static std::recursive_mutex& Turn() {
    static std::recursive_mutex turn;
    return turn;
  }

  // In this order: nobody waits for a turn holding the interpreter lock, which the one whose turn it is needs
  // to look for interruptions.
  pybind11::gil_scoped_release release_;
  std::scoped_lock<std::recursive_mutex> turn_;
};

// The result of host code, which a HostCall frames.
template <class Work>
auto InTurn(const Work& work) {
  const HostCall call;
  return work();
}

}  // namespace brenvolt::python
