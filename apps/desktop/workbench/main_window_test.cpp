#include "apps/desktop/workbench/main_window.h"

#include <sys/stat.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/macro_panel.h"
#include "apps/desktop/workbench/main_window_support_test.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/base/number_text.h"
#include "host/tables/formats/data_file_writer.h"

namespace brenvolt::desktop {
namespace {

using test::Answers;
using test::MainWindowTest;

void Drop(MainWindow& window, const QList<QUrl>& urls) {
  QMimeData data;
  data.setUrls(urls);
  QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &drop);
}

TEST_F(MainWindowTest, FilesThatAreDroppedOpenAndOthersAreRefusedByName) {
  auto window = Start();
  WriteBytes(folder / "picture.png", std::string("\x89PNG\r\n\x1a\n\0\0", 10));
  std::filesystem::create_directory(folder / "folder");
  Answers answers({"OK", "OK", "OK", "OK"});
  const auto url = [this](const std::string& name) { return QUrl::fromLocalFile(ShownPath(folder / name)); };
  Csv("data.csv");
  Project("project.bvw");
  Drop(*window, {url("data.csv"), url("picture.png"), url("folder"), url("missing.csv"), url("project.bvw"),
                 url("data.csv"), QUrl(QStringLiteral("https://example.org/a.csv"))});
  EXPECT_EQ(window->DocumentCount(), 2U);
  ASSERT_EQ(answers.Texts().size(), 4);
  for (const auto& [text, name] :
       {std::pair(0, "picture.png"), {1, "folder"}, {2, "missing.csv"}, {3, "example.org"}})
    EXPECT_TRUE(answers.Texts()[text].contains(QLatin1String(name))) << Utf8(answers.Texts()[text]);
  EXPECT_EQ(window->CurrentDocument()->Title(), "data.csv");
}

TEST_F(MainWindowTest, APipeOrADeviceIsRefusedAtOnce) {
  auto window = Start();
  ASSERT_EQ(mkfifo((folder / "pipe.csv").c_str(), 0600), 0);
  for (const auto& path : {folder / "pipe.csv", std::filesystem::path("/dev/zero")}) {
    Answers answers({"OK"});
    EXPECT_FALSE(window->OpenFile(path));
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("pipe or a device"))) << Utf8(answers.Texts()[0]);
  }
}

// Files of these kinds are written or kept beside the readers, under the names that they usually have.
TEST_F(MainWindowTest, TheDialogForOpeningShowsFilesOfAllKindsThatAreRead) {
  QStringList filters;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    filters = dialog->nameFilters();
    dialog->reject();
  });
  look.start(20);
  auto window = Start();
  window->Open();
  ASSERT_FALSE(filters.isEmpty());
  QStringList endings{"bvw"};
  for (const std::string& ending : DataEndings()) endings << Shown(ending.substr(1));
  const std::filesystem::path kept = BRENVOLT_SOURCE_DIR "/host/tables/formats/reference/packages";
  for (const auto& entry : std::filesystem::directory_iterator(kept)) {
    const QString ending = Shown(entry.path().extension().string()).mid(1);
    if (ending != "json" && ending != "md") endings << ending;
  }
  for (const QString& ending : endings)
    EXPECT_TRUE(filters[0].contains(QLatin1String("*.") + ending)) << Utf8(ending) << Utf8(filters[0]);
}

TEST_F(MainWindowTest, TheWindowFitsAScreenOfEightHundredDots) {
  auto window = Start();
  EXPECT_LT(window->height(), window->screen()->availableSize().height()) << "the frame takes room, too";
  EXPECT_LT(window->width(), window->screen()->availableSize().width());
}

TEST_F(MainWindowTest, UnsavedWorkIsAskedForBeforeItIsClosed) {
  const auto file = Project("a.bvw");
  auto window = Start();
  ASSERT_TRUE(window->OpenFile(file));
  Edit(*window, 5);
  EXPECT_TRUE(window->isWindowModified());
  {
    Answers answers({"Cancel"});
    EXPECT_FALSE(window->CloseDocument());
    EXPECT_EQ(answers.Texts(), QStringList(QStringLiteral("Save the changes to a.bvw?")));
  }
  {
    Answers answers({"Cancel"});
    EXPECT_FALSE(window->close());
  }
  EXPECT_EQ(window->DocumentCount(), 1U);
  {
    Answers answers({"Save"});
    EXPECT_TRUE(window->close());
  }
  EXPECT_EQ(Cell(file), 5);
  EXPECT_TRUE(std::filesystem::is_empty(State() / "unsaved"));

  // What was open is open again.
  window = Start();
  window->Resume();
  EXPECT_EQ(window->DocumentCount(), 1U);
  Edit(*window, 6);
  {
    QMessageBox probe;  // what the button is called differs between desktops
    probe.setStandardButtons(QMessageBox::Discard);
    Answers answers({probe.button(QMessageBox::Discard)->text().remove(QLatin1Char('&'))});
    EXPECT_TRUE(window->close());
  }
  EXPECT_EQ(Cell(file), 5);
}

TEST_F(MainWindowTest, AFileThatAnotherProgramChangedIsNotReplacedUnasked) {
  const auto file = Project("a.bvw");
  auto window = Start();
  window->OpenFile(file);
  Edit(*window, 5);
  {
    Workbook other = Workbook::Open(file);
    other.SheetAt(0).VariableAt(0).MutableValues()[0] = 77;
    other.Save(file);
  }
  {
    Answers answers({"Cancel"});
    EXPECT_FALSE(window->Save());
    EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("Another program has changed a.bvw")));
  }
  EXPECT_EQ(Cell(file), 77);
  {
    Answers answers({"Save here"});
    EXPECT_TRUE(window->Save());
  }
  EXPECT_EQ(Cell(file), 5);
  std::filesystem::remove(file);
  Edit(*window, 8);
  {
    Answers answers({"Save here"});
    EXPECT_TRUE(window->Save());
    EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("removed")));
  }
  EXPECT_EQ(Cell(file), 8);
}

TEST_F(MainWindowTest, AFailedSaveIsSaidAndKeepsTheEdits) {
  const auto file = Project("a.bvw");
  auto window = Start();
  window->OpenFile(file);
  Edit(*window, 5);
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  Answers answers({"Save here", "OK"});
  EXPECT_FALSE(window->Save());
  EXPECT_TRUE(answers.AllGiven());
  EXPECT_TRUE(window->CurrentDocument()->IsModified());
  EXPECT_TRUE(answers.Texts().last().contains(QLatin1String("Your edits are kept")));
  EXPECT_FALSE(std::filesystem::is_empty(State() / "unsaved"));
  window->CurrentDocument()->Save(folder / "b.bvw");
}

// A window that is killed leaves its edits to the next one.
TEST_F(MainWindowTest, WhatAKilledWindowLeftIsOfferedAndRecovered) {
  const auto file = Project("a.bvw");
  {
    auto window = Start();
    window->OpenFile(file);
    Edit(*window, 5);
    for (const auto& entry : std::filesystem::directory_iterator(State() / "unsaved")) {
      if (entry.path().extension() == ".journal") std::filesystem::copy_file(entry.path(), folder / "kept");
    }
  }
  std::filesystem::rename(folder / "kept", State() / "unsaved" / "left.journal");
  auto window = Start();
  QTimer::singleShot(50, [] {
    auto* button = QApplication::activeModalWidget()->findChild<QPushButton*>("recover");
    ASSERT_NE(button, nullptr);
    button->click();
  });
  window->Resume();
  ASSERT_EQ(window->DocumentCount(), 1U);
  EXPECT_TRUE(window->CurrentDocument()->IsModified());
  EXPECT_EQ(Cell(file), 0);
  EXPECT_TRUE(window->Save());
  EXPECT_EQ(Cell(file), 5);
}

TEST_F(MainWindowTest, DecimalCommasFollowThePersonsLocale) {
  SetUserNumberLocale({','});
  auto window = Start();
  EXPECT_TRUE(window->OpenFile(Csv("comma.csv", "a;b\n1,5;2\n")));
  SheetView& grid = *window->CurrentView()->CurrentGrid();
  EXPECT_EQ(grid.model()->index(0, 0).data().toString(), "1,5");
  grid.model()->setData(grid.model()->index(0, 0), QStringLiteral("2,25"));
  EXPECT_EQ(window->CurrentDocument()->Content().SheetAt(0).VariableAt(0).Values()[0], 2.25);
  SetUserNumberLocale({});
  window->CurrentDocument()->Save(folder / "done.bvw");
}

TEST(MacroPanelTest, FailuresAreFoundAtTheLineOfTheMacro) {
  const QString trace = QStringLiteral(
      "Traceback (most recent call last):\n  File \"/tmp/m.py\", line 7, in <module>\n    f()\n"
      "  File \"/tmp/m.py\", line 3, in f\n    x.y()\n  File \"/usr/lib/brenvolt/__init__.py\", line 99, in "
      "y\n"
      "brenvolt.Error: no\n");
  EXPECT_EQ(FailedLine(trace, QStringLiteral("/tmp/m.py")), 3);
  EXPECT_EQ(FailedLine(trace, QStringLiteral("/tmp/other.py")), std::nullopt);
}

TEST_F(MainWindowTest, AMacroRunsAndItsFaultIsShownAtItsLine) {
  if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
    GTEST_SKIP() << "the Python package is not built";
  MacroPanel panel(folder / "macros");
  panel.SetText(QStringLiteral("print('begun')\n\nraise ValueError('broken')\n"));
  std::optional<bool> succeeded;
  QStringList said;
  QObject::connect(&panel, &MacroPanel::ended, [&](bool done) { succeeded = done; });
  QObject::connect(&panel, &MacroPanel::said, [&](const QString& text) { said << text; });
  panel.Run();
  EXPECT_TRUE(QTest::qWaitFor([&] { return succeeded.has_value(); }, 20000));
  EXPECT_EQ(succeeded, false);
  EXPECT_EQ(said, QStringList(QStringLiteral("The macro failed in line 3.")));
  EXPECT_TRUE(panel.IsModified());
}

}  // namespace
}  // namespace brenvolt::desktop
