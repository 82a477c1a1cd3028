#include "brv_sra/distributions/curve_formulas.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/formula/curve.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

DistributionSpecification Make(DistributionCode code, std::vector<double> values, double offset = kNotSet) {
  DistributionSpecification specification;
  specification.code = code;
  specification.values = std::move(values);
  specification.offset = offset;
  return specification;
}

constexpr CurveFactor kFactor{100, 0.5};

struct TextCase {
  DistributionSpecification specification;
  std::string density;
  std::string cumulative;
};

TEST(CurveFormulas, ContinuousTextsAreSpelledAsTheHostKnowsThem) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  const std::string f = "100*0.5";
  const TextCase cases[] = {
      {Make(kNormal, {10, 2}), f + "*Normal(x,10,2)", f + "*iNormal(x,10,2)"},
      {Make(kNormal, {10, 2}, 3), f + "*Normal(x,10,2)", f + "*iNormal(x,10,2)"},
      {Make(kLogNormal, {-1.5, 2}, 0), f + "*Lognorm(x,-1.5,2)", f + "*iLognorm(x,-1.5,2)"},
      {Make(kLogNormal, {1, 2}, 2.5), f + "*Lognorm(x-2.5,1,2)", f + "*iLognorm(x-2.5,1,2)"},
      {Make(kLogNormal, {1, 2}, -2.5), f + "*Lognorm(x--2.5,1,2)", f + "*iLognorm(x--2.5,1,2)"},
      {Make(kFoldedNormal, {1, 2}, -0.0), f + "*FoldedNormal(x,1,2)", f + "*iFoldedNormal(x,1,2)"},
      {Make(kFoldedNormal, {1, 2}, 7), f + "*FoldeNormal(x-7,1,2)", f + "*iFoldedNormal(x-7,1,2)"},
      {Make(kHalfNormal, {3}, 15 * tiny), f + "*HalfNormal(x,3)", f + "*iHalfNormal(x,3)"},
      {Make(kHalfNormal, {3}, 1e-7), f + "*HalfNormal(x-0.0000001,3)", f + "*iHalfNormal(x-0.0000001,3)"},
      {Make(kRayleigh, {3}), f + "*Rayl(x,3)", f + "*IRayl(x,3)"},
      {Make(kRayleigh, {3}, 1), f + "*Rayl(x-1,3)", f + "*IRayl(x-1,3)"},
      {Make(kWeibull, {3, 4}), f + "*weibull(x,3,4,0)", f + "*iWeibull(x,3,4,0)"},
      {Make(kWeibull, {3, 4}, -0.0), f + "*weibull(x,3,4,0)", f + "*iWeibull(x,3,4,0)"},
      {Make(kGeneralPareto, {2, 0.1}, -0.0), f + "*GPD(x,0,2,0.1)", f + "*IGPD(x,0,2,0.1)"},
      {Make(static_cast<DistributionCode>(16), {1}), f, f},
      {Make(static_cast<DistributionCode>(-1), {1}), f, f},
      {Make(kWeibull, {3, 4}, -1), f + "*weibull(x,3,4,-1)", f + "*iWeibull(x,3,4,-1)"},
      {Make(kGaussianMixture, {0.25, -1, 2, 0.75, 3, 4, 0.5, 9}),
       f + "*(0.25*Normal(x,-1,2) + 0.75*Normal(x,3,4))",
       f + "*(0.25*iNormal(x,-1,2) + 0.75*iNormal(x,3,4))"},
      {Make(kGaussianMixture, {}), f + "*()", f + "*()"},
      {Make(kJohnson, {2, 0.5, 1.5, 2, -3}), f + "*Johnson(x,2,0.5,1.5,2,-3)",
       f + "*iJohnson(x,2,0.5,1.5,2,-3)"},
      {Make(kGeneralExtremeValue, {1, 2, 0.1}), f + "*GEV(x,1,2,0.1)", f + "*IGEV(x,1,2,0.1)"},
      {Make(kGeneralPareto, {2, 0.1}, 5), f + "*GPD(x,5,2,0.1)", f + "*IGPD(x,5,2,0.1)"},
      {Make(kTriangular, {1, 4, 2}), f + "*Triangular(x,1,4,2)", f + "*iTriangular(x,1,4,2)"},
      {Make(kTriangular, {1, 4}), f + "*Triangular(x,1,4,-444)", f + "*iTriangular(x,1,4,-444)"},
      {Make(kBinomial, {0.5, 3}), f, f},
      {Make(kHistogram, {1, 1}), f, f},
  };
  for (const TextCase& c : cases) {
    EXPECT_EQ(ContinuousCurveFormula(c.specification, CurveKind::kDensity, kFactor), c.density);
    EXPECT_EQ(ContinuousCurveFormula(c.specification, CurveKind::kCumulative, kFactor), c.cumulative);
  }
}

TEST(CurveFormulas, DiscreteTextsBeginAsTheUnitAsks) {
  const TextCase cases[] = {
      {Make(kBinomial, {0.25, 8}), "*Binom(x,0.25,8)*(x>=0)", "*iBinom(x,0.25,8)*(x>=0)"},
      {Make(kPoisson, {2.5}), "*Poisson(x,2.5)*(x>=0)", "*iPoisson(x,2.5)*(x>=0)"},
      {Make(kGeometric, {0.5}), "*Geom(x,0.5)*(x>=0)", "*iGeom(x,0.5)*(x>=0)"},
      {Make(kBernoulli, {0.25}), "0.75*(x>=-0.5 & x<=0.5) + 0.25*(x>0.5 & x<=1.5)",
       "0.75*(x>=-0.5 & x<=0.5) + 1*(x>0.5 & x<=1.5)"},
      // Classes in ascending order, equal codes added up, an incomplete one left out.
      {Make(kHistogram, {4, 0.5, 2, 0.25, 2, 0.25, 9}), "0.5*(x>=1.5 & x<=2.5) + 0.5*(x>=3.5 & x<=4.5)",
       "0.5*(x>=1.5 & x<=2.5) + 1*(x>=3.5 & x<=4.5)"},
      {Make(kHistogram, {1, 0.5, 1.5, 0.5}), "0.5*(x>=0.75 & x<=1.25) + 0.5*(x>=1.25 & x<=1.75)",
       "0.5*(x>=0.75 & x<=1.25) + 1*(x>=1.25 & x<=1.75)"},
  };
  for (const TextCase& c : cases) {
    const bool sum = c.density.front() != '*';
    const auto behindFactor = [&](const std::string& text) { return sum ? "*(" + text + ")" : text; };
    const auto text = [&](CurveKind kind, DensityUnit unit) {
      return DiscreteCurveFormula(c.specification, kind, kFactor, unit);
    };
    EXPECT_EQ(text(CurveKind::kDensity, DensityUnit::kProportions), c.density);
    EXPECT_EQ(text(CurveKind::kDensity, DensityUnit::kCounts), "*100*0.5" + behindFactor(c.density));
    EXPECT_EQ(text(CurveKind::kCumulative, DensityUnit::kCounts), "=100*0.5" + behindFactor(c.cumulative));
  }
  EXPECT_EQ(
      DiscreteCurveFormula(Make(kNormal, {1, 2}), CurveKind::kCumulative, kFactor, DensityUnit::kCounts),
      "=100*0.5");
}

TEST(CurveFormulas, NumbersReadBackExactlyAndHaveNoExponent) {
  const double values[] = {0.0,     -0.0,
                           1e-300,  -1e-300,
                           1e300,   std::numeric_limits<double>::denorm_min(),
                           0.1,     -444,
                           1e15,    1e22,
                           1.0 / 3, std::numeric_limits<double>::max(),
                           123456,  1.5e-10,
                           -2.5,    std::nextafter(1.0, 2.0)};
  for (const double x : values) {
    const std::string text = DecimalText(x);
    EXPECT_EQ(text.find_first_not_of("-.0123456789"), std::string::npos) << text;
    EXPECT_NE(text.substr(text.front() == '-' ? 1 : 0, 1), ".") << text;
    const auto bits = std::bit_cast<std::uint64_t>(x);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ParseNumber(text).value()), bits) << text;
    // The evaluator reads it just as exactly.
    EXPECT_EQ(Curve(text).At(0), x) << text;
  }
  EXPECT_EQ(DecimalText(1e-5), "0.00001");
  EXPECT_EQ(DecimalText(-1234567890123456789012.0), "-1234567890123456774144");
}

// The text evaluated is the catalogue's function times the factor.
void ExpectAgreement(const DistributionSpecification& specification, const std::vector<double>& x) {
  const SpecifiedDistribution distribution(specification);
  ASSERT_TRUE(distribution.IsValid()) << SpacedKey(specification.code);
  for (const CurveKind kind : {CurveKind::kDensity, CurveKind::kCumulative}) {
    const std::string text = IsContinuous(specification.code)
                                 ? ContinuousCurveFormula(specification, kind, kFactor)
                                 : DiscreteCurveFormula(specification, kind, kFactor, DensityUnit::kCounts);
    Curve curve(text);
    std::vector<double> y(x.size());
    curve.Evaluate(x, y);
    for (std::size_t i = 0; i < x.size(); ++i) {
      const double expected =
          50 * (kind == CurveKind::kDensity ? distribution.Density(x[i]) : distribution.Cdf(x[i]));
      ASSERT_NEAR(y[i], expected, std::max(1e-10 * std::abs(expected), 1e-300)) << text << " at " << x[i];
    }
  }
}

// 1000 values over the support and a little beyond.
std::vector<double> Grid(const SpecifiedDistribution& distribution) {
  constexpr std::size_t kPoints = 1000;
  const double from = distribution.Quantile(1e-6);
  const double to = distribution.ComplementQuantile(1e-6);
  const double margin = 0.05 * (to - from);
  std::vector<double> x(kPoints);
  for (std::size_t i = 0; i < kPoints; ++i)
    x[i] = std::lerp(from - margin, to + margin, static_cast<double>(i) / (kPoints - 1));
  return x;
}

TEST(CurveFormulas, ContinuousTextsDrawTheCatalogueFunctions) {
  const DistributionSpecification continuous[] = {
      Make(kNormal, {10, 2.25}),
      Make(kLogNormal, {1, 0.5}),
      Make(kFoldedNormal, {0.7, 2}),
      Make(kHalfNormal, {3}),
      Make(kRayleigh, {0.3}),
      Make(kWeibull, {3, 1.7}),
      Make(kGaussianMixture, {0.25, -1, 2, 0.75, 3, 4}),
      Make(kJohnson, {1, 0.5, 1.5, 2, -3}),
      Make(kJohnson, {2, 0.5, 1.5, 2, -3}),
      Make(kJohnson, {3, 0.5, 1.5, 2, -3}),
      Make(kJohnson, {4, 0.5, 1.5, 2, -3}),
      Make(kGeneralExtremeValue, {1, 2, 0.1}),
      Make(kGeneralExtremeValue, {1, 2, -0.3}),
      Make(kGeneralPareto, {2, 0.1}),
      Make(kGeneralPareto, {2, -0.4}),
      Make(kTriangular, {-1, 4, 2}),
  };
  for (DistributionSpecification specification : continuous) {
    for (const double offset : {kNotSet, 0.0, 2.5, -1234.5678901234567, 1e-9}) {
      specification.offset = offset;
      ExpectAgreement(specification, Grid(SpecifiedDistribution(specification)));
    }
  }
}

TEST(CurveFormulas, DiscreteTextsDrawTheCatalogueFunctions) {
  std::vector<double> counts(1000);
  for (std::size_t i = 0; i < counts.size(); ++i) counts[i] = static_cast<double>(i) - 5;
  ExpectAgreement(Make(kBinomial, {0.3, 900}), counts);
  ExpectAgreement(Make(kPoisson, {250}), counts);
  ExpectAgreement(Make(kGeometric, {0.02}), counts);
  ExpectAgreement(Make(kBernoulli, {0.3}), {0, 1});
  std::vector<double> classes;
  std::vector<double> codes;
  for (int i = 0; i < 256; ++i) {
    codes.push_back(-20 + 0.25 * i);
    classes.insert(classes.end(), {codes.back(), 1.0 / 256});
  }
  ExpectAgreement(Make(kHistogram, classes), codes);
}

TEST(CurveFormulas, InvalidDistributionsDrawNothing) {
  for (const auto& specification : {Make(kNormal, {10, -2}), Make(kWeibull, {3}), Make(kGeneralPareto, {})}) {
    EXPECT_TRUE(
        std::isnan(Curve(ContinuousCurveFormula(specification, CurveKind::kCumulative, kFactor)).At(1)));
  }
  EXPECT_THROW(Curve(ContinuousCurveFormula(Make(kGaussianMixture, {}), CurveKind::kDensity, kFactor)),
               Error);
}

}  // namespace
}  // namespace brenvolt::sra
