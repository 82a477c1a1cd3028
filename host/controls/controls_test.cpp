#include <gtest/gtest.h>

#include <thread>

#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/controls/control_set.h"
#include "host/controls/progress_bar.h"

namespace brenvolt {
namespace {

const DialogTemplate kTemplate{
    7,
    "test",
    {{{kControlOk, ControlKind::kButton, "OK"}}},
    {{"tab",
      {{"first",
        {{{10, ControlKind::kRadioButton, ""}, {11, ControlKind::kRadioButton, ""}},
         {{12, ControlKind::kRealField, ""}, {13, ControlKind::kListBox, ""}}}},
       {"second", {{{20, ControlKind::kRadioButton, ""}}}}}}}};

TEST(ControlSet, RadioButtonsExcludeEachOtherWithinTheirGroupOnly) {
  ControlSet controls(kTemplate);
  controls.SetChecked(20, true);
  controls.SetChecked(10, true);
  controls.SetChecked(11, true);
  EXPECT_FALSE(controls.IsChecked(10));
  EXPECT_TRUE(controls.IsChecked(11));
  EXPECT_TRUE(controls.IsChecked(20));
}

TEST(ControlSet, SelectionOutsideTheListChangesNothing) {
  ControlSet controls(kTemplate);
  controls.SetItems(13, {"a", "b"});
  EXPECT_TRUE(controls.Select(13, 1));
  EXPECT_FALSE(controls.Select(13, 2));
  EXPECT_FALSE(controls.Select(13, -1));
  EXPECT_EQ(controls.Selection(13), 1);
  controls.SetItems(13, {"a"});
  EXPECT_EQ(controls.Selection(13), -1) << "the selected item is gone";
  EXPECT_THROW(controls.At(99), Error);
}

TEST(ControlSet, NumbersFollowTheUsersLocaleAndEmptyMeansNotSet) {
  ControlSet controls(kTemplate);
  double value = 3;
  EXPECT_NE(controls.GetDlgItemDouble(12, value), 0);
  EXPECT_EQ(value, 3) << "an unreadable field leaves the value";
  const NumberLocale former = UserNumberLocale();
  SetUserNumberLocale({','});
  controls.SetDlgItemDouble(12, 0.5);
  EXPECT_EQ(controls.Text(12), "0,5");
  EXPECT_EQ(controls.GetDlgItemDouble(12, value), 0);
  EXPECT_EQ(value, 0.5);
  controls.SetText(12, "0.5");
  EXPECT_NE(controls.GetDlgItemDouble(12, value), 0);
  SetUserNumberLocale(former);
  controls.SetDlgItemDouble(12, kNotSet);
  EXPECT_EQ(controls.Text(12), "");
}

TEST(ControlSet, TemplateWithOneNumberTwiceIsRefused) {
  const DialogTemplate doubled{8, "", {{{1, ControlKind::kButton, ""}, {1, ControlKind::kButton, ""}}}, {}};
  EXPECT_THROW(ControlSet{doubled}, Error);
}

struct RecordingPort : ProgressPort {
  std::vector<std::int64_t> shown;
  int ended = 0;
  bool cancel = false;
  void ShowProgress(std::string_view, std::int64_t done, std::int64_t) override { shown.push_back(done); }
  void EndProgress() override { ++ended; }
  bool IsExternallyCancelled() override { return cancel; }
};

TEST(ProgressBar, PollsForCancellationOnlyAfterASecond) {
  RecordingPort port;
  port.cancel = true;
  {
    const auto bar = std::make_unique<ProgressBar>(port, "work", 10);
    bar->Step();
    EXPECT_TRUE(port.shown.empty()) << "the first second is silent";
    std::this_thread::sleep_for(std::chrono::milliseconds(1020));
    EXPECT_THROW(bar->Step(4), UserCancelled);
    EXPECT_EQ(port.shown, std::vector<std::int64_t>{5});
  }
  EXPECT_EQ(port.ended, 1);
}

}  // namespace
}  // namespace brenvolt
