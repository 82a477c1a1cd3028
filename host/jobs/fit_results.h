// What a fit found, as numbers: read once from the documents of its results dialog.
#pragma once

#include <string>
#include <vector>

#include "host/analysis/result_table.h"
#include "host/automation/automation_object.h"

namespace brenvolt {

struct FittedDistribution {
  int code = 0;
  std::string name;                             // for people, as are the next two
  std::string description;                      // for most distributions with the values
  std::string reason;                           // why the fit failed; empty for a valid one
  std::vector<double> parameters;               // in the order of the catalogue; none where the fit failed
  double offset = 0;                            // NaN where the distribution has none
  std::vector<double> standardErrors;           // one per parameter, or none
  std::vector<std::vector<double>> covariance;  // of the parameters, or none
  ResultRow statistics;                         // tests, likelihood and, where there was one, the bootstrap

  bool IsBootstrapped() const {
    return statistics.Has("bootstrap_samples"_column) && statistics.Number("bootstrap_samples"_column) > 0;
  }
};

struct FittedVariable {
  std::string name;
  bool isContinuous = true;
  ResultRow moments;
  std::string ranking;                   // by what the fits are ranked, for people
  std::vector<FittedDistribution> fits;  // best first; none where there is nothing to fit
};

// One entry for each fitted variable, in the order of the summary. Shows each variable on the Quick tab of
// the dialog, and each of its valid fits where covariances are wanted.
enum class Covariances { kLeftOut, kRead };
std::vector<FittedVariable> ReadFitResults(AutomationObject& dialog, Covariances covariances);

}  // namespace brenvolt
