#include "host/numeric/estimation/standard_errors.h"

#include <algorithm>
#include <cmath>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/special/log_one_plus.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

using estimation::CompensatedSum;
using estimation::kBlock;

// The inverse of the information {first, mixed; mixed, second}; nothing if it is singular to rounding.
std::optional<Covariance2> Inverse(double first, double mixed, double second) {
  const double determinant = first * second - mixed * mixed;
  if (!(first > 0) || !(determinant > 1e-14 * first * second)) return std::nullopt;
  return Covariance2{second / determinant, -mixed / determinant, -mixed / determinant, first / determinant};
}

}  // namespace

// With y = x - offset in units of the scale, m the location in them and t = tanh(y m), the log-density is
// -(y^2 + m^2) / 2 + ln cosh(y m) - ln scale; 1 - t is kept apart, so that nothing cancels far from the fold.
std::optional<Covariance2> FoldedNormalCovariance(std::span<const double> data, double location, double scale,
                                                  double offset) {
  const double m = std::abs(location) / scale;
  std::array<double, kBlock> buffer;
  CompensatedSum byLocation;
  CompensatedSum mixed;
  CompensatedSum byScale;
  for (std::size_t begin = 0; begin < data.size(); begin += kBlock) {
    const auto part = data.subspan(begin, std::min(kBlock, data.size() - begin));
    const std::span<double> e(buffer.data(), part.size());
    for (std::size_t i = 0; i < part.size(); ++i) e[i] = -2 * m * ((part[i] - offset) / scale);
    elementary::Exp(e, e);
    double ll = 0;
    double ls = 0;
    double ss = 0;
    for (std::size_t i = 0; i < part.size(); ++i) {
      const double y = (part[i] - offset) / scale;
      const double lacking = 2 * e[i] / (1 + e[i]);                       // 1 - t
      const double steepness = 4 * e[i] / ((1 + e[i]) * (1 + e[i])) * y;  // (1 - t^2) y
      ll += 1 - steepness * y;
      ls += 2 * ((y - m) - lacking * y) + 2 * steepness * y * m;
      ss += 3 * ((y - m) * (y - m) + 2 * lacking * y * m) - 1 - 4 * steepness * y * m * m;
    }
    byLocation.Add(ll);
    mixed.Add(ls);
    byScale.Add(ss);
  }
  // What rounding leaves of 0 would be inverted to an error as large as it likes.
  constexpr double kLeastInformation = 1e-10;  // per value, in units of the scale
  if (!(byLocation.Value() > kLeastInformation * static_cast<double>(data.size()))) return std::nullopt;
  const double unit = 1 / (scale * scale);
  return Inverse(byLocation.Value() * unit, mixed.Value() * unit, byScale.Value() * unit);
}

// The log-density is -ln scale - (1 + shape) w(z, shape), z = (x - threshold) / scale.
std::optional<Covariance2> ParetoCovariance(std::span<const double> data, double scale, double shape,
                                            double threshold) {
  if (shape <= kLeastRegularShape) return std::nullopt;
  const double a = 1 + shape;
  CompensatedSum byScale;
  CompensatedSum mixed;
  CompensatedSum byShape;
  for (const double x : data) {
    const double z = (x - threshold) / scale;
    const LogOnePlus w = DifferentiateLogOnePlus(z, shape);
    byScale.Add(a * (w.byZZ * z * z + 2 * w.byZ * z) - 1);
    mixed.Add(-z * (w.byZ + a * w.byZK));
    byShape.Add(2 * w.byK + a * w.byKK);
  }
  return Inverse(byScale.Value() / (scale * scale), mixed.Value() / scale, byShape.Value());
}

}  // namespace brenvolt
