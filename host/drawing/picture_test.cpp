// What pictures hold, element by element.
#include "host/graphs/picture.h"

#include <gtest/gtest.h>

#include <QImage>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>

#include "host/base/error.h"
#include "host/drawing/svg_support_test.h"
#include "host/graphs/box_plot.h"
#include "host/graphs/correlation_map.h"
#include "host/graphs/histogram_graph.h"
#include "host/graphs/probability_plots.h"
#include "host/graphs/scatter_matrix.h"

namespace brenvolt {
namespace {

const std::string kBar = "#bfd7ea";
const std::string kFirstLine = "#d55e00";
const std::string kPoint = "#0072b2";
const std::string kMarkerColour = "#a03000";
const std::string kReferenceColour = "#777777";
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kPixel = 1;

// Quantiles of a normal distribution, so that nothing depends on chance.
std::vector<double> NormalValues(std::size_t count, double mean, double deviation) {
  GraphCurve cumulative{"", "iNormal(x,0,1)", -4, 4, false};
  const GraphSeries table = SampleCurve(cumulative, 4001);
  std::vector<double> values;
  std::size_t k = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double p = (static_cast<double>(i) + 0.5) / static_cast<double>(count);
    while (k + 1 < table.y.size() && table.y[k] < p) ++k;
    values.push_back(mean + deviation * table.x[k]);
  }
  return values;
}

const std::vector<double> kValues = NormalValues(400, 10, 2);
const std::vector<double> kBounds{3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};

Graph Histogram() {
  const GraphCurve curve{"Normal(10, 2)", "400*1*Normal(x,10,2)", 0, 0, false};
  return HistogramGraph(kValues, kBounds, HistogramKind::kPlain, {&curve, 1},
                        {"Histogram of Yield", "Yield (kg)", "Count", "Observed", ""});
}

Graph WithLimits(double lower, double target, double upper) {
  Graph graph = Histogram();
  const auto mark = [&](const char* name, double x) {
    graph.series.push_back({name, SeriesStyle::kLine, {x, x}, {0, 80}});
  };
  mark("LSL", lower);
  mark("Target", target);
  mark("USL", upper);
  graph.regions = {{"Out of specification", -kInfinity, lower}, {"Out of specification", upper, kInfinity}};
  return graph;
}

// Where a value lies along an axis, from the labels of the axis, which stand at their middle.
double PlaceOnX(const SvgPicture& picture, double value, const std::string& low, const std::string& high) {
  const SvgText* a = picture.Find(low);
  const SvgText* b = picture.Find(high);
  if (a == nullptr || b == nullptr) throw Error("no such label", low + " or " + high);
  const double from = (a->box.left + a->box.right) / 2;
  const double to = (b->box.left + b->box.right) / 2;
  const double x = std::stod(low);
  return from + (to - from) * (value - x) / (std::stod(high) - x);
}

TEST(Picture, BarsAreAsHighAsTheirCountsAndStandWhereTheirClassesAre) {
  const Graph graph = Histogram();
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> bars = picture.Filled(kBar);
  ASSERT_EQ(bars.size(), graph.bars[0].heights.size());
  const double tallest = std::ranges::max(graph.bars[0].heights);
  const auto tallestBar =
      std::ranges::max_element(bars, {}, [](const SvgShape& bar) { return bar.box.bottom - bar.box.top; });
  const double pixels = (tallestBar->box.bottom - tallestBar->box.top) / tallest;
  for (std::size_t i = 0; i < bars.size(); ++i) {
    EXPECT_NEAR(bars[i].box.bottom - bars[i].box.top, pixels * graph.bars[0].heights[i], kPixel) << i;
    EXPECT_NEAR(bars[i].box.left, PlaceOnX(picture, graph.bars[0].bounds[i], "4", "16"), 2 * kPixel) << i;
    EXPECT_NEAR(bars[i].box.bottom, bars[0].box.bottom, 0.01) << i;
  }
}

TEST(Picture, TheCurveFollowsTheDensityInTheUnitsOfTheBars) {
  const Graph graph = Histogram();
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> bars = picture.Filled(kBar);
  const double base = bars[0].box.bottom;
  const double pixels = (base - bars[6].box.top) / graph.bars[0].heights[6];
  const std::vector<SvgShape> lines = picture.Lines(kFirstLine);
  ASSERT_EQ(lines.size(), 2u);  // and that of the legend
  const GraphSeries density = SampleCurve(graph.curves[0]);
  ASSERT_GE(lines[0].points.size(), density.x.size() / 2);
  const double left = bars[0].box.left;
  const double unit = bars[0].box.right - left;
  for (const SvgPoint& point : lines[0].points) {
    const double x = 3 + (point.x - left) / unit;
    const double z = (x - 10) / 2;
    const double expected = 400 * std::exp(-z * z / 2) / (2 * std::sqrt(2 * M_PI));
    EXPECT_NEAR((base - point.y) / pixels, expected, 0.6) << x;
  }
}

TEST(Picture, LimitsStandAtTheirValuesAndWhatTheyExcludeIsShaded) {
  const SvgPicture picture = DrawSvg(WithLimits(7, 7.4, 13));
  const std::vector<SvgShape> lines = picture.Lines(kMarkerColour);
  ASSERT_EQ(lines.size(), 3u);
  const double limits[] = {7, 7.4, 13};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(lines[i].box.left, PlaceOnX(picture, limits[i], "4", "16"), 2 * kPixel);
    EXPECT_EQ(lines[i].box.left, lines[i].box.right);
    EXPECT_NE(lines[i].dashes, "");
  }
  for (const char* text : {"LSL 7", "Target 7.4", "USL 13"}) EXPECT_NE(picture.Find(text), nullptr) << text;
  const std::vector<SvgShape> regions = picture.Filled(kFirstLine);
  ASSERT_EQ(regions.size(), 2u);
  EXPECT_EQ(picture.Filled(kFirstLine, "rect").size(), 1u);  // in the legend, once for both
  EXPECT_NEAR(regions[0].box.right, lines[0].box.left, kPixel);
  EXPECT_NEAR(regions[1].box.left, lines[2].box.left, kPixel);
}

TEST(Picture, PointsOfAQuantilePlotLieOnTheReferenceLineOfAnExactFit) {
  const auto quantile = [](std::span<const double> p, std::span<double> x) {
    std::copy_n(kValues.begin(), p.size(), x.begin());
  };
  const Graph graph =
      QuantilePlot(kValues, quantile, {"Q-Q plot", "Theoretical", "Observed", "Fit", "Reference"});
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> points = picture.Filled(kPoint, "circle");
  ASSERT_EQ(points.size(), kValues.size() + 1);
  const std::vector<SvgShape> reference = picture.Lines(kReferenceColour);
  ASSERT_EQ(reference.size(), 2u);
  const SvgBox& line = reference[0].box;
  for (std::size_t i = 0; i < kValues.size(); ++i) {
    const SvgPoint& point = points[i].points[0];
    const double share = (point.x - line.left) / (line.right - line.left);
    EXPECT_NEAR(point.y, line.bottom + share * (line.top - line.bottom), kPixel);
  }
}

Graph Tornado(std::size_t bars) {
  Graph graph;
  graph.kind = GraphKind::kTornado;
  graph.title = "Tornado of O3";
  graph.yTitle = "Rank correlation";
  for (std::size_t i = 0; i < bars; ++i) {
    const auto place = static_cast<double>(i);
    graph.bars.push_back(
        {"predictor " + std::to_string(i),
         {place, place + 1},
         {(i % 2 == 0 ? 0.8 : -0.8) * static_cast<double>(bars - i) / static_cast<double>(bars)}});
  }
  return graph;
}

TEST(Picture, ATornadoHasTheLongestBarOnTopAndBothSignsApart) {
  const SvgPicture picture = DrawSvg(Tornado(4));
  const std::vector<SvgShape> right = picture.Filled(kBar);
  const std::vector<SvgShape> left = picture.Filled("#e8c088");
  ASSERT_EQ(right.size(), 2u);
  ASSERT_EQ(left.size(), 2u);
  EXPECT_NEAR(right[0].box.left, left[0].box.right, kPixel);
  EXPECT_NEAR((right[0].box.right - right[0].box.left) / (right[1].box.right - right[1].box.left), 2, 0.02);
  EXPECT_LT(right[0].box.bottom, left[0].box.top);
  const SvgText* first = picture.Find("predictor 0");
  ASSERT_NE(first, nullptr);
  EXPECT_NEAR((first->box.top + first->box.bottom) / 2, (right[0].box.top + right[0].box.bottom) / 2, 3);
}

TEST(Picture, ABoxShowsItsQuartilesMedianAndOutliers) {
  std::vector<double> values{-20, 1, 2, 3, 4, 5, 6, 7, 8, 9, 30};
  const Graph graph = BoxPlot(values, {"Box plot of x", "", "x", "x", ""});
  const GraphBox& box = graph.boxes[0];
  const SvgPicture picture = DrawSvg(graph);
  const auto boxes = picture.Filled(kBar, "rect");
  ASSERT_FALSE(boxes.empty());
  EXPECT_NEAR(boxes[0].box.left, PlaceOnX(picture, box.lowerQuartile, "0", "30"), 2 * kPixel);
  EXPECT_NEAR(boxes[0].box.right, PlaceOnX(picture, box.upperQuartile, "0", "30"), 2 * kPixel);
  const auto outliers = picture.Filled(kPoint, "circle");
  ASSERT_EQ(outliers.size(), 2u);
  EXPECT_NEAR(outliers[1].points[0].x, PlaceOnX(picture, 30, "0", "30"), 2 * kPixel);
}

TEST(Picture, TheMedianOfABoxIsALineOfItsOwn) {
  const Graph graph = BoxPlot(kValues, {"Box plot of Yield", "", "Yield", "Yield", ""});
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> lines = picture.Lines("#222222");
  const auto median =
      std::ranges::find_if(lines, [](const SvgShape& line) { return line.box.left == line.box.right; });
  ASSERT_NE(median, lines.end());
  EXPECT_NEAR(median->box.left, PlaceOnX(picture, graph.boxes[0].median, "4", "16"), 2 * kPixel);
  const SvgShape box = picture.Filled(kBar, "rect").front();
  EXPECT_NEAR(median->box.top, box.box.top, 2 * kPixel);
  EXPECT_NEAR(median->box.bottom, box.box.bottom, 2 * kPixel);
}

TEST(Picture, CurvesOfWholeNumbersDifferInPatternAsWell) {
  Graph graph = Histogram();
  graph.curves = {{"one", "x", 0, 80, true}, {"two", "2*x", 0, 80, true}};
  const SvgPicture picture = DrawSvg(graph);
  ASSERT_FALSE(picture.Lines(kFirstLine).empty());
  ASSERT_FALSE(picture.Lines(kPoint).empty());
  EXPECT_NE(picture.Lines(kFirstLine).front().dashes, picture.Lines(kPoint).front().dashes);
}

TEST(Picture, ALongNameInTheLegendTakesTwoLines) {
  Graph graph = Histogram();
  graph.curves[0].name = "General Extreme Value(location=3.8747, scale=0.1980, shape=-0.0501)";
  const SvgPicture picture = DrawSvg(graph, 400);
  EXPECT_NE(picture.Find("General Extreme Value(location=3.8747, scale=0.1980,"), nullptr);
  EXPECT_NE(picture.Find("shape=-0.0501)"), nullptr);
  EXPECT_EQ(picture.Collisions(), std::vector<std::string>{});
}

Graph Map(std::size_t variables) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < variables; ++i) names.push_back("variable number " + std::to_string(i));
  const auto correlation = [](std::size_t row, std::size_t column) {
    return row + column == 1 ? std::nan("") : row > column ? 0.75 : -0.5;
  };
  return CorrelationMap(names, correlation, "Correlations");
}

TEST(Picture, CellsOfAHeatMapHaveTheirNumbersAndColours) {
  const SvgPicture picture = DrawSvg(Map(4), 640);
  // From white to #0072b2 and to #d55e00, as far as the magnitude.
  EXPECT_EQ(picture.Filled("#4095c5", "rect").size() + picture.Filled("#4095c5").size(), 5u);
  EXPECT_EQ(std::ranges::count(picture.texts, "0.75", &SvgText::text), 5);
  EXPECT_EQ(std::ranges::count(picture.texts, "−0.50", &SvgText::text), 5);
  EXPECT_EQ(std::ranges::count(picture.texts, "1.00", &SvgText::text), 4);
  const auto cell = std::ranges::find(picture.texts, "0.75", &SvgText::text);
  const SvgText* row = picture.Find("variable number 2");
  ASSERT_NE(row, nullptr);
  EXPECT_NEAR(cell->box.top, row->box.top, 3);
  EXPECT_EQ(DrawSvg(Map(100), 640).Find("0.75"), nullptr);
  EXPECT_NE(DrawSvg(Map(200), 640).Find("the first 100 of 200 variables are shown"), nullptr);
}

Graph LongNames() {
  Graph graph = WithLimits(9.9, 10, 10.1);
  graph.title =
      "Histogram of the yield strength of the second batch of hot rolled plates, measured across the "
      "rolling direction at room temperature by both laboratories";
  graph.xTitle = graph.title;
  graph.yTitle = graph.title;
  graph.curves.push_back({"General Extreme Value(location=9.2345678, scale=2.0123456, shape=-0.2512345)",
                          "400*GEV(x,9.2,2,-0.25)", 3, 17, false});
  graph.notes = {graph.title, "values outside the classes: 12"};
  return graph;
}

Graph Summary() {
  const auto same = [](std::span<const double> in, std::span<double> out) {
    std::ranges::copy(in, out.begin());
    for (double& p : out) p = std::clamp(p / 20, 0.0, 1.0);
  };
  std::vector<std::string> lines;
  for (int i = 0; i < 9; ++i) lines.push_back("Statistic number " + std::to_string(i) + " 12.3456");
  return SummaryGraph(
      {Histogram(), BoxPlot(kValues, {"Box plot of Yield", "", "Yield", "Yield", ""}),
       ProbabilityPlot(kValues, same, {"P-P plot of Yield", "Theoretical", "Observed", "Fit", "Line"}),
       LongNames()},
      lines, "Summary of Yield");
}

Graph Pairs(std::size_t variables) {
  std::vector<std::vector<double>> values;
  for (std::size_t i = 0; i < variables; ++i) {
    values.push_back(kValues);
    std::rotate(values.back().begin(), values.back().begin() + static_cast<std::ptrdiff_t>(40 * i),
                values.back().end());
  }
  std::vector<ScatterVariable> columns;
  for (std::size_t i = 0; i < variables; ++i)
    columns.push_back({"variable of a long name " + std::to_string(i), values[i]});
  const auto text = [](std::size_t, std::size_t) {
    return std::vector<std::string>{"reached 0.123", "asked 0.150"};
  };
  return ScatterMatrix(columns, text, "Rank correlations");
}

TEST(Picture, PointsOfAScatterMatrixShareTheScalesOfTheirColumnsAndRows) {
  const Graph graph = Pairs(2);
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> points = picture.Filled(kPoint, "circle");
  ASSERT_EQ(points.size(), kValues.size());
  const GraphSeries& series = graph.panels[2].series[0];
  const auto [low, high] =
      std::ranges::minmax_element(points, {}, [](const SvgShape& p) { return p.points[0].x; });
  const auto [least, most] = std::ranges::minmax(series.x);
  for (const SvgShape& bar : picture.Filled(kBar)) EXPECT_GE(bar.box.right, low->points[0].x - 2 * kPixel);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double share = (series.x[i] - least) / (most - least);
    EXPECT_NEAR(points[i].points[0].x, std::lerp(low->points[0].x, high->points[0].x, share), kPixel) << i;
  }
}

TEST(Picture, CorrelationsKeepTheirDigitsInTheSmallestCells) {
  const Graph graph = Pairs(10);
  const SvgPicture picture = DrawSvg(graph, 640);
  EXPECT_EQ(std::ranges::count(picture.texts, "0.123", &SvgText::text), 45);
  EXPECT_EQ(std::ranges::count(picture.texts, "reached", &SvgText::text), 45);
  PictureStyle style;
  style.format = PictureFormat::kSvg;
  style.width = 640;
  EXPECT_NE(DrawPictures({&graph, 1}, style).find("viewBox=\"0 0 640 "), std::string::npos);
  EXPECT_LT(LeastWidthOf(graph), 640);
}

TEST(Picture, StepsRiseAtTheirValues) {
  Graph graph;
  graph.kind = GraphKind::kEmpiricalDistribution;
  graph.title = "Empirical distribution";
  graph.series = {{"Observed", SeriesStyle::kSteps, {10, 20, 40}, {0.25, 0.75, 1}}};
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> lines = picture.Lines(kPoint);
  ASSERT_FALSE(lines.empty());
  const SvgShape& steps = lines.front();
  const double height = steps.box.bottom - steps.box.top;
  std::vector<std::pair<double, double>> corners;  // where the line rises, and from what part of its height
  for (std::size_t i = 1; i < steps.points.size(); ++i) {
    if (std::abs(steps.points[i].y - steps.points[i - 1].y) > kPixel)
      corners.emplace_back(steps.points[i].x, (steps.box.bottom - steps.points[i].y) / height);
  }
  ASSERT_EQ(corners.size(), 3u);
  const double x[] = {10, 20, 40};
  const double y[] = {0.25, 0.75, 1};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(corners[i].first, PlaceOnX(picture, x[i], "10", "40"), 2 * kPixel) << i;
    EXPECT_NEAR(corners[i].second, y[i], 0.01) << i;
  }
}

TEST(Picture, ABandReachesFromItsLowerToItsUpperEdge) {
  Graph graph;
  graph.kind = GraphKind::kProfile;
  graph.title = "Profile";
  graph.series = {{"Mean", SeriesStyle::kLine, {0, 10}, {2, 2}}};
  graph.bands = {{"Band", {0, 10}, {1, 0}, {3, 4}}};
  const SvgPicture picture = DrawSvg(graph);
  const SvgText* low = picture.Find("0");
  ASSERT_NE(low, nullptr);
  std::vector<SvgShape> fills = picture.Filled(kPoint);
  ASSERT_FALSE(fills.empty());
  const SvgBox& band = fills.front().box;
  const std::vector<SvgShape> mean = picture.Lines(kFirstLine);
  ASSERT_FALSE(mean.empty());
  const double middle = mean.front().box.top;
  EXPECT_NEAR(band.bottom - middle, middle - band.top, kPixel);
  EXPECT_NEAR(band.left, mean.front().box.left, kPixel);
  EXPECT_NEAR(band.right, mean.front().box.right, kPixel);
}

TEST(Picture, NoTextLiesOnAnotherOrLeavesThePicture) {
  const struct {
    const char* name;
    Graph graph;
  } kRows[] = {{"histogram", Histogram()}, {"limits", WithLimits(7, 7.4, 13)},
               {"long", LongNames()},      {"summary", Summary()},
               {"tornado", Tornado(8)},    {"hundred", Tornado(100)},
               {"many", Tornado(1000)},    {"map", Map(3)},
               {"wide map", Map(100)},     {"pairs", Pairs(3)},
               {"ten pairs", Pairs(10)}};
  for (const auto& row : kRows) {
    for (const int width : {0, 480, 640, 1200}) {
      const SvgPicture picture = DrawSvg(row.graph, width);
      EXPECT_EQ(picture.Collisions(), std::vector<std::string>{}) << row.name << " at " << width;
      EXPECT_GT(picture.texts.size(), 5u) << row.name;
    }
  }
}

TEST(Picture, OfTooManyNamedBarsTheFirstAreShownAndANoteSaysSo) {
  const SvgPicture picture = DrawSvg(Tornado(1000));
  EXPECT_NE(picture.Find("the first 200 of 1000 are shown"), nullptr);
  EXPECT_NE(picture.Find("predictor 199"), nullptr);
  EXPECT_EQ(picture.Find("predictor 200"), nullptr);
}

TEST(Picture, MarkupInNamesIsText) {
  Graph graph = Histogram();
  graph.title = "<script>alert(\"a\" & 'b')</script>";
  EXPECT_NE(DrawSvg(graph).Find(graph.title), nullptr);
}

TEST(Picture, NothingConstantAndExtremeValuesDrawSomething) {
  Graph empty;
  empty.title = "Histogram of nothing";
  EXPECT_NE(DrawSvg(empty).Find("Histogram of nothing: no values"), nullptr);
  const struct {
    std::vector<double> x;
    std::vector<double> y;
  } kRows[] = {{{3}, {4}},
               {{0, 0}, {0, 0}},
               {{1e248, -1e248}, {1, 2}},
               {{1e9 + 0.001, 1e9 + 0.002}, {1e-12, 2e-12}},
               {{std::nan(""), 1}, {2, kInfinity}},
               {{5e-324, 1e-323}, {1, 2}}};
  for (const auto& row : kRows) {
    Graph graph;
    graph.kind = GraphKind::kScatter;
    graph.title = "Points";
    graph.series.push_back({"points", SeriesStyle::kPoints, row.x, row.y});
    const SvgPicture picture = DrawSvg(graph);
    EXPECT_NE(picture.Find("Points"), nullptr) << row.x[0];
    EXPECT_EQ(picture.Collisions(), std::vector<std::string>{}) << row.x[0];
  }
  Graph beyond;
  beyond.kind = GraphKind::kScatter;
  beyond.title = "Points";
  beyond.series.push_back({"points", SeriesStyle::kPoints, {1e300, -1e300}, {1, 2}});
  const SvgPicture words = DrawSvg(beyond);
  EXPECT_NE(words.Find("Points"), nullptr);
  EXPECT_NE(words.Find("the values are too large for an axis, which ends at 1e249"), nullptr);
}

TEST(Picture, ADensityWithAPoleLeavesTheBarsVisible) {
  Graph graph = Histogram();
  graph.curves = {{"pole", "400/((x-10)*(x-10))", 3, 17, false}};
  const SvgPicture picture = DrawSvg(graph);
  const SvgShape tallest = picture.Filled(kBar)[6];
  EXPECT_GT(tallest.box.bottom - tallest.box.top, picture.height / 4);
  for (const SvgShape& line : picture.Lines(kFirstLine)) EXPECT_GE(line.box.top, 20);
}

TEST(Picture, TenMillionPointsTakeLessThanASecondAndKeepTheirExtremes) {
  constexpr std::size_t kCount = 10'000'000;
  GraphSeries points{"points", SeriesStyle::kPoints, {}, {}};
  points.x.resize(kCount);
  points.y.resize(kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    points.x[i] = std::fmod(static_cast<double>(i) * 0.6180339887, 1.0);
    points.y[i] = std::fmod(static_cast<double>(i) * 0.7548776662, 1.0);
  }
  points.x[7'777'777] = 3;
  points.y[7'777'777] = 2;
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.title = "Many";
  graph.series.push_back(std::move(points));
  DrawSvg(Histogram());  // the library is loaded
  const auto begin = std::chrono::steady_clock::now();
  const std::string png = DrawPictures({&graph, 1}, {});
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  EXPECT_LT(taken.count(), 1.0);
  const SvgPicture picture = DrawSvg(graph);
  const std::vector<SvgShape> shown = picture.Filled(kPoint, "circle");
  EXPECT_LT(shown.size(), 50'000u);
  const auto farthest =
      std::ranges::max_element(shown, {}, [](const SvgShape& shape) { return shape.points[0].x; });
  EXPECT_NEAR(farthest->points[0].x, PlaceOnX(picture, 3, "0.0", "3.0"), 2 * kPixel);
}

TEST(Picture, FilesHaveTheirFormatsAndPdfAPageForEachGraph) {
  const std::vector<Graph> graphs{Histogram(), Summary(), Tornado(3)};
  const std::string pdf = DrawPictures(graphs, {PictureFormat::kPdf});
  EXPECT_TRUE(pdf.starts_with("%PDF-"));
  EXPECT_NE(pdf.find("/Count 3"), std::string::npos);
  EXPECT_NE(pdf.find("/FontFile"), std::string::npos);
  EXPECT_TRUE(DrawPictures({graphs.data(), 1}, {PictureFormat::kPng}).starts_with("\x89PNG"));
  EXPECT_THROW(DrawPictures(graphs, {PictureFormat::kSvg}), Error);
  EXPECT_THROW(DrawPictures({}, {}), Error);
}

TEST(Picture, AFaultyFormulaIsRefused) {
  Graph graph = Histogram();
  graph.curves[0].formula = "400*Normal(x,10";
  EXPECT_THROW(DrawSvg(graph), Error);
}

TEST(Picture, DrawingLeavesTheNumberFormatOfTheProcessAlone) {
  DrawSvg(Histogram());
  char text[8];
  std::snprintf(text, sizeof text, "%.1f", 0.5);
  EXPECT_STREQ(text, "0.5");
}

// The mean difference of the colours of a block of pixels; renderings of one picture differ at edges of shapes only.
double GreatestBlockDifference(const QImage& a, const QImage& b) {
  constexpr int kBlock = 16;
  double greatest = 0;
  for (int top = 0; top < a.height(); top += kBlock) {
    for (int left = 0; left < a.width(); left += kBlock) {
      double sums[3] = {};
      int pixels = 0;
      for (int y = top; y < std::min(top + kBlock, a.height()); ++y) {
        for (int x = left; x < std::min(left + kBlock, a.width()); ++x, ++pixels) {
          const QRgb p = a.pixel(x, y);
          const QRgb q = b.pixel(x, y);
          sums[0] += qRed(p) - qRed(q);
          sums[1] += qGreen(p) - qGreen(q);
          sums[2] += qBlue(p) - qBlue(q);
        }
      }
      for (const double sum : sums) greatest = std::max(greatest, std::abs(sum) / pixels);
    }
  }
  return greatest;
}

// BRENVOLT_NEW_PICTURES=1 in the environment writes the references anew; look at them then.
TEST(PictureReference, PicturesLookAsTheyDid) {
  constexpr double kTolerance = 12;  // of 255
  const struct {
    const char* name;
    Graph graph;
    PictureTheme theme;
  } kRows[] = {{"histogram", WithLimits(7, 10, 13), PictureTheme::kLight},
               {"summary", Summary(), PictureTheme::kDark},
               {"tornado", Tornado(6), PictureTheme::kLight},
               {"pairs", Pairs(2), PictureTheme::kLight}};
  for (const auto& row : kRows) {
    const std::string file = std::string(BRENVOLT_SOURCE_DIR "/host/drawing/reference/") + row.name + ".png";
    const std::string bytes = DrawPictures({&row.graph, 1}, {PictureFormat::kPng, row.theme, 640});
    if (std::getenv("BRENVOLT_NEW_PICTURES") != nullptr) std::ofstream(file, std::ios::binary) << bytes;
    QImage drawn;
    ASSERT_TRUE(
        drawn.loadFromData(reinterpret_cast<const uchar*>(bytes.data()), static_cast<int>(bytes.size())));
    const QImage reference(QString::fromStdString(file));
    ASSERT_EQ(drawn.size(), reference.size()) << row.name;
    EXPECT_LT(GreatestBlockDifference(drawn, reference), kTolerance) << row.name;
  }
}

}  // namespace
}  // namespace brenvolt
