#include "host/tables/editing/typed_cells.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/base/error.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

TEST(TypedCells, ATextAmongNumbersIsRefusedWithItsRow) {
  const std::vector<std::string> texts{"1,5", "", "low"};
  const Variable number("Load", 5);
  try {
    ReadTyped(number, texts, 2, {','});
    FAIL() << "a text is no number";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("in row 5"), std::string::npos) << error.what();
    EXPECT_EQ(error.Where(), "Load");
  }
}

TEST(TypedCells, NamesOfNewVariablesAreThoseOfNoOther) {
  Spreadsheet sheet("Data", 1, 2);
  sheet.VariableAt(0).SetName("Var3");
  EXPECT_EQ(FreeVariableNames(sheet, 2), (std::vector<std::string>{"Var4", "Var5"}));
}

TEST(TypedCells, AMatrixKeepsItsShapeAndTakesCorrelationsAlone) {
  Spreadsheet matrix("Correlations", 6, 2);
  matrix.SetKind(SheetKind::kMatrix);
  EXPECT_THROW(RequireChangeableShape(matrix), Error);
  EXPECT_NO_THROW(RequireChangeableShape(Spreadsheet("Data", 6, 2)));
  ASSERT_TRUE(HasMatrixRows(matrix));
  EXPECT_TRUE(IsMirrored(matrix, 0, 1, -0.5));
  EXPECT_FALSE(IsMirrored(matrix, 1, 1, 1)) << "the diagonal is its own mirror";
  EXPECT_FALSE(IsMirrored(matrix, 2, 1, 50)) << "a mean stands once";
  EXPECT_THROW(IsMirrored(matrix, 0, 1, 1.5), Error);
  EXPECT_THROW(IsMirrored(matrix, 1, 1, 0.5), Error);
  EXPECT_THROW(IsMirrored(matrix, 0, 1, std::nan("")), Error);
}

}  // namespace
}  // namespace brenvolt
