#include "host/tables/matrix_sheet.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/base/error.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

const std::string kMatrix =
    ",a,b\n"
    "a,1,0.25\n"
    "b,0.25,1\n"
    "Means,10,20\n"
    "Std.Dev.,0.1,3\n"
    "No.Cases,42,\n"
    "Matrix,1,\n";

// The matrix with one piece of its text replaced.
std::string With(const std::string& piece, const std::string& replacement) {
  std::string text = kMatrix;
  const auto place = text.find(piece);
  EXPECT_NE(place, std::string::npos) << piece;
  return text.replace(place, piece.size(), replacement);
}

std::unique_ptr<Spreadsheet> Matrix(const std::string& text, const CsvFormat& format = {}) {
  return MatrixFromTable(ReadCsvText(text, "m", format), "m.csv");
}

TEST(MatrixSheet, TextReadsAsAMatrixAndWritesTheSameText) {
  for (const CsvFormat& format : {CsvFormat{}, CsvFormat::DecimalComma()}) {
    const std::string text = CsvText(*Matrix(kMatrix), format);
    const auto matrix = Matrix(text, format);
    EXPECT_TRUE(HasMatrixRows(*matrix));
    EXPECT_EQ(matrix->CaseName(5), "Matrix");
    EXPECT_EQ(matrix->VariableAt(1).Values()[0], 0.25);
    EXPECT_EQ(CsvText(*matrix), kMatrix);
  }
}

// Names that a reader of tables would change or take for numbers or words.
TEST(MatrixSheet, OddNamesOfVariablesComeBack) {
  for (const std::string name : {"Var1", "Name", "1e3", "nan", "a, \"b\"", "Matrix", "Means", "\u00e9"}) {
    Spreadsheet matrix("m", 0);
    matrix.SetKind(SheetKind::kMatrix);
    Variable variable(name, 0);
    variable.AssignValues({1, 5, 2, 9, 1});
    matrix.AddVariable(variable);
    matrix.SetCaseNames({name, "Means", "Std.Dev.", "No.Cases", "Matrix"});
    const std::string text = CsvText(matrix);
    ASSERT_TRUE(LooksLikeMatrixTable(ReadCsvText(text, "m"))) << text;
    EXPECT_EQ(CsvText(*Matrix(text)), text);
  }
}

TEST(MatrixSheet, DamagedTextIsRefusedWithItsRowAndColumn) {
  const struct {
    std::string piece, replacement, message, where;
  } rows[] = {
      {"b,0.25,1", "c,0.25,1", "row 2 of the matrix is called \"c\", not b", "m.csv"},
      {"Means,", "Mean,", "row 3 of the matrix is called \"Mean\", not Means", "m.csv"},
      {"Matrix,1,", ",1,", "row 6 of the matrix is called \"\", not Matrix", "m.csv"},
      {"No.Cases,42,\n", "", "row 5 of the matrix is called \"Matrix\", not No.Cases", "m.csv"},
      {"No.Cases,42,\nMatrix,1,\n", "",
       "the table has 4 rows; a matrix of 2 variables has 2, or 6 with Means, Std.Dev., No.Cases and Matrix "
       "at the "
       "end",
       "m.csv"},
      {"Matrix,1,\n", "Matrix,1,\nMore,1,1\n",
       "the table has 7 rows; a matrix of 2 variables has 2, or 6 with Means, Std.Dev., No.Cases and Matrix "
       "at the "
       "end",
       "m.csv"},
      {"a,1,0.25", "a,1,0.25x", "\"0.25x\" is not a number", "m.csv, row a, column b"},
      {"a,1,0.25", "a,1,", "a correlation is missing", "m.csv, row a, column b"},
      {"a,1,0.25", "a,1,nan", "a correlation is missing", "m.csv, row a, column b"},
      {"a,1,", "a,0.99,", "the correlation of a variable with itself is not 1", "m.csv, row a, column a"},
      {"b,0.25,", "b,-1.001,", "a correlation is not between -1 and 1", "m.csv, row b, column a"},
      {"b,0.25,", "b,inf,", "a correlation is not between -1 and 1", "m.csv, row b, column a"},
      {"b,0.25,", "b,0.5,",
       "the matrix is not symmetric: 0.5 in row b, column a, but 0.25 in row a, column b", "m.csv"},
      {"10,20", "10,", "a mean is missing", "m.csv, row Means, column b"},
      {"0.1,3", ",3", "a standard deviation is missing", "m.csv, row Std.Dev., column a"},
      {"42", "0.5", "the number of cases is not at least 1", "m.csv, row No.Cases, column a"},
      {"42", "", "the number of cases is not at least 1", "m.csv, row No.Cases, column a"},
      {"Matrix,1", "Matrix,2", "the type is not 1, the type of correlation matrices",
       "m.csv, row Matrix, column a"},
  };
  for (const auto& row : rows) {
    const std::string text = With(row.piece, row.replacement);
    EXPECT_TRUE(LooksLikeMatrixTable(ReadCsvText(text, "m"))) << text;
    try {
      Matrix(text);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const Error& error) {
      EXPECT_EQ(error.what(), row.message) << text;
      EXPECT_EQ(error.Where(), row.where) << text;
    }
  }
}

TEST(MatrixSheet, DataAreNotTakenForAMatrix) {
  for (const char* text : {
           "a,b\n1,0.5\n0.5,1\n0,0\n",                // no names of rows
           "film,year\nMatrix,1999\nMemento,2000\n",  // one name by chance
           "name,a\na,1\nb,2\n",                      // a single column's name
           "name,a,b\na,1,2\nc,1,2\n",
           "name\nMeans\nMatrix\n",
       }) {
    const Spreadsheet table = ReadCsvText(text, "t");
    EXPECT_FALSE(LooksLikeMatrixTable(table)) << text;
    EXPECT_FALSE(IsMatrixSheet(table)) << text;
    EXPECT_THROW(MatrixFromTable(table, "t.csv"), Error) << text;
  }
}

// A square of correlations alone, with and without names of its rows, as other programs write it: names of numbers
// come as numbers, and mirrored entries may differ in the last digits that were printed.
TEST(MatrixSheet, PlainSquareGetsTheSummaryRows) {
  const std::string whole = ",7,b\n7,1,0.25\nb,0.25,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,1,\nMatrix,1,\n";
  for (const char* text :
       {",7,b\n7,1,0.25\nb,0.25,1\n", "7,b\n1,0.25\n0.25,1\n", ",7,b\n7,1.0,0.2500000003\nb,0.25,1.0\n"}) {
    const auto matrix = Matrix(text);
    EXPECT_TRUE(HasMatrixRows(*matrix)) << text;
    EXPECT_EQ(CsvText(*matrix), whole) << text;
  }
  EXPECT_EQ(CsvText(*Matrix(",1,2\n1,1,0.5\n2,0.5,1\n")).substr(0, 24), ",1,2\n1,1,0.5\n2,0.5,1\nMea");
  EXPECT_TRUE(LooksLikeMatrixTable(ReadCsvText(",a,b\na,1,0\nb,0,1\n", "m")));
  for (const auto& [text, message] : {std::pair{",a,b\na,1,0.250000002\nb,0.25,1\n", "not symmetric"},
                                      {",a,b\nb,1,0.25\na,0.25,1\n", "row 1 of the matrix is called"},
                                      {",a,b\na,1,0.25\n", "has 1 rows; a matrix of 2"},
                                      {"a,b\n1,0.25\n0.25,1\n0,0\n", "not a matrix"}}) {
    try {
      Matrix(text);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const Error& error) {
      EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
    }
  }
}

TEST(MatrixSheet, MarkedNameOfTheLastRowIsRead) {
  EXPECT_EQ(CsvText(*Matrix(With("Matrix,1", "DontTranslate!!Matrix,1"))), kMatrix);
}

TEST(MatrixSheet, HostTestAsksForKindNumbersAndRows) {
  Spreadsheet sheet("m", 5, 1);
  EXPECT_FALSE(IsMatrixSheet(sheet));
  sheet.SetKind(SheetKind::kMatrix);
  EXPECT_TRUE(HasMatrixRows(sheet));
  sheet.VariableAt(0).SetType(VariableType::kText);
  EXPECT_FALSE(IsMatrixSheet(sheet));
  for (const auto& [cases, variables] : {std::pair{0, 1}, {5, 0}, {0, 0}, {4, 1}, {7, 4}}) {
    Spreadsheet other("m", static_cast<std::size_t>(cases), static_cast<std::size_t>(variables));
    other.SetKind(SheetKind::kMatrix);
    EXPECT_FALSE(HasMatrixRows(other)) << cases << " cases of " << variables;
    EXPECT_EQ(IsMatrixSheet(other), cases > 0 && variables > 0);
  }
}

}  // namespace
}  // namespace brenvolt
