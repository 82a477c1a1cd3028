#include "brv_sra/profiler/dialogs/profiler_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/profiler/dialogs/profiler_specification.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/automation/automation_failure.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace profiler_dialog;
using Array = Variant::Array;

constexpr const char* kOzone = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/RegressionOzone.pmml";
constexpr const char* kIris = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/DecisionTreeIris.pmml";

// The dialog over data of A and B, without dependents.
struct ProfilerDialog : testing::Test {
  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", 40, 2};
  CAnalysisDoc document{userInterface, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  ProfilerDialog() {
    for (std::size_t v = 0; v < 2; ++v) {
      sheet.VariableAt(v).SetName(v == 0 ? "A" : "B");
      const auto values = sheet.VariableAt(v).MutableValues();
      for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>((i * (v + 3) * 7) % 23) + static_cast<double>(v * i);
    }
    analysis->AttachDocument(&document);
    Open();
  }
  void Open() { analysis->RunSequenceStep(step::kProfiler); }
  CAnalysisDialog& Dialog() { return *analysis->GetDialog(); }
  AutomationObject& Automation() { return *analysis->GetDialgInterface(); }
  ProfilerDesign& Design() { return analysis->Profiler().design; }
  ControlSet& Controls() { return Dialog().Controls(); }
  std::string Get(const char* member) { return Automation().Get(member).ToText(); }
  void Put(const char* member, const Variant& value) { Automation().Put(member, value); }
  void Specify(int place, const Variant& value) {
    const std::vector<Variant> index{place};
    Automation().Put("VariableDistributionParams", value, std::span(index));
  }
  Variant Specification(int place) {
    const std::vector<Variant> index{place};
    return Automation().Get("VariableDistributionParams", index);
  }
  // Y = A + B by formula, reproducible.
  void SumFormula() {
    Put("PredictionFormula", "Y = A + B");
    Put("IsSeedRandomNumber", 1);
    Put("NumberOfSamples", 500);
  }
  bool Simulate() { return Dialog().Press(kControlOk); }
  std::vector<std::string> Said() { return userInterface.TakeTexts(); }
  // Why a call failed; empty if it did not.
  static std::string Reason(const std::function<void()>& call) {
    try {
      call();
    } catch (const AutomationError& error) {
      return error.Reason();
    } catch (const Error& error) {
      return error.what();
    }
    return {};
  }
};

std::string Shown(const Variant& value) {
  if (value.IsEmpty()) return "nothing";
  if (!value.IsArray()) return value.ToText();
  std::string text;
  for (const Variant& item : value.ToArray()) text += Shown(item) + " ";
  return text;
}

TEST_F(ProfilerDialog, NothingLoadedHasNothingToEditOrSimulate) {
  EXPECT_EQ(analysis->CurrentStep(), step::kProfiler);
  EXPECT_EQ(Controls().Text(kModel), "none");
  EXPECT_EQ(Controls().At(kDistributions).items.back(), "Fixed");
  for (const std::int32_t control :
       {kNoise, kLsl, kAddDistribution, kCapability, kSummaryStats, kEditCorrelation})
    EXPECT_FALSE(Controls().At(control).enabled) << control;
  EXPECT_FALSE(Simulate());
  EXPECT_EQ(Said(),
            (std::vector<std::string>{"At least one variable distribution specification must be random."}));
  EXPECT_EQ(Get("NumberOfSamples"), "5000");
}

TEST_F(ProfilerDialog, ModelsAreChosenLoadedAndTheNoiseChoiceFollowsTheNumberOfDependents) {
  EXPECT_FALSE(Dialog().Press(kLoadModels)) << "cancelled";
  userInterface.fileAnswers.push_back({kOzone});
  EXPECT_TRUE(Dialog().Press(kLoadModels));
  EXPECT_EQ(Controls().At(kNoise).items, (std::vector<std::string>{"No Noise", "Add Random Noise"}));
  Put("DependentNoise", 1);
  Put("LoadModels", kIris);
  EXPECT_EQ(Controls().At(kNoise).items, (std::vector<std::string>{"No Noise", "Add Multivariate Noise"}));
  EXPECT_EQ(Get("DependentNoise"), "1") << "stored choice of the selected dependent";
  Put("DependentforResult", 2);
  EXPECT_EQ(Get("DependentNoise"), "0");
  EXPECT_FALSE(Controls().At(kDeviation).enabled);
  EXPECT_EQ(Get("LoadModels"), std::string(kOzone) + "|" + kIris);
  EXPECT_EQ(Controls().Text(kModel), Design().dependents[1].model->Name());
  EXPECT_EQ(Automation().Get("Dependents").ToArray().size(), 2U);
}

TEST_F(ProfilerDialog, FilesThatCannotBeLoadedLeaveEverythingAsItWas) {
  const std::string improper = "Improper string provided for PMML file names.";
  EXPECT_EQ(Reason([&] { Put("LoadModels", ""); }), improper);
  EXPECT_EQ(Reason([&] { Put("LoadModels", std::string(kOzone) + "|"); }), improper);
  EXPECT_NE(Reason([&] { Put("LoadModels", std::string(kOzone) + "|no/such.pmml"); }), "");
  EXPECT_TRUE(Design().predictors.empty());
  userInterface.fileAnswers.push_back({"no/such.pmml"});
  EXPECT_FALSE(Dialog().Press(kLoadModels));
  EXPECT_EQ(Said().size(), 1U);
}

TEST_F(ProfilerDialog, RunsOutOfRangeAreResetWithTheMessage) {
  const std::string message =
      "Invalid value for No. of runs, the value is reset to 5000. Valid range is 100<=x<=100000.";
  for (const auto& [entered, kept] : {std::pair{"100", "100"},
                                      {"99", "5000"},
                                      {"100000", "100000"},
                                      {"100001", "5000"},
                                      {"x", "5000"},
                                      {"", "5000"}}) {
    Dialog().Enter(kRuns, entered);
    EXPECT_EQ(Get("NumberOfSamples"), kept) << entered;
    EXPECT_EQ(Said(), std::string(entered) == kept ? std::vector<std::string>{} : std::vector{message});
  }
  for (const char* seed : {"0", "-1", "2147483648", "1.5", "x"}) {
    Dialog().Enter(kSeed, seed);
    EXPECT_EQ(Get("RandomSeedNumber"), "1000") << seed;
  }
  EXPECT_THROW(Put("RandomSeedNumber", 0), AutomationFailure);
  Put("RandomSeedNumber", 2147483647);
  EXPECT_EQ(Design().seed, 2147483647);
}

TEST_F(ProfilerDialog, SpecificationsArePutAndReadAsMacroArrays) {
  SumFormula();
  const struct {
    Array put;
    const char* read;
    const char* line;
  } rows[] = {
      {{"Normal", 1, 2}, "scNormalDistr 1 2 0 0 0 0 ", "A: Normal(location=1.0000, scale=2.0000)"},
      {{"scNormalDistr", 1, 2, 1, 0, 1, 5.5},
       "scNormalDistr 1 2 1 0 1 5.5 ",
       "A: Normal(location=1.0000, scale=2.0000) [0, 5.5]"},
      {{5, 2, 3}, "scWeibull 2 3 0 0 0 0 0 ", nullptr},
      {{"Weibull", 2, 3, 0.5}, "scWeibull 2 3 0.5 0 0 0 0 ", nullptr},
      {{"Weibull", 2, 3, 0.5, 0, 0, 1, 9}, "scWeibull 2 3 0.5 0 0 1 9 ", nullptr},
      {{"Gaussian Mixture", 0.4, 0, 1, 0.6, 5, 2},
       "scGaussianMixture 0.4 0 1 0.6 5 2 0 0 0 0 ",
       "A: Gaussian Mixture (0.4;0;1;0.6;5;2;)"},
      {{15, 1, 0.25, 2, 0.75, 0, 0, 0, 0}, nullptr, "A: Histogram (1;2; 0.25;0.75;)"},
      {{"Fixed", 3}, "Fixed 3 ", "A: Fixed (3.000000)"},
  };
  for (const auto& row : rows) {
    Specify(1, row.put);
    if (row.read != nullptr) {
      EXPECT_EQ(Shown(Specification(1)), row.read);
    }
    if (row.line != nullptr) {
      EXPECT_EQ(Controls().At(kSelected).items[0], row.line);
    }
    const std::string once = Shown(Specification(1));
    Specify(1, Specification(1));
    EXPECT_EQ(Shown(Specification(1)), once) << "takes back what it gives";
  }
  Specify(1, 7.5);
  EXPECT_EQ(Shown(Specification(1)), "Fixed 7.5 ");
  Specify(1, Variant());
  EXPECT_TRUE(Specification(1).IsEmpty());
  EXPECT_EQ(Controls().At(kSelected).items[0], "A: none");
}

TEST_F(ProfilerDialog, WrongSpecificationsAreRefusedAndNotApplied) {
  SumFormula();
  const std::string before = Shown(Specification(1));
  const std::string crossed = "Minimum value must be less than maximum.";
  const struct {
    Variant put;
    std::string reason;
  } rows[] = {
      {Array{"Normal", 1, 2, 1, 5, 1, 5}, crossed},
      {Array{"Normal", 1, 2, 1, 6, 1, 5}, crossed},
      {Array{"Normal", 1, 2, 1, Variant(), 0, 0}, crossed},
      {Array{"Normal", 1, 0}, "Invalid scale parameter entry for Normal distribution. "},
      {Array{"Normal", 1, 2, 3}, "Normal takes 2 values, 6 with a truncation; got 3"},
      {Array{"Gaussian Mixture", 1, 0, 1}, "Invalid number of mixtures. Valid Range is 1<x<21"},
      {Array{"Gamma", 1, 0}, "no distribution called Gamma"},
      {Array{"Fixed"}, "expected one value for a fixed predictor"},
      {Array{}, "expected a distribution or a fixed value, got an empty array"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Reason([&] { Specify(1, row.put); }), row.reason);
    EXPECT_EQ(Shown(Specification(1)), before);
  }
  EXPECT_EQ(Reason([&] { Specify(3, 1); }), "no predictor 3; there are 2");
}

TEST_F(ProfilerDialog, RefusedSpecificationsNameThePredictor) {
  SumFormula();
  for (const Array& array : {Array{"Normal", 1, 0}, Array{"Normal", 1, 2, 3}, Array{"Gamma", 1, 0},
                             Array{"Normal", 1, 2, 1, 6, 1, 5}, Array{"Histogram", "high", 1, 0, 0, 0, 0}}) {
    try {
      Specify(1, array);
      ADD_FAILURE() << array[0].ToText() << " is taken";
    } catch (const Error& error) {
      EXPECT_NE((error.what() + error.Where()).find("predictor A"), std::string::npos) << error.what();
    }
  }
}

TEST_F(ProfilerDialog, ProgramsAskForFewerRunsThanTheFieldTakes) {
  SumFormula();
  Put("NumberOfRuns", 7);
  EXPECT_EQ(Get("NumberOfRuns"), "7");
  EXPECT_EQ(Controls().Text(kRuns), "7");
  for (const int wrong : {0, -1, 100001}) {
    EXPECT_EQ(Reason([&] { Put("NumberOfRuns", wrong); }),
              "expected 1 to 100000 runs, got " + std::to_string(wrong));
  }
  EXPECT_EQ(Design().runs, 7);
  EXPECT_TRUE(Said().empty());
}

TEST_F(ProfilerDialog, PageAppliesTheFieldsOfTheHighlightedDistribution) {
  SumFormula();
  Dialog().Select(kPredictors, 1);
  EXPECT_EQ(Controls().Selection(kSelected), 1);
  Dialog().Select(kDistributions, static_cast<int>(DistributionCode::kWeibull));
  EXPECT_EQ(Controls().Text(kParameterLabel + 2), "Offset:");
  EXPECT_FALSE(Controls().At(kParameter + 3).visible);
  EXPECT_FALSE(Dialog().Press(kAddDistribution)) << "nothing entered";
  EXPECT_EQ(Said().size(), 1U);
  Dialog().Enter(kParameter, "2");
  Dialog().Enter(kParameter + 1, "1.5");
  Dialog().Enter(kMinimum, "3");
  Dialog().Enter(kMaximum, "1");
  EXPECT_FALSE(Dialog().Press(kAddDistribution));
  EXPECT_EQ(Said(), (std::vector<std::string>{"Minimum value must be less than maximum."}));
  Dialog().Enter(kMinimum, "0.5");
  Dialog().Enter(kMaximum, "");
  EXPECT_TRUE(Dialog().Press(kAddDistribution));
  EXPECT_EQ(Shown(Specification(2)), "scWeibull 2 1.5 0 1 0.5 0 0 ");
  // A mixture of three, one component at a time.
  Dialog().Select(kDistributions, static_cast<int>(DistributionCode::kGaussianMixture));
  Dialog().Enter(kMixtures, "21");
  EXPECT_EQ(Said(), (std::vector<std::string>{"Invalid number of mixtures. Valid Range is 1<x<21"}));
  EXPECT_EQ(Controls().Text(kMixtures), "2");
  Dialog().Enter(kMixtures, "3");
  for (int group = 0; group < 3; ++group) {
    Dialog().Select(kGroup, group);
    Dialog().Enter(kParameter, group == 0 ? "0.5" : "0.25");
    Dialog().Enter(kParameter + 1, std::to_string(group));
    Dialog().Enter(kParameter + 2, "1");
  }
  EXPECT_TRUE(Dialog().Press(kAddDistribution));
  EXPECT_EQ(Shown(Specification(2)), "scGaussianMixture 0.5 0 1 0.25 1 1 0.25 2 1 0 0 0 0 ");
  Dialog().Select(kDistributions, kDistributionCount);
  EXPECT_EQ(Controls().Text(kParameterLabel), "Value:");
  Dialog().Enter(kParameter, "12");
  EXPECT_TRUE(Dialog().Press(kAddDistribution));
  EXPECT_EQ(Controls().At(kSelected).items[1], "B: Fixed (12.000000)");
}

// The values stay: the other limit may be the next thing that is typed.
TEST_F(ProfilerDialog, WhatContradictsItselfInASpecificationIsSaidWhereItIsTyped) {
  SumFormula();
  const struct {
    std::int32_t control;
    const char* text;
    const char* said;
  } rows[] = {{kUsl, "5", ""},
              {kLsl, "10", "Specification: the lower limit must be less than the upper one."},
              {kUsl, "20", ""},
              {kTarget, "25", "Specification: the target lies outside the limits."},
              {kTarget, "", ""}};
  for (const auto& row : rows) {
    Dialog().Enter(row.control, row.text);
    EXPECT_EQ(Controls().Text(kSpecificationFault), row.said) << row.text;
  }
  EXPECT_TRUE(Said().empty());
  EXPECT_EQ(Get("LSL"), "10");
}

TEST_F(ProfilerDialog, CorrelationsAreEditedAsAWholeOrNotAtAll) {
  SumFormula();
  Put("IsEditCorrelation", 1);
  const struct {
    const char* cell;
    const char* diagonal;
    bool taken;
    double kept;
  } rows[] = {{"0.5", "1", true, 0.5},     {"1", "1", true, 1},
              {"-1", "1", true, -1},       {"1.0000001", "1", false, -1},
              {"-1.0001", "1", false, -1}, {"", "1", false, -1},
              {"x", "1", false, -1},       {"-444", "1", false, -1},
              {"0.25", "2", false, -1},    {"-1.0000000000000002", "1", true, -1}};
  for (const auto& row : rows) {
    userInterface.matrixAnswers.push_back([&](MatrixQuestion& question) {
      EXPECT_EQ(question.title, "Correlation Matrix of Predictors");
      EXPECT_EQ(question.note, "Note: Enter values in upper diagonal, others are ignored.");
      EXPECT_EQ(question.names, (std::vector<std::string>{"A", "B"}));
      question.cells = {row.diagonal, row.cell, "below is ignored", "1"};
    });
    EXPECT_EQ(Dialog().Press(kEditCorrelation), row.taken) << row.cell;
    EXPECT_EQ(Design().correlations, (std::vector<double>{1, row.kept, row.kept, 1})) << row.cell;
    const auto said = Said();
    ASSERT_EQ(said.size(), row.taken ? 0U : 1U);
    if (!row.taken) {
      EXPECT_EQ(
          said[0],
          "Some of the entries were invalid and reset to original value. Values should be between -1 and 1.");
    }
  }
}

TEST_F(ProfilerDialog, CorrelationMatricesArePutInEveryFormAndChecked) {
  SumFormula();
  MatrixFile file = MatrixFile::Identity({"B", "other", "A"});
  file.correlations[0][2] = file.correlations[2][0] = 0.3;
  const Variant matrix = Variant::Object(std::make_shared<CAnalysisTableDoc>(*MakeMatrixFile(file)));
  for (const auto& [value, expected] : {std::pair<Variant, double>{Array{1, 0.1, 0.1, 1}, 0.1},
                                        {Array{Array{1, 0.2}, Array{0.2, 1}}, 0.2},
                                        {matrix, 0.3}}) {
    Put("InputCorrMatrix", value);
    EXPECT_EQ(Design().correlations, (std::vector<double>{1, expected, expected, 1}));
  }
  EXPECT_EQ(Shown(Automation().Get("UserDefinedDesignMatrixValues")), "1 0.3  0.3 1  ");
  const std::string invalid = "Invalid input correlation. Please use a valid correlation to continue.";
  const auto foreign = std::make_shared<CAnalysisTableDoc>(*MakeMatrixFile(MatrixFile::Identity({"x", "y"})));
  const Variant wrongs[] = {Variant(Array{1, 0.1, 0.1}),        Variant(Array{1, 0.1, 0.2, 1}),
                            Variant(Array{1, 1.1, 1.1, 1}),     Variant(Array{2, 0, 0, 1}),
                            Variant(Array{Array{1}, Array{1}}), Variant::Object(foreign)};
  for (const Variant& wrong : wrongs) {
    EXPECT_EQ(Reason([&] { Put("InputCorrMatrix", wrong); }), invalid);
  }
  EXPECT_EQ(Design().correlations[1], 0.3);
}

TEST_F(ProfilerDialog, SimulatingMakesTheSheetAndTheProfilesAndRefillsOnRequest) {
  SumFormula();
  EXPECT_TRUE(Simulate());
  EXPECT_EQ(Said(), std::vector<std::string>{});
  EXPECT_EQ(analysis->CurrentStep(), step::kProfiler) << "the dialog stays";
  ASSERT_EQ(userInterface.documents.size(), 1U);
  ASSERT_EQ(userInterface.graphs.size(), 1U);
  const Spreadsheet& output = userInterface.documents[0]->Table();
  EXPECT_EQ(output.Title(), "Simulated Results");
  EXPECT_EQ(output.CaseCount(), 500U);
  EXPECT_EQ(userInterface.graphs[0]->Content().panels.size(), 2U);
  EXPECT_EQ(userInterface.progressCaptions.back(), "Computing...");
  const std::vector<double> first(output.VariableAt(2).Values().begin(), output.VariableAt(2).Values().end());
  Put("IsAutoUpdateSameSheet", 1);
  Put("RandomSeedNumber", 5);
  EXPECT_TRUE(Simulate());
  EXPECT_EQ(userInterface.documents.size(), 1U);
  EXPECT_NE(output.VariableAt(2).Values()[0], first[0]);
  Put("IsAutoUpdateSameSheet", 0);
  Put("RandomSeedNumber", 1000);
  Automation().Get("SimulationResults");
  ASSERT_EQ(userInterface.documents.size(), 2U);
  const auto again = userInterface.documents[1]->Table().VariableAt(2).Values();
  EXPECT_TRUE(std::ranges::equal(again, first)) << "the seed stands for its results";
}

TEST_F(ProfilerDialog, ResultsNeedARunAndAValidSpecification) {
  const std::string invalid = "Please set valid Lower/Upper Specification Limit and Target values.";
  SumFormula();
  EXPECT_EQ(Reason([&] { Automation().Get("SummaryStats"); }), "Nothing has been simulated yet.");
  EXPECT_TRUE(Simulate());
  const struct {
    Variant lower;
    Variant upper;
    Variant target;
    bool valid;
  } rows[] = {{0, 40, 20, true},
              {0, Variant(), Variant(), true},
              {Variant(), Variant(), 5, false},
              {40, 0, Variant(), false},
              {0, 40, 50, false},
              {"", "40", "", true}};
  for (const auto& row : rows) {
    Put("LSL", row.lower);
    Put("USL", row.upper);
    Put("Target", row.target);
    EXPECT_EQ(Controls().At(kDefects).visible, row.valid);
    EXPECT_EQ(Dialog().Press(kDefects), row.valid);
    EXPECT_EQ(Dialog().Press(kCapability), row.valid);
    EXPECT_EQ(Said(), row.valid ? std::vector<std::string>{} : std::vector{invalid});
    EXPECT_EQ(Reason([&] { Automation().Get("DefectProfile"); }), row.valid ? "" : invalid);
  }
  userInterface.documents.clear();
  userInterface.graphs.clear();
  EXPECT_NE(Automation().Get("SummaryStats").ToObject(), nullptr);
  EXPECT_EQ(userInterface.documents.size(), kSummaryDocuments);
  EXPECT_NE(Automation().Get("SummaryGraph").ToObject(), nullptr);
  Automation().Get("DefectProfile");
  EXPECT_EQ(userInterface.documents.back()->Table().Title().substr(0, 15), "Defect Profiler");
  EXPECT_EQ(userInterface.graphs.back()->Content().title, "Defect Profiler");
}

TEST_F(ProfilerDialog, LimitsKeepToTheirRangeAndReadAsTexts) {
  SumFormula();
  EXPECT_EQ(Get("LSL"), "");
  for (const auto& [entered, kept] :
       {std::pair{"1.5", "1.5"}, {"1e31", "1.5"}, {"-1e30", "-1e+30"}, {"x", "-1e+30"}, {"", ""}}) {
    Dialog().Enter(kLsl, entered);
    EXPECT_EQ(Get("LSL"), kept) << entered;
  }
  EXPECT_NE(Reason([&] { Put("USL", 1e31); }), "");
  EXPECT_NE(Reason([&] { Put("StdDevY", -1); }), "");
  EXPECT_NE(Reason([&] { Put("USL", Array{1, 2}); }), "") << "there is one dependent";
  Put("PredictionFormula", "Z = A");
  Put("USL", Array{1, Variant()});
  EXPECT_EQ(Get("USL"), "1");
  Put("DependentforResult", 2);
  EXPECT_EQ(Get("USL"), "");
}

TEST_F(ProfilerDialog, StoppedRunsSayWhyAndLeaveTheLastOutput) {
  SumFormula();
  EXPECT_TRUE(Simulate());
  const auto output = analysis->Profiler().output;
  Put("PredictionFormula", "A + ");
  EXPECT_FALSE(Simulate());
  Put("PredictionFormula", "A + Unknown");
  EXPECT_FALSE(Simulate());
  EXPECT_EQ(Said(), (std::vector<std::string>(2, "Please check the formula for Y")));
  EXPECT_EQ(analysis->Profiler().output, output);
  EXPECT_NE(Reason([&] { Automation().Get("SimulationResults"); }), "");
  Said();
  Put("PredictionFormula", "Y = A + B");
  userInterface.cancelled = true;
  userInterface.pollInterval = std::chrono::milliseconds(0);
  EXPECT_FALSE(Simulate());
  EXPECT_EQ(Said(), std::vector<std::string>{}) << "cancelling is no fault";
  EXPECT_EQ(analysis->Profiler().output, output);
}

TEST_F(ProfilerDialog, TooManyProfilesLeaveTheSpreadsheet) {
  std::string sum = "0";
  for (int j = 0; j < 33; ++j) sum += " + x" + std::to_string(j);
  for (int k = 0; k < 32; ++k) Put("PredictionFormula", "y" + std::to_string(k) + " = " + sum);
  for (int j = 1; j <= 33; ++j) Specify(j, Array{"Normal", 0, 1});
  Put("NumberOfSamples", 100);
  EXPECT_TRUE(Simulate());
  EXPECT_EQ(Said(), (std::vector<std::string>{"Too Many Graphs to plot. Maximum allowed is 32 predictors."}));
  EXPECT_EQ(userInterface.documents.size(), 1U);
  EXPECT_TRUE(userInterface.graphs.empty());
  Put("LSL", 0);
  EXPECT_EQ(Reason([&] { Automation().Get("DefectProfile"); }), "Defect profile creation failed.");
}

// A fault for which the dialog has no text takes the caption of what was tried.
TEST_F(ProfilerDialog, UnexpectedFaultsNameWhatWasTried) {
  Put("PredictionFormula", "Y = x");
  Specify(1, Array{"Normal", 0, 1});
  EXPECT_FALSE(Dialog().Press(kFitBest));
  ASSERT_EQ(userInterface.messages.size(), 1U);
  EXPECT_EQ(userInterface.messages[0].caption, "BasicStats Error");
  EXPECT_EQ(userInterface.messages[0].text,
            "No predictor of the input data can be fitted by a distribution.");
  Put("PredictionFormula", "Y = x / 0");
  EXPECT_TRUE(Simulate());
  EXPECT_EQ(Said().back(),
            "Graph creation failed.  Please review distribution parameters for appropriate values.");
  EXPECT_FALSE(Dialog().Press(kSummaryGraph));
  EXPECT_EQ(userInterface.messages.back().caption, "SummaryGraph Error");
}

TEST_F(ProfilerDialog, FormulaModeShowsFormulasInsteadOfModels) {
  EXPECT_FALSE(Controls().At(kFormula).visible);
  EXPECT_EQ(analysis->UpdateFromInputSpreadsheet(), 1);
  EXPECT_EQ(analysis->Matrix().variables.size(), 2U);
  analysis->Matrix().variables.clear();
  analysis->SetAutoProfiler(true);
  Open();
  EXPECT_TRUE(Controls().At(kFormula).visible);
  EXPECT_FALSE(Controls().At(kModel).visible);
  EXPECT_EQ(analysis->UpdateFromInputSpreadsheet(), 1);
  EXPECT_TRUE(analysis->Matrix().variables.empty()) << "nothing is read";
  Dialog().Enter(kFormula, "A");
  EXPECT_FALSE(Dialog().Press(kSetFormula)) << "of which dependent?";
  EXPECT_EQ(Said(), (std::vector<std::string>{"expected RESPONSE=EXPRESSION, got 'A'"}));
  Dialog().Enter(kFormula, "Y = A");
  EXPECT_TRUE(Dialog().Press(kSetFormula));
  Dialog().Enter(kFormula, "A * B");
  EXPECT_TRUE(Dialog().Press(kSetFormula));
  EXPECT_EQ(Get("PredictionFormula"), "A * B");
  EXPECT_TRUE(Dialog().Press(kUndoFormula));
  EXPECT_EQ(Controls().Text(kFormula), "A");
  EXPECT_TRUE(Simulate());
}

TEST_F(ProfilerDialog, BestFitsNeedPredictorsInTheInput) {
  EXPECT_FALSE(Dialog().Press(kFitBest)) << "no predictors";
  SumFormula();
  Specify(1, 3);
  EXPECT_EQ(Get("FitBestDistributions"), "1");
  EXPECT_NE(Shown(Specification(1)), "Fixed 3 ");
  EXPECT_TRUE(Simulate());
}

TEST_F(ProfilerDialog, DesignOutlivesTheDialogButNotItsInput) {
  SumFormula();
  Automation().Call("Cancel");
  EXPECT_EQ(analysis->CurrentStep(), step::kStartup);
  Open();
  EXPECT_EQ(Get("PredictionFormula"), "A + B");
}

TEST(ProfilerSpecification, ClassesAreShownByTheirNamesAsFarAsTheyAreFew) {
  ProfilerPredictor predictor;
  predictor.setting = PredictorSetting::kRandom;
  predictor.specification.code = DistributionCode::kHistogram;
  predictor.specification.values = {1, 0.25, 2, 0.75};
  predictor.labels = {{1, "low"}, {2, "high"}};
  EXPECT_EQ(SpecificationText(predictor), "Histogram (low 0.25, high 0.75)");
  for (int code = 3; code <= 12; ++code)
    predictor.specification.values.insert(predictor.specification.values.end(), {double(code), 0});
  const std::string text = SpecificationText(predictor);
  EXPECT_EQ(text.substr(text.size() - 10), "10 0, …)");
}

TEST(ProfilerSpecification, CategoriesAreFixedByNameOrByAKnownCode) {
  ProfilerPredictor predictor;
  predictor.name = "grade";
  predictor.labels = {{1, "low"}, {2, "high"}};
  SetSpecification(predictor, Variant::Array{"Fixed", "high"});
  EXPECT_EQ(SpecificationText(predictor), "Fixed (high)");
  EXPECT_EQ(predictor.fixedValue, 2);
  SetSpecification(predictor, Variant::Array{"Fixed", 1});
  EXPECT_EQ(predictor.fixedValue, 1);
  for (const Variant& wrong : {Variant(7), Variant("middle")}) {
    EXPECT_THROW(SetSpecification(predictor, Variant::Array{"Fixed", wrong}), Error);
    EXPECT_EQ(predictor.fixedValue, 1);
  }
}

}  // namespace
}  // namespace brenvolt::sra
