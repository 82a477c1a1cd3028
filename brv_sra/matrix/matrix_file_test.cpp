#include "brv_sra/matrix/matrix_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "host/base/utf8.h"
#include "host/numeric/algebra/correlation.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {
namespace {

using Id = FaultIdentifier;

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

// The fault of a sheet, or nothing if it reads.
std::optional<Id> FaultOf(const Spreadsheet& sheet) {
  const Result<MatrixFile> read = ReadMatrixFile(sheet);
  return read ? std::nullopt : std::optional(read.Reason().identifier);
}

TEST(MatrixFile, LayoutHoldsEveryValueInItsPlace) {
  const auto sheet = *MakeMatrixFile(Sample());
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
  const Result<MatrixFile> read = ReadMatrixFile(**MakeMatrixFile(made));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->variables, made.variables);
  EXPECT_EQ(read->correlations, made.correlations);
  EXPECT_EQ(read->means, made.means);
  EXPECT_EQ(read->standardDeviations, made.standardDeviations);
  EXPECT_EQ(read->validCases, 77);
}

// Rows in the file of three variables: 0-2 matrix, 3 means, 4 deviations, 5 number of cases, 6 type.
TEST(MatrixFile, OneDamagedCellGivesItsFault) {
  constexpr double kCode = -9999;
  constexpr auto kInvalid = Id::kMatrixLacksCorrelation;
  constexpr std::nullopt_t kValid = std::nullopt;
  const struct {
    std::size_t row, column;
    double value;
    std::optional<Id> fault;
  } rows[] = {
      {0, 1, kNaN, kInvalid},
      {0, 1, kCode, kInvalid},
      {0, 1, Above(kCode, 15), kInvalid},
      {2, 0, 1.001, kInvalid},
      {2, 0, -1.001, kInvalid},
      {0, 2, Above(1, 15), kValid},
      {0, 2, Above(1, 16), kInvalid},
      {0, 2, Below(-1, 1), kValid},
      {0, 2, kInfinity, kInvalid},
      {1, 1, Below(1, 1), kValid},
      {1, 1, Below(1, 15), kValid},
      {1, 1, Below(1, 16), kInvalid},
      {1, 1, Above(1, 1), kValid},
      {1, 1, -1, kInvalid},
      {1, 1, kNaN, kInvalid},
      {2, 2, kCode, kInvalid},
      {3, 0, kNaN, Id::kMatrixLacksMean},
      {3, 2, kCode, Id::kMatrixLacksMean},
      {3, 1, kInfinity, kValid},
      {4, 2, kNaN, Id::kMatrixLacksStandardDeviation},
      {4, 0, kCode, Id::kMatrixLacksStandardDeviation},
      {4, 0, -1, kValid},
      {5, 0, kNaN, Id::kMatrixLacksValidCases},
      {5, 0, kCode, Id::kMatrixLacksValidCases},
      {5, 0, Below(1, 1), Id::kMatrixLacksValidCases},
      {5, 0, 1, kValid},
      {5, 1, kNaN, kValid},
      {6, 0, 2, Id::kMatrixOfOtherType},
      {6, 0, 3, Id::kMatrixOfOtherType},
      {6, 0, 5, Id::kNotAMatrixFile},
      {6, 0, kNaN, Id::kNotAMatrixFile},
      {6, 0, Above(1, 15), kValid},
      {6, 0, Above(1, 16), Id::kNotAMatrixFile},
      {6, 1, 2, kValid},
  };
  for (const auto& row : rows) {
    const auto sheet = *MakeMatrixFile(Sample());
    for (std::size_t c = 0; c < 3; ++c) sheet->VariableAt(c).SetMissingCode(kCode);
    sheet->VariableAt(row.column).MutableValues()[row.row] = row.value;
    EXPECT_TRUE(FaultOf(*sheet) == row.fault) << row.value << " at " << row.row << ',' << row.column;
    EXPECT_EQ(IsMatrixFile(*sheet), !row.fault);
  }
}

TEST(MatrixFile, FirstFaultInTheOrderOfChecksDecides) {
  const auto sheet = *MakeMatrixFile(Sample());
  const auto values = sheet->VariableAt(0).MutableValues();
  const struct {
    std::size_t row;
    Id fault;
  } faults[] = {{5, Id::kMatrixLacksValidCases},
                {4, Id::kMatrixLacksStandardDeviation},
                {3, Id::kMatrixLacksMean},
                {1, Id::kMatrixLacksCorrelation}};
  for (const auto& fault : faults) {
    values[fault.row] = kNaN;
    EXPECT_TRUE(FaultOf(*sheet) == fault.fault) << fault.row;
  }
  values[6] = 5;
  EXPECT_TRUE(FaultOf(*sheet) == Id::kNotAMatrixFile);
  values[6] = 2;
  EXPECT_TRUE(FaultOf(*sheet) == Id::kMatrixOfOtherType);
  sheet->SetKind(SheetKind::kData);
  EXPECT_TRUE(FaultOf(*sheet) == Id::kNotAMatrixFile);
}

TEST(MatrixFile, MissingCasesAreFoundBeforeTheTypeButAfterOtherTypes) {
  for (const auto& [type, fault] :
       {std::pair{1.0, Id::kMatrixLacksCases}, {5.0, Id::kMatrixLacksCases}, {2.0, Id::kMatrixOfOtherType}}) {
    Spreadsheet sheet("m", 6, 3);
    sheet.SetKind(SheetKind::kMatrix);
    sheet.VariableAt(0).MutableValues()[5] = type;
    EXPECT_TRUE(FaultOf(sheet) == fault) << type;
  }
}

// Further cases come between the matrix and its summaries, which are the last rows.
TEST(MatrixFile, SummariesAreTheLastRows) {
  MatrixFile file = MatrixFile::Identity({"a", "b"});
  const auto made = *MakeMatrixFile(file);
  Spreadsheet sheet("m", 8, 2);
  sheet.SetKind(SheetKind::kMatrix);
  for (std::size_t c = 0; c < 2; ++c) {
    sheet.VariableAt(c).MutableValues()[c] = 1;
    sheet.VariableAt(c).MutableValues()[4] = 6;
    sheet.VariableAt(c).MutableValues()[5] = 7;
  }
  sheet.VariableAt(0).MutableValues()[6] = 12.9;
  sheet.VariableAt(0).MutableValues()[7] = 1;
  const Result<MatrixFile> read = ReadMatrixFile(sheet);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->means, (std::vector<double>{6, 6}));
  EXPECT_EQ(read->standardDeviations, (std::vector<double>{7, 7}));
  EXPECT_EQ(read->validCases, 12) << "truncated";
  sheet.VariableAt(0).MutableValues()[6] = 1e300;
  EXPECT_EQ(ReadMatrixFile(sheet)->validCases, std::numeric_limits<std::int32_t>::max());
}

TEST(MatrixFile, DeselectedAndCancelledReadsSaySo) {
  const struct {
    std::size_t deselected;
    std::optional<Id> fault;
  } rows[] = {
      {0, {}},
      {3, Id::kMatrixMeansDeselected},
      {4, Id::kMatrixDeviationsDeselected},
      {5, Id::kMatrixDeviationsDeselected},
      {6, {}},
  };
  const auto sheet = *MakeMatrixFile(Sample());
  for (const auto& row : rows) {
    CaseSelection selection{true, "some", std::vector<std::uint8_t>(7, 1)};
    selection.accepted[row.deselected] = 0;
    sheet->SetSelection(selection);
    EXPECT_TRUE(FaultOf(*sheet) == row.fault) << row.deselected;
    EXPECT_TRUE(ReadMatrixFile(*sheet, {.useCaseSelection = false, .isCancelled = {}}));
    EXPECT_TRUE(IsMatrixFile(*sheet));
  }
  sheet->SetSelection({});
  for (const int pollsBefore : {0, 1, 2}) {
    int polls = 0;
    const Result<MatrixFile> read = ReadMatrixFile(
        *sheet, {.useCaseSelection = true, .isCancelled = [&] { return polls++ == pollsBefore; }});
    ASSERT_EQ(static_cast<bool>(read), pollsBefore == 2);
    if (read) continue;
    EXPECT_EQ(read.Reason().identifier, Id::kMatrixReadingCancelled);
  }
}

TEST(MatrixFile, TitleIsCutAtItsFieldAndStaysText) {
  const std::string eighty(80, 'x');
  EXPECT_EQ((*MakeMatrixFile(Sample(), eighty))->Title(), eighty);
  EXPECT_EQ((*MakeMatrixFile(Sample(), eighty + "y"))->Title(), eighty);
  const std::string accent = "\u00e9";
  const std::string cut = (*MakeMatrixFile(Sample(), eighty.substr(1) + accent))->Title();
  EXPECT_EQ(cut, eighty.substr(1));
  EXPECT_TRUE(IsText(cut));
}

TEST(MatrixFile, ValuesThatDoNotMatchAreNotWritten) {
  const std::vector<std::function<void(MatrixFile&)>> damages{
      [](MatrixFile& f) { f = MatrixFile::Identity({}); },
      [](MatrixFile& f) { f.SetCorrelations(std::vector<double>(8)); },
      [](MatrixFile& f) { f.SetCorrelations(std::vector<double>(12)); },
      [](MatrixFile& f) { f.correlations.pop_back(); },
      [](MatrixFile& f) { f.correlations[1].push_back(0); },
      [](MatrixFile& f) { f.means.pop_back(); },
      [](MatrixFile& f) { f.standardDeviations.push_back(0); },
      [](MatrixFile& f) { f.variables.pop_back(); },
      [](MatrixFile& f) { f.variables.clear(); }};
  for (const auto& damage : damages) {
    MatrixFile file = Sample();
    damage(file);
    const auto made = MakeMatrixFile(file);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.Reason().identifier, Id::kMatrixSizesDiffer);
  }
}

TEST(MatrixFile, BlanksAroundNamesOfVariablesAreDropped) {
  const auto sheet = *MakeMatrixFile(Sample());
  sheet->VariableAt(1).SetName("  b 2\t");
  EXPECT_EQ(ReadMatrixFile(*sheet)->variables, (std::vector<std::string>{"a", "b 2", "c"}));
}

// What the fits write: correlations of data, of which a constant variable has none.
TEST(MatrixFile, CorrelationsOfDataAreReadBackUnlessOneIsMissing) {
  const std::vector<double> data{1, 2, 5, 2, 1, 5, 3, 5, 5, 4, 4, 5};
  std::vector<double> correlation(9);
  PearsonCorrelation(data, 4, 3, correlation);
  MatrixFile file = MatrixFile::Identity({"x", "y", "constant"});
  file.SetCorrelations(correlation);
  EXPECT_TRUE(FaultOf(**MakeMatrixFile(file)) == Id::kMatrixLacksCorrelation);
  file = MatrixFile::Identity({"x", "y"});
  file.SetCorrelations(std::vector<double>{correlation[0], correlation[1], correlation[3], correlation[4]});
  const Result<MatrixFile> read = ReadMatrixFile(**MakeMatrixFile(file));
  ASSERT_TRUE(read);
  EXPECT_TRUE(IsSymmetricCorrelationMatrix(read->correlations));
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
