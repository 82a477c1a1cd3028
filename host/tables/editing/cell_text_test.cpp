#include "host/tables/editing/cell_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr NumberLocale kComma{','};

TEST(CellTextTest, NumbersReadBackAsTheyWereInEveryLocale) {
  Variable variable("x", 0);
  variable.AssignValues({0.1, 1e300, -2.5e-9, 3, std::numeric_limits<double>::infinity()});
  for (const NumberLocale locale : {NumberLocale{}, kComma}) {
    CellReader reader(variable, locale);
    for (std::size_t i = 0; i < variable.Size(); ++i)
      EXPECT_EQ(reader.Read(CellText(variable, i, locale)), variable.Values()[i]) << i;
  }
  EXPECT_EQ(CellText(variable, 0, kComma), "0,1");
}

TEST(CellTextTest, MissingValuesAreEmptyAndEmptyIsMissing) {
  Variable variable("x", 0);
  variable.AssignValues({-9999, 1, std::nan("")});
  variable.SetMissingCode(-9999);
  EXPECT_EQ(CellText(variable, 0, {}), "");
  EXPECT_EQ(CellText(variable, 2, {}), "");
  CellReader reader(variable, {});
  for (const char* text : {"", "  ", "NA", "nan", "-9999"}) EXPECT_EQ(reader.Read(text), -9999) << text;
}

TEST(CellTextTest, WhatIsNoNumberIsRefusedByName) {
  const Variable variable("height", 1);
  CellReader reader(variable, {});
  for (const char* text : {"abc", "1 000", "1e999", "0x10", "1.2.3"}) {
    try {
      reader.Read(text);
      ADD_FAILURE() << text;
    } catch (const Error& error) {
      EXPECT_EQ(error.Where(), "height");
      EXPECT_NE(std::string(error.what()).find(text), std::string::npos);
    }
  }
}

TEST(CellTextTest, TextsGetTheCodesOfTheirLabelsOrTheNextOnes) {
  Variable variable("grade", 3);
  variable.SetType(VariableType::kText);
  variable.SetLabel(1, "good");
  variable.SetLabel(2, "bad");
  variable.SetMissingCode(3);
  CellReader reader(variable, {});
  EXPECT_EQ(reader.Read("bad"), 2);
  EXPECT_EQ(reader.Read("12"), 4);  // 3 is the code of missing values
  EXPECT_EQ(reader.Read("12"), 4);
  EXPECT_EQ(reader.Read("other"), 5);
  EXPECT_EQ(reader.NewLabels(), (std::map<double, std::string>{{4, "12"}, {5, "other"}}));
}

}  // namespace
}  // namespace brenvolt
