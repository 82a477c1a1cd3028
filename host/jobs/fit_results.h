// What a fit found, as numbers: read once from the documents of its results dialog.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/result_table.h"
#include "host/automation/automation_object.h"
#include "host/jobs/fit_cautions.h"

namespace brenvolt {

struct FittedDistribution {
  int code = 0;
  std::string_view identifier;         // "lognormal", as people write it in calls
  std::string name;                    // for people, as are the next two
  std::string description;             // for most distributions with the values
  std::string reason;                  // why the fit failed; empty for a valid one
  std::string note;                    // what speaks against a valid one; mostly empty
  std::string_view origin;             // "likelihood", "moments", "percentiles" or "extremes" of the data
  std::vector<double> parameters;      // in the order of the catalogue; none if the fit failed
  double offset = 0;                   // NaN if the distribution has none
  std::vector<double> standardErrors;  // one per parameter, or none
  std::vector<std::vector<double>> covariance;  // of the parameters, or none
  ResultRow statistics;  // tests, likelihood, reservations and, if there was one, the bootstrap
  std::optional<std::size_t> savedPlace;  // among the fits that are saved, from 0

  bool IsBootstrapped() const {
    return statistics.Has("bootstrap_samples"_column) && statistics.Number("bootstrap_samples"_column) > 0;
  }
};

struct FittedVariable {
  std::string name;
  std::string reason;  // why there are no fits; empty if there are
  bool isContinuous = true;
  ResultRow moments;
  std::string ranking;                                        // by what the fits are ranked, for people
  std::vector<FittedDistribution> fits;                       // best first; none if there is nothing to fit
  std::size_t top = std::numeric_limits<std::size_t>::max();  // of these, how many are reported

  // The fit that is saved first, from which the variable is simulated; null if none is valid.
  const FittedDistribution* Best() const;
  // The fits to report, that one among them.
  std::span<const FittedDistribution> Shown() const;
  // What speaks against that one.
  std::vector<FitCaution> Cautions() const;
  // What the fits as a whole are to be read with: that all are refused, that the data are much rounded. Sentences
  // without full stops.
  std::vector<std::string> Notes() const;
};

// The p-value of the Kolmogorov-Smirnov test of a row of a table of fits: the bootstrap's where there was one; NaN without
// a test.
double KsPValueIn(const ResultRow& row);

// A row of a table of fits.
FitReach ReachIn(const ResultRow& row);

// The place of the fit that is saved first, and so simulated, among the fits of a variable by the codes of their
// distributions; nothing if none is saved. `variable` is the variable's place among the results, from 1.
std::optional<std::size_t> FirstSaved(AutomationObject& dialog, std::int32_t variable,
                                      std::span<const int> fits);

struct VariableCautions {
  std::string variable;
  std::vector<FitCaution> cautions;
};

// What speaks against simulating the variables that the dialog of a simulation from distributions has
// selected; only variables with cautions are there. `sheet` is its input.
std::vector<VariableCautions> ReadSavedCautions(AutomationObject& dialog, const Spreadsheet& sheet);

// One entry for each fitted variable, in the order of the summary. Shows each variable on the Quick tab of
// the dialog, and each of its valid fits where covariances are wanted.
enum class Covariances { kLeftOut, kRead };
std::vector<FittedVariable> ReadFitResults(AutomationObject& dialog, Covariances covariances,
                                           std::size_t top = std::numeric_limits<std::size_t>::max());

}  // namespace brenvolt
