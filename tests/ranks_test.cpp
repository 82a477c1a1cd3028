// One job in several processes, as a user starts them with mpirun.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

const std::string kProgram = BRENVOLT_BUILD_DIR "/bin/brenvolt";
using Arguments = std::vector<std::string>;

struct RanksOf : Command {
  void SetUp() override {
    if (!std::filesystem::exists(BRENVOLT_BUILD_DIR "/lib/libbrenvolt_ranks.so") ||
        std::system("command -v mpirun > /dev/null") != 0)
      GTEST_SKIP() << "needs Debian's libopenmpi-dev and openmpi-bin";
    setenv("OMPI_ALLOW_RUN_AS_ROOT", "1", 1);
    setenv("OMPI_ALLOW_RUN_AS_ROOT_CONFIRM", "1", 1);
    // Processes of one machine find each other without a network.
    setenv("OMPI_MCA_btl", "self,vader", 1);
    setenv("OMPI_MCA_btl_vader_single_copy_mechanism", "none", 1);
  }

  Outcome Mpirun(Arguments arguments) const {
    arguments.insert(arguments.begin(), "--oversubscribe");
    return RunProgram("/usr/bin/env", With({"mpirun"}, arguments), folder.Path());
  }
  Outcome OnRanks(int count, const Arguments& call) const {
    return Mpirun(With({"-n", std::to_string(count), kProgram}, call));
  }
  static Arguments With(Arguments first, const Arguments& more) {
    first.insert(first.end(), more.begin(), more.end());
    return first;
  }
};

TEST_F(RanksOf, AnyNumberPrintsTheBytesOfOneProcess) {
  const Arguments call{"simulate",
                       "--variable",
                       "h ~ normal(50.2, 0.05)",
                       "--variable",
                       "w ~ weibull(2, 3)",
                       "--variable",
                       "t ~ normal(0, 1) in [-1, 2.5]",
                       "--samples",
                       "2500001",
                       "--seed",
                       "7",
                       "--method",
                       "monte-carlo"};
  const Outcome alone = MustRun(call);
  for (const int count : {1, 2, 3, 7}) {
    const Outcome shared = OnRanks(count, call);
    EXPECT_EQ(shared.status, 0) << shared.err;
    EXPECT_EQ(shared.out, alone.out) << count;
    EXPECT_EQ(shared.err.find("done by " + std::to_string(count) + " ranks") != std::string::npos, count > 1)
        << shared.err;
  }
}

TEST_F(RanksOf, ALongProfileCountsTheDefectsOfOneProcess) {
  const Arguments call{"profile",
                       "--variable",
                       "a ~ normal(0, 1)",
                       "--variable",
                       "b ~ weibull(2, 1)",
                       "--formula",
                       "Y = a + ln(b - 0.02)",
                       "--spec",
                       "Y=-4,,3",
                       "--samples",
                       "350000",
                       "--seed",
                       "5"};
  const Outcome alone = MustRun(call);
  EXPECT_EQ(OnRanks(3, call).out, alone.out);
  EXPECT_EQ(MustRun(With(call, {"--checkpoint", "c", "--every", "0s"})).out, alone.out);
  EXPECT_TRUE(folder.Names().empty());
}

// Each call is killed after a second of work, until one ends.
TEST_F(RanksOf, AJobThatIsKilledGoesOnFromItsCheckpoint) {
  const Arguments call{"simulate",    "--variable", "w ~ weibull(2, 3)",
                       "--samples",   "8e7",        "--method",
                       "monte-carlo", "--seed",     "3"};
  const Outcome alone = MustRun(call);
  Outcome killed{1, {}, {}};
  int calls = 0;
  for (; killed.status != 0 && calls < 60; ++calls) {
    const std::string start = calls % 2 == 0 ? "exec " : "exec mpirun --oversubscribe -n 2 ";
    const std::string limit = "ulimit -t 1; ";
    killed = RunProgram(
        "/bin/sh", With({"-c", limit + start + "\"$0\" \"$@\" --checkpoint c --every 0.1s", kProgram}, call),
        folder.Path());
    EXPECT_EQ(std::filesystem::exists(File("c")), killed.status != 0);
  }
  EXPECT_GT(calls, 1);
  EXPECT_EQ(killed.out, alone.out);
  EXPECT_TRUE(folder.Names().empty());
}

TEST_F(RanksOf, MoreRanksThanPartsWriteTheSameFiles) {
  for (const std::string method : {"monte-carlo", "latin-hypercube"}) {
    for (const std::string ending : {".csv", ".npz"}) {
      Arguments call{
          "simulate",  "--variable", "a ~ normal(0, 1)", "--variable", "t ~ normal(0, 1) in [-1, 2]",
          "--samples", "3000",       "--seed",           "3",          "--method",
          method,      "-o",         "one" + ending};
      const Outcome alone = MustRun(call);
      const std::string bytes = BytesOf(File("one" + ending));
      std::filesystem::remove(File("one" + ending));
      EXPECT_EQ(OnRanks(3, call).out, alone.out);
      EXPECT_EQ(BytesOf(File("one" + ending)), bytes) << method << ending;
    }
  }
  EXPECT_EQ(folder.Names(), (Arguments{"one.csv", "one.npz"}));
}

TEST_F(RanksOf, WhatIsWrongIsSaidOnceAndNothingIsWritten) {
  const std::string one = "--variable";
  const Arguments simulate{kProgram, "simulate", one,        "a ~ normal(0, 1)",
                           "-o",     "out.csv",  "--method", "monte-carlo"};
  std::filesystem::create_directory(File("0"));
  std::filesystem::create_directory(File("1"));
  MustRun({"design", "0/only.bvw", "--variable", "a ~ normal(0, 1)"});
  struct Case {
    Arguments call;
    std::string said;
  };
  const auto mixed = With(With(With({"-n", "1"}, simulate), {"--seed", "1", ":", "-n", "1"}), simulate);
  const Case cases[] = {
      {mixed, "was given other arguments than rank 0, and all need the same (rank 1 of 2)"},
      {{"-n", "2", "sh", "-c", "cd $OMPI_COMM_WORLD_RANK; exec \"$0\" simulate only.bvw -o out.csv",
        kProgram},
       "(rank 1 of 2)"},
      {With(With({"-n", "2"}, simulate), {"--samples", "0"}), "expected a whole number from 1"},
      {With(With({"-n", "2"}, simulate), {"--plot", "p.png"}), "do not keep the samples"},
      {{"-n", "2", kProgram, "simulate", one, "a ~ normal(0, 1)", one, "b ~ normal(0, 1)", "--method",
        "iman-conover"},
       "puts whole columns in order"},
      {{"-n", "2", kProgram, "score", "x.csv"}, "score is done by one process"}};
  const auto count = [](const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
  };
  const auto before = folder.Names();
  for (const Case& c : cases) {
    const Outcome outcome = Mpirun(c.call);
    EXPECT_NE(outcome.status, 0) << c.said;
    EXPECT_EQ(outcome.out, "") << c.said;
    EXPECT_EQ(count(outcome.err, c.said), 1U) << outcome.err;
    EXPECT_EQ(folder.Names(), before) << c.said;
  }
}

// One of three may work for a second, in a job that takes hours.
TEST_F(RanksOf, OneThatIsKilledEndsTheJob) {
  const Outcome outcome =
      Mpirun({"-n", "3", "sh", "-c",
              "[ $OMPI_COMM_WORLD_RANK = 1 ] && ulimit -t 1; exec \"$0\" simulate --variable "
              "'a ~ normal(0, 1)' --samples 1e11 --method monte-carlo",
              kProgram});
  EXPECT_NE(outcome.status, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("signal"), std::string::npos) << outcome.err;
}

}  // namespace
}  // namespace brenvolt::test
