#include "host/graphs/graph.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/base/error.h"
#include "host/graphs/box_plot.h"
#include "host/graphs/correlation_map.h"
#include "host/graphs/histogram_graph.h"

namespace brenvolt {
namespace {

const GraphTexts kTexts{"Histogram of x", "x", "Number", "Observed", ""};
const std::vector<double> kSorted{0, 0.5, 1, 1, 1.5, 2, 3, 7};
const std::vector<double> kBounds{0, 1, 2, 4};

Graph Plain(std::span<const GraphCurve> curves = {}) {
  return HistogramGraph(kSorted, kBounds, HistogramKind::kPlain, curves, kTexts);
}

TEST(Histogram, ClassesHoldTheirUpperBoundAndTheFirstItsLowerOne) {
  const Graph plain = Plain();
  EXPECT_EQ(plain.bars[0].heights, (std::vector<double>{4, 2, 1}));
  EXPECT_EQ(plain.bars[0].bounds, kBounds);
  EXPECT_EQ(plain.notes, std::vector<std::string>{"values outside the classes: 1"});
  const std::vector<double> inner{1, 2, 8};
  const Graph cumulative = HistogramGraph(kSorted, inner, HistogramKind::kCumulative, {}, kTexts);
  EXPECT_EQ(cumulative.bars[0].heights, (std::vector<double>{6, 8}));
  EXPECT_EQ(cumulative.notes, std::vector<std::string>{"values outside the classes: 2"});
}

TEST(Histogram, RefusesBoundsThatMakeNoClasses) {
  for (const std::vector<double>& bounds :
       {std::vector<double>{}, {1}, {1, 1}, {2, 1}, {0, std::nan(""), 2}}) {
    EXPECT_THROW(HistogramGraph(kSorted, bounds, HistogramKind::kPlain, {}, kTexts), Error);
  }
}

TEST(GraphTable, BandsAndRegionsAreColumns) {
  Graph graph = Plain();
  graph.bands = {{"Spread", {0, 1, 2}, {1, 2, 3}, {4, 5, 6}}};
  graph.regions = {{"Outside", 2, std::numeric_limits<double>::infinity()}};
  const auto table = GraphTable(graph);
  EXPECT_EQ(table->VariableAt(*table->FindVariable("Spread lower")).Values()[2], 3);
  EXPECT_EQ(table->VariableAt(*table->FindVariable("Spread upper")).Values()[0], 4);
  EXPECT_EQ(table->VariableAt(*table->FindVariable("Outside from")).Values()[0], 2);
  EXPECT_TRUE(table->VariableAt(*table->FindVariable("Outside to")).IsMissing(0)) << "it is infinite";
}

TEST(CorrelationMap, HasACellForEachPairAndAColumnOfEachVariable) {
  const auto correlation = [](std::size_t row, std::size_t column) {
    return row > column ? 0.25 : std::nan("");
  };
  const Graph graph = CorrelationMap({"a", "b"}, correlation, "Correlations");
  EXPECT_EQ(graph.cells[0].values[2], 0.25);
  EXPECT_TRUE(std::isnan(graph.cells[0].values[1]));
  const auto table = GraphTable(graph);
  EXPECT_EQ(table->VariableAt(*table->FindVariable("a")).Values()[1], 0.25);
  EXPECT_TRUE(table->VariableAt(*table->FindVariable("b")).IsMissing(0));
  EXPECT_EQ(table->VariableAt(*table->FindVariable("b")).Values()[1], 1);
  EXPECT_EQ(table->VariableAt(0).Label(2), "b");
  EXPECT_THROW(CorrelationMap({}, correlation, ""), Error);
  const Graph many = CorrelationMap(std::vector<std::string>(150, "x"), correlation, "");
  EXPECT_EQ(many.cells[0].rows.size(), kMostMapped);
  EXPECT_EQ(many.notes, std::vector<std::string>{"the first 100 of 150 variables are shown"});
}

TEST(SampleCurve, CoversItsRangeAndKeepsToWholeNumbers) {
  const GraphSeries line = SampleCurve({"f", "2*x", -1, 1, false}, 5);
  EXPECT_EQ(line.x, (std::vector<double>{-1, -0.5, 0, 0.5, 1}));
  EXPECT_EQ(line.y, (std::vector<double>{-2, -1, 0, 1, 2}));
  EXPECT_EQ(SampleCurve({"f", "x", -0.5, 3.5, true}, 100).x, (std::vector<double>{0, 1, 2, 3}));
  EXPECT_EQ(SampleCurve({"f", "x", 0, 10, true}, 3).x, (std::vector<double>{0, 5, 10}));
  EXPECT_EQ(SampleCurve({"f", "x", 2, 2, false}, 2).x, (std::vector<double>{2, 2}));
  EXPECT_TRUE(SampleCurve({"f", "x", 0.25, 0.75, true}).x.empty());
  EXPECT_TRUE(SampleCurve({"f", "x", 1, 0, false}).x.empty());
  EXPECT_THROW(SampleCurve({"f", "*()", 0, 1, false}), Error);
}

TEST(GraphTable, HoldsEveryPartInColumnsOfItsName) {
  const GraphCurve curve{"Fit", "8*1*Normal(x,1,1)", 0, 0, false};
  const Graph box = BoxPlot(kSorted, {.title = "Box", .dataName = "x"});
  const Graph summary = SummaryGraph({Plain(std::span(&curve, 1)), box}, {"Mean 2"}, "Summary");
  const auto table = GraphTable(summary);
  EXPECT_EQ(table->Title(), "Summary");
  EXPECT_EQ(table->CaseCount(), kCurvePoints);
  const auto value = [&](const std::string& name, std::size_t row) {
    const auto index = table->FindVariable(name);
    EXPECT_TRUE(index.has_value()) << name;
    return index ? table->VariableAt(*index).Values()[row] : 0.0;
  };
  EXPECT_EQ(value("Histogram of x: Observed from", 2), 2);
  EXPECT_EQ(value("Histogram of x: Observed to", 2), 4);
  EXPECT_EQ(value("Histogram of x: Observed", 2), 1);
  EXPECT_TRUE(std::isnan(value("Histogram of x: Observed", 3)));
  EXPECT_EQ(value("Histogram of x: Fit x", kCurvePoints - 1), 4);
  EXPECT_NEAR(value("Histogram of x: Fit y", 50), 8 * 0.3989422804014327, 1e-12);  // at the mean
  EXPECT_EQ(value("Box: x median", 0), 1.25);
  EXPECT_EQ(value("Box: x outliers", 0), 7);
  const Variable& formula = table->VariableAt(table->FindVariable("Histogram of x: Fit formula").value());
  EXPECT_EQ(formula.Label(formula.Values()[0]), "8*1*Normal(x,1,1)");
  EXPECT_TRUE(formula.IsMissing(1));
  EXPECT_EQ(GraphTable(Graph{})->VariableCount(), 0U);
}

}  // namespace
}  // namespace brenvolt
