#include "apps/desktop/views/sheet_view.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <fstream>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/base/number_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::desktop {
namespace {

struct SheetViewTest : test::WithToolkit, testing::Test {
  TemporaryFolder folder;
  std::unique_ptr<Document> document;
  std::unique_ptr<SheetView> view;
  QStringList refusals;

  Spreadsheet& Sheet() { return document->Content().SheetAt(0); }
  void Open(Spreadsheet sheet) {
    DataFile data;
    data.workbook.Add(std::make_unique<Spreadsheet>(std::move(sheet)));
    document = std::make_unique<Document>(folder / "journals", std::move(data), false);
    view = std::make_unique<SheetView>(*document, Sheet());
    QObject::connect(view.get(), &SheetView::refused, [this](const QString& why) { refusals << why; });
    view->resize(500, 300);
    view->show();
  }
  // Two variables of numbers and one of texts, over three cases; the first one misses its second value.
  void OpenSmall() {
    Spreadsheet sheet("Data", 3, 2);
    sheet.VariableAt(0).AssignValues({1.5, std::nan(""), 3});
    Variable grade("Grade", 3);
    grade.SetType(VariableType::kText);
    grade.AssignValues({1, 2, 1});
    grade.SetLabel(1, "good");
    grade.SetLabel(2, "bad, very");
    sheet.AddVariable(std::move(grade));
    Open(std::move(sheet));
  }
  QString Cell(int row, int column) { return view->model()->index(row, column).data().toString(); }
  void Type(int row, int column, const char* text) {
    view->setCurrentIndex(view->model()->index(row, column));
    QTest::keyClick(view.get(), Qt::Key_F2);
    auto* editor = view->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Enter);
    // The editor goes before the next one is looked for.
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  void Select(int top, int left, int bottom, int right) {
    view->selectionModel()->select({view->model()->index(top, left), view->model()->index(bottom, right)},
                                   QItemSelectionModel::ClearAndSelect);
  }
};

TEST_F(SheetViewTest, WhatIsTypedIsReadAndUndone) {
  OpenSmall();
  Type(0, 1, "2.25");
  EXPECT_EQ(Sheet().VariableAt(1).Values()[0], 2.25);
  Type(1, 0, "");
  EXPECT_EQ(document->History().count(), 1);  // it was missing before
  Type(2, 2, "new");
  EXPECT_EQ(Cell(2, 2), "new");
  Type(0, 0, "abc");
  ASSERT_EQ(refusals.size(), 1);
  EXPECT_EQ(refusals[0], "Var1: expected a number, got 'abc'");
  EXPECT_EQ(Cell(0, 0), "1.5");
  document->History().undo();
  EXPECT_EQ(Cell(2, 2), "good");
  document->History().undo();
  EXPECT_EQ(Cell(0, 1), "0");
  EXPECT_FALSE(document->IsModified());
}

TEST_F(SheetViewTest, MissingCellsAreShownAsSuch) {
  OpenSmall();
  const QAbstractItemModel& model = *view->model();
  EXPECT_TRUE(model.index(1, 0).data(Qt::BackgroundRole).isValid());
  EXPECT_FALSE(model.index(0, 0).data(Qt::BackgroundRole).isValid());
  EXPECT_EQ(model.index(1, 0).data(Qt::AccessibleTextRole), "Missing value");
  Select(0, 1, 2, 2);
  QTest::keyClick(view.get(), Qt::Key_Delete);
  for (int row = 0; row < 3; ++row)
    for (int column = 1; column < 3; ++column)
      EXPECT_TRUE(model.index(row, column).data(Qt::BackgroundRole).isValid());
  document->History().undo();
  EXPECT_EQ(Cell(1, 2), "bad, very");
}

TEST_F(SheetViewTest, WhatIsCopiedIsPastedAnywhereAsItWas) {
  OpenSmall();
  Select(0, 0, 2, 2);
  view->CopyWithNames();
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            "Var1\tVar2\tGrade\n1.5\t0\tgood\n\t0\tbad, very\n3\t0\tgood\n");
  QTest::keyClick(view.get(), Qt::Key_C, Qt::ControlModifier);
  // Beyond the last case and variable, which are added.
  view->setCurrentIndex(view->model()->index(2, 1));
  Select(2, 1, 2, 1);
  QGuiApplication::clipboard()->setText("7\tfair\t0.5\r\n8\t\"a\t\"\"b\"\"\"\tx\r\n");
  QTest::keyClick(view.get(), Qt::Key_V, Qt::ControlModifier);
  EXPECT_TRUE(refusals.isEmpty()) << Utf8(refusals.value(0));
  ASSERT_EQ(Sheet().CaseCount(), 4U);
  ASSERT_EQ(Sheet().VariableCount(), 4U);
  EXPECT_EQ(Cell(3, 1), "8");
  EXPECT_EQ(Cell(3, 2), "a\t\"b\"");
  EXPECT_EQ(Cell(3, 3), "x");
  EXPECT_EQ(Cell(2, 3), "0.5");
  EXPECT_EQ(Sheet().VariableAt(3).Type(), VariableType::kText);
  EXPECT_TRUE(Sheet().VariableAt(3).IsMissing(0));
  document->History().undo();
  EXPECT_EQ(Sheet().CaseCount(), 3U);
  EXPECT_EQ(Sheet().VariableCount(), 3U);
  EXPECT_FALSE(document->IsModified());
}

TEST_F(SheetViewTest, WhatIsTooMuchForTheClipboardIsNotCut) {
  constexpr std::size_t kCases = 2'000'001;
  Spreadsheet sheet("Data", kCases, 1);
  std::ranges::fill(sheet.VariableAt(0).MutableValues(), 7);
  Open(std::move(sheet));
  view->selectAll();
  QTest::keyClick(view.get(), Qt::Key_X, Qt::ControlModifier);
  ASSERT_EQ(refusals.size(), 1);
  EXPECT_TRUE(refusals[0].contains(QLatin1String("too many cells")));
  EXPECT_EQ(std::ranges::count(Sheet().VariableAt(0).Values(), 7), kCases);
}

TEST_F(SheetViewTest, APasteThatDoesNotFitChangesNothingAndSaysWhere) {
  OpenSmall();
  Select(0, 0, 0, 0);
  QGuiApplication::clipboard()->setText("1\t2\nx\t3\n");
  view->Paste();
  ASSERT_EQ(refusals.size(), 1);
  EXPECT_EQ(refusals[0], "Var1: expected a number, got 'x' in row 2");
  EXPECT_EQ(Cell(0, 0), "1.5");
  EXPECT_FALSE(document->IsModified());
  // One text fills what is selected.
  Select(0, 0, 2, 1);
  QGuiApplication::clipboard()->setText("9\n");
  view->Paste();
  for (int row = 0; row < 3; ++row) EXPECT_EQ(Cell(row, 1), "9");
}

// As spreadsheets copy a table: its first line names the columns.
TEST_F(SheetViewTest, TheNamesAboveATableAreThoseOfTheVariables) {
  Spreadsheet sheet("Data", 3, 2);
  for (std::size_t v = 0; v < 2; ++v) std::ranges::fill(sheet.VariableAt(v).MutableValues(), std::nan(""));
  Open(std::move(sheet));
  QStringList said;
  QObject::connect(view.get(), &SheetView::said, [&](const QString& what) { said << what; });
  const auto paste = [&](int row, int column, const char* text) {
    Select(row, column, row, column);
    QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
    view->Paste();
  };
  const auto names = [&] {
    std::string all;
    for (std::size_t v = 0; v < Sheet().VariableCount(); ++v) all += Sheet().VariableAt(v).Name() + " ";
    return all;
  };
  paste(0, 0, "height\tgroup\tVar1\n1.5\ta\t1\n2.5\tb\t2\n");
  EXPECT_EQ(names(), "height group Var1 ");
  EXPECT_EQ(Cell(1, 0), "2.5");
  EXPECT_EQ(Cell(1, 1), "b") << "an empty variable is of texts if these are";
  ASSERT_EQ(said.size(), 1);
  EXPECT_EQ(said[0], "The first line was pasted as names: height, group, Var1.");
  // Units below the names are none of the values, and names are told apart.
  paste(0, 2, "Var1\theight\theight\n\tmm\tmm\n1\t7\t8\n2\t9\t10\n");
  EXPECT_EQ(names(), "height group Var1 height_2 height_3 ");
  EXPECT_EQ(Cell(0, 3), "7");
  // A variable that keeps values keeps its name, and the line is a text among numbers then.
  paste(1, 0, "width\n4\n");
  ASSERT_EQ(refusals.size(), 1);
  EXPECT_EQ(refusals[0], "height: expected a number, got 'width' in row 2");
  paste(1, 0, "height\n4\n");
  EXPECT_EQ(Cell(1, 0), "4");
  EXPECT_EQ(Cell(0, 0), "1.5");
  while (document->History().canUndo()) document->History().undo();
  EXPECT_EQ(names(), "Var1 Var2 ");
  EXPECT_EQ(Sheet().VariableAt(1).Type(), VariableType::kNumeric);
  EXPECT_EQ(refusals.size(), 1);
}

// Also from and into a spreadsheet of the same language.
TEST_F(SheetViewTest, NumbersHaveTheDecimalCommaOfThePerson) {
  SetUserNumberLocale({','});
  OpenSmall();
  EXPECT_EQ(Cell(0, 0), "1,5");
  Type(0, 1, "2,25");
  EXPECT_EQ(Sheet().VariableAt(1).Values()[0], 2.25);
  Select(1, 0, 1, 0);
  QGuiApplication::clipboard()->setText("-0,5\t1e-3\n3,25\t1,5\n");
  view->Paste();
  EXPECT_TRUE(refusals.isEmpty()) << Utf8(refusals.value(0));
  EXPECT_EQ(Sheet().VariableAt(0).Values()[1], -0.5);
  EXPECT_EQ(Sheet().VariableAt(1).Values()[1], 0.001);
  Select(1, 0, 2, 1);
  view->Copy();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "-0,5\t0,001\n3,25\t1,5\n");
  // A point is read as well, and marks between thousands are not: no number has two readings.
  for (const char* text : {"2.75", "1.234,5"}) Type(0, 0, text);
  EXPECT_EQ(refusals.size(), 1);
  EXPECT_EQ(Sheet().VariableAt(0).Values()[0], 2.75);
  SetUserNumberLocale({});
}

TEST_F(SheetViewTest, CasesAndVariablesComeAndGo) {
  OpenSmall();
  Select(1, 1, 1, 2);
  view->InsertCases();
  Select(1, 1, 1, 1);
  view->InsertVariables();
  EXPECT_EQ(Sheet().CaseCount(), 4U);
  EXPECT_EQ(Sheet().VariableCount(), 4U);
  Select(0, 0, 1, 0);
  view->RemoveCases();
  Select(0, 0, 1, 0);
  view->RemoveVariables();
  EXPECT_EQ(Sheet().CaseCount(), 2U);
  EXPECT_EQ(Sheet().VariableCount(), 3U);
  while (document->History().canUndo()) document->History().undo();
  EXPECT_EQ(Cell(2, 2), "good");
  document->SetBusy(true);
  Select(0, 0, 1, 0);
  view->RemoveCases();
  EXPECT_EQ(refusals.size(), 1);
}

TEST_F(SheetViewTest, AMatrixStaysSymmetric) {
  Spreadsheet matrix("Matrix", 6, 2);
  matrix.SetKind(SheetKind::kMatrix);
  matrix.SetCaseNames({"a", "b", "Means", "Std.Dev.", "No.Cases", "Matrix"});
  for (std::size_t i = 0; i < 2; ++i) matrix.VariableAt(i).MutableValues()[i] = 1;
  Open(std::move(matrix));
  Type(1, 0, "0.25");
  EXPECT_EQ(Cell(0, 1), "0.25");
  EXPECT_FALSE(view->model()->index(0, 0).flags().testFlag(Qt::ItemIsEditable));
  for (const char* text : {"1.5", ""}) Type(0, 1, text);
  EXPECT_EQ(refusals.size(), 2);
  Type(2, 0, "12.5");
  EXPECT_EQ(Cell(2, 0), "12.5");
  document->History().undo();
  document->History().undo();
  EXPECT_EQ(Cell(0, 1), "0");
  view->RemoveCases();
  EXPECT_EQ(Sheet().CaseCount(), 6U);
}

std::size_t ResidentBytes() {
  std::ifstream status("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  status >> total >> resident;
  return resident * 4096;
}

// Ten million cases: the view may keep the height of each, but nothing of its cells.
TEST_F(SheetViewTest, ALargeSheetIsScrolledWithoutACopy) {
  constexpr std::size_t kCases = 10'000'000;
  {
    Spreadsheet sheet("Large", kCases);
    sheet.NumberCases();
    for (int i = 0; i < 3; ++i) {
      std::vector<double> values(kCases);
      for (std::size_t row = 0; row < kCases; ++row) values[row] = static_cast<double>(row * (i + 1));
      Variable variable("x" + std::to_string(i), 0);
      variable.AssignValues(std::move(values));
      sheet.AddVariable(std::move(variable));
    }
    DataFile data;
    data.workbook.Add(std::make_unique<Spreadsheet>("Small", 1, 1));
    auto large = std::make_unique<Spreadsheet>("x");
    *large = std::move(sheet);
    data.workbook.Add(std::move(large));
    document = std::make_unique<Document>(folder / "journals", std::move(data), false);
  }
  const std::size_t before = ResidentBytes();
  view = std::make_unique<SheetView>(*document, document->Content().SheetAt(1));
  view->resize(600, 400);
  view->show();
  for (int step = 0; step <= 20; ++step) {
    view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum() / 20 * step);
    view->grab();
  }
  view->GoToCase(kCases);
  view->grab();
  EXPECT_TRUE(view->visualRect(view->model()->index(kCases - 1, 0)).isValid());
  EXPECT_LT(view->visualRect(view->model()->index(kCases - 1, 0)).top(), 400);
  EXPECT_EQ(Cell(kCases - 1, 1), "19999998");
  EXPECT_LT(ResidentBytes() - before, 16 * kCases);  // a copy would take 24 bytes a case
}

TEST_F(SheetViewTest, AHundredThousandVariablesAreShown) {
  Open(Spreadsheet("Wide", 2, 100'000));
  const std::size_t before = ResidentBytes();
  view->horizontalScrollBar()->setValue(view->horizontalScrollBar()->maximum());
  view->grab();
  Type(1, 99'999, "4");
  EXPECT_EQ(Sheet().VariableAt(99'999).Values()[1], 4);
  EXPECT_LT(ResidentBytes() - before, 64'000'000U);
}

TEST(TextBlockTest, BlocksAreReadAsSpreadsheetsWriteThem) {
  const std::vector<std::pair<const char*, TextRows>> cases{{"", {}},
                                                            {"a", {{"a"}}},
                                                            {"a\tb\nc\td\n", {{"a", "b"}, {"c", "d"}}},
                                                            {"a\t\r\n\tb\r\n", {{"a", ""}, {"", "b"}}},
                                                            {"\"x\ny\"\tz", {{"x\ny", "z"}}},
                                                            {"\"say \"\"yes\"\"\"", {{"say \"yes\""}}},
                                                            {"5\" pipe\t\"half", {{"5\" pipe", "\"half"}}},
                                                            {"\"a\"b\n", {{"\"a\"b"}}},
                                                            {"1\n\n2\n", {{"1"}, {""}, {"2"}}}};
  for (const auto& [text, rows] : cases) EXPECT_EQ(RowsOf(QString::fromUtf8(text)), rows) << text;
}

}  // namespace
}  // namespace brenvolt::desktop
