// Values of the host as NumPy arrays.
#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <span>
#include <vector>

namespace brenvolt::python {

// A read-only view of values that `owner` keeps alive, and the view with it `owner`.
inline pybind11::array_t<double> ReadOnlyView(std::span<const double> values,
                                              std::shared_ptr<const void> owner) {
  auto kept = std::make_unique<std::shared_ptr<const void>>(std::move(owner));
  const pybind11::capsule base(kept.get(), [](void* held) {
    const std::unique_ptr<std::shared_ptr<const void>> released(
        static_cast<std::shared_ptr<const void>*>(held));
  });
  kept.release();
  const auto count = static_cast<pybind11::ssize_t>(values.size());
  pybind11::array_t<double> view({count}, {static_cast<pybind11::ssize_t>(sizeof(double))}, values.data(),
                                 base);
  view.attr("setflags")(pybind11::arg("write") = false);
  return view;
}

// Numbers in, whatever they come in: contiguous doubles, copied only if they are not that already.
using Numbers = pybind11::array_t<double, pybind11::array::c_style | pybind11::array::forcecast>;

// The values of an array of one axis.
inline std::vector<double> VectorFrom(const Numbers& numbers) {
  if (numbers.ndim() != 1) throw pybind11::value_error("values must have one axis");
  return {numbers.data(), numbers.data() + numbers.size()};
}

}  // namespace brenvolt::python
