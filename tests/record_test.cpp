// Recordings as a user makes and runs them: what a replay leaves is what the recorded job left, byte for
// byte.
#include <gtest/gtest.h>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

namespace fs = std::filesystem;

struct Recordings : Command {
  TemporaryFolder other;

  void SetUp() override {
    if (!HasPackage()) GTEST_SKIP() << "the Python package is not built";
  }
  static bool HasPackage() { return fs::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"); }

  // Runs the recorded call, with --record, then the macro in the other folder, and compares what both left.
  // The macro is copied there; both folders had the same content before.
  void ExpectSameFiles(std::vector<std::string> call, const std::vector<std::string>& files) {
    fs::copy(folder.Path(), other.Path(), fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    call.insert(call.begin() + 1, {"--record", "job.py"});
    MustRun(call);
    const std::string macro = BytesOf(File("job.py"));
    WriteBytes(other.Path() / "replay.py", macro);
    const Outcome replay = RunBrenvolt({"macro", "replay.py"}, other.Path());
    EXPECT_EQ(replay.status, 0) << replay.err << macro;
    for (const std::string& file : files) {
      ASSERT_TRUE(fs::exists(other.Path() / file)) << macro;
      EXPECT_TRUE(BytesOf(File(file)) == BytesOf(other.Path() / file)) << file << "\n" << macro;
    }
  }
};

TEST_F(Recordings, ReplayedFitLeavesTheSameProject) {
  const std::vector<std::vector<std::string>> calls{
      {"fit", kExamples + "portpirie_sea_level.csv", "--distributions", "gev,weibull,normal", "--rank-by",
       "anderson-darling", "--save", "p.bvw"},
      {"fit", kExamples + "faithful.csv", "--offset", "eruptions:weibull=1.1", "--mixtures", "waiting=3",
       "--truncate", "eruptions=1.5:", "--order", "waiting=normal,weibull", "--select", "waiting > 50",
       "--missing", "casewise", "--save", "p.bvw"},
      // A project that has the data already, and one that is the input itself.
      {"fit", kExamples + "faithful.csv", "--continuous", "waiting", "--save", "p.bvw"},
      {"fit", "p.bvw", "--sheet", "faithful", "--distributions", "normal,lognormal", "--select", "", "--save",
       "p.bvw"},
      {"fit", kExamples + "toxocara.csv", "--discrete", "number", "--discrete-rank-by", "chi-square",
       "--save", "p.bvw"},
  };
  for (const auto& call : calls) ExpectSameFiles(call, {"p.bvw"});
  ExpectSameFiles({"fit", kExamples + "groundbeef.csv", "--distributions", "normal", "--graphs", "g.json"},
                  {"g.json"});
}

TEST_F(Recordings, ReplayedSimulationLeavesTheSameFiles) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  ExpectSameFiles({"simulate", "p.bvw", "--method", "latin-hypercube", "--samples", "500", "--seed", "7",
                   "--truncate", "-o", "s.csv"},
                  {"s.csv", "p.bvw"});
  ExpectSameFiles({"simulate", "p.bvw", "--variables", "waiting", "--seed", "7", "-o", "s.npz"}, {"s.npz"});
  ExpectSameFiles({"simulate", "p.bvw", "--method", "iman-conover", "--seed", "7", "-o", "c.csv"}, {"c.csv"});
  ExpectSameFiles({"simulate", "p.bvw", "--method", "iman-conover", "--seed", "7", "-o", "c.npz"}, {"c.npz"});
  ExpectSameFiles({"simulate", "p.bvw", "--method", "latin-hypercube-iman-conover", "--seed", "1", "--matrix",
                   "Correlation matrix", "-o", "p.bvw"},
                  {"p.bvw"});
  ExpectSameFiles({"simulate", "--from", kExamples + "tolerance_stack.txt", "--variable", "n ~ poisson(3)",
                   "--correlation", "n,a=0.2", "--method", "iman-conover", "--seed", "7", "-o", "h.csv"},
                  {"h.csv"});
  WriteBytes(File("m.csv"), ",x,y\nx,1,0.5\ny,0.5,1\n");
  ExpectSameFiles(
      {"simulate", "--variable", "x ~ normal(0, 1)", "--variable", "y ~ bernoulli(0.5)", "--matrix", "m.csv",
       "--method", "latin-hypercube-iman-conover", "--seed", "7", "-o", "h.csv"},
      {"h.csv"});
}

TEST_F(Recordings, ReplayedDesignLeavesTheSameProject) {
  ExpectSameFiles({"design", "d.bvw", "--from", kExamples + "tolerance_stack.txt"}, {"d.bvw"});
  ExpectSameFiles(
      {"design", "d.bvw", "--variable", "a ~ histogram(1:0.25, 2:0.75)", "--correlation", "a,c=-0.1"},
      {"d.bvw"});
}

TEST_F(Recordings, ReplayedProfileLeavesTheSameFiles) {
  ExpectSameFiles({"profile", kExamples + "ozone.csv", "--model", kExamples + "ozone_regression.pmml",
                   "--fit-best", "--correlated", "--truncate", "ibh=111,5000", "--noise", "O3=4.75", "--spec",
                   "O3=,,25", "--seed", "7", "-o", "s.csv"},
                  {"s.csv"});
  ExpectSameFiles({"profile",
                   kExamples + "ozone.csv",
                   "--formula",
                   "cost = 2 * temp + ibh / 100",
                   "--formula",
                   "'twice ibt' = 2 * ibt",
                   "--fix",
                   "ibt=120",
                   "--noise",
                   "cost=3",
                   "--noise",
                   "twice ibt=1",
                   "--noise-correlation",
                   "cost,twice ibt=0.5",
                   "--seed",
                   "3",
                   "--samples",
                   "500",
                   "-o",
                   "p.bvw"},
                  {"p.bvw"});
  ExpectSameFiles({"profile", "--from", kExamples + "tolerance_stack.txt", "--formula",
                   "gap = housing - a - b - c - d", "--seed", "3", "-o", "g.csv"},
                  {"g.csv"});
  MustRun({"fit", kExamples + "faithful.csv", "--save", "f.bvw"});
  ExpectSameFiles({"profile", "f.bvw", "--correlated", "--formula", "y = waiting / eruptions", "--seed", "3",
                   "--truncate", "eruptions=1:", "-o", "y.csv"},
                  {"y.csv"});
}

TEST_F(Recordings, ReplayedExchangeLeavesTheSameFiles) {
  WriteBytes(File("comma.csv"), "a;b\n1,5;2\n3;4,25\n");
  ExpectSameFiles({"import", "comma.csv", "-o", "p.bvw", "--name", "a \"b\"", "--decimal-comma"}, {"p.bvw"});
  ExpectSameFiles({"export", "p.bvw:a \"b\"", "-o", "e.csv"}, {"e.csv"});
  const std::string models = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/";
  ExpectSameFiles({"score", models + "RegressionOzone.pmml", models + "Ozone.csv", "-o", "o.csv"}, {"o.csv"});
}

// The file has the call and every action; a relative path stays relative.
TEST_F(Recordings, FitIsRecordedAsOnePersonWouldWriteIt) {
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n7\n9.5\n");
  MustRun({"fit", "d.csv", "--distributions", "normal", "--save", "my p.bvw", "--record", "m.py"});
  const std::string macro = BytesOf(File("m.py"));
  for (const char* part :
       {"\n# brenvolt fit d.csv --distributions normal --save 'my p.bvw' --record m.py\nfrom brenvolt import "
        "*\n",
        "\napplication = Application()\nworkbook = application.Open(\"d.csv\")\nsheet = workbook.Sheet()\n",
        "\nanalysis = application.Analysis(sheet)\n\ndialog = analysis.Dialog\n"
        "dialog.TypeOfAnalysis = scSRAFitDistribution\ndialog.OK()\n\ndialog = analysis.Dialog\n"
        "dialog.ContinuousVariable = Array(1)\n",
        "\ndialog.IsWeibullDistribution[1] = False\n", "\ndocument = dialog.SaveDistributionFit\n",
        "\napplication.SaveFits(sheet, document, \"my p.bvw\")\n"}) {
    EXPECT_NE(macro.find(part), std::string::npos) << part << "\nin\n" << macro;
  }
}

// The recording of the example macro, run again; and of the recording, recorded itself.
TEST_F(Recordings, RecordedMacroReplaysToTheSameFilesAndTheSameRecording) {
  const std::string example = kExamples + "sea_level_macro.py";
  MustRun({"macro", "--record", "first.py", example, "sea.bvw"});
  WriteBytes(other.Path() / "replay.py", BytesOf(File("first.py")));
  const Outcome replay = RunBrenvolt({"macro", "--record", "second.py", "replay.py"}, other.Path());
  ASSERT_EQ(replay.status, 0) << replay.err << BytesOf(File("first.py"));
  EXPECT_TRUE(BytesOf(File("sea.bvw")) == BytesOf(other.Path() / "sea.bvw"));
  const auto body = [](const std::string& macro) { return macro.substr(macro.find("\nfrom ")); };
  const std::string first = body(BytesOf(File("first.py")));
  EXPECT_EQ(body(BytesOf(other.Path() / "second.py")), first);
  EXPECT_NE(first.find("dialog.UserDefinedDistributions[1, \"Normal\"] = "
                       "Array(scNormalDistr, 4.000000e+00, 2.500000e-01, 0, 0, 0, 0)\n"),
            std::string::npos)
      << first;
  EXPECT_NE(first.find("document.sheet.name = \"Correlation matrix\"\n"), std::string::npos) << first;
}

// Own values of 17 digits, a macro's arguments, and outputs that are written from the documents shown.
TEST_F(Recordings, MacroOfAllDialogsReplaysToTheSameFiles) {
  WriteBytes(File("m.py"),
             "import sys\nfrom brenvolt import *\n"
             "application = Application()\nbook = application.Open(sys.argv[1])\n"
             "sheet = book.Sheet()\nsheet.selection = 'waiting > 50'\n"
             "analysis = application.Analysis(sheet)\n"
             "analysis.Dialog.TypeOfAnalysis = scSRAFitDistribution\nanalysis.Dialog.OK()\n"
             "analysis.Dialog.Variables = '1-2 | '\nanalysis.Dialog.OK()\n"
             "results = analysis.Dialog\n"
             "results.IsUserDefinedDistributions = True\n"
             "results.UserDefinedDistributions[2, 'Weibull'] = Array(80 / 3, 1 / 7, -0.1)\n"
             "results.QuickTabVariable = 2\nresults.SummaryStats.sheet.to_csv('summary.csv')\n"
             "matrix = results.SaveDistributionFit\n"
             "application.SaveFits(sheet, matrix, 'p.bvw')\n"
             "results.Cancel()\nanalysis.Dialog.Cancel()\n"
             "analysis.Dialog.TypeOfAnalysis = scSRARunSimulation\nanalysis.Dialog.OK()\n"
             "simulation = analysis.Dialog\nsimulation.ImanConoverMethod = True\n"
             "simulation.CorrelationMatrix = matrix\n"
             "simulation.IsSeedRandomNumber = 1\nsimulation.RandomSeedNumber = 7\nsimulation.OK()\n"
             "application.Append('p.bvw', analysis.Documents[-1])\n"
             "analysis.Documents[-1].sheet.to_csv('s.csv')\n");
  MustRun({"macro", "--record", "recorded.py", "m.py", kExamples + "faithful.csv"});
  const std::string macro = BytesOf(File("recorded.py"));
  WriteBytes(other.Path() / "replay.py", macro);
  const Outcome replay = RunBrenvolt({"macro", "replay.py"}, other.Path());
  ASSERT_EQ(replay.status, 0) << replay.err << macro;
  for (const char* file : {"p.bvw", "s.csv", "summary.csv"})
    EXPECT_TRUE(BytesOf(File(file)) == BytesOf(other.Path() / file)) << file << "\n" << macro;
}

TEST_F(Recordings, JobThatFailsLeavesNoRecording) {
  WriteBytes(File("d.csv"), "x\n1\n1\n1\n");
  EXPECT_EQ(Run({"fit", "d.csv", "--distributions", "normal", "--record", "m.py"}).status, 1);
  EXPECT_EQ(Run({"fit", "d.csv", "--record", "m.csv"}).status, 2);
  WriteBytes(File("own.py"), "print(1)\n");
  EXPECT_EQ(Run({"macro", "--record", "own.py", "own.py"}).status, 2);
  WriteBytes(File("bad.py"), "import sys\nsys.exit(3)\n");
  EXPECT_EQ(Run({"macro", "--record", "m.py", "bad.py"}).status, 3);
  EXPECT_FALSE(fs::exists(File("m.py")));
  EXPECT_FALSE(fs::exists(File("m.csv")));
  EXPECT_EQ(BytesOf(File("own.py")), "print(1)\n");
}

}  // namespace
}  // namespace brenvolt::test
