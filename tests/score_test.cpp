// brenvolt score as a user runs it.
#include <cmath>

#include "host/tables/csv.h"
#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const std::string kModels = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/";

struct ScoreCommand : Command {};

TEST_F(ScoreCommand, WritesThePredictionsThatTheModelsProgramMade) {
  const Outcome outcome =
      Run({"score", kModels + "RegressionOzone.pmml", kModels + "Ozone.csv", "-o", "out.csv"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "Predictions of 330 cases written to out.csv\n");
  const Spreadsheet found = ReadCsv(File("out.csv"));
  const Spreadsheet expected = ReadCsv(kModels + "RegressionOzone.expected.csv");
  ASSERT_EQ(found.CaseCount(), expected.CaseCount());
  EXPECT_EQ(found.VariableAt(1).Name(), "O3");
  for (std::size_t i = 0; i < found.CaseCount(); ++i) {
    const double x = expected.VariableAt(0).Values()[i];
    EXPECT_EQ(found.VariableAt(0).Values()[i], static_cast<double>(i + 1));
    EXPECT_NEAR(found.VariableAt(1).Values()[i], x, 1e-10 * std::fabs(x));
  }
}

TEST_F(ScoreCommand, PrintsClassesAsTheirNamesAndProbabilitiesWhenAsked) {
  Write("one.csv",
        "Petal.Width,Petal.Length,Sepal.Width,Sepal.Length,Species\n0.2,1.4,3.5,5.1,setosa\n2,5,3,6,x\n");
  EXPECT_EQ(Run({"score", kModels + "DecisionTreeIris.pmml", "one.csv"}).out,
            "Case,Species\n1,setosa\n2,virginica\n");
  EXPECT_EQ(
      Run({"score", kModels + "DecisionTreeIris.pmml", "one.csv", "--probabilities"}).out,
      "Case,Species,probability(setosa),probability(versicolor),probability(virginica)\n1,setosa,1,0,0\n"
      "2,virginica,0,0.021739130434782608,0.9782608695652174\n");
}

TEST_F(ScoreCommand, KeepsTheColumnsThatTellCasesApart) {
  Write("d.csv", "id,temp,ibh,ibt,O3\nmon,40,2693,87,3\n\"tue, late\",45,590,128,5\n");
  const std::vector<std::string> call{"score", kModels + "RegressionOzone.pmml", "d.csv", "--keep", "id,O3"};
  const Outcome outcome = Run(call);
  EXPECT_EQ(outcome.out.find("Case,id,O3 (data),O3\n1,mon,3,"), 0U) << outcome.out << outcome.err;
  EXPECT_NE(outcome.out.find("\n2,\"tue, late\",5,"), std::string::npos) << outcome.out;
  std::vector<std::string> asJson = call;
  asJson.insert(asJson.end(), {"--format", "json"});
  const auto report = nlohmann::json::parse(Run(asJson).out);
  EXPECT_EQ(report["caseNumbers"].dump(), "[1,2]");
  EXPECT_FALSE(report["predictions"].contains("id"));
  EXPECT_EQ(report["kept"]["id"].dump(), R"(["mon","tue, late"])");
  EXPECT_EQ(report["kept"]["O3 (data)"].dump(), "[3.0,5.0]");
  std::vector<std::string> asTable = call;
  asTable.insert(asTable.end(), {"--format", "table"});
  EXPECT_EQ(Run(asTable).out.find("  Case  id "), 0U) << Run(asTable).out;
  for (const char* file : {"p.sav", "p.dta"}) {
    MustRun({"score", kModels + "RegressionOzone.pmml", "d.csv", "--keep", "id", "-o", file});
    EXPECT_NE(MustRun({"import", file, "--preview"}).out.find("\n  Case "), std::string::npos) << file;
  }
  EXPECT_NE(Run({"score", kModels + "RegressionOzone.pmml", "d.csv", "-o", "p.json"})
                .err.find("predictions as JSON are "),
            std::string::npos);
  const std::pair<const char*, const char*> refusals[] = {
      {"day", "sheet d has no variable called 'day' (--keep)"}, {"id,id", "'id' is given twice (--keep)"}};
  for (const auto& [kept, message] : refusals) {
    const Outcome refused = Run({"score", kModels + "RegressionOzone.pmml", "d.csv", "--keep", kept});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find(message), std::string::npos) << refused.err;
  }
}

TEST_F(ScoreCommand, SaysWhatIsWrongAndWritesNothing) {
  Write("lacking.csv", "Sepal.Length,Sepal.Width\n1,2\n");
  Write("texts.csv", "temp,ibh,ibt\n40,2693,87\n41,many,128\n");
  Write("model.pmml",
        "<PMML version=\"4.4\"><DataDictionary><DataField name=\"c\" optype=\"categorical\" "
        "dataType=\"string\">"
        "<Value value=\"u\"/></DataField></DataDictionary>\n<RegressionModel functionName=\"regression\">"
        "<MiningSchema><MiningField name=\"c\"/></MiningSchema><RegressionTable intercept=\"1\">"
        "<CategoricalPredictor name=\"c\" value=\"u\" "
        "coefficient=\"2\"/></RegressionTable></RegressionModel></PMML>");
  Write("odd.pmml", "<PMML version=\"4.4\"><DataDictionary/>\n<Oddity/></PMML>");
  Write("unseen.csv", "c,d\nu,1\nw,2\n");
  struct Case {
    std::vector<std::string> arguments;
    std::string message;
  };
  const Case cases[] = {
      {{kModels + "DecisionTreeIris.pmml", "lacking.csv"},
       "brenvolt: the data lack fields that the model needs: Petal.Length, Petal.Width (lacking)\n"},
      {{kModels + "RegressionOzone.pmml", "texts.csv"},
       "brenvolt: the model needs numbers in the field ibh, which has the text \"many\" in case 2 (ibh)\n"},
      {{"model.pmml", "unseen.csv"},
       "brenvolt: the model refuses the value \"w\" of field c in case 2, which it does not know as valid "
       "(unseen)\n"},
      {{"odd.pmml", "unseen.csv"}, "brenvolt: the element Oddity is not supported (odd.pmml, line 2)\n"},
      {{"nowhere.pmml", "unseen.csv"}, "nowhere.pmml"},
  };
  for (const Case& wrong : cases) {
    std::vector<std::string> arguments{"score", "-o", "out.csv"};
    arguments.insert(arguments.end(), wrong.arguments.begin(), wrong.arguments.end());
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(wrong.message), std::string::npos) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(File("out.csv")));
  }
  EXPECT_EQ(Run({"score", "model.pmml", "unseen.csv", "--leave-invalid"}).out, "Case,prediction\n1,3\n2,\n");
  constexpr const char* kReasons =
      "No prediction for 1 of 2 cases\n"
      "  Field  Reason                             Values  Count\n"
      "  c      the model does not know the value  w           1\n";
  EXPECT_EQ(Run({"score", "model.pmml", "unseen.csv", "--leave-invalid"}).err, kReasons);
  EXPECT_EQ(Run({"score", "model.pmml", "unseen.csv", "--leave-invalid", "-o", "out.csv"}).out,
            std::string("Predictions of 2 cases written to out.csv\n") + kReasons);
  const auto report =
      Json::parse(Run({"score", "model.pmml", "unseen.csv", "--leave-invalid", "--format", "json"}).out);
  EXPECT_EQ(report["predictions"]["prediction"].dump(), "[3.0,null]");
  EXPECT_EQ(report["unpredicted"].dump(),
            R"([{"count":1,"field":"c","highest":null,"lowest":null,"reason":"unknown","value":"w"}])");
  EXPECT_EQ(Run({"score", "model.pmml"}).status, 2);
}

TEST_F(Command, SafeCellsHoldNoFormulasWhereTheyAreAskedForAndInTables) {
  Write("d.csv",
        "=x,temp,ibh,ibt,id\n1,40,2693,87,@SUM(1)\n2,45,590,128,b\n3,54,1450,102,c\n4,35,1568,105,d\n");
  const std::string model = kExamples + "ozone_regression.pmml";
  const std::vector<std::string> score{"score", model, "d.csv", "--keep", "=x,id"};
  const auto with = [](std::vector<std::string> call, const std::vector<std::string>& more) {
    call.insert(call.end(), more.begin(), more.end());
    return call;
  };
  EXPECT_NE(MustRun(score).out.find(",@SUM(1),"), std::string::npos);
  const std::string safe = MustRun(with(score, {"--safe-cells"})).out;
  EXPECT_TRUE(safe.starts_with("Case,'=x,id,")) << safe;
  EXPECT_NE(safe.find(",'@SUM(1),"), std::string::npos) << safe;
  MustRun(with(score, {"--safe-cells", "-o", "s.csv", "--record", "s.py"}));
  EXPECT_EQ(BytesOf(File("s.csv")), safe);
  EXPECT_NE(BytesOf(File("s.py")).find("safe_cells=True"), std::string::npos);
  EXPECT_EQ(Run(with(score, {"--safe-cells", "-o", "s.npz"})).status, 2);
  EXPECT_EQ(Run(with(score, {"--safe-cells", "--format", "json"})).status, 2);
  MustRun({"import", "d.csv", "-o", "p.bvw"});
  MustRun({"export", "p.bvw", "-o", "e.csv", "--safe-cells"});
  EXPECT_TRUE(BytesOf(File("e.csv")).starts_with("'=x,temp,ibh,ibt,id\n1,40,2693,87,'@SUM(1)\n"));
  EXPECT_NE(MustRun({"fit", "d.csv", "--continuous", "=x", "--format", "csv"}).out.find("\n'=x,"),
            std::string::npos);
}

}  // namespace
}  // namespace brenvolt::test
