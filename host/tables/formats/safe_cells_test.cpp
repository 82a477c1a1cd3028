#include "host/tables/formats/safe_cells.h"

#include <gtest/gtest.h>

#include "host/tables/csv.h"

namespace brenvolt {
namespace {

TEST(SafeCellsTest, NoTextBeginsAsAFormulaAndNumbersStay) {
  Spreadsheet sheet("s", 3);
  Variable words("=cmd|x", 0);
  words.SetType(VariableType::kText);
  words.AssignValues({1, 2, 3});
  words.SetLabel(1, "@SUM(1)");
  words.SetLabel(2, "\t=1");
  words.SetLabel(3, "a=1");
  sheet.AddVariable(std::move(words));
  Variable numbers("-n", 0);
  numbers.AssignValues({-1, 2, -3e-5});
  sheet.AddVariable(std::move(numbers));
  sheet.SetHeader("+h");
  sheet.SetCaseNames({"-1", "b", "\rc"});
  EXPECT_EQ(CsvText(WithSafeCells(sheet)),
            "'+h,'=cmd|x,'-n\n"
            "'-1,'@SUM(1),-1\n"
            "b,'\t=1,2\n"
            "\"'\rc\",a=1,-3e-05\n");
  EXPECT_EQ(sheet.VariableAt(0).Name(), "=cmd|x");
}

}  // namespace
}  // namespace brenvolt
