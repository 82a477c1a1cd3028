// Standard errors of maximum-likelihood estimates whose estimators do not give them: the inverse of the
// observed information (Efron & Hinkley 1978).
#pragma once

#include <array>
#include <optional>
#include <span>

namespace brenvolt {

// At this shape and below, the estimates of a distribution with a finite upper end are not
// asymptotically normal, and the information says nothing about their errors (Smith 1985).
inline constexpr double kLeastRegularShape = -0.5;

// The covariance of two estimates, row by row.
using Covariance2 = std::array<double, 4>;

// Location and scale of the folded normal at its maximum over `data`. Nothing at location 0, which is an end of
// the parameters, nor where the information about the location vanishes, as it does towards there.
std::optional<Covariance2> FoldedNormalCovariance(std::span<const double> data, double location, double scale,
                                                  double offset);

// Scale and shape of the generalized Pareto at its maximum. Nothing for a shape of kLeastRegularShape or
// less, nor where the information is not positive definite.
std::optional<Covariance2> ParetoCovariance(std::span<const double> data, double scale, double shape,
                                            double threshold);

}  // namespace brenvolt
