// The way of a person who is new here, from the start page to a report in PDF, with a picture of the window at each step. The
// pictures go into the folder that BRENVOLT_PICTURES names (tools/desktop_pictures), if it names one.
#include <QAction>
#include <QPixmap>
#include <cstdlib>

#include "apps/desktop/workbench/bench_support_test.h"

namespace brenvolt::desktop::test {
namespace {

struct BenchPictures : Bench, testing::Test {
  void Take(QWidget& shown, const std::string& name) {
    QTest::qWait(50);
    const QPixmap picture = shown.grab();
    EXPECT_FALSE(picture.isNull()) << name;
    const char* const asked = std::getenv("BRENVOLT_PICTURES");
    if (asked == nullptr) return;
    EXPECT_TRUE(picture.save(ShownPath(std::filesystem::path(asked) / (name + ".png")), "PNG")) << name;
  }
  template <class Button>
  Button* WithText(QWidget& parent, const char* text) {
    for (auto* const button : parent.findChildren<Button*>()) {
      if (button->text().remove(u'&').startsWith(QLatin1String(text))) return button;
    }
    ADD_FAILURE() << "no button " << text;
    return nullptr;
  }
};

TEST_F(BenchPictures, ANewUserComesFromTheStartPageToAReport) {
  window.resize(1280, 800);
  Take(window, "bench_start");
  QTest::mouseClick(WithText<QPushButton>(window, "Eruptions of the Old Faithful"), Qt::LeftButton);
  ASSERT_NE(window.CurrentDocument(), nullptr);
  Take(window, "bench_data");
  const Hand choose("variables", [&](QWidget& asked) {
    CheckVariables(asked, {QStringLiteral("eruptions"), QStringLiteral("waiting")});
  });
  WithText<QAction>(window, "Fit distributions")->trigger();
  ASSERT_TRUE(choose.HasActed());
  QTest::keyClick(window.Desk().Window(), Qt::Key_Return);
  ASSERT_EQ(Dialog(), 25983);
  Take(window, "bench_fits");
  QTreeWidget& tree = window.Results().Tree();
  tree.setCurrentItem(tree.topLevelItem(0)->child(2));
  Take(window, "bench_picture");
  const Hand save("QFileDialog", [&](QWidget& asked) {
    auto& edit = Child<QLineEdit>(asked, "fileNameEdit");
    edit.setText(ShownPath(folder / "report.pdf"));
    QTest::keyClick(&edit, Qt::Key_Return);
  });
  WithText<QAction>(window.Results(), "Report")->trigger();
  EXPECT_TRUE(save.HasActed());
  EXPECT_EQ(BytesOf(folder / "report.pdf").substr(0, 5), "%PDF-");
  Click(1104);
  EXPECT_EQ(window.CurrentDocument()->Content().SheetCount(), 2U);
  Click(1165);
  ASSERT_EQ(Dialog(), 25991);
  Take(*window.Desk().Window(), "bench_simulation_dialog");
  Click(kControlOk);
  ASSERT_EQ(Dialog(), 25988);
  Take(window, "bench_simulation");
}

}  // namespace
}  // namespace brenvolt::desktop::test
