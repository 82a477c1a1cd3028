// The two startup dialogs: commands, list, check box, and what a task switches off.
#include <gtest/gtest.h>

#include "brv_sra/frame/loaded_module.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace define_task;

// Sees, when it is asked, whether the dialog is open to commands and the results are locked.
class WatchingInterface : public HeadlessUserInterface {
 public:
  std::function<void()> whenAsked = [] {};
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& question) override {
    whenAsked();
    return HeadlessUserInterface::ChooseFiles(question);
  }
  bool EditWeights(WeightQuestion& question) override {
    whenAsked();
    return HeadlessUserInterface::EditWeights(question);
  }
};

struct StartupDialogs : testing::Test {
  WatchingInterface userInterface;
  Spreadsheet sheet{"data", 10, 3};
  Spreadsheet other{"other", 5, 1};
  CAnalysisDoc document{userInterface, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  StartupDialogs() {
    sheet.VariableAt(0).SetProperty("Normal", "(Location=0.0; Scale=1.0)");
    sheet.VariableAt(0).SetProperty("zOrder", "Normal;");
    analysis->AttachDocument(&document);
    document.SetDataOpener([this](const std::filesystem::path& path) {
      if (path != "other.csv") throw Error("cannot be read", path.string());
      return &other;
    });
    document.SetSelectionApplier([](Spreadsheet& table, const std::string& condition) {
      if (condition == "faulty") throw Error("is no condition", condition);
      table.SetSelection({true, condition, std::vector<std::uint8_t>(table.CaseCount(), 0)});
    });
    Open();
  }
  void Open() { ASSERT_TRUE(analysis->RunSequenceStep(step::kInit)); }
  CAnalysisDialog& Dialog() { return *analysis->GetDialog(); }
  int Messages() { return static_cast<int>(userInterface.messages.size()); }
};

TEST_F(StartupDialogs, EveryEntryStartsItsStepByButtonOkAndDoubleClick) {
  struct Row {
    int entry;
    std::int32_t command;
    std::int32_t step;
    bool usesCases;
  };
  const Row rows[] = {
      {0, 1004, 102, true}, {1, 1005, 104, true}, {2, 1180, 107, false}, {3, 1220, 108, false}};
  for (const Row& row : rows) {
    for (const int way : {0, 1, 2}) {
      Open();
      EXPECT_TRUE(analysis->StartupMenusEnabled());
      ASSERT_TRUE(Dialog().Select(1006, row.entry));
      const bool taken = way == 0   ? Dialog().Press(row.command)
                         : way == 1 ? Dialog().Press(kControlOk)
                                    : Dialog().DoubleClick(1006);
      EXPECT_TRUE(taken) << row.entry << ", way " << way;
      EXPECT_EQ(analysis->CurrentStep(), row.step) << row.entry << ", way " << way;
      EXPECT_FALSE(analysis->StartupMenusEnabled());
      EXPECT_EQ(analysis->CaseSelectionEnabled(), row.usesCases) << row.entry;
      EXPECT_EQ(analysis->CaseWeightsEnabled(), row.usesCases) << row.entry;
      Open();
      EXPECT_EQ(Dialog().Controls().Selection(1006), row.entry) << "the last task is selected again";
    }
  }
}

TEST_F(StartupDialogs, ProfilerEntryAloneEnablesItsCheckBoxAndNoEntryChangesTheFlag) {
  ASSERT_TRUE(Dialog().Select(1006, 3));
  ASSERT_TRUE(Dialog().Check(1254, true));
  for (const int entry : {0, 1, 2, 3}) {
    EXPECT_TRUE(Dialog().Select(1006, entry));
    EXPECT_EQ(Dialog().Controls().At(1254).enabled, entry == 3);
    EXPECT_EQ(Dialog().Check(1254, true), entry == 3);
    EXPECT_TRUE(analysis->AutoProfiler());
  }
  for (const int entry : {-1, 4}) EXPECT_FALSE(Dialog().Select(1006, entry));
  EXPECT_EQ(Dialog().Controls().Selection(1006), 3);
  EXPECT_FALSE(Dialog().DoubleClick(1254)) << "no list";
  Open();
  EXPECT_TRUE(Dialog().Controls().IsChecked(1254));
}

TEST_F(StartupDialogs, SelectionConditionsAreAskedForUntilTheyHold) {
  EXPECT_FALSE(Dialog().Press(1001)) << "cancelled";
  EXPECT_FALSE(sheet.Selection().enabled);
  userInterface.selectionAnswers = {[](SelectionQuestion& question) {
                                      question = {true, "faulty"};
                                    },
                                    [](SelectionQuestion& question) {
                                      EXPECT_EQ(question.condition, "faulty") << "to be corrected";
                                      question.condition = "v1 > 2";
                                    }};
  EXPECT_TRUE(Dialog().Press(1001));
  EXPECT_EQ(Messages(), 1);
  EXPECT_EQ(sheet.Selection().condition, "v1 > 2");
  EXPECT_FALSE(sheet.IsCaseSelected(0));
  userInterface.selectionAnswers = {[](SelectionQuestion& question) { question.enabled = false; }};
  EXPECT_TRUE(Dialog().Press(1001));
  EXPECT_TRUE(sheet.IsCaseSelected(0));
  EXPECT_EQ(sheet.Selection().condition, "v1 > 2") << "kept for the next time";
}

TEST_F(StartupDialogs, ResultsAreLockedWhileWeightsAreEdited) {
  userInterface.whenAsked = [this] { EXPECT_TRUE(document.AreResultsLocked()); };
  userInterface.weightAnswers = {[](WeightQuestion& question) {
                                   EXPECT_EQ(question.names.size(), 3U);
                                   question.variable = 4;
                                 },
                                 [](WeightQuestion& question) { question.variable = 2; }};
  EXPECT_TRUE(Dialog().Press(1002));
  EXPECT_EQ(Messages(), 1) << "there is no variable 4";
  EXPECT_EQ(sheet.WeightVariable(), 1U);
  EXPECT_FALSE(Dialog().Press(1002)) << "cancelled";
  EXPECT_EQ(sheet.WeightVariable(), 1U);
  userInterface.weightAnswers = {[](WeightQuestion& question) {
    EXPECT_EQ(question.variable, 2U);
    question.variable = 0;
  }};
  EXPECT_TRUE(Dialog().Press(1002));
  EXPECT_EQ(sheet.WeightVariable(), std::nullopt);
  EXPECT_FALSE(document.AreResultsLocked());
}

TEST_F(StartupDialogs, DialogIsDisabledWhileDataAreOpenedAndCancelChangesNothing) {
  bool asked = false;
  userInterface.whenAsked = [&] {
    asked = true;
    EXPECT_FALSE(Dialog().Press(kControlOk));
    EXPECT_FALSE(Dialog().Select(1006, 2));
  };
  EXPECT_FALSE(Dialog().Press(1003)) << "cancelled";
  EXPECT_TRUE(asked);
  EXPECT_EQ(document.InputTable(), &sheet);
  userInterface.fileAnswers = {{"none.csv"}, {"other.csv"}};
  EXPECT_FALSE(Dialog().Press(1003));
  EXPECT_EQ(document.InputTable(), &sheet);
  EXPECT_EQ(Messages(), 1);
  EXPECT_TRUE(Dialog().Press(1003));
  EXPECT_EQ(document.InputTable(), &other);
  EXPECT_TRUE(Dialog().Select(1006, 1)) << "enabled again";
}

TEST_F(StartupDialogs, SimulationStartupRunsAndReturnsToTheStartup) {
  EXPECT_EQ(analysis->SimulationStartupDialog(), -1);
  EXPECT_EQ(Dialog().Template().number, 25977);
  EXPECT_TRUE(Dialog().Press(1180));
  EXPECT_EQ(analysis->CurrentStep(), step::kDesign);
  EXPECT_FALSE(analysis->CaseWeightsEnabled());
  EXPECT_TRUE(Dialog().Press(kControlCancel));
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup);
  EXPECT_EQ(analysis->SimulationStartupDialog(), -1);
  EXPECT_TRUE(Dialog().Press(kControlOk));
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationFromStartup);
  EXPECT_TRUE(analysis->CaseWeightsEnabled());
  EXPECT_TRUE(Dialog().Press(kControlCancel));
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup);
  EXPECT_EQ(Dialog().Controls().Selection(1006), 1) << "the last task";
}

TEST_F(StartupDialogs, SimulationStartupIsReachedByAFrontEnd) {
  const auto automation = [this] { return analysis->GetDialgInterface(); };
  ASSERT_EQ(automation()->Call("SimulationStartup").ToInteger(), 1);
  EXPECT_EQ(automation()->InterfaceName(), "SRASimulation");
  ASSERT_EQ(automation()->Call("OK").ToInteger(), 1);
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationFromStartup);
  automation()->Call("Cancel");
  EXPECT_EQ(automation()->InterfaceName(), "SRAStartup");
  EXPECT_TRUE(Dialog().Press(kSimulationStartup)) << "by its button";
  EXPECT_EQ(Dialog().Template().number, 25977);
}

TEST_F(StartupDialogs, AutoProfilerTakesZeroAndOneAlone) {
  analysis->GetDialgInterface()->Put("TypeOfAnalysis", 3);
  for (const int state : {5, 2, -1})
    EXPECT_THROW(analysis->GetDialgInterface()->Put("AutoProfiler", state), Error) << state;
  EXPECT_FALSE(analysis->AutoProfiler());
  analysis->GetDialgInterface()->Put("AutoProfiler", 1);
  EXPECT_TRUE(analysis->AutoProfiler());
}

TEST_F(StartupDialogs, AutoProfilerIsRefusedInWordsWhereItDoesNothing) {
  analysis->GetDialgInterface()->Put("TypeOfAnalysis", 0);
  try {
    analysis->GetDialgInterface()->Put("AutoProfiler", 1);
    ADD_FAILURE() << "taken";
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "AutoProfiler is about the profiler: select it first, by TypeOfAnalysis");
  }
  EXPECT_FALSE(analysis->AutoProfiler());
}

}  // namespace
}  // namespace brenvolt::sra
