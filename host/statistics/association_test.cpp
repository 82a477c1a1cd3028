#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "host/statistics/correlation_tests.h"
#include "host/statistics/equal_count_classes.h"
#include "host/statistics/sensitivity.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();

using Columns = std::map<std::string, std::vector<double>>;

Columns AirQuality() {
  const Spreadsheet sheet = ReadCsv(BRENVOLT_SOURCE_DIR "/host/statistics/reference/airquality.csv");
  Columns columns;
  for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
    const Variable& variable = sheet.VariableAt(v);
    std::vector<double>& column = columns[variable.Name()];
    for (std::size_t i = 0; i < variable.Size(); ++i) {
      column.push_back(variable.IsMissing(i) ? kNan : variable.Values()[i]);
    }
  }
  return columns;
}

CorrelationTest Pearson(std::span<const double> x, std::span<const double> y) {
  return AnalyseSensitivity(y, std::array{x}).rows.front().linear;
}

// R 4.2: cor.test of real data with missing values.
TEST(CorrelationTestsReference, CoefficientsAndPValuesAgreeWithR) {
  struct Row {
    const char* name;
    std::int64_t count;
    double pearson, pearsonP, spearman, spearmanP;
  };
  const Row rows[] = {
#include "host/statistics/reference/associations.inc"
  };
  Columns data = AirQuality();
  for (const Row& r : rows) {
    const CorrelationTest pearson = Pearson(data[r.name], data["Ozone"]);
    const CorrelationTest spearman = SpearmanTest(data[r.name], data["Ozone"]);
    EXPECT_EQ(pearson.count, r.count) << r.name;
    EXPECT_NEAR(pearson.coefficient, r.pearson, 1e-14) << r.name;
    EXPECT_NEAR(pearson.pValue, r.pearsonP, 1e-10 * r.pearsonP) << r.name;
    EXPECT_NEAR(spearman.coefficient, r.spearman, 1e-14) << r.name;
    EXPECT_NEAR(spearman.pValue, r.spearmanP, 1e-10 * r.spearmanP) << r.name;
  }
}

TEST(CorrelationTests, WithoutVariationThereIsNoCoefficient) {
  const std::vector<double> x{1, 2, 3};
  EXPECT_TRUE(IsNotSet(Pearson(x, std::vector<double>{4, 4, 4}).coefficient));
  EXPECT_TRUE(IsNotSet(SpearmanTest(x, std::vector<double>{kNan, kNan, 4}).coefficient));
  EXPECT_TRUE(IsNotSet(SpearmanTest({}, {}).coefficient));
  const CorrelationTest two = Pearson(x, std::vector<double>{4, kNan, 5});
  EXPECT_NEAR(two.coefficient, 1, 1e-15);
  EXPECT_TRUE(IsNotSet(two.pValue));
  const CorrelationTest line = Pearson(x, std::vector<double>{-1, -2, -3});
  EXPECT_NEAR(line.coefficient, -1, 1e-15);
  EXPECT_LT(line.pValue, 1e-7);
}

// R 4.2 over the complete cases: ranks, lm of the standardized variables, adjusted R squared of two classes.
TEST(SensitivityReference, MeasuresAgreeWithR) {
  struct Row {
    const char* name;
    double rank, coefficient, firstOrder;
  };
  const Row rows[] = {
#include "host/statistics/reference/sensitivity.inc"
  };
  Columns data = AirQuality();
  const std::vector<std::span<const double>> predictors{data["Solar.R"], data["Wind"], data["Temp"]};
  const SensitivityTable table = AnalyseSensitivity(data["Ozone"], predictors);
  EXPECT_EQ(table.count, 111);
  EXPECT_NEAR(table.rSquared, 0.60589460000662243, 1e-13);
  ASSERT_EQ(table.rows.size(), 3U);
  double total = 0;
  for (const SensitivityRow& row : table.rows) {
    const Row& r = rows[row.predictor];
    EXPECT_NEAR(row.rank.coefficient, r.rank, 1e-14) << r.name;
    EXPECT_NEAR(row.standardizedCoefficient, r.coefficient, 1e-13) << r.name;
    EXPECT_NEAR(row.firstOrder, r.firstOrder, 1e-12) << r.name;
    total += row.rankContribution;
  }
  EXPECT_NEAR(total, 1, 1e-15);
  EXPECT_EQ(table.rows[0].predictor, 2U);
  EXPECT_EQ(table.rows[1].predictor, 1U);
  EXPECT_EQ(table.rows[2].predictor, 0U);
}

// y = 3 a + 2 b + 6 c^2, and nothing of d, for independent uniform predictors on (-1/2, 1/2).
struct Model {
  std::vector<double> a, b, c, d, y;
  explicit Model(std::size_t n) {
    // Independent by their incommensurable steps (Kronecker sequences).
    const auto uniform = [](std::size_t i, double step) {
      const double x = static_cast<double>(i + 1) * step;
      return x - std::floor(x);
    };
    const double steps[] = {std::sqrt(2.0), std::sqrt(3.0), std::sqrt(5.0), std::sqrt(7.0)};
    for (std::size_t i = 0; i < n; ++i) {
      a.push_back(uniform(i, steps[0]) - 0.5);
      b.push_back(uniform(i, steps[1]) - 0.5);
      c.push_back(uniform(i, steps[2]) - 0.5);
      d.push_back(uniform(i, steps[3]) - 0.5);
      y.push_back(3 * a[i] + 2 * b[i] + 6 * c[i] * c[i]);
    }
  }
};

TEST(Sensitivity, FirstOrderSeesTheDriverThatRanksMiss) {
  const Model m(20000);
  const std::vector<std::span<const double>> predictors{m.d, m.b, m.c, m.a};
  const SensitivityTable table = AnalyseSensitivity(m.y, predictors);
  EXPECT_EQ(table.rows[0].predictor, 3U);
  EXPECT_EQ(table.rows[1].predictor, 1U);
  // The variances of the three terms.
  const double total = 9.0 / 12 + 4.0 / 12 + 36.0 / 180;
  for (const SensitivityRow& row : table.rows) {
    const double share[] = {0, 4.0 / 12 / total, 36.0 / 180 / total, 9.0 / 12 / total};
    EXPECT_NEAR(row.firstOrder, share[row.predictor], 0.01) << row.predictor;
    const double linear = row.predictor == 2 ? 0 : share[row.predictor];
    EXPECT_NEAR(row.linearContribution, linear, 0.01) << row.predictor;
  }
  EXPECT_NEAR(table.rSquared, (9.0 / 12 + 4.0 / 12) / total, 0.01);
}

TEST(Sensitivity, DegenerateColumnsLeaveTheOthersTheirMeasures) {
  const Model m(500);
  const std::vector<double> constant(500, 7.0);
  std::vector<double> copy = m.a;
  for (double& x : copy) x = 2 * x + 1;
  const std::vector<std::span<const double>> withConstant{constant, m.a, m.b};
  const SensitivityTable table = AnalyseSensitivity(m.y, withConstant);
  EXPECT_EQ(table.rows.back().predictor, 0U);
  EXPECT_EQ(table.rows.back().rankContribution, 0);
  EXPECT_TRUE(IsNotSet(table.rows.back().standardizedCoefficient));
  EXPECT_FALSE(IsNotSet(table.rows.front().standardizedCoefficient));
  const std::vector<double> nothing(500, std::numeric_limits<double>::quiet_NaN());
  const std::vector<std::span<const double>> withNothing{nothing, m.a, m.b};
  const SensitivityTable others = AnalyseSensitivity(m.y, withNothing);
  EXPECT_EQ(others.count, 500);
  EXPECT_EQ(others.rSquared, table.rSquared);
  EXPECT_EQ(others.rows.front().rank.coefficient, table.rows.front().rank.coefficient);
  EXPECT_TRUE(IsNotSet(others.rows.back().rank.coefficient));
  const std::vector<std::span<const double>> collinear{m.a, copy, m.b};
  const SensitivityTable twins = AnalyseSensitivity(m.y, collinear);
  EXPECT_TRUE(IsNotSet(twins.rSquared));
  EXPECT_EQ(twins.rows[0].predictor, 0U);
  EXPECT_EQ(twins.rows[0].rankContribution, twins.rows[1].rankContribution);
  EXPECT_TRUE(IsNotSet(twins.rows[0].standardizedCoefficient));
  const std::vector<double> none(500, kNan);
  const SensitivityTable empty = AnalyseSensitivity(none, withConstant);
  EXPECT_EQ(empty.count, 0);
  for (const SensitivityRow& row : empty.rows) EXPECT_TRUE(IsNotSet(row.rankContribution));
}

TEST(EqualCountClasses, TiesStayTogetherAndNoClassIsEmpty) {
  struct Case {
    std::vector<double> sorted;
    std::size_t classes;
    std::vector<std::size_t> ends;
  };
  const Case cases[] = {{{1, 2, 3, 4, 5, 6, 7}, 3, {2, 4, 7}},
                        {{1, 1, 1, 1, 1, 2, 3}, 3, {5, 7}},
                        {{0, 0, 0, 1, 1, 1}, 20, {3, 6}},
                        {{5, 5, 5}, 4, {3}},
                        {{1, 2}, 5, {1, 2}},
                        {{}, 5, {}},
                        {{1, 2, 2, 2, 2, 3}, 2, {5, 6}}};
  for (const Case& c : cases) {
    const auto classes = EqualCountClasses(c.sorted, c.classes);
    ASSERT_EQ(classes.size(), c.ends.size()) << c.sorted.size();
    std::size_t begin = 0;
    for (std::size_t i = 0; i < classes.size(); ++i) {
      EXPECT_EQ(classes[i].begin, begin);
      EXPECT_EQ(classes[i].end, c.ends[i]);
      EXPECT_EQ(classes[i].minimum, c.sorted[begin]);
      EXPECT_EQ(classes[i].maximum, c.sorted[classes[i].end - 1]);
      begin = classes[i].end;
    }
  }
}

TEST(SpearmanMatrix, HasWhatTheTestOfEachPairHas) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<double> x{1, 5, 3, 3, 9, 2};
  const std::vector<double> y{2, 4, 4, 1, 7, 7};
  const std::vector<double> gaps{2, kNan, 4, 1, 7, 6};
  const std::vector<double> constant(6, 1);
  for (const auto& third : {constant, gaps}) {
    const std::vector<std::span<const double>> columns{x, y, third};
    const std::vector<double> matrix = SpearmanMatrix(columns);
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        const double expected = SpearmanTest(columns[i], columns[j]).coefficient;
        if (IsNotSet(expected)) continue;
        EXPECT_EQ(matrix[i * 3 + j], matrix[j * 3 + i]) << i << j;
        EXPECT_NEAR(matrix[i * 3 + j], expected, 1e-15) << i << j;
      }
    }
  }
  EXPECT_TRUE(std::isnan(SpearmanMatrix(std::vector<std::span<const double>>{x, constant})[1]));
}

}  // namespace
}  // namespace brenvolt
