// brenvolt design as a user runs it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

constexpr const char* kPlan =
    "h ~ normal(location=50.2, scale=0.05)\n"
    "cost ~ triangular(min=100, max=180, mode=120) in [100, 170]\n"
    "n ~ poisson(3)\n"
    "correlation h, cost = 0.4\n";

TEST_F(Command, DesignIsPrintedAsItReadsBack) {
  const auto made = MustRun({"design", "plan.bvw", "--variable", "h ~ normal(50.2, 0.05)", "--variable",
                             "cost ~ triangular(100, 180, 120) in [100, 170]", "--variable", "n ~ poisson(3)",
                             "--correlation", "h,cost=0.4"});
  EXPECT_EQ(made.out, kPlan);
  EXPECT_EQ(MustRun({"design", "plan.bvw"}).out, kPlan) << "the project holds it";
  WriteBytes(File("plan.txt"), made.out);
  EXPECT_EQ(MustRun({"design", "again.bvw", "--from", "plan.txt"}).out, kPlan);
  const std::vector<std::string> simulate{"--method", "latin-hypercube-iman-conover", "--seed", "7", "-o"};
  for (const std::string name : {"plan", "again"}) {
    std::vector<std::string> call{"simulate", name + ".bvw"};
    call.insert(call.end(), simulate.begin(), simulate.end());
    call.push_back(name + ".csv");
    MustRun(call);
  }
  EXPECT_EQ(BytesOf(File("plan.csv")), BytesOf(File("again.csv")));
}

TEST_F(Command, DesignChangesWhatIsNamedAndKeepsTheRest) {
  WriteBytes(File("plan.txt"), kPlan);
  MustRun({"design", "plan.bvw", "--from", "plan.txt"});
  const auto changed = MustRun({"design", "plan.bvw", "--variable", "n ~ poisson(4)", "--variable",
                                "k ~ bernoulli(0.1)", "--correlation", "k, h = -0.2"});
  EXPECT_EQ(changed.out,
            "h ~ normal(location=50.2, scale=0.05)\n"
            "cost ~ triangular(min=100, max=180, mode=120) in [100, 170]\n"
            "n ~ poisson(4)\nk ~ bernoulli(0.1)\n"
            "correlation h, cost = 0.4\ncorrelation h, k = -0.2\n");
}

TEST_F(Command, DesignOverDataStandsBesideItsFits) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "geyser.bvw"});
  const auto before = MustRun({"design", "geyser.bvw"}).out;
  EXPECT_NE(before.find("correlation eruptions, waiting = 0.900811168321"), std::string::npos) << before;
  const auto after =
      MustRun({"design", "geyser.bvw", "--variable", "waiting ~ normal(70, 10) in [40, ]"}).out;
  EXPECT_NE(after.find("waiting ~ normal(location=70, scale=10) in [40, ]\n"), std::string::npos) << after;
  EXPECT_EQ(after.substr(0, after.find('\n')), before.substr(0, before.find('\n'))) << "the other variable";
  const auto wrong = Run({"design", "geyser.bvw", "--variable", "height ~ normal(70, 10)"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_NE(wrong.err.find("no numeric variable called height"), std::string::npos) << wrong.err;
}

// The gap of a stack is a sum, so its mean is the sum of the means and its variance the sum of the variances and of twice
// the covariance of a and b. A triangular distribution has the variance (range / 2)^2 / 6 if it is symmetric; a
// log-normal one has the mean exp(m + s^2 / 2).
TEST_F(Command, ToleranceStackHasItsExactMeanAndDeviation) {
  MustRun({"design", "stack.bvw", "--from", kExamples + "tolerance_stack.txt"});
  MustRun({"simulate", "stack.bvw", "--method", "latin-hypercube-iman-conover", "--samples", "20000",
           "--seed", "7", "-o", "stack.csv"});
  std::istringstream lines(BytesOf(File("stack.csv")));
  std::string line;
  std::getline(lines, line);
  ASSERT_EQ(line, "Sample #,housing,a,b,c,d");
  double sum = 0;
  double squares = 0;
  int count = 0;
  while (std::getline(lines, line)) {
    double sample = 0, housing = 0, a = 0, b = 0, c = 0, d = 0;
    ASSERT_EQ(std::sscanf(line.c_str(), "%lf,%lf,%lf,%lf,%lf,%lf", &sample, &housing, &a, &b, &c, &d), 6)
        << line;
    const double gap = housing - a - b - c - d;
    sum += gap;
    squares += gap * gap;
    ++count;
  }
  const double mean = 120 - 30 - 25.5 - 40 - std::exp(3.178 + 0.001 * 0.001 / 2);
  const double logNormal = 0.001 * 24.0;
  const double variance = 0.04 * 0.04 + 2 * 0.02 * 0.02 * (1 + 0.6) + 0.1 * 0.1 / 6 + logNormal * logNormal;
  EXPECT_NEAR(sum / count, mean, 1e-4);
  EXPECT_NEAR(std::sqrt(squares / count - sum / count * (sum / count)), std::sqrt(variance),
              0.02 * std::sqrt(variance));
}

TEST_F(Command, ProjectOfADesignIsAlsoAnOutput) {
  const auto made = MustRun({"design", "-o", "p.bvw", "--variable", "a ~ normal(0, 1)"});
  EXPECT_EQ(MustRun({"design", "p.bvw"}).out, made.out);
}

TEST_F(Command, ContradictingCorrelationsAreSaidAndTaken) {
  const auto made = MustRun({"design", "p.bvw", "--variable", "a ~ normal(0, 1)", "--variable",
                             "b ~ normal(0, 1)", "--variable", "c ~ normal(0, 1)", "--correlation", "a,b=0.9",
                             "--correlation", "a,c=0.9", "--correlation", "b,c=-0.9"});
  EXPECT_NE(made.out.find("# These correlations contradict each other"), std::string::npos);
  EXPECT_LT(Json::parse(MustRun({"design", "p.bvw", "--format", "json"}).out)["smallestEigenvalue"], 0);
}

TEST_F(Command, WrongDesignsAreRefusedBeforeAnythingIsWritten) {
  const struct {
    std::vector<std::string> options;
    std::string message;
  } rows[] = {
      {{}, "there is no file plan.bvw (PROJECT.bvw)"},
      {{"--variable", "h ~ nomral(1, 2)"}, "no distribution is called 'nomral'; did you mean normal?"},
      {{"--variable", "h ~ nomral(1, 2)"}, "(character 5 of 'h ~ nomral(1, 2)')"},
      {{"--variable", "h ~ normal(1, 0)"},
       "expected a number above 0 for scale, got '0'; normal takes location, scale"},
      {{"--variable", "h ~ normal(1, 1)", "--variable", "h ~ poisson(1)"}, "the variable h is given twice"},
      {{"--variable", "h ~ normal(1, 1)", "--correlation", "h,x=0.5"}, "no variable is called 'x'"},
      {{"--variable", "h ~ normal(1, 1)", "--correlation", "h,h=0.5"}, "correlated with itself"},
      {{"--variable", "h ~ histogram(0:0.5, 1:0.4)"}, "the proportions must add up to 1; they add up to 0.9"},
      {{"--correlation", "a,b=0.5"}, "no variable is called 'a'"},
      {{"--from", "none.txt"}, "none.txt cannot be read"},
      {{"--from", "."}, ". is not a regular file; it is read more than once"},
      {{"--variable", "h ~ normal(1, 1)", "--sheet", "x"},
       "a sheet can be chosen only in a project that exists"},
  };
  for (const auto& row : rows) {
    std::vector<std::string> call{"design", "plan.bvw"};
    call.insert(call.end(), row.options.begin(), row.options.end());
    const auto run = Run(call);
    EXPECT_EQ(run.status, 2) << row.message;
    EXPECT_NE(run.err.find(row.message), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(File("plan.bvw"))) << row.message;
  }
}

// The stack and the register by the members of the dialogs.
constexpr const char* kMacroStart =
    "from brenvolt import *\n"
    "analysis = Analysis(Application().NewSheet('Design'))\n"
    "dialog = analysis.Dialog\n"
    "dialog.TypeOfAnalysis = scSRADesignSimulation\n"
    "dialog.OK()\n"
    "dialog = analysis.Dialog\n"
    "def design(variables, correlations):\n"
    "    names = [name for name, *_ in variables]\n"
    "    dialog.UserDefinedDesignMatrixVariableNames = names\n"
    "    for i, (_, *distribution) in enumerate(variables):\n"
    "        dialog.SimulationSpecificationOfVariable[i + 1] = Array(*distribution)\n"
    "    rows = [[float(a == b) for b in names] for a in names]\n"
    "    for (a, b), r in correlations.items():\n"
    "        rows[names.index(a)][names.index(b)] = rows[names.index(b)][names.index(a)] = r\n"
    "    dialog.UserDefinedDesignMatrixValues = rows\n"
    "    dialog.OK()\n";
constexpr const char* kMacroEnd =
    "dialog = analysis.Dialog\n"
    "dialog.LHSwithImanMethod = 1\n"
    "dialog.NumberOfSamples = 500\n"
    "dialog.IsSeedRandomNumber = 1\n"
    "dialog.RandomSeedNumber = 7\n"
    "dialog.ResultsSaveFileName = 'dialog.csv'\n"
    "dialog.OK()\n";
constexpr const char* kStack =
    "design([('housing', 'Normal', 120.0, 0.04), ('a', 'Normal', 30.0, 0.02), ('b', 'Normal', 25.5, 0.02),\n"
    "        ('c', 'Triangular', 39.9, 40.1, 40.0),\n"
    "        ('d', 'LogNormal', 3.178, 0.001, 0, 1, 23.9, 1, 24.1)], {('a', 'b'): 0.6})\n";
constexpr const char* kRegister =
    "design([('foundations', 'Triangular', 180, 320, 220), ('structure', 'Triangular', 900, 1400, 1050),\n"
    "        ('services', 'Triangular', 600, 1100, 750), ('fitting', 'Normal', 420, 35, 1, 300, 0, 0),\n"
    "        ('planning', 'Normal', 160, 12), ('fees', 'LogNormal', 4.6, 0.25),\n"
    "        ('contaminated_soil', 'Histogram', 0, 0.85, 240, 0.15, 0, 0, 0, 0),\n"
    "        ('permit_delay', 'Histogram', 0, 0.7, 45, 0.2, 110, 0.1, 0, 0, 0, 0),\n"
    "        ('steel_price', 'Histogram', 0, 0.6, 80, 0.3, 190, 0.1, 0, 0, 0, 0),\n"
    "        ('contractor_fails', 'Histogram', 0, 0.96, 500, 0.04, 0, 0, 0, 0),\n"
    "        ('frost_days', 'Poisson', 6), ('rework', 'Weibull', 30, 1.4)],\n"
    "       {('structure', 'services'): 0.5, ('structure', 'steel_price'): 0.4})\n";

TEST_F(Command, MembersOfTheDialogGiveTheNumbersOfTheCommand) {
  if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
    GTEST_SKIP() << "the Python package is not built";
  for (const auto& [name, lines] :
       {std::pair("tolerance_stack", kStack), std::pair("risk_register", kRegister)}) {
    MustRun({"design", "plan.bvw", "--from", kExamples + name + ".txt"});
    MustRun({"simulate", "plan.bvw", "--method", "latin-hypercube-iman-conover", "--samples", "500", "--seed",
             "7", "-o", "command.csv"});
    WriteBytes(File("macro.py"), std::string(kMacroStart) + lines + kMacroEnd);
    MustRun({"macro", "macro.py"});
    EXPECT_EQ(BytesOf(File("dialog.csv")), BytesOf(File("command.csv"))) << name;
    std::filesystem::remove(File("plan.bvw"));
  }
}

// The dialog finds the matrix that the project keeps with its fits; another one is chosen by its name.
TEST_F(Command, DialogFindsTheMatrixOfTheProject) {
  if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
    GTEST_SKIP() << "the Python package is not built";
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  WriteBytes(File("half.csv"),
             ",eruptions,waiting\neruptions,1,0.5\nwaiting,0.5,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\n"
             "Matrix,1,\n");
  for (const std::string matrix : {"", "half.csv"}) {
    std::vector<std::string> call{"simulate", "p.bvw",  "--method", "iman-conover", "--samples",
                                  "300",      "--seed", "7",        "-o",           "command.csv"};
    if (!matrix.empty()) call.insert(call.end(), {"--matrix", matrix});
    MustRun(call);
    WriteBytes(File("macro.py"),
               "from brenvolt import *\nanalysis = Analysis(open_workbook('p.bvw').sheet('faithful'))\n"
               "dialog = analysis.Dialog\ndialog.TypeOfAnalysis = scSRARunSimulation\ndialog.OK()\n"
               "dialog = analysis.Dialog\ndialog.ImanConoverMethod = 1\ndialog.NumberOfSamples = 300\n"
               "dialog.IsSeedRandomNumber = 1\ndialog.RandomSeedNumber = 7\n"
               "dialog.CorrelationMatrixName = '" +
                   matrix +
                   "'\n"
                   "dialog.ResultsSaveFileName = 'dialog.csv'\ndialog.OK()\n");
    MustRun({"macro", "macro.py"});
    EXPECT_EQ(BytesOf(File("dialog.csv")), BytesOf(File("command.csv"))) << matrix;
  }
}

TEST_F(Command, MatrixOfAProjectWithoutDataIsTaken) {
  const std::string rows = ",a,b\na,1,0.8\nb,0.8,1\n";
  WriteBytes(File("m.csv"), rows);
  MustRun({"import", "m.csv", "--kind", "matrix", "-o", "m.bvw"});
  const std::vector<std::string> call{
      "simulate", "--variable",   "a ~ normal(0, 1)", "--variable", "b ~ normal(0, 1)",
      "--method", "iman-conover", "--seed",           "3",          "--matrix"};
  const auto with = [&call](const std::string& matrix) {
    std::vector<std::string> whole = call;
    whole.push_back(matrix);
    return whole;
  };
  const std::string expected = MustRun(with("m.csv")).out;
  EXPECT_EQ(MustRun(with("m.bvw")).out, expected);
  EXPECT_EQ(MustRun(with("m.bvw:m")).out, expected);
  MustRun({"import", "m.csv", "--kind", "matrix", "--name", "second", "-o", "m.bvw"});
  const auto several = Run(with("m.bvw"));
  EXPECT_NE(several.err.find("the project has several matrices; name one after a colon: m, second (m.bvw)"),
            std::string::npos)
      << several.err;
  EXPECT_EQ(MustRun(with("m.bvw:second")).out, expected);
}

// A design that changes one distribution goes on with the correlations that the project keeps.
TEST_F(Command, DesignOverAProjectKeepsItsCorrelations) {
  if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/python/brenvolt/__init__.py"))
    GTEST_SKIP() << "the Python package is not built";
  MustRun({"design", "designed.bvw", "--from", kExamples + "tolerance_stack.txt"});
  MustRun({"fit", kExamples + "faithful.csv", "--save", "fitted.bvw"});
  const struct {
    std::string project;
    std::string sheet;
    std::string variable;
  } rows[] = {{"designed.bvw", "Design", "a"}, {"fitted.bvw", "faithful", "waiting"}};
  for (const auto& [project, sheet, variable] : rows) {
    WriteBytes(
        File("macro.py"),
        "from brenvolt import *\nbook = open_workbook('" + project + "')\nanalysis = Analysis(book.sheet('" +
            sheet +
            "'))\ndialog = analysis.Dialog\ndialog.TypeOfAnalysis = scSRADesignSimulation\ndialog.OK()\n"
            "dialog = analysis.Dialog\nnames = list(dialog.UserDefinedDesignMatrixVariableNames)\n"
            "dialog.SimulationSpecificationOfVariable[names.index('" +
            variable +
            "') + 1] = Array('Normal', 71.0, 13.0)\ndialog.OK()\n"
            "dialog = analysis.Dialog\ndialog.LHSwithImanMethod = 1\ndialog.NumberOfSamples = 500\n"
            "dialog.IsSeedRandomNumber = 1\ndialog.RandomSeedNumber = 7\n"
            "dialog.ResultsSaveFileName = 'dialog.csv'\ndialog.OK()\n");
    MustRun({"macro", "macro.py"});
    MustRun({"design", project, "--variable", variable + " ~ normal(71, 13)"});
    MustRun({"simulate", project, "--method", "latin-hypercube-iman-conover", "--samples", "500", "--seed",
             "7", "-o", "command.csv"});
    EXPECT_EQ(BytesOf(File("dialog.csv")), BytesOf(File("command.csv"))) << project;
  }
}

}  // namespace
}  // namespace brenvolt::test
