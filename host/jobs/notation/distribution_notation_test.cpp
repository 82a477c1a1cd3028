#include "host/jobs/notation/distribution_notation.h"

#include <gtest/gtest.h>

#include "host/base/number_text.h"

namespace brenvolt {
namespace {

TEST(DistributionNotation, ReadsOrdersNamesSynonymsOffsetsAndBounds) {
  const struct {
    const char* written;
    const char* canonical;
  } rows[] = {
      {"h ~ normal(50.2, 0.05)", "h ~ normal(location=50.2, scale=0.05)"},
      {"h~Normal(mean=50.2,SD=.05)", "h ~ normal(location=50.2, scale=0.05)"},
      {"cost ~ triangular(min=100, max=180, mode=120) in [100, 170]",
       "cost ~ triangular(min=100, max=180, mode=120) in [100, 170]"},
      {"cost ~ triangular(mode=120, minimum=100, maximum=180) in [ ,170 ]",
       "cost ~ triangular(min=100, max=180, mode=120) in [, 170]"},
      {"n ~ poisson(3)", "n ~ poisson(3)"},
      {"n ~ Poisson( lambda = 3 ) in [1,]", "n ~ poisson(3) in [1, ]"},
      {"k ~ binomial(0.25, 10)", "k ~ binomial(proportion=0.25, trials=10)"},
      {"k ~ binomial(n=10, p=0.25)", "k ~ binomial(proportion=0.25, trials=10)"},
      {"a b ~ log normal(1, 0.5)", "a b ~ lognormal(scale=1, shape=0.5)"},
      {"t ~ weibull(3, 2, 10)", "t ~ weibull(scale=3, shape=2, offset=10)"},
      {"t ~ weibull(scale=3, shape=2, threshold=-1.5e-3)", "t ~ weibull(scale=3, shape=2, offset=-0.0015)"},
      {"x ~ gev(1, 2, -0.1)", "x ~ generalextremevalue(location=1, scale=2, shape=-0.1)"},
      {"j ~ johnson(su, 1, 2, 3, 4)", "j ~ johnson(type=SU, gamma=1, delta=2, lambda=3, xi=4)"},
      {"r ~ histogram(0:0.9, 25000:0.1)", "r ~ histogram(0:0.9, 25000:0.1)"},
      {"r ~ histogram(0, 0.9, 25000, 0.1)", "r ~ histogram(0:0.9, 25000:0.1)"},
      {"s ~ histogram(clear: 0.7, light rain : 0.3)", "s ~ histogram(clear:0.7, light rain:0.3)"},
      {"s ~ histogram(\"clear\":0.7, \"rain, snow\":0.2, \"a \"\"b\"\"\":0.1)",
       "s ~ histogram(clear:0.7, \"rain, snow\":0.2, \"a \"\"b\"\"\":0.1)"},
      {"s ~ histogram(\"1\":0.7, \" \":0.3)", "s ~ histogram(\"1\":0.7, \" \":0.3)"},
      {"m ~ gaussian-mixture(0.3:10:1; 0.7:20:2)", "m ~ gaussianmixture(0.3:10:1, 0.7:20:2)"},
      {"y ~ rayleigh(2)", "y ~ rayleigh(2)"},
  };
  for (const auto& row : rows) {
    const NotedVariable variable = ReadVariable(row.written);
    EXPECT_EQ(NotationOf(variable), row.canonical);
    EXPECT_EQ(NotationOf(ReadVariable(row.canonical)), row.canonical) << "reads back";
  }
  EXPECT_EQ(ReadVariable("x ~ weibull(1, 2)").distribution.offset, 0.0);
  EXPECT_EQ(ReadVariable("x ~ normal(0.1, 0.3)").distribution.values, (std::vector<double>{0.1, 0.3}));
  EXPECT_EQ(ReadVariable("x ~ histogram(b:0.4, a:0.6)").distribution.values,
            (std::vector<double>{1, 0.4, 2, 0.6}));
  SetUserNumberLocale({','});
  EXPECT_EQ(NotationOf(ReadVariable("x ~ normal(0.1, 0.3)")), "x ~ normal(location=0.1, scale=0.3)")
      << "in every locale";
  SetUserNumberLocale({});
}

TEST(DistributionNotation, NameThatStandsApartMayHoldAnyCharacter) {
  for (const char* name : {"a ~ b", "# of parts", "correlation a, b = 1"}) {
    const NotedVariable variable = ReadVariable(name, "normal(1, 2)");
    EXPECT_EQ(variable.name, name);
    EXPECT_EQ(variable.distribution.values, (std::vector<double>{1, 2}));
  }
  EXPECT_EQ(ReadVariable(" x ", "normal(1, 2)").name, "x");
  EXPECT_THROW(ReadVariable(" ", "normal(1, 2)"), NotationError);
}

TEST(DistributionNotation, FaultsPointAtTheCharacterAndSayWhatTheTypeTakes) {
  const struct {
    const char* written;
    int character;
    const char* message;
  } rows[] = {
      {"normal(1, 2)", 1, "expected a name, '~' and a distribution"},
      {" ~ normal(1, 2)", 1, "expected the name of a variable"},
      {"h ~ ", 5, "expected a distribution: one of normal, lognormal"},
      {"h ~ nomral(1, 2)", 5, "no distribution is called 'nomral'; did you mean normal?"},
      {"gr\u00F6\u00DFe ~ nomral(1, 2)", 9, "did you mean normal?"},
      {"h ~ cauchy(1, 2)", 5, "no distribution is called 'cauchy'. The distributions are"},
      {"h ~ normal", 11, "normal takes location, scale"},
      {"h ~ normal(1)", 13, "scale is missing; normal takes location, scale"},
      {"h ~ normal(1, 2, 3)", 18, "too many values; normal takes location, scale"},
      {"h ~ normal(1, -2)", 15, "expected a number above 0 for scale, got '-2'"},
      {"h ~ normal(1, x)", 15, "expected a number above 0 for scale, got 'x'"},
      {"h ~ normal(1, )", 15, "got nothing"},
      {"h ~ normal(1, 1e999)", 15, "expected a number above 0"},
      {"h ~ normal(1, scale=2", 22, "expected ')'"},
      {"h ~ normal(scale=2, 1)", 21, "expected a name and '='"},
      {"h ~ normal(scale=2, scale=1)", 27, "scale is given twice"},
      {"h ~ lognormal(mean=2, sd=1)", 15,
       "lognormal has no parameter called 'mean'; it takes scale, shape, offset"},
      {"h ~ triangular(5, 1, 3)", 23, "min must not be above max"},
      {"h ~ triangular(1, 5, 7)", 23, "the mode must lie between min and max"},
      {"h ~ binomial(0.5, 2.5)", 19, "expected a whole number from 1 to 2**53 for trials"},
      {"h ~ bernoulli(1.2)", 15, "expected a number from 0 to 1 for proportion"},
      {"h ~ histogram(0:0.5, 1:0.3)", 27, "the proportions must add up to 1; they add up to 0.8"},
      {"h ~ gaussianmixture(1:0:1)", 26, "a gaussianmixture has from 2 to 20 components, not 1"},
      {"h ~ histogram(0:0.5, 1)", 23, "the last group is not complete; histogram takes code:proportion, …"},
      {"h ~ histogram(0:0.3, 1:0.4, 0:0.3)", 29, "the level 0 is there twice"},
      {"h ~ histogram(a:0.3, b:0.4, a:0.3)", 29, "the level a is there twice"},
      {"h ~ histogram(a:0.3, 2:0.7)", 22, "levels must be all numbers or all texts"},
      {"h ~ histogram(a:0.3, b:0.7) in [1, 2]", 29, "bounds do not apply to levels that are texts"},
      {"h ~ histogram(1:0.3, b:0.7)", 22, "levels must be all numbers or all texts"},
      {"h ~ histogram(\"a:0.3, 2:0.7)", 15, "expected another '\"'"},
      {"h ~ histogram(:1)", 15, "expected a finite number for code, got nothing"},
      {"h ~ johnson(SX, 1, 2, 3, 4)", 13, "expected SL, SU, SB or SN for type, got 'SX'"},
      {"h ~ normal(1, 2) in [3, 2]", 18, "the lower bound must be below the upper one"},
      {"h ~ normal(1, 2) in [, ]", 18, "expected at least one bound"},
      {"h ~ normal(1, 2) in [a, 2]", 22, "expected a number as a bound"},
      {"h ~ normal(1, 2) in (1, 2)", 21, "expected '[' after 'in'"},
      {"h ~ triangular(1, 5, 2) in [6, 7]", 25, "the bounds leave nothing of the distribution"},
      {"h ~ normal(1, 2) x", 18, "expected nothing more, or 'in [MIN, MAX]'"},
  };
  for (const auto& row : rows) {
    try {
      ReadVariable(row.written);
      ADD_FAILURE() << row.written << " is taken";
    } catch (const NotationError& error) {
      EXPECT_NE(std::string(error.what()).find(row.message), std::string::npos)
          << row.written << ": " << error.what();
      EXPECT_EQ(error.Where(), "character " + std::to_string(row.character) + " of '" + row.written + "'")
          << error.what();
    }
  }
}

}  // namespace
}  // namespace brenvolt
