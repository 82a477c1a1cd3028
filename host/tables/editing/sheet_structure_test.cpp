#include "host/tables/editing/sheet_structure.h"

#include <gtest/gtest.h>

#include "host/base/error.h"
#include "host/tables/workbook_support_test.h"

namespace brenvolt {
namespace {

// What is taken out and put back leaves everything as it was, at every place.
TEST(SheetStructureTest, WhatIsRemovedGoesBackAsItWas) {
  const Workbook untouched = RichWorkbook();
  const Spreadsheet& former = untouched.SheetAt(0);
  for (std::size_t at = 0; at < former.VariableCount(); ++at) {
    Workbook workbook = RichWorkbook();
    Spreadsheet& sheet = workbook.SheetAt(0);
    SheetVariables removed = RemoveVariables(sheet, at, 1);
    EXPECT_EQ(sheet.VariableCount(), former.VariableCount() - 1);
    EXPECT_EQ(sheet.WeightVariable().has_value(), at != 1);
    InsertVariables(sheet, at, std::move(removed));
    ExpectSameSheet(sheet, former);
  }
  for (std::size_t at = 0; at + 2 <= former.CaseCount(); ++at) {
    Workbook workbook = RichWorkbook();
    Spreadsheet& sheet = workbook.SheetAt(0);
    const SheetCases removed = RemoveCases(sheet, at, 2);
    EXPECT_EQ(sheet.CaseCount(), former.CaseCount() - 2);
    InsertCases(sheet, at, removed);
    ExpectSameSheet(sheet, former);
  }
}

TEST(SheetStructureTest, NewCasesAreMissingAndTheWeightFollowsItsVariable) {
  Workbook workbook = RichWorkbook();
  Spreadsheet& sheet = workbook.SheetAt(0);
  for (const std::size_t at : {std::size_t{2}, sheet.CaseCount() + 1}) {
    InsertCases(sheet, at, {1, {}, {}, {}});
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v) EXPECT_TRUE(sheet.VariableAt(v).IsMissing(at));
    EXPECT_EQ(sheet.CaseName(at), "");
    EXPECT_EQ(sheet.Selection().accepted.at(at), 1);
  }
  EXPECT_EQ(sheet.CaseName(3), "γ");
  SheetVariables more;
  more.variables.emplace_back("New", sheet.CaseCount());
  InsertVariables(sheet, 0, std::move(more));
  EXPECT_EQ(sheet.WeightVariable(), 2U);
}

TEST(SheetStructureTest, PlacesThatAreNotThereAreRefused) {
  Workbook workbook = RichWorkbook();
  Spreadsheet& sheet = workbook.SheetAt(0);
  EXPECT_THROW(RemoveVariables(sheet, 2, 2), Error);
  EXPECT_THROW(RemoveCases(sheet, 7, 0), Error);
  EXPECT_THROW(InsertCases(sheet, 7, {1, {}, {}, {}}), Error);
  SheetVariables wrong;
  wrong.variables.emplace_back("Short", 1);
  EXPECT_THROW(InsertVariables(sheet, 0, std::move(wrong)), Error);
  EXPECT_THROW(PlaceOfSheet(workbook, "none"), Error);
  ExpectSameContent(workbook, RichWorkbook());
}

TEST(SheetStructureTest, SheetsGoBackToTheirPlaceInTheProject) {
  Workbook workbook = RichWorkbook();
  for (std::size_t at = 0; at < workbook.SheetCount(); ++at) {
    auto removed = workbook.Remove(std::string(workbook.SheetAt(at).Name()));
    const Spreadsheet* address = removed.get();
    EXPECT_EQ(&InsertSheet(workbook, at, std::move(removed)), address);
    ExpectSameContent(workbook, RichWorkbook());
  }
}

TEST(SheetStructureTest, ANameTellsOneVariableFromTheOthers) {
  const Spreadsheet sheet("Data", 1, 2);
  EXPECT_NO_THROW(RequireFreeName(sheet, 0, sheet.VariableAt(0).Name()));
  EXPECT_NO_THROW(RequireFreeName(sheet, 0, "another"));
  EXPECT_THROW(RequireFreeName(sheet, 0, sheet.VariableAt(1).Name()), Error);
  EXPECT_THROW(RequireFreeName(sheet, 0, " "), Error);
}

}  // namespace
}  // namespace brenvolt
