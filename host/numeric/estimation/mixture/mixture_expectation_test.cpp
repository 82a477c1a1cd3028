#include "host/numeric/estimation/mixture/mixture_expectation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/instruction_sets_support_test.h"

namespace brenvolt {
namespace {

struct Result {
  double logLikelihood = 0.0;
  std::vector<ResponsibilitySums> sums;
};

Result Evaluate(const std::vector<double>& values, const std::vector<MixtureComponent>& mixture) {
  Result result{0.0, std::vector<ResponsibilitySums>(mixture.size())};
  result.logLikelihood = MixtureExpectation(mixture.size()).Run(values, mixture, result.sums);
  return result;
}

// The same from the definitions, in long double, whose range holds every density that occurs here.
Result EvaluatePlainly(const std::vector<double>& values, const std::vector<MixtureComponent>& mixture) {
  struct Sums {
    long double weight = 0.0L;
    long double first = 0.0L;
    long double second = 0.0L;
  };
  std::vector<Sums> sums(mixture.size());
  long double logLikelihood = 0.0L;
  for (const double x : values) {
    std::vector<long double> densities;
    long double total = 0.0L;
    for (const MixtureComponent& c : mixture) {
      const long double z = (static_cast<long double>(x) - c.mean) / c.deviation;
      densities.push_back(c.proportion / c.deviation / std::sqrt(2.0L * std::numbers::pi_v<long double>) *
                          std::exp(-0.5L * z * z));
      total += densities.back();
    }
    logLikelihood += std::log(total);
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const long double weight = densities[c] / total;
      const long double d = static_cast<long double>(x) - mixture[c].mean;
      sums[c].weight += weight;
      sums[c].first += weight * d;
      sums[c].second += weight * d * d;
    }
  }
  Result result{static_cast<double>(logLikelihood), {}};
  for (const Sums& s : sums) {
    result.sums.push_back(
        {static_cast<double>(s.weight), static_cast<double>(s.first), static_cast<double>(s.second)});
  }
  return result;
}

std::vector<double> Draws(std::size_t count) {
  std::vector<double> values(count);
  RandomStream(4).FillNormal(0, 3.0, values);
  return values;
}

const std::vector<MixtureComponent> kMixture = {{0.25, -2.0, 0.75}, {0.5, 0.5, 2.0}, {0.25, 4.0, 0.125}};

TEST(MixtureExpectation, AgreesWithDefinitionsAtAnyLength) {
  for (const std::size_t count : {1U, 7U, 8U, 255U, 256U, 257U, 1003U}) {
    const std::vector<double> values = Draws(count);
    const Result computed = Evaluate(values, kMixture);
    const Result expected = EvaluatePlainly(values, kMixture);
    const double n = static_cast<double>(count);
    EXPECT_NEAR(computed.logLikelihood, expected.logLikelihood, 1e-14 * n * 10.0) << count;
    for (std::size_t c = 0; c < kMixture.size(); ++c) {
      EXPECT_NEAR(computed.sums[c].weight, expected.sums[c].weight, 1e-14 * n) << count;
      EXPECT_NEAR(computed.sums[c].first, expected.sums[c].first, 1e-13 * n) << count;
      EXPECT_NEAR(computed.sums[c].second, expected.sums[c].second, 1e-12 * n) << count;
    }
  }
}

// Densities there are below the smallest double, and one value of the vector must not change the others.
TEST(MixtureExpectation, ValueFarFromAllComponentsKeepsItsResponsibilities) {
  std::vector<double> values = Draws(20);
  values[3] = -120.0;
  values[11] = 140.0;
  const Result computed = Evaluate(values, kMixture);
  const Result expected = EvaluatePlainly(values, kMixture);
  EXPECT_NEAR(computed.logLikelihood / expected.logLikelihood, 1.0, 1e-14);
  for (std::size_t c = 0; c < kMixture.size(); ++c) {
    EXPECT_NEAR(computed.sums[c].weight, expected.sums[c].weight, 1e-11);
    EXPECT_NEAR(computed.sums[c].second / expected.sums[c].second, 1.0, 1e-11);
  }
}

// Of the plain log-likelihood, in which only the shares of the proportions count, by differences.
TEST(MixtureExpectation, DerivativesAreThoseOfTheLogLikelihood) {
  const std::vector<double> values = Draws(259);
  const std::size_t n = 3 * kMixture.size();
  const auto logLikelihoodAt = [&](std::vector<long double> point) {
    long double total = 0.0L;
    long double scale = 0.0L;
    for (std::size_t c = 0; c < kMixture.size(); ++c)
      scale += kMixture[c].proportion * std::exp(point[3 * c]);
    for (const double x : values) {
      long double density = 0.0L;
      for (std::size_t c = 0; c < kMixture.size(); ++c) {
        const long double deviation = kMixture[c].deviation * std::exp(point[3 * c + 2]);
        const long double z = (x - kMixture[c].mean - point[3 * c + 1] * kMixture[c].deviation) / deviation;
        density += kMixture[c].proportion * std::exp(point[3 * c]) / deviation * std::exp(-0.5L * z * z);
      }
      total += std::log(density / scale / std::sqrt(2.0L * std::numbers::pi_v<long double>));
    }
    return total;
  };
  constexpr long double kStep = 1e-4L;
  const auto at = [&](std::size_t a, long double first, std::size_t b, long double second) {
    std::vector<long double> point(n);
    point[a] += first * kStep;
    point[b] += second * kStep;
    return logLikelihoodAt(point);
  };
  const MixtureDerivatives derivatives = MixtureExpectation(kMixture.size()).Differentiate(values, kMixture);
  EXPECT_NEAR(derivatives.logLikelihood, static_cast<double>(logLikelihoodAt(std::vector<long double>(n))),
              1e-10);
  for (std::size_t a = 0; a < n; ++a) {
    const auto slope = static_cast<double>((at(a, 1, a, 0) - at(a, -1, a, 0)) / (2 * kStep));
    EXPECT_NEAR(derivatives.gradient[a], slope, 1e-4 * (1.0 + std::abs(slope))) << a;
    for (std::size_t b = 0; b < n; ++b) {
      const auto curvature = static_cast<double>(
          (at(a, 1, b, 1) - at(a, 1, b, -1) - at(a, -1, b, 1) + at(a, -1, b, -1)) / (4 * kStep * kStep));
      EXPECT_NEAR(derivatives.information[a * n + b], -curvature, 1e-3 * (1.0 + std::abs(curvature)))
          << a << ", " << b;
    }
  }
}

TEST(MixtureExpectation, EveryInstructionSetGivesTheSameBits) {
  std::vector<double> values = Draws(1003);
  values[500] = 200.0;
  const Result chosen = Evaluate(values, kMixture);
  const MixtureDerivatives derivatives = MixtureExpectation(kMixture.size()).Differentiate(values, kMixture);
  UnderEveryInstructionSet([&] {
    const Result result = Evaluate(values, kMixture);
    EXPECT_EQ(result.logLikelihood, chosen.logLikelihood);
    const auto [logLikelihood, gradient, information] =
        MixtureExpectation(kMixture.size()).Differentiate(values, kMixture);
    EXPECT_EQ(gradient, derivatives.gradient);
    EXPECT_EQ(information, derivatives.information);
    for (std::size_t c = 0; c < kMixture.size(); ++c) {
      EXPECT_EQ(result.sums[c].weight, chosen.sums[c].weight);
      EXPECT_EQ(result.sums[c].first, chosen.sums[c].first);
      EXPECT_EQ(result.sums[c].second, chosen.sums[c].second);
    }
  });
}

TEST(MixtureExpectation, CollapsedComponentGivesNoLikelihood) {
  for (const MixtureComponent bad :
       {MixtureComponent{0.0, 0.0, 1.0}, {0.5, NAN, 1.0}, {0.5, 0.0, 0.0}, {0.5, 0.0, 1e-200}}) {
    EXPECT_TRUE(std::isnan(Evaluate({1.0, 2.0}, {{0.5, 0.0, 1.0}, bad}).logLikelihood));
  }
}

}  // namespace
}  // namespace brenvolt
