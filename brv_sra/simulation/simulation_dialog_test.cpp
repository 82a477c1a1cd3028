#include "brv_sra/simulation/simulation_dialog.h"

#include <gtest/gtest.h>

#include "brv_sra/frame/sequence_table.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/analysis/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

constexpr const char* kMatrixText = "Simulation failed. Please check the correlation matrix.";

// Three normal variables, the dialog open.
struct SimulationDialog : testing::Test {
  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", 20, 3};
  CAnalysisDoc document{userInterface, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  SimulationDialog() {
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
      sheet.VariableAt(v).SetProperty("Normal", "(Location=1.0; Scale=2.0)");
      sheet.VariableAt(v).SetProperty("zOrder", "Normal;");
      sheet.VariableAt(v).SetProperty("zTruncProp", "(0; 0; 0; 0)");
    }
    analysis->AttachDocument(&document);
    analysis->RunSequenceStep(step::kSimulationFromStartup);
    Dialog().Put("NumberOfSamples", 500);
    Dialog().Put("IsSeedRandomNumber", true);
  }
  AutomationObject& Dialog() { return *analysis->GetDialgInterface(); }
  int Ok() { return Dialog().Call("OK").ToInteger(); }
  SimulationOptions& Options() { return analysis->Simulation().options; }
  static std::shared_ptr<CAnalysisTableDoc> Matrix(std::vector<std::string> names, double correlation) {
    MatrixFile file = MatrixFile::Identity(std::move(names));
    for (std::size_t i = 0; i < file.variables.size(); ++i) {
      for (std::size_t j = 0; j < file.variables.size(); ++j) {
        if (i != j) file.correlations[i][j] = correlation;
      }
    }
    return std::make_shared<CAnalysisTableDoc>(MakeMatrixFile(file));
  }
  void PutMatrix(const std::shared_ptr<CAnalysisTableDoc>& matrix) {
    Dialog().Put("CorrelationMatrix", Variant::Object(matrix));
  }
  // The messages since the last call.
  std::vector<std::string> Said() {
    std::vector<std::string> texts;
    for (const Message& message : userInterface.messages) texts.push_back(message.text);
    userInterface.messages.clear();
    return texts;
  }
};

// Recorded macros rely on the names and numbers.
TEST_F(SimulationDialog, EveryMemberKeepsItsNumberAndGivesBackWhatWasPut) {
  const struct {
    const char* name;
    DispatchId id;
    Variant value;
    const char* read;
  } rows[] = {
      {"Variables", 0x60030000, "1 3", "1 3"},          {"LHSMethod", 0x60030004, true, "1"},
      {"ImanConoverMethod", 0x60030006, true, "1"},     {"LHSwithImanMethod", 0x60030008, true, "1"},
      {"NORTAMethod", 0x6003000a, true, "1"},           {"MonteCarloMethod", 0x60030002, true, "1"},
      {"NumberOfSamples", 0x6003000c, 12, "12"},        {"IsSeedRandomNumber", 0x6003000e, false, "0"},
      {"RandomSeedNumber", 0x60030010, 70000, "70000"}, {"TruncateSimulationData", 0x60030012, true, "1"},
      {"IsAutoUpdateSameSheet", 0x60030014, true, "1"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Dialog().FindMember(row.name), row.id) << row.name;
    Dialog().Put(row.name, row.value);
    EXPECT_EQ(Dialog().Get(row.name).ToText(), row.read) << row.name;
  }
  EXPECT_EQ(Dialog().FindMember("SimulationResults"), 0x60030016);
  EXPECT_THROW(Dialog().Put("SimulationResults", 1), Error);
  for (const char* other : {"LHSMethod", "ImanConoverMethod", "LHSwithImanMethod", "NORTAMethod"})
    EXPECT_EQ(Dialog().Get(other).ToInteger(), 0) << "one radio group: " << other;
  EXPECT_EQ(Options().method, SimulationMethod::kMonteCarlo);
  EXPECT_EQ(Options().previousMethod, SimulationMethod::kNormalToAnything);
}

TEST_F(SimulationDialog, CorrelatedRunShowsWhatWasAskedForAndReached) {
  Dialog().Put("LHSwithImanMethod", true);
  PutMatrix(Matrix({"Var3", "Var1", "Var2"}, 0.6));
  ASSERT_EQ(Ok(), 1);
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationResults);
  ASSERT_EQ(userInterface.documents.size(), 1U);
  EXPECT_EQ(userInterface.documents[0]->Table().Title(), "LHS with Iman Conover method");
  ASSERT_EQ(Ok(), 1);
  ASSERT_EQ(userInterface.documents.size(), 3U);
  const Spreadsheet& pairs = userInterface.documents[2]->Table();
  ASSERT_EQ(pairs.CaseCount(), 3U);
  for (const double reached : pairs.VariableAt(2).Values()) EXPECT_NEAR(reached, 0.6, 0.02);
  EXPECT_EQ(Said(), std::vector<std::string>{});
}

TEST_F(SimulationDialog, MatrixThatDoesNotServeIsRefusedInWords) {
  Dialog().Put("ImanConoverMethod", true);
  EXPECT_EQ(Ok(), 0);
  EXPECT_EQ(Said(),
            std::vector<std::string>{"The method induces correlation, and no correlation matrix is given."});
  PutMatrix(Matrix({"Var2", "x"}, 0));
  EXPECT_EQ(Ok(), 0);
  EXPECT_EQ(Said(),
            std::vector<std::string>{"The correlation matrix lacks variables of the simulation: Var1, Var3"});
  const auto faulty = Matrix({"Var1", "Var2"}, 0);
  faulty->Table().VariableAt(0).MutableValues()[1] = GetDefaultMDValue();
  const auto none = std::make_shared<CAnalysisTableDoc>(std::make_unique<Spreadsheet>("plain", 6, 2));
  for (const auto& bad : {faulty, none}) {
    try {
      PutMatrix(bad);
      ADD_FAILURE() << "taken: " << bad->Table().Name();
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Reason(), kMatrixText) << error.Where();
    }
  }
  EXPECT_THROW(Dialog().Put("CorrelationMatrix", 3), Error);
  Dialog().Put("CorrelationMatrix", Variant());
  Dialog().Put("Variables", "2");
  EXPECT_EQ(Ok(), 1) << "one variable needs no matrix";
}

TEST_F(SimulationDialog, RepairIsSaidAndItsMatrixShown) {
  Dialog().Put("ImanConoverMethod", true);
  PutMatrix(Matrix({"Var1", "Var2", "Var3", "other"}, -0.9));
  ASSERT_EQ(Ok(), 1);
  ASSERT_EQ(userInterface.messages.size(), 1U);
  EXPECT_EQ(userInterface.messages[0].text,
            "The correlation matrix is not positive definite and was repaired.");
  EXPECT_TRUE(userInterface.messages[0].where.starts_with("smallest eigenvalue -0.8, largest change Var"))
      << userInterface.messages[0].where;
  ASSERT_EQ(userInterface.documents.size(), 2U);
  const MatrixReading repaired = ReadMatrixFile(userInterface.documents[1]->Table());
  ASSERT_TRUE(repaired.IsValid());
  EXPECT_NEAR(repaired.file.correlations[2][0], -0.5, 1e-12);
}

TEST_F(SimulationDialog, AutoUpdateRefillsTheSheetThatIsThere) {
  Dialog().Put("IsAutoUpdateSameSheet", true);
  const Variant first = Dialog().Get("SimulationResults");
  ASSERT_EQ(userInterface.documents.size(), 1U);
  EXPECT_EQ(userInterface.progressCaptions.back(), "Preparing results...");
  const Spreadsheet& shown = userInterface.documents[0]->Table();
  EXPECT_EQ(shown.CaseCount(), 500U);
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationFromStartup) << "the dialog stays";
  Dialog().Put("NumberOfSamples", 7);
  Dialog().Put("Variables", "2");
  const Variant second = Dialog().Get("SimulationResults");
  EXPECT_EQ(first.ToObject(), second.ToObject());
  EXPECT_EQ(userInterface.documents.size(), 1U);
  EXPECT_EQ(userInterface.progressCaptions.back(), "Auto updating...");
  EXPECT_EQ(shown.CaseCount(), 7U);
  EXPECT_EQ(shown.VariableCount(), 1U);
  Dialog().Put("IsAutoUpdateSameSheet", false);
  EXPECT_NE(Dialog().Get("SimulationResults").ToObject(), first.ToObject());
  // A sheet that was handed out cannot be refilled.
  Dialog().Put("IsAutoUpdateSameSheet", true);
  userInterface.documents.back()->ReleaseTable();
  EXPECT_NE(Dialog().Get("SimulationResults").ToObject(), nullptr);
  EXPECT_EQ(userInterface.documents.size(), 3U);
}

TEST_F(SimulationDialog, FailedUpdateLeavesTheFormerOutput) {
  Dialog().Put("IsAutoUpdateSameSheet", true);
  Dialog().Get("SimulationResults");
  sheet.VariableAt(1).SetProperty("zTruncProp", "(1; 0; 500; 0)");
  EXPECT_THROW(Dialog().Get("SimulationResults"), Error);
  EXPECT_EQ(userInterface.documents[0]->Table().CaseCount(), 500U);
}

TEST_F(SimulationDialog, NormalToAnythingSucceedsAndStays) {
  Dialog().Get("SimulationResults");
  Dialog().Put("NORTAMethod", true);
  EXPECT_EQ(Ok(), 1);
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationFromStartup);
  EXPECT_EQ(userInterface.documents.size(), 1U) << "only what was there before";
  EXPECT_EQ(Dialog().Get("SimulationResults").ToObject(), nullptr);
}

}  // namespace
}  // namespace brenvolt::sra
