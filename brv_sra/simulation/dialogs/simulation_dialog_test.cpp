#include "brv_sra/simulation/dialogs/simulation_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/tables/csv.h"
#include "host/tables/numpy_archive.h"

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
    return std::make_shared<CAnalysisTableDoc>(*MakeMatrixFile(file));
  }
  void PutMatrix(const std::shared_ptr<CAnalysisTableDoc>& matrix) {
    Dialog().Put("CorrelationMatrix", Variant::Object(matrix));
  }
  // The messages since the last call.
  std::vector<std::string> Said() { return userInterface.TakeTexts(); }
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

TEST_F(SimulationDialog, UnsuitableMatrixIsRefusedWithAReason) {
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

TEST_F(SimulationDialog, RepairIsReportedAndItsMatrixShown) {
  Dialog().Put("ImanConoverMethod", true);
  PutMatrix(Matrix({"Var1", "Var2", "Var3", "other"}, -0.9));
  ASSERT_EQ(Ok(), 1);
  ASSERT_EQ(userInterface.messages.size(), 1U);
  EXPECT_EQ(userInterface.messages[0].text,
            "The correlation matrix is not positive definite and was repaired.");
  EXPECT_TRUE(
      userInterface.messages[0].where.starts_with("smallest eigenvalue -0.8, largest change 0.4, Var"))
      << userInterface.messages[0].where;
  ASSERT_EQ(userInterface.documents.size(), 2U);
  const Result<MatrixFile> repaired = ReadMatrixFile(userInterface.documents[1]->Table());
  ASSERT_TRUE(repaired);
  EXPECT_NEAR(repaired->correlations[2][0], -0.5, 1e-12);
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

TEST_F(SimulationDialog, FailedUpdateLeavesTheOldOutput) {
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

TEST_F(SimulationDialog, FileTakesTheSamplesOfTheSheetAndMoreThanASheetMayHold) {
  const TemporaryFolder folder;
  for (const char* method : {"MonteCarloMethod", "LHSMethod"}) {
    Dialog().Put(method, true);
    Dialog().Put("NumberOfSamples", 500);
    const Variant output = Dialog().Get("SimulationResults");
    const auto& sheet = std::dynamic_pointer_cast<CAnalysisTableDoc>(output.ToObject())->Table();
    WriteCsv(sheet, folder / "sheet.csv");
    WriteNumpyArchive(sheet, folder / "sheet.npz");
    for (const std::string ending : {".csv", ".npz"}) {
      const Variant path = (folder / ("pieces" + ending)).string();
      Dialog().Get("SimulationFile", {&path, 1});
      EXPECT_EQ(BytesOf(folder / ("pieces" + ending)), BytesOf(folder / ("sheet" + ending)));
    }
  }
  const Variant nowhere = "";
  Dialog().Put("NumberOfSamples", 90'000'000);
  EXPECT_THROW(Dialog().Get("SimulationResults"), AutomationError) << "beyond the limit of a sheet";
  userInterface.pollInterval = std::chrono::milliseconds(0);
  userInterface.cancelled = true;
  Said();
  EXPECT_THROW(Dialog().Get("SimulationFile", {&nowhere, 1}), AutomationError);
  EXPECT_EQ(Said(), std::vector<std::string>{}) << "it was under way when it was cancelled";
}

TEST_F(SimulationDialog, FileIsRefusedWhereItCannotBe) {
  const TemporaryFolder folder;
  const Variant path = (folder / "out.csv").string();
  const Variant full = "/dev/full";
  Dialog().Put("NumberOfSamples", 100'000);
  EXPECT_THROW(Dialog().Get("SimulationFile", {&full, 1}), AutomationError);
  Dialog().Put("NumberOfSamples", 0);
  EXPECT_THROW(Dialog().Get("SimulationFile", {&path, 1}), AutomationError);
  Dialog().Put("NumberOfSamples", 10);
  Dialog().Put("ImanConoverMethod", true);
  EXPECT_THROW(Dialog().Get("SimulationFile", {&path, 1}), AutomationError);
  Dialog().Put("NORTAMethod", true);
  EXPECT_EQ(Dialog().Get("SimulationFile", {&path, 1}).ToObject(), nullptr);
  EXPECT_TRUE(folder.Names().empty());
}

// Cancels at the first look, at the second, … until a run goes through.
TEST_F(SimulationDialog, CancelAtAnyMomentLeavesEverythingAsItWas) {
  const TemporaryFolder folder;
  userInterface.pollInterval = std::chrono::milliseconds(0);
  Dialog().Put("NumberOfSamples", 30'000);
  Dialog().Put("TruncateSimulationData", true);
  Dialog().Put("IsAutoUpdateSameSheet", true);
  PutMatrix(Matrix({"Var1", "Var2", "Var3"}, 0.5));
  const std::size_t blocks = OutstandingAnalysisBlocks();
  struct Case {
    const char* method;
    std::string file;
  };
  const Case cases[] = {{"MonteCarloMethod", ""},      {"LHSMethod", ""},
                        {"ImanConoverMethod", ""},     {"LHSwithImanMethod", ""},
                        {"MonteCarloMethod", "a.csv"}, {"LHSMethod", "b.csv"},
                        {"MonteCarloMethod", "c.npz"}, {"LHSMethod", "d.npz"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.method + (" " + c.file));
    Dialog().Put(c.method, true);
    const auto former = analysis->Simulation().output;
    const Variant path = (folder / c.file).string();
    int cancelled = 0;
    for (;; ++cancelled) {
      userInterface.looksBeforeCancel = cancelled;
      try {
        c.file.empty() ? Dialog().Get("SimulationResults") : Dialog().Get("SimulationFile", {&path, 1});
        break;
      } catch (const AutomationError& error) {
        ASSERT_EQ(error.Reason(), "nothing was simulated");
      }
      ASSERT_EQ(Said(), std::vector<std::string>{});
      ASSERT_EQ(analysis->Simulation().output, former);
      ASSERT_EQ(analysis->CurrentStep(), step::kSimulationFromStartup);
      ASSERT_FALSE(std::filesystem::exists(folder / c.file) && !c.file.empty());
      ASSERT_EQ(OutstandingAnalysisBlocks(), blocks);
    }
    EXPECT_GT(cancelled, 1);
  }
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.csv", "b.csv", "c.npz", "d.npz"}));
}

// A variable that takes no part is drawn as little as one that is not selected.
TEST_F(SimulationDialog, ExcludedVariablesLeaveTheOthersAsTheyAreAlone) {
  sheet.VariableAt(1).SetProperty("zOrder", "Weibull;");
  sheet.VariableAt(1).SetProperty("Weibull", "(Scale=3.0; Shape=2.0; Offset=0)");
  for (const char* method : {"MonteCarloMethod", "LHSwithImanMethod"}) {
    std::vector<std::string> texts;
    for (const bool excludes : {true, false}) {
      Dialog().Put("Variables", excludes ? "1-3" : "1 3");
      if (excludes) Dialog().Put("ExcludedVariables", 2);
      Dialog().Put(method, true);
      PutMatrix(Matrix({"Var1", "Var3"}, 0.6));
      const auto output =
          std::dynamic_pointer_cast<CAnalysisTableDoc>(Dialog().Get("SimulationResults").ToObject());
      ASSERT_EQ(output->Table().VariableCount(), 2U);
      texts.push_back(CsvText(output->Table(), {}));
    }
    EXPECT_EQ(texts[0], texts[1]) << method;
  }
  EXPECT_EQ(Dialog().Get("ExcludedVariables").ToText(), "") << "it is not selected any more";
  EXPECT_THROW(Dialog().Put("ExcludedVariables", 2), Error);
  Dialog().Put("ExcludedVariables", "1 3");
  EXPECT_EQ(Ok(), 0) << "nothing is left";
}

TEST_F(SimulationDialog, FittedSourceTakesBoundsAway) {
  for (std::size_t v = 0; v < 3; ++v) sheet.VariableAt(v).SetProperty("zTruncProp", "(1; 0; 1; 0)");
  for (const bool fitted : {false, true}) {
    Dialog().Put("UseFittedDistributions", fitted);
    const auto output =
        std::dynamic_pointer_cast<CAnalysisTableDoc>(Dialog().Get("SimulationResults").ToObject());
    EXPECT_EQ(std::ranges::min(output->Table().VariableAt(0).Values()) < 1, fitted);
  }
}

// The matrix beside the input is followed, another one is chosen by name, by members and by controls.
TEST_F(SimulationDialog, MatrixIsFoundBesideTheInputAndChosen) {
  std::vector<std::string> asked;
  const auto find = [&](const Spreadsheet&, const std::string& name) -> std::unique_ptr<Spreadsheet> {
    asked.push_back(name);
    if (name == "faulty") return std::make_unique<Spreadsheet>("faulty", 3, 3);
    return std::make_unique<Spreadsheet>(Matrix({"Var1", "Var2", "Var3"}, name.empty() ? 0.2 : 0.8)->Table());
  };
  document.SetMatrixSource({[] { return std::vector<std::string>{"What if", "faulty"}; }, find});
  analysis->RunSequenceStep(step::kSimulation);
  Dialog().Put("ImanConoverMethod", true);
  const auto reached = [&] {
    EXPECT_EQ(Ok(), 1);
    const double used = analysis->Simulation().correlations->Used()[1];
    analysis->RunSequenceStep(step::kSimulation);
    return used;
  };
  EXPECT_EQ(reached(), 0.2);
  EXPECT_EQ(asked, std::vector<std::string>{""});
  Dialog().Put("CorrelationMatrixName", "What if");
  EXPECT_EQ(reached(), 0.8);
  const std::int32_t list = simulation_dialog::kMatrix;
  EXPECT_EQ(analysis->GetDialog()->Controls().Selection(list), 1) << "it is kept";
  EXPECT_TRUE(analysis->GetDialog()->Select(list, 2));
  EXPECT_EQ(Said(), std::vector<std::string>{kMatrixText});
  EXPECT_EQ(Dialog().Get("CorrelationMatrixName").ToText(), "What if") << "the faulty one is not taken";
  EXPECT_TRUE(analysis->GetDialog()->Select(list, 0));
  EXPECT_EQ(reached(), 0.2);
}

// A matrix sheet whose variables have distributions is all that a correlated simulation needs.
TEST_F(SimulationDialog, MatrixSheetAsInputIsItsOwnMatrix) {
  const auto matrix = Matrix({"Var1", "Var2", "Var3"}, 0.7);
  for (std::size_t v = 0; v < 3; ++v) {
    for (const auto& [key, value] : sheet.VariableAt(v).Properties())
      matrix->Table().VariableAt(v).SetProperty(key, value);
  }
  document.SetInputTable(&matrix->Table());
  Options().variables.clear();
  analysis->RunSequenceStep(step::kSimulation);
  Dialog().Put("LHSwithImanMethod", true);
  EXPECT_EQ(Ok(), 1);
  EXPECT_EQ(analysis->Simulation().correlations->Used()[1], 0.7);
}

// What can be wrong with a matrix says so, and nothing is simulated.
TEST_F(SimulationDialog, OddMatricesAreRefusedByNameAndPlace) {
  const auto changed = [](std::size_t row, std::size_t column, double value) {
    const auto matrix = Matrix({"Var1", "Var2", "Var3"}, 0.5);
    matrix->Table().VariableAt(column).MutableValues()[row] = value;
    return matrix;
  };
  const double missing = GetDefaultMDValue();
  const struct {
    const char* what;
    std::shared_ptr<CAnalysisTableDoc> matrix;
  } refused[] = {{"beyond 1", changed(1, 0, 1.01)},          {"below -1", changed(2, 1, -1.01)},
                 {"missing", changed(2, 0, missing)},        {"the diagonal", changed(1, 1, 0.9)},
                 {"a missing mean", changed(3, 2, missing)}, {"a missing deviation", changed(4, 0, missing)},
                 {"no valid case", changed(5, 0, 0)},        {"a covariance", changed(6, 0, 2)},
                 {"another type", changed(6, 0, 5)}};
  Dialog().Put("ImanConoverMethod", true);
  for (const auto& row : refused) {
    EXPECT_THROW(PutMatrix(row.matrix), Error) << row.what;
    EXPECT_TRUE(Dialog().Get("CorrelationMatrix").IsEmpty()) << row.what;
  }
  const struct {
    std::vector<std::string> names;
    double correlation;
    bool runs;
  } rows[] = {{{"Var3", "Var2", "Var1", "more"}, 0.5, true},
              {{"Var1", "Var2"}, 0.5, false},
              {{"Var1", "Var2", "Var3", "Var3"}, 0.5, false},
              {{"Var1", "Var2", "Var3"}, 1, true},
              {{"Var1", "Var2", "Var3"}, -0.9, true}};
  for (const auto& row : rows) {
    PutMatrix(Matrix(row.names, row.correlation));
    const std::size_t shown = userInterface.documents.size();
    EXPECT_EQ(Ok() == 1, row.runs) << row.names.size() << " " << row.correlation;
    EXPECT_EQ(userInterface.documents.size() > shown, row.runs);
    analysis->RunSequenceStep(step::kSimulation);
  }
}

}  // namespace
}  // namespace brenvolt::sra
