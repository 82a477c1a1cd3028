// The window's program as it is called from a shell.
#include <algorithm>
#include <fstream>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const std::string kDesktop = BRENVOLT_BUILD_DIR "/bin/brenvolt-desktop";

struct DesktopProgram : Command {
  Outcome Start(const std::vector<std::string>& arguments) const {
    return RunProgram(kDesktop, arguments, folder.Path());
  }
  bool IsPicture(const std::string& name) const {
    std::ifstream file(File(name), std::ios::binary);
    std::string beginning(8, '\0');
    file.read(beginning.data(), 8);
    return beginning == "\x89PNG\r\n\x1a\n";
  }

  void SetUp() override {
    if (!std::filesystem::exists(kDesktop)) GTEST_SKIP() << "the window is not built";
  }
};

TEST_F(DesktopProgram, WrongCallEndsWithTwoAndNamesWhatIsWrong) {
  for (const auto& [arguments, word] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{{{"missing.bvw"}, "missing.bvw"},
                                                                     {{"--run-macro"}, "--run-macro"},
                                                                     {{"--full-screen"}, "--full-screen"}}) {
    const Outcome outcome = Start(arguments);
    EXPECT_EQ(outcome.status, 2) << word;
    EXPECT_NE(outcome.err.find(word), std::string::npos) << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
  }
}

// Neither needs a display.
TEST_F(DesktopProgram, HelpAndVersionGoToStandardOutput) {
  for (const std::string option : {"--help", "--version"}) {
    const Outcome outcome = RunProgram(
        "/usr/bin/env", {"-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", kDesktop, option}, folder.Path());
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_FALSE(outcome.out.empty());
    EXPECT_EQ(outcome.err, "");
  }
}

TEST_F(DesktopProgram, MissingDisplayIsSaidInsteadOfACrash) {
  for (const std::vector<std::string>& display :
       {std::vector<std::string>{"-u", "DISPLAY"}, std::vector<std::string>{"DISPLAY=:4711"}}) {
    std::vector<std::string> call{"-u", "WAYLAND_DISPLAY", "-u", "QT_QPA_PLATFORM"};
    call.insert(call.end(), display.begin(), display.end());
    call.push_back(kDesktop);
    const Outcome outcome = RunProgram("/usr/bin/env", call, folder.Path());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("no display can be opened"), std::string::npos) << outcome.err;
  }
}

TEST_F(DesktopProgram, ScreenshotShowsTheFileThatWasOpened) {
  const Outcome empty = Start({"--screenshot", "empty.png"});
  EXPECT_EQ(empty.status, 0) << empty.err;
  const Outcome outcome = Start({kExamples + "faithful.csv", "--screenshot", "data.png"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(IsPicture("empty.png"));
  EXPECT_TRUE(IsPicture("data.png"));
  EXPECT_NE(std::filesystem::file_size(File("empty.png")), std::filesystem::file_size(File("data.png")));
}

TEST_F(DesktopProgram, PictureOfAFileThatCannotBeOpenedSaysWhyAndFails) {
  std::ofstream(File("picture.csv"), std::ios::binary) << std::string("\x89PNG\0", 5);
  const Outcome outcome = Start({"picture.csv", "--screenshot", "failed.png"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("picture.csv"), std::string::npos) << outcome.err;
}

TEST_F(DesktopProgram, MacroRunsAndItsFailureIsTheStatus) {
  std::ofstream(File("good.py")) << "open('made.txt', 'w').write('by the macro')\n";
  std::ofstream(File("bad.py")) << "raise SystemExit('refused')\n";
  const Outcome good = Start({"--run-macro", "good.py", "--screenshot", "good.png"});
  EXPECT_EQ(good.status, 0) << good.err;
  EXPECT_TRUE(std::filesystem::exists(File("made.txt")));
  const Outcome bad = Start({"--run-macro", "bad.py", "--screenshot", "bad.png"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.err.find("The macro failed. refused"), std::string::npos) << bad.err;
  EXPECT_TRUE(IsPicture("bad.png"));
}

}  // namespace
}  // namespace brenvolt::test
