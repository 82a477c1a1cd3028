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

// The log-likelihood as a function of each component's ln(proportion), mean and ln(standard deviation), the means in units
// of the standard deviation: first derivatives and the negative of the second ones, row-major. The proportions need
// not add up to 1: what counts is their share in the total.
struct MixtureDerivatives {
  double logLikelihood = 0.0;
  std::vector<double> gradient;
  std::vector<double> information;
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

  // The derivatives at a mixture whose proportions add up to 1 (Louis 1982, eq. 3.2'); NaN or infinite as those of Run.
  MixtureDerivatives Differentiate(std::span<const double> values, std::span<const MixtureComponent> mixture);

 private:
  std::vector<double> densities_;  // of a block, by component
  std::vector<double> slopes_;     // of a block, by coordinate
};

}  // namespace brenvolt
