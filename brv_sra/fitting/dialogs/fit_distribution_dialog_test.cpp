// The fit specification as a person and as automation drive it: what is checked when, what each message
// means, and what is remembered per variable.
#include "brv_sra/fitting/dialogs/fit_distribution_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/dialogs/fit_support_dialog_test.h"
#include "brv_sra/fitting/dialogs/fit_variable_inputs_dialog.h"
#include "brv_sra/fitting/estimation.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace fit_dialog;
using enum DistributionCode;

constexpr const char* kMixturesText =
    "Invalid number of mixtures for one or more variable(s). Please note that the value cannot be less than "
    "2 "
    "or greater than half the number (with the maximum of 20) of valid cases of a selected variable. Mixture "
    "value reverted to the highest default value.";
constexpr const char* kTrialsText =
    "Invalid number of trials for currently selected discrete variable. Please check the discrete variables "
    "tab to change the number of trials.";
constexpr const char* kNoDistributionText =
    "Please check to ensure at least one distribution is selected for each variable selected.";

TEST_F(FitDialog, OkChecksInItsOrderAndStaysOpen) {
  EXPECT_FALSE(Ok());
  EXPECT_EQ(Said(), std::vector<std::string>{}) << "no variables: the selection opens, and is cancelled here";
  Answer({1, 2}, {3});
  EXPECT_FALSE(Ok()) << "the selection is a step of its own";
  ASSERT_EQ(Specification().continuous, (Numbers{1, 2}));
  // Everything is wrong at once; each step puts one thing right.
  Automation().Put("IsNormalDistribution", 2, false);
  Dialog().Press(kContinuousClearAll);
  Dialog().Check(kJohnsonPercentile, true);
  Dialog().Press(kContinuousPrevious);
  Dialog().Check(CheckOf(kRayleigh), true);
  Dialog().Enter(FieldOf(kRayleigh), " ");
  Dialog().Check(CheckOf(kGaussianMixture), true);
  Dialog().Enter(kMixtures, "many");
  Dialog().Check(kUseTrials, true);
  Dialog().Enter(kTrials, "0");
  const auto expectNext = [&](const char* message) {
    EXPECT_FALSE(Ok());
    EXPECT_EQ(Said(), std::vector<std::string>{message});
    EXPECT_EQ(analysis->CurrentStep(), step::kFit);
  };
  expectNext(kOffsetsText);
  Dialog().Enter(FieldOf(kRayleigh), "0.5");
  expectNext(kMixturesText);
  EXPECT_EQ(Text(kMixtures), "15") << "reverted to half the valid cases";
  Dialog().Check(CheckOf(kGaussianMixture), false);
  expectNext(kTrialsText);
  Dialog().Enter(kTrials, "12");
  expectNext(kNoDistributionText);
  Automation().Put("IsTriangularDistribution", 2, true);
  Automation().Put("IsNormalDistribution", 2, true);
  Dialog().Press(kDiscreteClearAll);
  expectNext(kNoDistributionText);
  Dialog().Check(CheckOf(kPoisson), true);
  EXPECT_TRUE(Ok());
  EXPECT_EQ(Said(), std::vector<std::string>{});
  EXPECT_EQ(analysis->CurrentStep(), step::kFitResults);
  EXPECT_EQ(analysis->Fit().committed.discreteSpecifications[0].trials, 12);
  EXPECT_EQ(userInterface.progressCaptions, (std::vector<std::string>{"Processing continuous variables...",
                                                                      "Processing discrete variables..."}));
}

TEST(FitInputs, FieldIsWrongOnlyWhereItIsNeededOrUnreadable) {
  struct Row {
    std::int32_t field;
    const char* text;
    std::vector<std::int32_t> checks;
    std::int32_t message;
  };
  const Row rows[] = {
      {FieldOf(kLogNormal), "", {}, 0},
      {FieldOf(kLogNormal), "", {CheckOf(kWeibull)}, kMsgInvalidOffsets},  // its own field is empty as well
      {FieldOf(kLogNormal), "", {CheckOf(kLogNormal)}, kMsgInvalidOffsets},
      {FieldOf(kLogNormal), "-444", {CheckOf(kLogNormal)}, kMsgInvalidOffsets},
      {FieldOf(kLogNormal), "-444", {}, 0},
      {FieldOf(kLogNormal), "-443.9", {CheckOf(kLogNormal)}, 0},
      {FieldOf(kLogNormal), "1e999", {}, 0},
      {FieldOf(kWeibull), "x", {CheckOf(kLogNormal)}, kMsgInvalidOffsets},  // its own field is empty
      {FieldOf(kLogNormal), "x", {CheckOf(kLogNormal)}, kMsgInvalidOffsets},
      {FieldOf(kLogNormal), "nan", {CheckOf(kLogNormal)}, kMsgInvalidOffsets},
      {FieldOf(kFoldedNormal), "x", {CheckOf(kFoldedNormal)}, kMsgInvalidOffsets},
      {FieldOf(kHalfNormal), "", {CheckOf(kHalfNormal)}, kMsgInvalidOffsets},
      {FieldOf(kRayleigh), "", {CheckOf(kRayleigh)}, kMsgInvalidOffsets},
      {FieldOf(kGeneralPareto), "", {CheckOf(kGeneralPareto)}, kMsgInvalidOffsets},
      {FieldOf(kGeneralPareto), " 2 ", {CheckOf(kGeneralPareto)}, 0},
      {kMixtures, "", {CheckOf(kGaussianMixture)}, kMsgInvalidMixtureCountReverted},
      {kMixtures, "2.5", {}, 0},
      {kMixtures, "2.5", {CheckOf(kGaussianMixture)}, kMsgInvalidMixtureCountReverted},
      {kMixtures, "1", {CheckOf(kGaussianMixture)}, 0},  // the bounds are the run's
      {kMixtures,
       "",
       {CheckOf(kNormal), CheckOf(kJohnson), kJohnsonPercentile, CheckOf(kGeneralExtremeValue),
        CheckOf(kTriangular)},
       0},
      {kTrials, "", {CheckOf(kBinomial)}, 0},
      {kTrials, "", {kUseTrials}, 0},
      {kTrials, "", {CheckOf(kBinomial), kUseTrials}, kMsgInvalidTrialsOfVariable},
      {kTrials, "0", {}, kMsgInvalidTrialsOfVariable},
      {kTrials, "-3", {CheckOf(kBinomial), kUseTrials}, kMsgInvalidTrialsOfVariable},
      {kTrials, "1.5", {CheckOf(kBinomial), kUseTrials}, kMsgInvalidTrialsOfVariable},
      {kTrials, "2147483648", {CheckOf(kBinomial), kUseTrials}, kMsgInvalidTrialsOfVariable},
      {kTrials, "1", {CheckOf(kBinomial), kUseTrials}, 0},
  };
  for (const Row& row : rows) {
    ControlSet controls(FitDistributionTemplate());
    controls.SetText(row.field, row.text);
    for (const std::int32_t check : row.checks) controls.SetChecked(check, true);
    ContinuousSpecification continuous;
    continuous.mixtures = 5;
    DiscreteSpecification discrete;
    discrete.trials = 5;
    const std::int32_t read = ReadInputs(controls, continuous);
    EXPECT_EQ(read != 0 ? read : ReadInputs(controls, discrete), row.message)
        << row.field << " \"" << row.text << "\"";
    // What is wrong leaves its tab's numbers as they were; the checks are taken.
    const auto checked = std::ranges::find(row.checks, CheckOf(kLogNormal)) != row.checks.end();
    EXPECT_EQ(continuous.fit[1], checked) << row.field;
    const bool trialsWrong = row.message == kMsgInvalidTrialsOfVariable;
    EXPECT_EQ(discrete.trials == 5, row.message != 0) << row.field << " \"" << row.text << "\"";
    EXPECT_EQ(continuous.mixtures == 5, row.message != 0 && !trialsWrong) << row.field;
  }
}

TEST(FitInputs, MixturesFollowTheRunOnlyWhereItFittedOthers) {
  std::vector<VariableFit> results(4);  // the last is a discrete variable
  std::vector<ContinuousSpecification> specifications(3);
  specifications[0].mixtures = 30;
  specifications[1].mixtures = 3;
  results[0].mixtures = 20;
  results[1].mixtures = 3;
  results[3].mixtures = 7;
  results[0].name = "a";
  results[1].name = "b";
  EXPECT_EQ(TakeOverMixtures(results, specifications), "a: 20; b: 3") << "also where the number stays";
  EXPECT_EQ(specifications[0].mixtures, 20);
  EXPECT_EQ(specifications[1].mixtures, 3);
  EXPECT_EQ(specifications[2].mixtures, kNotSetCount);
  results[0].mixtures = results[1].mixtures = kNotSetCount;
  EXPECT_EQ(TakeOverMixtures(results, specifications), "") << "nothing is left to say";
}

TEST_F(FitDialog, EachVariableKeepsItsInputsUntilItsListChanges) {
  Answer({1, 2}, {3, 4});
  Dialog().Press(kVariables);
  Dialog().Check(CheckOf(kLogNormal), true);
  EXPECT_EQ(Text(FieldOf(kLogNormal)), "0") << "the usual offset comes with the check";
  Dialog().Enter(FieldOf(kLogNormal), "0.25");
  Dialog().Check(CheckOf(kGaussianMixture), true);
  EXPECT_EQ(Text(kMixtures), "2");
  Dialog().Enter(kTrials, "20");
  EXPECT_TRUE(Dialog().Press(kContinuousNext));
  EXPECT_TRUE(Dialog().Press(kDiscreteNext));
  EXPECT_FALSE(Checked(CheckOf(kLogNormal)));
  EXPECT_EQ(Text(FieldOf(kLogNormal)) + Text(kMixtures) + Text(kTrials), "");
  EXPECT_FALSE(Dialog().Press(kContinuousNext)) << "there is no third";
  EXPECT_FALSE(Dialog().Press(kDiscreteNext));
  Dialog().Check(CheckOf(kRayleigh), true);
  Dialog().Enter(FieldOf(kRayleigh), "?");
  EXPECT_FALSE(Dialog().Press(kContinuousPrevious));
  Dialog().Select(kContinuousVariable, 0);
  EXPECT_EQ(Said(), (std::vector<std::string>{kOffsetsText, kOffsetsText}));
  EXPECT_EQ(Dialog().Controls().Selection(kContinuousVariable), 1) << "wrong inputs stay in sight";
  Dialog().Enter(kTrials, "-1");
  Dialog().Select(kDiscreteVariable, 0);
  EXPECT_EQ(Said(), std::vector<std::string>{kTrialsText});
  EXPECT_EQ(Dialog().Controls().Selection(kDiscreteVariable), 1);
  Dialog().Enter(kTrials, "");
  Dialog().Enter(FieldOf(kRayleigh), "1");
  Dialog().Select(kContinuousVariable, 0);
  EXPECT_EQ(Text(FieldOf(kLogNormal)), "0.25");
  EXPECT_TRUE(Checked(CheckOf(kLogNormal)));

  Dialog().Press(kVariables);  // cancelled
  EXPECT_EQ(Text(FieldOf(kLogNormal)), "0.25");
  Answer({1, 2}, {4});
  Dialog().Press(kVariables);
  EXPECT_EQ(Text(FieldOf(kLogNormal)), "0.25") << "the other list changed";
  EXPECT_EQ(Specification().discreteSpecifications[0], NewDiscreteSpecification());
  Dialog().Enter(kTrials, "20");
  Answer({2, 1}, {4});
  Dialog().Press(kVariables);
  EXPECT_EQ(Text(kTrials), "20") << "the other list changed";
  const ContinuousSpecification fresh = NewContinuousSpecification();
  EXPECT_EQ(Specification().continuousSpecifications, (std::vector<ContinuousSpecification>{fresh, fresh}));
  EXPECT_EQ(fresh.offsets[0], kNotSet);
  EXPECT_EQ(fresh.mixtures, kNotSetCount);
  EXPECT_EQ(Said(), std::vector<std::string>{});
}

TEST_F(FitDialog, ButtonsUnderTheChecksActOnAllOfTheShownVariable) {
  Automation().Put("Variables", "1-2 | 3-4");
  const auto before = Specification();
  Dialog().Press(kContinuousToggle);
  Dialog().Press(kDiscreteClearAll);
  for (const std::int32_t check : ContinuousChecks()) {
    const bool wasOff = check != CheckOf(kNormal) && check != CheckOf(kJohnson) &&
                        check != CheckOf(kGeneralExtremeValue) && check != CheckOf(kTriangular);
    EXPECT_EQ(Checked(check), wasOff) << check;
  }
  for (const std::int32_t check : DiscreteChecks()) EXPECT_FALSE(Checked(check));
  Dialog().Press(kContinuousSelectAll);
  Dialog().Press(kDiscreteToggle);
  for (const std::int32_t check : ContinuousChecks()) EXPECT_TRUE(Checked(check));
  for (const std::int32_t check : DiscreteChecks()) EXPECT_TRUE(Checked(check));
  EXPECT_TRUE(Dialog().Press(kContinuousNext)) << "all inputs that became needed are there";
  for (const DistributionCode code : FittedContinuous()) {
    EXPECT_EQ(Specification().continuousSpecifications[0].offsets[PlaceInKind(code)],
              HasOffset(code) ? 0.0 : kNotSet);
  }
  EXPECT_EQ(Specification().continuousSpecifications[0].mixtures, 2);
  EXPECT_EQ(Specification().continuousSpecifications[1], before.continuousSpecifications[1]);
}

TEST_F(FitDialog, SelectionRefusesTextVariablesAndAnEmptyChoice) {
  sheet.VariableAt(2).SetType(VariableType::kText);
  sheet.VariableAt(4).SetType(VariableType::kText);
  sheet.VariableAt(4).SetName("  shop\nfloor ");
  Automation().Put("Variables", "1 | 4");
  userInterface.variableAnswers = {
      [](VariableQuestion& question) {
        EXPECT_EQ(question.caption, "Select variables for the analysis");
        EXPECT_EQ(question.names[4], "shop floor");
        question.first = {1, 3};
        question.second = {5};
      },
      [](VariableQuestion& question) { EXPECT_TRUE(question.first.empty() && question.second.empty()); },
      [](VariableQuestion& question) {
        EXPECT_EQ(question.first, Numbers{1});
        EXPECT_EQ(question.second, Numbers{4});
        question.first = {2};
        question.second = {};
      }};
  EXPECT_TRUE(Dialog().Press(kVariables));
  EXPECT_EQ(Said(),
            (std::vector<std::string>{"One or more text variables selected. To proceed, please remove these "
                                      "variable(s): Var3 shop floor.",
                                      "Too few variables selected. Select at least one variable from one of "
                                      "the two variable lists to continue."}));
  EXPECT_EQ(Text(kContinuousList), "2");
  EXPECT_EQ(Text(kDiscreteList), "none");
  EXPECT_FALSE(Dialog().Check(CheckOf(kPoisson), false)) << "there is no discrete variable to act on";
}

TEST_F(FitDialog, RunThatFailsSaysWhyAndLeavesTheSpecification) {
  const auto constant = [this](std::size_t variable) {
    for (double& value : sheet.VariableAt(variable).MutableValues()) value = 3;
  };
  struct Row {
    const char* message;
    std::function<void()> arrange;
  };
  const Row rows[] = {
      {"One or more invalid distribution offset (threshold/location) values found. Please check the input "
       "offset values.",
       [this] {
         Specification().continuousSpecifications[1].fit[1] = true;  // of the variable that is not shown
       }},
      {"Case weights should be integer. Please check and enter a valid case weight variable.",
       [this] {
         sheet.VariableAt(4).MutableValues()[0] = 2.5;
         sheet.SetWeightVariable(4);
       }},
      {"Too large dataset. Please consider to input a smaller dataset.",
       [this] {
         // More than 250 MiB, were they read: 32767 times 1001 values.
         sheet.AddCases(1001 - kCases);
         Specification().continuous.assign(32767, 1);
         Specification().continuousSpecifications.assign(32767, NewContinuousSpecification());
       }},
      {"No valid variables to proceed with the analysis",
       [&] {
         constant(0);
         constant(1);
       }},
      {"None of the variables selected has valid distributions to fit and hence invalid.  Please check to "
       "have "
       "a different variable selection with valid distributions.",
       [&] {
         constant(0);
         constant(1);
         Dialog().Check(kCasewise, true);
       }},
  };
  const Spreadsheet original = sheet;
  for (const Row& row : rows) {
    sheet = original;
    Specification() = {};
    Dialog().Check(kPairwise, true);
    Automation().Put("ContinuousVariable", "1-2");
    row.arrange();
    const FitSpecification before = Specification();
    EXPECT_FALSE(Ok()) << row.message;
    EXPECT_EQ(Said(), std::vector<std::string>{row.message});
    EXPECT_EQ(analysis->CurrentStep(), step::kFit);
    EXPECT_EQ(Specification().continuousSpecifications, before.continuousSpecifications);
  }
}

// The message about mixtures would be lost with the results.
TEST_F(FitDialog, MixturesOfARunWithoutValidVariablesAreReportedAndShown) {
  for (double& value : sheet.VariableAt(0).MutableValues()) value = 3;
  Automation().Put("ContinuousVariable", "1");
  Dialog().Check(CheckOf(kGaussianMixture), true);
  Dialog().Enter(kMixtures, "19");
  EXPECT_FALSE(Ok());
  ASSERT_EQ(userInterface.messages.size(), 2U);
  EXPECT_EQ(userInterface.messages[0].text, kMixturesText);
  EXPECT_EQ(userInterface.messages[0].where, "Var1: 15");
  EXPECT_EQ(userInterface.messages[1].text, "No valid variables to proceed with the analysis");
  EXPECT_EQ(userInterface.messages[1].where, "Var1: all values equal");
  EXPECT_EQ(Text(kMixtures), "15");
}

TEST_F(FitDialog, VariablesCanBeChosenWhateverTheInputsHold) {
  Automation().Put("Variables", "1 | 3");
  Dialog().Check(CheckOf(kWeibull), true);
  Dialog().Enter(FieldOf(kWeibull), "?");
  Dialog().Enter(kTrials, "-1");
  Answer({1}, {3, 4});
  EXPECT_TRUE(Dialog().Press(kVariables));
  EXPECT_EQ(Text(FieldOf(kWeibull)), "?") << "the list did not change";
  EXPECT_TRUE(Checked(CheckOf(kWeibull)));
  EXPECT_EQ(Text(kTrials), "") << "a new list";
  Answer({2}, {3, 4});
  EXPECT_TRUE(Dialog().Press(kVariables));
  EXPECT_EQ(Text(FieldOf(kWeibull)), "");
  EXPECT_EQ(Said(), std::vector<std::string>{});
}

TEST_F(FitDialog, InputThatChangedUnderTheDialogIsNoticedAtOk) {
  Automation().Put("Variables", "1-2 | 3");
  sheet.VariableAt(1).SetType(VariableType::kText);
  EXPECT_FALSE(Ok());
  EXPECT_EQ(Said(), std::vector<std::string>{"One or more text variables selected. To proceed, please remove "
                                             "these variable(s): Var2."});
  Spreadsheet narrow("narrow", kCases, 1);
  document.SetInputTable(&narrow);
  EXPECT_FALSE(Ok()) << "the variables are no longer there: the selection opens, and is cancelled here";
  EXPECT_EQ(Text(kContinuousList), "none");
}

TEST_F(FitDialog, StateTellsTheCasesAndShowsAVariableOfItsOwn) {
  Automation().Put("ContinuousVariable", "1");
  sheet.SetSelection({true, "", std::vector<std::uint8_t>(kCases, 1)});
  EXPECT_TRUE(Ok());
  EXPECT_EQ(analysis->Fit().cases.input, 30);
  EXPECT_EQ(analysis->Fit().cases.accepted, 30);
  EXPECT_FALSE(analysis->Fit().cases.weighted);
  Dialog().Press(kControlCancel);
  analysis->Fit().firstShown = 7;
  for (double& value : sheet.VariableAt(0).MutableValues()) value = 3;
  Dialog().Check(kCasewise, true);
  EXPECT_FALSE(Ok());
  EXPECT_EQ(analysis->Fit().firstShown, 0U) << "there is one variable";
}

TEST(FitDialogRun, AnyExceptionEndsTheRunWithItsText) {
  struct BrokenInterface : HeadlessUserInterface {
    void ShowProgress(std::string_view, std::int64_t, std::int64_t) override {
      throw std::runtime_error("the bar broke");
    }
  } userInterface;
  Spreadsheet sheet("data", 3, 1);
  CAnalysisDoc document{userInterface, &sheet};
  const std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};
  analysis->AttachDocument(&document);
  analysis->RunSequenceStep(step::kStartup);
  analysis->GetDialog()->Press(define_task::kFitDistribution);
  analysis->GetDialgInterface()->Put("ContinuousVariable", "1");
  EXPECT_FALSE(analysis->GetDialog()->Press(kControlOk));
  ASSERT_EQ(userInterface.messages.size(), 1U);
  EXPECT_EQ(userInterface.messages[0].text, "the bar broke");
  EXPECT_EQ(analysis->CurrentStep(), step::kFit);
}

TEST_F(FitDialog, OptionsSetTheirValuesAtOnce) {
  const auto isOpenWith = [](CAnalysisModalDialog& options, std::vector<std::int32_t> chosen) {
    using namespace fit_options;
    EXPECT_TRUE(options.IsOpen());
    for (std::int32_t radio = kContinuousKolmogorovSmirnov; radio <= kEqualIntervals; ++radio) {
      if (radio == kDiscreteCaption) continue;
      const bool expected = std::ranges::find(chosen, radio) != chosen.end();
      EXPECT_EQ(options.Controls().IsChecked(radio), expected) << radio;
    }
  };
  userInterface.modalAnswers.emplace_back([&](CAnalysisModalDialog& options) {
    using namespace fit_options;
    isOpenWith(options, {kContinuousKolmogorovSmirnov, kDiscreteKolmogorovSmirnov, kEqualProbabilities});
    options.Check(kContinuousAndersonDarling, true);
    EXPECT_EQ(Specification().continuousCriterion, RankingCriterion::kAndersonDarling);
    options.Check(kDiscreteChiSquare, true);
    EXPECT_EQ(Specification().discreteCriterion, RankingCriterion::kChiSquare);
    options.Check(kEqualIntervals, true);
    EXPECT_EQ(Specification().binning, ChiSquareBinning::kEqualIntervals);
    EXPECT_TRUE(options.Press(kControlCancel));
    EXPECT_FALSE(options.IsOpen());
  });
  userInterface.modalAnswers.emplace_back([&](CAnalysisModalDialog& options) {
    using namespace fit_options;
    isOpenWith(options, {kContinuousAndersonDarling, kDiscreteChiSquare, kEqualIntervals});
    EXPECT_TRUE(options.Press(kControlOk));
    EXPECT_FALSE(options.IsOpen());
  });
  EXPECT_TRUE(Dialog().Press(kOptions));
  EXPECT_TRUE(Dialog().Press(kOptions));
  EXPECT_EQ(analysis->CurrentStep(), step::kFit) << "leaving the options leaves nothing else";
}

// A sheet of two variables that is laid out as a correlation matrix file.
Spreadsheet MatrixSheet() {
  Spreadsheet matrix("matrix", 6, 2);
  matrix.SetKind(SheetKind::kMatrix);
  matrix.SetCaseNames({"Var1", "Var2", "Means", "Std.Dev.", "No.Cases", "Matrix"});
  const double columns[2][6] = {{1, 0.5, 3, 2, 9, 1}, {0.5, 1, 4, 1, 0, 0}};
  for (std::size_t v = 0; v < 2; ++v) matrix.VariableAt(v).AssignValues({columns[v], columns[v] + 6});
  return matrix;
}

TEST_F(FitDialog, MatrixFileIsFittedOnlyWhenThatIsMeant) {
  Dialog().Press(kControlCancel);
  sheet = MatrixSheet();
  userInterface.messageAnswers = {MessageAnswer::kCancel, MessageAnswer::kOk};
  StartFit();
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup);
  ASSERT_EQ(userInterface.messages.size(), 1U);
  EXPECT_EQ(userInterface.messages[0].text,
            "Input is a valid Brenvolt matrix file. Do you want to run fit distribution on this?");
  EXPECT_EQ(userInterface.messages[0].caption, "Brenvolt");
  EXPECT_EQ(userInterface.messages[0].buttons, MessageButtons::kOkCancel);
  EXPECT_EQ(userInterface.messages[0].icon, MessageIcon::kInformation);
  StartFit();
  ASSERT_EQ(analysis->CurrentStep(), step::kFit);
  Automation().Put("ContinuousVariable", 1);
  EXPECT_TRUE(Ok());
  Dialog().Press(kControlCancel);
  EXPECT_EQ(analysis->CurrentStep(), step::kFit);
  EXPECT_EQ(userInterface.messages.size(), 2U) << "not asked again on the way back from the results";
}

TEST_F(FitDialog, SelectionOverAnotherInputIsNotCarriedOver) {
  Automation().Put("Variables", "1 | 5");
  Dialog().Press(kControlCancel);
  Spreadsheet narrow("narrow", kCases, 4);
  document.SetInputTable(&narrow);
  StartFit();
  EXPECT_EQ(Automation().Get("Variables").ToText(), " | ");
  EXPECT_FALSE(Ok()) << "no variables";
}

TEST_F(FitDialog, OpenedDataStartAfreshAndAFailureKeepsWhatWas) {
  Spreadsheet other("other", 4, 1);
  Spreadsheet matrix = MatrixSheet();
  document.SetDataOpener([&](const std::filesystem::path& path) {
    if (path == "broken.csv") throw Error("is broken", "broken.csv");
    return path == "matrix.bvw" ? &matrix : &other;
  });
  Automation().Put("Variables", "5 | 4");
  EXPECT_FALSE(Dialog().Press(kOpenData)) << "cancelled";
  userInterface.fileAnswers = {{"broken.csv"}, {"other.csv"}, {"matrix.bvw"}};
  EXPECT_FALSE(Dialog().Press(kOpenData));
  EXPECT_EQ(Said(), std::vector<std::string>{"is broken"});
  EXPECT_EQ(Automation().Get("Variables").ToText(), "5 | 4");
  EXPECT_TRUE(Dialog().Press(kOpenData));
  EXPECT_EQ(Dialog().GetInputTable(), &other);
  EXPECT_EQ(Text(kContinuousList) + Text(kDiscreteList), "nonenone");
  EXPECT_FALSE(Ok()) << "no variables";
  userInterface.messageAnswers = {MessageAnswer::kCancel};
  Dialog().Press(kOpenData);
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup) << "a matrix, and not to be fitted";
}

}  // namespace
}  // namespace brenvolt::sra
