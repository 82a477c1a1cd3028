// What changes, and what must not, when the decimal separator is a comma.
#include <gtest/gtest.h>
#include <locale.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "host/base/number_text.h"
#include "tests/run_program.h"

namespace brenvolt::test {
namespace {

// Makes the German locale in a folder of its own and puts it into the environment.
struct GermanLocale : testing::Test {
  TemporaryFolder locales;
  TemporaryFolder folder;

  void SetUp() override {
    const std::string make =
        "localedef -i de_DE -f UTF-8 '" + (locales.Path() / "de_DE.UTF-8").string() + "' 2>/dev/null";
    ASSERT_EQ(std::system(make.c_str()), 0) << make;
    setenv("LOCPATH", locales.Path().c_str(), 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    setenv("LSAN_OPTIONS",
           "suppressions=" BRENVOLT_SOURCE_DIR "/tests/leak_suppressions.txt:print_suppressions=0", 1);
  }
  void TearDown() override {
    setlocale(LC_ALL, "C");
    unsetenv("LC_ALL");
    unsetenv("LOCPATH");
    unsetenv("LSAN_OPTIONS");
  }
};

TEST_F(GermanLocale, PlainNumbersKeepTheirPointAndTheThreadItsLocale) {
  ASSERT_NE(setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
  EXPECT_EQ(FormatNumber("%.1f", 1.5), "1.5");
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%.1f", 1.5);
  EXPECT_STREQ(text.data(), "1,5");
}

TEST_F(GermanLocale, PropertiesAreWrittenAndReadWithACommaFilesAndReportsWithAPoint) {
  const std::string faithful = BRENVOLT_SOURCE_DIR "/examples/faithful.csv";
  const Outcome fit = RunBrenvolt(
      {"fit", faithful, "--continuous", "waiting", "--distributions", "normal", "--save", "p.bvw"},
      folder.Path());
  ASSERT_EQ(fit.status, 0) << fit.err;
  EXPECT_NE(fit.out.find("mean 70.8971"), std::string::npos) << fit.out;
  const Outcome shown = RunBrenvolt({"show", "p.bvw", "faithful"}, folder.Path());
  EXPECT_NE(shown.out.find("(Location=7,089705882353e+01; Scale=1,356996001759e+01)"), std::string::npos)
      << shown.out;
  const Outcome simulated =
      RunBrenvolt({"simulate", "p.bvw", "--seed", "1", "--samples", "3", "-o", "s.csv"}, folder.Path());
  EXPECT_EQ(simulated.status, 0) << simulated.err;
  EXPECT_EQ(BytesOf(folder.Path() / "s.csv").find(';'), std::string::npos);

  setenv("LC_ALL", "C", 1);
  const Outcome elsewhere = RunBrenvolt({"simulate", "p.bvw"}, folder.Path());
  EXPECT_EQ(elsewhere.status, 0) << elsewhere.err;
}

// A project and a macro are passed on: made under either separator, they do the same under the other.
TEST_F(GermanLocale, ProjectsAndMacrosMadeUnderOneSeparatorServeUnderTheOther) {
  const std::string faithful = BRENVOLT_SOURCE_DIR "/examples/faithful.csv";
  const auto mustRun = [&](const std::vector<std::string>& call) {
    const Outcome outcome = RunBrenvolt(call, folder.Path());
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
  };
  const auto simulated = [&](const std::string& project) {
    mustRun({"simulate", project, "--seed", "7", "--samples", "200", "--method", "latin-hypercube", "-o",
             "s.csv"});
    return BytesOf(folder.Path() / "s.csv");
  };
  const std::string locales[] = {"C", "de_DE.UTF-8"};
  for (const std::string& here : locales) {
    const std::string& there = here == "C" ? locales[1] : locales[0];
    setenv("LC_ALL", here.c_str(), 1);
    mustRun({"fit", faithful, "--continuous", "eruptions,waiting", "--offset", "eruptions:weibull=0.25",
             "--order", "eruptions=weibull", "--truncate", "eruptions=1.75:4.5", "--save", "here.bvw",
             "--record", "m.py"});
    const std::string expected = simulated("here.bvw");
    const std::string stored = mustRun({"show", "here.bvw", "faithful"});
    EXPECT_NE(stored.find(here == "C" ? "Offset=2.5" : "Offset=2,5"), std::string::npos) << stored;
    EXPECT_EQ(BytesOf(folder.Path() / "m.py").find("0,25"), std::string::npos) << "macros have points";
    setenv("LC_ALL", there.c_str(), 1);
    EXPECT_EQ(simulated("here.bvw"), expected) << "a project made under " << here;
    // Written anew, numbers take the separator of the place.
    std::filesystem::remove(folder.Path() / "here.bvw");
    mustRun({"macro", "m.py"});
    EXPECT_EQ(simulated("here.bvw"), expected) << "a macro recorded under " << here;
    EXPECT_NE(mustRun({"show", "here.bvw", "faithful"}).find(there == "C" ? "Offset=2.5" : "Offset=2,5"),
              std::string::npos);
    mustRun(
        {"fit", "here.bvw", "--distributions", "normal", "--continuous", "waiting", "--save", "here.bvw"});
    std::filesystem::remove(folder.Path() / "here.bvw");
  }
}

}  // namespace
}  // namespace brenvolt::test
