#include "brv_sra/profiler/defect_profile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>
#include <vector>

namespace brenvolt::sra {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
TEST(DefectProfile, CountsSaturateAtSixteenBitsAndKeepTheExactCount) {
  for (const auto& [runs, defects, count] : {std::tuple{5000, 50, 50},
                                             {5000, 0, 0},
                                             {100000, 32767, 32767},
                                             {100000, 32768, 32767},
                                             {100000, 80000, 32767}}) {
    std::vector<double> values(static_cast<std::size_t>(runs), 0.5);
    for (std::size_t i = 0; i < static_cast<std::size_t>(defects); ++i) values[i] = i % 2 == 0 ? 1.5 : -0.5;
    const std::vector<ProfiledResponse> responses{{"Yield", values, {0, 1, kNan}}};
    const DefectCounts counts = CountDefects(responses);
    EXPECT_EQ(counts.counts, std::vector<std::int16_t>(2, static_cast<std::int16_t>(count))) << defects;
    EXPECT_EQ(counts.exact, (std::vector<std::int64_t>{defects, defects}));
  }
}

TEST(DefectProfile, OverallCountsARunOnceAndOnlyValidSpecificationsTakePart) {
  const std::vector<double> a{2, 2, 0.5, 0.5, kNan, kNan};
  const std::vector<double> b{2, 0.5, 0.5, -1, 2, kNan};
  const std::vector<double> c{9, 9, 9, 9, 9, 9};
  const std::vector<ProfiledResponse> responses{
      {"a", a, {kNan, 1, kNan}}, {"c", c, {1, 0, kNan}}, {"b", b, {0, 1, 0.5}}, {"none", c, {}}};
  const DefectCounts counts = CountDefects(responses);
  EXPECT_EQ(counts.exact, (std::vector<std::int64_t>{2, 0, 3, 0, 4}));
  EXPECT_EQ(counts.runs, (std::vector<std::int64_t>{4, 0, 5, 0, 5}));
}

TEST(DefectProfile, ProfileFollowsThePredictorInClassesOfEqualCount) {
  // y is a defect where x > 0.75; the second predictor has two values, the third is missing at times.
  constexpr std::size_t kRuns = 2000;
  std::vector<double> x, two, gaps, y;
  for (std::size_t i = 0; i < kRuns; ++i) {
    const auto place = static_cast<double>(i * 701 % kRuns);  // every run once, in no order
    x.push_back((place + 0.5) / kRuns);
    two.push_back(i % 4 == 0 ? 1 : 0);
    gaps.push_back(i % 2 == 0 ? kNan : x[i]);
    y.push_back(i % 10 == 3 ? kNan : x[i]);
  }
  const std::vector<ProfiledResponse> responses{{"unlimited", x, {}}, {"y", y, {kNan, 0.75, kNan}}};
  const std::vector<ProfiledPredictor> predictors{{"x", x}, {"two", two}, {"gaps", gaps}};
  const auto profiles = ProfileDefects(responses, predictors, 8);
  ASSERT_EQ(profiles.size(), 3U);
  const auto& byX = profiles[0].classes;
  ASSERT_EQ(byX.size(), 8U);
  std::int64_t runs = 0;
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(byX[i].Rate(), i < 6 ? 0 : 1) << i;
    EXPECT_NEAR(byX[i].median, (static_cast<double>(i) + 0.5) / 8, 1e-3);
    runs += byX[i].runs;
  }
  EXPECT_EQ(runs, static_cast<std::int64_t>(kRuns * 9 / 10));
  ASSERT_EQ(profiles[1].classes.size(), 2U);
  EXPECT_EQ(profiles[1].classes[0].maximum, 0);
  EXPECT_EQ(profiles[1].classes[1].minimum, 1);
  const auto total = [](const DefectProfile& profile) {
    return std::accumulate(profile.classes.begin(), profile.classes.end(), std::int64_t{0},
                           [](std::int64_t sum, const DefectClass& one) { return sum + one.defects; });
  };
  EXPECT_EQ(total(profiles[1]), total(profiles[0]));
  EXPECT_LT(total(profiles[2]), total(profiles[0]));
}

}  // namespace
}  // namespace brenvolt::sra
