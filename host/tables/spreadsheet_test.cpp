#include "host/tables/spreadsheet.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/base/error.h"

namespace brenvolt {
namespace {

TEST(VariableTest, StampFollowsTheContentAndNothingElse) {
  Variable variable("v", 3);
  const Variable copy = variable;
  EXPECT_EQ(copy.ContentStamp(), variable.ContentStamp());
  variable.SetName("w");
  variable.SetLabel(1, "one");
  variable.SetProperty("key", "value");
  variable.SetMissingCode(-1);
  EXPECT_EQ(copy.ContentStamp(), variable.ContentStamp());

  const std::pair<const char*, void (*)(Variable&)> changes[] = {
      {"a cell", [](Variable& v) { v.MutableValues()[0] = 1; }},
      {"all cells",
       [](Variable& v) {
         v.AssignValues({1, 2, 3});
       }},
      {"the length", [](Variable& v) { v.Resize(4, 0); }},
  };
  for (const auto& [what, change] : changes) {
    const auto before = variable.ContentStamp();
    change(variable);
    EXPECT_NE(variable.ContentStamp(), before) << what;
    EXPECT_NE(variable.ContentStamp(), copy.ContentStamp()) << what;
  }
  EXPECT_NE(Variable("a", 1).ContentStamp(), Variable("a", 1).ContentStamp());
}

// Whoever looks at values must never look at freed memory, nor see values that are no longer the variable's.
TEST(VariableTest, SharedValuesOutliveWhatTheyWereSharedFrom) {
  std::shared_ptr<const std::vector<double>> single;
  std::shared_ptr<const std::vector<double>> former;
  std::shared_ptr<const std::vector<double>> shorter;
  {
    Variable variable("v", 0);
    variable.AssignValues({1, 2});
    former = variable.SharedValues();
    variable.AssignValues({3, 4});
    shorter = variable.SharedValues();
    variable.Resize(1000, 5);
    single = variable.SharedValues();
    Variable copy = variable;
    copy.MutableValues()[0] = 7;
    variable.MutableValues()[1] = 8;
    EXPECT_EQ(copy.Values()[1], 4);
  }
  EXPECT_EQ(*former, (std::vector<double>{1, 2}));
  EXPECT_EQ(*shorter, (std::vector<double>{3, 4}));
  EXPECT_EQ((*single)[0], 3);
  EXPECT_EQ((*single)[1], 8);
}

TEST(VariableTest, MissingMeansNaNOrTheCode) {
  Variable variable("v", 0);
  variable.AssignValues({std::nan(""), -9, -9.0000000000000018, 0});
  EXPECT_TRUE(variable.IsMissing(0));
  EXPECT_FALSE(variable.IsMissing(1));
  variable.SetMissingCode(-9);
  EXPECT_TRUE(variable.IsMissing(0));
  EXPECT_TRUE(variable.IsMissing(1));
  EXPECT_TRUE(variable.IsMissing(2)) << "one unit in the last place away";
  EXPECT_FALSE(variable.IsMissing(3));
}

TEST(VariableTest, PropertySetAgainKeepsItsPlace) {
  Variable variable("v", 0);
  variable.SetProperty("b", "1");
  variable.SetProperty("a", "2");
  variable.SetProperty("b", "3");
  using Properties = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(variable.Properties(), (Properties{{"b", "3"}, {"a", "2"}}));
  EXPECT_TRUE(variable.RemoveProperty("b"));
  EXPECT_FALSE(variable.RemoveProperty("b"));
  EXPECT_EQ(variable.Property("b"), std::nullopt);
  EXPECT_EQ(variable.Property("a"), "2");
}

TEST(SpreadsheetTest, FirstVariableSetsTheNumberOfCasesAndOthersMustMatch) {
  Spreadsheet sheet("s");
  sheet.AddVariable(Variable("a", 3));
  EXPECT_EQ(sheet.CaseCount(), 3U);
  try {
    sheet.AddVariable(Variable("b", 2));
    FAIL() << "accepted";
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "variable b has 2 cases, the sheet has 3");
    EXPECT_EQ(error.Where(), "s");
  }
  EXPECT_EQ(sheet.VariableCount(), 1U);
  EXPECT_THROW(Spreadsheet("t", 4).AddVariable(Variable("a", 3)), Error) << "cases without variables count";
}

TEST(SpreadsheetTest, AddedCasesAreMissingUnnamedAndSelected) {
  Spreadsheet sheet("s", 2, 2);
  sheet.VariableAt(1).SetMissingCode(-9);
  sheet.SetCaseName(1, "second");
  sheet.SetSelection({true, "v1 = 0", {1, 0}});
  sheet.AddCases(2);
  ASSERT_EQ(sheet.CaseCount(), 4U);
  for (const std::size_t i : {2U, 3U}) {
    EXPECT_TRUE(std::isnan(sheet.VariableAt(0).Values()[i]));
    EXPECT_EQ(sheet.VariableAt(1).Values()[i], -9);
    EXPECT_EQ(sheet.CaseName(i), "");
    EXPECT_TRUE(sheet.IsCaseSelected(i));
  }
  EXPECT_FALSE(sheet.IsCaseSelected(1));
  EXPECT_EQ(sheet.CaseName(0), "");
  EXPECT_EQ(sheet.CaseName(1), "second");
}

TEST(SpreadsheetTest, SelectionWithoutMaskOrSwitchedOffAdmitsEveryCase) {
  Spreadsheet sheet("s", 2, 1);
  sheet.SetSelection({true, "v1 > 0", {}});
  EXPECT_TRUE(sheet.IsCaseSelected(0));
  sheet.SetSelection({false, "v1 > 0", {0, 0}});
  EXPECT_TRUE(sheet.IsCaseSelected(1));
}

TEST(SpreadsheetTest, CaseNamesAreForAllCasesOrNone) {
  Spreadsheet sheet("s", 2);
  EXPECT_FALSE(sheet.HasCaseNames());
  EXPECT_EQ(sheet.CaseName(1), "");
  EXPECT_THROW(sheet.SetCaseNames({"only one"}), Error);
  sheet.SetCaseNames({"a", "b"});
  sheet.SetCaseNames({});
  EXPECT_FALSE(sheet.HasCaseNames());
}

TEST(SpreadsheetTest, NumberedCasesKeepTheirNumbersUntilNamed) {
  Spreadsheet sheet("s", 2);
  sheet.NumberCases();
  sheet.AddCases(1);
  EXPECT_TRUE(sheet.HasCaseNames());
  EXPECT_EQ(sheet.CaseName(2), "3");
  sheet.SetCaseName(1, "second");
  EXPECT_FALSE(sheet.AreCasesNumbered());
  EXPECT_EQ(sheet.CaseName(0), "1");
  EXPECT_EQ(sheet.CaseName(1), "second");
  EXPECT_EQ(sheet.CaseName(2), "3");
}

TEST(SpreadsheetTest, FindsVariablesByExactName) {
  const Spreadsheet sheet("s", 1, 12);
  EXPECT_EQ(sheet.FindVariable("Var12"), 11U);
  EXPECT_EQ(sheet.FindVariable("Var1"), 0U);
  EXPECT_EQ(sheet.FindVariable("var1"), std::nullopt);
}

}  // namespace
}  // namespace brenvolt
