// The capability of a measured process: what a person may ask for, and its run.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/base/specification_check.h"
#include "host/jobs/measured/capability_results.h"

namespace brenvolt {

inline constexpr std::string_view kCapabilityPlotKinds[] = {kOverview, "control-charts", "histogram"};
// By what words people choose: how the deviation within is estimated, the charts, and the rules for their signals.
extern const Choices kWithinEstimates;
extern const Choices kControlCharts;
extern const Choices kControlRules;

struct CapabilityJob {
  // What holds where nothing is said.
  static constexpr const char* kUsualRules = "western-electric";
  static constexpr const char* kUsualWithin = "moving-range";
  static constexpr const char* kUsualWithinSubgroups = "pooled";
  static constexpr double kUsualBootstrapSeed = 1;
  static constexpr double kUsualConfidence = 0.95;

  JobData data;
  std::string response;                               // empty: the one that is specified
  std::vector<ResponseSpecification> specifications;  // of the response
  // The column that tells subgroups apart, or else how many cases in a row make one; without, every value stands alone.
  std::optional<std::string> subgroup;
  std::optional<std::string> within;        // without a word, the usual one with subgroups or without
  std::optional<std::string> controlChart;  // without, i-mr, or by the sizes of the subgroups
  std::optional<std::string> rules;         // without a word, kUsualRules
  // Which distribution's percentiles are used; without, the one that fits best, where the values are not normal.
  std::optional<std::string> distribution;
  std::optional<std::string> rankBy;  // by what the best is found; without a word, ks, as in a fit
  // Samples of a parametric bootstrap, which gives intervals to what rests on a fitted distribution.
  std::optional<double> bootstrap;
  std::optional<double> bootstrapSeed;  // without a number, kUsualBootstrapSeed
  std::optional<double> confidence;     // of the intervals, between 0 and 1; without, kUsualConfidence
  std::optional<std::string> select;    // as in a fit
  std::filesystem::path report;         // empty: none is written; front ends do it (host/jobs/reports)
  Plot plot;

  // All that can be refused without the data.
  JobFaults Check() const;
  // Of a sheet that is open, which is left as it was. Throws WrongJob, also for values that have no capability and while a macro
  // is recorded, and Error.
  CapabilityFindings Run(Spreadsheet& sheet, const JobRecorder& recorder) const;

 private:
  CapabilityFindings Analyse(const Spreadsheet& sheet) const;
};

}  // namespace brenvolt
