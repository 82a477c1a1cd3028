// The module's frame through its exported faces: the factory, the sequence, the dialogs' automation, the list
// of fitted distributions.
#include <gtest/gtest.h>

#include "brv_sra/frame/loaded_module.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/fitted_distribution_list.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

struct Frame : testing::Test {
  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", 40, 3};
  CAnalysisDoc document{userInterface, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  Frame() {
    for (std::size_t v = 0; v < 3; ++v) {
      const auto values = sheet.VariableAt(v).MutableValues();
      for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>((i * (v + 3) * 7) % 23 + 1);
    }
    analysis->AttachDocument(&document);
  }
  std::shared_ptr<AutomationObject> Dialog() { return analysis->GetDialgInterface(); }
  int Ok() { return Dialog()->Call("OK").ToInteger(); }
  std::string LastMessage() {
    return userInterface.messages.empty() ? "" : userInterface.messages.back().text;
  }
  void OpenFit() {
    ASSERT_TRUE(analysis->RunSequenceStep(step::kInit));
    Dialog()->Put("TypeOfAnalysis", 0);
    ASSERT_EQ(Ok(), 1);
  }
  // Normal distributions for the first two variables.
  void FitFirstTwo() {
    OpenFit();
    Dialog()->Put("ContinuousVariable", "1-2");
    for (const int variable : {1, 2}) {
      for (const char* other :
           {"IsJohnsonDistribution", "IsGeneralizedExtremeValueDistribution", "IsTriangularDistribution"}) {
        Dialog()->Put(other, variable, false);
      }
    }
    ASSERT_EQ(Ok(), 1);
    EXPECT_THROW(Dialog()->Put("IsNormalDistribution", 1, true), Error) << "a member of another dialog";
  }
};

TEST_F(Frame, NewAnalysisHasItsIdentityAndDefaults) {
  const std::unique_ptr<CSimulationAndRisk> fresh(Kro6NewAnalysis());
  EXPECT_EQ(fresh->Document(), nullptr);
  EXPECT_EQ(fresh->GetAnalysisID(), 25693);
  EXPECT_EQ(fresh->GetAnalysisName(), " Simulation and Risk Analysis and Variable Screening");
  EXPECT_EQ(fresh->GetLibInstance(), ModuleInstance());
  EXPECT_EQ(fresh->Defaults().numberOfSamples, 100);
  EXPECT_EQ(fresh->Defaults().randomSeed, 1000.0);
  EXPECT_EQ(fresh->Defaults().textLength, 256);
  EXPECT_EQ(fresh->Defaults().reservedCount, 0);
  EXPECT_FALSE(fresh->AutoProfiler());
  EXPECT_TRUE(fresh->Specification().values.empty());
}

TEST_F(Frame, SequenceTableHasItsNineRows) {
  struct Row {
    std::int32_t step, followOn, returnStep;
  };
  const Row rows[] = {{100, 101, 0}, {101, 0, 0},   {102, 0, 101}, {103, 0, 0},  {104, 0, 0},
                      {105, 0, 0},   {106, 0, 101}, {107, 0, 101}, {108, 0, 101}};
  const SequenceStep* table = analysis->CAnalysisSupport::SequenceTable();
  for (const Row& row : rows) {
    EXPECT_EQ(table->step, row.step);
    EXPECT_EQ(table->followOn, row.followOn);
    EXPECT_EQ(table->returnStep, row.returnStep);
    ++table;
  }
  EXPECT_EQ(table->step, 0);
  EXPECT_EQ(table->entry, nullptr);
  const SequenceStep* steps = analysis->CAnalysisSupport::SequenceTable();
  EXPECT_EQ(steps[4].entry, steps[6].entry) << "104 and 106 open the same dialog";
}

TEST_F(Frame, AttachRegistersInterfacesClassesAndTypeLibrary) {
  EXPECT_EQ(RegisteredInterfaces().size(), 8U);
  EXPECT_EQ(RegisteredObjectClasses().size(), 8U);
  EXPECT_EQ(RegisteredTypeLibraries(), std::vector<std::string>{std::string(LIBID_BRVSRA.text)});
}

TEST_F(Frame, FitMovesThroughTheSequenceAndBack) {
  FitFirstTwo();
  EXPECT_EQ(analysis->CurrentStep(), step::kFitResults);
  Dialog()->Call("Cancel");
  EXPECT_EQ(analysis->CurrentStep(), step::kFit);
  EXPECT_EQ(Dialog()->Get("ContinuousVariable").ToText(), "1-2") << "the choice outlives its dialog";
  Dialog()->Call("Cancel");
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup);
  EXPECT_EQ(Dialog()->Get("TypeOfAnalysis").ToInteger(), 0);
}

TEST_F(Frame, AutomationObjectOfAClosedDialogFailsAndChangesNothing) {
  OpenFit();
  const auto closed = Dialog();
  const auto locks = ModuleAutomation().LockCount();
  closed->Call("Cancel");
  EXPECT_THROW(closed->Put("ContinuousVariable", 1), Error);
  EXPECT_THROW(closed->Call("OK"), Error);
  EXPECT_EQ(closed->QueryInterface(kDialogPointer),
            static_cast<DialogPointer*>(dynamic_cast<DialogPointer*>(closed.get())));
  EXPECT_EQ(ModuleAutomation().LockCount(), locks + 1) << "the closed one is still held";
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup);
}

TEST_F(Frame, StartupRefusesWhatItsListDoesNotHave) {
  analysis->RunSequenceStep(step::kInit);
  EXPECT_THROW(Dialog()->Put("TypeOfAnalysis", 4), Error);
  Dialog()->Put("TypeOfAnalysis", 0);
  EXPECT_THROW(Dialog()->Put("AutoProfiler", 1), Error) << "disabled unless the profiler is selected";
}

TEST_F(Frame, ListOfFittedDistributionsAnswersForResultsOnly) {
  FitFirstTwo();
  Variant object(Dialog());
  Variant result("untouched");
  EXPECT_EQ(GetFittedDistributionList(object, &result, 1), 0);
  ASSERT_EQ(result.ToArray().size(), 1U);
  EXPECT_EQ(result.ToArray()[0].ToText(), "Normal");
  result = "untouched";
  EXPECT_EQ(GetFittedDistributionList(Variant::Reference(&object), &result, 0), 0);
  EXPECT_TRUE(result.IsArray());
  Dialog()->Call("Cancel");
  for (const Variant& other : {Variant(), Variant(5), Variant(Dialog()), object}) {
    result = "untouched";
    EXPECT_EQ(GetFittedDistributionList(other, &result, 0), 2);
    EXPECT_EQ(result.ToText(), "untouched");
  }
}

TEST_F(Frame, ListOfFittedDistributionsKnowsItsVariables) {
  FitFirstTwo();
  Variant result("untouched");
  for (const int variable : {-1, 2}) EXPECT_EQ(GetFittedDistributionList(Dialog(), &result, variable), 2);
  EXPECT_EQ(result.ToText(), "untouched");
}

TEST_F(Frame, SavedFitsFeedTheSimulation) {
  FitFirstTwo();
  EXPECT_NE(Dialog()->Get("SaveDistributionFit").ToObject(), nullptr);
  EXPECT_EQ(userInterface.documents.back()->Table().Title(), "Correlation matrix");
  EXPECT_EQ(sheet.VariableAt(0).Property("zOrder"), "Normal;");
  Dialog()->Call("Cancel");
  Dialog()->Call("Cancel");
  Dialog()->Put("TypeOfAnalysis", 1);
  Ok();
  ASSERT_EQ(analysis->CurrentStep(), step::kSimulation);
  EXPECT_EQ(Dialog()->Get("Variables").ToText(), "1-2");
  Dialog()->Put("NumberOfSamples", 50);
  ASSERT_EQ(Ok(), 1) << LastMessage();
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationResults);
  const auto& output = userInterface.documents.back()->Table();
  EXPECT_EQ(output.Title(), "Monte Carlo method");
  EXPECT_EQ(output.Header(), "Sample #");
  EXPECT_EQ(output.CaseName(49), "50");
  EXPECT_EQ(output.VariableAt(1).Name(), "Var2");
  EXPECT_TRUE(document.ResultsToWorkbook()) << "the option is restored";
  EXPECT_EQ(Ok(), 1);
  EXPECT_EQ(userInterface.documents.back()->Table().CaseCount(), 2U) << "a summary of two variables";
}

TEST_F(Frame, SavedFitsGiveTheSimulationTheirCorrelations) {
  FitFirstTwo();
  const auto saved = Dialog()->Get("SaveDistributionFit").ToObject();
  const auto& matrix = dynamic_cast<CAnalysisTableDoc&>(*saved).Table();
  Dialog()->Call("Cancel");
  Dialog()->Call("Cancel");
  Dialog()->Put("TypeOfAnalysis", 1);
  Ok();
  Dialog()->Put("LHSwithImanMethod", true);
  ASSERT_EQ(Ok(), 1) << LastMessage();
  ASSERT_EQ(Ok(), 1) << LastMessage();
  const auto& reached = userInterface.documents.back()->Table();
  EXPECT_EQ(reached.VariableAt(0).Values()[0], matrix.VariableAt(1).Values()[0]);
}

struct SimulationChecks : Frame {
  void SetUp() override {
    sheet.VariableAt(0).SetProperty("Normal", "(Location=0.0; Scale=1.0)");
    sheet.VariableAt(0).SetProperty("zOrder", "Normal;");
    sheet.VariableAt(0).SetProperty("zTruncProp", "(0; 0; 0; 0)");
    analysis->RunSequenceStep(step::kSimulationFromStartup);
  }
};

TEST_F(SimulationChecks, OptionsAreValidatedWithEveryMessage) {
  Dialog()->Put("IsSeedRandomNumber", true);
  Dialog()->Put("NumberOfSamples", 0);
  Dialog()->Put("RandomSeedNumber", -1);
  EXPECT_EQ(Ok(), 0);
  ASSERT_EQ(userInterface.messages.size(), 2U) << "the later check still runs";
  EXPECT_TRUE(userInterface.messages[0].text.starts_with("Invalid number of samples."));
  EXPECT_TRUE(userInterface.messages[1].text.starts_with("Invalid random seed value."));
  EXPECT_EQ(Dialog()->Get("RandomSeedNumber").ToInteger(), 1000);
  Dialog()->Put("NumberOfSamples", 250'000'001);
  EXPECT_EQ(Ok(), 0);
  EXPECT_TRUE(LastMessage().starts_with("Insufficient memory exists to generate"));
  userInterface.messages.clear();
  Dialog()->Put("NumberOfSamples", 10);
  Dialog()->Put("IsSeedRandomNumber", false);
  analysis->GetDialog()->Enter(simulation_dialog::kSeed, "");
  EXPECT_EQ(Ok(), 1) << "an empty seed is no error while seeding is off";
  EXPECT_TRUE(userInterface.messages.empty());
}

TEST_F(SimulationChecks, PropertyThatCannotBeSampledIsReported) {
  sheet.VariableAt(0).SetProperty("Normal", "(Location=0.0; Scale=x)");
  EXPECT_EQ(Ok(), 0);
  EXPECT_EQ(LastMessage(), "Variable properties error. One or more property values are invalid.");
  sheet.VariableAt(0).SetProperty("Normal", "(Location=0.0; Scale=1.0)");
  sheet.VariableAt(0).SetProperty("zTruncProp", "(1; 0; 50; 0)");
  EXPECT_EQ(Ok(), 0) << "nothing of the distribution is left";
  EXPECT_TRUE(LastMessage().starts_with("Simulation failed.  Please review"));
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationFromStartup);
  EXPECT_TRUE(userInterface.documents.empty());
}

}  // namespace
}  // namespace brenvolt::sra
