// Distributions fitted to variables, tested, ranked and saved: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/jobs/dialog_words.h"
#include "host/jobs/job_data.h"
#include "host/jobs/job_fault.h"

namespace brenvolt {

struct FitRun : JobRun {
  std::vector<std::string> variables;  // in the order of the results
};

// Words and names are those of dialog_words.h. Numbers are as they were given, whole or not.
struct FitJob {
  struct Offset {
    std::string variable;
    std::string distribution;
    double value;
  };
  struct Count {
    std::string variable;
    double value;
  };
  // The bounds within which a variable is simulated; either may be missing.
  struct Truncation {
    std::string variable;
    std::optional<double> low;
    std::optional<double> high;
  };
  // The fits of a variable to save, best first.
  struct Order {
    std::string variable;
    std::vector<std::string> distributions;
  };
  struct Variables {
    std::vector<std::string> continuous;
    std::vector<std::string> discrete;

    // In the order of the results.
    std::vector<std::string> All() const;
  };

  JobData data;
  // Without names, every numeric variable but the weights is fitted as continuous.
  Variables variables;
  std::vector<std::string> distributions;     // to try; without names, all that apply to a variable
  std::optional<std::string> rankBy;          // without a word, ks
  std::optional<std::string> discreteRankBy;  // the same
  std::string binning = "equal-probability";
  std::string missing = "pairwise";
  // Case weights and selection of the sheet; an empty text takes away what it has.
  std::optional<std::string> weights;
  std::optional<std::string> select;
  std::vector<Offset> offsets;
  std::vector<Count> mixtures;
  std::vector<Count> trials;
  bool johnsonPercentiles = false;
  std::optional<double> bootstrap;
  std::optional<double> bootstrapSeed;  // without a number, 1
  std::filesystem::path save;           // empty: the fits are not saved
  std::vector<Truncation> truncate;     // saved with the fits, as is the order
  std::vector<Order> order;             // without, all valid fits by their ranks
  std::filesystem::path graphs;         // empty: none are written

  std::string RankedBy(bool continuous) const {
    return (continuous ? rankBy : discreteRankBy).value_or("ks");
  }
  // Whether the distribution is tried, if it applies to a variable.
  bool Tries(const FittedType& type) const;

  // All that can be refused without the data.
  JobFaults Check() const;
  // The whole job, from the file of the data. Throws WrongJob before anything is done, JobFailed, and Error.
  FitRun Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // The fit alone, of the sheet of a session whose startup dialog is open; afterwards the results dialog is.
  // Returns the variables in the order of the results. Throws the same.
  std::vector<std::string> Fit(AnalysisSession& session, const Spreadsheet& sheet) const;
  // Puts bounds and orders into the dialog of the results, which shows the variables `fitted`. Throws
  // WrongJob.
  void SpecifySaving(AutomationObject& results, const std::vector<std::string>& fitted) const;

 private:
  // What those reveal who know which variables are fitted.
  JobFaults CheckVariables(const Variables& fitted) const;
  JobFaults CheckSaving(const std::vector<std::string>& fitted) const;
};

}  // namespace brenvolt
