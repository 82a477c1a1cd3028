// The four tasks as a person does them in the main window, by mouse and keys, to results in the tree.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTableView>
#include <QTreeWidget>

#include "apps/desktop/base/text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/analysis_desk.h"
#include "apps/desktop/workbench/bench_support_test.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/main_window.h"
#include "host/base/error.h"

namespace brenvolt::desktop::test {
namespace {

struct Tasks : Bench, testing::Test {};

TEST_F(Tasks, FitsAreRankedAndDrawnAtOnce) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  const Hand choose("variables", [](QWidget& asked) { CheckVariables(asked, {"eruptions", "waiting"}); });
  window.StartTask(Task::kFit);
  ASSERT_TRUE(choose.HasActed());
  ASSERT_EQ(Dialog(), 25974);
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25983);
  const QStringList results = Results();
  EXPECT_EQ(results.size(), 6) << Utf8(results.join(u'\n'));
  EXPECT_EQ(results.value(0), QStringLiteral("Fits of faithful.csv"));
  EXPECT_EQ(window.Results().Tree().currentItem()->text(0), results.value(1))
      << "the first is looked at first";
  EXPECT_FALSE(window.CurrentDocument()->IsModified()) << "a fit changes nothing";
}

TEST_F(Tasks, ADesignWithoutDataIsSimulatedFromTheStartPage) {
  const Hand name("names", [](QWidget& asked) {
    Child<QPlainTextEdit>(asked, "names").setPlainText(QStringLiteral("h\nw"));
    PressButton(asked, QDialogButtonBox::AcceptRole);
  });
  QTest::mouseClick(window.findChild<QWidget*>("task2"), Qt::LeftButton);
  ASSERT_TRUE(name.HasActed());
  ASSERT_EQ(Dialog(), 15000);
  Spreadsheet& sheet = *window.CurrentView()->CurrentSheet();
  EXPECT_EQ(sheet.VariableCount(), 2U);
  EXPECT_EQ(window.CurrentView()->CurrentGrid()->model()->columnCount(), 2);
  DesignNormal(0, "50.2", "0.05");
  DesignNormal(1, "10", "2");
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25991);
  EXPECT_EQ(window.CurrentDocument()->Content().SheetCount(), 2U) << "the design with its correlations";
  EXPECT_TRUE(window.CurrentDocument()->IsModified());
  Type(1127, "200");
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25988);
  const QStringList results = Results();
  // The design with its matrix; the simulation with the data, their summary and a picture of each variable.
  EXPECT_EQ(results.size(), 7) << Utf8(results.join(u'\n'));
  EXPECT_EQ(QSet<QString>(results.begin(), results.end()).size(), 7) << Utf8(results.join(u'\n'));

  QTest::keyClick(window.Desk().Window(), Qt::Key_Escape);
  EXPECT_EQ(Dialog(), 25991);
  const DismissedMessage question;
  QTest::keyClick(window.Desk().Window(), Qt::Key_Escape);
  EXPECT_EQ(Dialog(), 15000);
  EXPECT_FALSE(question.HasActed()) << "what the input is was said when the design began";
}

// The button that was pressed last has the keyboard.
TEST_F(Tasks, EnterIsOkInEveryDialogAndEscapeIsCancel) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  const auto press = [this](Qt::Key key) {
    DialogWindow& dialog = *window.Desk().Window();
    QTest::keyClick(dialog.focusWidget() != nullptr ? dialog.focusWidget() : &dialog, key);
  };
  const Hand choose("variables", [](QWidget& asked) { CheckVariables(asked, {"waiting"}); });
  window.StartTask(Task::kFit);
  press(Qt::Key_Return);
  ASSERT_EQ(Dialog(), 25983);
  Click(1104);
  Click(1165);
  ASSERT_EQ(Dialog(), 25991);
  press(Qt::Key_Return);
  ASSERT_EQ(Dialog(), 25988);
  press(Qt::Key_Escape);
  ASSERT_EQ(Dialog(), 25991);
  const Hand accept("variables", [](QWidget& asked) { PressButton(asked, QDialogButtonBox::AcceptRole); });
  Click(1120);
  ASSERT_TRUE(accept.HasActed());
  press(Qt::Key_Return);
  EXPECT_EQ(Dialog(), 25988);
}

TEST_F(Tasks, AFormulaIsProfiledAtOnce) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  window.StartTask(Task::kProfile);
  ASSERT_EQ(Dialog(), 15033);
  Type(1352, QStringLiteral("y = eruptions + waiting"));
  Click(1353);
  Type(1347, QStringLiteral("90"));
  Click(kControlOk);
  const QStringList results = Results();
  EXPECT_GT(results.size(), 6) << Utf8(results.join(u'\n'));
  EXPECT_TRUE(results.join(u'\n').contains(QStringLiteral("y"))) << Utf8(results.join(u'\n'));
}

TEST_F(Tasks, WhatAnAnalysisSavesCanBeUndoneAndIsPaintedByTheThreadThatChangesIt) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  const Hand choose("variables", [](QWidget& asked) { CheckVariables(asked, {"waiting"}); });
  window.StartTask(Task::kFit);
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25983);
  std::vector<Qt::HANDLE> threads;
  const QMetaObject::Connection changed = QObject::connect(
      &window.Desk(), &AnalysisDesk::changed, &window, [&] { threads.push_back(QThread::currentThreadId()); },
      Qt::DirectConnection);
  Click(1104);
  QObject::disconnect(changed);
  // Cells are typed and taken back meanwhile; what would take a sheet from under the dialog is refused.
  Document& document = *window.CurrentDocument();
  const QAbstractItemModel& cells = *window.CurrentView()->CurrentGrid()->model();
  const QVariant before = cells.index(0, 1).data();
  window.CurrentView()->CurrentGrid()->model()->setData(cells.index(0, 1), QStringLiteral("77"));
  EXPECT_NE(cells.index(0, 1).data(), before);
  document.Undo();
  EXPECT_EQ(cells.index(0, 1).data(), before);
  EXPECT_THROW(document.Undo(), Error);
  EXPECT_EQ(document.Content().SheetCount(), 2U);
  ASSERT_FALSE(threads.empty());
  for (Qt::HANDLE thread : threads) EXPECT_EQ(thread, QThread::currentThreadId());
  const Workbook& content = window.CurrentDocument()->Content();
  EXPECT_EQ(content.SheetCount(), 2U);
  const Variable& waiting = content.SheetAt(0).VariableAt(1);
  EXPECT_FALSE(waiting.Properties().empty());
  while (Dialog() != 0) QTest::keyClick(window.Desk().Window(), Qt::Key_Escape);
  QTest::qWait(10);
  window.CurrentDocument()->History().undo();
  window.CurrentDocument()->History().undo();
  EXPECT_TRUE(waiting.Properties().empty());
  EXPECT_EQ(content.SheetCount(), 1U);
}

TEST_F(Tasks, ADistributionIsEnteredInPlainNotation) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  SheetView& grid = *window.CurrentView()->CurrentGrid();
  grid.setCurrentIndex(grid.model()->index(0, 1));
  auto& field = Child<QLineEdit>(window, "distribution");
  const auto enter = [&](const char* text) {
    field.setText(QLatin1String(text));
    QTest::keyClick(&field, Qt::Key_Return);
  };
  enter("normal(10, -2)");
  EXPECT_EQ(field.text(), QStringLiteral("normal(10, -2)")) << "what is wrong stays to be mended";
  EXPECT_EQ(field.selectedText(), QStringLiteral("-"));
  EXPECT_TRUE(
      Child<QLabel>(window, "distributionFault").text().startsWith(QStringLiteral("character 12 of ")))
      << Utf8(Child<QLabel>(window, "distributionFault").text());
  const Variable& waiting = window.CurrentDocument()->Content().SheetAt(0).VariableAt(1);
  EXPECT_TRUE(waiting.Properties().empty());
  QTest::keyClick(&field, Qt::Key_Backspace);
  QTest::keyClick(&field, Qt::Key_Return);
  EXPECT_EQ(field.text(), QStringLiteral("normal(location=10, scale=2)"));
  EXPECT_TRUE(Child<QLabel>(window, "distributionFault").text().isEmpty());
  EXPECT_FALSE(waiting.Properties().empty());
  window.CurrentDocument()->History().undo();
  EXPECT_TRUE(waiting.Properties().empty());
  EXPECT_EQ(field.text(), QString());
  // An empty text takes a distribution away, and all that belongs to it.
  window.CurrentDocument()->History().redo();
  enter("");
  EXPECT_TRUE(waiting.Properties().empty());
  EXPECT_EQ(window.CurrentDocument()->History().undoText(), QStringLiteral("Remove distribution"));
}

// What is typed in the panel while the current cell, and with it the variable, changes.
TEST_F(Tasks, WhatIsTypedForAVariableIsTakenOrKeptAndNotLost) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  SheetView& grid = *window.CurrentView()->CurrentGrid();
  const auto go = [&](int variable) { grid.setCurrentIndex(grid.model()->index(0, variable)); };
  const auto type = [](QLineEdit& field, const char* text) {
    field.selectAll();
    QTest::keyClicks(&field, QLatin1String(text));
  };
  Spreadsheet& sheet = window.CurrentDocument()->Content().SheetAt(0);
  auto& name = Child<QLineEdit>(window, "variableName");
  auto& missing = Child<QLineEdit>(window, "missingCode");
  auto& distribution = Child<QLineEdit>(window, "distribution");
  go(1);
  type(distribution, "normal(50,");
  type(missing, "-9");
  go(0);
  EXPECT_EQ(sheet.VariableAt(1).MissingCode(), -9);
  EXPECT_EQ(distribution.text(), QString());
  EXPECT_TRUE(
      window.statusBar()->currentMessage().startsWith(QStringLiteral("waiting keeps its distribution")))
      << Utf8(window.statusBar()->currentMessage());
  // Names tell variables apart.
  for (const char* refused : {"waiting", "  "}) {
    type(name, refused);
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(sheet.VariableAt(0).Name(), "eruptions") << refused;
    EXPECT_EQ(name.text(), QStringLiteral("eruptions"));
  }
  EXPECT_TRUE(window.statusBar()->currentMessage().contains(QStringLiteral("a variable needs a name")));
  type(name, "duration");
  go(1);
  EXPECT_EQ(sheet.VariableAt(0).Name(), "duration");
  EXPECT_EQ(distribution.text(), QStringLiteral("normal(50,")) << "it waits to be mended";
  EXPECT_FALSE(Child<QLabel>(window, "distributionFault").text().isEmpty());
  type(distribution, "normal(50, 2)");
  go(0);
  EXPECT_FALSE(sheet.VariableAt(1).Properties().empty());
}

}  // namespace
}  // namespace brenvolt::desktop::test
