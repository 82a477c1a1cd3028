// brenvolt capability as a user runs it.
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/tables/csv.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const std::string kProcess = BRENVOLT_SOURCE_DIR "/examples/process.csv";

using CapabilityCommand = Command;

// The deviations by base R (host/statistics/reference/make_subgroup_table.R).
TEST_F(CapabilityCommand, EstimatesTheDeviationWithinAsAsked) {
  const struct {
    const char* word;
    double deviation;
  } cases[] = {{"s-bar", 0.0495589978763}, {"r-bar", 0.049585923}, {"pooled", 0.0483390801181}};
  for (const auto& c : cases) {
    const auto report = Report({"capability", kProcess, "--response", "size", "--spec", "size=5.49,5.64,5.79",
                                "--subgroup", "sample", "--within", c.word});
    EXPECT_NEAR(report["indices"]["cp"]["value"], 0.3 / (6 * c.deviation), 1e-6) << c.word;
    EXPECT_NEAR(report["indices"]["cpk"]["value"], (5.6136 - 5.49) / (3 * c.deviation), 1e-6) << c.word;
  }
  const auto singles = Report({"capability", kProcess, "--spec", "size=5.49,,5.79"});
  EXPECT_EQ(singles["stability"]["controlChart"], "i-mr");
  EXPECT_EQ(singles["deviations"]["within"], "moving-range");
  EXPECT_TRUE(singles["indices"]["cpm"]["value"].is_null());
}

TEST_F(CapabilityCommand, RowsAsCsvAreTheFiguresOfJson) {
  const std::vector<std::string> call{"capability",          kProcess,     "--spec",
                                      "size=5.49,5.64,5.79", "--subgroup", "5"};
  std::vector<std::string> asCsv = call;
  asCsv.insert(asCsv.end(), {"--format", "csv"});
  Write("figures.csv", Run(asCsv).out);
  const Spreadsheet figures = ReadCsv(folder.Path() / "figures.csv");
  const auto report = Report(call);
  ASSERT_EQ(figures.CaseCount(), 25U);
  for (std::size_t i = 0; i < 9; ++i) {
    const std::string name(*figures.VariableAt(1).Label(figures.VariableAt(1).Values()[i]));
    EXPECT_EQ(figures.VariableAt(2).Values()[i], report["indices"][name]["value"].get<double>()) << name;
  }
}

TEST_F(CapabilityCommand, GroupsByColumnAsBySize) {
  const auto column =
      Report({"capability", kProcess, "--spec", "size=5.49,5.64,5.79", "--subgroup", "sample"});
  auto size = Report({"capability", kProcess, "--spec", "size=5.49,5.64,5.79", "--subgroup", "5"});
  EXPECT_EQ(column, size);
  // A case without a value makes its subgroup smaller, a subgroup of one takes no part.
  Write("d.csv", "y,g\n1,a\n2,a\n4,b\n,b\n3,a\n5,c\n7,c\n6,\n2,c\n");
  const auto gaps = Report({"capability", "d.csv", "--spec", "y=0,,9", "--subgroup", "g"});
  EXPECT_EQ(gaps["n"], 8);
  EXPECT_EQ(gaps["subgroups"]["count"], 2);
  EXPECT_EQ(gaps["stability"]["location"]["names"], (nlohmann::json{"a", "c"}));
  EXPECT_NEAR(gaps["deviations"]["pooled"]["value"], std::sqrt((2 + 38.0 / 3) / 4), 1e-12);
  EXPECT_EQ(gaps["notes"].size(), 3U);
}

TEST_F(CapabilityCommand, WarnsBeforeAnyIndexThatTheProcessIsNotStable) {
  std::string text = "y\n";
  for (int i = 0; i < 40; ++i) text += std::to_string(10 + i % 3 + (i < 30 ? 0 : 6)) + "\n";
  Write("d.csv", text);
  const Outcome outcome = Run({"capability", "d.csv", "--spec", "y=0,,30", "--rules", "nelson"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const auto warning = outcome.out.find("warning: the process is not stable: ");
  ASSERT_NE(warning, std::string::npos) << outcome.out;
  EXPECT_LT(warning, outcome.out.find("Cp, Pp"));
  EXPECT_NE(outcome.out.find("9 points in a row on one side of the centre (rule 2)"), std::string::npos)
      << outcome.out;
}

// Values that are exponential but for rounding, so that the percentiles of a normal process would lie below 0.
TEST_F(CapabilityCommand, TakesPercentilesWhereTheValuesAreNotNormal) {
  std::string text = "y\n";
  for (int i = 1; i <= 200; ++i) text += std::to_string(-std::log(1 - (i * 79 % 200 + 0.5) / 200)) + "\n";
  Write("d.csv", text);
  const auto best = Report({"capability", "d.csv", "--spec", "y=,,6"});
  EXPECT_LT(best["normality"]["pValue"], 0.05);
  EXPECT_GT(best["percentiles"]["lowPoint"], 0);
  const auto named = Report({"capability", "d.csv", "--spec", "y=,,6", "--distribution", "weibull"});
  EXPECT_TRUE(named["percentiles"]["distribution"].get<std::string>().starts_with("weibull("));
  // Of the exponential distribution: (6 - ln 2) / (-ln 0.00135 - ln 2).
  const auto& ppu = named["percentiles"]["ppu"];
  const auto& above = named["percentiles"]["expectedPpm"]["above"];
  EXPECT_NEAR(ppu["value"], 0.8972, 0.01);
  EXPECT_NEAR(above["value"], 2479, 200);
  EXPECT_TRUE(ppu["lower"].is_null());
  const auto bootstrapped =
      Report({"capability", "d.csv", "--spec", "y=,,6", "--distribution", "weibull", "--bootstrap", "200"});
  for (const auto& row :
       {bootstrapped["percentiles"]["ppu"], bootstrapped["percentiles"]["expectedPpm"]["above"]}) {
    EXPECT_LT(row["lower"], row["value"]);
    EXPECT_GT(row["upper"], row["value"]);
  }
  EXPECT_EQ(bootstrapped["percentiles"]["ppu"]["value"], ppu["value"]);
}

// Two heaps of values that no distribution but one of the data fits.
TEST_F(CapabilityCommand, SaysWhichTestsRefuseThePercentiles) {
  std::string text = "y\n";
  for (int i = 0; i < 200; ++i) text += std::to_string((i % 2 == 0 ? 10 : 20) + 0.01 * (i * 79 % 200)) + "\n";
  Write("d.csv", text);
  const auto notes = [&](const std::vector<std::string>& more) {
    std::vector<std::string> call{"capability", "d.csv", "--spec", "y=0,,30"};
    call.insert(call.end(), more.begin(), more.end());
    return Report(call)["notes"].dump();
  };
  const std::string weibull = notes({"--distribution", "weibull"});
  EXPECT_NE(weibull.find("the weibull distribution does not fit these values either (K-S p "),
            std::string::npos)
      << weibull;
  // The percentiles of a normal process are those of the figures overall.
  const auto normal = Report({"capability", "d.csv", "--spec", "y=0,,30", "--distribution", "normal"});
  EXPECT_TRUE(normal["percentiles"].is_null());
  EXPECT_NE(normal["notes"].dump().find("the normal distribution that was named does not fit these values"),
            std::string::npos);
  EXPECT_EQ(normal["notes"].dump().find("read the indices"), std::string::npos) << normal["notes"];
  const auto byAic = Report({"capability", "d.csv", "--spec", "y=0,,30", "--rank-by", "aic"});
  EXPECT_EQ(byAic["percentiles"]["distribution"].get<std::string>().substr(0, 15), "gaussianmixture");
}

TEST_F(CapabilityCommand, SaysThatFewPartsTellLittle) {
  for (const auto& [parts, isSaid] : {std::pair(49, true), {50, false}}) {
    std::string text = "y\n";
    for (int i = 0; i < parts; ++i) text += std::to_string(10 + i * 37 % parts) + "\n";
    Write("d.csv", text);
    const auto report = Report({"capability", "d.csv", "--spec", "y=0,,90"});
    EXPECT_EQ(report["notes"].dump().find("49 parts are few: read the intervals. Only from 50 parts on") !=
                  std::string::npos,
              isSaid)
        << report["notes"];
    // What the number rests on.
    const auto& pp = report["indices"]["pp"];
    EXPECT_NEAR(pp["lower"].get<double>() / pp["value"].get<double>(), 0.8, 0.005);
    EXPECT_NEAR(pp["upper"].get<double>() / pp["value"].get<double>(), 1.2, 0.005);
  }
}

TEST_F(CapabilityCommand, RefusesWhatHasNoCapability) {
  Write("d.csv", "y,c,t,one,n,w\n1,5,a,3,1,1\n2,5,b,,2,1\n3,5,c,,3,2\n4,5,d,,4,2\n");
  struct Case {
    std::vector<std::string> arguments;
    const char* message;
  };
  const Case cases[] = {
      {{"--spec", "y=3,,3"}, "'y': the lower limit must be less than the upper one (--spec)"},
      {{"--spec", "y=1,5,3"}, "'y': the target lies outside the limits (--spec)"},
      {{"--spec", "y=,,"}, "'y': expected a lower or an upper limit (--spec)"},
      {{"--response", "y"}, "missing specification: capability is judged against limits (--spec)"},
      {{"--response", "y", "--spec", "c=1,,3"}, "'c' is not the response, which is 'y' (--spec)"},
      {{"--spec", "z=1,,3"}, "sheet d has no variable called 'z' (--response)"},
      {{"--spec", "t=1,,3"}, "'t' is a text variable; capability is that of numbers (--response)"},
      {{"--spec", "c=1,,3"}, "'c': all 4 values are 5, so there is no deviation to judge by (--response)"},
      {{"--spec", "one=1,,3"}, "'one' has 1 value; at least 2 are needed (--response)"},
      {{"--spec", "y=1,,3", "--subgroup", "1"},
       "subgroups of 1 value have no deviation within; leave this out for single values (--subgroup)"},
      {{"--spec", "y=1,,3", "--subgroup", "n"},
       "no subgroup has two values or more; leave this out for single values (--subgroup)"},
      {{"--spec", "y=1,,3", "--subgroup", "9"}, "expected a whole number from 2 to 4, got 9 (--subgroup)"},
      {{"--spec", "y=1,,3", "--subgroup", "m"}, "sheet d has no variable called 'm' (--subgroup)"},
      {{"--spec", "y=1,,3", "--within", "r-bar"},
       "the values have no subgroups, so the deviation within is that of moving-range (--within)"},
      {{"--spec", "y=1,,3", "--control-chart", "x-bar-r"},
       "the values have no subgroups, so their chart is i-mr (--control-chart)"},
      {{"--spec", "y=1,,3", "--rules", "none"},
       "expected one of nelson, western-electric; got 'none' (--rules)"},
      {{"--spec", "y=1,,3", "--distribution", "poisson"},
       "the poisson distribution is for discrete variables (--distribution)"},
      {{"--spec", "y=1,,3", "--distribution", "weibull", "--rank-by", "aic"},
       "a distribution is named, so there is none to choose (--rank-by)"},
      {{"--spec", "y=1,,3", "--confidence", "95"},
       "expected a number between 0 and 1, got 95 (--confidence)"},
      {{"--spec", "y=1,,3", "--select", "y > 9"}, "no case meets the condition 'y > 9' (--select)"}};
  for (const Case& c : cases) {
    std::vector<std::string> arguments{"capability", "d.csv"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2) << c.message;
    EXPECT_EQ(outcome.err, std::string("brenvolt: ") + c.message + "\n");
    EXPECT_EQ(outcome.out, "");
  }
}

}  // namespace
}  // namespace brenvolt::test
