// The expectation step of a Gaussian mixture: how much of every value belongs to each component, summed up as
// the maximisation step needs it, on the widest vectors that the machine offers.
//
// Sums run over fixed blocks of values in a fixed order, so that the results have the same bits on every
// instruction set.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace brenvolt {

struct MixtureComponent {
  double proportion = 0.0;
  double mean = 0.0;
  double deviation = 0.0;
};

// Over all values x with responsibilities r of a component of mean m: sums of r, r (x - m) and r (x - m)^2.
struct ResponsibilitySums {
  double weight = 0.0;
  double first = 0.0;
  double second = 0.0;
};

class MixtureExpectation {
 public:
  static constexpr std::size_t kBlock = 256;  // values summed up together

  explicit MixtureExpectation(std::size_t components) : densities_(components * kBlock) {}

  // Fills `sums`, one for each component of the mixture, which has as many as the constructor was
  // told, and returns the log-likelihood of the values; NaN or infinite if it is not a mixture. Relative
  // error of a density and of a responsibility: some 1e-15 times the logarithm of the density.
  double Run(std::span<const double> values, std::span<const MixtureComponent> mixture,
             std::span<ResponsibilitySums> sums);

 private:
  std::vector<double> densities_;  // of a block, by component
};

}  // namespace brenvolt
