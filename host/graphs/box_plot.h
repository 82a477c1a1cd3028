// Box plots of samples, and the summary of one sample.
#pragma once

#include <span>

#include "host/graphs/graph.h"

namespace brenvolt {

// A whisker reaches to the last value within this many interquartile ranges of its quartile; values beyond
// are outliers (Tukey 1977, Exploratory Data Analysis, section 2C).
inline constexpr double kWhiskerRanges = 1.5;

// The box of finite ascending values, one at least (Error otherwise). Quartiles are linear between order
// statistics (host/statistics/percentiles.h).
GraphBox MakeBox(std::span<const double> sorted, std::string name);

// A graph of one box per sample is made by adding boxes to it. Of very many outliers some thousand are shown,
// and a note says so.
Graph BoxPlot(std::span<const double> sorted, const GraphTexts& texts);

// Panels side by side, with lines of text about the sample ("Mean 4.2") as notes.
Graph SummaryGraph(std::vector<Graph> panels, std::vector<std::string> lines, std::string title);

}  // namespace brenvolt
