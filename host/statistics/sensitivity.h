// Which predictor drives the variation of a response. docs/reference/capability.md says how to read the
// measures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/statistics/correlation_tests.h"

namespace brenvolt {

// A measure that cannot be computed is not set; a predictor that is constant contributes nothing.
struct SensitivityRow {
  std::size_t predictor = 0;  // its index among those given
  CorrelationTest rank;       // Spearman's coefficient with the response
  CorrelationTest linear;     // Pearson's
  // The square of the rank correlation over the sum of the squares of all predictors: the "contribution to
  // variance" of risk analysis. The rows add up to 1.
  double rankContribution = kNotSet;
  // The coefficient of the linear regression of the response on all predictors, all in units of their
  // standard deviations; not set if the predictors are collinear.
  double standardizedCoefficient = kNotSet;
  // Its square, which is the predictor's first-order share of the variance when the response is linear and
  // the predictors are independent (Saltelli et al. 2008, section 1.2.5); the rows then add up to rSquared.
  double linearContribution = kNotSet;
  // The share of the variance of the response that lies between classes of the predictor of equal count (the
  // correlation ratio of Pearson 1905 without its bias, Kelley 1935): an estimate of the first-order index
  // for a response of any shape (Plischke, Borgonovo & Smith 2013). Well above the others if a predictor
  // acts up and down.
  double firstOrder = kNotSet;
};

struct SensitivityTable {
  std::int64_t count = 0;  // cases used
  double rSquared = kNotSet;
  std::vector<SensitivityRow> rows;  // by rankContribution, the greatest first; equal ones as given
};

// Over the cases in which no value is NaN; all columns are of one length. A predictor without any value takes no
// part, and its measures are not set.
SensitivityTable AnalyseSensitivity(std::span<const double> response,
                                    std::span<const std::span<const double>> predictors);

}  // namespace brenvolt
