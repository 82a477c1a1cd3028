// The command as a whole: its module, its verbs and their help.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <sstream>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

std::string Lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

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

TEST_F(Command, VersionNamesEveryLibraryThatTheHostLinks) {
  const Outcome linked =
      RunProgram("/bin/sh",
                 {"-c", R"(readelf -d "$0" | sed -n 's/.*(NEEDED).*\[lib\(.*\)\.so.*/\1/p')",
                  BRENVOLT_BUILD_DIR "/lib/libbrenvolt.so"},
                 folder.Path());
  const std::string version = MustRun({"--version"}).out;
  const std::string libraries = Lower(version.substr(version.find("\nlibraries: ")));
  const std::set<std::string> ofTheLanguage{"stdc++", "m", "gcc_s", "c"};
  std::istringstream lines(linked.out);
  int named = 0;
  for (std::string library; std::getline(lines, library);) {
    if (ofTheLanguage.contains(library)) continue;
    const std::string name = library.starts_with("hwy") ? "highway" : library.substr(0, library.find("3"));
    EXPECT_NE(libraries.find(name), std::string::npos) << library;
    ++named;
  }
  EXPECT_GT(named, 8);
}

TEST_F(Command, TopicsNameOptionsThatThereAre) {
  std::string helps;
  for (const char* command : {"fit", "simulate", "score", "capability", "import"})
    helps += MustRun({command, "--help"}).out;
  const std::regex option("--[a-z-]+[a-z]");
  for (const char* topic : {"files", "missing", "quantiles", "censoring", "methods"}) {
    const std::string page = MustRun({"help", topic}).out;
    std::size_t options = 0;
    for (std::sregex_iterator one(page.begin(), page.end(), option), end; one != end; ++one, ++options)
      EXPECT_TRUE(std::regex_search(helps, std::regex(one->str() + "[^a-z-]")))
          << topic << ": " << one->str();
    EXPECT_GT(options, 0U) << topic;
  }
}

// Signals that systems send to end a program, while it writes a file.
TEST_F(Command, WhatIsEndedBySignalsLeavesNoTemporaryFile) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const std::string script =
      R"sh("$0" "$@" & while [ -z "$(ls -A | grep '\.tmp$')" ]; do sleep 0.01; done; )sh"
      R"sh(kill -$SIGNAL $!; wait $!; echo $?)sh";
  for (const auto& [name, number] : {std::pair("TERM", 15), {"HUP", 1}, {"INT", 2}}) {
    const bool isInterrupt = number == 2;
    // Shells let what is in the background ignore interruptions.
    const Outcome ended = RunProgram(
        isInterrupt ? "/usr/bin/timeout" : "/usr/bin/env",
        isInterrupt
            ? std::vector<std::string>{"-s", "INT", "1.5", BRENVOLT_BUILD_DIR "/bin/brenvolt", "simulate",
                                       "p.bvw", "--samples", "1e9", "--method", "monte-carlo", "-o", "x.csv"}
            : std::vector<std::string>{std::string("SIGNAL=") + name, "sh", "-c", script,
                                       BRENVOLT_BUILD_DIR "/bin/brenvolt", "simulate", "p.bvw", "--samples",
                                       "1e9", "--method", "monte-carlo", "-o", "x.csv"},
        folder.Path());
    EXPECT_EQ(ended.out, isInterrupt ? "" : std::to_string(128 + number) + "\n") << name << ended.err;
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"p.bvw"}) << name;
  }
}

// More than a process may write into one file is an error, as a full disk is.
TEST_F(Command, AFileThatBecomesTooLargeIsAnErrorAndLeavesNothing) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "p.bvw"});
  const std::string former = BytesOf(File("p.bvw"));
  for (const std::vector<std::string>& call :
       {std::vector<std::string>{"simulate", "p.bvw", "--samples", "100000", "--method", "monte-carlo", "-o",
                                 "x.csv"},
        {"simulate", "p.bvw", "--samples", "100000", "--method", "monte-carlo", "-o", "x.npz"},
        {"simulate", "p.bvw", "--samples", "5000", "--method", "monte-carlo", "-o", "x.xlsx"}}) {
    std::vector<std::string> arguments{"-c", R"(ulimit -f 300; exec "$0" "$@")",
                                       BRENVOLT_BUILD_DIR "/bin/brenvolt"};
    arguments.insert(arguments.end(), call.begin(), call.end());
    const Outcome outcome = RunProgram("/bin/sh", arguments, folder.Path());
    EXPECT_EQ(outcome.status, 1) << call.back() << outcome.err;
    EXPECT_EQ(outcome.err.substr(0, 10), "brenvolt: ");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"p.bvw"}) << call.back();
    EXPECT_EQ(BytesOf(File("p.bvw")), former);
  }
}

// Names and texts of files that would clear a screen, colour it or turn text round.
TEST_F(Command, NoVerbPassesOnWhatATerminalObeys) {
  const std::string evil =
      "a\x1b[2Jb\xc2\x9b"
      "31mc\xe2\x80\xae"
      "d\x7f";
  Write("d.csv", "\"" + evil + "\",\"t" + evil + "\"\n1,\"" + evil + "\"\n2,y\n4,y\n3,y\n7,y\n");
  MustRun({"import", "d.csv", "-o", "p.bvw", "--name", "s" + evil});
  Sql("p.bvw",
      "INSERT INTO property SELECT id, 1, 'k' || name, name FROM variable; UPDATE sheet SET title = '" +
          evil + "', selection_enabled = 1, selection_condition = 'v1 > 0 ' || char(27)");
  Write("m.pmml", "<PMML version=\"4.4\" xmlns=\"http://www.dmg.org/PMML-4_4\"><x name=\"" + evil.substr(4) +
                      "\"/></PMML>");
  Write("macro.py", "from brenvolt import *\nraise Exception\n");
  const std::string sheet = "s" + evil;
  const std::vector<std::vector<std::string>> calls{
      {"show", "p.bvw"},
      {"show", "p.bvw", sheet},
      {"show", "p.bvw", sheet, "--format", "json"},
      {"show", "p.bvw", "none" + evil},
      {"fit", "p.bvw"},
      {"fit", "d.csv"},
      {"fit", "d.csv", "--format", "json"},
      {"fit", "d.csv", "--continuous", "none" + evil},
      {"fit", "d.csv", "--select", "v1 > " + evil},
      {"fit", "d.csv", "--save", "q.bvw"},
      {"simulate", "q.bvw", "--samples", "10", "--seed", "1"},
      {"simulate", "q.bvw", "--samples", "10", "--seed", "1", "--format", "json"},
      {"design", "q.bvw"},
      {"profile", "q.bvw", "--formula", "y = v1", "--runs", "10", "--seed", "1"},
      {"profile", "d.csv", "--formula", evil},
      {"score", "m.pmml", "d.csv"},
      {"capability", "d.csv", "--spec", evil + "=0,9"},
      {"capability", "d.csv", "--spec", "none" + evil + "=0,9"},
      {"import", "d.csv", "--preview"},
      {"import", "d.csv", "-o", "r.bvw", "--name", evil},
      {"export", "p.bvw:none" + evil, "-o", "x.csv"},
      {"macro", "none" + evil},
      {"typelib", evil},
      {"help", evil},
      {"fit", "none" + evil},
      {evil}};
  for (const std::vector<std::string>& call : calls) {
    const Outcome outcome = Run(call);
    for (const std::string& printed : {outcome.out, outcome.err}) {
      for (const char* const obeyed : {"\x1b", "\xc2\x9b", "\xe2\x80\xae", "\x7f"})
        EXPECT_EQ(printed.find(obeyed), std::string::npos) << call.front() << ": " << printed;
    }
    EXPECT_LT(outcome.status, 3) << call.front();
  }
  EXPECT_NE(Run({"show", "p.bvw"}).out.find("sa\\u001b[2Jb\\u009b31mc\\u202ed\\u007f"), std::string::npos);
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
                                            {"simulate", "p.bvw", "--format", "csv"},
                                            {"fit", data, "--format", "csv"},
                                            {"score", model, data, "--format", "json"},
                                            {"score", model, data, "--format", "table"},
                                            {"profile", data, "--model", model, "--format", "csv"},
                                            {"design", "d.bvw", "--variable", "a ~ normal(0, 1)"},
                                            {"design", "p.bvw"},
                                            {"design", "p.bvw", "--format", "json"},
                                            {"capability", data, "--spec", "O3=0,,30", "--format", "json"},
                                            {"capability", data, "--spec", "O3=0,,30", "--format", "csv"},
                                            {"capability", data, "--spec", "O3=0,,30"},
                                            {"show", "p.bvw", "--format", "json"},
                                            {"show", "p.bvw"},
                                            {"show", "p.bvw", "faithful"},
                                            {"import", data, "-o", "i.bvw"},
                                            {"import", data, "--preview"},
                                            {"import", data, "--preview", "--format", "json"},
                                            {"import", data, "--preview", "--format", "csv"},
                                            {"export", "p.bvw", "-o", "/dev/stdout"},
                                            {"macro", "small.py"},
                                            {"macro", "large.py"},
                                            {"macro", "--check", "recorded.py"},
                                            {"typelib"},
                                            {"typelib", "--idl"},
                                            {"typelib", "--format", "json"},
                                            {"help", "fit"},
                                            {"fit", "--help"},
                                            {"--help-json"},
                                            {"--version"}};
  Write("small.py", "print('x')\n");
  Write("large.py", "print('x' * 100000)\n");
  MustRun({"fit", kExamples + "faithful.csv", "--record", "recorded.py"});
  for (const std::vector<std::string>& call : calls) {
    SCOPED_TRACE(testing::PrintToString(call));
    std::vector<std::string> arguments{"-c", R"("$0" "$@" > /dev/full)", BRENVOLT_BUILD_DIR "/bin/brenvolt"};
    arguments.insert(arguments.end(), call.begin(), call.end());
    const Outcome outcome = RunProgram("/bin/sh", arguments, folder.Path());
    EXPECT_EQ(outcome.status, 1);
    // Python says it while a macro prints.
    const bool isPythons = outcome.err.find("OSError: [Errno 28]") != std::string::npos;
    EXPECT_TRUE(isPythons || outcome.err.find("cannot be written") != std::string::npos) << outcome.err;
  }
}

}  // namespace
}  // namespace brenvolt::test
