// A member of the Johnson system in units of the sample's own, as the two ways of fitting it find it.
#pragma once

#include <cmath>

#include "host/numeric/estimation/johnson/johnson_estimators.h"

namespace brenvolt {

struct JohnsonFit {
  JohnsonFamily family = JohnsonFamily::kNormal;
  double gamma = 0.0;
  double delta = 1.0;
  double lambda = 1.0;
  double xi = 0.0;
};

// The member of x = origin + unit y when `fit` is that of y. SL and SN have no lambda to take the unit up: it
// goes into gamma or delta.
inline EstimationResult<JohnsonEstimate> InUnitsOfData(const JohnsonFit& fit, double origin, double unit) {
  JohnsonFit scaled = fit;
  scaled.xi = origin + unit * fit.xi;
  switch (fit.family) {
    case JohnsonFamily::kLognormal:
      scaled.gamma = fit.gamma - fit.delta * std::log(unit);
      break;
    case JohnsonFamily::kNormal:
      scaled.delta = fit.delta / unit;
      scaled.gamma = fit.gamma - scaled.delta * scaled.xi;
      scaled.xi = 0.0;
      break;
    case JohnsonFamily::kUnbounded:
    case JohnsonFamily::kBounded:
      scaled.lambda = unit * fit.lambda;
      break;
  }
  for (const double x : {scaled.gamma, scaled.delta, scaled.lambda, scaled.xi}) {
    if (!std::isfinite(x)) return Fault{EstimationFault::kNotFinite};
  }
  return JohnsonEstimate{static_cast<double>(fit.family), scaled.gamma, scaled.delta, scaled.lambda,
                         scaled.xi};
}

}  // namespace brenvolt
