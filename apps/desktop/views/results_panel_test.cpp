#include "apps/desktop/views/results_panel.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>
#include <cmath>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "apps/desktop/views/picture_view.h"
#include "apps/desktop/views/result_model.h"
#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/graphs/histogram_graph.h"
#include "host/jobs/base/job_fault.h"
#include "host/tables/workbook.h"

namespace brenvolt::desktop {
namespace {

std::shared_ptr<CAnalysisTableDoc> Ranking() {
  auto sheet = std::make_unique<Spreadsheet>("Ranking", 4);
  sheet->SetTitle("Ranking of the fits");
  sheet->SetHeader("Distribution");
  sheet->SetCaseNames({"Weibull", "Normal", "Gamma", "Log Normal"});
  Variable p("p", 0);
  p.AssignValues({0.25, std::nan(""), 0.5, 1.0 / 3});
  Variable n("Note", 0);
  n.SetType(VariableType::kText);
  n.AssignValues({1, 2, 1, 2});
  n.SetLabel(1, "fits well");
  n.SetLabel(2, "fits badly");
  sheet->AddVariable(std::move(p));
  sheet->AddVariable(std::move(n));
  return std::make_shared<CAnalysisTableDoc>(std::move(sheet));
}

std::shared_ptr<CAnalysisGraphDoc> Picture() {
  Graph graph;
  graph.title = "Histogram";
  graph.xTitle = "x";
  graph.yTitle = "Count";
  graph.bars.push_back({"Observed", {0, 1, 2, 3}, {4, 7, 2}});
  return std::make_shared<CAnalysisGraphDoc>(std::move(graph));
}

QStringList Column(const QAbstractItemModel& model, int column) {
  QStringList texts;
  for (int row = 0; row < model.rowCount(); ++row) texts << model.index(row, column).data().toString();
  return texts;
}

TEST(ResultModelTest, RowsAreSortedByValueAndTextWithMissingOnesLast) {
  test::StartToolkit();
  ResultModel model(Ranking());
  const QStringList own = Column(model, 0);
  const std::vector<std::tuple<int, Qt::SortOrder, QStringList>> cases{
      {1, Qt::AscendingOrder, {"Weibull", "Log Normal", "Gamma", "Normal"}},
      {1, Qt::DescendingOrder, {"Gamma", "Log Normal", "Weibull", "Normal"}},
      {0, Qt::AscendingOrder, {"Gamma", "Log Normal", "Normal", "Weibull"}},
      {2, Qt::AscendingOrder, {"Normal", "Log Normal", "Weibull", "Gamma"}},
      {-1, Qt::AscendingOrder, own}};
  for (const auto& [column, order, names] : cases) {
    model.sort(column, order);
    EXPECT_EQ(Column(model, 0), names) << column << order;
  }
  EXPECT_EQ(Column(model, 1), QStringList({"0.25", "–", "0.5", "0.333333"}));
  EXPECT_EQ(model.index(3, 1).data(Qt::ToolTipRole), "0.3333333333333333");
}

struct ResultsPanelTest : test::WithToolkit, testing::Test {
  TemporaryFolder folder;
  ResultsPanel panel;
  QStringList said;
  void SetUp() override {
    panel.resize(900, 500);
    panel.show();
    QObject::connect(&panel, &ResultsPanel::said, [this](const QString& text) { said << text; });
    panel.BeginGroup("Fit");
  }
};

TEST_F(ResultsPanelTest, TablesAreSortedCopiedAndExported) {
  panel.Add(Ranking());
  auto* table = panel.Page()->findChild<QTableView*>();
  ASSERT_NE(table, nullptr);
  const int middle = table->horizontalHeader()->sectionViewportPosition(1) + 5;
  QTest::mouseClick(table->horizontalHeader()->viewport(), Qt::LeftButton, {}, {middle, 5});
  panel.Copy();
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            "Distribution\tp\tNote\nWeibull\t0.25\tfits well\nLog Normal\t0.3333333333333333\tfits badly\n"
            "Gamma\t0.5\tfits well\nNormal\t\tfits badly\n");
  panel.SaveTo(folder / "ranking.csv");
  EXPECT_EQ(BytesOf(folder / "ranking.csv"),
            "Distribution,p,Note\nWeibull,0.25,fits well\nNormal,,fits badly\nGamma,0.5,fits well\n"
            "Log Normal,0.3333333333333333,fits badly\n");
  panel.SaveTo(folder / "ranking.bvw");
  EXPECT_NE(Workbook::Open(folder / "ranking.bvw").Find("Ranking"), nullptr);
  std::filesystem::create_symlink("/dev/full", folder / "full.csv");
  for (const char* name : {"ranking.png", "ranking", "no folder/ranking.csv", "full.csv"})
    EXPECT_ANY_THROW(panel.SaveTo(folder / name)) << name;
}

TEST_F(ResultsPanelTest, APageHasTheHeadingThatItHasInTheTree) {
  auto named = std::make_unique<Spreadsheet>("waiting", 1, 1);
  named->SetTitle("Ranking by p\nthe worst fits last");
  const auto table = std::make_shared<CAnalysisTableDoc>(std::move(named));
  for (const char* const heading :
       {"waiting: Ranking by p\nthe worst fits last", "waiting: Ranking by p (2)\nthe worst fits last"}) {
    panel.Add(table);
    const auto* const title = panel.Page()->findChild<QLabel*>("resultTitle");
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->text().toStdString(), heading);
    EXPECT_EQ(title->text().section('\n', 0, 0), panel.Tree().currentItem()->text(0));
  }
}

TEST_F(ResultsPanelTest, TheKeyForCopyingTakesTheSelectedCells) {
  panel.Add(Ranking());
  auto* table = panel.Page()->findChild<QTableView*>();
  ASSERT_NE(table, nullptr);
  const QAbstractItemModel& model = *table->model();
  table->selectionModel()->select({model.index(0, 0), model.index(1, 1)},
                                  QItemSelectionModel::ClearAndSelect);
  QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
  const QString copied = QGuiApplication::clipboard()->text();
  for (const char* part : {"Weibull\t0.25", "Normal\t"})
    EXPECT_TRUE(copied.contains(QLatin1String(part))) << copied.toStdString();
  EXPECT_FALSE(copied.contains(QLatin1String("Gamma"))) << copied.toStdString();
}

TEST_F(ResultsPanelTest, PicturesAreEnlargedCopiedAndSaved) {
  if (!WhyNoPictures().empty()) GTEST_SKIP() << WhyNoPictures();
  panel.Add(Picture());
  auto* picture = qobject_cast<PictureView*>(panel.Page());
  ASSERT_NE(picture, nullptr);
  QCoreApplication::processEvents();
  const int width = picture->widget()->width();
  EXPECT_GE(picture->viewport()->width(), width);
  for (int i = 0; i < 60; ++i) picture->ZoomIn();
  EXPECT_GT(picture->widget()->width(), 2 * width);
  EXPECT_LT(picture->Zoom(), 40);
  picture->ZoomToFit();
  EXPECT_EQ(picture->widget()->width(), picture->viewport()->width());
  panel.Copy();
  EXPECT_GT(QGuiApplication::clipboard()->image().width(), 300);
  for (const auto& [name, beginning] : std::vector<std::pair<const char*, const char*>>{
           {"a.png", "\x89PNG"}, {"a.svg", "<?xml"}, {"a.pdf", "%PDF"}, {"a.json", "{"}}) {
    panel.SaveTo(folder / name);
    EXPECT_TRUE(BytesOf(folder / name).starts_with(beginning)) << name;
  }
  EXPECT_ANY_THROW(panel.SaveTo(folder / "a.csv"));
}

TEST_F(ResultsPanelTest, ManyResultsKeepFewPagesAndAreRemoved) {
  for (int i = 0; i < 200; ++i) panel.Add(Ranking());
  EXPECT_EQ(panel.Count(), 200);
  EXPECT_LE(panel.findChildren<QTableView*>().size(), 31);
  auto* first = panel.Tree().topLevelItem(0)->child(0);
  panel.Tree().setCurrentItem(first);
  EXPECT_NE(panel.Page(), nullptr);
  while (panel.Count() > 0) {
    panel.Tree().setCurrentItem(panel.Tree().topLevelItem(0)->child(0));
    panel.Remove();
  }
  EXPECT_EQ(panel.Tree().topLevelItemCount(), 0);
  EXPECT_EQ(panel.Page(), nullptr);
  panel.Add(Ranking());
  EXPECT_EQ(panel.Count(), 1);
}

}  // namespace
}  // namespace brenvolt::desktop
