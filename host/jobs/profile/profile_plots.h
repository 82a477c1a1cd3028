// Pictures of simulated responses.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "host/graphs/graph.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/profile/profile_results.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

inline constexpr std::string_view kProfilePlotKinds[] = {kOverview, "histogram",      "tornado",
                                                         "profile", "defect-profile", "capability"};

// What there is to draw of a response.
struct ResponseGraphs {
  std::string name;
  std::vector<Graph> graphs;            // the histogram and the tornado graph; none without predictions
  std::vector<Graph> profiles;          // of its predicted values
  std::vector<Graph> defectProfiles;    // of its defects
  std::vector<std::string> capability;  // a line for each index; none without a specification
  std::vector<std::string> notes;       // on all of these
};

// Gives each panel of a graph of profiles the band that holds nine tenths of the runs, in classes of the predictor that
// hold equally many runs. `runs` has a column for each predictor and response.
void AddProfileBands(const Spreadsheet& runs, Graph& profiles);

// The panels of a compound graph that are about a response.
std::vector<Graph> PanelsOf(const Graph& compound, const std::string& response);

// The indices of a response for people.
std::vector<std::string> CapabilityLines(const ResponseResults& response);

// The graphs of that kind, of the responses that have any.
std::vector<PlotPage> ProfilePlots(std::span<const ResponseGraphs> responses, std::string_view kind);

}  // namespace brenvolt
