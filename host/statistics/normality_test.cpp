#include "host/statistics/normality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

// The plotting positions of R's ppoints, as quantiles of the standard normal distribution, in no order.
std::vector<double> SpreadNormals(std::size_t n) {
  std::vector<double> scores;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t place = (i * 7) % n;
    scores.push_back(StandardNormalQuantile((static_cast<double>(place) + 0.5) / static_cast<double>(n)));
  }
  return scores;
}

TEST(NormalityReference, AgreesWithNortest) {
  struct Row {
    std::string file;
    std::string column;
    std::int64_t count;
    double statistic;
    double pValue;
  };
  const Row rows[] = {
#include "host/statistics/reference/normality.inc"
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.file + " " + row.column);
    std::vector<double> values;
    if (row.file.empty()) {
      values = SpreadNormals(static_cast<std::size_t>(row.count));
    } else {
      const Spreadsheet sheet = ReadCsv(BRENVOLT_SOURCE_DIR "/examples/" + row.file + ".csv");
      const auto column = sheet.VariableAt(sheet.FindVariable(row.column).value()).Values();
      values.assign(column.begin(), column.end());
    }
    values.push_back(std::numeric_limits<double>::quiet_NaN());
    const NormalityTest test = TestNormality(values);
    EXPECT_EQ(test.count, row.count);
    EXPECT_NEAR(test.statistic, row.statistic, 1e-9 * (1 + row.statistic));
    EXPECT_NEAR(test.pValue, row.pValue, 1e-8 * row.pValue + 1e-30);
  }
}

// A test for known parameters rejects next to none of these.
TEST(Normality, RejectsTrueNormalsAtItsLevel) {
  constexpr int kSamples = 4000;
  const RandomStream stream(20261);
  std::uint64_t position = 0;
  for (const std::size_t size : {10U, 30U, 200U}) {
    int rejected = 0;
    std::vector<double> values(size);
    for (int i = 0; i < kSamples; ++i) {
      stream.FillNormal(position, 1.0, values);
      position += size;
      for (double& x : values) x = 1e6 + 1e-3 * x;
      rejected += TestNormality(values).pValue < 0.05 ? 1 : 0;
    }
    EXPECT_GT(rejected, 0.04 * kSamples) << size;
    EXPECT_LT(rejected, 0.06 * kSamples) << size;
  }
}

TEST(Normality, LeavesUnsetWhatSaysNothing) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<double> samples[] = {
      {}, {1, 2, 3, 4, 5, 6, 7}, std::vector<double>(50, 0.1), {1, 2, 3, 4, 5, 6, 7, infinity}};
  for (const auto& sample : samples) EXPECT_TRUE(IsNotSet(TestNormality(sample).pValue)) << sample.size();
}

TEST(Normality, StaysMonotoneFarFromNormal) {
  std::vector<double> values(2000, 0);
  values[0] = 1;
  const double pValue = TestNormality(values).pValue;
  EXPECT_GT(pValue, 0);
  EXPECT_LT(pValue, 1e-23);
}

}  // namespace
}  // namespace brenvolt
