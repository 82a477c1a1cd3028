// The command as a whole: its module, its verbs and their help.
#include <gtest/gtest.h>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

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
    EXPECT_EQ(MustRun({"help", command}).out, help.out);
  }
  EXPECT_EQ(MustRun({"help"}).out, MustRun({"--help"}).out);
  const Outcome distributions = MustRun({"help", "distributions"});
  EXPECT_NE(distributions.out.find("weibull              scale, shape, offset"), std::string::npos)
      << distributions.out;
}

// A report that is longer than the buffer of standard output fails before its end.
TEST_F(Command, ReportsThatCannotBeWrittenAreNoSuccess) {
  const std::string model = kExamples + "ozone_regression.pmml";
  const std::string data = kExamples + "ozone.csv";
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const std::vector<std::string> calls[] = {{"fit", data, "--format", "json"},
                                            {"fit", data},
                                            {"score", model, data},
                                            {"profile", data, "--model", model, "--format", "json"},
                                            {"profile", data, "--model", model},
                                            {"simulate", "p.bvw", "--format", "json"},
                                            {"simulate", "p.bvw"},
                                            {"design", "d.bvw", "--variable", "a ~ normal(0, 1)"},
                                            {"capability", data, "--spec", "O3=0,,30", "--format", "json"},
                                            {"show", "p.bvw", "--format", "json"},
                                            {"typelib", "--format", "json"}};
  for (const std::vector<std::string>& call : calls) {
    std::vector<std::string> arguments{"-c", R"("$0" "$@" > /dev/full)", BRENVOLT_BUILD_DIR "/bin/brenvolt"};
    arguments.insert(arguments.end(), call.begin(), call.end());
    const Outcome outcome = RunProgram("/bin/sh", arguments, folder.Path());
    EXPECT_EQ(outcome.status, 1) << call[0];
    EXPECT_NE(outcome.err.find("the output cannot be written"), std::string::npos) << call[0] << outcome.err;
  }
}

}  // namespace
}  // namespace brenvolt::test
