// Distributions fitted to variables, tested, ranked and saved: what a person may ask for.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/jobs/job_data.h"
#include "host/jobs/job_fault.h"

namespace brenvolt {

// What is saved of fits besides themselves.
struct FitSaving {
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

  std::vector<Truncation> truncate;
  std::vector<Order> order;

  // The faults that can be seen without the fits.
  JobFaults Check() const;
};

// Words and names are those of host/jobs/dialog_words.h. Numbers are as they were given, whole or not.
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

  JobData data;
  // Without names, every numeric variable but the weights is fitted as continuous.
  std::vector<std::string> continuous;
  std::vector<std::string> discrete;
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
  std::optional<std::filesystem::path> save;
  FitSaving saving;
  std::filesystem::path graphs;

  // All that can be refused without the data.
  JobFaults Check() const;
};

}  // namespace brenvolt
