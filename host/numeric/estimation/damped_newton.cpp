#include "host/numeric/estimation/damped_newton.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

#include "host/numeric/vector/small_cholesky.h"

namespace brenvolt::estimation {
namespace {

using Vector = std::vector<double>;

// The lower Cholesky factor; nothing when the matrix is not positive definite. Pivots must be well above rounding: along the
// ridges that likelihoods have where they grow towards an end of the parameters smaller ones are what rounding leaves of 0, and
// the climb would end on a ridge as on a maximum.
std::optional<Vector> Factorise(std::span<const double> matrix, std::size_t n) {
  constexpr double kLeastPivot = 1e-14;
  Vector lower(n * n);
  return SmallCholesky(matrix, n, kLeastPivot, lower) ? std::optional(std::move(lower)) : std::nullopt;
}

Vector Solve(const Vector& lower, Vector right) {
  SolveLower(lower, right.size(), right);
  SolveUpper(lower, right.size(), right);
  return right;
}

double Dot(const Vector& a, const Vector& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

Vector Damped(Vector matrix, std::size_t n, double damping) {
  for (std::size_t i = 0; i < n; ++i)
    matrix[i * n + i] += damping * std::max(std::abs(matrix[i * n + i]), 1e-3);
  return matrix;
}

Vector Moved(Vector point, const Vector& step, double longest) {
  double length = 0.0;
  for (const double x : step) length = std::max(length, std::abs(x));
  const double part = length > longest ? longest / length : 1.0;
  for (std::size_t i = 0; i < point.size(); ++i) point[i] += part * step[i];
  return point;
}

// So near the maximum the likelihood no longer tells points apart, but one more step of Newton's method
// doubles the digits of the parameters.
void TakeLastStep(const SurfaceAt& surfaceAt, const Vector& step, Vector& point, Surface& surface) {
  Vector next = Moved(point, step, kAnyLength);
  Surface there = surfaceAt(next);
  if (!std::isfinite(there.value)) return;
  point = std::move(next);
  surface = std::move(there);
}

}  // namespace

bool Climb(const SurfaceAt& surfaceAt, std::vector<double>& point, Surface& surface, double longest) {
  constexpr int kMaxSteps = 300;
  constexpr double kGain = 1e-15;          // of the value, by the quadratic model
  constexpr double kRoundingGain = 1e-12;  // what rounding may hide
  constexpr double kMaxDamping = 1e12;
  const std::size_t n = point.size();
  double damping = 1e-3;
  surface = surfaceAt(point);
  if (!std::isfinite(surface.value)) return false;
  for (int step = 0; step < kMaxSteps; ++step) {
    double promise = std::numeric_limits<double>::infinity();
    if (const auto lower = Factorise(surface.information, n)) {
      const Vector whole = Solve(*lower, surface.gradient);
      promise = 0.5 * Dot(surface.gradient, whole);
      if (promise < kGain) {
        TakeLastStep(surfaceAt, whole, point, surface);
        return true;
      }
    }
    bool isHigher = false;
    for (; !isHigher && damping < kMaxDamping; damping *= 10.0) {
      const auto lower = Factorise(Damped(surface.information, n, damping), n);
      if (!lower) continue;
      Vector next = Moved(point, Solve(*lower, surface.gradient), longest);
      Surface there = surfaceAt(next);
      if (!(there.value > surface.value)) continue;
      point = std::move(next);
      surface = std::move(there);
      isHigher = true;
    }
    if (!isHigher) return promise < kRoundingGain;
    damping = std::max(damping / 300.0, 1e-16);  // ten of which the loop added after the step that counts
  }
  return false;
}

std::vector<double> InverseOf(std::span<const double> information, std::size_t size) {
  const auto lower = Factorise(information, size);
  if (!lower) return {};
  Vector inverse;
  for (std::size_t i = 0; i < size; ++i) {
    Vector unit(size);
    unit[i] = 1.0;
    const Vector row = Solve(*lower, std::move(unit));
    inverse.insert(inverse.end(), row.begin(), row.end());
  }
  return inverse;
}

}  // namespace brenvolt::estimation
