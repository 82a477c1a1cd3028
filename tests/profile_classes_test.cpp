// Classes in brenvolt profile, as a user runs it.
#include <map>
#include <set>
#include <string>

#include "host/tables/csv.h"
#include "tests/profile_fixture.h"

namespace brenvolt::test {
namespace {

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
  EXPECT_NE(numbers.err.find("the predictor holds numbers, not classes such as a"), std::string::npos)
      << numbers.err;
  const Outcome simulated = Run({"simulate", "--variable", "A ~ histogram(a:0.5, b:0.5)"});
  EXPECT_EQ(simulated.status, 2);
  EXPECT_NE(simulated.err.find("the levels of A are texts"), std::string::npos) << simulated.err;
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

}  // namespace
}  // namespace brenvolt::test
