// The graphs of a fit: classes that hold all values, and curves and points that are the distribution's own.
#include "brv_sra/fitting/dialogs/fit_result_graphs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "brv_sra/distributions/specified_distribution.h"
#include "host/base/error.h"
#include "host/formula/curve.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

DistributionFit Fit(DistributionCode code, std::vector<double> values, double offset = kNotSet) {
  DistributionFit fit;
  fit.specification.code = code;
  fit.specification.values = std::move(values);
  fit.specification.offset = offset;
  return fit;
}

VariableFit Named(bool continuous) {
  VariableFit variable;
  variable.name = "life";
  variable.continuous = continuous;
  return variable;
}

const std::vector<double> kLives{1.2, 1.5, 2, 2, 2.25, 2.5, 3, 3.75, 4, 6.5};
const std::vector<double> kCounts{0, 0, 0, 1, 1, 2, 2, 2, 3, 5};

// Every distribution, shifted and not; discrete ones at whole numbers.
TEST(FitGraphs, CurvesOfEveryTypeAreThoseOfTheDistribution) {
  const DistributionFit fits[] = {Fit(kNormal, {3, 1.5}),
                                  Fit(kLogNormal, {1, 0.5}, 0.5),
                                  Fit(kFoldedNormal, {2, 1.5}, 1),
                                  Fit(kHalfNormal, {2}, 0),
                                  Fit(kRayleigh, {2}, 1),
                                  Fit(kWeibull, {3, 1.7}, 0.25),
                                  Fit(kGaussianMixture, {0.25, 2, 0.5, 0.75, 4, 1}),
                                  Fit(kJohnson, {2, -0.5, 1.5, 2, 2}),
                                  Fit(kGeneralExtremeValue, {2, 1, 0.2}),
                                  Fit(kGeneralPareto, {2, 0.1}, 1),
                                  Fit(kTriangular, {1, 7, 2}),
                                  Fit(kBinomial, {0.25, 8}),
                                  Fit(kPoisson, {1.6}),
                                  Fit(kGeometric, {0.4}),
                                  Fit(kBernoulli, {0.3}),
                                  Fit(kHistogram, {0, 0.3, 1, 0.2, 2, 0.3, 3, 0.1, 5, 0.1})};
  for (const DistributionFit& fit : fits) {
    const bool continuous = static_cast<int>(fit.specification.code) < kContinuousCount;
    const auto& values = continuous ? kLives : kCounts;
    const double n = static_cast<double>(values.size());
    const VariableFit variable = Named(continuous);
    const SpecifiedDistribution distribution(fit.specification);
    const auto plot = [&](FitPlot kind) { return MakeFitPlot(kind, variable, fit, values); };
    const Graph histogram = plot(FitPlot::kHistogram);
    const double width = histogram.bars[0].bounds[1] - histogram.bars[0].bounds[0];
    Curve density(histogram.curves.at(0).formula);
    Curve cumulative(plot(FitPlot::kCumulativeHistogram).curves.at(0).formula);
    Curve probability(plot(FitPlot::kEmpiricalDistribution).curves.at(0).formula);
    // A Bernoulli formula is a step over 0 and 1 alone.
    const double last = fit.specification.code == kBernoulli ? 1 : values.back();
    for (const double x : values) {
      if (x > last) break;
      const int code = static_cast<int>(fit.specification.code);
      EXPECT_NEAR(density.At(x), n * width * distribution.Density(x), 1e-11 * n) << code << " at " << x;
      EXPECT_NEAR(cumulative.At(x), n * distribution.Cdf(x), 1e-11 * n) << code << " at " << x;
      EXPECT_NEAR(probability.At(x), distribution.Cdf(x), 1e-11) << code << " at " << x;
    }
    EXPECT_EQ(histogram.curves[0].wholeNumbers, !continuous);
  }
}

TEST(FitGraphs, ClassesHoldEveryValueOnce) {
  struct Row {
    const char* what;
    std::vector<double> values;
    bool continuous;
    std::vector<double> bounds;  // expected, or empty for any
    double width;                // expected, or 0 for any
  };
  std::vector<double> wide(80);
  std::iota(wide.begin(), wide.end(), -7.0);
  const Row rows[] = {
      {"continuous", kLives, true, {}, 0},
      {"a bound is what one writes", {0, 0.1, 0.3, 0.6, 0.7, 1}, true, {0, 0.2, 0.4, 0.6, 0.8, 1}, 0.2},
      {"a range beyond the doubles", {-1e308, 0, 1e308}, true, {}, 0},
      {"far from zero", {1e9, 1e9 + 1e-6, 1e9 + 3e-6}, true, {}, 0},
      {"counts", {0, 1, 1, 3}, false, {-0.5, 0.5, 1.5, 2.5, 3.5}, 1},
      {"one count", {4, 4}, false, {3.5, 4.5}, 1},
      {"many counts", wide, false, {}, 0},
      {"fifty counts", {1, 50}, false, {}, 1},
      {"halves", {0.5, 0.5, 1, 2.5}, false, {0.25, 0.75, 1.75, 3.25}, 1},
      {"one half", {0.5, 0.5}, false, {0, 1}, 1},
  };
  for (const Row& row : rows) {
    const HistogramClasses classes = ClassesOf(row.values, row.continuous);
    EXPECT_TRUE(row.bounds.empty() || classes.bounds == row.bounds) << row.what;
    EXPECT_TRUE(row.width == 0 || classes.width == row.width) << row.what << ": " << classes.width;
    EXPECT_LE(classes.bounds.size(), 52U) << row.what;
    const Graph graph =
        MakeFitPlot(FitPlot::kHistogram, Named(row.continuous), Fit(kNormal, {kNotSet}), row.values);
    const auto& heights = graph.bars[0].heights;
    EXPECT_EQ(std::accumulate(heights.begin(), heights.end(), 0.0), static_cast<double>(row.values.size()))
        << row.what;
    EXPECT_TRUE(graph.curves.empty()) << "a fit that failed draws nothing";
    EXPECT_TRUE(graph.notes.empty()) << row.what;
  }
}

TEST(FitGraphs, PointsPairTheoryWithObservation) {
  const DistributionFit fit = Fit(kWeibull, {3, 1.7}, 0.25);
  const SpecifiedDistribution distribution(fit.specification);
  const Graph pp = MakeFitPlot(FitPlot::kProbabilityPlot, Named(true), fit, kLives);
  const Graph qq = MakeFitPlot(FitPlot::kQuantilePlot, Named(true), fit, kLives);
  for (std::size_t i = 0; i < kLives.size(); ++i) {
    const double position = (static_cast<double>(i) + 0.5) / 10;
    EXPECT_NEAR(pp.series[0].x[i], distribution.Cdf(kLives[i]), 1e-14);
    EXPECT_NEAR(pp.series[0].y[i], position, 1e-15);
    EXPECT_NEAR(qq.series[0].x[i], distribution.Quantile(position), 1e-12);
    EXPECT_EQ(qq.series[0].y[i], kLives[i]);
  }
  EXPECT_EQ(qq.title, "Q-Q Plot of life");
  EXPECT_EQ(qq.series[0].name, "Weibull(scale=3.0000, shape=1.7000)");
  for (const FitPlot plot : {FitPlot::kProbabilityPlot, FitPlot::kQuantilePlot}) {
    EXPECT_THROW(MakeFitPlot(plot, Named(true), Fit(kWeibull, {kNotSet, 1}), kLives), Error);
  }
}

TEST(FitGraphs, TitlesAndPanelsSayWhatIsShown) {
  const DistributionFit fit = Fit(kNormal, {3, 1.5});
  VariableFit variable = Named(true);
  variable.moments.count = 10;
  variable.moments.mean = 2.87;
  const auto title = [&](FitPlot plot) { return MakeFitPlot(plot, variable, fit, kLives).title; };
  EXPECT_EQ(title(FitPlot::kHistogram), "Histogram of life");
  EXPECT_EQ(title(FitPlot::kCumulativeHistogram), "Cumulative Histogram of life");
  EXPECT_EQ(title(FitPlot::kBoxPlot), "Box Plot of life");
  const Graph summary = MakeFitPlot(FitPlot::kSummary, variable, fit, kLives);
  ASSERT_EQ(summary.panels.size(), 4U);
  EXPECT_EQ(summary.notes, (std::vector<std::string>{"Valid N 10", "Mean 2.87"}))
      << "what is not set is not said";
  EXPECT_EQ(MakeFitPlot(FitPlot::kSummary, variable, Fit(kNormal, {kNotSet}), kLives).panels.size(), 2U);
}

}  // namespace
}  // namespace brenvolt::sra
