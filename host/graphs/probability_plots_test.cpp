#include "host/graphs/probability_plots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/base/error.h"
#include "host/numeric/distributions/normal.h"

namespace brenvolt {
namespace {

const GraphTexts kTexts{"Title", "X", "Y", "Observed", "Reference"};

const ArrayFunction kNormalCdf = [](std::span<const double> x, std::span<double> p) {
  Distribution<Normal>(0, 1).Cdf(x, p);
};
const ArrayFunction kNormalQuantile = [](std::span<const double> p, std::span<double> x) {
  Distribution<Normal>(0, 1).Quantile(p, x);
};
const ArrayFunction kInvalidCdf = [](std::span<const double> x, std::span<double> p) {
  Distribution<Normal>(0, -1).Cdf(x, p);
};
const ArrayFunction kInvalidNormalQuantile = [](std::span<const double> p, std::span<double> x) {
  Distribution<Normal>(0, -1).Quantile(p, x);
};

// References: SciPy 1.10, norm.cdf and norm.ppf.
TEST(ProbabilityPlots, PointsAreAtThePlottingPositionsOfHazen) {
  const std::vector<double> sorted{-1, 0.5, 0.5, 2};
  const std::vector<double> positions{0.125, 0.375, 0.625, 0.875};
  const std::vector<double> probabilities{0.15865525393145707, 0.6914624612740131, 0.6914624612740131,
                                          0.9772498680518208};
  const std::vector<double> quantiles{-1.1503493803760079, -0.31863936396437514, 0.31863936396437514,
                                      1.1503493803760079};
  const Graph pp = ProbabilityPlot(sorted, kNormalCdf, kTexts);
  const Graph qq = QuantilePlot(sorted, kNormalQuantile, kTexts);
  EXPECT_EQ(pp.series[0].y, positions);
  EXPECT_EQ(qq.series[0].y, sorted);
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    EXPECT_NEAR(pp.series[0].x[i], probabilities[i], 1e-15);
    EXPECT_NEAR(qq.series[0].x[i], quantiles[i], 1e-14);
  }
  EXPECT_EQ(pp.series[1].x, (std::vector<double>{0, 1}));
  EXPECT_EQ(pp.series[1].y, pp.series[1].x);
  // The reference line of quantiles reaches over both samples.
  EXPECT_EQ(qq.series[1].x, (std::vector<double>{qq.series[0].x[0], 2}));
  EXPECT_EQ(qq.series[1].y, qq.series[1].x);
  EXPECT_TRUE(pp.notes.empty() && qq.notes.empty());
}

TEST(ProbabilityPlots, InvalidDistributionsAndSamplesAreRefused) {
  const std::vector<double> sorted{-1, 2};
  const std::vector<double> unsorted{2, -1};
  EXPECT_THROW(ProbabilityPlot(sorted, kInvalidCdf, kTexts), Error);
  EXPECT_THROW(QuantilePlot(sorted, kInvalidNormalQuantile, kTexts), Error);
  EXPECT_THROW(ProbabilityPlot(unsorted, kNormalCdf, kTexts), Error);
  EXPECT_THROW(QuantilePlot({}, kNormalQuantile, kTexts), Error);
  EXPECT_THROW(EmpiricalDistributionPlot(unsorted, {}, kTexts), Error);
}

TEST(ProbabilityPlots, LargeSampleIsThinnedAtItsOwnPositionsAndSaysSo) {
  constexpr std::size_t kCount = 1000000;
  std::vector<double> sorted(kCount);
  for (std::size_t i = 0; i < kCount; ++i) sorted[i] = (static_cast<double>(i) + 0.5) / kCount;
  // The sample is the quantiles of the uniform distribution at the plotting positions: all points on the
  // line.
  const ArrayFunction identity = [](std::span<const double> in, std::span<double> out) {
    std::ranges::copy(in, out.begin());
  };
  for (const Graph& graph :
       {ProbabilityPlot(sorted, identity, kTexts), QuantilePlot(sorted, identity, kTexts)}) {
    const GraphSeries& points = graph.series[0];
    EXPECT_LE(points.x.size(), 2600U);
    EXPECT_EQ(points.x, points.y);
    EXPECT_EQ(points.x.front(), sorted.front());
    EXPECT_EQ(points.x.back(), sorted.back());
    ASSERT_EQ(graph.notes.size(), 1U);
    EXPECT_EQ(graph.notes[0], std::to_string(points.x.size()) + " of 1000000 points are shown");
  }
}

TEST(EmpiricalDistribution, TiesMakeOneStepOfTheirNumber) {
  const std::vector<double> sorted{1, 2, 2, 2, 5};
  const GraphCurve open{"Fit", "=1*1*iNormal(x,2,1)", 0, 0, false};
  const GraphCurve ranged{"Fit", "=1*1*iNormal(x,2,1)", -1, 9, false};
  const Graph graph = EmpiricalDistributionPlot(sorted, std::vector{open, ranged}, kTexts);
  EXPECT_EQ(graph.series[0].x, (std::vector<double>{1, 2, 5}));
  EXPECT_EQ(graph.series[0].y, (std::vector<double>{0.2, 0.8, 1}));
  EXPECT_EQ(graph.curves[0].from, 1);
  EXPECT_EQ(graph.curves[0].to, 5);
  EXPECT_EQ(graph.curves[1].to, 9);
}

TEST(EmpiricalDistribution, ThinningKeepsWholeTies) {
  std::vector<double> sorted(10000, 7.0);
  for (std::size_t i = 0; i < 4000; ++i) sorted[i] = static_cast<double>(i) / 1000;
  const Graph graph = EmpiricalDistributionPlot(sorted, {}, kTexts);
  const GraphSeries& steps = graph.series[0];
  EXPECT_EQ(steps.x.back(), 7);
  EXPECT_EQ(steps.y.back(), 1);
  for (std::size_t i = 0; i + 1 < steps.x.size(); ++i) {
    ASSERT_NEAR(steps.y[i], (1000 * steps.x[i] + 1) / 10000, 1e-12);
  }
}

}  // namespace
}  // namespace brenvolt
