// Quantiles, return levels and probabilities of exceeding values, read off the fits that are saved first, with their
// intervals.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/jobs/base/plot.h"
#include "host/jobs/fit_job.h"
#include "host/jobs/fit_results.h"
#include "host/statistics/fit_intervals.h"

namespace brenvolt {

struct FitQuantiles {
  struct Row {
    double probability;  // of a quantile, not to exceed it; else of exceeding the value
    double value;
    std::optional<double> returnPeriod = {};  // of a return level, which is a quantile
    ConfidenceInterval byCovariance = {};     // of what is estimated; not set where there is none
    ConfidenceInterval byProfile = {};
    ConfidenceInterval byBootstrap = {};
  };
  std::string distribution;
  double confidence = 0;
  bool isProfiled = false;  // whether intervals by the profile likelihood were asked for
  std::size_t samples = 0;  // of the bootstrap, those that could be fitted
  std::vector<Row> quantiles = {};
  std::vector<Row> exceedances = {};
  std::string note = {};  // why there are no intervals by covariance; empty if there are
};

// A fit with its covariance, where it was read with that.
FittedValues ValuesOf(const FittedDistribution& fit);
// Fits to samples from a fit of `count` values, which an interruption ends.
FitBootstrap BootstrapOf(const FittedValues& fit, std::size_t count, double samples,
                         const RandomStream& stream, bool isByPercentiles);

// The likelihood over the values that were fitted, where the job asks for intervals by it; empty otherwise. An interruption ends
// what reads it.
LogLikelihood LikelihoodFor(const FitJob& job, const std::vector<double>& sorted);
LogLikelihood LikelihoodFor(const FitJob& job, const CensoredSample& sample);
// What the job asks for about a fit. The likelihood is empty where no intervals by its profile are asked for; `bootstrap` may be
// null.
FitQuantiles ReadOff(const FitJob& job, const std::string& name, const FittedValues& fit,
                     const LogLikelihood& likelihood, const FitBootstrap* bootstrap);
// What the job asks for about all variables that the results show, which were read with their covariances; nothing of one where
// nothing is asked, or no fit is valid. The sheet is the one that was fitted.
std::vector<std::optional<FitQuantiles>> AllQuantiles(const FitJob& job,
                                                      const std::vector<FittedVariable>& variables,
                                                      const Spreadsheet& sheet);

// The return levels of each variable that the open dialog shows, over the reduced variate -ln(-ln p), with the values at
// their plotting positions.
std::vector<PlotPage> ReturnLevelPlots(const FitJob& job, AutomationObject& dialog, const Spreadsheet& sheet);
// The same of one fit, both numbers from 1. Throws Error for a discrete variable.
Graph ReturnLevelsOf(const FitJob& job, AutomationObject& dialog, const Spreadsheet& sheet,
                     std::size_t variable, std::size_t fit);

}  // namespace brenvolt
