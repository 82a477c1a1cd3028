// Array forms on every instruction set of the machine against the scalar forms, bit for bit; and the
// elementary functions against the mathematical library.
#include "host/numeric/vector/vector_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/instruction_sets_support_test.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Equal bits; any NaN equals any other.
bool IsSame(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

struct Form {
  std::string name;
  std::function<void(std::span<const double>, std::span<double>)> array;
  std::function<double(double)> scalar;
};

// Without a scalar form: an array of one value.
double Log1pOfOne(double x) {
  elementary::Log1p({&x, 1}, {&x, 1});
  return x;
}

template <class D>
Form OfCdf(std::string name, const Distribution<D>& distribution) {
  return {std::move(name), [distribution](auto x, auto out) { distribution.Cdf(x, out); },
          [distribution](double x) { return distribution.Cdf(x); }};
}

template <class D>
Form OfQuantile(std::string name, const Distribution<D>& distribution) {
  return {std::move(name), [distribution](auto p, auto out) { distribution.Quantile(p, out); },
          [distribution](double p) { return distribution.Quantile(p); }};
}

std::vector<Form> Forms() {
  return {
      {"Exp", [](auto x, auto out) { elementary::Exp(x, out); }, [](double x) { return elementary::Exp(x); }},
      {"Log", [](auto x, auto out) { elementary::Log(x, out); }, [](double x) { return elementary::Log(x); }},
      {"Log1p", [](auto x, auto out) { elementary::Log1p(x, out); }, Log1pOfOne},
      OfCdf("Cdf of normal", Distribution<Normal>(0.25, 1.5)),
      OfQuantile("Quantile of normal", Distribution<Normal>(0.25, 1.5)),
      OfCdf("Cdf of lognormal", Distribution<LogNormal>(0.5, 0.75, -0.125)),
      OfQuantile("Quantile of lognormal", Distribution<LogNormal>(0.5, 0.75, -0.125)),
      OfCdf("Cdf of weibull", Distribution<Weibull>(2.0, 1.7, -0.125)),
      OfQuantile("Quantile of weibull", Distribution<Weibull>(2.0, 1.7, -0.125)),
      OfCdf("Cdf of rayleigh", Distribution<Rayleigh>(2.0, -0.125)),
      OfQuantile("Quantile of rayleigh", Distribution<Rayleigh>(2.0, -0.125)),
      OfCdf("Cdf of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, 0.3)),
      OfCdf("Cdf of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, 0.0)),
      OfCdf("Cdf of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, -0.7)),
      OfQuantile("Quantile of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, 0.3)),
      OfCdf("Cdf of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, 1e-9)),
      OfQuantile("Quantile of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, 0.0)),
      OfQuantile("Quantile of gev", Distribution<GeneralExtremeValue>(-0.125, 2.0, -0.7)),
      OfCdf("Cdf of gpd", Distribution<GeneralPareto>(2.0, 0.3, -0.125)),
      OfCdf("Cdf of gpd", Distribution<GeneralPareto>(2.0, -1e-9, -0.125)),
      OfCdf("Cdf of gpd", Distribution<GeneralPareto>(2.0, -0.7, -0.125)),
      OfCdf("Cdf of gpd", Distribution<GeneralPareto>(2.0, 0.0, -0.125)),
      OfQuantile("Quantile of gpd", Distribution<GeneralPareto>(2.0, 0.3, -0.125)),
      OfQuantile("Quantile of gpd", Distribution<GeneralPareto>(2.0, -0.3, -0.125)),
      OfQuantile("Quantile of gpd", Distribution<GeneralPareto>(2.0, 0.0, -0.125))};
}

// Special values, values of all sizes and signs, and probabilities into both tails.
std::vector<double> Arguments() {
  std::vector<double> x = {0.0,   -0.0,   1.0,   -1.0,   0.5,   0.075, 0.925,          kInfinity, -kInfinity,
                           kNaN,  5e-324, 1e308, -1e308, 709.8, 710.5, -745.2,         -746.5,    -37.6,
                           -38.4, 40.0,   41.0,  -0.125, 1.5,   2.0,   std::exp(-25.0)};
  std::vector<double> u(3000);
  RandomStream(11).FillUniform(0, u);
  for (std::size_t i = 0; i + 2 < u.size(); i += 3) {
    x.push_back(u[i]);
    x.push_back(std::ldexp(u[i], static_cast<int>(-1074.0 * u[i + 1])));
    x.push_back(80.0 * (u[i] - 0.5));
    x.push_back(1500.0 * (u[i + 2] - 0.5));
    x.push_back(1.0 + (u[i] - 0.5) * std::exp2(-50.0 * u[i + 2]));
  }
  return x;
}

TEST(VectorForms, EveryInstructionSetGivesTheBitsOfTheScalarForm) {
  const std::vector<double> x = Arguments();
  for (const Form& form : Forms()) {
    std::vector<double> expected;
    for (const double one : x) expected.push_back(form.scalar(one));
    UnderEveryInstructionSet([&] {
      std::vector<double> out = x;
      form.array(out, out);
      for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_TRUE(IsSame(out[i], expected[i]))
            << form.name << " at " << x[i] << ": " << out[i] << " for " << expected[i];
      }
    });
  }
}

TEST(VectorForms, StreamIsTheSameOnEveryInstructionSetAtAnyPlaceAndLength) {
  const RandomStream stream(-9);
  UnderEveryInstructionSet([&] {
    for (const std::uint64_t position : {0ULL, 5ULL, 8589934580ULL, 0xFFFFFFFFFFULL}) {
      for (const std::size_t size : {1U, 2U, 7U, 16U, 33U, 5001U}) {
        std::vector<double> uniforms(size);
        std::vector<double> normals(size);
        stream.FillUniform(position, uniforms);
        stream.FillNormal(position, 1.5, normals);
        for (std::size_t i = 0; i < size; ++i) {
          ASSERT_EQ(uniforms[i], stream.Uniform(position + i));
          ASSERT_EQ(normals[i], 1.5 * NormalFromUniform(uniforms[i]));
        }
      }
    }
  });
}

// Also where the output takes the place of the strata, and where rounding leads out of the range.
TEST(VectorForms, ProbabilitiesOfStrataHaveTheBitsOfThePlainFormulaAndStayInTheRange) {
  const vector_forms::ProbabilityRange range{0.005, 0.99 / 3, 0.04, 0.95};
  const auto brought = [&](double p) { return p <= range.lower ? range.least : std::min(p, range.most); };
  UnderEveryInstructionSet([&] {
    for (const std::size_t size : {0U, 1U, 7U, 16U, 33U}) {
      std::vector<double> uniforms(size);
      RandomStream(4).FillUniform(0, uniforms);
      for (std::size_t i = 0; i < size; i += 6) uniforms[i] = 0;
      std::vector<std::int32_t> strata(size);
      for (std::size_t i = 0; i < size; ++i) strata[i] = static_cast<std::int32_t>(i % 3);
      std::vector<double> inRange(size);
      std::vector<double> inStrata(size);
      std::vector<double> inPlace(strata.begin(), strata.end());
      std::vector<double> normals(size);
      vector_forms::ProbabilitiesInRange(uniforms, range, inRange);
      vector_forms::ProbabilitiesInStrata(uniforms, strata, range, inStrata);
      vector_forms::ProbabilitiesInStrata(uniforms, inPlace, range, inPlace);
      vector_forms::NormalsFromUniforms(uniforms, 1.5, -3.0, normals);
      for (std::size_t i = 0; i < size; ++i) {
        const double shift = uniforms[i] * range.width;
        const double inStratum = range.lower + strata[i] * range.width + shift;
        ASSERT_EQ(inRange[i], brought(range.lower + shift));
        ASSERT_EQ(inStrata[i], brought(inStratum));
        ASSERT_EQ(inPlace[i], inStrata[i]);
        ASSERT_EQ(normals[i], 1.5 * NormalFromUniform(uniforms[i]) + -3.0);
      }
    }
  });
}

TEST(VectorForms, ArraysOfAnyLengthLeaveTheRestOfTheOutputAlone) {
  constexpr double kUntouched = -7.0;
  for (std::size_t size = 0; size <= 19; ++size) {
    const std::vector<double> p(size, 0.01);
    for (const Form& form : Forms()) {
      std::vector<double> out(size + 9, kUntouched);
      form.array(p, out);
      for (std::size_t i = 0; i < out.size(); ++i) {
        ASSERT_EQ(out[i], i < size ? form.scalar(0.01) : kUntouched) << form.name << ' ' << size << ' ' << i;
      }
    }
  }
}

TEST(Elementary, AgreesWithTheLibraryOverTheWholeRange) {
  struct Pair {
    const char* name;
    double (*ours)(double);
    double (*library)(double);
  };
  const Pair pairs[] = {{"exp", elementary::Exp, std::exp},
                        {"log", elementary::Log, std::log},
                        {"log1p", Log1pOfOne, std::log1p}};
  for (const Pair& pair : pairs) {
    for (const double x : Arguments()) {
      const double expected = pair.library(x);
      const double computed = pair.ours(x);
      if (!std::isfinite(expected) || expected == 0.0) {
        EXPECT_TRUE(IsSame(computed, expected) || computed == expected)
            << pair.name << ' ' << x << ' ' << computed;
        continue;
      }
      // Near the smallest doubles a unit is absolute.
      EXPECT_LE(std::abs(computed - expected), 5e-16 * std::abs(expected) + 5e-324) << pair.name << ' ' << x;
    }
  }
}

}  // namespace
}  // namespace brenvolt
