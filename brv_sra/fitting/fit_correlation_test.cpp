// Correlations with the fits: which cases count, and a file that stays valid whatever the data.
#include "brv_sra/fitting/fit_correlation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace brenvolt::sra {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

Spreadsheet SheetOf(const std::vector<std::vector<double>>& columns) {
  Spreadsheet sheet("data", columns[0].size(), columns.size());
  for (std::size_t v = 0; v < columns.size(); ++v) sheet.VariableAt(v).AssignValues(columns[v]);
  return sheet;
}

FitCorrelations Correlate(const Spreadsheet& sheet, const std::vector<int>& variables,
                          bool casewise = false) {
  CaseSet cases = *AcceptedCases(sheet, true, true);
  std::vector<std::int16_t> numbers(variables.begin(), variables.end());
  if (casewise) DropIncompleteCases(sheet, numbers, cases);
  return CorrelateVariables(sheet, variables, cases);
}

bool IsReadable(const FitCorrelations& correlations) {
  return static_cast<bool>(ReadMatrixFile(**MakeMatrixFile(correlations.file)));
}

// Anscombe (1973), the first and the third set: published mean 9 and 7.50, correlation 0.816.
const std::vector<double> kX{10, 8, 13, 9, 11, 14, 6, 4, 12, 7, 5};
const std::vector<double> kY1{8.04, 6.95, 7.58, 8.81, 8.33, 9.96, 7.24, 4.26, 10.84, 4.82, 5.68};
const std::vector<double> kY3{7.46, 6.77, 12.74, 7.11, 7.81, 8.84, 6.08, 5.39, 8.15, 6.42, 5.73};

TEST(FitCorrelation, PublishedDataKeepTheirOrder) {
  const Spreadsheet sheet = SheetOf({kX, kY1, kY3});
  const FitCorrelations result = Correlate(sheet, {3, 1, 2});
  EXPECT_EQ(result.file.variables, (std::vector<std::string>{"Var3", "Var1", "Var2"}));
  EXPECT_NEAR(result.file.correlations[0][1], 0.8163, 5e-4);
  EXPECT_NEAR(result.file.correlations[1][2], 0.81642, 5e-6);
  EXPECT_DOUBLE_EQ(result.file.means[1], 9);
  EXPECT_NEAR(result.file.standardDeviations[1], std::sqrt(11.0), 1e-14);
  EXPECT_EQ(result.file.validCases, 11);
  EXPECT_TRUE(result.undefined.empty());
  EXPECT_TRUE(IsReadable(result));
}

TEST(FitCorrelation, MissingCasesCountByDeletionMode) {
  std::vector<double> x = kX;
  std::vector<double> y = kY1;
  std::vector<double> z = kY3;
  x[0] = kNone;
  y[1] = y[2] = kNone;
  z[3] = kNone;
  const Spreadsheet sheet = SheetOf({x, y, z});
  const FitCorrelations pairwise = Correlate(sheet, {1, 2, 3});
  const FitCorrelations casewise = Correlate(sheet, {1, 2, 3}, true);
  EXPECT_EQ(pairwise.file.validCases, 8) << "x and y have the fewest in common";
  EXPECT_EQ(casewise.file.validCases, 7);
  EXPECT_DOUBLE_EQ(pairwise.file.means[0], 89.0 / 10);
  EXPECT_DOUBLE_EQ(casewise.file.means[0], 59.0 / 7);
  EXPECT_NE(pairwise.file.correlations[0][1], casewise.file.correlations[0][1]);
}

// A weight is so many copies of its case.
TEST(FitCorrelation, WeightsActAsRepeatedCases) {
  const std::vector<double> weights{2, 1, 3, 1, 1, 0, 2, 1, 1, 4, 1};
  std::vector<double> y = kY1;
  y[4] = kNone;
  Spreadsheet weighted = SheetOf({kX, y, weights});
  weighted.SetWeightVariable(2);
  std::vector<double> repeatedX;
  std::vector<double> repeatedY;
  for (std::size_t i = 0; i < kX.size(); ++i) {
    repeatedX.insert(repeatedX.end(), static_cast<std::size_t>(weights[i]), kX[i]);
    repeatedY.insert(repeatedY.end(), static_cast<std::size_t>(weights[i]), y[i]);
  }
  const FitCorrelations a = Correlate(weighted, {1, 2});
  const FitCorrelations b = Correlate(SheetOf({repeatedX, repeatedY}), {1, 2});
  EXPECT_NEAR(a.file.correlations[0][1], b.file.correlations[0][1], 1e-14);
  EXPECT_NEAR(a.file.means[1], b.file.means[1], 1e-14);
  EXPECT_NEAR(a.file.standardDeviations[1], b.file.standardDeviations[1], 1e-14);
  EXPECT_EQ(a.file.validCases, b.file.validCases);
}

TEST(FitCorrelation, UndefinedOnesLeaveTheFileValid) {
  using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;
  const struct {
    const char* what;
    std::vector<std::vector<double>> columns;
    Pairs undefined;
    std::size_t variables;
  } rows[] = {
      {"a constant", {{1, 2, 4}, {3, 3, 3}, {2, 1, 5}}, {{0, 1}, {1, 2}}, 3},
      {"no common cases", {{1, 2, kNone, kNone}, {kNone, kNone, 4, 5}}, {{0, 1}}, 2},
      {"one common case", {{1, 2, kNone}, {kNone, 4, 5}}, {{0, 1}}, 2},
      {"constant over the common cases", {{1, 1, 7}, {4, 5, kNone}}, {{0, 1}}, 2},
      {"nothing valid", {{1, 2, 4}, {kNone, kNone, kNone}}, {}, 1},
      {"a single value", {{kNone, 2, kNone}}, {}, 1},
  };
  for (const bool weighted : {false, true}) {
    for (const auto& row : rows) {
      Spreadsheet sheet = SheetOf(row.columns);
      std::vector<int> numbers;
      for (std::size_t v = 0; v < row.columns.size(); ++v) numbers.push_back(static_cast<int>(v) + 1);
      if (weighted) {
        Variable weights("w", sheet.CaseCount());
        std::ranges::fill(weights.MutableValues(), 1.0);
        // A last case that is missing everywhere carries the weight that makes the set a weighted one.
        sheet.SetWeightVariable(row.columns.size());
        sheet.AddVariable(std::move(weights));
        sheet.AddCases(1);
        sheet.VariableAt(row.columns.size()).MutableValues().back() = 2;
      }
      const FitCorrelations result = Correlate(sheet, numbers);
      EXPECT_EQ(result.undefined, row.undefined) << row.what;
      EXPECT_EQ(result.file.variables.size(), row.variables) << row.what;
      EXPECT_TRUE(IsReadable(result)) << row.what;
      for (const auto& [a, b] : result.undefined) EXPECT_EQ(result.file.correlations[a][b], 0) << row.what;
    }
  }
}

}  // namespace
}  // namespace brenvolt::sra
