// Pictures of data: of the variables of a sheet, of simulated samples, of matrices.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jobs/base/plot.h"
#include "host/jobs/notation/design_text.h"
#include "host/jobs/simulation_results.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

inline constexpr std::string_view kScatterKind = "scatter-matrix";
inline constexpr std::string_view kHeatMapKind = "heat-map";
inline constexpr std::string_view kDataPlotKinds[] = {kOverview, "histogram", "box-plot", kScatterKind,
                                                      kHeatMapKind};

// The values of a variable in the cases that the selection accepts, ascending.
std::vector<double> SortedValues(const Spreadsheet& sheet, const Variable& variable);

// What is known of where data come from.
struct DataOrigin {
  std::vector<NotedVariable> distributions;  // that variables of these names were drawn from
  bool isTruncated = false;                  // each between its 0.5 % and 99.5 % quantiles
  // What pairs of variables were asked to be correlated by, each pair in both orders.
  std::map<std::pair<std::string, std::string>, double> asked;

  void Ask(const std::string& first, const std::string& second, double correlation);
  // NaN where nothing is known.
  double Asked(const std::string& first, const std::string& second) const;
};

// The correlations of a matrix are those that data were asked to have.
void TakeAsked(const Spreadsheet& matrix, DataOrigin& origin);

// Of each numeric variable what its cases are, all that the selection accepts, with what its distribution lets expect;
// of all together their rank correlations, which an overview shows first where some were asked for. Of a matrix its
// correlations. Throws WrongJob for a kind that the sheet has nothing for.
std::vector<PlotPage> DataPlots(const Spreadsheet& sheet, std::string_view kind,
                                const DataOrigin& origin = {});

// That of one numeric variable: its histogram, its box plot, or both as an overview.
PlotPage DataPage(const Spreadsheet& sheet, const Variable& variable, std::string_view kind);

// What simulated samples come from.
DataOrigin OriginOf(const DesignText& design, bool isTruncated, const SimulationResults& results);

}  // namespace brenvolt
