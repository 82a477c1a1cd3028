#include "host/graphs/scatter_matrix.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/base/error.h"

namespace brenvolt {
namespace {

const PairText kNames = [](std::size_t first, std::size_t second) {
  return std::vector<std::string>{std::to_string(first) + " with " + std::to_string(second)};
};

TEST(ScatterMatrix, PointsLieBelowTheDiagonalAndTextsAbove) {
  const std::vector<double> a{1, 2, std::nan(""), 4};
  const std::vector<double> b{5, 6, 7, 8};
  const std::vector<ScatterVariable> variables{{"a", a}, {"b", b}};
  const Graph graph = ScatterMatrix(variables, kNames, "Pairs");
  ASSERT_EQ(graph.panels.size(), 4u);
  EXPECT_EQ(graph.panelColumns, 2u);
  EXPECT_EQ(graph.panels[0].kind, GraphKind::kHistogram);
  EXPECT_EQ(graph.panels[1].notes, std::vector<std::string>{"0 with 1"});
  const GraphSeries& points = graph.panels[2].series[0];
  EXPECT_EQ(points.x, (std::vector<double>{1, 2, 4}));
  EXPECT_EQ(points.y, (std::vector<double>{5, 6, 8}));
  EXPECT_TRUE(graph.notes.empty());
}

TEST(ScatterMatrix, WhatIsLeftOutIsSaid) {
  const std::vector<double> values(1500, 2.0);
  const std::vector<ScatterVariable> variables(40, {"v", values});
  const Graph graph = ScatterMatrix(variables, kNames, "Pairs");
  EXPECT_EQ(graph.panels.size(), kMostScattered * kMostScattered);
  EXPECT_EQ(graph.panels[kMostScattered].series[0].x.size(), kMostScatteredPoints);
  EXPECT_EQ(graph.notes, (std::vector<std::string>{"the first 10 of 40 variables are shown",
                                                   "the first 1000 of 1500 points of each pair are shown"}));
  EXPECT_THROW(ScatterMatrix({}, kNames, "Pairs"), Error);
}

}  // namespace
}  // namespace brenvolt
