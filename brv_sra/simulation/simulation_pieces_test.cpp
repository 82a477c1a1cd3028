#include "brv_sra/simulation/simulation_pieces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "brv_sra/simulation/sampling/sampled_distributions_test.h"
#include "brv_sra/simulation/simulation_run.h"
#include "brv_sra/simulation/simulation_summary.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/numeric/random/random_stream.h"
#include "host/rounds/crew.h"

namespace brenvolt::sra {
namespace {

constexpr double kSeed = 4;

struct Pieces : testing::Test {
  HeadlessUserInterface userInterface;
  SimulationDesign design;

  // All distributions, one of them left out; more cells than a piece holds.
  void UseAllDistributions(const SampledTruncation& truncation) {
    design = {};
    for (const SimulationVariable& distribution : SampledDistributions()) {
      design.variables.push_back(Truncated(distribution, truncation));
      design.variables.back().name = "v" + std::to_string(design.variables.size());
    }
    design.truncate = truncation.band;
    design.excluded = {2};
    design.numberOfSamples = 70'001;
  }
  Result<SampleSummaries> ByCases(const CaseSink& take) {
    return SimulateByCases(design, true, kSeed, take, userInterface);
  }
  Result<SampleSummaries> ByColumns(const ColumnSink& take) {
    return SimulateByColumns(design, true, kSeed, take, userInterface);
  }
};

std::vector<std::vector<double>> ColumnsOf(const Spreadsheet& sheet) {
  std::vector<std::vector<double>> columns;
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c)
    columns.emplace_back(sheet.VariableAt(c).Values().begin(), sheet.VariableAt(c).Values().end());
  return columns;
}

TEST_F(Pieces, HoldTheValuesAndTheSummaryOfOneRunAsAWhole) {
  for (const SampledTruncation& truncation : {kTruncations[0], kTruncations[3]}) {
    for (const auto method : {SimulationMethod::kMonteCarlo, SimulationMethod::kLatinHypercube}) {
      SCOPED_TRACE(testing::Message() << truncation.name << ", method " << static_cast<int>(method));
      UseAllDistributions(truncation);
      design.method = method;
      const SimulationRun whole = *RunSimulation(design, true, kSeed, userInterface);
      const std::uint64_t end = ProcessStreamPosition();
      const auto expected = ColumnsOf(*whole.output);
      const SampleSummaries summary = SummarizeOutput(*whole.output, userInterface);

      std::vector<std::vector<double>> found(expected.size());
      int pieces = 0;
      const auto byCases = ByCases([&](const Spreadsheet& piece) {
        ++pieces;
        EXPECT_EQ(piece.VariableAt(2).Name(), "v4");
        for (std::size_t c = 0; c < found.size(); ++c)
          found[c].insert(found[c].end(), piece.VariableAt(c).Values().begin(),
                          piece.VariableAt(c).Values().end());
      });
      EXPECT_GT(pieces, 1);
      EXPECT_EQ(found, expected);
      EXPECT_EQ(byCases->values, summary.values);
      EXPECT_EQ(byCases->names, summary.names);
      EXPECT_EQ(summary.names[2], "v4");
      EXPECT_EQ(ProcessStreamPosition(), end);

      found.assign(expected.size(), {});
      const auto byColumns = ByColumns([&](std::size_t variable, std::span<const double> values) {
        found[variable].insert(found[variable].end(), values.begin(), values.end());
      });
      EXPECT_EQ(found, expected);
      EXPECT_EQ(byColumns->values, summary.values);
      EXPECT_EQ(ProcessStreamPosition(), end);
    }
  }
}

// A crew that splits the parts of each round in its own way, as several processes do, and joins in its own order.
class SplittingCrew : public Crew {
 public:
  explicit SplittingCrew(std::uint64_t most) : most_(most) {}

  int Rank() const override { return 0; }
  int Count() const override { return 2; }
  bool RunsInOrder() const override { return false; }
  std::string Run(const Round& round) override {
    std::vector<std::string> pieces;
    for (std::uint64_t end = round.parts; end > 0; end -= std::min(most_, end))
      pieces.push_back(round.run({end - std::min(most_, end), end}));
    while (pieces.size() > 1) {
      const std::string last = std::move(pieces.back());
      pieces.pop_back();
      pieces.back() = round.join(last, pieces.back());
    }
    return round.finish(pieces[0]);
  }

 private:
  std::uint64_t most_;
};

TEST_F(Pieces, AnySplitOfTheRoundsGivesTheSameBytes) {
  for (const SampledTruncation& truncation : {kTruncations[0], kTruncations[3]}) {
    for (const auto method : {SimulationMethod::kMonteCarlo, SimulationMethod::kLatinHypercube}) {
      SCOPED_TRACE(testing::Message() << truncation.name << ", method " << static_cast<int>(method));
      UseAllDistributions(truncation);
      design.variables.resize(5);
      design.variables[1].name = design.variables[4].name;
      design.numberOfSamples = 2 * SampleSummary::kPart + 4711;
      design.method = method;
      const auto alone = ByColumns([](std::size_t, std::span<const double>) {});
      const std::uint64_t end = ProcessStreamPosition();
      const SimulationRun whole = *RunSimulation(design, true, kSeed, userInterface);
      EXPECT_EQ(alone->values, SummarizeOutput(*whole.output, userInterface).values);
      for (const std::uint64_t most : {1, 2, 5}) {
        SplittingCrew crew(most);
        const CrewScope scope(crew);
        EXPECT_EQ(ByColumns([](std::size_t, std::span<const double>) {})->values, alone->values);
        EXPECT_EQ(ProcessStreamPosition(), end);
        std::uint64_t cases = 0;
        const auto byCases = ByCases([&](const Spreadsheet& piece) { cases += piece.CaseCount(); });
        EXPECT_EQ(byCases->values, alone->values);
        EXPECT_EQ(cases, static_cast<std::uint64_t>(design.numberOfSamples));
      }
    }
  }
}

TEST_F(Pieces, FailuresNameTheVariableAndLeaveNothing) {
  UseAllDistributions(kTruncations[0]);
  design.variables[4].specification.values[0] = -1;
  const auto run = ByCases([](const Spreadsheet&) { ADD_FAILURE() << "a piece of a failed run"; });
  EXPECT_EQ(run.Reason().identifier, FaultIdentifier::kTruncationNotSampled);
  EXPECT_EQ(run.Reason().about, "v5");

  UseAllDistributions(kTruncations[0]);
  design.method = SimulationMethod::kLatinHypercube;
  LimitAnalysisAllocations(3);
  EXPECT_THROW((void)ByCases([](const Spreadsheet&) {}), std::bad_alloc);
  LimitAnalysisAllocations(kNoAllocationLimit);
  EXPECT_EQ(OutstandingAnalysisBlocks(), 0U);
}

TEST_F(Pieces, AFullTargetEndsTheRun) {
  UseAllDistributions(kTruncations[0]);
  EXPECT_THROW((void)ByColumns([](std::size_t, std::span<const double>) { throw Error("full"); }), Error);
  EXPECT_THROW((void)ByCases([](const Spreadsheet&) { throw Error("full"); }), Error);
}

}  // namespace
}  // namespace brenvolt::sra
