// Frames say where things are drawn: each is compared with what stands in the picture.
#include "host/graphs/framed_picture.h"

#include <gtest/gtest.h>

#include <limits>

#include "host/base/error.h"
#include "host/drawing/svg_support_test.h"

namespace brenvolt {
namespace {

const std::string kBar = "#bfd7ea";
constexpr double kPixel = 1;

Graph Bars() {
  Graph graph;
  graph.title = "Yield";
  graph.xTitle = "Yield";
  graph.bars.push_back({"Observed", {10, 20, 30, 45}, {4, 7, 2}});
  return graph;
}

Graph Tornado() {
  Graph graph;
  graph.kind = GraphKind::kTornado;
  graph.bars = {{"temp", {0, 1}, {0.75}}, {"ibh", {1, 2}, {0.5}}};
  return graph;
}

Graph Pair() {
  Graph graph;
  graph.kind = GraphKind::kSummary;
  graph.title = "Both";
  Graph words;
  words.kind = GraphKind::kText;
  words.notes = {"nothing to point at"};
  graph.panels = {Bars(), words, Tornado()};
  return graph;
}

void ExpectBars(const Graph& graph, const PictureFrame& frame, std::vector<SvgShape> bars) {
  ASSERT_EQ(bars.size(), graph.bars.size() == 1 ? graph.bars[0].heights.size() : graph.bars.size());
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const SvgBox& box = bars[i].box;
    if (graph.kind == GraphKind::kTornado) {
      EXPECT_NEAR(box.right, frame.x.PixelOf(graph.bars[i].heights[0]), kPixel);
      EXPECT_EQ(std::floor(frame.y.ValueAt((box.top + box.bottom) / 2)), static_cast<double>(i));
    } else {
      EXPECT_NEAR(box.left, frame.x.PixelOf(graph.bars[0].bounds[i]), kPixel);
      EXPECT_NEAR(box.right, frame.x.PixelOf(graph.bars[0].bounds[i + 1]), kPixel);
      EXPECT_NEAR(box.top, frame.y.PixelOf(graph.bars[0].heights[i]), kPixel);
      EXPECT_NEAR(frame.y.ValueAt(box.bottom), 0, 0.1);
    }
  }
}

TEST(FramedPicture, AxesLieWhereBarsAreDrawnInEveryPanel) {
  for (const int width : {500, 900}) {
    const FramedPicture picture =
        DrawFramedPicture(Bars(), {PictureFormat::kSvg, PictureTheme::kLight, width});
    ASSERT_EQ(picture.frames.size(), 1U);
    ExpectBars(Bars(), picture.frames[0], svg::Read(picture.bytes).Filled(kBar));
  }
  const FramedPicture picture = DrawFramedPicture(Pair(), {PictureFormat::kSvg});
  ASSERT_EQ(picture.frames.size(), 2U);
  EXPECT_EQ(picture.frames[0].panel, 0U);
  EXPECT_EQ(picture.frames[1].panel, 2U);
  const std::vector<SvgShape> bars = svg::Read(picture.bytes).Filled(kBar);
  ASSERT_EQ(bars.size(), 5U);
  ExpectBars(Bars(), picture.frames[0], {bars.begin(), bars.begin() + 3});
  ExpectBars(Tornado(), picture.frames[1], {bars.begin() + 3, bars.end()});
}

TEST(FramedPicture, CellsOfATableAreCountedFromTheUpperLeftOne) {
  Graph graph;
  graph.kind = GraphKind::kHeatMap;
  graph.cells.push_back({"r", {"a", "b"}, {"a", "b", "c"}, {1, 0.5, 0.5, 1, 0.25, 0.25}});
  const FramedPicture picture = DrawFramedPicture(graph, {PictureFormat::kSvg});
  ASSERT_EQ(picture.frames.size(), 1U);
  const SvgPicture shown = svg::Read(picture.bytes);
  const SvgText* const number = shown.Find("0.50");
  ASSERT_NE(number, nullptr);
  EXPECT_EQ(std::floor(picture.frames[0].x.ValueAt(number->box.left)), 1);
  EXPECT_EQ(std::floor(picture.frames[0].y.ValueAt(number->box.bottom)), 0);
  EXPECT_EQ(picture.frames[0].y.to, 3);
}

TEST(FramedPicture, TheSamePictureAsWithoutFramesAndOnlyAsSvg) {
  const Graph graph = Bars();
  const PictureStyle style{PictureFormat::kSvg, PictureTheme::kDark, 640};
  EXPECT_EQ(DrawFramedPicture(graph, style).bytes, DrawPictures({&graph, 1}, style));
  EXPECT_THROW(DrawFramedPicture(graph, {PictureFormat::kPng}), Error);
}

}  // namespace
}  // namespace brenvolt
