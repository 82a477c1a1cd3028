// What reports of the window say of the way to the same results.
#include <QFileDialog>

#include "apps/desktop/workbench/bench_support_test.h"

namespace brenvolt::desktop::test {
namespace {

struct ReportTest : Bench, testing::Test {
  void Fit(const QString& variable) {
    const Hand choose("variables", [&](QWidget& asked) { CheckVariables(asked, {variable}); });
    window.StartTask(Task::kFit);
    Click(kControlOk);
    ASSERT_EQ(Dialog(), 25983);
  }
  void EndDialogs() {
    for (int i = 0; i < 5 && Dialog() != 0; ++i) QTest::keyClick(window.Desk().Window(), Qt::Key_Escape);
    QTest::qWait(10);
  }
};

// While the dialog is open the report is that of its job, later one of what is shown: both say the same.
TEST_F(ReportTest, ValuesThatWereChangedHaveNoCommandAndFitsThatWereSavedKeepTheirs) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  Fit("waiting");
  Click(1104);
  EXPECT_TRUE(window.CurrentDocument()->IsModified()) << "the fits are in the project";
  EXPECT_TRUE(CommandIn(Exported("open.md")).contains("fit ")) << "the values are those of the file";
  EndDialogs();
  EXPECT_TRUE(CommandIn(Exported("closed.md")).contains("fit "));

  QAbstractItemModel& cells = *window.CurrentView()->CurrentGrid()->model();
  ASSERT_TRUE(cells.setData(cells.index(0, 1), QStringLiteral("77")));
  Fit("waiting");
  for (const char* const name : {"changed.md", "changed_closed.md"}) {
    const QString report = Exported(name);
    EXPECT_TRUE(CommandIn(report).isEmpty()) << Utf8(CommandIn(report));
    EXPECT_TRUE(report.contains("changed after they were opened")) << Utf8(report.left(2000));
    EndDialogs();
  }
}

TEST_F(ReportTest, AFileIsProposedBesideTheData) {
  std::filesystem::copy_file(kExamples + "faithful.csv", folder / "data.csv");
  ASSERT_TRUE(window.OpenFile(folder / "data.csv"));
  Fit("waiting");
  QString proposed;
  const Hand look("QFileDialog", [&](QWidget& asked) {
    proposed = static_cast<QFileDialog&>(asked).selectedFiles().value(0);
    static_cast<QFileDialog&>(asked).reject();
  });
  window.ExportReport();
  EXPECT_EQ(Utf8(proposed), (folder / "report.pdf").string());
}

TEST_F(ReportTest, ChoicesThatAreNotReadAreSaidWithTheReason) {
  std::string names;
  std::string row;
  for (int i = 0; i < 2001; ++i) {
    names += (i > 0 ? ",v" : "v") + std::to_string(i);
    row += (i > 0 ? "," : "") + std::to_string(i % 7);
  }
  WriteBytes(folder / "wide.csv", names + "\n" + row + "\n" + row + "5\n" + row + "7\n");
  ASSERT_TRUE(window.OpenFile(folder / "wide.csv"));
  Fit("v2000");
  const QString report = Exported("wide.md");
  EXPECT_TRUE(report.contains("more than 2000 variables")) << Utf8(report.left(2000));
}

}  // namespace
}  // namespace brenvolt::desktop::test
