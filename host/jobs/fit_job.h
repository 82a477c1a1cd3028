// Distributions fitted to variables, tested, ranked and saved: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/base/files/file_identity.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/base/project_files.h"

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

  // What holds where nothing is said.
  static constexpr const char* kUsualCriterion = "ks";
  static constexpr const char* kUsualBinning = "equal-probability";
  static constexpr double kUsualBootstrapSeed = 1;
  static constexpr double kUsualConfidence = 0.95;

  JobData data;
  // Without names, every numeric variable but the weights is fitted as continuous.
  Variables variables;
  std::vector<std::string> distributions;     // to try; without names, all that apply to a variable
  std::optional<std::string> rankBy;          // without a word, kUsualCriterion
  std::optional<std::string> discreteRankBy;  // the same
  std::optional<std::string> binning;         // of continuous variables; without a word, kUsualBinning
  std::string missing = "pairwise";
  // Case weights and selection of the sheet; an empty text takes away what it has.
  std::optional<std::string> weights;
  std::optional<std::string> select;
  std::vector<Offset> offsets;
  std::vector<Count> mixtures;
  std::vector<Count> trials;
  bool johnsonPercentiles = false;
  std::optional<double> bootstrap;
  std::optional<double> bootstrapSeed;  // without a number, kUsualBootstrapSeed
  // What is read off the fit of each continuous variable that is saved first, with intervals (fit_quantiles.h): quantiles of
  // probabilities, probabilities of exceeding values, return levels of periods.
  std::vector<double> quantiles;
  std::vector<double> exceed;
  std::vector<double> returnPeriods;
  std::optional<std::string> intervals;  // by what besides the bootstrap; without a word, covariance
  std::optional<double> confidence;      // of the intervals, between 0 and 1; without, 0.95
  std::optional<double> top;             // fits of each variable that are reported, the best; without, all
  std::filesystem::path save;            // empty: the fits are not saved
  std::vector<Truncation> truncate;      // saved with the fits, as is the order
  std::vector<Order> order;              // without, all valid fits by their ranks
  std::filesystem::path graphs;          // empty: none are written
  std::filesystem::path report;          // empty: none is written; front ends do it (host/jobs/reports)
  Plot plot;

  std::string RankedBy(bool continuous) const {
    return (continuous ? rankBy : discreteRankBy).value_or(kUsualCriterion);
  }
  bool AsksForQuantiles() const { return !quantiles.empty() || !exceed.empty() || !returnPeriods.empty(); }
  std::size_t Top() const;
  bool IsByProfile() const { return intervals == "profile"; }
  double IntervalConfidence() const { return confidence.value_or(kUsualConfidence); }
  // Whether the distribution is tried, if it applies to a variable.
  bool Tries(const NamedDistribution& distribution) const;

  // All that can be refused without the data.
  JobFaults Check() const;
  // The whole job, from the file of the data. Throws WrongJob before anything is done, JobFailed, and Error.
  FitRun Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // The same from data that are open: returns the variables in the order of the results, which are those of
  // the open dialog then.
  std::vector<std::string> Run(const JobInput& input, JobRecorder& recorder) const;
  // Puts the fits of the variables `fitted`, which the open dialog shows, on the variables of the sheet as
  // properties, with bounds and orders, and returns the document of their correlation matrix. Throws the same.
  Table Keep(AnalysisSession& session, Spreadsheet& sheet, const std::vector<std::string>& fitted) const;
  // Saves fits that were not saved when the job was run.
  void Save(const JobInput& input, AnalysisSession& session, const std::vector<std::string>& fitted,
            JobRecorder& recorder) const;

 private:
  // What those reveal who know which variables are fitted.
  JobFaults CheckVariables(const Variables& fitted) const;
  JobFaults CheckSaving(const std::vector<std::string>& fitted) const;
  JobFaults CheckTruncated(AutomationObject& results) const;
  void ApplyCaseOptions(Spreadsheet& sheet) const;
  // What the variables carried before the fit, by which it is seen what others saved meanwhile.
  struct Former {
    SheetProperties properties;
    FileIdentity project;
  };
  void SaveFitted(const JobInput& input, AnalysisSession& session, const std::vector<std::string>& fitted,
                  const Former& former, JobRecorder& recorder) const;
  void SaveKept(const JobInput& input, const Table& matrix, JobRecorder& recorder) const;
  Former TakeFormer(const JobInput& input, JobRecorder& recorder) const;
  std::vector<std::string> Fit(AnalysisSession& session, const Spreadsheet& sheet) const;
};

// The words for the intervals of quantiles.
extern const Choices kIntervals;

// The fields bootstrap and bootstrapSeed of a job that fits.
void CheckBootstrap(const std::optional<double>& samples, const std::optional<double>& seed,
                    JobFaults& faults);

}  // namespace brenvolt
