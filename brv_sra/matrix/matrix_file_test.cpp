#include "brv_sra/matrix/matrix_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/utf8.h"
#include "host/numeric/algebra/correlation.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// a step of `units` units in the last place above x
double Above(double x, int units) {
  for (int i = 0; i < units; ++i) x = std::nextafter(x, kInfinity);
  return x;
}
double Below(double x, int units) {
  return -Above(-x, units);
}

MatrixFile Sample() {
  MatrixFile file = MatrixFile::Identity({"a", "b", "c"});
  file.SetCorrelations(std::vector<double>{1, 0.5, -0.25, 0.5, 1, 0.125, -0.25, 0.125, 1});
  file.means = {10, 20, 30};
  file.standardDeviations = {1, 2, 3};
  file.validCases = 77;
  return file;
}

std::string MessageOf(const Spreadsheet& sheet) {
  const MatrixReading reading = ReadMatrixFile(sheet);
  if (reading.IsValid()) return "valid";
  EXPECT_TRUE(reading.file.correlations.empty());
  return reading.Message() == 0 ? "refused" : std::string(ResourceString(reading.Message()));
}

TEST(MatrixFile, LayoutHoldsEveryValueInItsPlace) {
  const auto sheet = MakeMatrixFile(Sample());
  EXPECT_EQ(sheet->Kind(), SheetKind::kMatrix);
  EXPECT_EQ(sheet->Title(), "Correlation matrix");
  EXPECT_EQ(sheet->Name(), "Correlation matrix");
  ASSERT_EQ(sheet->CaseCount(), 7U);
  const std::string_view names[] = {"a", "b", "c", "Means", "Std.Dev.", "No.Cases", "Matrix"};
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(sheet->CaseName(i), names[i]);
  const double columns[3][7] = {{1, 0.5, -0.25, 10, 1, 77, 1},
                                {0.5, 1, 0.125, 20, 2, kNaN, kNaN},
                                {-0.25, 0.125, 1, 30, 3, kNaN, kNaN}};
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_EQ(sheet->VariableAt(c).Name(), names[c]);
    for (std::size_t row = 0; row < 7; ++row) {
      const double value = sheet->VariableAt(c).Values()[row];
      EXPECT_TRUE(std::isnan(columns[c][row]) ? std::isnan(value) : value == columns[c][row])
          << row << ',' << c << ": " << value;
    }
  }
}

TEST(MatrixFile, ReadingGivesBackWhatWasMade) {
  const MatrixFile made = Sample();
  const MatrixReading reading = ReadMatrixFile(*MakeMatrixFile(made));
  ASSERT_TRUE(reading.IsValid());
  EXPECT_EQ(reading.file.variables, made.variables);
  EXPECT_EQ(reading.file.correlations, made.correlations);
  EXPECT_EQ(reading.file.means, made.means);
  EXPECT_EQ(reading.file.standardDeviations, made.standardDeviations);
  EXPECT_EQ(reading.file.validCases, 77);
}

// Rows in the file of three variables: 0-2 matrix, 3 means, 4 deviations, 5 number of cases, 6 type.
TEST(MatrixFile, OneDamagedCellGivesItsMessage) {
  constexpr double kCode = -9999;
  const std::string invalid =
      "Invalid correlation matrix. Please check the validity of the input correlation matrix.";
  const std::string wrongType = "Only correlation and covariance matrices can be processed.";
  const struct {
    std::size_t row, column;
    double value;
    std::string message;
  } rows[] = {
      {0, 1, kNaN, invalid},
      {0, 1, kCode, invalid},
      {0, 1, Above(kCode, 15), invalid},
      {2, 0, 1.001, invalid},
      {2, 0, -1.001, invalid},
      {0, 2, Above(1, 15), "valid"},
      {0, 2, Above(1, 16), invalid},
      {0, 2, Below(-1, 1), "valid"},
      {0, 2, kInfinity, invalid},
      {1, 1, Below(1, 1), "valid"},
      {1, 1, Below(1, 15), "valid"},
      {1, 1, Below(1, 16), invalid},
      {1, 1, Above(1, 1), "valid"},
      {1, 1, -1, invalid},
      {1, 1, kNaN, invalid},
      {2, 2, kCode, invalid},
      {3, 0, kNaN, "Mean error"},
      {3, 2, kCode, "Mean error"},
      {3, 1, kInfinity, "valid"},
      {4, 2, kNaN, "Std. Dev error"},
      {4, 0, kCode, "Std. Dev error"},
      {4, 0, -1, "valid"},
      {5, 0, kNaN, "Valid cases error"},
      {5, 0, kCode, "Valid cases error"},
      {5, 0, Below(1, 1), "Valid cases error"},
      {5, 0, 1, "valid"},
      {5, 1, kNaN, "valid"},
      {6, 0, 2, wrongType},
      {6, 0, 3, wrongType},
      {6, 0, 5, "refused"},
      {6, 0, kNaN, "refused"},
      {6, 0, Above(1, 15), "valid"},
      {6, 0, Above(1, 16), "refused"},
      {6, 1, 2, "valid"},
  };
  for (const auto& row : rows) {
    const auto sheet = MakeMatrixFile(Sample());
    for (std::size_t c = 0; c < 3; ++c) sheet->VariableAt(c).SetMissingCode(kCode);
    sheet->VariableAt(row.column).MutableValues()[row.row] = row.value;
    EXPECT_EQ(MessageOf(*sheet), row.message) << row.value << " at " << row.row << ',' << row.column;
    EXPECT_EQ(IsMatrixFile(*sheet), row.message == "valid");
  }
}

TEST(MatrixFile, FirstFaultInTheOrderOfChecksDecides) {
  const auto sheet = MakeMatrixFile(Sample());
  const auto values = sheet->VariableAt(0).MutableValues();
  const struct {
    std::size_t row;
    std::string message;
  } faults[] = {
      {5, "Valid cases error"},
      {4, "Std. Dev error"},
      {3, "Mean error"},
      {1, "Invalid correlation matrix. Please check the validity of the input correlation matrix."}};
  for (const auto& fault : faults) {
    values[fault.row] = kNaN;
    EXPECT_EQ(MessageOf(*sheet), fault.message);
  }
  values[6] = 5;
  EXPECT_EQ(MessageOf(*sheet), "refused");
  values[6] = 2;
  EXPECT_EQ(MessageOf(*sheet), "Only correlation and covariance matrices can be processed.");
  sheet->SetKind(SheetKind::kData);
  EXPECT_EQ(MessageOf(*sheet), "refused");
}

TEST(MatrixFile, MissingCasesAreFoundBeforeTheTypeButAfterOtherTypes) {
  for (const auto& [type, message] : {std::pair{1.0, "Cases error"},
                                      {5.0, "Cases error"},
                                      {2.0, "Only correlation and covariance matrices can be processed."}}) {
    Spreadsheet sheet("m", 6, 3);
    sheet.SetKind(SheetKind::kMatrix);
    sheet.VariableAt(0).MutableValues()[5] = type;
    EXPECT_EQ(MessageOf(sheet), message) << type;
  }
}

// Further cases stand between the matrix and its summaries, which are the last rows.
TEST(MatrixFile, SummariesAreTheLastRows) {
  MatrixFile file = MatrixFile::Identity({"a", "b"});
  const auto made = MakeMatrixFile(file);
  Spreadsheet sheet("m", 8, 2);
  sheet.SetKind(SheetKind::kMatrix);
  for (std::size_t c = 0; c < 2; ++c) {
    sheet.VariableAt(c).MutableValues()[c] = 1;
    sheet.VariableAt(c).MutableValues()[4] = 6;
    sheet.VariableAt(c).MutableValues()[5] = 7;
  }
  sheet.VariableAt(0).MutableValues()[6] = 12.9;
  sheet.VariableAt(0).MutableValues()[7] = 1;
  const MatrixReading reading = ReadMatrixFile(sheet);
  ASSERT_TRUE(reading.IsValid());
  EXPECT_EQ(reading.file.means, (std::vector<double>{6, 6}));
  EXPECT_EQ(reading.file.standardDeviations, (std::vector<double>{7, 7}));
  EXPECT_EQ(reading.file.validCases, 12) << "truncated";
  sheet.VariableAt(0).MutableValues()[6] = 1e300;
  EXPECT_EQ(ReadMatrixFile(sheet).file.validCases, std::numeric_limits<std::int32_t>::max());
}

TEST(MatrixFile, DeselectedAndCancelledReadsSaySo) {
  const struct {
    std::size_t deselected;
    std::string_view message;
  } rows[] = {
      {0, ""},
      {3, "Case selection condition disabled variables' mean information"},
      {4, "Case selection condition disabled variables' standard deviation information"},
      {5, "Case selection condition disabled variables' standard deviation information"},
      {6, ""},
  };
  const auto sheet = MakeMatrixFile(Sample());
  for (const auto& row : rows) {
    CaseSelection selection{true, "some", std::vector<std::uint8_t>(7, 1)};
    selection.accepted[row.deselected] = 0;
    sheet->SetSelection(selection);
    const MatrixReading reading = ReadMatrixFile(*sheet);
    EXPECT_EQ(ResourceString(reading.Message()), row.message);
    EXPECT_EQ(reading.IsValid(), row.message.empty());
    EXPECT_TRUE(ReadMatrixFile(*sheet, {.useCaseSelection = false, .isCancelled = {}}).IsValid());
    EXPECT_TRUE(IsMatrixFile(*sheet));
  }
  sheet->SetSelection({});
  for (const int pollsBefore : {0, 1, 2}) {
    int polls = 0;
    const MatrixReading reading = ReadMatrixFile(
        *sheet, {.useCaseSelection = true, .isCancelled = [&] { return polls++ == pollsBefore; }});
    EXPECT_EQ(ResourceString(reading.Message()),
              pollsBefore < 2 ? "User cancelled the progress while reading mean." : "");
  }
}

TEST(MatrixFile, TitleIsCutAtItsFieldAndStaysText) {
  const std::string eighty(80, 'x');
  EXPECT_EQ(MakeMatrixFile(Sample(), eighty)->Title(), eighty);
  EXPECT_EQ(MakeMatrixFile(Sample(), eighty + "y")->Title(), eighty);
  const std::string accent = "\u00e9";
  const std::string cut = MakeMatrixFile(Sample(), eighty.substr(1) + accent)->Title();
  EXPECT_EQ(cut, eighty.substr(1));
  EXPECT_TRUE(IsText(cut));
}

TEST(MatrixFile, ValuesThatDoNotMatchAreNotWritten) {
  EXPECT_THROW(MakeMatrixFile(MatrixFile::Identity({})), Error);
  EXPECT_THROW(Sample().SetCorrelations(std::vector<double>(8)), Error);
  const std::vector<std::function<void(MatrixFile&)>> damages{
      [](MatrixFile& f) { f.correlations.pop_back(); }, [](MatrixFile& f) { f.correlations[1].push_back(0); },
      [](MatrixFile& f) { f.means.pop_back(); }, [](MatrixFile& f) { f.standardDeviations.push_back(0); },
      [](MatrixFile& f) { f.variables.pop_back(); }};
  for (const auto& damage : damages) {
    MatrixFile file = Sample();
    damage(file);
    EXPECT_THROW(MakeMatrixFile(file), Error);
  }
}

TEST(MatrixFile, BlanksAroundNamesOfVariablesAreDropped) {
  const auto sheet = MakeMatrixFile(Sample());
  sheet->VariableAt(1).SetName("  b 2\t");
  EXPECT_EQ(ReadMatrixFile(*sheet).file.variables, (std::vector<std::string>{"a", "b 2", "c"}));
}

// What the fits write: correlations of data, of which a constant variable has none.
TEST(MatrixFile, CorrelationsOfDataAreReadBackUnlessOneIsMissing) {
  const std::vector<double> data{1, 2, 5, 2, 1, 5, 3, 5, 5, 4, 4, 5};
  std::vector<double> correlation(9);
  PearsonCorrelation(data, 4, 3, correlation);
  MatrixFile file = MatrixFile::Identity({"x", "y", "constant"});
  file.SetCorrelations(correlation);
  EXPECT_EQ(ReadMatrixFile(*MakeMatrixFile(file)).status, MatrixStatus::kInvalidMatrix);
  file = MatrixFile::Identity({"x", "y"});
  file.SetCorrelations(std::vector<double>{correlation[0], correlation[1], correlation[3], correlation[4]});
  const MatrixReading reading = ReadMatrixFile(*MakeMatrixFile(file));
  ASSERT_TRUE(reading.IsValid());
  EXPECT_TRUE(IsSymmetricCorrelationMatrix(reading.file.correlations));
}

TEST(MatrixFile, SymmetryIsExact) {
  using Rows = std::vector<std::vector<double>>;
  const struct {
    Rows rows;
    bool symmetric;
  } cases[] = {
      {{}, false},
      {{{1}}, true},
      {{{Below(1, 1)}}, false},
      {{{kNaN}}, false},
      {{{1, 0.5}, {0.5, 1}}, true},
      {{{1, 0.5}, {Above(0.5, 1), 1}}, false},
      {{{1, kNaN}, {kNaN, 1}}, false},
      {{{1, 0.5}, {kNaN, 1}}, false},
      {{{1, 0.0}, {-0.0, 1}}, true},
      {{{1, 0.5}, {0.5}}, false},
      {{{1, 0.5, 0}, {0.5, 1, 0}}, false},
      {{{1, 0, 0.1}, {0, 1, 0.2}, {0.1, 0.3, 1}}, false},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i)
    EXPECT_EQ(IsSymmetricCorrelationMatrix(cases[i].rows), cases[i].symmetric) << "case " << i;
}

}  // namespace
}  // namespace brenvolt::sra
