// How long the window's thread is away from its events while an analysis computes. What is measured is printed; the
// number of values is that of BRENVOLT_VALUES (tools/desktop_frames), in the usual tests a small one.
#include <QElapsedTimer>
#include <QTableView>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "apps/desktop/port/desktop_support_test.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/tables/workbook.h"

namespace brenvolt::desktop::test {
namespace {

// Beats as often as a timer can, and knows the longest time between two beats.
class Heart {
 public:
  Heart() {
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      longest_ = std::max(longest_, since_.nsecsElapsed());
      since_.restart();
      ++beats_;
    });
    timer_.setTimerType(Qt::PreciseTimer);
    since_.start();
    timer_.start(kBeatInMilliseconds);
  }
  double LongestGapInMilliseconds() const { return static_cast<double>(longest_) / 1e6; }
  int Beats() const { return beats_; }

 private:
  static constexpr int kBeatInMilliseconds = 4;
  QTimer timer_;
  QElapsedTimer since_;
  qint64 longest_ = 0;
  int beats_ = 0;
};

TEST(Responsiveness, TheWindowGoesOnDrawingWhileManyValuesAreFitted) {
  const char* const asked = std::getenv("BRENVOLT_VALUES");
  const std::size_t count =
      asked != nullptr ? std::strtoul(asked, nullptr, 10) : 400'000;  // fitted in many beats
  const TemporaryFolder folder;
  {
    std::mt19937_64 random(1);
    std::normal_distribution<double> normal(50, 5);
    Workbook workbook;
    auto sheet = std::make_unique<Spreadsheet>("Data", count, 1);
    for (double& value : sheet->VariableAt(0).MutableValues()) value = normal(random);
    workbook.Add(std::move(sheet));
    workbook.Save(folder / "many.bvw");
  }
  Desk desk((folder / "many.bvw").string());
  desk.Click(kControlOk);
  const Hand choose("variables", [](QWidget& window) {
    Child<QTableView>(window, "table").selectAll();
    Desk::ClickOn(Child<QPushButton>(window, "into1"));
    PressButton(window, QDialogButtonBox::AcceptRole);
  });
  desk.Click(1010);
  QElapsedTimer whole;
  whole.start();
  const Heart heart;
  desk.Click(kControlOk);
  const auto elapsed = whole.elapsed();
  EXPECT_EQ(desk.Dialog(), 25983);
  EXPECT_GT(heart.Beats(), 0);
  std::printf("%zu values: fitted in %lld ms, %d beats of 4 ms, longest gap %.1f ms\n", count,
              static_cast<long long>(elapsed), heart.Beats(), heart.LongestGapInMilliseconds());
}

}  // namespace
}  // namespace brenvolt::desktop::test
