// The whole main job in the window, by mouse and keys, beside the same by the command and by the macro that the window
// recorded: the files are the same, byte for byte.
#include <QAction>
#include <QCheckBox>
#include <QFileDialog>
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
  // Runs the macro that is shown in the editor by the command and by a window of its own, each time from the files as they
  // were, `former`; both leave the bytes that the hands did.
  void CompareReplays(const std::string& project, const std::optional<std::string>& former) {
    const std::string expected = BytesOf(File(project));
    if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
      GTEST_SKIP() << "the Python package is not built";
    window.Macros().Save(File("recorded.py"));
    const QString macro = ShownPath(File("recorded.py"));
    for (const auto& [program, arguments] :
         {std::pair(QStringLiteral("brenvolt"), QStringList{QStringLiteral("macro"), macro}),
          {QStringLiteral("brenvolt-desktop"),
           {QStringLiteral("--run-macro"), macro, QStringLiteral("--screenshot"),
            ShownPath(File("shot.png"))}}}) {
      std::filesystem::remove(File(project));
      if (former) WriteBytes(File(project), *former);
      QProcess replay;
      replay.setProcessChannelMode(QProcess::MergedChannels);
      replay.start(QStringLiteral(BRENVOLT_BUILD_DIR "/bin/") + program, arguments);
      ASSERT_TRUE(replay.waitForFinished()) << Utf8(program);
      EXPECT_EQ(replay.exitCode(), 0)
          << Utf8(program) << replay.readAll().toStdString() << Utf8(window.Macros().Text());
      EXPECT_TRUE(BytesOf(File(project)) == expected) << Utf8(program) << "\n"
                                                      << Utf8(window.Macros().Text());
    }
  }
  // The result that is looked at becomes a sheet of the project.
  void AddToProject() {
    for (QAction* const action : window.Results().findChildren<QAction*>()) {
      if (action->text() == QStringLiteral("Add to project")) action->trigger();
    }
  }
  // The report in Markdown that the window makes is the one of the command that it says repeats it, but for the time.
  void CompareReport() {
    const QString made = Exported("report.md");
    const QString command = CommandIn(made);
    ASSERT_FALSE(command.isEmpty()) << Utf8(made);
    QProcess shell;
    shell.start(QStringLiteral("sh"),
                {QStringLiteral("-c"), QStringLiteral(BRENVOLT_BUILD_DIR "/bin/brenvolt ") + command});
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
  // Without the dialog, the report is of what is shown.
  const std::string page = Utf8(Exported("shown.html"));
  for (const char* const part : {"Fits of faithful.csv", "brenvolt fit ", "--continuous eruptions,waiting",
                                 "Summary statistics", "272", "<svg"})
    EXPECT_NE(page.find(part), std::string::npos) << part;

  CompareReplays("window.bvw", std::nullopt);
}

// One text in two hundred numbers: the column is opened as texts, which a command has to be told.
TEST_F(MainJob, AReportOfAFileThatIsReadOtherwiseSaysHowItIsRead) {
  std::string bytes = "day;load;note\n";
  for (int i = 0; i < 200; ++i)
    bytes += std::to_string(i) + ";" + std::to_string(i % 17 * i % 23 + 1) + "," + std::to_string(i % 9) +
             ";" + (i == 77 ? std::string("broken") : std::to_string(i % 5)) + "\n";
  WriteBytes(File("loads.csv"), bytes);
  ASSERT_TRUE(window.OpenFile(File("loads.csv"), true));
  const Hand choose("variables", [&](QWidget& asked) { CheckVariables(asked, {QStringLiteral("load")}); });
  window.StartTask(Task::kFit);
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25983);
  CompareReport();
}

TEST_F(MainJob, SamplesAndTheirProjectAreThoseOfTheCommand) {
  Command({"fit", Data("faithful.csv"), "--continuous", "eruptions,waiting", "--save", "command.bvw"});
  const std::string fitted = BytesOf(File("command.bvw"));
  WriteBytes(File("window.bvw"), fitted);
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
  window.Results().Tree().setCurrentItem(window.Results().Tree().topLevelItem(0)->child(0));
  window.Results().SaveTo(File("window.csv"));
  EXPECT_TRUE(BytesOf(File("window.csv")) == BytesOf(File("command.csv")));
  AddToProject();
  EXPECT_TRUE(window.Save());
  EXPECT_TRUE(BytesOf(File("window.bvw")) == BytesOf(File("command.bvw")));
  Record();
  const QString macro = window.Macros().Text();
  // A line for each choice, none for each key.
  for (const char* const member : {"LHSwithImanMethod = ", "NumberOfSamples = 500", "RandomSeedNumber = 7\n"})
    EXPECT_EQ(macro.count(QLatin1String(member)), 1) << member << "\n" << Utf8(macro);
  CompareReport();
  EndDialogs();
  CompareReplays("window.bvw", fitted);
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
  CompareReplays("window.bvw", std::nullopt);
}

TEST_F(MainJob, TheProfileOfAModelIsThatOfTheCommand) {
  Command({"profile", Data("ozone.csv"), "--model", Data("ozone_regression.pmml"), "--fit-best", "--samples",
           "500", "--seed", "7", "-o", "command.csv"});
  ASSERT_TRUE(window.OpenFile(kExamples + "ozone.csv"));
  SaveAs("window.bvw");
  const std::string former = BytesOf(File("window.bvw"));
  Record();
  window.StartTask(Task::kProfile);
  ASSERT_EQ(Dialog(), 15033);
  const Hand load("files", [](QWidget& asked) {
    static_cast<QFileDialog&>(asked).selectFile(Data("ozone_regression.pmml"));
    QMetaObject::invokeMethod(&asked, "accept");
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
  AddToProject();
  EXPECT_TRUE(window.Save());
  Record();
  EXPECT_TRUE(BytesOf(File("window.bvw")) != former);
  CompareReport();
  EndDialogs();
  CompareReplays("window.bvw", former);
}

}  // namespace
}  // namespace brenvolt::desktop::test
