// What brenvolt profile draws its predictors from, and what it refuses, as a user runs it.
#include <algorithm>
#include <string>

#include "host/base/lower_case.h"
#include "tests/profile_fixture.h"

namespace brenvolt::test {
namespace {

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
      {{"--formula", "Y=A", "--truncate", "A=3,1"}, 2, "the lower bound must be less than the upper one"},
      {{"--formula", "Y=A", "--fix", "A=1"}, 1, "must be random"},
      {{"--formula", "Y=A", "--fix", "A=1", "--truncate", "A=0,1"},
       2,
       "'A': a predictor that is fixed has no draws"},
      {{"--formula", "Y=A+B", "--fix", "A=cold"}, 2, "'A': type mismatch: not a number (--fix)"},
      {{"--formula", "Y=A+B", "--truncate", "A=500:600"},
       2,
       "'A': The bounds leave nothing of the Normal distribution. (--truncate)"},
      {{"--formula", "Y=A", "--truncate", "A=:"}, 2, "'A' has no bounds that could be removed (--truncate)"},
      {{"--formula", "Y=A+B", "--correlated", "--fix", "A=1"}, 2, "only one predictor is drawn at random"},
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
       {std::pair("--correlated", "there are no data to take the correlations from (--correlated)"),
        std::pair("--decimal-comma",
                  "this applies to text files, and no data file is given (--decimal-comma)")}) {
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
