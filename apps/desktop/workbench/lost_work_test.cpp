// Work that a person has not saved is not lost without a question.
#include <QAbstractItemView>
#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>

#include "apps/desktop/base/save_question.h"
#include "apps/desktop/documents/kept_macro.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/analysis_desk.h"
#include "apps/desktop/workbench/macro_panel.h"
#include "apps/desktop/workbench/main_window_support_test.h"

namespace brenvolt::desktop::test {
namespace {

// Types a name into the next dialogs for a file, one after the other; an empty name cancels.
class Names : public QObject {
 public:
  explicit Names(QStringList names) : names_(std::move(names)) {
    connect(&timer_, &QTimer::timeout, this, &Names::Answer);
    timer_.start(20);
  }
  bool AllGiven() const { return names_.isEmpty(); }

 private:
  void Answer() {
    auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    const QString name = names_.isEmpty() ? QString() : names_.takeFirst();
    if (name.isEmpty()) return dialog->reject();
    // The file that was proposed is chosen as well, as soon as the dialog has found it.
    dialog->findChild<QAbstractItemView*>("listView")->clearSelection();
    dialog->findChild<QLineEdit*>("fileNameEdit")->setText(name);
    static_cast<QDialog*>(dialog)->accept();
  }

  QTimer timer_;
  QStringList names_;
};

struct LostWorkTest : MainWindowTest {
  QString Named(const char* name) const { return ShownPath(folder / name); }
};

std::shared_ptr<CAnalysisTableDoc> Table() {
  return std::make_shared<CAnalysisTableDoc>(std::make_unique<Spreadsheet>("Counts", 2, 1));
}

TEST_F(LostWorkTest, AFileIsNotReplacedUnaskedByANameWithoutItsEnding) {
  const struct {
    const char* filters;
    const char* typed;
    const char* file;
    const char* other;
    NameEnding ending;
  } cases[] = {
      {"Projects (*.bvw)", "v1.2", "v1.2.bvw", "other.bvw", NameEnding::kAlways},
      {"PDF (*.pdf);;HTML (*.html)", "report", "report.pdf", "other.pdf", NameEnding::kIfMissing},
      {"PDF (*.pdf);;HTML (*.html)", "report.html", "report.html", "other.pdf", NameEnding::kIfMissing}};
  for (const auto& one : cases) {
    WriteBytes(folder / one.file, "precious");
    {
      Names names({Named(one.typed), Named("other")});
      Answers answers({"Cancel"});
      const QString asked = AskFileToSave(nullptr, "Save", {}, one.filters, one.ending);
      ASSERT_EQ(answers.Texts().size(), 1) << one.typed;
      EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String(one.file))) << Utf8(answers.Texts()[0]);
      EXPECT_EQ(asked, Named(one.other));
    }
    Names again({Named(one.typed)});
    Answers yes({"Replace"});
    EXPECT_EQ(AskFileToSave(nullptr, "Save", {}, one.filters, one.ending), Named(one.file));
  }
}

TEST_F(LostWorkTest, AProjectThatIsOpenInAnotherTabIsNotSavedOver) {
  const auto first = Project("first.bvw");
  const auto second = Project("second.bvw");
  auto window = Start();
  window->OpenFile(first);
  window->OpenFile(second);
  Edit(*window, 5);
  Names names({Named("first")});
  Answers answers({"Replace", "OK"});
  EXPECT_FALSE(window->SaveAs());
  EXPECT_TRUE(answers.AllGiven());
  EXPECT_TRUE(answers.Texts().last().contains(QLatin1String("open in another tab")));
  EXPECT_EQ(Cell(first), 0);
  EXPECT_EQ(window->CurrentDocument()->File(), second);
  EXPECT_TRUE(window->Save());
}

TEST_F(LostWorkTest, ATypedMacroIsAskedForBeforeAnotherTakesItsPlace) {
  WriteBytes(folder / "other.py", "print(2)\n");
  auto window = Start();
  auto& editor = *window->Macros().findChild<QPlainTextEdit*>("macro");
  QTest::keyClicks(&editor, "print(1)");
  {
    Answers answers({"Cancel"});
    EXPECT_FALSE(window->OpenFile(folder / "other.py"));
    EXPECT_EQ(answers.Texts(), QStringList(QStringLiteral("Save the macro?")));
  }
  EXPECT_EQ(editor.toPlainText(), "print(1)");
  {
    Answers answers({"Cancel"});
    window->Macros().AskOpen();
    EXPECT_TRUE(answers.AllGiven());
  }
  Names names({Named("mine")});
  Answers answers({"Save"});
  EXPECT_TRUE(window->OpenFile(folder / "other.py"));
  EXPECT_EQ(editor.toPlainText(), "print(2)\n");
  EXPECT_EQ(BytesOf(folder / "mine.py"), "print(1)");
  EXPECT_FALSE(window->Macros().IsModified());
  editor.undo();
  EXPECT_EQ(editor.toPlainText(), "print(1)");
  window->Macros().Save(folder / "other.py");
}

TEST_F(LostWorkTest, AReportOnAFullDeviceIsSaidAndTheResultsStayUnsaved) {
  auto window = Start();
  window->Results().Add(Table());
  for (const char* const name : {"full.html", "full.md", "full.pdf"}) {
    std::filesystem::create_symlink("/dev/full", folder / name);
    Names names({Named(name)});
    Answers answers({"Replace", "OK"});
    window->ExportReport();
    ASSERT_TRUE(answers.AllGiven()) << name;
    EXPECT_TRUE(answers.Texts().last().contains(QLatin1String(name))) << Utf8(answers.Texts().last());
    EXPECT_EQ(window->Results().UnsavedCount(), 1) << name;
  }
  window->Results().Remove();
}

TEST_F(LostWorkTest, TheTextOfAMacroIsOfferedAfterTheWindowWasKilled) {
  const auto kept = [this] { return std::filesystem::directory_iterator(State() / "macros"); };
  std::filesystem::create_directories(State() / "macros");
  WriteBytes(folder / "mine.py", "print(1)\n");
  {
    auto window = Start();
    ASSERT_TRUE(window->OpenFile(folder / "mine.py"));
    auto& editor = *window->Macros().findChild<QPlainTextEdit*>("macro");
    QTest::keyClicks(&editor, "# more ");
    ASSERT_TRUE(QTest::qWaitFor([&] { return kept() != std::filesystem::directory_iterator(); }, 5000));
    QTest::qWait(300);
    EXPECT_TRUE(LeftMacros(State() / "macros").empty()) << "they are of a process that runs";
    std::filesystem::copy(State() / "macros", folder / "copy");
  }
  EXPECT_EQ(kept(), std::filesystem::directory_iterator()) << "nothing is left of a window that was closed";
  std::filesystem::copy(folder / "copy", State() / "macros");
  auto window = Start();
  {
    Answers answers({"Ask again"});
    window->Resume();
    EXPECT_TRUE(answers.AllGiven());
    EXPECT_TRUE(window->Macros().Text().isEmpty());
  }
  Answers answers({"Recover"});
  window->Resume();
  ASSERT_EQ(answers.Texts().size(), 1);
  EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("mine.py"))) << Utf8(answers.Texts()[0]);
  EXPECT_EQ(window->Macros().Text(), QStringLiteral("# more print(1)\n"));
  EXPECT_TRUE(window->Macros().IsModified());
  EXPECT_EQ(BytesOf(folder / "mine.py"), "print(1)\n");
  window->Macros().Save(folder / "mine.py");
  EXPECT_EQ(kept(), std::filesystem::directory_iterator()) << "what is saved is not offered again";
}

TEST_F(LostWorkTest, ClosingAsksForResultsARecordingAndAMacroThatRuns) {
  auto window = Start();
  window->Results().Add(Table());
  window->Results().Add(Table());
  window->Desk().Recording().Start();
  {
    Answers answers({"Cancel"});
    EXPECT_FALSE(window->close());
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("recorded")));
    EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("2 results")));
  }
  window->Desk().Recording().Stop();
  window->Results().SaveTo(folder / "counts.csv");
  {
    Answers answers({"Cancel"});
    EXPECT_FALSE(window->close());
    EXPECT_EQ(answers.Texts(), QStringList(QStringLiteral("One result is neither saved nor in a report.")));
  }
  window->Results().SetReported();
  Answers none({});
  EXPECT_TRUE(window->close());
  EXPECT_TRUE(none.Texts().isEmpty());
}

TEST_F(LostWorkTest, WhatWasOpenIsOpenAgainAlsoAfterTheWindowWasKilled) {
  auto killed = Start();
  killed->OpenFile(Csv("a.csv"));
  killed->OpenFile(Csv("b.csv"));
  killed->CloseDocument();
  killed->OpenFile(Project("c.bvw"));
  auto window = Start();
  window->Resume();
  EXPECT_EQ(window->DocumentCount(), 2U);
  EXPECT_EQ(window->CurrentDocument()->Title(), "c.bvw");
}

TEST_F(LostWorkTest, EditsOfAnotherVersionAreToldAndRecoveredOnesAreInFront) {
  const auto file = Project("a.bvw");
  {
    auto window = Start();
    window->OpenFile(file);
    window->OpenFile(Csv("b.csv"));
    window->OpenFile(file);
    Edit(*window, 5);
    for (const auto& entry : std::filesystem::directory_iterator(State() / "unsaved")) {
      if (entry.path().extension() == ".journal") std::filesystem::copy_file(entry.path(), folder / "kept");
    }
  }
  std::filesystem::rename(folder / "kept", State() / "unsaved" / "left.journal");
  WriteBytes(State() / "unsaved" / "newer.journal", std::string("BRVJ\0\0\0\7...", 11));
  auto window = Start();
  Answers answers({"OK"});
  QTimer recover;
  QObject::connect(&recover, &QTimer::timeout, [] {
    QWidget* const shown = QApplication::activeModalWidget();
    auto* const button = shown != nullptr ? shown->findChild<QPushButton*>("recover") : nullptr;
    if (button != nullptr) button->click();
  });
  recover.start(20);
  window->Resume();
  ASSERT_EQ(answers.Texts().size(), 1);
  EXPECT_TRUE(answers.Texts()[0].contains(QLatin1String("newer.journal")));
  EXPECT_EQ(window->DocumentCount(), 2U);
  EXPECT_EQ(window->CurrentDocument()->Title(), "a.bvw");
  EXPECT_TRUE(window->CurrentDocument()->IsModified());
  window->CurrentDocument()->Save(file);
}

}  // namespace
}  // namespace brenvolt::desktop::test
