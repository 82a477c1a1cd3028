#include "apps/desktop/views/picture_view.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QTest>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "apps/desktop/views/picture_values.h"

namespace brenvolt::desktop {
namespace {

Graph Histogram() {
  Graph graph;
  graph.title = "Weights";
  graph.xTitle = "Weight";
  graph.yTitle = "Count";
  graph.bars.push_back({"Observed", {0, 10, 20, 30}, {4, 7, 2}});
  graph.curves.push_back({"Line", "x/10", 0, 30, false});
  graph.series.push_back({"USL", SeriesStyle::kLine, {25, 25}, {0, 7}});
  return graph;
}

Graph Named() {
  Graph graph;
  graph.kind = GraphKind::kTornado;
  graph.bars = {{"temp", {0, 1}, {0.75}}, {"ibh", {1, 2}, {-0.5}}};
  return graph;
}

Graph Cells() {
  Graph graph;
  graph.kind = GraphKind::kHeatMap;
  graph.cells.push_back({"r", {"a", "b"}, {"a", "b"}, {1, 0.25, 0.25, std::nan("")}});
  return graph;
}

Graph Boxes() {
  Graph graph;
  graph.kind = GraphKind::kBoxPlot;
  graph.boxes.push_back({"x", 2, 3, 4, 1, 5, 3.5, {}});
  return graph;
}

Graph Points() {
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.series.push_back({"P", SeriesStyle::kPoints, {10, 20}, {10, 20}});
  graph.series.push_back({"S", SeriesStyle::kSteps, {0, 15}, {1, 2}});
  graph.bands.push_back({"B", {0, 30}, {0, 30}, {10, 40}});
  return graph;
}

// A plot of 300 by 300 pixels over 0 to 30, whose values stand at ten pixels each.
TEST(PictureValuesTest, ValuesAreThoseOfWhatIsDrawnAtThePlace) {
  const PictureFrame frame{0, {0, 30, 0, 300}, {0, 30, 300, 0}};
  const PictureFrame names{0, {0, 30, 0, 300}, {0, 2, 0, 300}};
  const PictureFrame cells{0, {0, 2, 0, 300}, {0, 2, 0, 300}};
  const struct {
    Graph graph;
    PictureFrame frame;
    QPointF place;
    const char* words;
  } cases[] = {{Histogram(), frame, {120, 50}, "Weight: 12\nObserved: 7 (10 – 20)\nLine: 1.2"},
               {Histogram(), frame, {251, 50}, "Weight: 25.1\nUSL: 25\nObserved: 2 (20 – 30)\nLine: 2.51"},
               {Named(), names, {10, 10}, "temp: 0.75"},
               {Named(), names, {10, 290}, "ibh: -0.5"},
               {Cells(), cells, {200, 10}, "a, b\n0.25"},
               {Cells(), cells, {200, 200}, "b, b\n–"},
               {Boxes(),
                {0, {0, 30, 0, 300}, {0, 1, 0, 300}},
                {10, 290},
                "x\nUpper whisker: 5\nUpper quartile: 4\nMedian: 3\nMean: 3.5\nLower quartile: 2\n"
                "Lower whisker: 1"},
               {Points(), frame, {104, 196}, "x: 10.4\nP: (10; 10)\nS: 1\nB: 10.4 – 20.4"},
               {Points(), frame, {160, 10}, "x: 16\nS: 2\nB: 16 – 26"}};
  for (const auto& one : cases) EXPECT_EQ(Utf8(ValuesAt(one.graph, one.frame, one.place)), one.words);
}

struct RecordingMover : LimitMover {
  bool CanMove(const CAnalysisGraphDoc&, const PictureLimit& limit) override { return limit.name == "USL"; }
  MovedLimit Move(const CAnalysisGraphDoc&, const PictureLimit& limit, double value, bool isLast) override {
    values.push_back(value);
    lasts.push_back(isLast);
    about = limit.about;
    Graph graph = Histogram();
    graph.series.front().x = {value, value};
    return {std::make_shared<CAnalysisGraphDoc>(graph), {}, QStringLiteral("Defects: 2")};
  }

  std::vector<double> values;
  std::vector<bool> lasts;
  std::string about;
};

struct PictureViewTest : test::WithToolkit, testing::Test {
  RecordingMover mover;
  std::unique_ptr<PictureView> view;
  void SetUp() override {
    if (!WhyNoPictures().empty()) GTEST_SKIP() << WhyNoPictures();
    view = std::make_unique<PictureView>(std::make_shared<CAnalysisGraphDoc>(Histogram()), &mover);
    view->resize(700, 500);
    view->show();
    QCoreApplication::processEvents();
  }
  QWidget& Picture() { return *view->widget(); }
  QPoint PlaceOf(double x, double y) {
    const PictureFrame frame = view->Frames().at(0);
    return QPointF(frame.x.PixelOf(x), frame.y.PixelOf(y)).toPoint();
  }
};

TEST_F(PictureViewTest, PointingAtABarShowsItsValuesAlsoInAnEnlargedPicture) {
  for (int step = 0; step < 3; ++step) {
    QTest::mouseMove(&Picture(), PlaceOf(15, 1));
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("Observed: 7 (10 – 20)"))) << Utf8(QToolTip::text());
    view->ZoomIn();
  }
  EXPECT_TRUE(mover.values.empty());
}

// Where two pictures differ by a vertical line that was moved, the columns of pixels in which most of them differ are those
// of its two places.
int MostDifferent(const QImage& a, const QImage& b, int from, int to) {
  int best = from;
  int most = 0;
  for (int x = from; x < to; ++x) {
    int count = 0;
    for (int y = 0; y < a.height(); ++y) count += a.pixel(x, y) != b.pixel(x, y);
    if (count > most) best = x;
    most = std::max(most, count);
  }
  return best;
}

TEST_F(PictureViewTest, APlaceThatIsPointedAtIsWhereThePixelsShowIt) {
  for (const int width : {500, 700, 1200}) {
    view->resize(width, 600);
    QCoreApplication::processEvents();
    for (int step = 0; step < 2; ++step) {
      view->Show(std::make_shared<CAnalysisGraphDoc>(Histogram()));
      const QImage right = Picture().grab().toImage();
      Graph moved = Histogram();
      moved.series.front().x = {5, 5};
      view->Show(std::make_shared<CAnalysisGraphDoc>(moved));
      const QImage left = Picture().grab().toImage();
      ASSERT_EQ(left.size(), right.size());
      const double ratio = right.devicePixelRatio();
      const PictureAxis axis = view->Frames().at(0).x;
      const auto middle = static_cast<int>(ratio * axis.PixelOf(15));
      EXPECT_NEAR(MostDifferent(left, right, 0, middle), ratio * axis.PixelOf(5), 2 * ratio) << width;
      EXPECT_NEAR(MostDifferent(left, right, middle, right.width()), ratio * axis.PixelOf(25), 2 * ratio)
          << width;
      view->ZoomIn();
    }
    view->ZoomToFit();
  }
}

TEST_F(PictureViewTest, ALimitIsDraggedToNumbersAsShortAsThePictureIsPrecise) {
  double x = 25;
  for (const double to : {7.03, 11.1, 14.29, 17.9, 19.77, 23.3}) {
    QTest::mousePress(&Picture(), Qt::LeftButton, {}, PlaceOf(x, 3));
    QTest::mouseMove(&Picture(), PlaceOf(to, 3));
    QTest::mouseRelease(&Picture(), Qt::LeftButton, {}, PlaceOf(to, 3));
    QCoreApplication::processEvents();
    x = mover.values.back();
    EXPECT_NEAR(x, to, 0.2);
  }
  for (const double value : mover.values)
    EXPECT_LE(QString::number(value, 'g', QLocale::FloatingPointShortest).size(), 5) << value;
}

TEST_F(PictureViewTest, ALimitFollowsTheMouseAndIsMovedForGoodOnce) {
  QTest::mouseMove(&Picture(), PlaceOf(25, 3));
  EXPECT_EQ(Picture().cursor().shape(), Qt::SizeHorCursor);
  QTest::mousePress(&Picture(), Qt::LeftButton, {}, PlaceOf(25, 3));
  for (const double x : {24.0, 22.0, 18.0}) {
    QTest::mouseMove(&Picture(), PlaceOf(x, 3));
    QCoreApplication::processEvents();
  }
  QTest::mouseRelease(&Picture(), Qt::LeftButton, {}, PlaceOf(18, 3));
  ASSERT_GE(mover.values.size(), 2U);
  EXPECT_NEAR(mover.values.back(), 18, 0.2);
  EXPECT_EQ(std::ranges::count(mover.lasts, true), 1);
  EXPECT_TRUE(mover.lasts.back());
  EXPECT_EQ(mover.about, "Weight");
  EXPECT_NEAR(view->Content().series.front().x.front(), 18, 0.2);
  EXPECT_TRUE(QToolTip::text().contains(QLatin1String("Defects: 2")));
  // A click on what is no limit moves nothing, nor does one on a limit.
  const std::size_t count = mover.values.size();
  for (const double x : {5.0, 18.0}) QTest::mouseClick(&Picture(), Qt::LeftButton, {}, PlaceOf(x, 3));
  EXPECT_EQ(mover.values.size(), count);
}

// A page of panels keeps its own width, wider than the room beside data; its right half must not be cut off.
TEST_F(PictureViewTest, APageOfPanelsIsShownWholeUntilAPersonZooms) {
  Graph page;
  page.kind = GraphKind::kSummary;
  page.panels = {Histogram(), Histogram(), Histogram(), Histogram()};
  view->Show(std::make_shared<CAnalysisGraphDoc>(page));
  const auto resize = [&](int width) {
    view->resize(width, 500);
    QCoreApplication::processEvents();
  };
  resize(1600);
  EXPECT_EQ(view->Zoom(), 1);
  const int own = Picture().width();
  resize(own * 9 / 10);
  EXPECT_LT(view->Zoom(), 1);
  EXPECT_LE(Picture().width(), view->viewport()->width());
  resize(own / 4);
  EXPECT_EQ(view->Zoom(), 0.7) << "letters are to be read";
  view->ZoomIn();
  const double chosen = view->Zoom();
  resize(own);
  EXPECT_EQ(view->Zoom(), chosen);
}

}  // namespace
}  // namespace brenvolt::desktop
