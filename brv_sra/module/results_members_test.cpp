// What the Results… members ask of the next result of a dialog, and where one has no meaning.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>

#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/automation/automation_failure.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using Path = std::filesystem::path;

// Three fitted variables; what is saved is kept by name.
struct ResultsMembers : testing::Test {
  HeadlessUserInterface person;
  Spreadsheet sheet{"data", 60, 3};
  CAnalysisDoc document{person, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};
  std::map<std::string, std::string> saved;

  ResultsMembers() {
    for (std::size_t v = 0; v < 3; ++v) {
      const auto values = sheet.VariableAt(v).MutableValues();
      for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>((i * (v + 3) * 7) % 23 + 1);
    }
    document.SetResultSaver({[](const Path& path) {
                               if (path.extension() == ".doc") throw Error("expected a .csv");
                             },
                             [this](const CAnalysisTableDoc& table, const Path& path) {
                               saved[path.string()] = table.Table().Name();
                             },
                             [this](const CAnalysisGraphDoc& graph, const Path& path) {
                               saved[path.string()] = graph.Content().title;
                             }});
    analysis->AttachDocument(&document);
    analysis->RunSequenceStep(step::kInit);
    analysis->RunSequenceStep(step::kFit);
    Dialog().Put("Variables", "1-3");
    EXPECT_EQ(Ok(), 1);
  }
  AutomationObject& Dialog() { return *analysis->GetDialgInterface(); }
  int Ok() { return Dialog().Call("OK").ToInteger(); }
  void Put(const char* member, const Variant& value) { Dialog().Put(member, value); }
  // The table that a member gives, and the one that was shown last.
  const Spreadsheet& Get(const char* member) {
    made_ = std::dynamic_pointer_cast<CAnalysisTableDoc>(Dialog().Get(member).ToObject());
    return made_->Table();
  }
  const Spreadsheet& Shown() { return person.documents.back()->Table(); }
  std::string Refusal(const std::function<void()>& call) {
    try {
      call();
    } catch (const AutomationFailure& failure) {
      return std::string(failure.what()) + " (" + failure.Where() + ")";
    } catch (const AutomationError& error) {
      return error.Reason();
    }
    return "taken";
  }

 private:
  std::shared_ptr<CAnalysisTableDoc> made_;
};

TEST_F(ResultsMembers, TheyCountOnceForTheNextResult) {
  const std::size_t all = Get("SummaryStats").VariableCount();
  Put("ResultsOutputFields", Variant::Array{"maximum", "mean"});
  Put("ResultsSaveFileName", "s.csv");
  const Spreadsheet& chosen = Get("SummaryStats");
  ASSERT_EQ(chosen.VariableCount(), 2U);
  EXPECT_EQ(chosen.VariableAt(0).Identifier(), "maximum");
  EXPECT_EQ(chosen.VariableAt(0).Values()[0], 23);
  EXPECT_EQ(saved.size(), 1U);
  EXPECT_EQ(saved["s.csv"], chosen.Name());
  EXPECT_EQ(Get("SummaryStats").VariableCount(), all);
  EXPECT_EQ(saved.size(), 1U);
  // Also after a result that failed, which leaves nothing behind.
  Put("ResultsOutputFields", "median");
  const std::size_t shown = person.documents.size();
  EXPECT_NE(Refusal([&] { Dialog().Get("SummaryStats"); }).find("there is no column median; there are "),
            std::string::npos);
  EXPECT_EQ(person.documents.size(), shown);
  EXPECT_EQ(Get("SummaryStats").VariableCount(), all);
}

TEST_F(ResultsMembers, OptionIsTheKindThatOkMakes) {
  const char* const kinds[] = {
      "Histogram", "Cumulative Histogram", "Empirical Distribution", "Q-Q", "P-P", nullptr, nullptr,
      "Summary"};
  for (std::int32_t kind = 0; kind < 8; ++kind) {
    const std::size_t tables = person.documents.size();
    const std::size_t graphs = person.graphs.size();
    Put("ResultsOption", kind);
    EXPECT_EQ(Ok(), 1) << kind;
    if (kinds[kind] == nullptr) {
      EXPECT_EQ(person.documents.size(), tables + 1) << kind;
    } else {
      ASSERT_EQ(person.graphs.size(), graphs + 1) << kind;
      EXPECT_TRUE(person.graphs.back()->Content().title.starts_with(kinds[kind]))
          << person.graphs.back()->Content().title;
    }
  }
  EXPECT_EQ(Refusal([&] { Put("ResultsOption", 8); }),
            "is not available (SRAFitDistributionResults.ResultsOption: the constants of OuptutType are 0 to "
            "7)");
}

// The exact values of the fit: a quantile's distribution function is the probability.
TEST_F(ResultsMembers, ValuesTabulateTheChosenFit) {
  Put("QuickTabVariable", 2);
  Put("ResultsValues", Variant::Array{0.25, 7.5, -3.0});
  EXPECT_EQ(Ok(), 1);
  const Spreadsheet& points = Shown();
  ASSERT_EQ(points.VariableCount(), 4U);
  const double quartile = points.VariableAt(3).Values()[0];
  EXPECT_TRUE(points.VariableAt(3).IsMissing(1)) << "7.5 is no probability";
  Put("ResultsValues", quartile);
  const Spreadsheet& back = Get("DistributionDetails");
  EXPECT_NEAR(back.VariableAt(2).Values()[0], 0.25, 1e-12);
  EXPECT_GT(back.VariableAt(1).Values()[0], 0);
  Put("ResultsValues", 1);
  EXPECT_EQ(Refusal([&] { Dialog().Get("SummaryStats"); }), "ResultsValues has no meaning for this result");
}

TEST_F(ResultsMembers, CasesAreChosenForPlots) {
  const auto points = [&] {
    const auto graph = std::dynamic_pointer_cast<CAnalysisGraphDoc>(Dialog().Get("QQPlot").ToObject());
    return graph->Get("Data").ToObject()->Get("NumberOfCases").ToInteger();
  };
  const int all = points();
  Put("ResultsSelection", "Var1 > 20");
  EXPECT_LT(points(), all);
  EXPECT_EQ(points(), all);
  Put("ResultsSelection", 1);
  EXPECT_EQ(Refusal([&] { Dialog().Get("SummaryStats"); }),
            "ResultsSelection has no meaning for this result");
}

TEST_F(ResultsMembers, SimulatedDataAreSummarisedInPartAndSaved) {
  ASSERT_EQ(Dialog().Call("RunSimulation").ToInteger(), 1);
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulation);
  Put("ResultsVariables", "1 3");
  EXPECT_EQ(Dialog().Get("Variables").ToText(), "1 3");
  Put("LHSwithImanMethod", true);
  Put("ResultsSaveFileName", "samples.csv");
  EXPECT_EQ(Refusal([&] { Put("ResultsSaveFileName", "samples.doc"); }), "expected a .csv");
  EXPECT_EQ(Refusal([&] {
              Put("ResultsCodes", Variant::Array{1, 1});
            }),
            "is not available (SRASimulationFromDistribution.ResultsCodes: the dialog makes simulated data, "
            "whose results are made by the next one)");
  ASSERT_EQ(Ok(), 1);
  EXPECT_EQ(saved["samples.csv"], "LHS with Iman Conover method");
  EXPECT_EQ(Ok(), 1);
  EXPECT_EQ(Shown().CaseCount(), 1U) << "one pair";
  const std::size_t before = person.documents.size();
  Put("ResultsVariables", 2);
  Put("ResultsSelection", "Var3 > 12");
  Put("ResultsOutputFields", Variant::Array{"n", "minimum"});
  EXPECT_EQ(Ok(), 1);
  ASSERT_EQ(person.documents.size(), before + 1) << "no pair is left";
  EXPECT_EQ(Shown().CaseName(0), "Var3");
  EXPECT_LT(Shown().VariableAt(0).Values()[0], 100);
  EXPECT_GT(Shown().VariableAt(1).Values()[0], 12);
  EXPECT_EQ(
      Refusal([&] { Put("ResultsOption", 3); }),
      "is not available (SRASimulationResults.ResultsOption: simulated data have scSummaryStats alone)");
}

TEST_F(ResultsMembers, ProfilerSelectsADependentAndRuns) {
  analysis->RunSequenceStep(step::kProfiler);
  Put("PredictionFormula", "Sum = Var1 + Var2");
  Put("PredictionFormula", "Product = Var1 * Var2");
  Put("NumberOfSamples", 200);
  Put("ResultsSaveFileName", "runs.csv");
  ASSERT_EQ(Ok(), 1) << person.messages.back().text;
  EXPECT_EQ(saved.count("runs.csv"), 1U);
  Put("ResultsVariables", "Product");
  EXPECT_EQ(Dialog().Get("DependentforResult").ToInteger(), 2);
  const double all = Get("SummaryStats").VariableAt(0).Values()[0];
  Put("ResultsSelection", Variant::Array{1, 2, 3, 4, 5});
  const double few = Get("SummaryStats").VariableAt(0).Values()[0];
  EXPECT_NE(few, all);
  Put("ResultsOption", 7);
  const std::size_t graphs = person.graphs.size();
  EXPECT_EQ(Ok(), 1);
  EXPECT_EQ(person.graphs.size(), graphs + 1);
  EXPECT_EQ(Get("SummaryStats").VariableAt(0).Values()[0], all);
  EXPECT_EQ(Refusal([&] { Put("ResultsVariables", "Quotient"); }).find("there is no dependent"), 0U);
}

}  // namespace
}  // namespace brenvolt::sra
