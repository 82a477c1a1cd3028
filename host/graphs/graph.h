// A graph as data: what is to be drawn, with its titles, and nothing about how. Whoever draws it, prints it
// as JSON or puts it into a spreadsheet reads these plain structures.
//
// A graph holds any mix of bars, series, curves, bands, regions and boxes over common axes, or a table of cells; the
// kind says what it is, and with it what a reader may expect (histogram_graph.h, probability_plots.h, box_plot.h,
// scatter_matrix.h make them).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

enum class GraphKind : std::uint8_t {
  kHistogram,
  kCumulativeHistogram,
  kProbabilityPlot,  // P-P
  kQuantilePlot,     // Q-Q
  kEmpiricalDistribution,
  kBoxPlot,
  kSummary,        // nothing of its own but panels and notes
  kProfile,        // a response against a predictor
  kTornado,        // a bar for each predictor, named after it, the longest first
  kFitComparison,  // a histogram with the curves of several fits
  kScatterMatrix,  // panels for every pair of variables
  kScatter,        // one variable against another
  kHeatMap,        // a table of numbers, each in its colour
  kText            // notes alone
};

// The name of a kind in output that programs read: "histogram", "cumulative-histogram", "pp", "qq",
// "empirical-distribution", "box-plot", "summary", "profile", "tornado", "fit-comparison", "scatter-matrix",
// "scatter", "heat-map", "text".
std::string_view GraphKindName(GraphKind kind);

// Adjoining bars: bar i reaches from bounds[i] to bounds[i + 1] and up to heights[i].
struct GraphBars {
  std::string name;
  std::vector<double> bounds;  // ascending, one more than heights
  std::vector<double> heights;
};

enum class SeriesStyle : std::uint8_t {
  kPoints,
  kLine,
  kSteps  // y holds from its x to the next
};

// A line of two points over one x marks that x: a specification limit, a target.
struct GraphSeries {
  std::string name;
  SeriesStyle style = SeriesStyle::kPoints;
  std::vector<double> x;
  std::vector<double> y;
};

// A function of x by its formula (host/formula/curve.h), drawn over a range.
struct GraphCurve {
  std::string name;
  std::string formula;
  double from = 0;
  double to = 0;
  bool wholeNumbers = false;  // the function lives on whole numbers
};

// What lies between two lines over ascending x: limits of confidence, the spread of runs.
struct GraphBand {
  std::string name;
  std::vector<double> x;
  std::vector<double> lower;
  std::vector<double> upper;
};

// A range of x that stands out, such as what a specification excludes. Either end may be infinite.
struct GraphRegion {
  std::string name;
  double from = 0;
  double to = 0;
};

struct GraphBox {
  std::string name;
  double lowerQuartile = 0;
  double median = 0;
  double upperQuartile = 0;
  double lowerWhisker = 0;
  double upperWhisker = 0;
  double mean = 0;
  std::vector<double> outliers;  // ascending
};

// A table of numbers from -1 to 1, row by row; NaN where there is none.
struct GraphCells {
  std::string name;
  std::vector<std::string> columns;
  std::vector<std::string> rows;
  std::vector<double> values;
};

struct Graph {
  GraphKind kind = GraphKind::kHistogram;
  std::string title;
  std::string xTitle;
  std::string yTitle;
  std::vector<GraphBars> bars;
  std::vector<GraphSeries> series;
  std::vector<GraphCurve> curves;
  std::vector<GraphBand> bands;
  std::vector<GraphRegion> regions;
  std::vector<GraphBox> boxes;
  std::vector<GraphCells> cells;
  std::vector<Graph> panels;
  // What a reader must know of the data shown ("2200 of 1000000 points are shown").
  std::vector<std::string> notes;
  // How many panels are side by side, row after row; 0 leaves it to the drawing code. And by how many layout
  // units the window is to be larger than the usual one.
  std::size_t panelColumns = 0;
  std::int32_t extraWidth = 0;
  std::int32_t extraHeight = 0;
};

// The texts of a graph, which its maker has in the reader's language.
struct GraphTexts {
  std::string title = {};
  std::string xTitle = {};
  std::string yTitle = {};
  std::string dataName = {};       // of the bars, points or steps made from data
  std::string referenceName = {};  // of a reference line
};

// The curve at evenly spaced values of its range, both ends included (at every whole number of the range, or
// at as many of them evenly spaced, for a function of whole numbers). Throws Error for an invalid formula.
inline constexpr std::size_t kCurvePoints = 201;
GraphSeries SampleCurve(const GraphCurve& curve, std::size_t points = kCurvePoints);

// The data of a graph, side by side in columns named after their part ("Observed x", "Observed y"), missing
// if a column is shorter than the longest; a curve is sampled, its formula is a text in the first case. Of
// a graph with panels, the columns of all panels, each named after its panel's title first.
std::unique_ptr<Spreadsheet> GraphTable(const Graph& graph);

}  // namespace brenvolt
