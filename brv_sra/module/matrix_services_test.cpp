// The correlation matrix file through the exported members of the analysis object.
#include <gtest/gtest.h>

#include <cmath>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/analysis/dialog_automation.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using Names = std::vector<std::string>;

constexpr std::string_view kQuestion =
    "The input is not a valid Brenvolt matrix file. Do you want to create one?";

// Notes in what state it was shown something.
struct Desk : HeadlessUserInterface {
  const CAnalysisSupport* analysis = nullptr;
  bool underAutomation = false;
  const CAnalysisDoc* document = nullptr;
  bool toWorkbook = true;
  const Spreadsheet* inputWhenShown = nullptr;
  bool takesTable = false;
  std::unique_ptr<Spreadsheet> taken;

  MessageAnswer ShowMessage(const Message& message) override {
    underAutomation = analysis->IsUnderAutomation();
    return HeadlessUserInterface::ShowMessage(message);
  }
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> shown) override {
    toWorkbook = document->ResultsToWorkbook();
    inputWhenShown = document->InputTable();
    if (takesTable) taken = shown->ReleaseTable();
    HeadlessUserInterface::ShowDocument(std::move(shown));
  }
};

struct MatrixServices : testing::Test {
  Desk userInterface;
  Spreadsheet data{"data", 5, 3};
  CAnalysisDoc document{userInterface, &data};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};
  std::unique_ptr<Spreadsheet> matrix = *MakeMatrixFile(MatrixFile::Identity({"x", "y"}));

  MatrixServices() {
    userInterface.document = &document;
    userInterface.analysis = analysis.get();
    for (std::size_t i = 0; i < 3; ++i) data.VariableAt(i).SetName(Names{"a", " b ", "c"}[i]);
    analysis->AttachDocument(&document);
  }
  void Choose(const std::vector<std::int16_t>& numbers) {
    userInterface.variableAnswers.emplace_back([numbers](VariableQuestion& q) { q.first = numbers; });
  }
  Names Messages() const {
    Names texts;
    for (const Message& message : userInterface.messages) texts.push_back(message.text);
    return texts;
  }
  const MatrixState& State() { return analysis->Matrix(); }
};

TEST_F(MatrixServices, CreatedFileValidatesAtOnce) {
  Choose({1, 2});
  EXPECT_NE(analysis->CreateAndAttachCorrelationInputFile(), 0);
  EXPECT_TRUE(Messages().empty());
  ASSERT_EQ(userInterface.documents.size(), 1U);
  EXPECT_EQ(document.InputTable(), &userInterface.documents[0]->Table());
  EXPECT_EQ(document.InputTable()->Title(), "Correlation matrix");
  EXPECT_TRUE(State().attached);
  EXPECT_EQ(State().numberOfVariables, 2);
  EXPECT_EQ(State().file.variables, (Names{"a", "b"}));
  EXPECT_EQ(State().file.correlations, (std::vector<std::vector<double>>{{1, 0}, {0, 1}}));
  EXPECT_EQ(State().file.means, (std::vector<double>{0, 0}));
  EXPECT_EQ(State().file.standardDeviations, (std::vector<double>{1, 1}));
  EXPECT_EQ(State().file.validCases, 1);
  EXPECT_EQ(analysis->IsCorrelationMatrixSymmetric(), 1);
}

TEST_F(MatrixServices, WorkbookOptionIsOffForThisOneDisplay) {
  for (const bool before : {true, false}) {
    document.SetResultsToWorkbook(before);
    Choose({3});
    analysis->CreateAndAttachCorrelationInputFile();
    EXPECT_FALSE(userInterface.toWorkbook);
    EXPECT_EQ(document.ResultsToWorkbook(), before);
  }
  EXPECT_FALSE(document.AreResultsLocked());
}

TEST_F(MatrixServices, InputOutlivesItsDocumentAndSurvivesBeingTakenOut) {
  Choose({1});
  ASSERT_NE(analysis->CreateAndAttachCorrelationInputFile(), 0);
  EXPECT_EQ(userInterface.inputWhenShown, &data) << "attached after it was shown";
  userInterface.documents.clear();
  EXPECT_NE(analysis->ValidateInputMatrixFile(), 0);
  document.SetInputTable(&data);
  userInterface.takesTable = true;
  Choose({2});
  EXPECT_NE(analysis->CreateAndAttachCorrelationInputFile(), 0);
  EXPECT_EQ(document.InputTable(), userInterface.taken.get());
}

TEST_F(MatrixServices, NothingIsMadeWithoutVariables) {
  EXPECT_EQ(analysis->CreateAndAttachCorrelationInputFile(), 0) << "cancelled";
  Choose({});
  EXPECT_EQ(analysis->CreateAndAttachCorrelationInputFile(), 0);
  Choose({0, 4, -1});
  EXPECT_EQ(analysis->CreateAndAttachCorrelationInputFile(), 0) << "numbers that the input does not have";
  document.SetInputTable(nullptr);
  EXPECT_EQ(analysis->CreateAndAttachCorrelationInputFile(), 0);
  EXPECT_TRUE(userInterface.documents.empty());
  EXPECT_EQ(CSimulationAndRisk(nullptr).ValidateOrDesignInputMatrixFile(), 0);
}

TEST_F(MatrixServices, InvalidInputLeadsToTheQuestion) {
  userInterface.messageAnswers = {MessageAnswer::kCancel};
  EXPECT_EQ(analysis->ValidateOrDesignInputMatrixFile(), 0);
  ASSERT_EQ(userInterface.messages.size(), 1U);
  EXPECT_EQ(userInterface.messages[0].text, kQuestion);
  EXPECT_EQ(userInterface.messages[0].buttons, MessageButtons::kOkCancel);
  EXPECT_EQ(userInterface.messages[0].icon, MessageIcon::kInformation);
  EXPECT_TRUE(userInterface.documents.empty());
  Choose({1, 3});
  EXPECT_NE(analysis->ValidateOrDesignInputMatrixFile(), 0);
  EXPECT_EQ(State().file.variables, (Names{"a", "c"}));
}

TEST_F(MatrixServices, FaultOfTheMatrixIsShownOnceBeforeTheQuestion) {
  document.SetInputTable(matrix.get());
  ASSERT_NE(analysis->ValidateInputMatrixFile(), 0);
  matrix->VariableAt(1).MutableValues()[2] = std::nan("");
  userInterface.messageAnswers = {MessageAnswer::kOk, MessageAnswer::kCancel};
  EXPECT_EQ(analysis->ValidateOrDesignInputMatrixFile(), 0);
  EXPECT_EQ(Messages(), (Names{"Mean error", std::string(kQuestion)}));
  EXPECT_FALSE(State().attached);
  EXPECT_TRUE(State().file.correlations.empty()) << "values of the former validation";
  EXPECT_EQ(analysis->IsCorrelationMatrixSymmetric(), 0);
}

TEST_F(MatrixServices, ValidInputGivesItsNamesAndNoQuestion) {
  matrix->VariableAt(0).SetName(" x ");
  matrix->VariableAt(0).MutableValues()[0] = 0.99999999999999989;
  document.SetInputTable(matrix.get());
  EXPECT_EQ(analysis->ValidateOrDesignInputMatrixFile(), 1);
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(State().variables, (Names{"x", "y"}));
  EXPECT_TRUE(State().attached);
  EXPECT_FALSE(State().symmetric) << "the diagonal is not exactly 1; the file is valid all the same";
}

TEST_F(MatrixServices, UnderAutomationNothingIsAsked) {
  const CAnalysisSupport::AutomationCall call(*analysis);
  EXPECT_EQ(analysis->ValidateOrDesignInputMatrixFile(), 0);
  EXPECT_EQ(analysis->CreateAndAttachCorrelationInputFile(), 0) << "no names of variables are known";
  EXPECT_TRUE(Messages().empty());
  EXPECT_NE(analysis->UpdateFromInputSpreadsheet(), 0);
  EXPECT_NE(analysis->CreateAndAttachCorrelationInputFile(), 0);
  EXPECT_EQ(State().file.variables, (Names{"a", "b", "c"}));
}

// Lists in their order; a variable of several lists counts once.
TEST_F(MatrixServices, SelectedListsGiveTheNames) {
  analysis->Fit().specification.continuous = {3};
  analysis->Fit().specification.discrete = {1, 0, 9};
  analysis->Simulation().options.variables = {2, 3};
  EXPECT_EQ(analysis->UpdateFromInputSpreadsheet(), 1);
  EXPECT_EQ(State().variables, (Names{"c", "a", "b"}));
  EXPECT_EQ(State().numberOfVariables, 3);
  analysis->Simulation().options.variables.clear();
  EXPECT_EQ(analysis->UpdateFromInputSpreadsheet(), 1);
  EXPECT_EQ(State().variables, (Names{"c", "a"}));
  EXPECT_EQ(analysis->UpdateFromInputMatrixFile(), 1);
  EXPECT_EQ(State().variables, (Names{"a", "b", "c"})) << "a matrix file is read as a whole";
}

TEST_F(MatrixServices, OnlyCallsOfAutomationCountAsAutomation) {
  ASSERT_TRUE(analysis->RunSequenceStep(step::kInit));
  analysis->GetDialgInterface()->Put("TypeOfAnalysis", 2);
  analysis->GetDialgInterface()->Call("OK");
  ASSERT_EQ(analysis->CurrentStep(), step::kDesign);
  const auto dialog = analysis->GetDialgInterface();
  dialog->Call("OK");  // nothing has a distribution: OK reports that
  EXPECT_EQ(userInterface.messages.size(), 1U);
  EXPECT_TRUE(userInterface.underAutomation);
  EXPECT_THROW(dialog->Put("UserDefinedDesignMatrixVariableNames", 99), Error);
  EXPECT_FALSE(analysis->IsUnderAutomation()) << "after a call that failed";
  analysis->GetDialog()->Press(kControlOk);
  EXPECT_EQ(userInterface.messages.size(), 2U);
  EXPECT_FALSE(userInterface.underAutomation) << "the person pressed the button";
}

TEST_F(MatrixServices, SelectionAndCancellationReachTheReading) {
  document.SetInputTable(matrix.get());
  matrix->SetSelection({true, "none", std::vector<std::uint8_t>(matrix->CaseCount(), 0)});
  EXPECT_EQ(analysis->ValidateInputMatrixFile(), 0);
  EXPECT_EQ(Messages(), (Names{"Case selection condition disabled variables' mean information"}));
  userInterface.cancelled = true;
  EXPECT_EQ(analysis->ValidateInputMatrixFile(), 0);
  EXPECT_EQ(userInterface.messages.back().text, "User cancelled the progress while reading mean.");
}

TEST_F(MatrixServices, HostAcceptsMatrixSheetsOnly) {
  EXPECT_FALSE(analysis->MatrixIsOK());
  document.SetInputTable(matrix.get());
  EXPECT_TRUE(analysis->MatrixIsOK());
  document.SetInputTable(nullptr);
  EXPECT_FALSE(analysis->MatrixIsOK());
  EXPECT_EQ(analysis->UpdateFromInputMatrixFile(), 0);
}

}  // namespace
}  // namespace brenvolt::sra
