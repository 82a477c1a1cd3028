// Distributions fitted to life data, of whose values some are known by bounds alone: what a person may ask for, and its run.
#pragma once

#include <optional>
#include <string>

#include "host/jobs/fit_job.h"
#include "host/jobs/measured/censored_results.h"

namespace brenvolt {

inline constexpr std::string_view kCensoredPlotKinds[] = {kOverview, "empirical-distribution", "qq"};

struct CensoredFitJob {
  // Its data, variables, distributions, offsets, criterion, case weights, selection, quantiles, report and plot; the rest does not
  // apply.
  FitJob fit;
  // The column that says how each case is known: exact, right, left or interval.
  std::optional<std::string> censor;
  // What the column holds where a value is exact, as a number or a text; every other one is then right censored.
  std::optional<std::string> censorEvent;
  // The column of upper bounds, of which the variable has the lower ones. Without the former, a bound that is missing is
  // infinite, and equal bounds are an exact value.
  std::optional<std::string> censorUpper;

  bool IsAsked() const { return censor || censorUpper || censorEvent; }
  JobFaults Check() const;
  // Of a sheet that is open, which is left as it was. Throws WrongJob, also for columns that say nothing about censoring and while
  // a macro is recorded, and Error.
  CensoredFindings Run(Spreadsheet& sheet, const JobRecorder& recorder) const;
};

}  // namespace brenvolt
