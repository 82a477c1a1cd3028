#include "host/graphs/chart_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "host/base/error.h"

namespace brenvolt {
namespace {

Graph Histogram(std::vector<double> bounds, std::vector<double> heights) {
  Graph graph;
  graph.title = "Histogram of x";
  graph.bars = {{"Observed", std::move(bounds), std::move(heights)}};
  return graph;
}

// Of characters, not bytes.
std::size_t LengthOf(const std::string& line) {
  return static_cast<std::size_t>(
      std::ranges::count_if(line, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

TEST(ChartText, BarsAreAsLongAsTheirCountsToAnEighthOfACharacter) {
  EXPECT_EQ(ChartText(Histogram({0, 1, 2, 10}, {4, 2, 0}), 40),
            "Histogram of x\n"
            "  0 to  1  4  █████████████████████████\n"
            "  1 to  2  2  ████████████▌\n"
            "  2 to 10  0\n");
  EXPECT_EQ(ChartText(Histogram({0, 1, 2}, {208, 1}), 40),
            "Histogram of x\n"
            "  0 to 1  208  ████████████████████████\n"
            "  1 to 2    1  ▏\n");
}

TEST(ChartText, TheCurveIsMarkedInEveryRow) {
  Graph graph = Histogram({0, 1, 2}, {4, 2});
  graph.curves = {{"Triangle", "4-2*(x-0.5)", 0, 2, false}};
  EXPECT_EQ(ChartText(graph, 40),
            "Histogram of x\n"
            "  0 to 1  4  ██████████████████████████│\n"
            "  1 to 2  2  █████████████│\n"
            "  │ Triangle\n");
  graph.curves[0].formula = "4-(";
  EXPECT_THROW(ChartText(graph, 40), Error);
}

TEST(ChartText, ALineOverTheBarsIsMarkedAndALimitIsNot) {
  Graph graph = Histogram({0, 1, 2}, {4, 2});
  graph.series = {{"LSL", SeriesStyle::kLine, {1, 1}, {0, 4}}};
  EXPECT_EQ(ChartText(graph, 40).find("│"), std::string::npos);
  graph.series.push_back({"Expected", SeriesStyle::kLine, {0, 2}, {5, 1}});
  EXPECT_EQ(ChartText(graph, 40),
            "Histogram of x\n"
            "  0 to 1  4  ██████████████████████████│\n"
            "  1 to 2  2  █████████████│\n"
            "  │ Expected\n");
}

TEST(ChartText, ManyClassesShareRowsAndLinesKeepToTheWidth) {
  std::vector<double> bounds{0};
  std::vector<double> heights;
  for (int i = 1; i <= 50; ++i) {
    bounds.push_back(i * 1234.5);
    heights.push_back(i * 1000);
  }
  for (const std::size_t width : {40u, 80u, 200u}) {
    std::istringstream lines(ChartText(Histogram(bounds, heights), width));
    std::size_t rows = 0;
    std::size_t longest = 0;
    for (std::string line; std::getline(lines, line); ++rows) longest = std::max(longest, LengthOf(line));
    EXPECT_EQ(rows, 18u);
    EXPECT_LE(longest, width);
    EXPECT_GE(longest, width - 2);
  }
  EXPECT_EQ(ChartText(Graph(), 80), "");
}

}  // namespace
}  // namespace brenvolt
