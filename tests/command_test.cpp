// The command as a user runs it: the main job on real data, and what it says when something is wrong.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>

#include "host/base/number_text.h"
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

TEST_F(Command, SavedFitsHaveTheirCorrelationsBesideThem) {
  const auto matrix = [&](const std::string& name) {
    return Json::parse(MustRun({"show", "p.bvw", name, "--format", "json"}).out);
  };
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  Json shown = matrix("Correlation matrix");
  EXPECT_EQ(shown["validCases"], 272);
  // The correlation of Old Faithful's 272 eruptions and waits, as R's cor() prints it for its data set.
  EXPECT_NEAR(shown["variables"][0]["correlations"][1], 0.9008112, 5e-8);
  EXPECT_EQ(shown["variables"][1]["name"], "waiting");
  MustRun({"fit", "p.bvw", "--continuous", "waiting", "--select", "waiting > 60", "--save", "p.bvw"});
  shown = matrix("Correlation matrix");
  EXPECT_EQ(shown["variables"].size(), 2U) << "what was saved before keeps its place";
  EXPECT_EQ(shown["variables"][0]["name"], "waiting");
  EXPECT_LT(shown["validCases"], 272);
  MustRun({"fit", kExamples + "faithful.csv", "--continuous", "waiting", "--save", "p.bvw"});
  shown = matrix("Correlation matrix");
  EXPECT_EQ(shown["variables"].size(), 2U) << "also if the data come from their file again";
  // Another sheet has a matrix of its own, and data that bear a matrix's name stay.
  WriteBytes(File("d.csv"), "a,b\n1,5\n2,5\n4,5\n3,5\n7,5\n");
  WriteBytes(File("m.csv"), "z\n1\n");
  MustRun({"import", "m.csv", "-o", "p.bvw", "--sheet", "Correlation matrix of d"});
  for (int again = 0; again < 2; ++again) MustRun({"fit", "d.csv", "--continuous", "a", "--save", "p.bvw"});
  EXPECT_EQ(matrix("Correlation matrix"), shown);
  const auto sheets = Json::parse(MustRun({"show", "p.bvw", "--format", "json"}).out)["sheets"];
  ASSERT_EQ(sheets.size(), 5U);
  EXPECT_EQ(sheets[2]["kind"], "data");
  EXPECT_EQ(sheets[4]["name"], "Correlation matrix of d (2)");
  const Outcome constant = Run({"fit", "d.csv", "--continuous", "a", "--discrete", "b", "--save", "q.bvw"});
  EXPECT_EQ(constant.status, 0);
  EXPECT_EQ(constant.err, "brenvolt: The correlation of a and b is not defined and is taken as 0.\n");
}

// What a former fit left behind would pass for a fit of the present data.
TEST_F(Command, FittingAgainTakesTheFitsThatAreGoneFromTheProject) {
  const auto properties = [&](std::size_t variable) {
    const auto sheet = Json::parse(MustRun({"show", "p.bvw", "faithful", "--format", "json"}).out);
    std::string names;
    for (const auto& [key, value] : sheet["variables"][variable]["properties"].items()) names += key + ";";
    return names;
  };
  for (const std::string& again : {kExamples + "faithful.csv", std::string("p.bvw")}) {
    std::filesystem::remove(File("p.bvw"));
    MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
    const std::string former = properties(1);
    EXPECT_NE(former.find("Weibull;"), std::string::npos);
    MustRun({"fit", again, "--continuous", "eruptions", "--distributions", "normal,gev", "--save", "p.bvw"});
    EXPECT_EQ(properties(0), "General Extreme Value;Normal;zOrder;zTruncProp;") << again;
    EXPECT_EQ(properties(1), former) << "of a variable that was not fitted again";
  }
  for (const std::string& again : {kExamples + "faithful.csv", std::string("p.bvw")}) {
    std::filesystem::remove(File("p.bvw"));
    MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal,gev", "--save", "p.bvw"});
    const Outcome failed = Run(
        {"fit", again, "--discrete", "eruptions,waiting", "--distributions", "poisson", "--save", "p.bvw"});
    EXPECT_EQ(failed.status, 0);
    EXPECT_EQ(
        failed.err,
        "brenvolt: No distribution could be fitted to eruptions this time; its former fits are removed.\n");
    EXPECT_EQ(properties(0), "InvalidFit;zOrder;zTruncProp;");
    EXPECT_EQ(
        Json::parse(MustRun({"show", "p.bvw", "Correlation matrix", "--format", "json"}).out)["variables"]
            .size(),
        1U);
  }
  MustRun({"fit", "p.bvw", "--distributions", "normal,gev", "--save", "p.bvw"});
  const std::string saved = BytesOf(File("p.bvw"));
  EXPECT_EQ(Run({"fit", "p.bvw", "--discrete", "eruptions", "--distributions", "poisson", "--save", "p.bvw"})
                .status,
            1);
  EXPECT_EQ(BytesOf(File("p.bvw")), saved) << "a job that fails takes nothing away";
  // Data that come from their file again, without fits, leave those of the project.
  MustRun({"import", kExamples + "faithful.csv", "-o", "p.bvw"});
  EXPECT_EQ(properties(1), "General Extreme Value;Normal;zOrder;zTruncProp;");
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

TEST_F(Command, SavingAgainKeepsOneSheetAndOtherDataAreNotOverwritten) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "p.bvw"});
  MustRun({"fit", "p.bvw", "--continuous", "waiting", "--distributions", "normal,lognormal,weibull", "--save",
           "p.bvw"});
  const auto shown = Json::parse(MustRun({"show", "p.bvw", "--format", "json"}).out);
  ASSERT_EQ(shown["sheets"].size(), 2U);
  EXPECT_EQ(shown["sheets"][1]["name"], "Correlation matrix");
  const auto order = [&](std::size_t variable) {
    const auto sheet = Json::parse(MustRun({"show", "p.bvw", "faithful", "--format", "json"}).out);
    return sheet["variables"][variable]["properties"].value("zOrder", "");
  };
  EXPECT_EQ(order(0), "Normal;") << "a variable that was not fitted again keeps its fits";
  EXPECT_EQ(order(1), "Weibull;Normal;Log Normal;");
  MustRun({"import", kExamples + "faithful.csv", "-o", "p.bvw"});
  EXPECT_EQ(order(0), "Normal;") << "importing the same data again loses nothing";
  Sql("p.bvw", "UPDATE variable_property SET value = '(1; 0; 3.5; 0)' WHERE key = 'zTruncProp'");
  MustRun({"fit", "p.bvw", "--continuous", "waiting", "--save", "p.bvw"});
  EXPECT_NE(MustRun({"show", "p.bvw", "faithful"}).out.find("zTruncProp: (1; 0; 3.500000e+00; 0"),
            std::string::npos)
      << "fitting again keeps the truncation";
  WriteBytes(File("faithful.csv"), "eruptions\n1\n2\n4\n8\n");
  const std::string before = BytesOf(File("p.bvw"));
  const Outcome refused = Run({"fit", "faithful.csv", "--save", "p.bvw"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err, "brenvolt: already has a sheet called faithful with other data (p.bvw)\n");
  EXPECT_EQ(BytesOf(File("p.bvw")), before);
}

TEST_F(Command, ImportAndExportGiveTheDataBack) {
  const std::string text = "name,value\n\"a, b\",0.1\nc,1e-300\n,\n";
  WriteBytes(File("in.csv"), text);
  MustRun({"import", "in.csv", "-o", "p.bvw", "--sheet", "first: one"});
  MustRun({"export", "p.bvw:first: one", "-o", "out.csv"});
  EXPECT_EQ(BytesOf(File("out.csv")), text);
  MustRun({"export", "p.bvw", "-o", "comma.csv", "--decimal-comma"});
  EXPECT_EQ(BytesOf(File("comma.csv")), "name;value\na, b;0,1\nc;1e-300\n;\n");
  MustRun({"import", "comma.csv", "-o", "p.bvw", "--decimal-comma"});
  MustRun({"export", "p.bvw:comma", "-o", "again.csv"});
  EXPECT_EQ(BytesOf(File("again.csv")), text);
}

TEST_F(Command, MatrixGoesThroughAProjectAndBack) {
  const std::string text =
      ",load,\"width, mm\"\nload,1,-0.1\n\"width, mm\",-0.1,1\nMeans,2.5,20\nStd.Dev.,0.1,0.5\n"
      "No.Cases,254,\nMatrix,1,\n";
  WriteBytes(File("m.csv"), text);
  EXPECT_EQ(MustRun({"import", "m.csv", "-o", "p.bvw", "--sheet", "Correlation matrix"}).out,
            "correlation matrix of 2 variables imported into p.bvw, sheet Correlation matrix\n");
  const auto sheets = Json::parse(MustRun({"show", "p.bvw", "--format", "json"}).out)["sheets"];
  EXPECT_EQ(sheets[0]["kind"], "matrix");
  const auto shown = Json::parse(MustRun({"show", "p.bvw", "Correlation matrix", "--format", "json"}).out);
  EXPECT_EQ(shown["validCases"], 254);
  EXPECT_EQ(shown["variables"][1]["name"], "width, mm");
  EXPECT_EQ(shown["variables"][1]["correlations"], Json({-0.1, 1}));
  EXPECT_EQ(shown["variables"][1]["standardDeviation"], 0.5);
  EXPECT_EQ(MustRun({"show", "p.bvw", "Correlation matrix"}).out,
            "Correlation matrix, matrix of 2 variables, number of valid cases 254\n"
            "  Variable   load  width, mm  Mean  Std.Dev.\n"
            "  load          1       -0.1   2.5       0.1\n"
            "  width, mm  -0.1          1    20       0.5\n");
  MustRun({"export", "p.bvw:Correlation matrix", "-o", "out.csv"});
  EXPECT_EQ(BytesOf(File("out.csv")), text);
  MustRun({"import", "m.csv", "-o", "d.bvw", "--kind", "data"});
  EXPECT_EQ(Json::parse(MustRun({"show", "d.bvw", "m", "--format", "json"}).out)["kind"], "data");
}

TEST_F(Command, SavedCaseOptionsShowAndCanBeTakenAway) {
  WriteBytes(File("d.csv"), "x,w\n1,1\n2,2\n4,1\n8,1\n");
  MustRun({"fit", "d.csv", "--continuous", "x", "--weights", "w", "--select", "x < 8", "--save", "p.bvw"});
  const std::string said = "Cases weighted by w\nCases with x < 8\n";
  EXPECT_TRUE(MustRun({"fit", "p.bvw", "--continuous", "x"}).out.starts_with(said));
  const auto all = Json::parse(
      MustRun({"fit", "p.bvw", "--continuous", "x", "--weights", "", "--select", "", "--format", "json"})
          .out);
  EXPECT_EQ(all["variables"][0]["n"], 4);
  EXPECT_FALSE(all.contains("weights"));
}

// What a wrong input is answered with. Every line says what and where, and nothing in the folder changes.
TEST_F(Command, WrongInputGetsOneClearLineAndChangesNothing) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "good.bvw"});
  const std::string good = BytesOf(File("good.bvw"));
  WriteBytes(File("empty.csv"), "");
  WriteBytes(File("ragged.csv"), "a,b\n1,2\n3\n");
  WriteBytes(File("text.csv"), "a\nx\ny\n");
  WriteBytes(File("constant.csv"), "a,b\n3,NA\n3,NA\n3,NA\n3,NA\n");
  WriteBytes(File("infinite.csv"), "a\n3\ninf\n4\n");
  WriteBytes(File("weights.csv"), "a,w\n3,1\n4,1.5\n5,1\n8,1\n");
  WriteBytes(File("labels.csv"), "a,t\n3,x\n4,y\n5,x\n");
  WriteBytes(File("no_project.bvw"),
             "just text, long enough to look like something, but no project at all\n");
  WriteBytes(File("mirror.csv"),
             ",a,b\na,1,0.5\nb,0.26,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\nMatrix,1,\n");
  WriteBytes(File("other_matrix.csv"),
             ",x,eruptions\nx,1,0.5\neruptions,0.5,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\nMatrix,1,\n");
  WriteBytes(File("hole.csv"),
             ",eruptions,waiting\neruptions,1,\nwaiting,0.5,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\n"
             "Matrix,1,\n");
  WriteBytes(File("empty.bvw"), "");
  WriteBytes(File("cut.bvw"), good.substr(0, good.size() / 2));
  WriteBytes(File("newer.bvw"), good);
  Sql("newer.bvw", "PRAGMA user_version = 99");
  for (const char* name :
       {"nonsense.bvw", "zero.bvw", "order.bvw", "truncation.bvw", "endless.bvw", "renamed.csv"})
    WriteBytes(File(name), good);
  WriteBytes(File("alone.bvw"), good);
  Sql("alone.bvw", "UPDATE sheet SET name = 'other matrix' WHERE name = 'Correlation matrix'");
  Sql("nonsense.bvw", "UPDATE variable_property SET value = 'tomorrow' WHERE key NOT LIKE 'z%'");
  Sql("zero.bvw", "UPDATE variable_property SET value = '(Location=1; Scale=-3)' WHERE key = 'Normal'");
  Sql("order.bvw", "DELETE FROM variable_property WHERE key = 'Normal'");
  Sql("truncation.bvw", "UPDATE variable_property SET value = '(0; 0)' WHERE key = 'zTruncProp'");

  Sql("endless.bvw",
      "UPDATE variable_property SET value = '(Scale=3; Shape=1e-300; Offset=0)' WHERE key = 'Weibull'");
  Sql("endless.bvw", "UPDATE variable_property SET value = 'Weibull;' WHERE key = 'zOrder'");

  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* said;
  };
  const Case cases[] = {
      {{"fit", "nowhere.csv"}, 1, "nowhere.csv"},
      {{"fit", "."}, 1, "folder"},
      {{"fit", "empty.csv"}, 1, "is empty (empty.csv)"},
      {{"fit", "ragged.csv"}, 1, "ragged.csv, line 3, column"},
      {{"fit", "text.csv"}, 1, "no numeric variable"},
      {{"fit", "text.csv", "--continuous", "a"}, 1, "text variables selected"},
      {{"fit", "constant.csv", "--continuous", "a"},
       1,
       "No valid variables to proceed with the analysis (a: all values equal)"},
      {{"fit", "infinite.csv"}, 1, "variable a contains an infinite value (case 2; leave"},
      {{"fit", "weights.csv", "--weights", "w"}, 1, "Case weights should be integer."},
      {{"fit", "weights.csv", "--weights", "v"}, 2, "sheet weights has no variable called 'v' (--weights)"},
      {{"fit", "weights.csv", "--continuous", "b"},
       2,
       "sheet weights has no variable called 'b' (--continuous)"},
      {{"fit", "weights.csv", "--select", "a > "}, 2, "selection condition, character"},
      {{"fit", "weights.csv", "--distributions", "gauss"},
       2,
       "no distribution called 'gauss'; the distributions are normal,"},
      {{"fit", "weights.csv", "--distributions", "norml"},
       2,
       "no distribution called 'norml'; did you mean normal? The distributions are normal,"},
      {{"fit", kExamples + "faithful.csv", "--continuous", "eruption"},
       2,
       "sheet faithful has no variable called 'eruption'; did you mean eruptions? (--continuous)"},
      {{"fit", kExamples + "faithful.csv", "--continuous", "waiting, waiting"},
       2,
       "'waiting' is given twice (--continuous)"},
      {{"fit", "weights.csv", "--select", "not"},
       2,
       "selection condition, character 4: the formula is incomplete (--select)"},
      {{"fit", "weights.csv", "--select", "a = w = 1"}, 2, "selection condition, character 7: "},
      {{"fit", "weights.csv", "--offset", "a:weibull=1", "--offset", "a:Weibull=2"},
       2,
       "'a:weibull' is given twice (--offset)"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "a=3", "--trials", "a=4"},
       2,
       "'a' is given twice (--trials)"},
      {{"fit", "weights.csv", "--discrete", "a", "--johnson-percentiles"},
       2,
       "no continuous variable is fitted (--johnson-percentiles)"},
      {{"fit", "weights.csv", "--discrete", "a", "--rank-by", "ks"},
       2,
       "no continuous variable is fitted (--rank-by)"},
      {{"fit", "weights.csv", "--discrete-rank-by", "ks"},
       2,
       "no discrete variable is fitted (--discrete-rank-by)"},
      {{"fit", "weights.csv", "--offset", "a=3"},
       2,
       "expected VARIABLE:DISTRIBUTION=NUMBER, got 'a=3' (--offset)"},
      {{"fit", "weights.csv", "--save", ""}, 2, "--save needs a value"},
      {{"fit", "text.csv", "--distributions", "normal"}, 1, "no numeric variable; these are text: a"},
      {{"fit", "weights.csv", "--missing", "never"},
       2,
       "expected one of casewise, pairwise; got 'never' (--missing)"},
      {{"fit", "weights.csv", "--offset", "a:weibull=-444"}, 2, "-444 means that no offset is set"},
      {{"fit", "weights.csv", "--offset", "a:normal=1"}, 2, "the normal distribution has no offset"},
      {{"fit", "weights.csv", "--offset", "a:weibull=1,5"}, 2, "expected a number, got '1,5' (--offset)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--offset", "a:weibull=1"},
       2,
       "the weibull distribution is not tried (--offset)"},
      {{"fit", "weights.csv", "--continuous", "a", "--offset", "w:weibull=1"},
       2,
       "'w' is not fitted as a continuous variable"},
      {{"fit", "weights.csv", "--offset", "b:weibull=1"}, 2, "'b' is not fitted as a continuous variable"},
      {{"fit", "weights.csv", "--distributions", "poisson"}, 2, "none of these is for continuous variables"},
      {{"fit", "weights.csv", "--discrete", "a", "--distributions", "normal"},
       2,
       "none of these is for discrete"},
      {{"fit", "weights.csv", "--mixtures", "a"}, 2, "expected VARIABLE=COUNT, got 'a' (--mixtures)"},
      {{"fit", "weights.csv", "--mixtures", "a=0"}, 2, "'a': expected a whole number from 2 to 20, got 0"},
      {{"fit", "weights.csv", "--mixtures", "a=2.5"}, 2, "got 2.5 (--mixtures)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--mixtures", "a=3"},
       2,
       "is not tried (--mixtures)"},
      {{"fit", "weights.csv", "--discrete", "a", "--mixtures", "a=3"}, 2, "not fitted as a continuous"},
      {{"fit", "weights.csv", "--trials", "a=4"}, 2, "no discrete variable is fitted (--trials)"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "w=4"},
       2,
       "'w' is not fitted as a discrete variable"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "a=0"}, 2, "from 1 to 2147483647, got 0"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "a=9", "--distributions", "poisson"},
       2,
       "is not tried (--trials)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--johnson-percentiles"}, 2, "is not tried"},
      {{"fit", "weights.csv", "--truncate", "a=1:2"}, 2, "the fits are not saved"},
      {{"fit", "weights.csv", "--truncate", "a=1", "--save", "n.bvw"}, 2, "VARIABLE=LOW:HIGH, got 'a=1'"},
      {{"fit", "weights.csv", "--truncate", "a=2:2", "--save", "n.bvw"}, 2, "less than the upper one"},
      {{"fit", "weights.csv", "--truncate", "a=x:", "--save", "n.bvw"}, 2, "a number, got 'x' (--truncate)"},
      {{"fit", "weights.csv", "--truncate", "a=-444:", "--save", "n.bvw"},
       2,
       "-444 means that no bound is set"},
      {{"fit", "weights.csv", "--truncate", "b=1:", "--save", "n.bvw"}, 2, "'b' is not fitted"},
      {{"fit", "weights.csv", "--continuous", "a", "--truncate", "w=1:", "--save", "n.bvw"},
       2,
       "'w' is not fitted (--truncate)"},
      {{"fit", "weights.csv", "--order", "a=", "--save", "n.bvw"}, 2, "VARIABLE=NAME,NAME, got 'a='"},
      {{"fit", "weights.csv", "--order", "a=normal,normal", "--save", "n.bvw"}, 2, "'normal' is given twice"},
      {{"fit", "weights.csv", "--order", "a=poisson", "--save", "n.bvw"},
       2,
       "'a': the poisson distribution is for discrete variables (--order)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--order", "a=weibull", "--save", "n.bvw"},
       2,
       "the weibull distribution is not tried (--order)"},
      {{"fit", "weights.csv", "--graphs", "no/such/g.json"},
       2,
       "the folder of no/such/g.json does not exist (--graphs)"},
      {{"fit", "weights.csv", "--rank-by", "best"}, 2, "--rank-by"},
      {{"fit", "weights.csv", "--record", "no/r.py"}, 2, "the folder of no/r.py does not exist (--record)"},
      {{"fit", "weights.csv", "more", "yet"}, 2, "unexpected argument 'more'; brenvolt fit --help"},
      {{"fit", "weights.csv", "--bogus", "3"}, 2, "unknown option --bogus; brenvolt fit --help"},
      {{"fit"}, 2, "missing DATA; brenvolt fit --help"},
      {{"fit", "weights.csv", "--sheet"}, 2, "--sheet needs a value"},
      {{"fit", "weights.csv", "--save", "x.bvw", "--save", "y.bvw"}, 2, "--save is given more than once"},
      {{"fit", "weights.csv", "--format", "xml"}, 2, "expected table or json, got 'xml' (--format)"},
      {{"fit", "good.bvw", "--decimal-comma"}, 2, "only CSV files do (--decimal-comma)"},
      {{"import", "weights.csv", "-o", "x.bvw", "--kind", "foo"},
       2,
       "expected data or matrix, got 'foo' (--kind)"},
      {{"export", "good.bvw", "-o", "x.txt"}, 2, "expected a file ending in .csv, got x.txt (-o)"},
      {{"typelib", "--idl", "--format", "json"}, 2, "--idl is a format of its own"},
      {{"fit", "weights.csv", "--discrete", "a", "--discrete-rank-by", "anderson-darling"},
       2,
       "--discrete-rank-by"},
      {{"fit", "weights.csv", "--binning", "equal"}, 2, "--binning"},
      {{"fit", "weights.csv", "--select", "a > 1e9"}, 2, "no case meets the condition 'a > 1e9' (--select)"},
      {{"fit", "weights.csv", "--bootstrap", "0"}, 2, "--bootstrap"},
      {{"fit", "weights.csv", "--bootstrap", "1000001"}, 2, "--bootstrap"},
      {{"fit", "weights.csv", "--bootstrap-seed", "4"}, 2, "a seed has no effect without a bootstrap"},
      {{"fit", "weights.csv", "--bootstrap", "9", "--bootstrap-seed", "-1"}, 2, "--bootstrap-seed"},
      {{"fit"}, 2, "DATA"},
      {{"dance"}, 2, "unknown command 'dance'; the commands are fit, design, simulate"},
      {{}, 2, "missing command; the commands are fit, design, simulate"},
      {{"fit", "good.bvw", "--sheet", "other"}, 1, "has no sheet called other (good.bvw)"},
      {{"show", "good.bvw", "other"}, 1, "has no sheet called other (good.bvw)"},
      {{"show", "nowhere.bvw"}, 1, "nowhere.bvw"},
      {{"show", "no_project.bvw"}, 1, "no_project.bvw"},
      {{"show", "empty.bvw"}, 1, "empty.bvw"},
      {{"show", "cut.bvw"}, 1, "cut.bvw"},
      {{"show", "newer.bvw"}, 1, "newer"},
      {{"simulate", "good.bvw", "--variables", "x"}, 2, "no variable called 'x'"},
      {{"simulate", "good.bvw", "--samples", "0"}, 2, "whole number from 1 to 2147483647, got 0"},
      {{"simulate", "good.bvw", "--samples", "999999999", "-o", "huge.bvw"}, 1, "Insufficient memory exists"},
      {{"simulate", "good.bvw", "--seed", "-1"}, 2, "from 0 to 2147483647, got -1 (--seed)"},
      {{"simulate", "good.bvw", "--seed", "99999999999"},
       2,
       "expected a whole number from 0 to 2147483647, got 99999999999 (--seed)"},
      {{"simulate", "good.bvw", "--matrix", "Correlation matrix"}, 2, "monte-carlo does not (--matrix)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "nowhere"},
       1,
       "is neither a sheet of the project nor a file (matrix nowhere)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "faithful"},
       1,
       "Simulation failed. Please check the correlation matrix. (sheet faithful: is not a matrix file)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "good.bvw:none"}, 1, "called none"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "other_matrix.csv"},
       1,
       "The correlation matrix lacks variables of the simulation: waiting"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "hole.csv"},
       1,
       "(hole.csv, row eruptions, column waiting)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "mirror.csv"}, 1, "not symmetric"},
      {{"simulate", "alone.bvw", "--method", "iman-conover"}, 1, "no correlation matrix is given"},
      {{"simulate", "good.bvw", "--seed", "x"}, 2, "expected a number, got 'x' (--seed)"},
      {{"simulate", "good.bvw", "--method", "magic"}, 2, "--method"},
      {{"simulate", "good.bvw", "-o", "out.pdf"}, 2, "out.pdf"},
      {{"simulate", "nonsense.bvw"}, 1, "One or more property values are invalid."},
      {{"simulate", "zero.bvw"}, 1, "Invalid scale value for Normal distribution of variable"},
      {{"simulate", "order.bvw"},
       1,
       "Normal in order of distribution property has its parameter property missing."},
      {{"simulate", "truncation.bvw"}, 1, "Truncate property is missing or invalid."},
      {{"simulate", "good.bvw", "-o", "/dev/full"}, 1, "/dev/full"},
      {{"simulate", "good.bvw", "-o", "good.bvw/x.csv"},
       2,
       "the folder of good.bvw/x.csv does not exist (-o)"},
      {{"export", "good.bvw", "-o", "/dev/full"}, 1, "/dev/full"},
      {{"export", "good.bvw:none", "-o", "x.csv"}, 1, "has no sheet called none"},
      {{"fit", "weights.csv", "--save", "no/such/folder/p.bvw"}, 2, "no/such/folder/p.bvw does not exist"},
      {{"fit", "weights.csv", "--save", "/dev/full"},
       2,
       "expected a file ending in .bvw, got /dev/full (--save)"},
      {{"fit", "weights.csv", "--save", "/proc/p.bvw"}, 1, "/proc/p.bvw"},
      {{"fit", "weights.csv", "--continuous", "a,a"}, 2, "'a' is given twice (--continuous)"},
      {{"fit", "weights.csv", "--continuous", "a", "--discrete", "a"}, 2, "as continuous and as discrete"},
      {{"fit", "labels.csv", "--continuous", "a", "--weights", "t"}, 1, "Case weights should be integer."},
      {{"fit", "good.bvw", "--format", "xml"}, 2, "--format"},
      {{"export", "good.bvw", "-o", "good.bvw"}, 2, "expected a file ending in .csv, got good.bvw (-o)"},
      {{"export", "good.bvw", "-o", "renamed.csv"},
       1,
       "a project is not replaced by a CSV file (renamed.csv)"},
      {{"simulate", "good.bvw", "-o", "/proc/x.csv"}, 1, "/proc/x.csv"},
      {{"simulate", "weights.csv"}, 1, "weights.csv"},
      {{"simulate", "endless.bvw"}, 1, "Simulation failed.  Please review"},
      {{"import", "good.bvw", "-o", "other.bvw"}, 1, "is already a project (good.bvw)"},
      {{"import", "weights.csv", "-o", "other.csv"}, 2, "expected a file ending in .bvw, got other.csv (-o)"},
      {{"import", "weights.csv", "-o", "other.bvw", "--sheet", "\xff"}, 2, "not UTF-8"},
      {{"fit", "weights.csv", "--save", "no_project.bvw"}, 1, "no_project.bvw"},
      {{"import", "ragged.csv", "-o", "good.bvw"}, 1, "ragged.csv, line 3"},
      {{"import", "mirror.csv", "-o", "good.bvw"},
       1,
       "the matrix is not symmetric: 0.26 in row b, column a, but 0.5 in row a, column b (mirror.csv)"},
      {{"import", "weights.csv", "-o", "good.bvw", "--kind", "matrix"}, 1, "is not a matrix"},
      {{"import", "weights.csv", "-o", "good.bvw", "--kind", "graph"}, 2, "--kind"},
  };
  const auto contents = [&] {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      files[entry.path().filename()] = BytesOf(entry.path());
    }
    return files;
  };
  const auto before = contents();
  for (const Case& c : cases) {
    std::string call;
    for (const std::string& argument : c.arguments) call += " " + argument;
    const Outcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.status, c.status) << call << ": " << outcome.err;
    EXPECT_NE(outcome.err.find(c.said), std::string::npos) << call << ": " << outcome.err;
    EXPECT_TRUE(outcome.err.starts_with("brenvolt: ")) << call << ": " << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << call << ": " << outcome.err;
  }
  EXPECT_TRUE(contents() == before) << "a file appeared, vanished or changed";
}

TEST_F(Command, ModuleAttachesAndDetachesInOrder) {
  setenv("BRENVOLT_LOG", File("log").c_str(), 1);
  MustRun({"fit", kExamples + "faithful.csv"});
  unsetenv("BRENVOLT_LOG");
  EXPECT_EQ(BytesOf(File("log")),
            "extension module initialised\n"
            "analysis context created\n"
            "resource library recorded\n"
            "object map initialised\n"
            "object classes initialised\n"
            "type library registered {6C1E4F0A-93B7-4D58-9E21-5B0F7A2D8C34}\n"
            "object map terminated\n"
            "object classes terminated\n"
            "automation module terminated\n"
            "analysis context deleted\n"
            "extension module terminated\n");
}

TEST_F(Command, WordThatIsNoNumberHidesNoOtherFault) {
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n");
  const Outcome refused =
      Run({"fit", "d.csv", "--offset", "x:weibull=a", "--bootstrap", "b", "--rank-by", "c"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.err,
            "brenvolt: expected a number, got 'a' (--offset)\n"
            "brenvolt: expected a number, got 'b' (--bootstrap)\n"
            "brenvolt: expected one of aic, anderson-darling, bic, chi-square, ks; got 'c' (--rank-by)\n");
}

TEST_F(Command, ListsLeaveTheDataFileAlone) {
  std::string data = "x,n\n";
  for (int i = 0; i < 10; ++i)
    data += std::to_string(10 + (i * 37) % 61) + "," + std::to_string(i % 4) + "\n";
  WriteBytes(File("d.csv"), data);
  const auto fits = [&](const std::vector<std::string>& arguments) {
    std::string names;
    const Json report = Json::parse(MustRun(arguments).out);
    for (const Json& variable : report["variables"]) {
      names += variable["name"].get<std::string>() + ":" + std::to_string(variable["fits"].size()) + " ";
    }
    return names;
  };
  EXPECT_EQ(fits({"fit", "--format", "json", "--discrete", "n", "--continuous", "x", "d.csv"}), "x:11 n:5 ");
  EXPECT_EQ(fits({"fit", "--continuous", "x,n", "--format", "json", "--distributions",
                  "Log Normal,GEV,Generalized Pareto", "d.csv"}),
            "x:3 n:3 ");
  const Outcome reverted = Run({"fit", "--continuous", "x", "--mixtures", "x=9", "d.csv"});
  EXPECT_NE(reverted.err.find("Mixture value reverted to the highest default value. (x: 5)"),
            std::string::npos)
      << reverted.err;
}

TEST_F(Command, EveryVerbHasHelpWithAnExample) {
  for (const std::string command : {"fit", "simulate", "show", "import", "export"}) {
    const Outcome help = MustRun({command, "--help"});
    EXPECT_NE(help.out.find("Example:\n  brenvolt " + command), std::string::npos) << help.out;
    EXPECT_NE(help.out.find("Exit status: 0 done; 1 the job failed"), std::string::npos) << help.out;
  }
}

}  // namespace
}  // namespace brenvolt::test
