// The whole main job in the window, by mouse and keys, beside the same by the command and by the macro that the window
// recorded: the files are the same, byte for byte.
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <optional>

#include "apps/desktop/workbench/bench_support_test.h"
#include "apps/desktop/workbench/macro_panel.h"

namespace brenvolt::desktop::test {
namespace {

struct MainJob : Bench, testing::Test {
  std::filesystem::path File(const std::string& name) const { return folder / name; }
  static QString Data(const std::string& name) { return Shown(kExamples + name); }

  // What the command of the build does in the folder.
  void Command(const QStringList& arguments) const {
    QProcess command;
    command.setWorkingDirectory(ShownPath(folder.Path()));
    command.start(QStringLiteral(BRENVOLT_BUILD_DIR "/bin/brenvolt"), arguments);
    ASSERT_TRUE(command.waitForFinished());
    ASSERT_EQ(command.exitCode(), 0) << Utf8(QString::fromUtf8(command.readAllStandardError()));
  }
  // A setting without a control, by its words.
  void Set(const QString& setting, const QString& value) {
    const Hand hand("settings", [&](QWidget& shown) {
      auto& members = Child<QListWidget>(shown, "members");
      members.setCurrentItem(members.findItems(setting, Qt::MatchExactly).value(0));
      Child<QLineEdit>(shown, "value").setText(value);
      Desk::ClickOn(Child<QPushButton>(shown, "set"));
      EXPECT_EQ(Child<QLabel>(shown, "verdict").text(), QStringLiteral("Done."));
      QTest::keyClick(&shown, Qt::Key_Escape);
    });
    Desk::ClickOn(Child<QPushButton>(*window.Desk().Window(), "allSettings"));
    EXPECT_TRUE(hand.HasActed());
  }
  void SaveAs(const std::string& name) {
    const Hand save("QFileDialog", [&](QWidget& asked) {
      auto& edit = Child<QLineEdit>(asked, "fileNameEdit");
      edit.setText(ShownPath(File(name)));
      QTest::keyClick(&edit, Qt::Key_Return);
    });
    EXPECT_TRUE(window.SaveAs());
    EXPECT_TRUE(save.HasActed());
  }
  void Record() {
    for (QAction* const action : window.Macros().findChildren<QAction*>()) {
      if (action->text().contains(QLatin1String("ecord"))) return action->trigger();
    }
    ADD_FAILURE() << "no recorder";
  }
  // Runs a macro that is shown in the editor, from a file.
  void RunRecorded() {
    window.Macros().Save(File("recorded.py"));
    std::optional<bool> succeeded;
    QObject::connect(&window, &MainWindow::macroEnded, &window, [&](bool done) { succeeded = done; });
    window.RunMacro(File("recorded.py"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return succeeded.has_value(); }, 20000));
    EXPECT_EQ(succeeded, true) << Utf8(window.Macros().Text()) << Utf8(window.Macros().Output());
  }
  // The report in Markdown that the window makes is the one of the command that it says repeats it, but for the time.
  void CompareReport() {
    const Hand save("QFileDialog", [&](QWidget& asked) {
      auto& edit = Child<QLineEdit>(asked, "fileNameEdit");
      edit.setText(ShownPath(File("report.md")));
      QTest::keyClick(&edit, Qt::Key_Return);
    });
    window.ExportReport();
    EXPECT_TRUE(save.HasActed());
    const QString made = QString::fromStdString(BytesOf(File("report.md")));
    const auto command = QRegularExpression(QStringLiteral("\nbrenvolt (.*)\n")).match(made);
    ASSERT_TRUE(command.hasMatch()) << Utf8(made);
    QProcess shell;
    shell.start(
        QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral(BRENVOLT_BUILD_DIR "/bin/brenvolt ") + command.captured(1)});
    ASSERT_TRUE(shell.waitForFinished());
    ASSERT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().toStdString();
    const auto timeless = [](QString text) {
      return text.remove(QRegularExpression(QStringLiteral("[^\n]*\\bMade\\b[^\n]*\n")));
    };
    const QString again = QString::fromStdString(BytesOf(File("report.md")));
    EXPECT_GT(made.size(), 1000);
    EXPECT_EQ(Utf8(timeless(made)), Utf8(timeless(again)));
  }
  void EndDialogs() {
    for (int i = 0; i < 5 && Dialog() != 0; ++i) QTest::keyClick(window.Desk().Window(), Qt::Key_Escape);
    QTest::qWait(10);
  }
  void FitInWindow(const std::string& data, const QStringList& variables) {
    ASSERT_TRUE(window.OpenFile(kExamples + data));
    const Hand choose("variables", [&](QWidget& asked) { CheckVariables(asked, variables); });
    window.StartTask(Task::kFit);
    ASSERT_EQ(Dialog(), 25974);
    for (int i = 0; i < variables.size(); ++i) {
      if (i > 0) Click(1022);
      Click(1023);
      Click(1038);  // "Select all" has checked the Johnson fit by percentiles, too
    }
    Set(QStringLiteral("Contradicted fits last"), QStringLiteral("1"));
    Click(kControlOk);
    ASSERT_EQ(Dialog(), 25983);
    Click(1104);
  }
};

TEST_F(MainJob, FitsSavedInTheWindowAreTheBytesOfTheCommandAndOfTheRecordedMacro) {
  Command({"fit", Data("faithful.csv"), "--continuous", "eruptions,waiting", "--save", "command.bvw"});
  Record();
  FitInWindow("faithful.csv", {QStringLiteral("eruptions"), QStringLiteral("waiting")});
  SaveAs("window.bvw");
  Record();
  const std::string expected = BytesOf(File("command.bvw"));
  EXPECT_GT(expected.size(), 1000U);
  EXPECT_TRUE(BytesOf(File("window.bvw")) == expected);
  EXPECT_FALSE(window.CurrentDocument()->IsModified());
  CompareReport();
  EndDialogs();

  if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
    GTEST_SKIP() << "the Python package is not built";
  std::filesystem::remove(File("window.bvw"));
  RunRecorded();
  EXPECT_TRUE(BytesOf(File("window.bvw")) == expected) << Utf8(window.Macros().Text());
}

TEST_F(MainJob, SamplesAndTheirProjectAreThoseOfTheCommand) {
  Command({"fit", Data("faithful.csv"), "--continuous", "eruptions,waiting", "--save", "command.bvw"});
  std::filesystem::copy_file(File("command.bvw"), File("window.bvw"));
  Command({"simulate", "command.bvw", "--method", "latin-hypercube-iman-conover", "--samples", "500",
           "--seed", "7", "-o", "command.csv"});
  Command({"simulate", "command.bvw", "--method", "latin-hypercube-iman-conover", "--samples", "500",
           "--seed", "7", "-o", "command.bvw"});
  ASSERT_TRUE(window.OpenFile(File("window.bvw")));
  Record();
  window.StartTask(Task::kSimulate);
  ASSERT_EQ(Dialog(), 25991);
  Click(1125);
  Type(1127, "500");
  if (!static_cast<QCheckBox&>(Control(1128)).isChecked()) Click(1128);
  Type(1129, "7");
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25988);
  Record();
  const QString macro = window.Macros().Text();
  // A line for each choice, none for each key.
  for (const char* const member : {"LHSwithImanMethod = ", "NumberOfSamples = 500", "RandomSeedNumber = 7"})
    EXPECT_EQ(macro.count(QLatin1String(member)), 1) << member << "\n" << Utf8(macro);
  window.Results().Tree().setCurrentItem(window.Results().Tree().topLevelItem(0)->child(0));
  window.Results().SaveTo(File("window.csv"));
  EXPECT_TRUE(BytesOf(File("window.csv")) == BytesOf(File("command.csv")));
  for (QAction* const action : window.Results().findChildren<QAction*>()) {
    if (action->text() == QStringLiteral("Add to project")) action->trigger();
  }
  EXPECT_TRUE(window.Save());
  EXPECT_TRUE(BytesOf(File("window.bvw")) == BytesOf(File("command.bvw")));
  CompareReport();
}

TEST_F(MainJob, ADesignIsSavedAsByTheCommandAndByTheRecordedMacro) {
  Command({"design", "command.bvw", "--variable", "h ~ normal(50.2, 0.05)", "--variable", "w ~ normal(10, 2)",
           "--correlation", "h,w=-0.9"});
  Record();
  const Hand name("names", [](QWidget& asked) {
    Child<QPlainTextEdit>(asked, "names").setPlainText(QStringLiteral("h\nw"));
    PressButton(asked, QDialogButtonBox::AcceptRole);
  });
  QTest::mouseClick(window.findChild<QWidget*>("task2"), Qt::LeftButton);
  ASSERT_EQ(Dialog(), 15000);
  DesignNormal(0, "50.2", "0.05");
  DesignNormal(1, "10", "2");
  const Hand correlate("dialog15002", [](QWidget& shown) {
    auto& editor = static_cast<DialogWindow&>(shown);
    Desk::TypeInto(Desk::ControlIn(editor, 1442), "-0.9");
    Desk::ClickOn(Desk::ControlIn(editor, kControlOk));
  });
  Click(1404);
  EXPECT_TRUE(correlate.HasActed());
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25991);
  SaveAs("window.bvw");
  Record();
  const std::string expected = BytesOf(File("command.bvw"));
  EXPECT_TRUE(BytesOf(File("window.bvw")) == expected);
  std::filesystem::remove(File("window.bvw"));
  if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
    GTEST_SKIP() << "the Python package is not built";
  RunRecorded();
  EXPECT_TRUE(BytesOf(File("window.bvw")) == expected) << Utf8(window.Macros().Text());
}

TEST_F(MainJob, TheProfileOfAModelIsThatOfTheCommand) {
  Command({"profile", Data("ozone.csv"), "--model", Data("ozone_regression.pmml"), "--fit-best", "--samples",
           "500", "--seed", "7", "-o", "command.csv"});
  ASSERT_TRUE(window.OpenFile(kExamples + "ozone.csv"));
  window.StartTask(Task::kProfile);
  ASSERT_EQ(Dialog(), 15033);
  const Hand load("files", [](QWidget& asked) {
    auto& edit = Child<QLineEdit>(asked, "fileNameEdit");
    edit.setText(Data("ozone_regression.pmml"));
    QTest::keyClick(&edit, Qt::Key_Return);
  });
  Click(1302);
  EXPECT_TRUE(load.HasActed());
  Click(1338);
  Type(1340, "500");
  if (!static_cast<QCheckBox&>(Control(1304)).isChecked()) Click(1304);
  Type(1305, "7");
  Click(kControlOk);
  ASSERT_GT(Results().size(), 2);
  window.Results().Tree().setCurrentItem(window.Results().Tree().topLevelItem(0)->child(0));
  window.Results().SaveTo(File("window.csv"));
  EXPECT_TRUE(BytesOf(File("window.csv")) == BytesOf(File("command.csv")));
  CompareReport();
}

}  // namespace
}  // namespace brenvolt::desktop::test
