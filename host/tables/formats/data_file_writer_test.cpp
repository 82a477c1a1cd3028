#include "host/tables/formats/data_file_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/tables/formats/data_file_reader.h"
#include "host/tables/formats/packages_reader.h"
#include "host/tables/formats/workbook_file.h"

namespace brenvolt {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

Variable Column(const std::string& name, std::vector<double> values) {
  Variable variable(name, 0);
  variable.AssignValues(std::move(values));
  return variable;
}

// Numbers that need all their digits, missing values, labelled numbers, texts, and names that packages do not take.
Spreadsheet Sample() {
  Spreadsheet sheet("Data: 1/2");
  sheet.AddVariable(Column("x", {0.1, -1e-300, kMissing, 12345678.9}));
  Variable& group = sheet.AddVariable(Column("group", {1, 2, 1, 99}));
  group.SetLabel(1, "left");
  group.SetLabel(2, "right");
  group.SetMissingCode(99);
  Variable& text = sheet.AddVariable(Column("größe in mm", {1, 2, kMissing, 1}));
  text.SetType(VariableType::kText);
  text.SetLabel(1, "Äpfel, \"rot\"");
  text.SetLabel(2, "b");
  sheet.AddVariable(Column("größe_in_mm", {1, 2, 3, 4}));
  return sheet;
}

class DataFileWriters : public testing::Test {
 protected:
  std::unique_ptr<Spreadsheet> Back(const char* name) const {
    WriteDataFile(Sample(), folder_ / name);
    return std::move(ReadDataFile(folder_ / name, {}).sheets.front());
  }

  TemporaryFolder folder_;
};

TEST_F(DataFileWriters, ValuesComeBackFromEveryKind) {
  for (const char* name : {"d.csv", "d.xlsx", "d.sav", "d.dta"}) {
    SCOPED_TRACE(name);
    const auto sheet = Back(name);
    ASSERT_EQ(sheet->VariableCount(), 4u);
    ASSERT_EQ(sheet->CaseCount(), 4u);
    const Variable& x = sheet->VariableAt(0);
    EXPECT_EQ(x.Values()[0], 0.1);
    EXPECT_EQ(x.Values()[1], -1e-300);
    EXPECT_TRUE(x.IsMissing(2));
    EXPECT_EQ(x.Values()[3], 12345678.9);
    const Variable& group = sheet->VariableAt(1);
    EXPECT_EQ(group.Type(), VariableType::kNumeric);
    EXPECT_EQ(group.Values()[1], 2);
    EXPECT_TRUE(group.IsMissing(3));
    const Variable& text = sheet->VariableAt(2);
    ASSERT_EQ(text.Type(), VariableType::kText);
    EXPECT_EQ(text.Label(text.Values()[0]), "Äpfel, \"rot\"");
    EXPECT_TRUE(text.IsMissing(2));
    EXPECT_EQ(text.Values()[3], text.Values()[0]);
  }
}

TEST_F(DataFileWriters, PackagesKeepLabelsCodesAndNames) {
  for (const char* name : {"d.sav", "d.dta"}) {
    SCOPED_TRACE(name);
    const auto sheet = Back(name);
    EXPECT_EQ(sheet->VariableAt(1).Label(2), "right");
    EXPECT_EQ(sheet->VariableAt(2).Property(kLabelProperty), "größe in mm");
    EXPECT_NE(sheet->VariableAt(2).Name(), sheet->VariableAt(3).Name());
  }
  EXPECT_EQ(Back("d.sav")->VariableAt(1).MissingCode(), 99);
}

TEST_F(DataFileWriters, SheetsOfAWorkbookHaveNamesOfTheirOwn) {
  const Spreadsheet first = Sample();
  Spreadsheet second = Sample();
  second.SetName("data_ 1_2");
  WriteWorkbookFile({&first, &second}, folder_ / "two.xlsx");
  const DataRead read = ReadDataFile(folder_ / "two.xlsx", {});
  ASSERT_EQ(read.sheets.size(), 2u);
  EXPECT_EQ(read.sheets[0]->Name(), "Data_ 1_2");
  EXPECT_EQ(read.sheets[1]->Name(), "data_ 1_2 2");
}

TEST_F(DataFileWriters, WhatAFileCannotHoldLeavesItAsItWas) {
  WriteBytes(folder_ / "d.dta", "former");
  Spreadsheet infinite("s");
  infinite.AddVariable(Column("x", {1, std::numeric_limits<double>::infinity()}));
  EXPECT_THROW(WriteDataFile(infinite, folder_ / "d.dta"), Error);
  EXPECT_EQ(std::filesystem::file_size(folder_ / "d.dta"), 6u);
  EXPECT_EQ(WhyTooLarge("x.xlsx", 1'048'576, 3), "a workbook takes up to 1048575 cases of 16384 variables");
  EXPECT_EQ(WhyTooLarge("x.csv", 1'048'576, 3), "");
}

}  // namespace
}  // namespace brenvolt
