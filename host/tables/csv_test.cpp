#include "host/tables/csv.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <thread>

#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/tables/csv_reader.h"

namespace brenvolt {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class CsvFiles : public testing::Test {
 protected:
  std::filesystem::path Put(const std::string& name, const std::string& content) const {
    WriteBytes(folder_ / name, content);
    return folder_ / name;
  }

  TemporaryFolder folder_;
};

// What a person sees of a column: numbers, texts, "-" where a value is missing.
std::string Shown(const Variable& variable) {
  std::string text = variable.Name() + (variable.Type() == VariableType::kText ? " text:" : ":");
  for (std::size_t row = 0; row < variable.Size(); ++row) {
    const double value = variable.Values()[row];
    std::ostringstream cell;
    if (variable.IsMissing(row)) {
      cell << "-";
    } else if (const auto label = variable.Label(value)) {
      cell << value << "=[" << *label << "]";
    } else {
      cell << value;
    }
    text += " " + cell.str();
  }
  return text;
}

std::string Shown(const Spreadsheet& sheet) {
  std::string text;
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c) {
    if (c > 0) text += " | ";
    text += Shown(sheet.VariableAt(c));
  }
  return text;
}

void ExpectEqual(const Spreadsheet& a, const Spreadsheet& b) {
  ASSERT_EQ(a.VariableCount(), b.VariableCount());
  ASSERT_EQ(a.CaseCount(), b.CaseCount());
  for (std::size_t c = 0; c < a.VariableCount(); ++c) {
    const Variable& x = a.VariableAt(c);
    const Variable& y = b.VariableAt(c);
    EXPECT_EQ(x.Name(), y.Name());
    EXPECT_EQ(x.Type(), y.Type());
    EXPECT_EQ(x.Labels(), y.Labels());
    for (std::size_t row = 0; row < x.Size(); ++row) {
      ASSERT_EQ(x.IsMissing(row), y.IsMissing(row)) << x.Name() << " case " << row + 1;
      if (x.IsMissing(row)) continue;
      ASSERT_EQ(std::bit_cast<std::uint64_t>(x.Values()[row]), std::bit_cast<std::uint64_t>(y.Values()[row]))
          << x.Name() << " case " << row + 1;
    }
  }
}

const CsvFormat kTabs{'\t', '.'};

TEST(ReadCsv, TakesEveryFormOfFile) {
  const struct {
    const char* what;
    std::string text;
    std::string shown;
    CsvFormat format = {};
  } rows[] = {
      {"LF", "a,b\n1,2\n3,4\n", "a: 1 3 | b: 2 4"},
      {"no newline at the end", "a,b\n1,2\n3,4", "a: 1 3 | b: 2 4"},
      {"CRLF", "a,b\r\n1,2\r\n3,4\r\n", "a: 1 3 | b: 2 4"},
      {"CRLF after quoted fields", "\"a\",\"b\"\r\n\"1\",\"x\"\r\n", "a: 1 | b text: 1=[x]"},
      {"carriage return at the end", "a,b\r\n1,2\r", "a: 1 | b: 2"},
      {"byte-order mark",
       "\xEF\xBB\xBF"
       "a,b\n1,2\n",
       "a: 1 | b: 2"},
      {"byte-order mark before quotes", "\xEF\xBB\xBF\"a\",b\n1,2\n", "a: 1 | b: 2"},
      {"decimal comma", "a;b\n1,5;-2,25e1\n", "a: 1.5 | b: -22.5", CsvFormat::DecimalComma()},
      {"long number with decimal comma", "a\n1" + std::string(80, '0') + ",5e-80\n", "a: 1",
       CsvFormat::DecimalComma()},
      {"points where the comma is decimal", "a;b\n1.5;2\n", "a text: 1=[1.5] | b: 2",
       CsvFormat::DecimalComma()},
      {"commas where the point is decimal", "a;b\n1,5;2\n", "a text: 1=[1,5] | b: 2", {';', '.'}},
      {"tabs, first and last cell empty", "a\tb\tc\n\t1\t\n\t\t\n", "a: - - | b: 1 - | c: - -", kTabs},
      {"tabs beside quotes", "a\tb\n\"x\"\t\"y\" \n", "a text: 1=[x] | b text: 1=[y]", kTabs},
      {"separators and newlines in quotes", "a,b\n\"x,1\",\"y\n2\"\n\"\r\n\",3\n",
       "a text: 1=[x,1] 2=[\r\n] | b text: 1=[y\n2] 2=[3]"},
      {"doubled quotes", "\"\"\"a\"\"\",b\n\"x\"\"y\",\"\"\"\"\n", "\"a\" text: 1=[x\"y] | b text: 1=[\"]"},
      {"blanks around everything", " a , \"b\" \n 1\t,\t\"x\" \n \"2\",  y z \n",
       "a: 1 2 | b text: 1=[x] 2=[y z]"},
      {"blank lines among columns", "\n \na,b\n\n1,2\n \t\r\n3,4\n\n", "a: 1 3 | b: 2 4"},
      {"blank lines of one column", "a\n\n1\n \n", "a: - 1 -"},
      {"a column without values", "a,b\n1,\n2,NA\n", "a: 1 2 | b: - -"},
      {"text of other scripts", "größe,名\n1,простой\n", "größe: 1 | 名 text: 1=[простой]"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Shown(ReadCsvText(row.text, "t", row.format)), row.shown) << row.what;
  }
}

TEST(ReadCsv, CellsMeanWhatTheyShow) {
  const struct {
    const char* cell;
    const char* shown;
  } rows[] = {
      {"", "-"},
      {"   ", "-"},
      {"\"\"", "-"},
      {"NA", "-"},
      {" NA ", "-"},
      {"nan", "-"},
      {"-NaN", "-"},
      {"\"NA\"", "1=[NA]"},
      {"\"nan\"", "1=[nan]"},
      {"\"  \"", "1=[  ]"},
      {"na", "1=[na]"},
      {"N/A", "1=[N/A]"},
      {"+5", "5"},
      {"+-5", "1=[+-5]"},
      {"- 5", "1=[- 5]"},
      {"\" 5 \"", "5"},
      {".5", "0.5"},
      {"5.", "5"},
      {"1e3", "1000"},
      {"1E+3", "1000"},
      {"1e", "1=[1e]"},
      {"0x10", "1=[0x10]"},
      {"1.5.2", "1=[1.5.2]"},
      {"1 000", "1=[1 000]"},
      {"inf", "inf"},
      {"-INF", "-inf"},
      {"+Infinity", "inf"},
      {"\"inf\"", "inf"},
      {"infinite", "1=[infinite]"},
      {"1e-400", "0"},
      {"2024-01-31", "1=[2024-01-31]"},
      {".", "1=[.]"},
      {"-", "1=[-]"},
  };
  for (const auto& row : rows) {
    const Spreadsheet sheet = ReadCsvText("a,b\n" + std::string(row.cell) + ",0\n", "t");
    const std::string shown = Shown(sheet.VariableAt(0));
    EXPECT_EQ(shown.substr(shown.find(": ") + 2), row.shown) << row.cell;
  }
}

TEST(ReadCsv, OneTextMakesAWholeColumnText) {
  // Numbers of a text column keep the form that they have in the file, even where they would be too large.
  EXPECT_EQ(Shown(ReadCsvText("a,b\n1.50,0\nx,0\n1.50,0\n,0\n1e400,0\ninf,0\n", "t").VariableAt(0)),
            "a text: 1=[1.50] 2=[x] 1=[1.50] - 3=[1e400] 4=[inf]");
}

TEST(ReadCsv, EveryColumnGetsANameOfItsOwn) {
  const struct {
    const char* header;
    std::vector<std::string> names;
  } rows[] = {
      {"a,,\" \"", {"a", "Var2", "Var3"}}, {"a,a,a", {"a", "a_2", "a_3"}},
      {"a,a,a_2", {"a", "a_3", "a_2"}},    {",Var1,Var1_2", {"Var1_3", "Var1", "Var1_2"}},
      {"a,A,\"a \"", {"a", "A", "a "}},
  };
  for (const auto& row : rows) {
    const Spreadsheet sheet = ReadCsvText(std::string(row.header) + "\n1,2,3\n", "t");
    for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(sheet.VariableAt(c).Name(), row.names[c]) << row.header;
  }
}

TEST(ReadCsv, ErrorsNameTheFirstFaultWithItsPlace) {
  const struct {
    std::string text;
    const char* what;
    const char* where;
    CsvFormat format = {};
  } rows[] = {
      {"", "the file is empty", "f.csv"},
      {"\xEF\xBB\xBF \r\n\n", "the file is empty", "f.csv"},
      {"a,b\n", "the file has no data lines", "f.csv"},
      {"a,b\n\n \n", "the file has no data lines", "f.csv"},
      {"a,b,c\n1,2,3\n1,2\n", "the line has 2 fields, the header has 3", "f.csv, line 3, column 3"},
      {"a,b\n\"x\ny\n\",2\n1\n", "the line has 1 field, the header has 2", "f.csv, line 5, column 2"},
      {"a;b\n1,5;2\n",
       "the line has more fields than the header, which has 1; fields separated by semicolons are another "
       "format",
       "f.csv, line 2, column 2"},
      {"a,b\n1,2,\n", "the line has more fields than the header, which has 2", "f.csv, line 2, column 3"},
      {"a,b\n1,2\n3,\"x\n4,5\n", "a quoted field is not closed", "f.csv, line 3, column 2"},
      {"a,\"b\n1,2\n", "a quoted field is not closed", "f.csv, line 1, column 2"},
      {"a,b\n\"x\"y,2\n", "text follows a closing quote", "f.csv, line 2, column 1"},
      {"a,b\n1,\"x\"\ry\n", "text follows a closing quote", "f.csv, line 2, column 2"},
      {"a,b\n1,5\" pipe\n", "an unquoted field has a quote inside", "f.csv, line 2, column 2"},
      {"a,b\n1,2\n3,1e400\n", "the field is a number too large for a double", "f.csv, line 3, column 2"},
      {"a,b\n1,\"-1e999\"\n1e400,3\n", "the field is a number too large for a double",
       "f.csv, line 2, column 2"},
      {std::string("a,b\n1,2\n3,\0\n", 11), "the text is not UTF-8", "f.csv, line 3, column 2"},
      {"a,b\n1,2\ncaf\xE9,4\n", "the text is not UTF-8", "f.csv, line 3, column 1"},
      {"a,b\n1,\"\xC3\x28\"\n", "the text is not UTF-8", "f.csv, line 2, column 2"},
      {"\xFF\xFE"
       "a",
       "the text is not UTF-8", "f.csv, line 1, column 1"},
      {"a,b\n1,2\n3\n4,\xFF\n", "the line has 1 field, the header has 2", "f.csv, line 3, column 2"},
      {"a\n1\n", "the separator is also the decimal separator", "", {',', ','}},
      {"a\n1\n", "the separator could be part of a cell", "", {'"', '.'}},
      {"a\n1\n", "the separator could be part of a cell", "", {'5', '.'}},
  };
  for (const auto& row : rows) {
    for (const std::size_t blockBytes : {std::size_t{1}, std::size_t{3}, kCsvBlockBytes}) {
      try {
        ReadCsvBlocks(row.text, "f", "f.csv", row.format, blockBytes);
        ADD_FAILURE() << "accepted: " << row.text;
      } catch (const Error& error) {
        EXPECT_STREQ(error.what(), row.what) << row.text << "\nin blocks of " << blockBytes;
        EXPECT_EQ(error.Where(), row.where) << row.text << "\nin blocks of " << blockBytes;
      }
    }
  }
}

// Random rows, in which quotes, line ends and texts fall on every side of the ends of blocks.
std::string RandomText(unsigned seed) {
  static const std::vector<std::string> cells = {"1",        "-2.5",       "\"3\"", "NA", "",
                                                 "\"a\nb\"", "\"\"\"\"",   "x y",   "é",  "\"\n\"",
                                                 "\"\"",     "\",\r\n,\"", "1e5"};
  std::mt19937 engine(seed);
  std::string text = "a,b,c\n";
  for (int row = 0; row < 200; ++row) {
    for (int column = 0; column < 3; ++column) {
      // The first column is of numbers.
      text += cells[engine() % (column == 0 ? 5 : cells.size())];
      text += column < 2 ? "," : engine() % 2 != 0 ? "\n" : "\r\n";
    }
    if (engine() % 9 == 0) text += "\n";
  }
  return text;
}

TEST(ReadCsv, BlocksChangeNothing) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    const std::string text = RandomText(seed);
    const Spreadsheet whole = ReadCsvBlocks(text, "t", "t", {}, text.size());
    EXPECT_EQ(whole.CaseCount(), 200u);
    for (const std::size_t blockBytes : {1, 2, 5, 16, 100, 1000}) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", blocks of " + std::to_string(blockBytes));
      ExpectEqual(ReadCsvBlocks(text, "t", "t", {}, blockBytes), whole);
    }
  }
}

TEST(ReadCsv, ManyBlocksAndManyColumns) {
  constexpr std::size_t kColumns = 5000;
  constexpr std::size_t kRows = 60;
  std::string text;
  for (std::size_t row = 0; row <= kRows; ++row) {
    for (std::size_t c = 0; c < kColumns; ++c) {
      if (c > 0) text += ',';
      text += row == 0 ? "v" + std::to_string(c) : std::to_string(row * kColumns + c);
    }
    text += '\n';
  }
  ASSERT_GT(text.size(), 2 * kCsvBlockBytes);
  const Spreadsheet sheet = ReadCsvText(text, "t");
  ASSERT_EQ(sheet.VariableCount(), kColumns);
  ASSERT_EQ(sheet.CaseCount(), kRows);
  for (std::size_t c = 0; c < kColumns; ++c) {
    ASSERT_EQ(sheet.VariableAt(c).Name(), "v" + std::to_string(c));
    for (std::size_t row = 0; row < kRows; ++row) {
      ASSERT_EQ(sheet.VariableAt(c).Values()[row], static_cast<double>((row + 1) * kColumns + c));
    }
  }
}

TEST_F(CsvFiles, SheetIsNamedAfterTheFileAndErrorsNameIt) {
  EXPECT_EQ(ReadCsv(Put("my data.v2.csv", "a\n1\n")).Name(), "my data.v2");
  const std::filesystem::path missing = folder_ / "none.csv";
  const struct {
    std::filesystem::path path;
    std::string what;
    std::string place;
  } rows[] = {
      {missing, "the file cannot be read: No such file or directory", ""},
      {folder_.Path(), "a folder stands in place of the file", ""},
      {Put("empty.csv", ""), "the file is empty", ""},
      {Put("ragged.csv", "a,b\n1\n"), "the line has 1 field, the header has 2", ", line 2, column 2"},
  };
  for (const auto& row : rows) {
    try {
      ReadCsv(row.path);
      ADD_FAILURE() << "accepted: " << row.path;
    } catch (const Error& error) {
      EXPECT_EQ(error.what(), row.what);
      EXPECT_EQ(error.Where(), row.path.string() + row.place);
    }
  }
}

TEST_F(CsvFiles, PipesAreReadAndWrittenAsFiles) {
  const std::filesystem::path pipe = folder_ / "pipe.csv";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  Spreadsheet sheet("s", 50'000, 2);
  for (std::size_t row = 0; row < sheet.CaseCount(); ++row)
    sheet.VariableAt(1).MutableValues()[row] = 0.1 * row;
  std::thread writer([&] { WriteCsv(sheet, pipe); });
  const Spreadsheet back = ReadCsv(pipe);
  writer.join();
  ExpectEqual(back, sheet);
  EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(WriteCsv, WritesTheShortestTextThatKeepsItsMeaning) {
  Spreadsheet sheet("s", 5, 2);
  const double values[] = {0.1, 100000, -kInf, kNaN, -0.0};
  std::ranges::copy(values, sheet.VariableAt(0).MutableValues().begin());
  sheet.VariableAt(0).SetName("x, y");
  sheet.VariableAt(0).SetLabel(100000, "labels of numeric variables stay behind");
  Variable& texts = sheet.VariableAt(1);
  texts.SetName("\"n\"");
  texts.SetType(VariableType::kText);
  texts.SetMissingCode(-1);
  const double codes[] = {1, 2, 3, -1, 7};
  std::ranges::copy(codes, texts.MutableValues().begin());
  texts.SetLabel(1, "plain text");
  texts.SetLabel(2, " padded");
  texts.SetLabel(3, "NA");
  EXPECT_EQ(CsvText(sheet),
            "\"x, y\",\"\"\"n\"\"\"\n0.1,plain text\n100000,\" padded\"\n-inf,\"NA\"\n,\n-0,7\n");
  EXPECT_EQ(CsvText(sheet, CsvFormat::DecimalComma()).substr(0, 38),
            "x, y;\"\"\"n\"\"\"\n0,1;plain text\n100000;\" p");
}

TEST(WriteCsv, CaseNamesFormTheFirstColumn) {
  Spreadsheet sheet("s", 2, 1);
  EXPECT_EQ(CsvText(sheet), "Var1\n0\n0\n");
  sheet.SetHeader("unit");
  sheet.SetCaseNames({"first, of all", ""});
  EXPECT_EQ(CsvText(sheet), "unit,Var1\n\"first, of all\",0\n,0\n");
}

TEST(WriteCsv, RandomBitsReadBackExactly) {
  constexpr std::size_t kRows = 40'000;  // several waves of blocks
  Spreadsheet sheet("s", kRows, 30);
  std::mt19937_64 engine(4711);
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c) {
    for (double& x : sheet.VariableAt(c).MutableValues()) x = std::bit_cast<double>(engine());
  }
  for (const CsvFormat& format : {CsvFormat{}, CsvFormat::DecimalComma()}) {
    ExpectEqual(ReadCsvText(CsvText(sheet, format), "s", format), sheet);
  }
}

TEST(WriteCsv, TextsThatLookLikeSyntaxReadBack) {
  const std::vector<std::string> texts = {
      "a,b", "a;b", "\"",   "\"\"x", "line\nbreak",      "cr\rhere", "crlf\r\n", " ", "\t",
      "NA",  "nan", "-NaN", "x ",    "\xEF\xBB\xBFmark", "é",        "1,5x",     "'", "#"};
  Spreadsheet sheet("s");
  for (const std::string& text : texts) {
    Variable variable(text == " " || text == "\t" ? "blank" + text : text, texts.size());
    variable.SetType(VariableType::kText);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      variable.MutableValues()[i] = static_cast<double>(i + 1);
      variable.SetLabel(static_cast<double>(i + 1), texts[i]);
    }
    sheet.AddVariable(variable);
    // Alone in its file and beside others: the first column meets the byte-order mark and blank lines.
    Spreadsheet alone("s");
    alone.AddVariable(std::move(variable));
    ExpectEqual(ReadCsvText(CsvText(alone), "s"), alone);
  }
  for (const CsvFormat& format : {CsvFormat{}, CsvFormat::DecimalComma(), kTabs}) {
    ExpectEqual(ReadCsvText(CsvText(sheet, format), "s", format), sheet);
  }
}

TEST(WriteCsv, LoneMissingCellsReadBack) {
  Spreadsheet sheet("s", 4, 1);
  const double values[] = {kNaN, 1, kNaN, kNaN};
  std::ranges::copy(values, sheet.VariableAt(0).MutableValues().begin());
  ExpectEqual(ReadCsvText(CsvText(sheet), "s"), sheet);
  sheet.VariableAt(0).SetName("");
  EXPECT_EQ(ReadCsvText(CsvText(sheet), "s").CaseCount(), 4u);
}

TEST_F(CsvFiles, PiecesMakeTheFileOfTheWhole) {
  Spreadsheet whole("s", 10);
  whole.SetHeader("Sample #");
  whole.AddVariable(Variable("x", 10)).AssignValues({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  whole.NumberCases();
  WriteCsv(whole, folder_ / "whole.csv");
  CsvPieces pieces(folder_ / "pieces.csv");
  for (const auto& [first, count] : {std::pair(0, 4), std::pair(4, 1), std::pair(5, 5)}) {
    Spreadsheet piece("s", static_cast<std::size_t>(count));
    piece.SetHeader("Sample #");
    std::vector<double> values;
    for (int i = 0; i < count; ++i) values.push_back(first + i);
    piece.AddVariable(Variable("x", values.size())).AssignValues(values);
    piece.NumberCases();
    pieces.Append(piece);
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "pieces.csv"));
  pieces.Commit();
  EXPECT_EQ(BytesOf(folder_ / "pieces.csv"), BytesOf(folder_ / "whole.csv"));
}

TEST_F(CsvFiles, FailedWriteLeavesTheFormerFile) {
  const std::filesystem::path path = Put("old.csv", "old");
  EXPECT_THROW(WriteCsv(Spreadsheet("s", 1, 1), path, {',', ','}), Error);
  EXPECT_EQ(BytesOf(path), "old");
  WriteCsv(Spreadsheet("s", 1, 1), path);
  EXPECT_EQ(BytesOf(path), "Var1\n0\n");
  try {
    WriteCsv(Spreadsheet("s", 100'000, 1), "/dev/full");
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.Where(), "/dev/full");
  }
}

}  // namespace
}  // namespace brenvolt
