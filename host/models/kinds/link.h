// Inverse link functions: from a linear predictor to a mean or probability (McCullagh & Nelder 1989, ch. 2
// and 4).
#pragma once

#include <cmath>
#include <numbers>

#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::pmml {

inline double InverseLogit(double eta) {
  return eta >= 0 ? 1 / (1 + std::exp(-eta)) : std::exp(eta) / (1 + std::exp(eta));
}
inline double InverseProbit(double eta) {
  return std::isnan(eta) ? eta : StandardNormalCdf(eta);
}
inline double InverseCloglog(double eta) {
  return -std::expm1(-std::exp(eta));
}
inline double InverseLoglog(double eta) {
  return std::exp(-std::exp(-eta));
}
inline double InverseCauchit(double eta) {
  return 0.5 + std::atan(eta) / std::numbers::pi;
}

}  // namespace brenvolt::pmml
