#include "host/numeric/estimation/triangular_estimator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "host/base/error.h"
#include "host/numeric/estimation/estimation_support_test.h"

namespace brenvolt {
namespace {

// The estimation spelled out, value by value.
struct Plain {
  std::vector<double> data;
  double a = 0;
  double b = 0;

  explicit Plain(std::vector<double> values) : data(std::move(values)) {
    a = *std::ranges::min_element(data);
    b = *std::ranges::max_element(data);
  }

  double Density(double x, double c) const {
    if (x < c) return 2 / (b - a) * ((x - a) / (c - a));
    return x > c ? 2 / (b - a) * ((b - x) / (b - c)) : 2 / (b - a);
  }

  double LogLikelihood(double c) const {
    long double sum = 0;
    for (const double x : data) {
      const double f = Density(x, c);
      if (f >= 1e-10) sum += std::log(f);
    }
    return static_cast<double>(sum);
  }

  double Scan() const {
    const std::set<double> distinct(data.begin(), data.end());
    const std::size_t step = distinct.size() > 100 ? distinct.size() / 100 : 1;
    double best = a;
    double bestValue = -1e307;
    const std::vector<double> ordered(distinct.begin(), distinct.end());
    double previous = ordered[0];
    for (std::size_t i = 1; i < ordered.size(); i += step) {
      const double c = (previous + ordered[i]) / 2;
      previous = ordered[i];
      const double value = LogLikelihood(c);
      if (value > bestValue) {
        best = c;
        bestValue = value;
      }
    }
    return best;
  }

  double Mode() const {
    double low = a + (b - a) / 10;
    double high = b - (b - a) / 10;
    double mid = Scan();
    for (int step = 0; step < 2000; ++step) {
      const double atLow = LogLikelihood(low);
      const double atMid = LogLikelihood(mid);
      const double atHigh = LogLikelihood(high);
      if (atHigh >= atLow && atHigh >= atMid) {
        low = mid;
        mid = (high + mid) / 2;
      } else if (atLow >= atMid) {
        high = mid;
        mid = (mid + low) / 2;
      } else {
        low = (mid + low) / 2;
        high = (high + mid) / 2;
      }
      if (std::abs(atLow - atHigh) < 1e-8) break;
    }
    return mid;
  }
};

EstimationResult<TriangularEstimate> Try(std::vector<double> data) {
  std::ranges::sort(data);
  return EstimateTriangular(data, [] {});
}

TriangularEstimate Estimate(std::vector<double> data) {
  return *Try(std::move(data));
}

std::vector<double> Draw(std::mt19937_64& engine, int kind, std::size_t count) {
  std::uniform_real_distribution<double> uniform;
  std::normal_distribution<double> normal;
  std::vector<double> values(count);
  for (double& x : values) {
    switch (kind) {
      case 0:  // triangular itself
        x = 3 + uniform(engine) + uniform(engine);
        break;
      case 1:  // skewed
        x = std::exp(normal(engine));
        break;
      case 2:  // ties
        x = std::floor(20 * uniform(engine) * uniform(engine));
        break;
      case 3:
        x = -5e-9 * uniform(engine) * uniform(engine);
        break;
      default:
        x = 1e6 + 3e4 * normal(engine);
    }
  }
  return values;
}

TEST(TriangularFit, AgreesWithTheDirectEvaluation) {
  std::mt19937_64 engine(11);
  int compared = 0;
  for (const std::size_t count : {3U, 5U, 20U, 101U, 260U, 2000U}) {
    for (int kind = 0; kind < 5; ++kind) {
      for (int repeat = 0; repeat < (count < 2000 ? 8 : 2); ++repeat) {
        const auto data = Draw(engine, kind, count);
        const Plain plain(data);
        if (plain.a == plain.b) continue;
        const TriangularEstimate fit = Estimate(data);
        const double mode = plain.Mode();
        EXPECT_EQ(fit.minimum, plain.a);
        EXPECT_EQ(fit.maximum, plain.b);
        EXPECT_NEAR(fit.mode, mode, 1e-7 * (plain.b - plain.a)) << count << " of kind " << kind;
        ++compared;
      }
    }
  }
  EXPECT_GE(compared, 200);
}

// If all densities are below 1e-10 every mode is as good: the first candidate is moved once and kept.
TEST(TriangularFit, SearchSkipsValuesOfVanishingDensityAndDoesNotPenaliseThem) {
  const std::vector<double> data{0, 1e12, 2e12, 4e12};
  const TriangularEstimate fit = Estimate(data);
  EXPECT_DOUBLE_EQ(fit.mode, Plain(data).Mode());
}

TEST(TriangularFit, SearchEndsWhateverTheScale) {
  for (const double scale : {1e-300, 1e-30, 1e30, 1e300}) {
    for (const auto& shape : {std::vector<double>{0, 1, 3}, {0, 0, 0, 1}, {-1, 0.1, 0.2, 0.3, 1}}) {
      std::vector<double> data;
      for (const double x : shape) data.push_back(x * scale);
      const TriangularEstimate fit = Estimate(data);
      EXPECT_TRUE(fit.mode >= fit.minimum && fit.mode <= fit.maximum) << scale;
    }
  }
  // So many values that the likelihoods at neighbouring doubles differ by more than the tolerance.
  std::vector<double> many(200'000, 1.0);
  many.front() = std::nextafter(1.0, 0.0) - 1e-13;
  many.back() = 1 + 1e-13;
  EXPECT_TRUE(Try(many));
}

TEST(TriangularFit, NeedsSpread) {
  EXPECT_EQ(EndOf(Try({4, 4, 4})), EstimationFault::kNoSpread);
  EXPECT_EQ(EndOf(Try({1, std::nextafter(1.0, 2.0)})), EstimationFault::kNoSpread);
  EXPECT_EQ(EndOf(Try({})), EstimationFault::kNoValues);
  EXPECT_EQ(EndOf(Try({-1.7e308, 0, 1.7e308})), EstimationFault::kNotFinite);
  EXPECT_EQ(EndOf(Try({1, 1 + 16 * std::numeric_limits<double>::epsilon()})), kNone);
}

// 250 distinct values: every second one from the second on is a candidate, 125, and each asks once.
TEST(TriangularFit, ScanVisitsEverySecondOf250AndStopsWhenAsked) {
  std::vector<double> data;
  for (int i = 0; i < 250; ++i) data.push_back(i);
  int asked = 0;
  const auto stopAt = [&](int last) {
    return [&asked, last] {
      if (++asked == last) throw UserCancelled();
    };
  };
  EXPECT_THROW(static_cast<void>(EstimateTriangular(data, stopAt(3))), UserCancelled);
  asked = 0;
  EXPECT_TRUE(EstimateTriangular(data, stopAt(-1)));
  EXPECT_GE(asked, 126);
  EXPECT_LT(asked, 230) << "every value was visited";
}

}  // namespace
}  // namespace brenvolt
