#include "brv_sra/matrix/matrix_recognition.h"

#include <gtest/gtest.h>

#include <functional>

namespace brenvolt::sra {
namespace {

Spreadsheet MatrixOf(const std::vector<std::string>& names) {
  Spreadsheet sheet("matrix", names.size() + 4, names.size());
  std::vector<std::string> cases = names;
  for (const char* summary : {"Means", "Std.Dev.", "No.Cases", "DontTranslate!!Matrix"}) {
    cases.emplace_back(summary);
  }
  sheet.SetCaseNames(cases);
  for (std::size_t v = 0; v < names.size(); ++v) {
    sheet.VariableAt(v).SetName(names[v]);
    sheet.VariableAt(v).MutableValues()[v] = 1;
  }
  sheet.VariableAt(0).MutableValues().back() = 1;
  return sheet;
}

TEST(MatrixRecognition, LayoutDecidesNotValuesOrTitle) {
  struct Case {
    const char* what;
    std::function<void(Spreadsheet&)> change;
    bool isMatrix;
  };
  const Case cases[] = {
      {"as written", [](Spreadsheet&) {}, true},
      {"key without its marker", [](Spreadsheet& s) { s.SetCaseName(5, "Matrix"); }, true},
      {"blanks around a name", [](Spreadsheet& s) { s.SetCaseName(0, " a "); }, true},
      {"no correlation matrix by value", [](Spreadsheet& s) { s.VariableAt(0).MutableValues()[1] = 7; },
       true},
      {"type off by one unit in the last place",
       [](Spreadsheet& s) { s.VariableAt(0).MutableValues().back() = 1.0000000000000002; }, true},
      {"covariance matrix", [](Spreadsheet& s) { s.VariableAt(0).MutableValues().back() = 2; }, false},
      {"names in another order",
       [](Spreadsheet& s) {
         s.SetCaseName(0, "b");
         s.SetCaseName(1, "a");
       },
       false},
      {"summary in another order", [](Spreadsheet& s) { s.SetCaseName(3, "No.Cases"); }, false},
      {"one case more", [](Spreadsheet& s) { s.AddCases(1); }, false},
      {"no case names", [](Spreadsheet& s) { s.SetCaseNames({}); }, false},
  };
  for (const Case& c : cases) {
    Spreadsheet sheet = MatrixOf({"a", "b"});
    c.change(sheet);
    EXPECT_EQ(IsMatrixFile(sheet), c.isMatrix) << c.what;
  }
  EXPECT_FALSE(IsMatrixFile(Spreadsheet("nothing")));
  EXPECT_FALSE(IsMatrixFile(Spreadsheet("four cases", 4, 0)));
}

}  // namespace
}  // namespace brenvolt::sra
