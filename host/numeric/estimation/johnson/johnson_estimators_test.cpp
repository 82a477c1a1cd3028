#include "host/numeric/estimation/johnson/johnson_estimators.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "host/numeric/estimation/estimation_support_test.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {
namespace {

struct Fit {
  JohnsonEstimate parameters{};
  Ended error = kNone;

  JohnsonFamily Family() const { return static_cast<JohnsonFamily>(static_cast<int>(parameters[0])); }

  // The value whose standard normal deviate is z.
  double ValueAt(double z) const {
    const double t = (z - parameters[1]) / parameters[2];
    const double lambda = parameters[3];
    const double xi = parameters[4];
    switch (Family()) {
      case JohnsonFamily::kLognormal:
        return xi + lambda * std::exp(t);
      case JohnsonFamily::kUnbounded:
        return xi + lambda * std::sinh(t);
      case JohnsonFamily::kBounded:
        return xi + lambda / (1.0 + std::exp(-t));
      case JohnsonFamily::kNormal:
        return xi + lambda * t;
    }
    return 0.0;
  }
};

Fit Of(const EstimationResult<JohnsonEstimate>& result) {
  return result ? Fit{*result, kNone} : Fit{{}, EndOf(result)};
}

Fit FitMoments(double mean, double deviation, double skewness, double kurtosis) {
  return Of(EstimateJohnsonByMoments(mean, deviation, skewness, kurtosis));
}

Fit FitPercentiles(const std::vector<double>& sorted, double spacing = -1.0) {
  return Of(EstimateJohnsonByPercentiles(sorted, spacing));
}

// Mean, standard deviation, skewness, excess kurtosis by the midpoint rule, far into the tail.
std::vector<double> MomentsOf(const Fit& fit) {
  constexpr double kStep = 1e-3;
  double sums[5] = {};
  const double origin = fit.ValueAt(0.0);
  for (double z = -30.0; z < 30.0; z += kStep) {
    const double weight = std::exp(-0.5 * z * z) * kInverseSqrtTwoPi * kStep;
    double power = weight;
    for (double& sum : sums) {
      sum += power;
      power *= fit.ValueAt(z) - origin;
    }
  }
  const double m = sums[1];
  const double m2 = sums[2] - m * m;
  const double m3 = sums[3] - 3 * m * sums[2] + 2 * m * m * m;
  const double m4 = sums[4] - 4 * m * sums[3] + 6 * m * m * sums[2] - 3 * m * m * m * m;
  return {m + origin, std::sqrt(m2), m3 / std::pow(m2, 1.5), m4 / (m2 * m2) - 3.0};
}

struct MomentCase {
  double skewness;
  double kurtosis;
  JohnsonFamily family;
};

TEST(JohnsonMoments, MemberHasTheMomentsAskedFor) {
  using enum JohnsonFamily;
  const std::vector<MomentCase> cases = {
      {0.0, 0.0, kNormal},     {0.0, 1.0, kUnbounded},  {0.0, 12.0, kUnbounded},  {0.7, 3.0, kUnbounded},
      {-0.7, 3.0, kUnbounded}, {2.0, 15.0, kUnbounded}, {0.0, -0.3, kBounded},    {0.0, -1.2, kBounded},
      {0.0, -1.9, kBounded},   {0.6, -0.5, kBounded},   {-0.6, -0.5, kBounded},   {1.5, 2.0, kBounded},
      {2.0, 5.0, kBounded},    {1e-3, -1e-3, kBounded}, {1e-3, 1e-3, kUnbounded}, {-2.5, 5.0, kBounded},
      {0.5, -1.7, kBounded},   {0.01, -0.01, kBounded}, {30.0, 941.0, kBounded},  {5.0, 24.0, kBounded}};
  for (const MomentCase& row : cases) {
    SCOPED_TRACE(::testing::Message() << row.skewness << ' ' << row.kurtosis);
    const Fit fit = FitMoments(7.0, 0.5, row.skewness, row.kurtosis);
    ASSERT_EQ(fit.error, kNone);
    EXPECT_EQ(fit.Family(), row.family);
    EXPECT_GT(fit.parameters[2], 0.0);
    EXPECT_GT(fit.parameters[3], 0.0);
    const std::vector<double> moments = MomentsOf(fit);
    EXPECT_NEAR(moments[0], 7.0, 1e-7);
    EXPECT_NEAR(moments[1], 0.5, 1e-7);
    EXPECT_NEAR(moments[2], row.skewness, 1e-5 * std::max(1.0, std::abs(row.skewness)));
    EXPECT_NEAR(moments[3], row.kurtosis, 1e-5 * std::max(1.0, row.kurtosis));
  }
}

TEST(JohnsonMoments, LognormalLineGivesLognormalOrTheMemberBesideItsMirrorImage) {
  for (const double omega : {1.01, 1.2, 1.5}) {
    const double skewness = std::sqrt(omega - 1.0) * (omega + 2.0);
    const double kurtosis = std::pow(omega, 4) + 2 * std::pow(omega, 3) + 3 * omega * omega - 6.0;
    const Fit above = FitMoments(3.0, 2.0, skewness, kurtosis);
    EXPECT_EQ(above.Family(), JohnsonFamily::kLognormal);
    EXPECT_EQ(above.parameters[3], 1.0);
    EXPECT_NEAR(above.parameters[2], 1.0 / std::sqrt(std::log(omega)), 1e-9);
    const Fit below = FitMoments(3.0, 2.0, -skewness, kurtosis);
    EXPECT_EQ(below.Family(), JohnsonFamily::kUnbounded);
    for (const Fit& fit : {above, below}) {
      const std::vector<double> moments = MomentsOf(fit);
      EXPECT_NEAR(moments[0], 3.0, 1e-6);
      EXPECT_NEAR(moments[1], 2.0, 1e-6);
      EXPECT_NEAR(std::abs(moments[2]), skewness, 1e-4);
      EXPECT_NEAR(moments[3], kurtosis, 1e-4 * kurtosis);
    }
  }
}

TEST(JohnsonMoments, FollowScaleAndShiftInEveryFamily) {
  const double line = std::pow(1.2, 4) + 2 * std::pow(1.2, 3) + 3 * 1.44 - 6.0;
  const std::vector<std::vector<double>> shapes = {
      {0.0, 0.0}, {0.5, 3.0}, {0.5, -0.5}, {std::sqrt(0.2) * 3.2, line}};
  for (const std::vector<double>& shape : shapes) {
    const Fit plain = FitMoments(0.0, 1.0, shape[0], shape[1]);
    for (const double scale : {1e-9, 1e9}) {
      const Fit fit = FitMoments(1e6 * scale, scale, shape[0], shape[1]);
      EXPECT_EQ(fit.parameters[0], plain.parameters[0]);
      for (const double z : {-2.0, 0.0, 1.0}) {
        EXPECT_NEAR(fit.ValueAt(z) / scale - 1e6, plain.ValueAt(z), 1e-8);
      }
    }
  }
}

TEST(JohnsonMoments, NameWhatIsWrong) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  using enum EstimationFault;
  EXPECT_EQ(FitMoments(nan, 1.0, 0.0, 0.0).error, kNotFinite);
  EXPECT_EQ(FitMoments(0.0, 0.0, 0.0, 0.0).error, kNoSpread);
  EXPECT_EQ(FitMoments(0.0, 1.0, 0.0, -2.0).error, kNoSolution);  // two points
  const Fit impossible = FitMoments(0.0, 1.0, 2.0, 1.0);
  EXPECT_EQ(impossible.error, kNoSolution);
  EXPECT_EQ(EstimateJohnsonByMoments(0.0, 1.0, 2.5, 1.25).Reason(),
            (Fault{kNoSolution, "2.5", "1.25"}));  // the moments that no member has
}

// The four percentiles that the method reads, placed exactly: n = 1000 values of the member itself.
std::vector<double> SampleOf(const Fit& member) {
  constexpr int kCount = 4000;
  std::vector<double> values;
  for (int i = 1; i <= kCount; ++i) {
    const double p = (i - 0.5) / kCount;
    const double z = StandardNormalQuantile(p);
    values.push_back(member.ValueAt(z));
  }
  return values;
}

TEST(JohnsonPercentiles, FindTheMemberThatTheSampleFollows) {
  const std::vector<Fit> members = {{{2, -0.8, 1.5, 3.0, 10.0}}, {{2, 0.4, 0.9, 1.0, -2.0}},
                                    {{3, 0.7, 1.2, 5.0, 1.0}},   {{3, -0.3, 0.6, 2.0, 0.0}},
                                    {{1, 0.5, 1.8, 1.0, 4.0}},   {{4, -3.0, 2.0, 1.0, 0.0}}};
  for (const Fit& member : members) {
    const std::vector<double> data = SampleOf(member);
    for (const double spacing : {0.524, -1.0}) {
      const Fit fit = FitPercentiles(data, spacing);
      ASSERT_EQ(fit.error, kNone);
      EXPECT_EQ(fit.parameters[0], member.parameters[0])
          << member.parameters[0] << ' ' << member.parameters[1];
      for (const double z : {-1.5, -0.5, 0.0, 0.5, 1.5}) {
        const double spread = member.ValueAt(1.0) - member.ValueAt(-1.0);
        EXPECT_NEAR(fit.ValueAt(z), member.ValueAt(z), 2e-3 * spread) << member.parameters[0] << ' ' << z;
      }
    }
  }
}

TEST(JohnsonPercentiles, LognormalWithItsTailBelowIsStillFitted) {
  const Fit member{{1, 0.5, 1.8, 1.0, 4.0}};
  std::vector<double> data = SampleOf(member);
  for (double& x : data) x = -x;
  std::reverse(data.begin(), data.end());
  const Fit fit = FitPercentiles(data, 0.524);
  ASSERT_EQ(fit.error, kNone);
  EXPECT_NE(fit.Family(), JohnsonFamily::kLognormal);
  EXPECT_GT(fit.parameters[3], 0.0);
  EXPECT_NEAR(fit.ValueAt(0.5), -member.ValueAt(-0.5), 2e-3);
  EXPECT_NEAR(fit.ValueAt(-1.5), -member.ValueAt(1.5), 2e-2);
}

TEST(JohnsonPercentiles, FollowScaleAndShift) {
  const std::vector<double> base = SampleOf({{2, -0.8, 1.5, 3.0, 10.0}});
  const Fit plain = FitPercentiles(base);
  for (const double shift : {0.0, 1e6}) {
    for (const double scale : {1e-9, 1e9}) {
      std::vector<double> moved = base;
      for (double& x : moved) x = (x + shift) * scale;
      const Fit fit = FitPercentiles(moved);
      EXPECT_NEAR(fit.ValueAt(1.0) / scale - shift, plain.ValueAt(1.0), 1e-7);
      EXPECT_NEAR(fit.parameters[2], plain.parameters[2], 1e-6);
    }
  }
}

TEST(JohnsonPercentiles, NameWhatIsWrong) {
  using enum EstimationFault;
  const std::vector<double> good = {1, 2, 3.5, 4, 4.5, 6, 8, 11, 12, 19};
  EXPECT_EQ(FitPercentiles(good).error, kNone);
  EXPECT_EQ(FitPercentiles(good, 1.0).error, kInvalidArgument);  // beyond the extremes
  EXPECT_EQ(FitPercentiles({1, 2, 3, 4, 5, 6, 7}).error, kTooFewValues);
  EXPECT_EQ(FitPercentiles({2, 1, 3, 4, 5, 6, 7, 8}).error, kInvalidArgument);  // not sorted
  EXPECT_EQ(FitPercentiles(std::vector<double>(20, 3.0)).error, kEqualPercentiles);
  EXPECT_EQ(FitPercentiles({1, 2, 3, 4, 5, 6, 7, INFINITY}).error, kNotFinite);
  std::vector<double> tied(30, 5.0);
  tied.front() = 4.0;
  tied.back() = 6.0;
  EXPECT_EQ(FitPercentiles(tied).error, kEqualPercentiles);
}

}  // namespace
}  // namespace brenvolt
