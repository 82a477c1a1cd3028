// Pictures that follow what a person does, over analyses of example data.
#include <QLineEdit>
#include <QTableView>
#include <QTreeWidget>

#include "apps/desktop/base/text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "apps/desktop/views/picture_view.h"
#include "apps/desktop/views/results_panel.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/automation/macro_recorder.h"
#include "host/jobs/dialogs/shown_results.h"

namespace brenvolt::desktop::test {
namespace {

// An analysis with the results beside it, as the main window has them.
struct LiveDesk {
  explicit LiveDesk(const std::string& example) : desk(kExamples + example) {
    results.resize(900, 600);
    results.show();
    QObject::connect(&results, &ResultsPanel::said, &results, [this](const QString& text) { said << text; });
  }
  // The picture that a button makes.
  PictureView& Show(std::int32_t button) {
    desk.Click(button);
    results.Add(desk.sink.graphs.back());
    QCoreApplication::processEvents();
    return *qobject_cast<PictureView*>(results.Page());
  }

  // From the start-up dialog to the results of all variables.
  void FitAll() {
    desk.Click(kControlOk);
    const Hand choose("variables", [](QWidget& window) {
      Child<QTableView>(window, "table").selectAll();
      Desk::ClickOn(Child<QPushButton>(window, "into1"));
      PressButton(window, QDialogButtonBox::AcceptRole);
    });
    desk.Click(1010);
    desk.Click(kControlOk);
  }

  Desk desk;
  ResultsPanel results;
  QStringList said;
};

TEST(LivePictures, ARowOfTheRankingChangesTheCurveAtOnce) {
  if (!WhyNoPictures().empty()) GTEST_SKIP() << WhyNoPictures();
  LiveDesk live("faithful.csv");
  live.FitAll();
  ASSERT_EQ(live.desk.Dialog(), 25983);
  PictureView& picture = live.Show(1108);
  const std::string first = picture.Content().curves.front().formula;
  const std::size_t handed = live.desk.sink.graphs.size();
  live.desk.ClickRow(1101, 1);
  const std::string second = picture.Content().curves.front().formula;
  EXPECT_NE(second, first);
  EXPECT_EQ(live.results.Count(), 1);
  EXPECT_EQ(live.results.Tree().currentItem()->text(0), Shown(picture.Content().title));
  // No new page, and the same curve as the button makes.
  EXPECT_EQ(live.desk.sink.graphs.size(), handed);
  EXPECT_EQ(live.Show(1108).Content().curves.front().formula, second);
  live.desk.ClickRow(1101, 0);
  EXPECT_EQ(live.desk.sink.graphs.size(), handed + 1);
}

TEST(LivePictures, ARowOfTheRankingChangesThePictureThatIsLookedAt) {
  if (!WhyNoPictures().empty()) GTEST_SKIP() << WhyNoPictures();
  LiveDesk live("faithful.csv");
  live.FitAll();
  live.Show(1108);
  QTreeWidgetItem* const first = live.results.Tree().currentItem();
  live.Show(1109);
  QTreeWidgetItem* const second = live.results.Tree().currentItem();
  live.results.Tree().setCurrentItem(first);
  const auto drawn = [&](QTreeWidgetItem* item) {
    live.results.Tree().setCurrentItem(item);
    return qobject_cast<PictureView*>(live.results.Page())->grab().toImage();
  };
  const QImage other = drawn(second);
  const QImage before = drawn(first);
  live.desk.ClickRow(1101, 1);
  EXPECT_NE(drawn(first), before);
  EXPECT_EQ(drawn(second), other);
}

// The profiler over the regression of the ozone data, once it has run with a seed and an upper limit.
struct ProfiledDesk : LiveDesk {
  ProfiledDesk() : LiveDesk("ozone.csv") {
    desk.ClickRow(1006, 3);
    desk.Click(kControlOk);
    desk.engine.Run([&] {
      auto dialog = desk.run->Analysis().GetDialgInterface();
      dialog->Put("LoadModels", kExamples + "ozone_regression.pmml");
      dialog->Get("FitBestDistributions");
      dialog->Put("IsSeedRandomNumber", std::int32_t{1});
      dialog->Put("NumberOfRuns", std::int32_t{1000});
    });
    desk.run->Show();
    desk.Type(1347, "25");
    desk.Click(kControlOk);
  }
  double Limit() { return static_cast<QLineEdit&>(desk.Control(1347)).text().toDouble(); }
  static void DragLimit(PictureView& picture, double from, std::initializer_list<double> to) {
    const PictureFrame frame = picture.Frames().at(0);
    const auto at = [&](double x) {
      return QPointF(frame.x.PixelOf(x), (frame.y.fromPixel + frame.y.toPixel) / 2).toPoint();
    };
    QWidget& shown = *picture.widget();
    QTest::mousePress(&shown, Qt::LeftButton, {}, at(from));
    for (const double x : to) {
      QTest::mouseMove(&shown, at(x));
      QCoreApplication::processEvents();
    }
    QTest::mouseRelease(&shown, Qt::LeftButton, {}, at(*(to.end() - 1)));
  }
};

TEST(LivePictures, ALimitThatIsDraggedIsASettingOfTheDialogAndTheRatesFollow) {
  if (!WhyNoPictures().empty()) GTEST_SKIP() << WhyNoPictures();
  ProfiledDesk live;
  ASSERT_EQ(live.desk.Dialog(), 15033);
  PictureView& picture = live.Show(1351);
  MacroRecorder recorder;
  live.desk.run->Analysis().SetRecorder(&recorder);
  const std::size_t graphs = live.desk.sink.graphs.size();
  const std::size_t tables = live.desk.sink.tables.size();

  live.DragLimit(picture, 25, {24.0, 22.0, 20.0});
  live.desk.run->Analysis().SetRecorder(nullptr);
  EXPECT_EQ(live.desk.sink.graphs.size(), graphs);
  EXPECT_EQ(live.desk.sink.tables.size(), tables);

  const double limit = live.Limit();
  EXPECT_NEAR(limit, 20, 0.3);
  EXPECT_EQ(picture.Content().panels.at(0).series.back().x.front(), limit);
  // The rates are those that the dialog's own button gives.
  live.desk.Click(1301);
  const Spreadsheet& counts = live.desk.sink.tables.at(tables)->Table();
  const std::string defects =
      "Defects: " + std::to_string(static_cast<int>(counts.VariableAt(1).Values()[0]));
  ASSERT_FALSE(live.said.isEmpty());
  EXPECT_TRUE(Utf8(live.said.back()).starts_with(defects + ", Runs: 1000")) << Utf8(live.said.back());
  // The macro has the limit once, at its last place.
  const std::string macro = recorder.Text("");
  EXPECT_NE(macro.find("USL = " + Utf8(QString::number(limit))), std::string::npos) << macro;
  EXPECT_EQ(macro.find("USL", macro.find("USL") + 1), std::string::npos) << macro;
  EXPECT_EQ(macro.find("DefectProfile"), std::string::npos) << macro;
}

// As after a run of the profiler from the start page.
TEST(LivePictures, LimitsAreDraggedInPicturesThatWereShownUnasked) {
  if (!WhyNoPictures().empty()) GTEST_SKIP() << WhyNoPictures();
  ProfiledDesk live;
  const std::size_t profiles = live.desk.sink.graphs.size();
  live.desk.engine.Run([&] { ShowResponses(live.desk.run->Analysis(), 1); });
  ASSERT_EQ(live.desk.sink.graphs.size(), profiles + 2) << "the response, and the rates";
  const auto unasked = live.desk.sink.graphs.at(profiles);
  ASSERT_EQ(unasked->Content().kind, GraphKind::kSummary);
  live.results.Add(unasked);
  QCoreApplication::processEvents();
  auto& picture = *qobject_cast<PictureView*>(live.results.Page());
  live.DragLimit(picture, 25, {23.0, 20.0});
  EXPECT_NEAR(live.Limit(), 20, 0.3);
  EXPECT_EQ(picture.Content().panels.at(0).series.back().x.front(), live.Limit());
  EXPECT_FALSE(live.said.isEmpty());
  EXPECT_EQ(live.desk.sink.graphs.size(), profiles + 2);
}

}  // namespace
}  // namespace brenvolt::desktop::test
