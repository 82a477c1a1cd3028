// Fits as a user asks for them: known answers on real data, options, and reports.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "host/base/number_text.h"
#include "host/tables/csv.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const Json& FitOf(const Json& variable, const std::string& distribution) {
  for (const Json& fit : variable["fits"]) {
    if (fit["distribution"] == distribution) return fit;
  }
  throw std::runtime_error("no fit of " + distribution);
}

// References: Weibull by mpmath; log-normal of the Danish losses as printed in the literature; Poisson mean
// likewise.
TEST_F(Command, FitMeetsTheKnownAnswers) {
  auto json = Json::parse(MustRun({"fit", kExamples + "groundbeef.csv", "--format", "json"}).out);
  const Json& beef = json["variables"][0];
  EXPECT_EQ(beef["n"], 254);
  EXPECT_EQ(beef["kind"], "continuous");
  EXPECT_EQ(beef["fits"].size(), 11U);
  const Json& weibull = FitOf(beef, "Weibull");
  EXPECT_EQ(weibull["code"], 5);
  EXPECT_NEAR(weibull["parameters"][0], 83.34666883163219, 1e-9);
  EXPECT_NEAR(weibull["parameters"][1], 2.185612332259384, 1e-9);
  EXPECT_NEAR(weibull["logLikelihood"], -1255.224719863648206, 1e-9);
  EXPECT_NEAR(weibull["kolmogorovSmirnov"]["statistic"], 0.13962622917, 1e-6);
  EXPECT_NEAR(weibull["aic"], 2 * (2 + 1255.224719863648206), 1e-8);
  EXPECT_NEAR(weibull["bic"], 2 * std::log(254.0) + 2 * 1255.224719863648206, 1e-8);

  json = Json::parse(MustRun({"fit", kExamples + "danish_fire_losses.csv", "--format", "json"}).out);
  const Json& lognormal = FitOf(json["variables"][0], "Log Normal");
  EXPECT_NEAR(lognormal["parameters"][0], 0.78695, 5e-6);
  EXPECT_NEAR(lognormal["parameters"][1], 0.71655, 5e-6);

  json = Json::parse(
      MustRun({"fit", kExamples + "toxocara.csv", "--discrete", "number", "--format", "json"}).out);
  EXPECT_NEAR(FitOf(json["variables"][0], "Poisson")["parameters"][0], 8.679, 5e-4);
}

// Coles (2001), section 3.4.1 (a location of 3.87475 to six digits, printed rounded up), and the two
// components of the geyser's eruptions.
TEST_F(Command, FitMeetsTheKnownAnswersOfTheSearchedTypes) {
  struct Case {
    const char* file;
    const char* type;
    std::vector<double> printed;
    double tolerance;  // half a unit of the last printed digit
  };
  const Case cases[] = {
      {"portpirie_sea_level.csv", "General Extreme Value", {3.8748, 0.1980, -0.0501}, 5.1e-5},
      {"faithful.csv", "Gaussian Mixture", {0.348, 2.019, 0.236, 0.652, 4.273, 0.437}, 5e-4}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const auto json = Json::parse(MustRun({"fit", kExamples + c.file, "--format", "json"}).out);
    const Json& parameters = FitOf(json["variables"][0], c.type)["parameters"];
    ASSERT_EQ(parameters.size(), c.printed.size());
    for (std::size_t i = 0; i < c.printed.size(); ++i) {
      EXPECT_NEAR(parameters[i], c.printed[i], c.tolerance) << "parameter " << i + 1;
    }
  }
}

TEST_F(Command, OptionsOfFitReachTheFit) {
  WriteBytes(File("d.csv"), "x,y,w,g\n1,2,1,1\n2,,2,1\n4,3,1,0\n8,9,1,1\nNA,5,3,0\n");
  const auto fit = [&](std::vector<std::string> more) {
    std::vector<std::string> arguments{"fit", "d.csv", "--continuous", "x", "--format", "json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Json::parse(MustRun(arguments).out)["variables"];
  };
  EXPECT_EQ(fit({})[0]["n"], 4);
  EXPECT_EQ(fit({})[0]["missing"], 1);
  EXPECT_EQ(fit({"--continuous", "y", "--missing", "casewise", "--distributions", "normal"})[0]["n"], 3);
  EXPECT_EQ(fit({"--weights", "w"})[0]["n"], 5);
  EXPECT_EQ(fit({"--select", "g = 1", "--distributions", "normal"})[0]["n"], 3);
  const Json shifted = fit({"--distributions", "weibull", "--offset", "x:weibull=0.5"})[0]["fits"];
  ASSERT_EQ(shifted.size(), 1U);
  EXPECT_EQ(shifted[0]["offset"], 0.5);
  const Json failed = fit({"--distributions", "weibull,normal", "--offset", "x:weibull=1"})[0]["fits"];
  EXPECT_TRUE(failed[1]["parameters"].is_null()) << "a value equals the offset";
  EXPECT_TRUE(failed[1]["kolmogorovSmirnov"]["statistic"].is_null());
}

// A name that reached no member of the dialog, or the wrong one, would stop the job or rank otherwise.
TEST_F(Command, EveryDistributionAndRankingIsKnownByItsName) {
  std::string data = "x=1,n\n";
  for (int i = 0; i < 60; ++i) {
    data += std::to_string(10 + (i * 37) % 61) + ".5," + std::to_string(i * i % 4) + "\n";
  }
  WriteBytes(File("d.csv"), data);
  const auto fit = [&](std::vector<std::string> more) {
    std::vector<std::string> arguments{"fit", "d.csv", "--continuous", "x=1", "--discrete", "n"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return MustRun(arguments).out;
  };
  const Json all = Json::parse(fit({"--format", "json"}))["variables"];
  const Json named =
      Json::parse(fit({"--format", "json", "--distributions",
                       "normal,lognormal,foldednormal,halfnormal,rayleigh,weibull,gaussianmixture,johnson,"
                       "generalextremevalue,generalpareto,triangular",
                       "--distributions", "binomial,poisson,geometric,bernoulli,histogram", "--mixtures",
                       "x=1=2", "--trials", "n=3", "--johnson-percentiles", "--bootstrap", "1",
                       "--bootstrap-seed", "0", "--binning", "equal-interval"}))["variables"];
  for (const std::size_t v : {0U, 1U}) EXPECT_EQ(named[v]["fits"].size(), all[v]["fits"].size());
  const struct {
    std::vector<std::string> options;
    const char* continuous;
    const char* discrete;
  } rankings[] = {
      {{}, "Kolmogorov-Smirnov", "Kolmogorov-Smirnov"},
      {{"--rank-by", "ks"}, "Kolmogorov-Smirnov", "Kolmogorov-Smirnov"},
      {{"--rank-by", "chi-square"}, "Chi-square", "Kolmogorov-Smirnov"},
      {{"--rank-by", "anderson-darling"}, "Anderson-Darling", "Kolmogorov-Smirnov"},
      {{"--discrete-rank-by", "ks"}, "Kolmogorov-Smirnov", "Kolmogorov-Smirnov"},
      {{"--discrete-rank-by", "chi-square"}, "Kolmogorov-Smirnov", "Chi-square"},
  };
  for (const auto& ranking : rankings) {
    const std::string report = fit(ranking.options);
    const auto second = report.find("n (discrete)");
    ASSERT_NE(second, std::string::npos);
    EXPECT_LT(report.find("Ranked by: " + std::string(ranking.continuous) + "\n"), second) << report;
    EXPECT_NE(report.find("Ranked by: " + std::string(ranking.discrete) + "\n", second), std::string::npos)
        << report;
  }
}

// Programs read this by name; docs/guide/fitting.md promises it.
TEST_F(Command, JsonOfAFitHasItsShape) {
  WriteBytes(File("d.csv"),
             "x,n,c\n1,2,5\n2.5,0,5\n4,3,5\n8,1,5\n3,1,5\n3.5,2,5\n6,0,5\n5,1,5\n2,2,5\n7,1,5\n");
  const auto variables =
      Json::parse(MustRun({"fit", "d.csv", "--continuous", "x,c", "--discrete", "n", "--distributions",
                           "weibull,normal,poisson,bernoulli", "--rank-by", "anderson-darling",
                           "--discrete-rank-by", "chi-square", "--format", "json"})
                      .out)["variables"];
  ASSERT_EQ(variables.size(), 3U);
  EXPECT_EQ(variables[0]["rankedBy"], "anderson-darling");
  EXPECT_EQ(variables[1]["name"], "c");
  EXPECT_EQ(variables[1]["fits"], Json::array()) << "a constant has nothing to fit";
  EXPECT_EQ(variables[1]["reason"], "all values equal");
  EXPECT_TRUE(variables[0]["reason"].is_null());
  EXPECT_EQ(variables[2]["rankedBy"], "chi-square");
  const std::vector<std::string> keys{"aic",
                                      "andersonDarling",
                                      "bic",
                                      "bootstrap",
                                      "chiSquare",
                                      "code",
                                      "covariance",
                                      "description",
                                      "distribution",
                                      "firstInfiniteMoment",
                                      "identifier",
                                      "kolmogorovSmirnov",
                                      "logLikelihood",
                                      "note",
                                      "offset",
                                      "origin",
                                      "parameters",
                                      "probabilityAboveZero",
                                      "probabilityBelowZero",
                                      "rank",
                                      "reason",
                                      "standardErrors",
                                      "valuesWithoutDensity"};
  for (const Json& variable : variables) {
    for (const Json& fit : variable["fits"]) {
      std::vector<std::string> names;
      for (const auto& [name, value] : fit.items()) names.push_back(name);
      EXPECT_EQ(names, keys);
    }
  }
  const Json& weibull = FitOf(variables[0], "Weibull");
  EXPECT_LE(variables[0]["fits"][0]["andersonDarling"]["statistic"].get<double>(),
            variables[0]["fits"][1]["andersonDarling"]["statistic"].get<double>());
  EXPECT_EQ(weibull["standardErrors"].size(), 2U);
  EXPECT_NEAR(weibull["covariance"][1][1].get<double>(),
              std::pow(weibull["standardErrors"][1].get<double>(), 2), 1e-12);
  EXPECT_EQ(weibull["covariance"][0][1], weibull["covariance"][1][0]);
  EXPECT_EQ(weibull["offset"], 0);
  EXPECT_TRUE(FitOf(variables[0], "Normal")["offset"].is_null());
  EXPECT_TRUE(weibull["bootstrap"].is_null());
  EXPECT_EQ(weibull["origin"], "likelihood");
  const Json& bernoulli = FitOf(variables[2], "Bernoulli");
  EXPECT_EQ(bernoulli["rank"], 2);
  EXPECT_EQ(bernoulli["reason"], "the value 2 in case 1 is neither 0 nor 1");
  EXPECT_TRUE(bernoulli["origin"].is_null());
  for (const char* key : {"parameters", "aic", "bic", "logLikelihood", "standardErrors", "covariance"})
    EXPECT_TRUE(bernoulli[key].is_null()) << key;
  EXPECT_EQ(bernoulli["chiSquare"],
            Json({{"statistic", nullptr}, {"degreesOfFreedom", nullptr}, {"pValue", nullptr}}));
}

TEST_F(Command, ColumnThatFailsLeavesTheOthersAndSaysWhy) {
  WriteBytes(File("d.csv"), "a,b,n\n3,1,1\ninf,2,2.5\n,4,0\n7,8,1\n");
  const std::vector<std::string> call{"fit", "d.csv", "--continuous", "a,b", "--discrete", "n"};
  const Outcome run = Run(call);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "") << "the table says it";
  EXPECT_NE(run.out.find("  n 3, missing 1, mean -, std.dev. -\n"), std::string::npos) << run.out;
  EXPECT_NE(
      run.out.find("\n  nothing to fit: variable a contains an infinite value (case 2; leave the case out or "
                   "make the\n    value missing)\n"),
      std::string::npos)
      << run.out;
  std::vector<std::string> forPrograms = call;
  forPrograms.insert(forPrograms.end(), {"--format", "json"});
  EXPECT_NE(Run(forPrograms).err.find("variable a contains an infinite value (case 2;"), std::string::npos);
  EXPECT_NE(run.out.find("     1  "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("  no fit: Poisson, the counts have a fraction: 2.5 in case 2\n"),
            std::string::npos);
  EXPECT_EQ(run.err.find("mixtures"), std::string::npos) << "nobody entered a number: " << run.err;
}

// A triangular distribution ends at the extremes of its data, so that AIC and BIC compare it with nothing; a
// General Pareto from moments may end among them. Neither is to be simulated unless someone asks for it.
TEST_F(Command, FitsThatTheDataContradictRankLastAndAreSavedOnlyByName) {
  for (const char* criterion : {"ks", "chi-square", "anderson-darling", "aic", "bic"}) {
    for (const char* file :
         {"groundbeef", "portpirie_sea_level", "faithful", "danish_fire_losses", "ozone"}) {
      SCOPED_TRACE(std::string(criterion) + " of " + file);
      const Outcome run = Run({"fit", kExamples + file + ".csv", "--rank-by", criterion, "--format", "json"});
      ASSERT_EQ(run.status, 0) << run.err;
      const auto report = Json::parse(run.out);
      for (const Json& variable : report["variables"]) {
        EXPECT_EQ(variable["rankedBy"], criterion);
        EXPECT_EQ(variable["fits"][0]["valuesWithoutDensity"], 0);
        EXPECT_TRUE(FitOf(variable, "Triangular")["aic"].is_null());
        bool isAnyContradicted = false;
        for (const Json& fit : variable["fits"]) {
          if (fit["parameters"].is_null()) break;
          isAnyContradicted = isAnyContradicted || fit["valuesWithoutDensity"] > 0;
          EXPECT_EQ(fit["valuesWithoutDensity"] > 0, isAnyContradicted) << fit["distribution"];
          EXPECT_EQ(fit["bic"].is_null(), isAnyContradicted) << fit["distribution"];
        }
        EXPECT_TRUE(isAnyContradicted);
      }
    }
  }
  const auto order = [&](const std::vector<std::string>& options) {
    std::vector<std::string> call{"fit", kExamples + "portpirie_sea_level.csv", "--save", "p.bvw"};
    call.insert(call.end(), options.begin(), options.end());
    std::filesystem::remove(File("p.bvw"));
    MustRun(call);
    const auto sheet = Json::parse(MustRun({"show", "p.bvw", "portpirie_sea_level", "--format", "json"}).out);
    return sheet["variables"][0]["properties"]["zOrder"].get<std::string>();
  };
  EXPECT_EQ(order({}).find("Triangular"), std::string::npos);
  EXPECT_EQ(order({"--distributions", "triangular,normal"}), "Normal;");
  EXPECT_EQ(order({"--distributions", "triangular"}), "Triangular;") << "the only one that was asked for";
  EXPECT_EQ(order({"--order", "sealevel=triangular,normal"}), "Triangular;Normal;");
  const std::string table = MustRun({"fit", kExamples + "portpirie_sea_level.csv", "--rank-by", "bic"}).out;
  EXPECT_NE(table.find("density 0 at 2 of 65 values\n"), std::string::npos) << table;
}

// Of rounded data every test refuses every fit, by p-values that are too large at that.
TEST_F(Command, FitsThatAreAllRefusedAndDataThatAreRoundedAreNoted) {
  const Json notes = JsonOf({"fit", kExamples + "groundbeef.csv"})["variables"][0]["notes"];
  EXPECT_EQ(notes,
            Json({"no fit passes the Kolmogorov-Smirnov test at 5 %, although these p-values are too large",
                  "33 distinct values among 254: the tests take the values for unrounded"}));
  const std::string table = MustRun({"fit", kExamples + "groundbeef.csv"}).out;
  for (const std::string note : notes)
    EXPECT_NE(table.find("  note: " + note + "\n"), std::string::npos) << table;
  EXPECT_EQ(JsonOf({"fit", kExamples + "portpirie_sea_level.csv"})["variables"][0]["notes"], Json::array());
  EXPECT_EQ(JsonOf({"fit", kExamples + "groundbeef.csv", "--distributions", "weibull", "--bootstrap",
                    "99"})["variables"][0]["notes"][0],
            "no fit passes the Kolmogorov-Smirnov test at 5 %");
}

// The unrounded skewness of symmetric data is 0, that of others is shown however small.
TEST_F(Command, SkewnessThatIsARoundingErrorIsShownAsZero) {
  WriteBytes(File("d.csv"), "x,y\n-0.3,0.1\n-0.1,0.2\n0.1,0.3\n0.3,0.4000001\n");
  const std::string table = MustRun({"fit", "d.csv", "--distributions", "normal"}).out;
  EXPECT_NE(table.find("skewness 0, "), std::string::npos) << table;
  EXPECT_NE(table.find("skewness 9.29"), std::string::npos) << table;
}

// Positive data whose best fit is not: the report says so, and what to take instead.
TEST_F(Command, BestFitThatLeavesTheDataIsReportedWithTheOneToTakeInstead) {
  std::string data = "x,y\n";
  for (int i = 1; i <= 40; ++i) {
    const double p = (i - 0.5) / 40;
    data += std::to_string(2.3 + std::log(p / (1 - p)) / 2) + "," +
            std::to_string(std::pow(1 - p, -0.8) - 0.9) + "\n";
  }
  WriteBytes(File("d.csv"), data);
  const std::vector<std::string> call{"fit", "d.csv", "--distributions", "normal,weibull,generalpareto"};
  auto json = call;
  const auto variables = JsonOf(json)["variables"];
  ASSERT_EQ(variables[0]["cautions"].size(), 1U) << variables[0];
  const Json& below = variables[0]["cautions"][0];
  EXPECT_EQ(below["kind"], "below-zero");
  EXPECT_EQ(below["distribution"], "Normal");
  EXPECT_EQ(below["distribution"], variables[0]["best"]);
  EXPECT_EQ(below["instead"], "Weibull");
  EXPECT_EQ(below["probability"], FitOf(variables[0], "Normal")["probabilityBelowZero"]);
  EXPECT_NEAR(below["probability"], 0.0044, 0.0005);
  const Json& heavy = variables[1]["cautions"][0];
  EXPECT_EQ(heavy["kind"], "infinite-variance");
  EXPECT_EQ(heavy["instead"], "Weibull");
  EXPECT_EQ(heavy["insteadKsPValue"], FitOf(variables[1], "Weibull")["kolmogorovSmirnov"]["pValue"]);
  EXPECT_EQ(FitOf(variables[1], "General Pareto")["firstInfiniteMoment"], 2);
  EXPECT_TRUE(FitOf(variables[1], "Weibull")["firstInfiniteMoment"].is_null());
  const std::string table = MustRun(call).out;
  for (const Json* caution : {&below, &heavy}) {
    std::string message = (*caution)["message"];
    message.replace(message.find("; "), 2, ";\n    ");
    EXPECT_NE(table.find("  caution: " + message + "\n"), std::string::npos) << table;
  }
  // A simulation goes by what the project holds.
  auto saving = call;
  saving.insert(saving.end(), {"--save", "p.bvw"});
  MustRun(saving);
  const Json simulated = JsonOf({"simulate", "p.bvw", "--seed", "1"})["cautions"];
  ASSERT_EQ(simulated.size(), 2U) << simulated;
  EXPECT_EQ(simulated[0]["variable"], "x");
  EXPECT_EQ(simulated[1]["variable"], "y");
  EXPECT_EQ(simulated[0]["message"], below["message"]);
  EXPECT_EQ(simulated[1]["message"], heavy["message"]);
  EXPECT_NE(MustRun({"simulate", "p.bvw", "--seed", "1"}).out.find("\nx\n  caution: Normal lies below 0"),
            std::string::npos);
  EXPECT_EQ(JsonOf({"simulate", "p.bvw", "--seed", "1", "--truncate"})["cautions"], Json::array())
      << "the tails are cut off";
  auto bounded = call;
  bounded.insert(bounded.end(), {"--save", "p.bvw", "--truncate", "x=0:", "--truncate", "y=:100"});
  for (const Json& variable : JsonOf(bounded)["variables"])
    EXPECT_EQ(variable["cautions"], Json::array()) << "within the bounds that are saved with it";
}

// "mean 100, range 100 to 100" and "scale=0.0000" tell nothing of lengths that differ by a hundredth of a micron.
TEST_F(Command, PreciseAndTinyUnitsShowInTheReports) {
  std::string data = "length,charge\n";
  for (int i = 0; i < 40; ++i) {
    const double z = std::sin(i * 2.4) + std::cos(i * 1.1);
    data +=
        FormatNumber("%.10g", 100.00003 + 1e-5 * z) + "," + FormatNumber("%.10g", 3e-9 + 1e-10 * z) + "\n";
  }
  WriteBytes(File("d.csv"), data);
  const std::string table =
      MustRun({"fit", "d.csv", "--distributions", "normal,lognormal,johnson", "--save", "p.bvw"}).out;
  for (const char* shown :
       {"mean 100.0000299", "range 100.0000123 to 100.0000492", "scale=0.0000) = (100.0000299, 9.8892e-06)",
        "scale=0.0000) = (2.9994e-09, 9.8863e-11)", "shape=0.0000) = (4.6051704854, 9.8892e-08)"}) {
    EXPECT_NE(table.find(shown), std::string::npos) << shown << "\n" << table;
  }
  EXPECT_NE(MustRun({"simulate", "p.bvw", "--seed", "1"}).out.find("100.0000"), std::string::npos);
  EXPECT_NE(MustRun({"show", "p.bvw", "Correlation matrix"}).out.find("100.0000"), std::string::npos);
  const std::string usual = MustRun({"fit", kExamples + "groundbeef.csv", "--distributions", "normal"}).out;
  EXPECT_EQ(usual.find(" = ("), std::string::npos) << usual;
}

TEST_F(Command, OnlyTheBestFitsAreReportedWhereThatIsAsked) {
  const std::vector<std::string> call{"fit", kExamples + "groundbeef.csv", "--top", "2"};
  const auto with = [&](const std::string& format) {
    std::vector<std::string> arguments = call;
    arguments.insert(arguments.end(), {"--format", format});
    return MustRun(arguments).out;
  };
  const auto report = Json::parse(with("json"))["variables"][0];
  ASSERT_EQ(report["fits"].size(), 2U);
  const auto all =
      Json::parse(MustRun({"fit", kExamples + "groundbeef.csv", "--format", "json"}).out)["variables"][0];
  EXPECT_EQ(report["fits"][1], all["fits"][1]);
  EXPECT_EQ(report["cautions"], all["cautions"]);
  std::ofstream(File("fits.csv")) << with("csv");
  const Spreadsheet fits = ReadCsv(File("fits.csv"));
  ASSERT_EQ(fits.CaseCount(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    const auto number = [&](const char* column) {
      return fits.VariableAt(fits.FindVariable(column).value()).Values()[i];
    };
    EXPECT_EQ(number("rank"), static_cast<double>(i + 1));
    EXPECT_EQ(number("ks"), report["fits"][i]["kolmogorovSmirnov"]["statistic"].get<double>());
    EXPECT_EQ(number("parameter.1"), report["fits"][i]["parameters"][0].get<double>());
  }
}

TEST_F(Command, TableOfAFitFitsTheScreenAndPutsFailuresLast) {
  for (const std::vector<std::string>& data :
       {std::vector<std::string>{"groundbeef.csv"}, {"danish_fire_losses.csv"}, {"faithful.csv"}}) {
    std::istringstream lines(MustRun({"fit", kExamples + data[0], "--rank-by", "chi-square"}).out);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 102U) << line;
  }
  const std::string report =
      MustRun({"fit", kExamples + "faithful.csv", "--continuous", "eruptions", "--distributions",
               "weibull,normal", "--offset", "eruptions:weibull=2", "--rank-by", "anderson-darling"})
          .out;
  EXPECT_NE(report.find("  Rank  Distribution                             A-D    A-D p    K-S p  Chi-sq. p"),
            std::string::npos)
      << report;
  EXPECT_GT(report.find("  no fit: Weibull, the value 1.6 in case 19 is below the offset 2\n"),
            report.find("Normal("));
  EXPECT_NE(report.find("--bootstrap N"), std::string::npos);
}

TEST_F(Command, BootstrapPValuesStandBesideThePlainOnesAndInTheirPlaceInTheTable) {
  const std::vector<std::string> call{
      "fit", kExamples + "portpirie_sea_level.csv", "--bootstrap", "99", "--distributions", "normal,weibull"};
  auto json = call;
  json.insert(json.end(), {"--format", "json"});
  const auto report = Json::parse(MustRun(json).out);
  const Json& weibull = FitOf(report["variables"][0], "Weibull");
  EXPECT_EQ(weibull["bootstrap"]["samples"], 99);
  EXPECT_LT(weibull["bootstrap"]["kolmogorovSmirnov"], 0.06);
  EXPECT_GT(weibull["kolmogorovSmirnov"]["pValue"], 0.25) << "the plain one does not refuse the fit";
  const std::string table = MustRun(call).out;
  EXPECT_NE(table.find("parametric bootstrap, 99 samples"), std::string::npos) << table;
  EXPECT_EQ(table.find("too large"), std::string::npos);
  const std::string leftOut = MustRun({"fit", kExamples + "portpirie_sea_level.csv", "--bootstrap", "9",
                                       "--distributions", "generalpareto"})
                                  .out;
  EXPECT_NE(leftOut.find("  0.5849      -"), std::string::npos)
      << "no plain p-value above the bootstrap's footnote\n"
      << leftOut;
}

TEST_F(Command, TruncationAndOrderAreSaved) {
  const auto property = [&](std::size_t variable, const char* key) {
    const auto sheet = Json::parse(MustRun({"show", "p.bvw", "faithful", "--format", "json"}).out);
    return sheet["variables"][variable]["properties"].value(key, "");
  };
  MustRun({"fit", kExamples + "faithful.csv", "--truncate", "eruptions=-1.5:", "--truncate", "waiting=40:1e2",
           "--order", "waiting=weibull,normal", "--save", "p.bvw"});
  EXPECT_EQ(property(0, "zTruncProp"), "(1; 0; -1.500000e+00; -4.440000e+02)");
  EXPECT_EQ(property(1, "zTruncProp"), "(1; 1; 4.000000e+01; 1.000000e+02)");
  EXPECT_EQ(property(1, "zOrder"), "Weibull;Normal;");
  MustRun({"fit", kExamples + "faithful.csv", "--truncate", "waiting=:", "--save", "p.bvw"});
  EXPECT_EQ(property(0, "zTruncProp"), "(1; 0; -1.500000e+00; -4.440000e+02)") << "kept";
  EXPECT_EQ(property(1, "zTruncProp"), "(0; 0; -4.440000e+02; -4.440000e+02)") << "taken away";
}

TEST_F(Command, GraphsOfAFitAreThereForPrograms) {
  WriteBytes(File("d.csv"), "x,c\n1,5\n2,5\n4,5\n3,5\n7,5\n");
  MustRun({"fit", "d.csv", "--graphs", "g.json"});
  const Json graphs = Json::parse(BytesOf(File("g.json")))["variables"];
  EXPECT_EQ(graphs[1]["graphs"], Json::array());
  std::vector<std::string> kinds;
  for (const Json& graph : graphs[0]["graphs"]) kinds.push_back(graph["kind"]);
  EXPECT_EQ(kinds, (std::vector<std::string>{"histogram", "cumulative-histogram", "pp", "qq",
                                             "empirical-distribution", "box-plot"}));
  const Json& cumulative = graphs[0]["graphs"][1]["bars"][0]["heights"];
  EXPECT_EQ(cumulative.back(), 5);
  const Json& curve = graphs[0]["graphs"][4]["curves"][0];
  EXPECT_EQ(curve["x"].front(), 1);
  EXPECT_EQ(curve["x"].back(), 7);
  EXPECT_EQ(curve["y"].size(), curve["x"].size());
  for (const Json& y : curve["y"]) EXPECT_TRUE(y >= 0 && y <= 1);
  EXPECT_EQ(graphs[0]["graphs"][4]["series"][0]["x"], Json({1.0, 2.0, 3.0, 4.0, 7.0}));
  EXPECT_EQ(graphs[0]["graphs"][5]["boxes"][0]["median"], 3);
  MustRun({"fit", kExamples + "toxocara.csv", "--discrete", "number", "--discrete-rank-by", "chi-square",
           "--graphs", "g.json"});
  EXPECT_EQ(Json::parse(BytesOf(File("g.json")))["variables"][0]["distribution"], "Geometric")
      << "a histogram of the data over themselves says nothing";
}

}  // namespace
}  // namespace brenvolt::test
