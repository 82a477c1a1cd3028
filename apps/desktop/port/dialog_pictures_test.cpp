// Pictures of every dialog and question, as a session on example data shows them. They go into the folder that
// BRENVOLT_PICTURES names (tools/desktop_pictures), else into one that is removed again.
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPixmap>
#include <QTableView>
#include <cstdlib>
#include <set>

#include "apps/desktop/base/text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt::desktop::test {
namespace {

class Pictures {
 public:
  Pictures() {
    const char* const asked = std::getenv("BRENVOLT_PICTURES");
    target_ = asked != nullptr ? std::filesystem::path(asked) : folder_.Path();
    std::filesystem::create_directories(target_);
  }

  void Take(QWidget& window, const std::string& name) {
    QTest::qWait(1);
    const std::filesystem::path file = target_ / (name + ".png");
    EXPECT_TRUE(window.grab().save(ShownPath(file), "PNG")) << file;
    EXPECT_GT(std::filesystem::file_size(file), 1000U) << file;
    taken_.insert(name);
  }
  // The open dialog, a picture for each of its tabs.
  void TakePages(DialogWindow& window, const std::string& name) {
    auto* const tabs = window.findChild<QTabWidget*>();
    const int pages = tabs != nullptr ? tabs->count() : 1;
    for (int page = 0; page < pages; ++page) {
      if (tabs != nullptr) tabs->setCurrentIndex(page);
      Take(window, pages > 1 ? name + "_" + std::to_string(page + 1) : name);
    }
  }
  const std::set<std::string>& Taken() const { return taken_; }

 private:
  TemporaryFolder folder_;
  std::filesystem::path target_;
  std::set<std::string> taken_;
};

struct DialogPictures : testing::Test {
  Pictures pictures;

  // Of a window that opens when a control is pressed, after something was done in it.
  void TakeOpened(Desk& desk, std::int32_t button, const std::string& window, const std::string& name,
                  const std::function<void(QWidget&)>& before = {}, bool isAccepted = true) {
    const Hand hand(window, [&](QWidget& shown) {
      if (before) before(shown);
      pictures.Take(shown, name);
      if (!isAccepted) {
        QTest::keyClick(&shown, Qt::Key_Escape);
      } else if (auto* const dialog = qobject_cast<DialogWindow*>(&shown)) {
        Desk::ClickOn(Desk::ControlIn(*dialog, kControlOk));
      } else {
        PressButton(shown, QDialogButtonBox::AcceptRole);
      }
    });
    desk.Click(button);
    EXPECT_TRUE(hand.HasActed()) << name;
  }

  // The picture names no folder of the machine where it is drawn, nor when its files came there.
  static void ShowExamples(QWidget& window) {
    auto& dialog = static_cast<QFileDialog&>(window);
    dialog.setDirectory(Shown(kExamples));
    dialog.setSidebarUrls({});
    dialog.setViewMode(QFileDialog::List);
    QTest::qWait(100);
    auto& place = Child<QComboBox>(window, "lookInCombo");
    place.setItemText(place.currentIndex(), QStringLiteral("examples"));
  }

  void TakeFit() {
    Desk desk(kExamples + "faithful.csv");
    pictures.TakePages(desk.Window(), "startup");
    TakeOpened(desk, 1001, "selection", "selection_conditions", [](QWidget& window) {
      QTest::keyClicks(&Child<QLineEdit>(window, "condition"), "eruptions > 1 and waiting < 100");
      QTest::qWait(200);
    });
    TakeOpened(desk, 1002, "weights", "case_weights");
    TakeOpened(desk, 1003, "files", "files", ShowExamples, false);
    desk.ClickRow(1006, 0);
    desk.Click(kControlOk);
    TakeOpened(desk, 1010, "variables", "variables", [](QWidget& window) {
      auto& view = Child<QTableView>(window, "table");
      view.selectAll();
      Desk::ClickOn(Child<QPushButton>(window, "into1"));
      view.clearSelection();
    });
    pictures.TakePages(desk.Window(), "fit");
    const Hand settings("settings", [this](QWidget& window) {
      Child<QLineEdit>(window, "search").setText("bootstrap");
      auto& members = Child<QListWidget>(window, "members");
      members.setCurrentItem(members.findItems("Bootstrap samples", Qt::MatchExactly).value(0));
      pictures.Take(window, "all_settings");
      QTest::keyClick(&window, Qt::Key_Escape);
    });
    Desk::ClickOn(Child<QPushButton>(desk.Window(), "allSettings"));
    EXPECT_TRUE(settings.HasActed());
    TakeOpened(desk, 1015, "dialog25975", "fit_options");
    desk.Click(kControlOk);
    pictures.TakePages(desk.Window(), "fit_results");
    desk.Click(1104);
    desk.Click(1165);
    ASSERT_EQ(desk.Dialog(), 25991);
    desk.Type(1127, "1000");
    pictures.TakePages(desk.Window(), "simulation");
    desk.Click(kControlOk);
    ASSERT_EQ(desk.Dialog(), 25988);
    pictures.TakePages(desk.Window(), "simulation_results");
  }

  void TakeProfile() {
    Desk desk(kExamples + "ozone.csv");
    desk.ClickRow(1006, 3);
    desk.Click(kControlOk);
    ASSERT_EQ(desk.Dialog(), 15033);
    const Hand models("files", [](QWidget& window) {
      static_cast<QFileDialog&>(window).selectFile(ShownPath(kExamples + "ozone_regression.pmml"));
      QMetaObject::invokeMethod(&window, "accept");
    });
    desk.Click(1302);
    EXPECT_TRUE(models.HasActed());
    desk.Click(1338);
    desk.Type(1347, "25");
    desk.Click(kControlOk);
    pictures.TakePages(desk.Window(), "profiler");
    EXPECT_FALSE(desk.sink.graphs.empty());
  }

  void TakeDesign() {
    Desk desk(kExamples + "faithful.csv");
    desk.Click(1255);
    ASSERT_EQ(desk.Dialog(), 25977);
    pictures.TakePages(desk.Window(), "simulation_startup");
    const Hand noMatrixFile("message", [this](QWidget& window) {
      pictures.Take(window, "message");
      QTest::keyClick(&window, Qt::Key_Escape);
    });
    desk.Click(1180);
    ASSERT_EQ(desk.Dialog(), 15000);
    EXPECT_TRUE(noMatrixFile.HasActed());
    desk.ClickRow(1401, 1);
    const auto choose = [](std::int32_t list, int row) {
      return [list, row](QWidget& window) {
        auto& editor = static_cast<DialogWindow&>(window);
        static_cast<QListWidget&>(Desk::ControlIn(editor, list)).setCurrentRow(row);
        Desk::TypeInto(Desk::ControlIn(editor, 1412), "70");
        Desk::TypeInto(Desk::ControlIn(editor, 1413), "12");
      };
    };
    TakeOpened(desk, 1407, "dialog15001", "design_distribution", choose(1411, 0));
    pictures.TakePages(desk.Window(), "design");
    TakeOpened(desk, 1408, "dialog15004", "design_user_defined", {}, false);
    TakeOpened(desk, 1409, "dialog15003", "design_defaults", {}, false);
    TakeOpened(
        desk, 1404, "dialog15002", "design_correlations",
        [this](QWidget& window) {
          auto& editor = static_cast<DialogWindow&>(window);
          const Hand hand("matrix", [this](QWidget& shown) {
            auto& view = Child<QTableView>(shown, "table");
            view.model()->setData(view.model()->index(0, 1), QStringLiteral("0.95"));
            pictures.Take(shown, "matrix");
            view.model()->setData(view.model()->index(0, 1), QStringLiteral("2.5"));
            pictures.Take(shown, "matrix_bad_cell");
            PressButton(shown, QDialogButtonBox::RejectRole);
          });
          Desk::ClickOn(Desk::ControlIn(editor, 1444));
          EXPECT_TRUE(hand.HasActed());
          Desk::TypeInto(Desk::ControlIn(editor, 1442), "0.5");
        },
        false);
  }
};

TEST_F(DialogPictures, EveryDialogAndQuestionIsDrawn) {
  StartToolkit();
  TakeFit();
  TakeDesign();
  TakeProfile();
  const std::set<std::string> expected{"startup",
                                       "selection_conditions",
                                       "case_weights",
                                       "variables",
                                       "fit_1",
                                       "fit_2",
                                       "fit_3",
                                       "fit_options",
                                       "files",
                                       "profiler_1",
                                       "profiler_2",
                                       "fit_results_1",
                                       "fit_results_2",
                                       "simulation",
                                       "simulation_results",
                                       "simulation_startup",
                                       "design",
                                       "design_distribution",
                                       "design_user_defined",
                                       "design_defaults",
                                       "design_correlations",
                                       "matrix",
                                       "message",
                                       "matrix_bad_cell",
                                       "all_settings"};
  EXPECT_EQ(pictures.Taken(), expected);
}

}  // namespace
}  // namespace brenvolt::desktop::test
