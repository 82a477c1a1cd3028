// What is kept: saved fits with their correlations, data and matrices that go through a project and back.
#include <gtest/gtest.h>

#include <thread>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

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
  MustRun({"import", "m.csv", "-o", "p.bvw", "--name", "Correlation matrix of d"});
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

// Programs that save at the same time: into a project that is not there yet, and into the one that they read.
TEST_F(Command, NothingIsLostOfWhatSeveralProgramsSaveIntoOneProject) {
  constexpr int kPrograms = 4;
  constexpr int kSaves = 10;
  std::string names;
  std::string values[2];
  for (int i = 0; i < kPrograms * kSaves; ++i) {
    names += (i == 0 ? "V" : ",V") + std::to_string(i);
    for (const int line : {0, 1}) values[line] += (i == 0 ? "" : ",") + std::to_string(3 * line + i);
  }
  Write("d.csv", names + "\n" + values[0] + "\n" + values[1] + "\n" + values[0] + "\n");
  for (const std::string source : {"d.csv", "p.bvw"}) {
    std::filesystem::remove(File("p.bvw"));
    if (source == "p.bvw") MustRun({"import", "d.csv", "-o", "p.bvw"});
    std::vector<std::thread> programs;
    for (int program = 0; program < kPrograms; ++program) {
      programs.emplace_back([this, &source, program] {
        for (int save = 0; save < kSaves; ++save) {
          const std::string name = "V" + std::to_string(program * kSaves + save);
          const Outcome outcome =
              Run({"fit", source, "--continuous", name, "--distributions", "normal", "--save", "p.bvw"});
          EXPECT_EQ(outcome.status, 0) << outcome.err;
        }
      });
    }
    for (std::thread& program : programs) program.join();
    const Json saved = JsonOf({"show", "p.bvw", "d"});
    for (const Json& variable : saved["variables"])
      EXPECT_FALSE(variable["properties"].empty()) << source << ": " << variable["name"];
    EXPECT_EQ(JsonOf({"show", "p.bvw", "Correlation matrix"})["variables"].size(), kPrograms * kSaves)
        << source;
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{"d.csv", "p.bvw"}));
  }
}

TEST_F(Command, WaitForAProjectInUseHasALimit) {
  Write("d.csv", "x\n1\n2\n4\n");
  MustRun({"import", "d.csv", "-o", "p.bvw"});
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(File("p.bvw").c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  const std::vector<std::string> fit{"fit", "p.bvw", "--save", "p.bvw", "--wait"};
  const auto waiting = [&](const char* seconds) {
    std::vector<std::string> call = fit;
    call.emplace_back(seconds);
    return Run(call);
  };
  const Outcome brief = waiting("0.05");
  EXPECT_EQ(brief.status, 1);
  EXPECT_EQ(brief.err, "brenvolt: the project cannot be written: it is in use by another program (p.bvw)\n");
  EXPECT_EQ(waiting("1.2").err,
            "brenvolt: waiting for another program that uses the project (p.bvw)\n" + brief.err);
  EXPECT_EQ(waiting("-1").err,
            "brenvolt: expected a number of seconds from 0 to 31622400, got -1 (--wait)\n");
  sqlite3_close(other);
  EXPECT_EQ(waiting("0").status, 0);
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

TEST_F(Command, ImportTakesTheSheetOfAWorkbookThatIsNamed) {
  MustRun({"fit", kExamples + "faithful.csv", "--report", "w.xlsx"});
  MustRun({"import", "w.xlsx", "--sheet", "Summaries", "-o", "p.bvw", "--name", "s"});
  MustRun({"export", "p.bvw:s", "-o", "s.csv"});
  const std::string table = BytesOf(File("s.csv"));
  EXPECT_TRUE(table.starts_with("variable,")) << table;
  EXPECT_NE(table.find("\neruptions,"), std::string::npos) << table;
  const Outcome first = Run({"import", "w.xlsx", "-o", "p.bvw"});
  EXPECT_NE(first.out.find("272 cases of 2 variables imported into p.bvw, sheet faithful"),
            std::string::npos);
  EXPECT_NE(first.err.find("'faithful' is taken, other sheets are left out: Ranked fits, Correlations, "
                           "Summaries, Chart data (--sheet)"),
            std::string::npos)
      << first.err;
  const Outcome misspelt = Run({"import", "w.xlsx", "--sheet", "Sumaries", "-o", "p.bvw"});
  EXPECT_NE(misspelt.err.find("no sheet called Sumaries; did you mean Summaries? Its sheets are faithful, "),
            std::string::npos)
      << misspelt.err;
}

TEST_F(Command, ImportAndExportGiveTheDataBack) {
  const std::string text = "name,value\n\"a, b\",0.1\nc,1e-300\n,\n";
  WriteBytes(File("in.csv"), text);
  MustRun({"import", "in.csv", "-o", "p.bvw", "--name", "first: one"});
  MustRun({"export", "p.bvw:first: one", "-o", "out.csv"});
  EXPECT_EQ(BytesOf(File("out.csv")), text);
  MustRun({"export", "p.bvw", "-o", "comma.csv", "--decimal-comma"});
  EXPECT_EQ(BytesOf(File("comma.csv")), "name;value\na, b;0,1\nc;1e-300\n;\n");
  MustRun({"import", "comma.csv", "-o", "p.bvw", "--decimal-comma"});
  MustRun({"export", "p.bvw:comma", "-o", "again.csv"});
  EXPECT_EQ(BytesOf(File("again.csv")), text);
}

TEST_F(Command, PreviewShowsWhatAFileIsReadAsAndKeepsNothing) {
  WriteBytes(File("t.txt"), "time;lot\ns;-\n0,5;A\n;B\n1,5;A\n");
  const Outcome shown = Run({"import", "t.txt", "--preview", "--units-row"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(shown.err, "brenvolt: t.txt has fields separated by semicolons and decimal commas\n");
  EXPECT_EQ(shown.out,
            "Sheet t: 3 cases of 2 variables\n"
            "  Variable  Type    Unit  Missing  Case 1  Case 2  Case 3\n"
            "  time      number  s           1     0.5       -     1.5\n"
            "  lot       text    -           0       A       B       A\n");
  const Json json = Json::parse(Run({"import", "t.txt", "--preview", "--format", "json"}).out);
  EXPECT_EQ(json["sheets"][0]["variables"][0]["missing"], 1);
  EXPECT_EQ(json["sheets"][0]["variables"][1]["first"], Json({"A", "B", "A"}));
  EXPECT_EQ(Run({"import", "t.txt"}).status, 2) << "only a preview goes without a project";
  EXPECT_EQ(Run({"import", "t.txt", "--preview", "-o", "p.bvw"}).status, 2);
  EXPECT_EQ(Run({"import", "t.txt", "-o", "p.bvw", "--format", "json"}).status, 2);
  EXPECT_FALSE(std::filesystem::exists(File("p.bvw")));
}

TEST_F(Command, MatrixGoesThroughAProjectAndBack) {
  const std::string text =
      ",load,\"width, mm\"\nload,1,-0.1\n\"width, mm\",-0.1,1\nMeans,2.5,20\nStd.Dev.,0.1,0.5\n"
      "No.Cases,254,\nMatrix,1,\n";
  WriteBytes(File("m.csv"), text);
  EXPECT_EQ(MustRun({"import", "m.csv", "-o", "p.bvw", "--name", "Correlation matrix"}).out,
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

}  // namespace
}  // namespace brenvolt::test
