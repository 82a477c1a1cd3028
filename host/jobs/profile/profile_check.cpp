// What can be wrong with a profile that is asked for.
#include <algorithm>
#include <limits>

#include "host/analysis/run_bounds.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/formula/assignment_words.h"
#include "host/formula/compiler.h"
#include "host/formula/formula.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/range_check.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/base/specification_check.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/profile/profile_plots.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt {
namespace {

constexpr double kMostInteger = std::numeric_limits<std::int32_t>::max();

// Adds the name of the response to `responses` where the formula is one. Which names there are is the
// profiler's business; here only the grammar counts.
void CheckFormula(const std::string& text, std::vector<std::string>& responses, JobFaults& faults) {
  const auto anyName = [](std::string_view, bool) { return std::optional<std::size_t>(0); };
  try {
    const FormulaAssignment assignment = SplitAssignment(text);
    if (!assignment.name || Trim(std::string_view(text).substr(assignment.begin)).empty()) {
      faults.push_back({"formulas", ExpectedAssignment(text)});
      return;
    }
    responses.push_back(*assignment.name);
    Compile(text, anyName, "formula for " + *assignment.name, assignment.begin);
  } catch (const FormulaError& error) {
    faults.push_back({"formulas", error.Where() + ": " + error.what()});
  }
}

// Each response or predictor once.
template <class Entries, class Name>
void CheckEachOnce(std::string_view field, const Entries& entries, Name name, JobFaults& faults) {
  std::vector<std::string> names;
  for (const auto& entry : entries) names.push_back(entry.*name);
  CheckOnce(field, std::move(names), faults);
}

void CheckEntries(const ProfileJob& job, JobFaults& faults) {
  for (const ProfileJob::Noise& one : job.noise) {
    CheckNumber("noise", one.standardDeviation, faults, one.response);
    if (one.standardDeviation < 0)
      faults.push_back({"noise", Quoted(one.response) + ": the standard deviation must not be less than 0"});
  }
  for (const ResponseSpecification& one : job.specifications) CheckLimits(one.response, one.limits, faults);
  for (const ProfileJob::Fixed& one : job.fixed) {
    if (const double* number = std::get_if<double>(&one.value)) {
      CheckNumber("fixed", *number, faults, one.predictor);
    } else if (std::get<std::string>(one.value).empty()) {
      faults.push_back({"fixed", Quoted(one.predictor) + ": expected a number or the name of a class"});
    }
  }
  for (const ProfileJob::Truncation& one : job.truncate) {
    for (const auto& bound : {one.minimum, one.maximum}) {
      if (bound) CheckNumber("truncate", *bound, faults, one.predictor);
    }
    CheckAscending("truncate", one.predictor, one.minimum, one.maximum, faults);
  }
  for (const ProfileJob::Truncation& one : job.truncate) {
    if (std::ranges::find(job.fixed, one.predictor, &ProfileJob::Fixed::predictor) != job.fixed.end())
      faults.push_back({"truncate", Quoted(one.predictor) + ": a predictor that is fixed has no draws"});
  }
  CheckEachOnce("noise", job.noise, &ProfileJob::Noise::response, faults);
  CheckEachOnce("specifications", job.specifications, &ResponseSpecification::response, faults);
  CheckEachOnce("fixed", job.fixed, &ProfileJob::Fixed::predictor, faults);
  CheckEachOnce("truncate", job.truncate, &ProfileJob::Truncation::predictor, faults);
}

}  // namespace

JobFaults ProfileJob::Check() const {
  JobFaults faults;
  CheckReading(data, faults);
  if (models.empty() && formulas.empty() && functions.empty())
    faults.push_back({"models", "nothing to predict: give a model or a formula"});
  std::vector<std::string> responses;
  for (const std::string& text : formulas) CheckFormula(text, responses, faults);
  CheckOnce("formulas", std::move(responses), faults);
  CheckWholeNumber("samples", samples, 1, kMostInteger, faults);
  const bool isInPieces =
      output.empty() || HasEnding(output, ".csv") || IsNumpyArchiveName(output) || !IsRegularTarget(output);
  if (samples > kMostProfilerRuns && !isInPieces)
    faults.push_back({"output", "more than " + std::to_string(kMostProfilerRuns) +
                                    " runs go to a .csv or .npz file, piece by piece"});
  if (seed) CheckWholeNumber("seed", *seed, 1, kMostInteger, faults);
  CheckEntries(*this, faults);
  inputs.Read(nullptr, faults);
  DesignText noisy;
  for (const std::string& pair : noiseCorrelations)
    AddCorrelation("noiseCorrelations", pair, nullptr, noisy, faults);
  if (data.decimalComma && data.file.empty() && !inputs.IsEmpty())
    faults.push_back({"decimalComma", "this applies to text files, and no data file is given"});
  if (correlated && (!inputs.matrix.empty() || givenMatrix != nullptr))
    faults.push_back({"matrix", "the predictors follow either a matrix or their columns"});
  CheckDataTarget("output", output, faults);
  CheckSize("output", output, samples, faults);
  CheckGraphsTarget("graphs", graphs, faults);
  std::vector<JobFile> files{{"data", data.file}, {"fromFile", inputs.fromFile}, {"matrix", inputs.matrix}};
  for (const auto& model : models) files.push_back({"models", model});
  CheckPlot(plot, kProfilePlotKinds, faults);
  const bool needsLimits = plot.Kind() == "defect-profile" || plot.Kind() == "capability";
  if (plot.IsAsked() && needsLimits && specifications.empty())
    faults.push_back({"plotKind", "no response has a specification to draw " + std::string(plot.Kind()) +
                                      " by: give the limits of one"});
  CheckReport(report, faults);
  rounds.Check(faults);
  CheckTargetsApart(files, {{"output", output}, {"graphs", graphs}, {"plot", plot.file}, {"report", report}},
                    faults);
  return faults;
}

}  // namespace brenvolt
