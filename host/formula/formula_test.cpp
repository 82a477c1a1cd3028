#include "host/formula/formula.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>

#include "host/base/almost_equal.h"

namespace brenvolt {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
const std::vector<std::string_view> kNames{"x", "wait time", "Größe", "flow.rate", "it's"};
const std::vector<double> kX{1, 2, -3, 0};
const std::vector<double> kWait{10, -9, 30, kNan};
const std::vector<double> kOther{4, 5, 6, 7};
const std::vector<FormulaColumn> kColumns{{kX}, {kWait, -9}, {kOther}, {kOther}, {kOther}};

void ExpectSame(double value, double expected, const std::string& what) {
  if (std::isnan(expected)) {
    EXPECT_TRUE(std::isnan(value)) << what << " gives " << value;
  } else {
    EXPECT_DOUBLE_EQ(value, expected) << what;
  }
}

// The constant value of a formula without variables; the same formula over columns runs the array forms.
double Constant(std::string_view text) {
  return Formula(text, {}).Evaluate({}, 1).front();
}

TEST(Formula, OperatorsBindAsASpreadsheetUserOrAMathematicianExpects) {
  const std::pair<const char*, double> cases[] = {
      {"2+3*4", 14},
      {"(2+3)*4", 20},
      {"2-3-4", -5},
      {"24/4/3", 2},
      {"2^3^2", 512},
      {"-2^2", -4},
      {"(-2)^2", 4},
      {"2^-1", 0.5},
      {"2^-2^2", 0.0625},
      {"2*-3", -6},
      {"--3 - -+2", 5},
      {"4/2^2", 1},
      {"1+1 = 2", 1},
      {"1 < 2 and 2 < 1 or 3 > 2", 1},
      {"1 or 0 and 0", 1},
      {"not 1 = 2", 1},
      {"not not 5", 1},
      {"not(2 > 1)*5 + 1", 1},
      {"NOT (1 > 2)*5", 5},
      {"not(0) = 3", 0},
      {"!(1 > 2)*5", 1},
      {"NOT 0 & 0 | 1", 1},
      {"! 1 || 0 && 1", 0},
      {"2*not(0) + AND(1, 2, 3) + or(0, 0)", 3},
      {"(1 = 1) = (2 = 2)", 1},
      {"1 <> 1", 0},
      {"1 != 2", 1},
      {"2 >= 2", 1},
      {".5e1 + 5. + 1E-1", 10.1},
      {"=1+1", 2},
  };
  for (const auto& [text, expected] : cases) ExpectSame(Constant(text), expected, text);
}

TEST(Formula, FunctionsAnswerAtTheirEdges) {
  const std::pair<const char*, double> cases[] = {
      {"Round(2.5) + round(-2.5)", 0},
      {"round(-2.5)", -3},
      {"round(1234.567, 2)", 1234.57},
      {"round(1250, -2)", 1300},
      {"round(1.5, 400)", 1.5},
      {"round(1.5, -400)", 0},
      {"round(1e300, 20)", 1e300},
      {"floor(-1.5)", -2},
      {"CEIL(-1.5)", -1},
      {"trunc(-1.5)", -1},
      {"mod(7, 3)", 1},
      {"mod(-7, 3)", 2},
      {"mod(7, -3)", -2},
      {"mod(6, 3)", 0},
      {"mod(6, 0)", kNan},
      {"sign(-2) + sign(0) + sign(5)*3", 2},
      {"min(3, 1, 2)", 1},
      {"max(3; 1; 2)", 3},
      {"min(4)", 4},
      {"max(1, missing, 3)", kNan},
      {"min(missing, 1)", kNan},
      {"sum(1, 2, 3) / mean(1, 2, 3)", 3},
      {"ln(Euler^2)", 2},
      {"log(euler)", 1},
      {"log(8, 2)", 3},
      {"log(8, 1)", kNan},
      {"log10(1000) + log2(8)", 6},
      {"ln(0)", kNan},
      {"log10(0)", kNan},
      {"if(1, 2, ln(-1))", 2},
      {"cos(PI)", -1},
      {"atan2(1, -1)*4/pi", 3},
      {"sqrt(-1)", kNan},
      {"asin(2)", kNan},
      {"1/0", kNan},
      {"0/0", kNan},
      {"0^-1", kNan},
      {"0^0", 1},
      {"missing^0", kNan},
      {"1^missing", kNan},
      {"(-8)^(1/3)", kNan},
      {"exp(1000)", kNan},
      {"1/(1+exp(1000))", 0},
      {"missing > 1", kNan},
      {"missing = missing", kNan},
      {"1 or missing", kNan},
      {"not missing", kNan},
      {"sign(missing)", kNan},
      {"and(5) + or(-2, 0)", 2},
      {"ismissing(1/0) + ismissing(1)", 1},
      {"NormalQuantile(2, 0, 1)", kNan},
      {"NormalDensity(0, 0, -1)", kNan},
  };
  for (const auto& [text, expected] : cases) ExpectSame(Constant(text), expected, text);
}

TEST(Formula, MissingValuesPropagateFromWhatIsNeededOnly) {
  struct Case {
    const char* formula;
    std::vector<double> expected;
  };
  const Case cases[] = {
      {"'wait time'", {10, kNan, 30, kNan}},
      {"\"wait time\" * 0", {0, kNan, 0, kNan}},
      {"v2 + V1", {11, kNan, 27, kNan}},
      {"if(x > 1, 5, v2)", {10, 5, 30, kNan}},
      {"if(v2 > 10, 1, 0)", {0, kNan, 1, kNan}},
      {"if(v2, x, 0)", {1, kNan, -3, kNan}},
      {"if(ismissing(v2), 0, v2)", {10, 0, 30, 0}},
      {"1/x", {1, 0.5, -1.0 / 3, kNan}},
      {"x/(x-2)", {-1, kNan, 0.6, 0}},
      {"x^2", {1, 4, 9, 0}},
      {"x^-2", {1, 0.25, 1.0 / 9, kNan}},
      {"2^x", {2, 4, 0.125, 1}},
      {"10 - x", {9, 8, 13, 10}},
      {"(x+1)*(x-1) - (x*x - (2-1))", {0, 0, 0, 0}},
      {"v0", {1, 2, 3, 4}},
      {"v0 - x", {0, 0, 6, 4}},
      {"Größe + flow.rate - 'it''s'", {4, 5, 6, 7}},
      {"7", {7, 7, 7, 7}},
      {"NormalCdf(0, x, v0) * 2", {0.31731050786291415, 0.31731050786291415, 1.682689492137086, 1}},
  };
  for (const Case& c : cases) {
    const auto result = Formula(c.formula, kNames).Evaluate(kColumns, 4);
    for (std::size_t i = 0; i < 4; ++i) {
      ExpectSame(result[i], c.expected[i], std::string(c.formula) + " case " + std::to_string(i));
    }
  }
}

TEST(Formula, FaultNamesWhatIsWrongAndItsCharacter) {
  struct Case {
    const char* text;
    std::size_t character;
    const char* what;
  };
  const Case cases[] = {
      {"2*x + Tmep", 7, "unknown name 'Tmep'"},
      {"Größe + Tmep", 9, "unknown name 'Tmep'"},
      {"'Wait time'", 1, "unknown name 'Wait time'"},
      {"'pi'", 1, "unknown name 'pi'"},
      {"v6 + 1", 1, "unknown name 'v6'"},
      {"1 + sqr(x)", 5, "unknown function 'sqr'"},
      {"atan2(x)", 8, "'atan2' takes 2 values, not 1"},
      {"if(x, 1)", 8, "'if' takes 3 values, not 2"},
      {"min()", 5, "'min' takes 1 or more values, not 0"},
      {"LogNormalCdf(x, 1)", 18, "'LogNormalCdf' takes 3 to 4 values, not 2"},
      {"1 + ", 5, "the formula is incomplete"},
      {"sin(x", 6, "')' is missing"},
      {"(x, 1)", 3, "unexpected ','"},
      {"x 2", 3, "unexpected '2'"},
      {"2 (x)", 3, "unexpected '('"},
      {"1.2.3", 1, "'1.2.3' is not a number"},
      {"1e + 2", 1, "'1e' is not a number"},
      {"1e999", 1, "the number 1e999 is too large"},
      {"x = and", 5, "unexpected 'and'"},
      {"x # 2", 3, "unexpected '#'"},
      {"  ", 1, "the formula is empty"},
  };
  for (const Case& c : cases) {
    try {
      Formula(c.text, kNames, "Yield");
      ADD_FAILURE() << c.text;
    } catch (const FormulaError& error) {
      EXPECT_STREQ(error.what(), c.what) << c.text;
      EXPECT_EQ(error.Where(), "Yield, character " + std::to_string(c.character));
    }
  }
}

TEST(Formula, AssignmentKeepsThePlacesOfTheWholeText) {
  struct Case {
    const char* text;
    std::optional<std::string> name;
    double value;
  };
  const Case cases[] = {{"Y = 1 + 2", "Y", 3},      {"'Yield %' := 4", "Yield %", 4},
                        {"Y=2=3", "Y", 0},          {"2*3", std::nullopt, 6},
                        {"= 5", std::nullopt, 5},   {"pi == 3", std::nullopt, 0},
                        {"sin(0)", std::nullopt, 0}};
  for (const Case& c : cases) {
    const FormulaAssignment split = SplitAssignment(c.text);
    EXPECT_EQ(split.name, c.name) << c.text;
    EXPECT_EQ(Formula(c.text, {}, "formula", split.begin).Evaluate({}, 1).front(), c.value) << c.text;
  }
  const std::pair<const char*, std::size_t> faults[] = {{"Y = 2*Tmep", 7}, {"Y = ", 4}, {"Y =", 4}};
  for (const auto& [text, character] : faults) {
    try {
      Formula(text, {}, "formula", SplitAssignment(text).begin);
      ADD_FAILURE() << text;
    } catch (const FormulaError& error) {
      EXPECT_EQ(error.Where(), "formula, character " + std::to_string(character)) << text;
    }
  }
}

TEST(Formula, UsesOnlyTheColumnsThatItNames) {
  const Formula formula("flow.rate + v0 + v1 + flow.rate", kNames);
  EXPECT_EQ(std::vector<std::size_t>(formula.Used().begin(), formula.Used().end()),
            (std::vector<std::size_t>{3, 0}));
  std::vector<FormulaColumn> columns(kNames.size());
  columns[0] = {kX};
  columns[3] = {kOther};
  EXPECT_EQ(formula.Evaluate(columns, 2), (std::vector<double>{10, 14}));
}

// The code itself and its neighbours within the tolerance, on either side, also at the ends of the doubles.
TEST(Formula, MissingCodeIsRecognisedAsVariablesRecogniseIt) {
  const Formula formula("x", std::vector<std::string_view>{"x"});
  for (const double code : {-9.0, 0.0, 5e-324, std::numeric_limits<double>::max(), -9999.25}) {
    double x = code;
    for (int step = 0; step < 20; ++step, x = std::nextafter(x, -1e5)) {
      double y = 0;
      formula.Evaluate(std::vector<FormulaColumn>{{{&x, 1}, code}}, {&y, 1});
      EXPECT_EQ(std::isnan(y), IsMissingValue(x, code)) << code << " and " << step;
    }
  }
}

// Blocks, tasks and threads must not show; nor must the place of the results.
TEST(Formula, LargeColumnsGiveWhatSingleCasesGive) {
  const std::size_t cases = 100'001;
  std::vector<double> x(cases);
  std::vector<double> y(cases);
  for (std::size_t i = 0; i < cases; ++i) {
    x[i] = std::sin(static_cast<double>(i)) * 3;
    y[i] = i % 97 == 0 ? -9 : std::cos(static_cast<double>(i * i % 1000));
  }
  const std::vector<std::string_view> names{"x", "y"};
  const Formula formula("if(x > y, exp(x) - (y*y + (x - y)*(x + y)), NormalCdf(x, y, 2)) + v0", names);
  const auto bulk = formula.Evaluate(std::vector<FormulaColumn>{{x}, {y, -9}}, cases);
  for (std::size_t i = 0; i < cases; i += 491) {
    double single = 0;
    const std::vector<FormulaColumn> columns{{{&x[i], 1}}, {{&y[i], 1}, -9}};
    formula.Evaluate(columns, {&single, 1}, i + 1);
    ExpectSame(bulk[i], single, "case " + std::to_string(i));
  }
  std::vector<std::vector<double>> results(4, x);
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&] { formula.Evaluate(std::vector<FormulaColumn>{{result}, {y, -9}}, result); });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& result : results) {
    for (std::size_t i = 0; i < cases; ++i) ASSERT_TRUE(result[i] == bulk[i] || std::isnan(bulk[i])) << i;
  }
}

}  // namespace
}  // namespace brenvolt
