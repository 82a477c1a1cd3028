// The graphs of a fit for programs and as pictures.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <vector>

#include "host/analysis/result_table.h"
#include "host/jobs/base/job_recorder.h"
#include "host/jobs/base/plot.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Writes the data of the graphs that the fit results dialog, which is the open one, makes of each variable
// with the fit that is saved first, as one JSON object: histogram, cumulative histogram, P-P, Q-Q, empirical
// distribution and box plot. A variable without a fit has none. See docs/guide/fitting.md for its shape. For
// `job` it is one action. Throws Error, naming the file, when it cannot be written.
void WriteFitGraphs(CAnalysisSupport& analysis, const std::filesystem::path& path, JobRecorder& job);

// The graph of several fits, beside those of kFitGraphs: the histogram with the curves of the best.
inline constexpr std::string_view kFitComparison = "fit-comparison";
inline constexpr std::size_t kComparedFits = 3;
// And the return levels of the fit (fit_quantiles.h).
inline constexpr std::string_view kReturnLevels = "return-levels";
inline constexpr std::string_view kFitPlotKinds[] = {
    kOverview, kFitComparison,           "histogram", "cumulative-histogram", "pp",
    "qq",      "empirical-distribution", "box-plot",  kReturnLevels};

// What there is to draw of each variable that the fit results dialog shows: the graphs of its kind. A graph that
// cannot be made says why in its place; of a variable without fits the data of the sheet are shown.
std::vector<PlotPage> FitPlots(AutomationObject& dialog, const Spreadsheet& sheet, const Plot& plot);

// One of these, or the summary, for a fit of a variable, by their places among the results, from 1; fit 0 is what pictures
// show: the fit that is saved first, or the data where there is none. No macro has it as a step.
Graph FitGraphOf(CAnalysisSupport& analysis, std::int32_t variable, std::int32_t fit, const Plot& plot);

// The page of a variable, by its place in the summary of the dialog from 0.
PlotPage FitPlotOf(AutomationObject& dialog, const ResultTable& summary, std::size_t variable,
                   const Spreadsheet& sheet, const Plot& plot);

}  // namespace brenvolt
