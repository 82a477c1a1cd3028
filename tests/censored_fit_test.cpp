// brenvolt fit of censored values, and quantiles of fits, as a user runs them.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/tables/csv.h"
#include "tests/run_program.h"

namespace brenvolt::test {
namespace {

const std::string kExamples = BRENVOLT_SOURCE_DIR "/examples/";

struct LifeData : testing::Test {
  TemporaryFolder folder;

  Outcome Run(const std::vector<std::string>& arguments) const {
    return RunBrenvolt(arguments, folder.Path());
  }
  void Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder.Path() / name) << text;
  }
  nlohmann::json Report(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--format", "json"});
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return nlohmann::json::parse(outcome.out, nullptr, false);
  }
  // The censoring that a file of values is read with.
  nlohmann::json Censoring(const std::string& text, std::vector<std::string> options) const {
    Write("c.csv", text);
    options.insert(options.begin(), {"fit", "c.csv", "--distributions", "weibull"});
    return Report(options)["variables"][0]["censoring"];
  }
};

// Failure times of generator fans (Nelson 1982), of which R 4.2, survival::survreg, has scale 26296.845 and shape 1.05844585, and
// 10 % of which fail by 3137.24 h (1686.21 to 5836.93).
TEST_F(LifeData, FansAgreeWithSurvreg) {
  const auto fans = Report({"fit", kExamples + "generator_fans.csv", "--continuous", "hours", "--censor",
                            "status", "--distributions", "weibull", "--quantiles", "0.1"})["variables"][0];
  EXPECT_EQ(fans["censoring"]["exact"], 12);
  EXPECT_EQ(fans["censoring"]["right"], 58);
  EXPECT_EQ(fans["curve"]["estimator"], "kaplan-meier");
  const auto& fit = fans["fits"][0];
  EXPECT_NEAR(fit["logLikelihood"], -135.15272, 0.00001);
  EXPECT_NEAR(fit["parameters"][0], 26296.845, 0.01);
  EXPECT_NEAR(fit["parameters"][1], 1.05844585, 1e-7);
  const auto& tenth = fans["quantiles"]["quantiles"][0];
  EXPECT_NEAR(tenth["value"], 3137.24, 0.01);
  EXPECT_NEAR(tenth["byCovariance"]["lower"], 1686.21, 0.01);
  EXPECT_NEAR(tenth["byCovariance"]["upper"], 5836.93, 0.01);
}

TEST_F(LifeData, ValuesAndErrorsHaveDigitsEnoughToBeReadTogether) {
  const std::string fans = Run({"fit", kExamples + "generator_fans.csv", "--continuous", "hours", "--censor",
                                "status", "--distributions", "weibull"})
                               .out;
  EXPECT_NE(fans.find("26296.8 (12251), 1.05845 (0.2683)"), std::string::npos) << fans;
  Write("c.csv", "t,status\n5000001,1\n5000003,1\n5000002,1\n5000004,0\n5000002,1\n");
  const std::string far =
      Run({"fit", "c.csv", "--continuous", "t", "--censor", "status", "--distributions", "normal"}).out;
  EXPECT_NE(far.find("  5000002."), std::string::npos) << far;
}

TEST_F(LifeData, CodesAreReadAsTheFieldWritesThem) {
  const struct {
    const char* text;
    std::vector<std::string> options;
    std::array<int, 4> expected;  // exact, right, left, interval
  } cases[] = {
      {"t,status\n1,1\n2,0\n3,1\n4,1\n", {"--continuous", "t", "--censor", "status"}, {3, 1, 0, 0}},
      {"t,censored\n1,0\n2,1\n3,0\n4,0\n", {"--continuous", "t", "--censor", "censored"}, {3, 1, 0, 0}},
      {"t,k\n1,exact\n2,right\n3,L\n4,Failure\n5,+\n", {"--censor", "k"}, {2, 2, 1, 0}},
      {"t,u,k\n1,,1\n2,3,3\n3,,2\n4,,0\n5,,1\n",
       {"--continuous", "t", "--censor", "k", "--censor-upper", "u"},
       {2, 1, 1, 1}},
      {"t,status\n1,2\n2,1\n3,2\n4,2\n",
       {"--continuous", "t", "--censor", "status", "--censor-event", "2"},
       {3, 1, 0, 0}},
      {"t,d\n1,TRUE\n2,FALSE\n3,TRUE\n4,TRUE\n", {"--censor", "d"}, {3, 1, 0, 0}},
      {"t,censored\n1,FALSE\n2,TRUE\n3,FALSE\n4,FALSE\n", {"--censor", "censored"}, {3, 1, 0, 0}},
      {"t,u\n1,1\n2,3\n,3\n4,\n5,5\n,\n", {"--continuous", "t", "--censor-upper", "u"}, {2, 1, 1, 1}},
      {"t,status,n\n1,1,3\n2,0,2\n3,1,1\n",
       {"--continuous", "t", "--censor", "status", "--weights", "n"},
       {4, 2, 0, 0}}};
  for (const auto& c : cases) {
    const auto found = Censoring(c.text, c.options);
    const std::array<int, 4> counts{found["exact"], found["right"], found["left"], found["interval"]};
    EXPECT_EQ(counts, c.expected) << c.text;
  }
}

TEST_F(LifeData, RefusesWhatIsNotCensored) {
  Write("c.csv", "t,u,status,k\n1,2,1,a\n2,1,0,b\n3,4,5,c\n");
  struct Case {
    std::vector<std::string> options;
    const char* message;
  };
  const Case cases[] = {
      {{"--censor", "none"}, "sheet c has no variable called 'none' (--censor)"},
      {{"--censor", "status"},
       "case 3: '5' in 'status' is not a code of censoring; expected 0 or right, 1 or exact, 2 or "
       "left, 3 or interval, or in a column called after censoring 0 or 1; or say which one is an event "
       "(--censor)"},
      {{"--censor", "status", "--censor-event", "9"}, "no case has '9' in 'status' (--censor-event)"},
      {{"--censor-event", "2"}, "this is what a column of codes holds, which is not named (--censor-event)"},
      {{"--censor-upper", "u"}, "case 2: the upper bound 1 is below the lower one, 2 (--censor-upper)"},
      {{"--censor", "status", "--bootstrap", "9"},
       "samples from a fit would need to know when values are censored; quantiles of censored values have "
       "intervals by the covariance of the estimates (--bootstrap)"},
      {{"--censor", "status", "--rank-by", "ks"},
       "tests need every value; censored ones are ranked by aic or bic (--rank-by)"},
      {{"--censor", "status", "--distributions", "johnson"},
       "the johnson distribution is not fitted to censored values; these are: normal, lognormal, halfnormal, "
       "rayleigh, "
       "weibull, generalextremevalue (--distributions)"}};
  for (const Case& c : cases) {
    std::vector<std::string> arguments{"fit", "c.csv", "--continuous", "t"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2) << c.message;
    EXPECT_EQ(outcome.err, std::string("brenvolt: ") + c.message + "\n");
  }
  EXPECT_NE(
      Run({"fit", "c.csv", "--censor", "status"}).err.find("name the variable that is censored: one of t, u"),
      std::string::npos);
}

// R's data of lung cancer have 1 for a censored time and 2 for a death.
TEST_F(LifeData, CodesOfOneAndTwoBringACaution) {
  Write("c.csv", "t,status\n1,2\n2,1\n3,2\n4,2\n5,1\n");
  const std::vector<std::string> call{"fit",     "c.csv",    "--continuous", "t", "--distributions",
                                      "weibull", "--censor", "status"};
  EXPECT_NE(Run(call).out.find(
                "  note: 'status' holds 1 and 2 alone, which are read as exact and left censored; if 2 "
                "is an event and 1 a censored value, say that the event is 2 (--censor-event)\n"),
            std::string::npos);
  auto said = call;
  said.insert(said.end(), {"--censor-event", "2"});
  EXPECT_EQ(Run(said).out.find("note:"), std::string::npos);
  EXPECT_EQ(Report(said)["variables"][0]["notes"], nlohmann::json::array());
}

TEST_F(LifeData, AColumnCalledStatusBringsAHint) {
  Write("c.csv", "t,status,x\n1,1,1\n2,0,3\n3,1,2\n4,0,5\n5,1,4\n");
  EXPECT_NE(
      Run({"fit", "c.csv", "--continuous", "t", "--distributions", "normal"})
          .err.find("'status' may say which values are censored, that is, known only by a bound; to fit them "
                    "as such, give it as the column of censoring\n"),
      std::string::npos);
  Write("r.csv", "t,fustat,x\n1,1,1\n2,2,3\n3,1,2\n4,2,5\n5,1,4\n");
  EXPECT_NE(Run({"fit", "r.csv", "--continuous", "t", "--distributions", "normal"})
                .err.find("as the column of censoring, and 2 as the code of an event\n"),
            std::string::npos);
  EXPECT_EQ(Run({"fit", "c.csv", "--continuous", "t", "--censor", "status", "--distributions", "normal"}).err,
            "");
  Write("d.csv", "t,statusx\n1,1\n2,7\n3,1\n4,0\n");
  EXPECT_EQ(Run({"fit", "d.csv", "--continuous", "t", "--distributions", "normal"}).err, "");
}

// Over the values that the fit took: selected cases, as often as they count, and complete ones if cases are left out as a whole.
TEST_F(LifeData, ProfileLikelihoodIsThatOfTheValuesThatWereFitted) {
  const std::string values = "2.1 3.7 5.2 1.4 6.8 4.4 2.9 3.3";
  std::string plain = "x\n";
  std::string weighted = "x,n,y\n";
  std::istringstream words(values);
  for (std::string one; words >> one;) {
    plain += one + "\n" + one + "\n";
    weighted += one + ",2,1\n" + one + "9,3,\n99,5,3\n";
  }
  Write("plain.csv", plain);
  Write("weighted.csv", weighted);
  const auto intervals = [&](const std::vector<std::string>& more) {
    std::vector<std::string> call{"fit",         more.front(), "--distributions", "weibull",
                                  "--quantiles", "0.1",        "--exceed",        "6",
                                  "--intervals", "profile"};
    call.insert(call.end(), more.begin() + 1, more.end());
    const auto found = Report(call)["variables"][0]["quantiles"];
    const auto& row = found["quantiles"][0];
    EXPECT_LT(row["byProfile"]["lower"], row["value"]);
    EXPECT_GT(row["byProfile"]["upper"], row["value"]);
    return row["byProfile"].dump() + found["exceedances"][0]["byProfile"].dump();
  };
  const std::string expected = intervals({"plain.csv"});
  EXPECT_EQ(intervals({"weighted.csv", "--continuous", "x,y", "--weights", "n", "--select", "x < 50",
                       "--missing", "casewise"}),
            expected);
  // The same values and the one way to say that all of them are exact.
  std::string coded = "x,status\n";
  std::istringstream lines(plain.substr(2));
  for (std::string one; lines >> one;) coded += one + ",1\n";
  Write("coded.csv", coded);
  const auto asLife = Report({"fit", "coded.csv", "--continuous", "x", "--censor", "status",
                              "--distributions", "weibull", "--quantiles", "0.1", "--intervals", "profile"});
  const auto asValues = Report(
      {"fit", "plain.csv", "--distributions", "weibull", "--quantiles", "0.1", "--intervals", "profile"});
  for (const char* end : {"lower", "upper"}) {
    const auto of = [end](const nlohmann::json& report) {
      return report["variables"][0]["quantiles"]["quantiles"][0]["byProfile"][end].get<double>();
    };
    EXPECT_NEAR(of(asLife), of(asValues), 1e-7) << end;
  }
}

TEST_F(LifeData, QuantilesStandInRowsOfTheirFits) {
  const std::vector<std::string> call{
      "fit", kExamples + "portpirie_sea_level.csv", "--quantiles", "0.1", "--exceed", "4.5"};
  const auto found = Report(call)["variables"][0]["quantiles"];
  auto asCsv = call;
  asCsv.insert(asCsv.end(), {"--format", "csv"});
  Write("fits.csv", Run(asCsv).out);
  const Spreadsheet fits = ReadCsv(folder.Path() / "fits.csv");
  const auto best = [&](const std::string& column) {
    return fits.VariableAt(fits.FindVariable(column).value()).Values()[0];
  };
  const auto& tenth = found["quantiles"][0];
  const auto& beyond = found["exceedances"][0];
  EXPECT_EQ(best("quantile.0.1"), tenth["value"].get<double>());
  EXPECT_EQ(best("quantile.0.1_lower"), tenth["byCovariance"]["lower"].get<double>());
  EXPECT_EQ(best("exceedance.4.5"), beyond["probability"].get<double>());
  EXPECT_EQ(best("exceedance.4.5_upper"), beyond["byCovariance"]["upper"].get<double>());
  EXPECT_TRUE(fits.VariableAt(fits.FindVariable("quantile.0.1").value()).IsMissing(1));
}

TEST_F(LifeData, QuantilesHaveIntervalsByCovarianceAndBootstrap) {
  const auto found = Report({"fit", kExamples + "portpirie_sea_level.csv", "--distributions",
                             "generalextremevalue", "--return-periods", "10,100", "--exceed", "4.5",
                             "--bootstrap", "100"})["variables"][0]["quantiles"];
  EXPECT_EQ(found["distribution"], "General Extreme Value");
  // Coles (2001), section 3.4.1.
  EXPECT_NEAR(found["quantiles"][0]["value"], 4.30, 0.005);
  EXPECT_NEAR(found["quantiles"][1]["value"], 4.69, 0.005);
  for (const auto& row : found["quantiles"]) {
    for (const char* kind : {"byCovariance", "byBootstrap"}) {
      EXPECT_LT(row[kind]["lower"], row["value"]) << kind;
      EXPECT_GT(row[kind]["upper"], row["value"]) << kind;
    }
  }
  EXPECT_LT(found["exceedances"][0]["byCovariance"]["upper"], 1);
}

}  // namespace
}  // namespace brenvolt::test
