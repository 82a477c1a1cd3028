// The editor of a correlation matrix: what is typed and pasted, and what is said of it.
#include "apps/desktop/port/matrix_question.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QLabel>
#include <QTableView>
#include <cmath>

#include "apps/desktop/base/text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "apps/desktop/port/matrix_table.h"

namespace brenvolt::desktop::test {
namespace {

TEST(MatrixTable, CellsAreSymmetricAndBadOnesAreMarked) {
  MatrixTable table({"a", "b", "c"}, {"1", "0.5", "0", "0.5", "1", "0", "0", "0", "1"});
  const auto put = [&](int row, int column, const char* text) {
    return table.setData(table.index(row, column), QString::fromLatin1(text), Qt::EditRole);
  };
  EXPECT_TRUE(put(2, 0, "-0.25"));
  EXPECT_EQ(table.Cells()[2], "-0.25");
  EXPECT_FALSE(put(1, 1, "0.3"));
  EXPECT_EQ(table.Cells()[4], "1");
  EXPECT_EQ(table.BadCells(), 0);
  EXPECT_EQ(table.Values(), (std::vector<double>{1, 0.5, -0.25, 0.5, 1, 0, -0.25, 0, 1}));
  EXPECT_TRUE(put(0, 1, "0,5")) << "a decimal comma travels with what is pasted";
  EXPECT_EQ(table.Values()[3], 0.5);
  for (const char* bad : {"1.5", "-1.01", "x", ""}) {
    put(0, 1, bad);
    EXPECT_EQ(table.BadCells(), 1) << bad;
    EXPECT_TRUE(std::isnan(table.Values()[3])) << bad;
    EXPECT_TRUE(table.data(table.index(1, 0), Qt::BackgroundRole).isValid()) << bad;
  }
}

const std::vector<std::string> kNames{"a", "b", "c"};
const std::vector<std::string> kIdentity{"1", "0", "0", "0", "1", "0", "0", "0", "1"};

// The correlations of a with b, a with c and b with c, once a block has been pasted over zeros.
std::vector<double> Pasted(const char* text, std::size_t row, std::size_t column,
                           MatrixPaste* paste = nullptr) {
  MatrixTable table(kNames, kIdentity);
  const MatrixPaste placed = PlaceInMatrix(RowsOf(QString::fromUtf8(text)), kNames, row, column);
  table.Put(placed);
  if (paste != nullptr) *paste = placed;
  return {table.Values()[1], table.Values()[2], table.Values()[5]};
}

TEST(MatrixPaste, WhatASpreadsheetCopiesGoesWhereItBelongs) {
  const std::vector<double> all{0.1, 0.2, 0.3};
  const struct {
    const char* what;
    const char* block;
    std::size_t row;
    std::size_t column;
    std::vector<double> pairs;
  } cases[] = {
      {"a matrix", "1\t.1\t.2\r\n.1\t1\t.3\r\n.2\t.3\t1\r\n", 1, 2, all},
      {"a lower triangle", "1\t\t\n.1\t1\t\n.2\t.3\t1\n", 0, 1, all},
      {"one whose lines end early", "1\n.1\t1\n.2\t.3\t1", 0, 1, all},
      {"an upper triangle", "1\t.1\t.2\n\t1\t.3\n\t\t1\n", 2, 2, all},
      {"a lower triangle without diagonal", ".1\t\n.2\t.3\n", 0, 1, all},
      {"one with an empty first line", "\t\n.1\t\n.2\t.3\n", 0, 1, all},
      {"an upper triangle without diagonal", ".1\t.2\n\t.3\n", 1, 0, all},
      {"one with an empty first column", "\t.1\t.2\n\t\t.3\n", 1, 1, all},
      {"a column", "1\n.1\n.2\n", 0, 0, {0.1, 0.2, 0}},
      {"a column for another variable", ".2\n.3\n1\n", 1, 2, {0, 0.2, 0.3}},
      {"a row", ".1\t1\t.3\n", 1, 2, {0.1, 0, 0.3}},
      {"some cells", ".2\n.3\n", 0, 2, {0, 0.2, 0.3}},
      {"a block of no triangle", ".2\t.9\n.3\t.8\n", 0, 2, {0, 0.2, 0.3}},
      {"decimal commas", "1\t0,1\t0,2\n0,1\t1\t0,3\n0,2\t0,3\t1\n", 0, 1, all},
      {"names at both edges", "\ta\tb\tc\na\t1\t.1\t.2\nb\t.1\t1\t.3\nc\t.2\t.3\t1\n", 0, 1, all},
      {"names in another order", "\tc\tb\ta\nc\t1\t.3\t.2\nb\t.3\t1\t.1\na\t.2\t.1\t1\n", 0, 1, all},
      {"names in one line, over a triangle", "c\tb\ta\n1\n.3\t1\n.2\t.1\t1\n", 0, 1, all},
      {"names of some variables", "\tc\nb\t.3\n", 0, 1, {0, 0, 0.3}},
      {"names of other variables", "\tx\ty\tz\nx\t1\t.1\t.2\ny\t.1\t1\t.3\nz\t.2\t.3\t1\n", 0, 1, all},
  };
  for (const auto& one : cases) EXPECT_EQ(Pasted(one.block, one.row, one.column), one.pairs) << one.what;
}

TEST(MatrixPaste, WhatIsLeftOutAndWhatDiffersIsCounted) {
  MatrixPaste paste;
  EXPECT_EQ(Pasted("0.7\t0.8\n0.9", 1, 2, &paste), (std::vector<double>{0, 0, 0.7}));
  EXPECT_EQ(paste.outside, 1U);
  // The cells above the diagonal count, as they do when such a matrix is read.
  EXPECT_EQ(Pasted("1\t.1\t.2\n.5\t1\t.3\n.2\t0.30\t1", 0, 0, &paste), (std::vector<double>{0.1, 0.2, 0.3}));
  EXPECT_EQ(paste.differing, 1U);
  EXPECT_EQ(paste.cells.size(), 3U);
}

// Opens the editor over variables a, b, c, …, and acts on it.
void WithEditor(std::size_t variables, std::function<MatrixVerdict(const std::vector<double>&)> judge,
                std::function<void(QWidget&)> act) {
  StartToolkit();
  MatrixQuestion question;
  for (std::size_t i = 0; i < variables; ++i) {
    question.names.push_back(std::string(1, static_cast<char>('a' + i % 26)) + std::to_string(i / 26));
    for (std::size_t j = 0; j < variables; ++j) question.cells.emplace_back(i == j ? "1" : "0");
  }
  question.judge = std::move(judge);
  const Hand hand("matrix", [&](QWidget& window) {
    act(window);
    PressButton(window, QDialogButtonBox::RejectRole);
  });
  EXPECT_FALSE(AskForMatrix(question, nullptr));
  EXPECT_TRUE(hand.HasActed());
}

void Type(QWidget& window, int row, int column, const char* text) {
  QAbstractItemModel& table = *Child<QTableView>(window, "table").model();
  table.setData(table.index(row, column), QString::fromLatin1(text));
}

TEST(MatrixQuestion, AMatrixIsJudgedOnceForEachEntryAndNotWhileOneIsBad) {
  int judged = 0;
  const auto judge = [&](const std::vector<double>& matrix) {
    ++judged;
    return MatrixVerdict{
        "judged", {1 - matrix[1], 1 + matrix[1]}, matrix[1] > 0.5 ? kNames : std::vector<std::string>()};
  };
  WithEditor(2, judge, [&](QWidget& window) {
    EXPECT_EQ(judged, 1);
    Type(window, 0, 1, "0.25");
    EXPECT_EQ(judged, 2);
    EXPECT_EQ(Child<QLabel>(window, "eigenvalues").text().toStdString(), "Eigenvalues: 0.75; 1.25");
    EXPECT_FALSE(Child<QAbstractItemView>(window, "changes").isVisible());
    Type(window, 1, 0, "x");
    EXPECT_EQ(judged, 2);
    EXPECT_TRUE(Child<QLabel>(window, "eigenvalues").text().isEmpty());
    Type(window, 1, 0, "0.75");
    EXPECT_EQ(Child<QLabel>(window, "verdict").text().toStdString(), "judged");
    ASSERT_TRUE(Child<QAbstractItemView>(window, "changes").isVisible());
    EXPECT_EQ(Child<QAbstractItemView>(window, "changes").model()->rowCount(), 3);
    QApplication::clipboard()->setText(QStringLiteral("1\t-0.5\n-0.5\t1\n"));
    Desk::ClickOn(Child<QPushButton>(window, "paste"));
    EXPECT_EQ(judged, 4);
    EXPECT_EQ(Child<QLabel>(window, "pasted").text().toStdString(), "One correlation was pasted.");
  });
}

TEST(MatrixQuestion, ALargeMatrixIsJudgedWhenTypingPauses) {
  constexpr int kVariables = 200;
  int judged = 0;
  const auto judge = [&](const std::vector<double>& matrix) {
    ++judged;
    return MatrixVerdict{"judged", matrix, {}};
  };
  WithEditor(kVariables, judge, [&](QWidget& window) {
    for (int i = 1; i < 10; ++i) Type(window, 0, i, "0.01");
    EXPECT_EQ(judged, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return judged > 0; }));
    QTest::qWait(400);
    EXPECT_EQ(judged, 1);
    EXPECT_EQ(Child<QLabel>(window, "eigenvalues").text().toStdString(),
              "40000 eigenvalues: 1; 0.01; 0.01; 0.01; …; 0; 0; 0; 1");
  });
}

// The colour of what is selected would hide the fault.
TEST(WindowInterface, TheBadCellOfAMatrixIsMarkedAlsoWhereItIsTheCurrentOne) {
  StartToolkit();
  EngineThread engine;
  KeepingSink sink;
  QWidget owner;
  WindowInterface interface(engine, sink, owner);
  const Hand look("matrix", [](QWidget& window) {
    auto& view = Child<QTableView>(window, "table");
    view.model()->setData(view.model()->index(0, 1), QStringLiteral("2.5"));
    ASSERT_EQ(view.currentIndex(), view.model()->index(0, 1));
    const QRect cell = view.visualRect(view.currentIndex());
    const QColor colour = view.viewport()->grab(cell).toImage().pixelColor(3, cell.height() / 2);
    EXPECT_GT(colour.red(), colour.blue() + 20) << Utf8(colour.name());
    PressButton(window, QDialogButtonBox::RejectRole);
  });
  engine.Run([&] {
    MatrixQuestion question{"Correlations", "", {"a", "b"}, {"1", "0", "0", "1"}, {}};
    EXPECT_FALSE(interface.EditMatrix(question));
  });
  EXPECT_TRUE(look.HasActed());
}

}  // namespace
}  // namespace brenvolt::desktop::test
