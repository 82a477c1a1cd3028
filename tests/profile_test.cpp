// brenvolt profile as a user runs it.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>
#include <sstream>
#include <string>

#include "tests/profile_fixture.h"

namespace brenvolt::test {
namespace {

// Y = 3 A - 2 B: the mean is 22 in every case, the standard deviation follows from the parts.
TEST_F(ProfileCommand, VarianceIsThatOfThePredictorsTheirCorrelationAndTheNoise) {
  WriteData();
  constexpr double kRuns = 20000;
  const struct {
    Arguments options;
    double variance;
  } cases[] = {{{}, 36 + 4},
               {{"--correlated"}, 36 + 4 - 2 * 3 * 2 * 2 * 0.8},
               {{"--noise", "Y=5"}, 36 + 4 + 25},
               {{"--correlated", "--noise", "Y=5"}, 36 + 4 - 19.2 + 25},
               {{"--fix", "A=10"}, 4}};
  for (const auto& c : cases) {
    Arguments arguments{"profile", "ab.csv", "--formula", "Y=3*A-2*B", "--samples", "20000", "--seed", "11"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const Json response = JsonOf(arguments)["responses"][0];
    const double deviation = std::sqrt(c.variance);
    EXPECT_EQ(response["statistics"]["n"], kRuns);
    EXPECT_NEAR(response["statistics"]["mean"], 22, 4.5 * deviation / std::sqrt(kRuns));
    // Five standard errors; the correlation of 200 values is 0.8 but for some hundredths.
    const double margin = 5 / std::sqrt(2 * kRuns) + (c.options.empty() ? 0 : 0.02);
    EXPECT_NEAR(response["statistics"]["standardDeviation"].get<double>() / deviation, 1, margin)
        << testing::PrintToString(c.options);
  }
}

TEST_F(ProfileCommand, ModelAndFormulaOfTheSamePredictionAgreeRunByRun) {
  const Arguments common{"--seed", "3", "--samples", "1000", "--noise", "O3=4.75", "--correlated"};
  const auto run = [&](const Arguments& prediction, const std::string& out) {
    Arguments arguments{"profile", kOzone};
    arguments.insert(arguments.end(), prediction.begin(), prediction.end());
    arguments.insert(arguments.end(), common.begin(), common.end());
    arguments.insert(arguments.end(), {"-o", out});
    MustRun(arguments);
    return Column(out, "O3");
  };
  const auto model = run({"--model", kModel}, "model.csv");
  const auto formula = run({"--formula", kFormula}, "formula.csv");
  ASSERT_EQ(model.size(), 1000U);
  ASSERT_EQ(formula.size(), model.size());
  for (std::size_t i = 0; i < model.size(); ++i) EXPECT_NEAR(model[i], formula[i], 1e-9);
  EXPECT_EQ(run({"--model", kModel}, "again.csv"), model) << "the same seed gave other runs";
  // The model with a residual deviation of 4.75 gives the ozone of the data back.
  const Json o3 = JsonOf({"profile", kOzone, "--model", kModel, "--seed", "3", "--samples", "20000",
                          "--noise", "O3=4.75", "--correlated"})["responses"][0]["statistics"];
  EXPECT_NEAR(o3["mean"], 11.776, 0.3);
  EXPECT_NEAR(o3["standardDeviation"], 8.01, 0.4);
}

TEST_F(ProfileCommand, DefectsAndCapabilityAreThoseOfTheRunsWritten) {
  WriteData();
  const Json report =
      JsonOf({"profile", "ab.csv", "--formula", "Y=3*A-2*B", "--formula", "Z=A", "--formula", "W=B", "--spec",
              "Y=10,22,34", "--spec", "Z=,,12", "--samples", "5000", "--seed", "2", "-o", "runs.csv"});
  const auto y = Column("runs.csv", "Y");
  const auto z = Column("runs.csv", "Z");
  const double rateY = Share(y, [](double v) { return v < 10 || v > 34; });
  const double rateZ = Share(z, [](double v) { return v > 12; });
  double both = 0;
  for (std::size_t i = 0; i < y.size(); ++i) both += y[i] < 10 || y[i] > 34 || z[i] > 12 ? 1 : 0;
  const Json& defects = report["defects"];
  ASSERT_EQ(defects.size(), 3U);
  const struct {
    const char* response;
    double rate;
  } rows[] = {{"Y", rateY}, {"Z", rateZ}, {"Overall Rate", both / 5000}};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(defects[i]["response"], rows[i].response);
    EXPECT_DOUBLE_EQ(defects[i]["rate"], rows[i].rate);
    EXPECT_DOUBLE_EQ(defects[i]["ppm"], rows[i].rate * 1e6);
    EXPECT_EQ(defects[i]["defects"], std::lround(rows[i].rate * 5000));
    EXPECT_EQ(defects[i]["runs"], 5000);
    EXPECT_LT(defects[i]["rateInterval"]["lower"], rows[i].rate);
    EXPECT_GT(defects[i]["ppmInterval"]["upper"], rows[i].rate * 1e6);
  }
  EXPECT_EQ(defects[1]["lower"], nullptr);
  EXPECT_EQ(defects[1]["upper"], 12);
  EXPECT_EQ(defects[2]["upper"], nullptr);

  const Json& capability = report["responses"][0]["capability"];
  EXPECT_EQ(capability["specification"]["target"], 22);
  EXPECT_DOUBLE_EQ(capability["observedPpm"]["total"]["value"], rateY * 1e6);
  EXPECT_DOUBLE_EQ(capability["observedPpm"]["total"]["upper"], defects[0]["ppmInterval"]["upper"]);
  const double deviation = report["responses"][0]["statistics"]["standardDeviation"];
  EXPECT_NEAR(capability["overall"]["pp"]["value"], 24 / (6 * deviation), 1e-12);
  EXPECT_LT(capability["overall"]["ppk"]["lower"], capability["overall"]["ppk"]["value"]);
  EXPECT_NEAR(capability["overall"]["pp"]["value"], 12 / (3 * std::sqrt(40)), 0.03);
  const Json& oneSided = report["responses"][1]["capability"];
  EXPECT_EQ(oneSided["within"]["cp"], nullptr);
  EXPECT_EQ(oneSided["within"]["cpl"], nullptr);
  EXPECT_EQ(oneSided["overall"]["expectedPpm"]["below"], nullptr);
  EXPECT_EQ(oneSided["observedPpm"]["below"], nullptr) << "there is no limit that could be missed";
  const Json& above = oneSided["overall"]["expectedPpm"]["above"];
  EXPECT_LT(above["lower"], above["value"]);
  EXPECT_GT(above["upper"], above["value"]);
  EXPECT_EQ(report["responses"][2]["capability"], nullptr);
}

// 16 bits do not hold the number of defects; parts per million are whole numbers in the table.
TEST_F(ProfileCommand, ManyDefectsAreCountedExactly) {
  WriteData();
  const Arguments call{"profile", "ab.csv",    "--formula", "Y=A",    "--spec",
                       "Y=,,10",  "--samples", "100000",    "--seed", "1"};
  const Json report = JsonOf(call);
  const Json& rate = report["defects"][0];
  EXPECT_NEAR(rate["rate"], 0.5, 0.01);
  EXPECT_EQ(rate["defects"], std::lround(rate["rate"].get<double>() * 100000));
  EXPECT_EQ(report["responses"][0]["capability"]["observedPpm"]["above"]["value"], rate["ppm"]);
  EXPECT_FALSE(report.contains("notes")) << report["notes"];
  const std::string text = MustRun(call).out;
  EXPECT_NE(text.find(" " + std::to_string(std::lround(rate["ppm"].get<double>())) + " ("), std::string::npos)
      << text;
  EXPECT_EQ(text.find("e+05"), std::string::npos) << text;
}

// Stratified runs vary less than independent ones, by a measure that is not known.
TEST_F(ProfileCommand, NoLimitsAreGivenForRunsOfCorrelatedPredictors) {
  WriteData();
  const Arguments call{"profile", "ab.csv",       "--formula", "Y=A+B", "--spec",
                       "Y=,,16",  "--correlated", "--seed",    "1"};
  const Json report = JsonOf(call);
  for (const Json& percentile : report["responses"][0]["percentiles"])
    EXPECT_TRUE(percentile["lower"].is_null() && percentile["upper"].is_null()) << percentile;
  const Json& capability = report["responses"][0]["capability"];
  for (const Json& one : {capability["overall"]["ppk"], capability["observedPpm"]["above"]}) {
    EXPECT_TRUE(one["value"].is_number()) << one;
    EXPECT_TRUE(one["lower"].is_null() && one["upper"].is_null()) << one;
  }
  EXPECT_TRUE(capability["overall"]["standardDeviation"].is_number());
  EXPECT_TRUE(report["defects"][0]["rate"].is_number());
  EXPECT_TRUE(report["defects"][0]["rateInterval"]["lower"].is_null());
  ASSERT_EQ(report["notes"].size(), 1U);
  const std::string text = MustRun(call).out;
  EXPECT_EQ(text.find("95 %"), std::string::npos) << text;
  EXPECT_NE(text.find("No confidence limits and p-values are given: "), std::string::npos) << text;
  const Json& response = report["responses"][0];
  for (const Json& correlation : response["correlations"]) {
    EXPECT_TRUE(correlation["spearman"].is_number());
    EXPECT_TRUE(correlation["spearmanPValue"].is_null() && correlation["pearsonPValue"].is_null());
  }
  EXPECT_TRUE(response["capability"]["normalPValue"].is_null());
}

TEST_F(ProfileCommand, RunsWithoutAPredictionAreCountedByReasonAndNoneAtAllIsAFailure) {
  WriteData();
  WriteBytes(File("m.pmml"), kRanged);
  const Json response =
      JsonOf({"profile", "ab.csv", "--formula", "Y=ln(A-10)", "--seed", "1"})["responses"][0];
  ASSERT_EQ(response["unpredicted"].size(), 1U);
  EXPECT_EQ(response["unpredicted"][0]["reason"], "no-result");
  EXPECT_EQ(response["unpredicted"][0]["field"], nullptr);
  EXPECT_EQ(response["unpredicted"][0]["runs"], response["statistics"]["missing"]);
  const Json chained = JsonOf({"profile", "ab.csv", "--formula", "Y=ln(A-10)", "--formula", "Z=Y+ln(B-4)",
                               "--seed", "1"})["responses"][1];
  ASSERT_EQ(chained["unpredicted"].size(), 2U);
  EXPECT_EQ(chained["unpredicted"][0]["reason"], "missing");
  EXPECT_EQ(chained["unpredicted"][0]["field"], "Y");
  EXPECT_EQ(chained["unpredicted"][0]["runs"], response["statistics"]["missing"]);
  EXPECT_EQ(chained["unpredicted"][1]["reason"], "no-result");
  const Outcome none =
      Run({"profile", "ab.csv", "--model", "m.pmml", "--truncate", "A=20:30", "-o", "x.csv"});
  EXPECT_EQ(none.status, 1);
  EXPECT_NE(none.err.find("no run has a prediction (y: field A, the model does not accept the number: 20"),
            std::string::npos)
      << none.err;
  EXPECT_FALSE(std::filesystem::exists(File("x.csv")));
}

// Every run of 0 or 1 is a defect or none; a normal distribution says nothing of them.
TEST_F(ProfileCommand, AResponseOfFewValuesHasObservedDefectsAndNoIndices) {
  WriteData();
  const Arguments call{"profile", "ab.csv",  "--formula", "Y=if(A>10,1,0)",
                       "--spec",  "Y=,,0.5", "--seed",    "1"};
  const std::string text = MustRun(call).out;
  const std::size_t begin = text.find("\n  Capability ");
  ASSERT_NE(begin, std::string::npos) << text;
  EXPECT_EQ(text.find("Cpk", begin), std::string::npos) << text;
  EXPECT_NE(text.find("\n  PPM above USL ", begin), std::string::npos) << text;
  EXPECT_NE(text.find("  Y: no indices and no expected PPM are given"), std::string::npos) << text;
}

// Y = exp(A / 4) is lognormal with a shape of 0.5.
TEST_F(ProfileCommand, IndicesFromMovingRangesAreDoubtedWhereNormalityIsRejected) {
  WriteData();
  const std::string text =
      MustRun({"profile", "ab.csv", "--formula", "Y=exp(A/4)", "--spec", "Y=,,60", "--seed", "1"}).out;
  EXPECT_NE(text.find("; A-D p-value of the fitted normal <0.0001\n"), std::string::npos) << text;
  EXPECT_NE(text.find("  Y: the indices \"Within\" rest on the moving range"), std::string::npos) << text;
}

// A response without predictions hides neither the profiles of the others nor the graphs.
TEST_F(ProfileCommand, ProfilesOfPredictedValuesAreThereForEveryResponseThatHasPredictions) {
  WriteData();
  const Json report = JsonOf({"profile", "ab.csv", "--formula", "N=ln(-1-A*A)", "--formula", "Y=3*A-2*B",
                              "--seed", "1", "--graphs", "graphs.json"});
  EXPECT_EQ(report["responses"][0]["statistics"]["n"], 0);
  EXPECT_EQ(report["responses"][0]["profiles"][0]["means"].size(), 0U);
  const Json& profiles = report["responses"][1]["profiles"];
  ASSERT_EQ(profiles.size(), 2U);
  EXPECT_EQ(profiles[1]["predictor"], "B");
  const auto values = profiles[0]["values"].get<std::vector<double>>();
  const auto means = profiles[0]["means"].get<std::vector<double>>();
  ASSERT_EQ(values.size(), 20U);
  ASSERT_EQ(means.size(), values.size());
  EXPECT_NEAR((means[15] - means[4]) / (values[15] - values[4]), 3, 0.2);
  std::ifstream file(File("graphs.json"));
  const Json graphs = Json::parse(file);
  EXPECT_EQ(graphs["responses"][0]["graphs"].size(), 0U);
  EXPECT_EQ(graphs["responses"][1]["graphs"].size(), 2U);
  EXPECT_EQ(graphs["profiles"]["panels"].size(), 4U);
}

// The same table for people, and nothing but the reasons where nothing is predicted.
TEST_F(ProfileCommand, ProfilesAreATableAndAResponseWithoutPredictionsHasNone) {
  WriteData();
  const std::string text =
      MustRun({"profile", "ab.csv", "--formula", "N=ln(-1-A*A)", "--formula", "Y=3*A", "--seed", "1"}).out;
  EXPECT_NE(text.find("\n  without a prediction: 5000 runs (the formula gives no number)\n\nY\n"),
            std::string::npos)
      << text;
  const std::size_t table = text.find("\n  Mean Y where a predictor is about\n  Predictor  lowest ");
  ASSERT_NE(table, std::string::npos) << text;
  std::istringstream row(text.substr(text.find("\n  A ", table)));
  std::string name;
  std::string place;
  double mean = 0;
  double former = 0;
  row >> name;
  for (int i = 0; i < 5; ++i) {
    row >> place >> mean;
    EXPECT_EQ(place.back(), ':');
    EXPECT_NEAR(mean, 3 * std::stod(place), 0.8);
    EXPECT_GT(mean, former);
    former = mean;
  }
}

// Hundred, give or take a few millionths, and a shape whose description prescribes no parameters.
TEST_F(ProfileCommand, NumbersShowAgainstTheirSpread) {
  std::string data = "L\n";
  for (int i = 0; i < 40; ++i) data += "100.0000" + std::to_string(10 + i * i % 37) + "\n";
  Write("d.csv", data);
  const std::string text =
      MustRun({"profile", "d.csv", "--formula", "Y=L", "--seed", "1", "--spec", "Y=99.99999,,100.00005"}).out;
  EXPECT_NE(text.find("normal(location=100.0000267"), std::string::npos) << text;
  EXPECT_NE(text.find(", scale=1.209"), std::string::npos) << text;
  EXPECT_NE(text.find("LSL 99.99999, target -, USL 100.00005"), std::string::npos) << text;
  EXPECT_EQ(text.find("   100  "), std::string::npos) << text;
  const std::string johnson =
      MustRun({"profile", kOzone, "--formula", "Y=temp", "--fit-best", "--seed", "1"}).out;
  EXPECT_NE(johnson.find("johnson(type=SB, "), std::string::npos) << johnson;
}

TEST_F(ProfileCommand, SensitivityNamesTheDriverFirst) {
  WriteData();
  const Json response = JsonOf({"profile", "ab.csv", "--formula", "Y=B-5*A", "--seed", "5"})["responses"][0];
  const Json& rows = response["sensitivity"];
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0]["predictor"], "A");
  EXPECT_LT(rows[0]["rankCorrelation"], -0.9);
  EXPECT_NEAR(rows[0]["standardizedCoefficient"], -10 / std::sqrt(101), 0.02);
  EXPECT_NEAR(rows[1]["standardizedCoefficient"], 1 / std::sqrt(101), 0.02);
  EXPECT_NEAR(response["rSquared"], 1, 1e-9);
  const std::string text = MustRun({"profile", "ab.csv", "--formula", "Y=B-5*A", "--seed", "5"}).out;
  const std::size_t table = text.find("Rank corr.");
  ASSERT_NE(table, std::string::npos);
  EXPECT_LT(text.find("\n  A ", table), text.find("\n  B ", table));
  EXPECT_EQ(text.find("Capability"), std::string::npos);
}

// Half of the draws of a normal predictor lie above its mean; a class has its name.
TEST_F(ProfileCommand, ResponsesOfFewValuesAreListedOneByOne) {
  WriteData();
  const Arguments call{"profile", "ab.csv", "--formula", "Y=A>10", "--spec", "Y=,,0.5", "--seed", "4"};
  const Json response = JsonOf(call)["responses"][0];
  ASSERT_EQ(response["frequencies"].size(), 2U);
  EXPECT_EQ(response["frequencies"][1]["to"], 1);
  EXPECT_NEAR(response["frequencies"][1]["percent"], 50, 3);
  EXPECT_EQ(response["capability"]["percentiles"], nullptr);
  EXPECT_EQ(MustRun(call).out.find("Percentile"), std::string::npos);
  const std::string folderOfModels = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/";
  const std::string text = MustRun({"profile", folderOfModels + "Iris.csv", "--model",
                                    folderOfModels + "DecisionTreeIris.pmml", "--seed", "1"})
                               .out;
  EXPECT_NE(text.find("\n  virginica "), std::string::npos) << text;
  EXPECT_NE(text.find("\nSpecies\n  n 5000, missing 0\n\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("Mean Species"), std::string::npos) << text;
}

TEST_F(ProfileCommand, GraphsAndProjectsAreWritten) {
  const Outcome outcome = MustRun({"profile", kOzone, "--model", kModel, "--noise", "O3=4.75", "--spec",
                                   "O3=,,25", "--seed", "1", "-o", "out.bvw", "--graphs", "graphs.json"});
  EXPECT_NE(outcome.out.find("saved in out.bvw, sheet Simulated Results"), std::string::npos) << outcome.out;
  EXPECT_EQ(JsonOf({"show", "out.bvw"})["sheets"].size(), 1U);
  std::ifstream file(File("graphs.json"));
  const Json graphs = Json::parse(file);
  const Json& panels = graphs["responses"][0]["graphs"];
  ASSERT_EQ(panels.size(), 2U);
  EXPECT_EQ(panels[0]["kind"], "histogram");
  EXPECT_EQ(panels[0]["series"][0]["name"], "USL");
  EXPECT_EQ(panels[1]["kind"], "tornado");
  EXPECT_EQ(panels[1]["bars"][0]["name"], "temp");
  EXPECT_EQ(graphs["defectProfile"]["panels"].size(), 3U);
}

TEST_F(Command, DefectRatesStandWhereTheirGraphHasTooManyCells) {
  std::string header;
  std::string rows[3];
  for (int x = 1; x <= 33; ++x) {
    header += (x > 1 ? ",x" : "x") + std::to_string(x);
    for (int i = 0; i < 3; ++i) rows[i] += (x > 1 ? "," : "") + std::to_string((i * x) % 7);
  }
  WriteBytes(File("d.csv"), header + "\n" + rows[0] + "\n" + rows[1] + "\n" + rows[2] + "\n");
  std::string sum = "x1";
  for (int x = 2; x <= 33; ++x) sum += "+x" + std::to_string(x);
  std::vector<std::string> call{"profile", "d.csv", "--samples", "100", "--seed", "1", "--spec", "y1=,,50"};
  for (int y = 1; y <= 32; ++y) {
    call.emplace_back("--formula");
    call.push_back("y" + std::to_string(y) + " = " + sum);
  }
  call.insert(call.end(), {"-o", "s.csv", "--format", "json"});
  const Outcome outcome = Run(call);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(outcome.err.find("Defect profile creation failed."), std::string::npos) << outcome.err;
  EXPECT_TRUE(Json::parse(outcome.out).contains("defects")) << outcome.out.substr(0, 200);
  EXPECT_TRUE(std::filesystem::exists(File("s.csv")));
}

TEST_F(ProfileCommand, AnyNumberOfRunsIsMade) {
  WriteData();
  for (const int runs : {1, 2, 37, 99, 100}) {
    const Arguments call{"profile", "ab.csv", "--formula", "Y=3*A-2*B", "--correlated",      "--seed",
                         "3",       "--spec", "Y=0,,30",   "--samples", std::to_string(runs)};
    Arguments json = call;
    json.insert(json.end(), {"--format", "json", "-o", "runs.csv"});
    const Outcome outcome = Run(json);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const Json report = Json::parse(outcome.out);
    const std::vector<double> y = Column("runs.csv", "Y");
    ASSERT_EQ(y.size(), static_cast<std::size_t>(runs));
    EXPECT_EQ(report["runs"], runs);
    EXPECT_EQ(report["responses"][0]["statistics"]["n"], runs);
    EXPECT_NEAR(report["responses"][0]["statistics"]["mean"].get<double>(),
                std::accumulate(y.begin(), y.end(), 0.0) / runs, 1e-12);
    EXPECT_EQ(report["responses"][0]["statistics"]["maximum"], *std::ranges::max_element(y));
    EXPECT_NE(Run(call).out.find(std::to_string(runs) + " simulated runs"), std::string::npos);
  }
}

}  // namespace
}  // namespace brenvolt::test
