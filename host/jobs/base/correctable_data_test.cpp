#include "host/jobs/base/correctable_data.h"

#include <gtest/gtest.h>

#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

// A job refuses texts among numbers; who corrects them gets them, and a job as that one was read gets the same.
TEST(CorrectableDataTest, TextsAmongNumbersAreReadAndTheDataSayHow) {
  const TemporaryFolder folder;
  std::string bytes = "x,y\n";
  for (int row = 0; row < 300; ++row) bytes += row == 7 ? "broken,1\n" : "1.5,1\n";
  WriteBytes(folder / "a.csv", bytes);
  JobData data;
  data.file = folder / "a.csv";
  EXPECT_THROW(OpenJobData(data), WrongJob);
  const DataFile file = OpenCorrectable(data);
  EXPECT_EQ(file.workbook.SheetAt(0).VariableAt(0).Type(), VariableType::kText);
  EXPECT_EQ(file.workbook.SheetAt(0).VariableAt(1).Type(), VariableType::kNumeric);
  EXPECT_EQ(data.text.text, std::vector<std::string>{"x"});
  const std::vector<std::string> found = FoundIn(file, data);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_NE(found[0].find("'x' are read as texts"), std::string::npos) << found[0];
  EXPECT_EQ(OpenJobData(data).workbook.SheetAt(0).VariableAt(0).Label(1), "1.5");
}

TEST(CorrectableDataTest, ADecimalCommaIsReadAsOne) {
  const TemporaryFolder folder;
  WriteBytes(folder / "a.csv", "x;y\n1,5;2,25\n3,5;4\n");
  JobData data;
  data.file = folder / "a.csv";
  data.decimalComma = true;
  const DataFile file = OpenCorrectable(data);
  EXPECT_EQ(file.workbook.SheetAt(0).VariableAt(1).Values()[0], 2.25);
  EXPECT_TRUE(FoundIn(file, data).empty());
}

}  // namespace
}  // namespace brenvolt
