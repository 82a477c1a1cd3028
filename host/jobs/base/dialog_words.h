// The words by which people name what the dialogs of an analysis offer, and the automation members that stand
// for them: one vocabulary for the command and the Python package, which both drive the dialogs by these
// members.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/jobs/base/job_fault.h"

namespace brenvolt {

// A distribution, and its members in the dialog of the fit specification.
struct NamedDistribution {
  std::string name;  // that of its facts in lower case
  bool continuous;
  std::string check;
  std::string offset;  // empty: it has none
};

// In the order of the distributions' codes, which are the places here.
extern const std::vector<NamedDistribution> kNamedDistributions;

// The distribution that a person names, in any case, with blanks or hyphens between its words ("Log-Normal"),
// or by another usual name ("gev"); null when there is none.
const NamedDistribution* FindDistribution(std::string_view name);
// All names, separated by commas.
std::string AllDistributionNames();
// What is said of a name that none has: "no distribution called 'x'; the distributions are normal, …", and
// before them the nearest name where one is near.
std::string NoSuchDistribution(std::string_view name);

// Of the fit specification: by what continuous and discrete variables are ranked, the bins of the chi-square
// test, and what is left out with a missing value.
extern const Choices kCriteria;
extern const Choices kDiscreteCriteria;
extern const Choices kBinnings;
extern const Choices kDeletions;
// Of the simulation: how samples are drawn.
extern const Choices kSimulationMethods;
// True for a method whose samples follow a correlation matrix.
bool InducesCorrelation(const std::string& method);

// The graphs of a fit, and the members that make them.
struct FitGraph {
  std::string_view word;
  std::string_view member;
};
inline constexpr FitGraph kFitGraphs[] = {{"histogram", "HistogramWithFit"},
                                          {"cumulative-histogram", "CumulativeHistogram"},
                                          {"pp", "PPPlot"},
                                          {"qq", "QQPlot"},
                                          {"empirical-distribution", "EmpiricalCDFPlot"},
                                          {"box-plot", "BoxPlot"}};
// Several of them in one.
inline constexpr FitGraph kFitSummaryGraph{"summary", "SummaryGraph"};

// The property that marks a variable with saved distributions.
inline constexpr std::string_view kOrderProperty = "zOrder";
inline constexpr std::string_view kTruncationProperty = "zTruncProp";
inline constexpr std::string_view kInvalidFitProperty = "InvalidFit";

}  // namespace brenvolt
