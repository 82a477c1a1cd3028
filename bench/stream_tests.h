// Statistical tests of uniform deviates, each a p-value that is uniform on [0, 1] for independent uniform
// deviates (nearly so if the statistic is discrete; then the middle of its step). Small values mean too
// great a deviation, values near 1 too small a one; for counts and correlations, either end is one side.
//
// Sources: Knuth (1997), vol. 2, section 3.3.2, if no other is named.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace brenvolt::stream_tests {

// Deviates are multiples of 2^-53 in [0, 1). A sample has at least 2^20 of them, a power of two.
using Sample = std::span<const double>;

struct Test {
  std::string name;
  double (*pvalue)(Sample sample);
};

std::vector<Test> AllTests();

// The p-value of the Kolmogorov-Smirnov test for uniformity of values in [0, 1]; reorders them.
double UniformityPvalue(std::span<double> values);

}  // namespace brenvolt::stream_tests
