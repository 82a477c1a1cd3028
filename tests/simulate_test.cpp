// brenvolt simulate as a user runs it.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <sstream>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

TEST_F(Command, SavedFitsSimulateReproducibly) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "geyser.bvw"});
  for (const std::string method : {"monte-carlo", "latin-hypercube"}) {
    for (const char* name : {"a.csv", "b.csv"}) {
      MustRun({"simulate", "geyser.bvw", "--method", method, "--samples", "500", "--seed", "7", "-o", name});
    }
    EXPECT_EQ(BytesOf(File("a.csv")), BytesOf(File("b.csv")));
    MustRun({"simulate", "geyser.bvw", "--method", method, "--samples", "500", "--seed", "8", "-o", "b.csv"});
    EXPECT_NE(BytesOf(File("a.csv")), BytesOf(File("b.csv")));
  }
  EXPECT_TRUE(BytesOf(File("a.csv")).starts_with("Sample #,eruptions,waiting\n1,"));
  const auto report = Json::parse(MustRun({"simulate", "geyser.bvw", "--method", "monte-carlo", "--samples",
                                           "20000", "--seed", "1", "--format", "json"})
                                      .out);
  EXPECT_EQ(report["method"], "Monte Carlo method");
  EXPECT_EQ(report["variables"][1]["n"], 20000);
  EXPECT_NEAR(report["variables"][1]["mean"], 70.897, 0.5);
}

// Runs that start within one second of the clock differ, and what is drawn can be drawn again.
TEST_F(Command, ASeedIsDrawnAndReportedWhereNoneIsGiven) {
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "geyser.bvw"});
  const std::vector<std::string> call{"simulate", "geyser.bvw", "--samples", "50", "--format", "json"};
  const auto first = Json::parse(MustRun(call).out);
  const auto second = Json::parse(MustRun(call).out);
  EXPECT_NE(first["seed"], second["seed"]);
  EXPECT_NE(first["variables"], second["variables"]);
  std::vector<std::string> again = call;
  again.insert(again.end(), {"--seed", std::to_string(first["seed"].get<int>())});
  EXPECT_EQ(Json::parse(MustRun(again).out), first);
}

TEST_F(Command, EditedPropertyChangesTheSimulation) {
  MustRun({"fit", kExamples + "faithful.csv", "--continuous", "waiting", "--distributions", "normal",
           "--save", "p.bvw"});
  Sql("p.bvw", "UPDATE variable_property SET value = '(Location=5.0; Scale=0.001)' WHERE key = 'Normal'");
  const auto report = Json::parse(MustRun({"simulate", "p.bvw", "--seed", "1", "--format", "json"}).out);
  EXPECT_NEAR(report["variables"][0]["mean"], 5, 0.001);
}

TEST_F(Command, VariableWithoutFitsIsLeftOutOfTheSimulation) {
  WriteBytes(File("d.csv"), "a,b\n3,1\n3,2\n3,4\n3,7\n");
  MustRun({"fit", "d.csv", "--save", "p.bvw"});
  const auto report = Json::parse(MustRun({"simulate", "p.bvw", "--format", "json"}).out);
  ASSERT_EQ(report["variables"].size(), 1U);
  EXPECT_EQ(report["variables"][0]["name"], "b");
}

TEST_F(Command, SimulatedDataGoIntoAProjectAsAnotherSheet) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  MustRun({"simulate", "p.bvw", "--samples", "10", "-o", "p.bvw"});
  MustRun({"simulate", "p.bvw", "--samples", "10", "-o", "p.bvw"});
  const auto shown = Json::parse(MustRun({"show", "p.bvw", "--format", "json"}).out)["sheets"];
  ASSERT_EQ(shown.size(), 4U);
  EXPECT_EQ(shown[2]["name"], "Iman Conover method");
  EXPECT_EQ(shown[3]["name"], "Iman Conover method (2)");
}

// Old Faithful's waits follow its eruptions. The target is the correlation of normal scores, whose ranks
// correlate by 6/pi asin(r/2) (Pearson 1907).
TEST_F(Command, SimulationReachesTheCorrelationSavedWithTheFits) {
  constexpr double kFitted = 0.9008112;
  constexpr double kSpearman = 0.8923237;
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  for (const std::string method : {"iman-conover", "latin-hypercube-iman-conover"}) {
    const auto simulate = [&](const std::vector<std::string>& more) {
      std::vector<std::string> arguments{"simulate",  "p.bvw", "--method", method,
                                         "--samples", "20000", "--seed",   "3"};
      arguments.insert(arguments.end(), more.begin(), more.end());
      return MustRun(arguments).out;
    };
    const Json report = Json::parse(simulate({"--format", "json", "-o", method + ".csv"}));
    ASSERT_EQ(report["correlations"].size(), 1U);
    const Json& pair = report["correlations"][0];
    EXPECT_EQ(pair["variables"], Json({"eruptions", "waiting"}));
    EXPECT_NEAR(pair["asked"], kFitted, 5e-8);
    EXPECT_EQ(pair["used"], pair["asked"]);
    EXPECT_NEAR(pair["spearman"], kSpearman, 0.005);
    EXPECT_FALSE(report.contains("repairedMatrix"));
    // What the file holds correlates as reported.
    const Json fitted =
        Json::parse(MustRun({"fit", method + ".csv", "--continuous", "eruptions,waiting", "--distributions",
                             "normal", "--save", method + ".bvw", "--format", "json"})
                        .out);
    EXPECT_EQ(fitted["variables"][0]["n"], 20000);
    const Json shown =
        Json::parse(MustRun({"show", method + ".bvw", "Correlation matrix", "--format", "json"}).out);
    EXPECT_NEAR(shown["variables"][0]["correlations"][1], pair["pearson"], 1e-12);
    // The same matrix by other names of it gives the same samples.
    MustRun({"export", "p.bvw:Correlation matrix", "-o", "m.csv"});
    for (const char* matrix : {"Correlation matrix", "m.csv", "p.bvw", "p.bvw:Correlation matrix"}) {
      simulate({"--matrix", matrix, "-o", "again.csv"});
      EXPECT_EQ(BytesOf(File("again.csv")), BytesOf(File(method + ".csv"))) << matrix;
    }
    EXPECT_NE(simulate({}).find("  Correlation of      Asked for  Pearson  Spearman\n"), std::string::npos);
  }
  EXPECT_FALSE(Json::parse(MustRun({"simulate", "p.bvw", "--method", "monte-carlo", "--format", "json"}).out)
                   .contains("correlations"));
}

// Known are correlations that are given, in a text file, saved with a design or with fits, as far as both variables of
// a pair are drawn; a saved matrix that has no number for a pair is not followed.
TEST_F(Command, WithoutAMethodKnownCorrelationsAreFollowed) {
  WriteBytes(File("m.csv"), ",a,b\na,1,0.5\nb,0.5,1\n");
  WriteBytes(File("linked.txt"),
             "a ~ normal(0, 1)\nb ~ normal(0, 1)\nc ~ poisson(3)\ncorrelation a, b = 0.5\n");
  MustRun({"design", "linked.bvw", "--from", "linked.txt"});
  MustRun({"design", "free.bvw", "--variable", "a ~ normal(0, 1)", "--variable", "b ~ normal(0, 1)"});
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "fits.bvw"});
  std::filesystem::copy(File("fits.bvw"), File("holed.bvw"));
  Sql("holed.bvw", "UPDATE variable SET name = 'pause' WHERE name = 'waiting' AND sheet = 1");
  const std::vector<std::string> pair{"--variable", "a ~ normal(0, 1)", "--variable", "b ~ normal(0, 1)"};
  const auto with = [](std::vector<std::string> words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  const std::tuple<std::vector<std::string>, const char*> cases[] = {
      {pair, "monte-carlo"},
      {with(pair, {"--correlation", "a,b=0.5"}), "iman-conover"},
      {with(pair, {"--matrix", "m.csv"}), "iman-conover"},
      {{"--from", "linked.txt"}, "iman-conover"},
      {{"--from", "linked.txt", "--variables", "a,c"}, "monte-carlo"},
      {{"linked.bvw"}, "iman-conover"},
      {{"linked.bvw", "--variables", "b,c"}, "monte-carlo"},
      {{"linked.bvw", "--plot", "s.svg", "--plot-kind", "scatter-matrix"}, "iman-conover"},
      {{"free.bvw"}, "monte-carlo"},
      {{"free.bvw", "--matrix", "m.csv"}, "iman-conover"},
      {{"fits.bvw"}, "iman-conover"},
      {{"fits.bvw", "--variables", "waiting"}, "monte-carlo"},
      {{"holed.bvw"}, "monte-carlo"},
  };
  for (const auto& [words, method] : cases) {
    std::vector<std::string> call =
        with({"simulate", "--samples", "200", "--seed", "1", "-o", "s.csv"}, words);
    EXPECT_EQ(JsonOf(call)["drawn"]["method"], method) << testing::PrintToString(words);
    const std::string bytes = BytesOf(File("s.csv"));
    MustRun(with(call, {"--method", method}));
    EXPECT_EQ(BytesOf(File("s.csv")), bytes) << testing::PrintToString(words);
  }
  const Outcome refused = Run({"simulate", "free.bvw", "--plot", "s.svg", "--plot-kind", "scatter-matrix"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("monte-carlo does not (--plot-kind)"), std::string::npos) << refused.err;
}

TEST_F(Command, LatinHypercubeSaysWhichLowerBoundItLeavesOut) {
  MustRun({"fit", kExamples + "toxocara.csv", "--discrete", "number", "--save", "p.bvw", "--truncate",
           "number=3:"});
  const std::string note =
      "number: Latin hypercube sampling leaves out the lower bound 3 itself; a bound of 2.5 keeps it";
  EXPECT_EQ(JsonOf({"simulate", "p.bvw", "--method", "latin-hypercube", "--seed", "1"})["notes"],
            Json::array({note}));
  EXPECT_EQ(JsonOf({"simulate", "p.bvw", "--method", "monte-carlo", "--seed", "1"})["notes"], Json::array());
  const std::string report = MustRun({"simulate", "p.bvw", "--method", "latin-hypercube", "--seed", "1"}).out;
  EXPECT_NE(report.find("\n  number: Latin hypercube sampling leaves out the lower bound 3"),
            std::string::npos)
      << report;
}

TEST_F(Command, SimulationWithoutMuchToCorrelate) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const auto single = JsonOf({"simulate", "p.bvw", "--samples", "1"})["variables"][0];
  EXPECT_TRUE(single["standardDeviation"].is_null()) << "one value has no deviation";
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const auto one = Json::parse(
      MustRun({"simulate", "p.bvw", "--method", "iman-conover", "--variables", "waiting", "--format", "json"})
          .out);
  EXPECT_EQ(one["variables"].size(), 1U);
  EXPECT_FALSE(one.contains("correlations")) << "one variable has no pair";
  const Outcome few = Run({"simulate", "p.bvw", "--method", "iman-conover", "--samples", "2"});
  EXPECT_EQ(few.status, 0);
  EXPECT_TRUE(few.err.starts_with("brenvolt: There are too few samples to remove chance")) << few.err;
  for (const char* output : {"x.csv", "x.bvw"}) {
    const Outcome nothing = Run({"simulate", "p.bvw", "--method", "norta", "-o", output});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.err, "brenvolt: nothing was produced: this method has no generator (norta)\n");
    EXPECT_FALSE(std::filesystem::exists(File(output)));
  }
}

TEST_F(Command, TableOfCorrelationsStaysShort) {
  std::string data = "v0,v1,v2,v3,v4,v5,v6,v7,v8,v9,v10\n";
  for (int i = 0; i < 40; ++i) {
    for (int v = 0; v < 11; ++v) data += (v == 0 ? "" : ",") + std::to_string((i * (2 * v + 3)) % 41);
    data += "\n";
  }
  WriteBytes(File("d.csv"), data);
  MustRun({"fit", "d.csv", "--distributions", "normal", "--save", "p.bvw"});
  const std::string text = MustRun({"simulate", "p.bvw", "--method", "iman-conover"}).out;
  const std::size_t begin = text.find("Correlation of");
  const std::size_t end = text.find("  Of 55 pairs 10 are not shown, ");
  ASSERT_NE(end, std::string::npos) << text;
  EXPECT_EQ(std::count(text.begin() + static_cast<std::ptrdiff_t>(begin),
                       text.begin() + static_cast<std::ptrdiff_t>(end), '\n'),
            1 + 45);
  const Json report =
      Json::parse(MustRun({"simulate", "p.bvw", "--method", "iman-conover", "--format", "json"}).out);
  EXPECT_EQ(report["correlations"].size(), 55U);
}

TEST_F(Command, CorrelationsAskedForComeFirst) {
  std::vector<std::string> call{"simulate", "--method", "iman-conover", "--seed", "1"};
  for (int v = 0; v < 12; ++v)
    call.insert(call.end(),
                {"--variable", "v" + std::to_string(v) + (v == 0 ? " ~ poisson(0.2)" : " ~ normal(0, 1)")});
  call.insert(call.end(), {"--correlation", "v0,v1=0.3", "--correlation", "v10,v11=-0.5"});
  std::string text = MustRun(call).out;
  text = text.substr(text.find("  Correlation of"));
  std::istringstream lines(text);
  std::vector<std::string> shown;
  for (std::string line; std::getline(lines, line);) shown.push_back(line);
  ASSERT_GT(shown.size(), 3U);
  EXPECT_TRUE(shown[1].starts_with("  v10, v11 ")) << text;
  EXPECT_TRUE(shown[2].starts_with("  v1, v0 ")) << text;
  EXPECT_NE(text.find("  Of 66 pairs 21 are not shown, "), std::string::npos) << text;
  EXPECT_NE(text.find("  Pearson's correlation of 1 pair stays more than 0.05 nearer to 0 than the one used, "
                      "most of all that of v1 and v0: 0."),
            std::string::npos)
      << text;
  call.insert(call.end(), {"--format", "json"});
  EXPECT_EQ(Json::parse(MustRun(call).out)["notes"].size(), 1U);
}

TEST_F(Command, RepairedMatrixIsSaidAndKept) {
  WriteBytes(File("d.csv"), "a,b,c\n1,2,5\n2,4,3\n4,1,9\n3,7,1\n7,5,2\n");
  WriteBytes(File("m.csv"),
             ",c,a,b\nc,1,-0.9,-0.9\na,-0.9,1,-0.9\nb,-0.9,-0.9,1\nMeans,1,2,3\nStd.Dev.,1,1,1\n"
             "No.Cases,9,,\nMatrix,1,,\n");
  MustRun({"fit", "d.csv", "--distributions", "normal", "--save", "p.bvw"});
  const std::vector<std::string> call{"simulate", "p.bvw",  "--method", "iman-conover", "--matrix",
                                      "m.csv",    "--seed", "1",        "--format",     "json"};
  const Outcome told = Run(call);
  EXPECT_EQ(told.status, 0);
  EXPECT_TRUE(
      told.err.starts_with("brenvolt: The correlation matrix is not positive definite and was "
                           "repaired. (smallest eigenvalue -0.8, largest change "))
      << told.err;
  EXPECT_NE(told.err.find("from -0.9 to -0.5)\n"), std::string::npos) << told.err;
  const Json repaired = Json::parse(told.out)["repairedMatrix"];
  EXPECT_EQ(repaired["variables"], Json({"a", "b", "c"}));
  EXPECT_NEAR(repaired["correlations"][2][0], -0.5, 1e-12);
  const Json repair = Json::parse(told.out)["repair"];
  EXPECT_NEAR(repair["smallestEigenvalue"], -0.8, 1e-12);
  EXPECT_EQ(repair["largestChange"]["from"], -0.9);
  EXPECT_NEAR(repair["largestChange"]["to"], -0.5, 1e-12);
  std::vector<std::string> writing = call;
  writing.insert(writing.end(), {"-o", "s.csv"});
  EXPECT_EQ(Json::parse(Run(writing).out)["output"]["matrixFile"], "s-repaired-matrix.csv");
  std::vector<std::string> saving = call;
  saving.insert(saving.end(), {"-o", "p.bvw"});
  EXPECT_EQ(Run(saving).status, 0);
  const Json shown =
      Json::parse(MustRun({"show", "p.bvw", "Repaired correlation matrix", "--format", "json"}).out);
  EXPECT_EQ(shown["variables"][0]["mean"], 2) << "the summaries follow their variables";
  // The repaired matrix needs no second repair.
  for (const char* matrix : {"Repaired correlation matrix", "s-repaired-matrix.csv"})
    MustRun({"simulate", "p.bvw", "--method", "iman-conover", "--matrix", matrix});
}

// By the reader that NumPy itself uses for archives, and its description of arrays.
constexpr const char* kReadArchive = R"(
import ast, struct, sys, zipfile
archive = zipfile.ZipFile(sys.argv[1])
assert archive.testzip() is None
for name in archive.namelist():
    data = archive.read(name)
    assert data[:8] == b'\x93NUMPY\x01\x00'
    length = struct.unpack('<H', data[8:10])[0]
    header = ast.literal_eval(data[10:10 + length].decode('latin1'))
    assert header['descr'] == '<f8' and not header['fortran_order'] and (10 + length) % 64 == 0
    values = struct.unpack('<%dd' % header['shape'][0], data[10 + length:])
    print(name, *map(repr, values))
)";

TEST_F(Command, ArchiveHoldsWhatTheTextFileHolds) {
  WriteBytes(File("d.csv"), "größe,b\n1.5,2\n2,4\n4,1\n3,7\n7,5\n");
  MustRun({"fit", "d.csv", "--distributions", "normal", "--save", "p.bvw"});
  WriteBytes(File("read.py"), kReadArchive);
  for (const std::string method : {"monte-carlo", "latin-hypercube", "iman-conover"}) {
    const std::vector<std::string> call{"simulate", "p.bvw",     "--method", method, "--seed",
                                        "5",        "--samples", "20",       "-o"};
    for (const char* name : {"x.csv", "x.NPZ"}) {
      auto arguments = call;
      arguments.emplace_back(name);
      MustRun(arguments);
    }
    const Outcome read = RunProgram("/usr/bin/python3", {"read.py", "x.NPZ"}, folder.Path());
    ASSERT_EQ(read.status, 0) << read.err;
    std::istringstream lines(read.out);
    std::vector<std::vector<double>> columns;
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string name;
      words >> name;
      EXPECT_EQ(name, columns.empty() ? "größe.npy" : "b.npy");
      columns.emplace_back(std::istream_iterator<double>(words), std::istream_iterator<double>());
    }
    ASSERT_EQ(columns.size(), 2U);
    std::istringstream text(BytesOf(File("x.csv")));
    std::string line;
    std::getline(text, line);
    for (std::size_t i = 0; i < 20; ++i) {
      double sample = 0;
      double first = 0;
      double second = 0;
      char comma = 0;
      text >> sample >> comma >> first >> comma >> second;
      EXPECT_EQ(sample, i + 1);
      EXPECT_EQ(first, columns[0][i]);
      EXPECT_EQ(second, columns[1][i]);
    }
  }
}

TEST_F(Command, JsonOfASimulationSaysWhereTheDataWent) {
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "p.bvw"});
  EXPECT_FALSE(JsonOf({"simulate", "p.bvw"}).contains("output"));
  EXPECT_EQ(JsonOf({"simulate", "p.bvw", "-o", "x.csv"})["output"], Json({{"file", "x.csv"}}));
  for (const char* sheet : {"Iman Conover method", "Iman Conover method (2)"}) {
    EXPECT_EQ(JsonOf({"simulate", "p.bvw", "-o", "p.bvw"})["output"],
              Json({{"file", "p.bvw"}, {"sheet", sheet}}));
  }
}

TEST_F(Command, ProjectIsNotReplacedBySamples) {
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "p.bvw"});
  std::filesystem::copy(File("p.bvw"), File("project.npz"));
  const Outcome refused = Run({"simulate", "p.bvw", "-o", "project.npz"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(BytesOf(File("project.npz")), BytesOf(File("p.bvw")));
}

// Ctrl-C while samples are drawn and written.
TEST_F(Command, InterruptedSimulationLeavesNoFile) {
  MustRun({"fit", kExamples + "faithful.csv", "--distributions", "normal", "--save", "p.bvw"});
  WriteBytes(File("x.csv"), "former\n");
  for (const std::string output : {"x.csv", "y.npz", "p.bvw"}) {
    const auto before = folder.Names();
    const Outcome stopped = RunBrenvolt({"simulate", "p.bvw", "--method", "monte-carlo", "--samples",
                                         output == "p.bvw" ? "60000000" : "1500000000", "-o", output},
                                        folder.Path(), std::chrono::milliseconds(400));
    EXPECT_EQ(stopped.status, 130) << output;
    EXPECT_EQ(stopped.err, "brenvolt: interrupted\n");
    EXPECT_EQ(folder.Names(), before);
  }
  EXPECT_EQ(BytesOf(File("x.csv")), "former\n");
}

}  // namespace
}  // namespace brenvolt::test
