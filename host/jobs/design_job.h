// Distributions and correlations entered by hand: what a person may ask for, and its run.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/notation/design_text.h"

namespace brenvolt {

// What every job takes that works on designed variables.
struct HandInputs {
  std::vector<std::string> designed;      // variables in the notation: "h ~ normal(50.2, 0.05)"
  std::vector<std::string> correlations;  // "h,a=0.4"
  // The same from programs, which need not write names into texts: names with distributions in the notation, and pairs.
  std::vector<std::pair<std::string, std::string>> named;
  std::vector<NotedCorrelation> pairs;
  std::string matrix;  // its name (NamedMatrix); the correlations are entered into it
  std::shared_ptr<const Spreadsheet> correlationTable;  // a square table in place of pairs (MatrixFromTable)
  std::filesystem::path fromFile;                       // a text file of such lines, before the others

  bool HasCorrelations() const {
    return !correlations.empty() || !pairs.empty() || correlationTable != nullptr;
  }
  bool IsEmpty() const {
    return designed.empty() && named.empty() && !HasCorrelations() && matrix.empty() && fromFile.empty();
  }
  // What the texts say, with the faults of all. Correlations may also name `others`; if that is null, any variable.
  DesignText Read(const std::vector<std::string>* others, JobFaults& faults) const;
  // The same where variables hold numbers alone.
  DesignText ReadNumeric(const std::vector<std::string>* others, JobFaults& faults) const;
};

// Fills the open dialog of the design: variables that it lacks are added, those that it has get new distributions.
// `matrix` may be null. Throws Error.
void FillDesign(AnalysisSession& session, const DesignText& design, const Table& matrix);
// Enters it in an analysis that has just started, and goes on to the dialog of its simulation. Throws Error and WrongJob.
void BeginDesigned(AnalysisSession& session, const DesignText& design, const Table& matrix);
// The array by which dialogs take a distribution, and back.
Variant::Array SpecificationOf(const NotedDistribution& noted);
NotedDistribution DistributionFrom(const Variant::Array& array);
// Every pair of a matrix sheet, also those of 0; none of null and of what is no matrix.
std::vector<NotedCorrelation> CorrelationsIn(const Spreadsheet* matrix);
// A note on the variables that a matrix lacks, for people; nothing where it has all.
std::optional<std::string> WhatMatrixLacks(const Table& matrix, const std::vector<std::string>& variables);
// The names of a sheet's variables.
std::vector<std::string> VariableNamesOf(const Spreadsheet& sheet);
// The variables that the open dialog of the design simulates.
std::vector<NotedVariable> DistributionsIn(AnalysisSession& session);
// What the open dialog of the design holds: the variables that are simulated, and correlations other than 0.
DesignText DesignIn(AnalysisSession& session);
// The least eigenvalue of the correlations of a design: unless it is above 0, a simulation repairs them.
double SmallestEigenvalue(const DesignText& design);

// The sheet of a new project.
inline constexpr std::string_view kNewDesignSheet = "Design";
// A run over such a sheet, without cases.
void OpenNewDesign(JobRun& run, JobRecorder& recorder);

struct DesignFindings {
  DesignText design;
  std::string sheet;               // of the project
  std::vector<std::string> notes;  // for people
};

struct DesignJob {
  std::filesystem::path project;  // made, or changed
  std::string sheet;              // of the project; empty: the first whose variables carry distributions
  HandInputs inputs;              // none: the project's design is read

  // All that can be refused without the project.
  JobFaults Check() const;
  // Throws WrongJob, JobFailed and Error; the project is then as it was.
  DesignFindings Run(ProgramInterface& interface, JobRecorder& recorder) const;
  // The same from the project's sheet, or a new one, that is open.
  DesignFindings Run(const JobInput& input, JobRecorder& recorder) const;
};

}  // namespace brenvolt
