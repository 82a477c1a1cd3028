#include "host/jobs/notation/design_text.h"

#include <gtest/gtest.h>

#include <fstream>

#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

const std::vector<std::string> kNoOthers;

TEST(DesignText, FileReadsBackAsItIsWritten) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "plan.txt";
  std::ofstream(file) << "\xEF\xBB\xBF# A stack of parts\r\n\n  h ~ normal(50.2, 0.05)  # of ~ 20 "
                         "parts\r\ncorrelation h, a,b = 0.4 # was = 0.5\n"
                         "a,b ~ triangular(1, 3, 2) in [1.5,]\ncorrelation ~ poisson(3)\n"
                         "correlation correlation,h=-0.25\npart #2 ~ histogram(\"a # b\":1)\t# one\n";
  DesignText design;
  JobFaults faults;
  ReadDesignFile(file, &kNoOthers, design, faults);
  EXPECT_TRUE(faults.empty()) << faults.front().message;
  EXPECT_EQ(TextOf(design),
            "h ~ normal(location=50.2, scale=0.05)\na,b ~ triangular(min=1, max=3, mode=2) in [1.5, ]\n"
            "correlation ~ poisson(3)\npart #2 ~ histogram(\"a # b\":1)\ncorrelation h, a,b = "
            "0.4\ncorrelation correlation, h = -0.25\n");
  std::ofstream(file) << TextOf(design);
  DesignText again;
  ReadDesignFile(file, &kNoOthers, again, faults);
  EXPECT_EQ(TextOf(again), TextOf(design));
}

TEST(DesignText, EveryFaultIsNamedWithItsLine) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "plan.txt";
  const struct {
    const char* text;
    int line;
    const char* message;
  } rows[] = {
      {"h ~ normal(1, 0)", 1, "expected a number above 0 for scale"},
      {"h ~ normal(1, 1)\n\nh ~ poisson(2)", 3, "the variable h is given twice"},
      {"height normal(1, 1)", 1, "expected a name, '~' and a distribution"},
      {"height ~ normal(1, 1)\na ~ poisson(2)\ncorrelation hieght, a = 0.5", 3,
       "no variable is called 'hieght'; did you mean height?"},
      {"h ~ normal(1, 1)\na ~ poisson(2)\ncorrelation h, a = 1.5", 3, "between -1 and 1, got 1.5 for h, a"},
      {"h ~ normal(1, 1)\na ~ poisson(2)\ncorrelation h, a", 3, "expected FIRST,SECOND=NUMBER"},
      {"h ~ normal(1, 1)\na ~ poisson(2)\ncorrelation h = 0.2", 3, "expected FIRST,SECOND=NUMBER"},
      {"h ~ normal(1, 1)\ncorrelation h, h = 1", 2, "a variable is correlated with itself by 1"},
      {"h ~ normal(1, 1)\na ~ poisson(2)\ncorrelation h,a=0.1\ncorrelation a,h=0.2", 4,
       "the correlation of a and h is given twice"},
  };
  for (const auto& row : rows) {
    std::ofstream(file) << row.text;
    DesignText design;
    JobFaults faults;
    ReadDesignFile(file, &kNoOthers, design, faults);
    ASSERT_EQ(faults.size(), 1U) << row.text;
    EXPECT_EQ(faults[0].field, "fromFile");
    EXPECT_NE(faults[0].message.find("plan.txt, line " + std::to_string(row.line) + ": "), std::string::npos)
        << faults[0].message;
    EXPECT_NE(faults[0].message.find(row.message), std::string::npos) << faults[0].message;
  }
}

TEST(DesignText, FileOfAnotherKindIsToldInTenLines) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "data.csv";
  std::ofstream stream(file);
  for (int row = 0; row < 25; ++row) stream << row << ",1\n";
  stream.close();
  DesignText design;
  JobFaults faults;
  ReadDesignFile(file, &kNoOthers, design, faults);
  ASSERT_EQ(faults.size(), 11U);
  EXPECT_NE(faults[9].message.find("line 10: "), std::string::npos) << faults[9].message;
  EXPECT_TRUE(faults[10].message.ends_with("data.csv: and 15 more")) << faults[10].message;
}

}  // namespace
}  // namespace brenvolt
