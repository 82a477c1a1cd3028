// brenvolt profile as a user runs it.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <map>
#include <numeric>
#include <set>
#include <sstream>
#include <string>

#include "host/base/lower_case.h"
#include "host/tables/csv.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const std::string kOzone = kExamples + "ozone.csv";
const std::string kModel = kExamples + "ozone_regression.pmml";
// The same prediction as the model's, written out.
const std::string kFormula =
    "O3 = -7.727982213955437 + 0.3804408287168912*temp - 0.001186227769643128*ibh - "
    "0.005821484614040797*ibt";

using Arguments = std::vector<std::string>;

struct ProfileCommand : Command {
  void Write(const std::string& name, const std::string& text) const { std::ofstream(File(name)) << text; }

  // A and B: means 10 and 4; standard deviations (divisor n - 1) 2 and 1; correlation 0.8 as near as 200
  // values come.
  void WriteData() const {
    constexpr int kCases = 200;
    std::vector<double> a(kCases);
    std::vector<double> b(kCases);
    for (int i = 0; i < kCases; ++i) {
      a[static_cast<std::size_t>(i)] = std::sin(i * 12.9898);
      b[static_cast<std::size_t>(i)] = std::sin(i * 78.233 + 1);
    }
    Standardize(a);
    Standardize(b);
    std::ofstream file(File("ab.csv"));
    file.precision(17);
    file << "A,B\n";
    for (std::size_t i = 0; i < a.size(); ++i) b[i] = 0.8 * a[i] + 0.6 * b[i];
    Standardize(b);
    for (std::size_t i = 0; i < a.size(); ++i) file << 10 + 2 * a[i] << "," << 4 + b[i] << "\n";
  }
  static void Standardize(std::vector<double>& x) {
    const auto n = static_cast<double>(x.size());
    const double mean = std::accumulate(x.begin(), x.end(), 0.0) / n;
    double squares = 0;
    for (double& value : x) {
      value -= mean;
      squares += value * value;
    }
    for (double& value : x) value /= std::sqrt(squares / (n - 1));
  }
  std::vector<double> Column(const std::string& file, const std::string& name) const {
    const Spreadsheet sheet = ReadCsv(File(file));
    const auto variable = sheet.FindVariable(name);
    EXPECT_TRUE(variable.has_value()) << name;
    if (!variable) return {};
    const auto values = sheet.VariableAt(*variable).Values();
    return {values.begin(), values.end()};
  }
};

double Share(const std::vector<double>& values, const auto& condition) {
  return static_cast<double>(std::ranges::count_if(values, condition)) / static_cast<double>(values.size());
}

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

// y = 2 A, for A from 8 to 12 alone: one standard deviation on either side of its mean.
constexpr const char* kRanged = R"(<PMML version="4.2" xmlns="http://www.dmg.org/PMML-4_2"><Header/>
<DataDictionary><DataField name="A" optype="continuous" dataType="double">
<Interval closure="closedClosed" leftMargin="8" rightMargin="12"/></DataField>
<DataField name="y" optype="continuous" dataType="double"/></DataDictionary>
<RegressionModel functionName="regression"><MiningSchema><MiningField name="A"/>
<MiningField name="y" usageType="target"/></MiningSchema><RegressionTable intercept="0">
<NumericPredictor name="A" coefficient="2"/></RegressionTable></RegressionModel></PMML>)";

TEST_F(ProfileCommand, PredictorsKeepToTheRangeOfTheirModelUnlessThatIsLifted) {
  WriteData();
  WriteBytes(File("m.pmml"), kRanged);
  Arguments call{"profile", "ab.csv", "--model", "m.pmml", "--seed", "1"};
  for (const bool best : {false, true}) {
    if (best) call.emplace_back("--fit-best");
    const Json within = JsonOf(call);
    EXPECT_EQ(within["responses"][0]["statistics"]["n"], 5000);
    EXPECT_EQ(within["responses"][0]["unpredicted"].size(), 0U);
    EXPECT_EQ(within["predictors"][0]["name"], "A");
    const std::string drawnFrom = within["predictors"][0]["distribution"];
    EXPECT_NE(drawnFrom.find(" [8, 12]"), std::string::npos) << drawnFrom;
    EXPECT_NE(MustRun(call).out.find(drawnFrom), std::string::npos);
  }
  const Arguments lift{"profile", "ab.csv", "--model", "m.pmml", "--seed", "1", "--truncate", "A=:"};
  const Json lifted = JsonOf(lift)["responses"][0];
  ASSERT_EQ(lifted["unpredicted"].size(), 1U);
  const Json& reason = lifted["unpredicted"][0];
  EXPECT_EQ(reason["reason"], "outside-range");
  EXPECT_EQ(reason["field"], "A");
  EXPECT_NEAR(reason["runs"], 0.3173 * 5000, 150);
  EXPECT_EQ(reason["runs"], lifted["statistics"]["missing"]);
  EXPECT_NE(MustRun(lift).out.find("runs (field A, the model does not accept the number: "),
            std::string::npos);
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

TEST_F(ProfileCommand, AMisspeltPredictorBringsTheNearestName) {
  Write("d.csv", "temp,wind\n50,3\n60,4\n70,2\n");
  const struct {
    Arguments rest;
    const char* message;
  } cases[] = {
      {{"--formula", "Y=tmep*2"}, "'tmep' with values to start the predictor from; did you mean temp?"},
      {{"--formula", "Y=temp+height"}, "'height' with values to start the predictor from; give it"}};
  for (const auto& c : cases) {
    Arguments call{"profile", "d.csv"};
    call.insert(call.end(), c.rest.begin(), c.rest.end());
    const Outcome outcome = Run(call);
    EXPECT_EQ(outcome.status, 1) << outcome.err;
    EXPECT_NE(outcome.err.find(c.message), std::string::npos) << outcome.err;
  }
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

// A field that lists its numbers, and one whose range has a gap in which most of the data lie.
constexpr const char* kParts = R"(<PMML version="4.2"><DataDictionary>
<DataField name="A" optype="continuous" dataType="double"><Interval closure="closedOpen" leftMargin="12"/>
<Interval closure="openClosed" leftMargin="6" rightMargin="9"/></DataField>
<DataField name="grade" optype="continuous" dataType="integer"><Value value="1"/><Value value="3"/></DataField>
<DataField name="y" optype="continuous" dataType="double"/></DataDictionary>
<RegressionModel functionName="regression"><MiningSchema><MiningField name="A"/><MiningField name="grade"/>
<MiningField name="y" usageType="target"/></MiningSchema><RegressionTable intercept="0">
<NumericPredictor name="A" coefficient="2"/><NumericPredictor name="grade" coefficient="1"/></RegressionTable></RegressionModel></PMML>)";

TEST_F(ProfileCommand, DrawsKeepToTheNumbersThatModelsAccept) {
  WriteBytes(File("m.pmml"), kParts);
  Write("d.csv", "A,grade\n8,1\n9,3\n10,3\n11,1\n12,3\n");
  Write("odd.csv", "A,grade\n8,1\n9,3\n10,3\n11,2\n12,3\n");
  const Arguments call{"profile", "d.csv", "--model", "m.pmml", "--seed", "1", "-o", "r.csv"};
  const Outcome outcome = MustRun(call);
  EXPECT_NE(outcome.out.find("[6, ] without 9 to 12\n"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("histogram(1:0.4, 3:0.6)\n"), std::string::npos) << outcome.out;
  const Outcome odd = Run({"profile", "odd.csv", "--model", "m.pmml", "--seed", "1"});
  EXPECT_EQ(odd.err, "brenvolt: Cases of grade whose class is unknown to every model are left out: 2 (1)\n");
  EXPECT_NE(odd.out.find("histogram(1:0.25, 3:0.75)\n"), std::string::npos) << odd.out;
  const std::vector<double> a = Column("r.csv", "A");
  EXPECT_EQ(Share(a, [](double x) { return (x >= 6 && x <= 9) || x >= 12; }), 1);
  // Of the normal distribution with mean 10 and variance 2.5: the parts above 12 and from 6 to 9.
  EXPECT_NEAR(Share(a, [](double x) { return x > 12; }), 0.1030 / (0.1030 + 0.2578), 0.03);
  EXPECT_EQ(Share(Column("r.csv", "grade"), [](double x) { return x == 1 || x == 3; }), 1);
  EXPECT_EQ(JsonOf({"profile", "d.csv", "--model", "m.pmml", "--seed", "1",
                    "--correlated"})["responses"][0]["statistics"]["missing"],
            0);
  const Json lifted = JsonOf({"profile", "d.csv", "--model", "m.pmml", "--seed", "1", "--truncate", "A=:"});
  EXPECT_EQ(lifted["responses"][0]["unpredicted"][0]["reason"], "outside-range");
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

TEST_F(ProfileCommand, FixedAndTruncatedPredictorsStayWhereTheyArePut) {
  WriteData();
  MustRun({"profile", "ab.csv", "--formula", "Y=A+B", "--fix", "A=7.5", "--truncate", "B=3.5,4.5", "--seed",
           "1", "-o", "runs.csv"});
  const auto a = Column("runs.csv", "A");
  const auto b = Column("runs.csv", "B");
  EXPECT_EQ(Share(a, [](double v) { return v == 7.5; }), 1);
  EXPECT_EQ(Share(b, [](double v) { return v >= 3.5 && v <= 4.5; }), 1);
  EXPECT_NEAR(*std::ranges::max_element(b), 4.5, 0.01);
  EXPECT_NEAR(*std::ranges::min_element(b), 3.5, 0.01);
}

// A predictor that is not a column of the data is accepted once it is fixed.
TEST_F(ProfileCommand, FormulaMayUseAFixedValueThatTheDataLack) {
  WriteData();
  MustRun({"profile", "ab.csv", "--formula", "Y=A*k", "--fix", "k=2", "--seed", "1", "-o", "runs.csv"});
  const auto a = Column("runs.csv", "A");
  const auto y = Column("runs.csv", "Y");
  for (std::size_t i = 0; i < a.size(); ++i) ASSERT_DOUBLE_EQ(y[i], 2 * a[i]);
}

// Fire losses have a long upper tail; the normal distribution that predictors start from has none.
TEST_F(ProfileCommand, FitBestDrawsFromTheShapeOfTheData) {
  const Arguments call{
      "profile", kExamples + "danish_fire_losses.csv", "--formula", "Y=Loss", "--spec", "Y=,,20", "--seed",
      "1"};
  const Json normal = JsonOf(call)["responses"][0];
  EXPECT_NEAR(normal["statistics"]["skewness"], 0, 0.2);
  EXPECT_EQ(normal["capability"]["percentiles"], nullptr);
  Arguments best = call;
  best.emplace_back("--fit-best");
  const Json fitted = JsonOf(best)["responses"][0];
  EXPECT_GT(fitted["statistics"]["skewness"], 1);
  const Json& percentiles = fitted["capability"]["percentiles"];
  ASSERT_FALSE(percentiles.is_null());
  EXPECT_GT(percentiles["p99.865"], 20);
  EXPECT_EQ(percentiles["pp"], nullptr);
  EXPECT_LT(percentiles["ppu"], 1);
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

TEST_F(ProfileCommand, SaysWhatIsWrongAndWritesNothing) {
  WriteData();
  const Arguments start{"profile", "ab.csv"};
  const struct {
    Arguments rest;
    int status;
    const char* message;
  } cases[] = {
      {{}, 2, "--model"},
      {{"--model", "none.pmml"}, 1, "none.pmml"},
      {{"--formula", "A+B"}, 2, "RESPONSE=EXPRESSION"},
      {{"--formula", "Y="}, 2, "RESPONSE=EXPRESSION"},
      {{"--formula", "Y=A+C"}, 1, "no variable called 'C'"},
      {{"--formula", "Y=A+"}, 2, "formula for Y, character 5: "},
      {{"--formula", "Y=A", "--formula", "Y=B"}, 2, "'Y' is given twice (--formula)"},
      {{"--formula", "Y=A", "--spec", "Z=1,,2"}, 2, "no response called 'Z'"},
      {{"--formula", "Y=A", "--spec", "Y=5,,2"}, 2, "must be less than"},
      {{"--formula", "Y=A", "--spec", "Y=1,7,2"}, 2, "target"},
      {{"--formula", "Y=A", "--spec", "Y=,1,"}, 2, "expected a lower or an upper limit"},
      {{"--formula", "Y=A", "--spec", "Y=1,2"}, 2, "LSL,TARGET,USL"},
      {{"--formula", "Y=A", "--spec", "Y=1,,x"}, 2, "expected a number, got 'x' (--spec)"},
      {{"--formula", "Y=A", "--spec", "Y=1,,2", "--spec", "Y=1,,3"}, 2, "twice"},
      {{"--formula", "Y=A", "--noise", "Y=-1"}, 2, "must not be less than 0 (--noise)"},
      {{"--formula", "Y=A", "--noise", "Q=1"}, 2, "no response called 'Q'"},
      {{"--formula", "Y=A", "--fix", "Q=1"}, 2, "no predictor called 'Q'"},
      {{"--formula", "Y=A", "--truncate", "A=3,1"}, 2, "must be less than the maximum"},
      {{"--formula", "Y=A", "--fix", "A=1"}, 1, "must be random"},
      {{"--formula", "Y=A", "--fix", "A=1", "--truncate", "A=0,1"},
       2,
       "'A': a predictor that is fixed has no draws"},
      {{"--formula", "Y=A+B", "--fix", "A=cold"}, 2, "'A': type mismatch: not a number (--fix)"},
      {{"--formula", "Y=A+B", "--truncate", "A=500:600"},
       2,
       "'A': The bounds leave nothing of the Normal distribution. (--truncate)"},
      {{"--formula", "Y=A", "--truncate", "A=:"}, 2, "'A' has no range that could be lifted (--truncate)"},
      {{"--formula", "Y=A+B", "--correlated", "--fix", "A=1"}, 2, "a single random predictor has nothing"},
      {{"--formula", "Y=2*Z", "--formula", "Z=Y-1"}, 1, "it is predicted from itself"},
      {{"--formula", "Y=A", "--samples", "0"}, 2, "from 1 to 2147483647, got 0"},
      {{"--formula", "Y=A", "--samples", "100001", "-o", "r.bvw"},
       2,
       "more than 100000 runs go to a .csv or .npz file"},
      {{"--formula", "Y=A", "--seed", "0"}, 2, "--seed"},
      {{"--formula", "Y=A", "-o", "out.txt"}, 2, ".csv, .npz, .xlsx, .sav, .dta or .bvw"},
  };
  for (const auto& c : cases) {
    Arguments arguments = start;
    arguments.insert(arguments.end(), c.rest.begin(), c.rest.end());
    if (std::ranges::find(c.rest, "-o") == c.rest.end()) arguments.insert(arguments.end(), {"-o", "out.csv"});
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, c.status) << testing::PrintToString(c.rest) << outcome.err;
    EXPECT_NE(outcome.err.find(c.message), std::string::npos)
        << testing::PrintToString(c.rest) << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_FALSE(std::filesystem::exists(File("out.csv")));
  }
}

TEST_F(Command, FormulasOfProfilesUseColumnsByNameAndOtherResponses) {
  WriteBytes(File("v.csv"), "v1,v2,v3\n1,2,3\n2,3,5\n4,1,2\n3,3,1\n");
  const Json report =
      JsonOf({"profile", "v.csv", "--formula", "Y = v1 + v3", "--samples", "200", "--seed", "1"});
  EXPECT_NEAR(report["responses"][0]["statistics"]["mean"], 5.25, 0.5) << "means of the columns v1 and v3";
  const Json chained =
      JsonOf({"profile", "v.csv", "--formula", "B = 2*A", "--formula", "A = v1", "--seed", "1"});
  EXPECT_DOUBLE_EQ(chained["responses"][0]["statistics"]["mean"],
                   2 * chained["responses"][1]["statistics"]["mean"].get<double>());
  EXPECT_EQ(chained["responses"][0]["sensitivity"].size(), 1U);
  for (const char* formula : {"v2 = v2 + v1", "v2 = B + v1"}) {
    const Outcome refused =
        Run({"profile", "v.csv", "--formula", "B = v2 + v3", "--formula", formula, "-o", "x.csv"});
    EXPECT_EQ(refused.status, 1) << formula;
    EXPECT_NE(refused.err.find("it is predicted from itself"), std::string::npos) << refused.err;
    EXPECT_FALSE(std::filesystem::exists(File("x.csv")));
  }
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

// A tree whose file lists neither the texts of `grade` nor those of a truth value, as R writes forests: y is 1
// for high and hot, 2 for high and not hot, 3 for any other grade.
constexpr const char* kGrades = R"(<PMML version="4.4"><DataDictionary>
<DataField name="grade" optype="categorical" dataType="string"/><DataField name="hot" optype="categorical" dataType="boolean"/>
<DataField name="idle" optype="continuous" dataType="double"/><DataField name="y" optype="continuous" dataType="double"/>
</DataDictionary><TreeModel functionName="regression"><MiningSchema><MiningField name="grade"/><MiningField name="hot"/>
<MiningField name="idle"/><MiningField name="y" usageType="target"/></MiningSchema><Node id="0"><True/>
<Node id="1" score="1"><CompoundPredicate booleanOperator="and"><SimplePredicate field="grade" operator="equal" value="high"/>
<SimplePredicate field="hot" operator="equal" value="true"/></CompoundPredicate></Node>
<Node id="2" score="2"><SimplePredicate field="grade" operator="equal" value="high"/></Node>
<Node id="3" score="3"><True/></Node></Node></TreeModel></PMML>)";

TEST_F(ProfileCommand, CategoriesThatTheModelDoesNotListAreThoseOfTheData) {
  Write("grades.pmml", kGrades);
  Write("grades.csv", "grade,hot\nhigh,TRUE\nlow,FALSE\nhigh,FALSE\nmid,TRUE\n");
  MustRun({"profile", "grades.csv", "--model", "grades.pmml", "--seed", "3", "-o", "runs.csv"});
  const Spreadsheet runs = ReadCsv(File("runs.csv"));
  EXPECT_FALSE(runs.FindVariable("idle"));
  std::map<std::string, std::size_t> counts;
  for (std::size_t i = 0; i < runs.CaseCount(); ++i) {
    const auto text = [&](const std::string& name) {
      const Variable& column = runs.VariableAt(*runs.FindVariable(name));
      return std::string(*column.Label(column.Values()[i]));
    };
    const double y = text("grade") != "high" ? 3 : text("hot") == "TRUE" ? 1 : 2;
    ASSERT_EQ(runs.VariableAt(*runs.FindVariable("y")).Values()[i], y) << i;
    ++counts[text("grade") + text("hot")];
  }
  ASSERT_EQ(counts.size(), 6U);
  for (const auto& [both, count] : counts)
    EXPECT_NEAR(static_cast<double>(count), both.starts_with("high") ? 1250 : 625, 150) << both;
}

TEST_F(ProfileCommand, PredictorsAreFixedAtClassesByName) {
  Write("grades.pmml", kGrades);
  Write("grades.csv", "grade,hot\nhigh,TRUE\nlow,FALSE\n");
  struct Case {
    const char* fixed;
    std::string only;
  };
  for (const Case& one : {Case{"grade=high", "1 2"}, Case{"grade=low", "3"}, Case{"hot=TRUE", "1 3"},
                          Case{"hot=True", "1 3"}, Case{"hot=false", "2 3"}}) {
    MustRun({"profile", "grades.csv", "--model", "grades.pmml", "--seed", "3", "--fix", one.fixed, "-o",
             "runs.csv"});
    const Spreadsheet runs = ReadCsv(File("runs.csv"));
    const auto values = runs.VariableAt(*runs.FindVariable("y")).Values();
    const std::set<double> distinct(values.begin(), values.end());
    std::string found;
    for (const double value : distinct)
      found += (found.empty() ? "" : " ") + std::to_string(static_cast<int>(value));
    EXPECT_EQ(found, one.only) << one.fixed;
  }
  for (const Case& wrong : {Case{"hot=warm", "unknown class: warm; the classes are FALSE, TRUE"},
                            Case{"grade=unseen", "unknown class: unseen; the classes are high, low"},
                            Case{"grade=HIGH", "unknown class: HIGH; the classes are high, low"}}) {
    const Outcome outcome = Run({"profile", "grades.csv", "--model", "grades.pmml", "--fix", wrong.fixed});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find(wrong.only), std::string::npos) << outcome.err;
  }
}

// The report has what predictors of texts and fixed ones are drawn from in a form that the command takes.
TEST_F(ProfileCommand, ClassesAreRepeatedFromTheReport) {
  Write("grades.pmml", kGrades);
  Write("grades.csv", "grade,hot\nhigh,TRUE\n\"low, or 1\",FALSE\nhigh,FALSE\n7,TRUE\n");
  const Arguments call{"profile",   "grades.csv", "--model",  "grades.pmml",
                       "--samples", "300",        "--format", "json"};
  for (const std::string fixed : {"", "hot=true"}) {
    Arguments first = call;
    first.insert(first.end(), {"-o", "first.csv"});
    if (!fixed.empty()) first.insert(first.end(), {"--fix", fixed});
    const Json report = Json::parse(MustRun(first).out);
    EXPECT_EQ(report["drawn"]["method"], "monte-carlo");
    EXPECT_EQ(report["predictors"][0]["distribution"], "histogram(high:0.5, \"low, or 1\":0.25, \"7\":0.25)");
    EXPECT_EQ(report["predictors"][1]["distribution"],
              fixed.empty() ? "histogram(FALSE:0.5, TRUE:0.5)" : "fixed at TRUE");
    Arguments again = call;
    again.insert(again.end(), {"-o", "again.csv", "--seed", report["seed"].dump()});
    for (const Json& one : report["drawn"]["fixed"]) {
      again.insert(again.end(),
                   {"--fix", one["predictor"].get<std::string>() + "=" + one["value"].get<std::string>()});
    }
    for (const Json& one : report["predictors"]) {
      const std::string distribution = one["distribution"];
      if (distribution.starts_with("fixed")) continue;
      again.insert(again.end(), {"--variable", one["name"].get<std::string>() + " ~ " + distribution});
    }
    EXPECT_EQ(Json::parse(MustRun(again).out)["predictors"], report["predictors"]);
    EXPECT_EQ(BytesOf(File("again.csv")), BytesOf(File("first.csv"))) << fixed;
  }
}

TEST_F(ProfileCommand, ClassesByHandAreThoseOfTheModel) {
  Write("grades.pmml", kGrades);
  Write("grades.csv", "grade,hot\nhigh,TRUE\nlow,FALSE\n");
  const struct {
    std::string variable;
    std::string message;
  } rows[] = {
      {"grade ~ histogram(high:0.5, unseen:0.5)", "unknown class: unseen; the classes are high, low"},
      {"grade ~ histogram(1:0.5, 7:0.5)",
       "the predictor takes classes: a histogram of high, low (predictor grade)"},
      {"grade ~ normal(1, 1)", "the predictor takes classes: a histogram of high, low (predictor grade)"},
      {"hot ~ histogram(true:0.5, TRUE:0.5)", "the level 1 is there twice"},
      {"grade ~ histogram(high:0.5, high:0.5)", "the level high is there twice"},
  };
  for (const auto& row : rows) {
    const Outcome outcome =
        Run({"profile", "grades.csv", "--model", "grades.pmml", "--variable", row.variable});
    EXPECT_NE(outcome.status, 0) << row.variable;
    EXPECT_NE(outcome.err.find(row.message), std::string::npos) << outcome.err;
  }
  WriteData();
  const Outcome numbers =
      Run({"profile", "ab.csv", "--formula", "Y=A+B", "--variable", "A ~ histogram(a:1)"});
  EXPECT_NE(numbers.err.find("the predictor holds numbers, no classes such as a"), std::string::npos)
      << numbers.err;
  const Outcome simulated = Run({"simulate", "--variable", "A ~ histogram(a:0.5, b:0.5)"});
  EXPECT_EQ(simulated.status, 2);
  EXPECT_NE(simulated.err.find("the levels of A are texts"), std::string::npos) << simulated.err;
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

// Batches say it once on the terminal, and the report has it as well.
TEST_F(ProfileCommand, ARepairOfCorrelationsIsSaidInTheReport) {
  const std::string said =
      "The correlation matrix is not positive definite and was repaired. (smallest eigenvalue -0.8";
  for (const std::string runs : {"500", "150000"}) {
    const Outcome outcome = Run({"profile",
                                 "--variable",
                                 "a ~ normal(0, 1)",
                                 "--variable",
                                 "b ~ normal(0, 1)",
                                 "--variable",
                                 "c ~ normal(0, 1)",
                                 "--correlation",
                                 "a,b=0.9",
                                 "--correlation",
                                 "a,c=0.9",
                                 "--correlation",
                                 "b,c=-0.9",
                                 "--formula",
                                 "y = a + b + c",
                                 "--samples",
                                 runs,
                                 "--seed",
                                 "3",
                                 "--format",
                                 "json"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(Json::parse(outcome.out)["notes"][0].get<std::string>().substr(0, said.size()), said);
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
  }
}

TEST_F(ProfileCommand, WhatNeedsDataIsRefusedWithoutThem) {
  const Arguments call{"profile",          "--variable", "a ~ normal(0, 1)", "--variable",
                       "b ~ normal(0, 1)", "--formula",  "y = a + b"};
  for (const auto& [option, message] :
       {std::pair("--correlated", "there are no data whose correlations could be followed (--correlated)"),
        std::pair("--decimal-comma",
                  "there is no CSV file whose numbers could have decimal commas (--decimal-comma)")}) {
    Arguments whole = call;
    whole.push_back(option);
    const Outcome outcome = Run(whole);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, std::string("brenvolt: ") + message + "\n");
  }
}

TEST_F(ProfileCommand, OptionsWithoutEffectAreSaid) {
  WriteData();
  const std::string note = "No saved distribution would have been drawn";
  const Arguments call{"profile", "ab.csv", "--formula", "Y=A", "--samples", "100"};
  EXPECT_EQ(MustRun(call).out.find(note), std::string::npos);
  Arguments without = call;
  without.push_back("--no-saved-fits");
  EXPECT_NE(MustRun(without).out.find(note), std::string::npos);
  MustRun({"fit", "ab.csv", "--save", "p.bvw"});
  without[1] = "p.bvw";
  EXPECT_EQ(MustRun(without).out.find(note), std::string::npos);
  without.push_back("--fit-best");
  EXPECT_NE(MustRun(without).out.find(note), std::string::npos);
}

TEST_F(ProfileCommand, ClassesThatNoModelKnowsAreCountedAndSaid) {
  std::string listing = kGrades;
  const std::string open = R"(name="grade" optype="categorical" dataType="string"/>)";
  listing.replace(
      listing.find(open), open.size(),
      R"(name="grade" optype="categorical" dataType="string"><Value value="high"/><Value value="low"/></DataField>)");
  Write("grades.pmml", listing);
  Write("grades.csv", "grade,hot\nhigh,TRUE\nlow,FALSE\nmid,FALSE\nodd,TRUE\nmid,TRUE\n");
  const Outcome outcome = Run({"profile", "grades.csv", "--model", "grades.pmml", "--seed", "3"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::string note =
      "Cases of grade whose class is unknown to every model are left out: mid (2), odd (1)";
  EXPECT_NE(outcome.err.find(note), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.out.find("\n  " + note + "\n"), std::string::npos) << outcome.out;
  const Outcome reported =
      Run({"profile", "grades.csv", "--model", "grades.pmml", "--seed", "3", "--format", "json"});
  const Json report = Json::parse(reported.out);
  EXPECT_EQ(report["notes"], Json::array({note}));
  EXPECT_EQ(report["responses"][0]["profiles"][0]["values"], Json::array({"high", "low"}));
  EXPECT_NE(outcome.out.find("high: "), std::string::npos) << outcome.out;
}

TEST_F(Command, ProfileRefusesAMatrixAndDrawsFromNoFitThatTheDataContradict) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const Outcome matrix =
      Run({"profile", "p.bvw", "--sheet", "Correlation matrix", "--formula", "Y = eruptions"});
  EXPECT_EQ(matrix.status, 1);
  EXPECT_EQ(matrix.err, "brenvolt: the sheet holds a matrix, not cases (Correlation matrix)\n");
  for (const char* file : {"portpirie_sea_level", "danish_fire_losses"}) {
    const Json fitted = Json::parse(Run({"fit", kExamples + file + ".csv", "--format", "json"}).out);
    const Json& variable = fitted["variables"][0];
    const std::string name = variable["name"];
    const Outcome run = Run({"profile", kExamples + file + ".csv", "--fit-best", "--formula",
                             "Y = 2 * " + name, "--seed", "1", "--format", "json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string drawn = Json::parse(run.out)["predictors"][0]["distribution"];
    for (const Json& fit : variable["fits"]) {
      if (fit["valuesWithoutDensity"].is_null() || fit["valuesWithoutDensity"] == 0) continue;
      std::string type = LowerCase(fit["distribution"].get<std::string>());
      std::erase(type, ' ');
      EXPECT_FALSE(drawn.starts_with(type + "(")) << drawn;
    }
  }
}

}  // namespace
}  // namespace brenvolt::test
