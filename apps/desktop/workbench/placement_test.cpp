#include "apps/desktop/workbench/placement.h"

#include "apps/desktop/dialogs/dialog_window.h"
#include "apps/desktop/workbench/bench_support_test.h"

namespace brenvolt::desktop::test {
namespace {

TEST(Placement, ADialogGoesTheLeastWayThatUncoversThePageOnTheScreen) {
  const QRect screen(0, 0, 1920, 1080);
  const struct {
    const char* what;
    QRect window;
    QRect page;
    QPoint place;
  } cases[] = {{"where it covers nothing it stays", {100, 100, 500, 400}, {840, 150, 720, 760}, {100, 100}},
               {"left of the page", {600, 300, 700, 500}, {840, 150, 720, 760}, {140, 300}},
               {"right of the page", {1000, 300, 300, 500}, {500, 150, 720, 760}, {1220, 300}},
               {"below the page", {100, 300, 600, 300}, {0, 0, 1920, 500}, {100, 501 - 1}},
               {"as far as the screen allows", {600, 300, 900, 500}, {840, 150, 1080, 900}, {0, 300}},
               {"back onto the screen", {1800, 1000, 300, 200}, {0, 0, 500, 500}, {1620, 880}}};
  for (const auto& one : cases) {
    const QPoint place = PlaceBeside(one.window, one.page, screen);
    EXPECT_EQ(place, one.place) << one.what << ": " << place.x() << ", " << place.y();
  }
}

struct DialogPlacement : Bench, testing::Test {
  int OpenDialogs() const {
    int count = 0;
    for (const QWidget* const shown : QApplication::topLevelWidgets())
      count += qobject_cast<const DialogWindow*>(shown) != nullptr && shown->isVisible() ? 1 : 0;
    return count;
  }
};

TEST_F(DialogPlacement, OneDialogOfATaskIsOpenForOneSheet) {
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  const Hand choose("variables", [](QWidget& asked) { CheckVariables(asked, {"waiting"}); });
  window.StartTask(Task::kFit);
  window.StartTask(Task::kFit);
  EXPECT_EQ(OpenDialogs(), 1);
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25983);
  window.StartTask(Task::kFit);
  EXPECT_EQ(OpenDialogs(), 1);
  EXPECT_EQ(Dialog(), 25974) << "another fit is specified where the last one was";
  window.StartTask(Task::kProfile);
  EXPECT_EQ(OpenDialogs(), 2) << "another task has a dialog of its own";
}

// The screen of these tests has some eight hundred dots a side.
TEST_F(DialogPlacement, ThePageOfNewResultsIsNotCoveredByTheDialogThatMadeThem) {
  const QRect screen = window.screen()->availableGeometry();
  window.setGeometry(screen);
  ASSERT_TRUE(window.OpenFile(kExamples + "faithful.csv"));
  const Hand choose("variables", [](QWidget& asked) { CheckVariables(asked, {"waiting"}); });
  window.StartTask(Task::kFit);
  DialogWindow& dialog = *window.Desk().Window();
  dialog.move(screen.right() - dialog.width(), 100);
  Click(kControlOk);
  QTest::qWait(50);
  const QRect results(window.Results().mapToGlobal(QPoint(0, 0)), window.Results().size());
  const QRect now = window.Desk().Window()->frameGeometry();
  EXPECT_TRUE(screen.contains(now));
  const QRect covered = now & results;
  EXPECT_LE(covered.width(), std::max(0, now.width() + 480 - screen.width()))
      << now.x() << " " << now.width() << " " << results.x() << " " << results.width();
}

}  // namespace
}  // namespace brenvolt::desktop::test
