// The program killed in the middle of what it does: what was saved is there, and what was not is offered. Each part is
// killed as often as BRENVOLT_KILLS says (tools/desktop_kills), in the usual tests a few times.
#include <gtest/gtest.h>

#include <QApplication>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <cstdlib>
#include <fstream>

#include "apps/desktop/base/text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/main_window.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt::desktop {
namespace {

constexpr const char* kFolder = "BRENVOLT_KILLED_FOLDER";
constexpr const char* kWork = "BRENVOLT_KILLED_WORK";
constexpr std::size_t kCases = 20'000;
constexpr std::size_t kVariables = 5;

std::filesystem::path ProjectIn(const std::filesystem::path& folder) {
  return folder / "killed.bvw";
}

// The window of the program that is killed. The n-th edit sets the first cell to n and its neighbour to the double.
class Victim {
 public:
  explicit Victim(const std::filesystem::path& folder) : window_(folder / "state"), said_(folder / "said") {
    window_.show();
    window_.OpenFile(ProjectIn(folder));
    count_ = static_cast<int>(Grid().Model().Sheet().VariableAt(0).Values()[0]);
    Say();
  }

  void Edit() {
    ++count_;
    Edits edits;
    edits.emplace_back(SetCells{"Data", {{0, 0, {static_cast<double>(count_)}}}});
    edits.emplace_back(SetCells{"Data", {{1, 0, {2.0 * count_}}}});
    window_.CurrentDocument()->Do("Edit", std::move(edits));
    Say();
    QCoreApplication::processEvents();
  }
  void Save() { window_.Save(); }
  // A fit whose bootstrap takes minutes.
  void Analyse() {
    test::KeepingSink sink;
    QWidget owner;
    EngineThread engine;
    AnalysisRun run(engine, sink, window_.CurrentDocument()->Content().SheetAt(0), owner);
    window_.CurrentDocument()->Observe();
    run.Begin(0);
    engine.Run([&] {
      auto dialog = run.Analysis().GetDialgInterface();
      dialog->Put("ContinuousVariable", "1-5");
      dialog->Put("BootstrapSamples", std::int32_t{100'000});
    });
    std::ofstream(said_.parent_path() / "runs") << "yes";
    engine.Run([&] { run.Analysis().GetDialgInterface()->Call("OK"); });
  }

 private:
  SheetView& Grid() { return *window_.CurrentView()->CurrentGrid(); }
  // In one write, so that it is there as a whole.
  void Say() {
    std::ofstream file(said_, std::ios::in | std::ios::out);
    if (!file) file.open(said_);
    file << count_ << ' ' << std::flush;
  }

  MainWindow window_;
  std::filesystem::path said_;
  int count_ = 0;
};

// Run in a process of its own, by the tests below.
TEST(KilledWindow, DISABLED_WorksUntilItIsKilled) {
  const char* const folder = std::getenv(kFolder);
  ASSERT_NE(folder, nullptr);
  const std::string work = std::getenv(kWork);
  test::StartToolkit();
  Victim victim(folder);
  for (;;) {
    victim.Edit();
    if (work == "saving") victim.Save();
    if (work == "running") victim.Analyse();
  }
}

struct KilledWindow : test::WithToolkit, testing::TestWithParam<const char*> {
  TemporaryFolder folder;
  int offered = 0;

  static int Kills() {
    constexpr int kUsual = 6;
    const char* const asked = std::getenv("BRENVOLT_KILLS");
    return asked != nullptr ? std::atoi(asked) : kUsual;
  }
  bool WaitFor(const char* name) {
    const auto isThere = [&] {
      std::error_code none;
      const auto size = std::filesystem::file_size(folder / name, none);
      return !none && size > 0;  // a file that is being made is empty
    };
    return QTest::qWaitFor(isThere, 20'000);
  }

  void KillAfter(int milliseconds) {
    for (const char* name : {"said", "runs"}) std::filesystem::remove(folder / name);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kFolder), ShownPath(folder.Path()));
    environment.insert(QString::fromLatin1(kWork), QString::fromLatin1(GetParam()));
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--gtest_filter=KilledWindow.DISABLED_*"),
                   QStringLiteral("--gtest_also_run_disabled_tests")});
    ASSERT_TRUE(process.waitForStarted());
    ASSERT_TRUE(WaitFor(GetParam() == std::string("running") ? "runs" : "said"));
    QTest::qWait(milliseconds);
    process.kill();
    process.waitForFinished();
    ASSERT_EQ(process.exitStatus(), QProcess::CrashExit);
  }

  // Opens the window again, takes what it offers, and returns the number of the last edit.
  double Reopen() {
    MainWindow window(folder / "state");
    window.show();
    QTimer accepting;
    QObject::connect(&accepting, &QTimer::timeout, [&] {
      QWidget* const dialog = QApplication::activeModalWidget();
      auto* const recover = dialog == nullptr ? nullptr : dialog->findChild<QPushButton*>("recover");
      if (recover == nullptr) return;
      ++offered;
      recover->click();
    });
    accepting.start(2);
    window.Resume();
    if (window.DocumentCount() == 0) window.OpenFile(ProjectIn(folder.Path()));
    EXPECT_EQ(window.DocumentCount(), 1U);
    if (window.DocumentCount() == 0) return -1;
    const Spreadsheet& sheet = window.CurrentDocument()->Content().SheetAt(0);
    EXPECT_EQ(sheet.CaseCount(), kCases);
    const double last = sheet.VariableAt(0).Values()[0];
    EXPECT_EQ(sheet.VariableAt(1).Values()[0], 2 * last);
    EXPECT_TRUE(!window.CurrentDocument()->IsModified() || window.Save());
    window.close();
    return last;
  }
};

TEST_P(KilledWindow, NothingThatWasDoneIsLostAndNothingIsLeftBehind) {
  {
    Workbook workbook;
    auto sheet = std::make_unique<Spreadsheet>("Data", kCases, kVariables);
    for (std::size_t v = 0; v < kVariables; ++v) {
      for (std::size_t i = 1; i < kCases; ++i)
        sheet->VariableAt(v).MutableValues()[i] = static_cast<double>((i * (v + 7)) % 997);
    }
    workbook.Add(std::move(sheet));
    workbook.Save(ProjectIn(folder.Path()));
  }
  const int kills = Kills();
  for (int i = 0; i < kills; ++i) {
    SCOPED_TRACE("kill " + std::to_string(i));
    test::StartToolkit();
    // At other places of the work each time.
    KillAfter(i * 37 % 100);
    if (HasFatalFailure()) return;
    double said = -1;
    std::ifstream(folder / "said") >> said;
    const double found = Reopen();
    EXPECT_GE(found, said);
    EXPECT_LE(found, said + 1);
    // The folder is made with the first edit that is not saved, which a kill may come before.
    const auto unsaved = folder / "state/unsaved";
    EXPECT_TRUE(!std::filesystem::exists(unsaved) || std::filesystem::is_empty(unsaved));
    EXPECT_FALSE(std::filesystem::exists(folder / "killed.bvw-journal"));
  }
  EXPECT_GT(offered, GetParam() == std::string("saving") ? 0 : kills / 2);
  std::printf("%s: killed %d times, unsaved edits offered %d times\n", GetParam(), kills, offered);
}

INSTANTIATE_TEST_SUITE_P(While, KilledWindow, testing::Values("editing", "running", "saving"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace brenvolt::desktop
