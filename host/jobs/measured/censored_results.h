// What a fit of censored values found, as numbers.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/result_table.h"
#include "host/jobs/fit_quantiles.h"
#include "host/numeric/censored/survival_curve.h"
#include "host/statistics/fit_intervals.h"
#include "host/tables/text/text_options.h"

namespace brenvolt {

struct CensoredFit {
  std::string name;
  FittedValues values;   // none where the fit failed
  std::string reason;    // why it failed; empty for a valid one
  std::string notation;  // the distribution with its values
  std::vector<double> standardErrors;
  double logLikelihood = 0;
  double aic = 0;
  double bic = 0;
  int iterations = 0;
  double gradient = 0;  // in standard errors of the parameters
  double distance = 0;  // the greatest from the curve without a distribution, at the plotting positions

  bool IsValid() const { return reason.empty(); }
  // Those of the columns of censored fits, NaN where the fit failed.
  ResultRow Statistics() const;
};

struct CensoredVariable {
  std::string name;
  std::string rankedBy;  // "aic" or "bic"
  std::size_t exact = 0;
  std::size_t right = 0;
  std::size_t left = 0;
  std::size_t interval = 0;
  std::size_t missing = 0;
  std::string reading;            // of the column that says how cases are known: "0 right, 1 exact"
  std::vector<CensoredFit> fits;  // best first, those that failed last
  std::vector<SurvivalStep> curve;
  std::vector<ReadingNote> notes;         // about the codes, with the option that says what they mean
  bool isKaplanMeier = true;              // else Turnbull's
  std::optional<FitQuantiles> quantiles;  // of the best fit

  std::size_t Count() const { return exact + right + left + interval; }
};

struct CensoredFindings {
  std::vector<CensoredVariable> variables;
};

}  // namespace brenvolt
