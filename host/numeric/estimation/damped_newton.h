// The climb to a maximum of a likelihood by Newton's method, held to the region in which it is quadratic by the damping of
// Levenberg (1944) and Marquardt (1963).
#pragma once

#include <functional>
#include <limits>
#include <span>
#include <vector>

namespace brenvolt::estimation {

// The value of a function of some coordinates, with its first derivatives and the negative of its second, row-major.
struct Surface {
  double value = -std::numeric_limits<double>::infinity();
  std::vector<double> gradient;
  std::vector<double> information;
};

// The surface at a point; a value of minus infinity where there is none, and nothing else then.
using SurfaceAt = std::function<Surface(std::span<const double> point)>;

// A step is shortened to this length of its longest coordinate.
inline constexpr double kAnyLength = std::numeric_limits<double>::infinity();

// Climbs from `point`, of one coordinate or more, which is left where the climb ended, with the surface there. True when that
// is a maximum: information positive definite and nothing left to gain. Values should be means over a sample, of some
// 1, as the steps end where they promise less than 1e-15.
bool Climb(const SurfaceAt& surfaceAt, std::vector<double>& point, Surface& surface,
           double longest = kAnyLength);

// The inverse of an information matrix, row-major; empty unless it is positive definite.
std::vector<double> InverseOf(std::span<const double> information, std::size_t size);

}  // namespace brenvolt::estimation
