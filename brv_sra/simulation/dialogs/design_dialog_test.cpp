#include "brv_sra/simulation/dialogs/design_dialog.h"

#include <gtest/gtest.h>

#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/dialogs/design_desk_dialog_test.h"

namespace brenvolt::sra {
namespace {

using Desk = DesignDesk;

TEST_F(Desk, WithoutAnInputNamesMakeASheetWithoutCasesThatIsSimulated) {
  Open(nullptr);
  EXPECT_EQ(Get(kNames), "()");
  Dialog().Put(kNames, Texts({"h", "cost"}));
  Spreadsheet* input = document->InputTable();
  ASSERT_NE(input, nullptr);
  EXPECT_EQ(input->CaseCount(), 0U);
  ASSERT_EQ(person.documents.size(), 1U) << "it is shown";
  Put(kSimulated, 1, Distribution("scNormalDistr", {50.2, 0.05}));
  Put(kSimulated, 2, Distribution("Triangular", {100, 180, 120, 0, 0, 1, 170}));
  EXPECT_EQ(Get(kSimulated, 2), "(scTriangular 100 180 120 0 0 1 170)");
  Dialog().Put(kValues, Rows({{1, 0.4}, {0.4, 1}}));
  ASSERT_EQ(Dialog().Call("OK").ToInteger(), 1);
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulation);
  EXPECT_EQ(Property(*input, 0, "Normal"), "(Location=5.020000000000e+01; Scale=5.000000000000e-02)");
  EXPECT_EQ(Property(*input, 1, "zTruncProp").substr(0, 6), "(0; 1;");
  Dialog().Put("LHSwithImanMethod", true);
  Dialog().Put("NumberOfSamples", 200);
  ASSERT_EQ(Dialog().Call("OK").ToInteger(), 1);
  const Spreadsheet& samples = person.documents[1]->Table();
  EXPECT_EQ(samples.CaseCount(), 200U);
  for (const double cost : samples.VariableAt(1).Values()) EXPECT_TRUE(cost >= 100 && cost <= 170) << cost;
}

TEST_F(Desk, FittedDistributionsAreTakenOverLeftAndChosen) {
  Open(&data);
  EXPECT_EQ(Get(kNames), "(Var1 Var2 Var3)");
  EXPECT_EQ(Get(kSimulated, 1), "(scNormalDistr 1 2 1 -1 0 0)");
  EXPECT_EQ(Get(kOwn, 1), "none");
  EXPECT_EQ(Get(kSimulated, 2), "none");
  Put(kSimulated, 1, "Weibull");
  EXPECT_EQ(Get(kSimulated, 1), "(scWeibull 3 2 0 1 -1 0 0)");
  Dialog().Put("UseFittedDistributions", true);
  EXPECT_EQ(Get(kSimulated, 1), "(scNormalDistr 1 2 0 0 0 0)") << "the best fitted one without its bounds";
  Put(kOwn, 2, Distribution("Poisson", {3}));
  EXPECT_EQ(Get(kSimulated, 2), "(scPoisson 3 0 0 0 0)") << "nothing is fitted";
  Put(kSimulated, 1, Distribution("Normal", {4, 1}));
  EXPECT_EQ(Get("UseFittedDistributions"), "0") << "an own one is to be simulated";
  Dialog().Call("SaveDistributionToInput");
  EXPECT_EQ(Property(data, 0, "zOrder"), "Normal;Weibull;");
  EXPECT_EQ(Property(data, 0, "Normal"), "(Location=4.000000000000e+00; Scale=1.000000000000e+00)");
  EXPECT_EQ(Property(data, 1, "zOrder"), "Poisson;");
  EXPECT_EQ(Property(data, 2, "zOrder"), "none") << "nothing is known of it";
  Put(kSimulated, 1, Variant());
  EXPECT_EQ(Get(kSimulated, 1), "none") << "left out";
  const auto matrix =
      std::dynamic_pointer_cast<CAnalysisTableDoc>(Dialog().Get("CorrelationMatrix").ToObject());
  EXPECT_EQ(matrix->Table().VariableCount(), 1U) << "of what takes part";
}

// Only a person's own source has bounds: half of a normal distribution lies below its mean.
TEST_F(Desk, FittedSourceDropsTruncation) {
  data.VariableAt(0).SetProperty("zTruncProp", "(1; 0; 1; 0)");
  for (const bool fitted : {false, true}) {
    analysis.reset(Kro6NewAnalysis());
    Open(&data);
    Dialog().Put("UseFittedDistributions", fitted);
    Dialog().Call("OK");
    const std::size_t shown = person.documents.size();
    ASSERT_EQ(Dialog().Call("OK").ToInteger(), 1);
    double least = 1e300;
    for (const double x : person.documents[shown]->Table().VariableAt(0).Values()) least = std::min(least, x);
    EXPECT_EQ(least < 1, fitted);
  }
}

TEST_F(Desk, MatrixFileIsReadAndWritten) {
  MatrixFile file = MatrixFile::Identity({"x", "y"});
  file.correlations = {{1, 0.5}, {0.5, 1}};
  file.means = {3, 4};
  const auto sheet = *MakeMatrixFile(file);
  Open(sheet.get());
  EXPECT_TRUE(person.messages.empty());
  EXPECT_EQ(Get(kValues), "((1 0.5) (0.5 1))");
  EXPECT_EQ(Get(kMeans), "(3 4)");
  Put(kSimulated, 2, Distribution("Normal", {7, 2}));
  Dialog().Put(kMeans, Variant::Array{Variant(), Variant()});
  Dialog().Put(kDeviations, Variant::Array{1.5, Variant()});
  EXPECT_EQ(Get(kMeans), "(none none)") << "those of the distributions";
  EXPECT_EQ(Get(kDeviations), "(1.5 none)");
  Dialog().Put(kValues, Rows({{1, -0.25}, {-0.25, 1}}));
  Put(kSimulated, 1, Distribution("Normal", {1, 1}));
  Dialog().Call("SaveDistributionToInput");
  EXPECT_EQ(sheet->VariableAt(1).Values()[0], -0.25);
  EXPECT_EQ(sheet->VariableAt(1).Values()[2], 7);
  EXPECT_EQ(sheet->VariableAt(0).Values()[3], 1.5);
  EXPECT_EQ(Property(*sheet, 1, "zOrder"), "Normal;");
}

TEST_F(Desk, PersonMayMakeAMatrixFileOfVariablesThatKeepTheirFits) {
  person.messageAnswers = {MessageAnswer::kOk};
  person.variableAnswers.emplace_back([](VariableQuestion& q) { q.first = {1, 3}; });
  document = std::make_unique<CAnalysisDoc>(person, &data);
  analysis->AttachDocument(document.get());
  analysis->RunSequenceStep(step::kDesign);
  EXPECT_EQ(person.TakeTexts(),
            (Names{"The input is not a valid Brenvolt matrix file. Do you want to create one?"}));
  EXPECT_NE(document->InputTable(), &data);
  EXPECT_TRUE(analysis->Matrix().attached);
  EXPECT_EQ(Get(kNames), "(Var1 Var3)");
  EXPECT_EQ(Get(kSimulated, 1), "(scNormalDistr 1 2 1 -1 0 0)");
}

MatrixFile CorrelatedFile(double correlation) {
  MatrixFile file = MatrixFile::Identity({"Var2", "Var1"});
  file.correlations = {{1, correlation}, {correlation, 1}};
  return file;
}

// Whether a project keeps the matrix beside the input or the fits of this analysis were saved with it.
TEST_F(Desk, CorrelationsThatAreKeptWithTheInputStay) {
  for (const bool inProject : {true, false}) {
    SCOPED_TRACE(inProject);
    analysis.reset(Kro6NewAnalysis());
    Open(&data);
    Dialog().Call("Cancel");
    if (inProject) {
      const auto find = [](const Spreadsheet&, const std::string&) {
        return *MakeMatrixFile(CorrelatedFile(0.6));
      };
      document->SetMatrixSource({[] { return Names(); }, find});
    } else {
      analysis->Matrix().saved = CorrelatedFile(0.6);
    }
    analysis->RunSequenceStep(step::kDesign);
    EXPECT_EQ(Get(kValues), "((1 0.6 0) (0.6 1 0) (0 0 1))");
    EXPECT_EQ(Get(kMeans), "(none none none)") << "those of the distributions, which may change";
    Put(kSimulated, 1, Distribution("Normal", {4, 1}));
    Put(kSimulated, 2, Distribution("Normal", {7, 2}));
    Dialog().Call("SaveDistributionToInput");
    const auto matrix =
        std::dynamic_pointer_cast<CAnalysisTableDoc>(Dialog().Get("CorrelationMatrix").ToObject());
    EXPECT_EQ(matrix->Table().VariableAt(0).Values()[1], 0.6);
    ASSERT_EQ(Dialog().Call("OK").ToInteger(), 1);
    Dialog().Put("ImanConoverMethod", true);
    Dialog().Put("NumberOfSamples", 500);
    ASSERT_EQ(Dialog().Call("OK").ToInteger(), 1);
    EXPECT_EQ(analysis->Simulation().correlations->asked[1], 0.6);
  }
}

TEST_F(Desk, MatrixThatIsNotValidIsToldAndNotTaken) {
  Open(&data);
  Dialog().Call("Cancel");
  const auto find = [](const Spreadsheet&, const std::string&) {
    return std::make_unique<Spreadsheet>("faulty", 3, 3);
  };
  document->SetMatrixSource({[] { return Names(); }, find});
  person.TakeTexts();
  analysis->RunSequenceStep(step::kDesign);
  const Names said = person.TakeTexts();
  ASSERT_FALSE(said.empty());
  EXPECT_EQ(said.back(), ResourceString(kMsgSimulationFailedMatrix));
  EXPECT_EQ(analysis->CurrentStep(), step::kDesign);
  EXPECT_EQ(Get(kValues), "((1 0 0) (0 1 0) (0 0 1))");
}

TEST_F(Desk, RefusedEntriesChangeNothing) {
  Open(&data);
  const auto state = [this] {
    std::string all = Get(kNames) + Get(kValues) + Get(kMeans) + Get(kDeviations);
    for (int i = 1; i <= 3; ++i) all += Get(kOwn, i) + Get(kSimulated, i);
    return all;
  };
  const std::string before = state();
  const struct {
    const char* member;
    int place;
    Variant value;
    const char* reason;
  } rows[] = {
      {kNames, 0, Texts({}), "a design has at least one variable"},
      {kNames, 0, Texts({"Var1", "Var1"}), "is there twice (variable Var1)"},
      {kNames, 0, Texts({"Var1", "z"}), "no numeric variable called z (sheet data)"},
      {kValues, 0, Rows({{1, 0.4, 0}, {0.5, 1, 0}, {0, 0, 1}}), "the matrix is not symmetric"},
      {kValues, 0, Rows({{1, 1.5, 0}, {1.5, 1, 0}, {0, 0, 1}}), "is not a correlation"},
      {kValues, 0, Rows({{1, 0}, {0, 1}}), "a row has 2 values"},
      {kMeans, 0, Numbers({1, 2}), "2 values for 3 variables"},
      {kDeviations, 0, Numbers({1, 0, 1}), "0 is out of range (variable Var2)"},
      {kOwn, 1, Distribution("Normal", {1, -2}),
       "Invalid scale parameter entry for Normal distribution.  (variable Var1)"},
      {kOwn, 2, Distribution("Histogram", {0, 0.5, 1, 0.2, 0, 0.3, 0, 0, 0, 0}),
       "Invalid code and/or proportion parameter entry for Histogram distribution.  (variable Var2, the "
       "level 0 is "
       "there twice)"},
      {kOwn, 1, Distribution("Normal", {1, 2, 3}),
       "Normal takes 2 values, 6 with a truncation; got 3 (variable Var1)"},
      {kSimulated, 2, Distribution("Normal", {1}),
       "Normal takes 2 values, 6 with a truncation; got 1 (variable Var2)"},
      {kOwn, 1, Distribution("Weibull", {1, 2, 0, 1}),
       "Weibull takes 2 values, 3 with an offset, 7 with a truncation; got 4 (variable Var1)"},
      {kOwn, 1, Distribution("Poisson", {}), "Poisson takes 1 value, 5 with a truncation; got 0"},
      {kOwn, 1, Distribution("Normal", {1, 2, 1, 5, 1, 4}),
       "Minimum value must be less than maximum. (variable Var1)"},
      {kOwn, 1, Distribution("Cauchy", {1, 2}), "no distribution called Cauchy"},
      {kOwn, 1, Variant::Array{}, "expected a distribution, got an empty array"},
      {kSimulated, 4, Distribution("Normal", {1, 2}), "the design has no variable 4; it has 3"},
      {kSimulated, 1, "Rayleigh", "has no fitted Rayleigh distribution (variable Var1)"},
  };
  for (const auto& row : rows) {
    const std::string refusal = Refusal(
        [&] { row.place > 0 ? Put(row.member, row.place, row.value) : Dialog().Put(row.member, row.value); });
    EXPECT_NE(refusal.find(row.reason), std::string::npos) << refusal << "\nexpected " << row.reason;
    EXPECT_EQ(state(), before) << row.reason;
  }
}

TEST_F(Desk, NothingToSimulateIsRefused) {
  Open(&data);
  Put(kSimulated, 1, Variant());
  const std::string why = "No variable of the design has a distribution and takes part in the simulation.";
  EXPECT_EQ(Refusal([&] { Dialog().Call("SaveDistributionToInput"); }), why);
  EXPECT_EQ(Refusal([&] { Dialog().Get("CorrelationMatrix"); }), why);
  EXPECT_EQ(Dialog().Call("OK").ToInteger(), 0);
  EXPECT_EQ(person.TakeTexts(), Names{why});
  EXPECT_EQ(analysis->CurrentStep(), step::kDesign);
}

TEST_F(Desk, ControlsDoWhatMembersDo) {
  using namespace design_dialog;
  Open(&data);
  const auto& lines = Window().Controls().At(kVariableList).items;
  EXPECT_EQ(lines, (Names{"Var1: Normal(location=1.0000, scale=2.0000) [-1, ]", "Var2: no distribution",
                          "Var3: no distribution"}));
  Window().Check(kTakesPart, false);
  EXPECT_EQ(lines[0], "Var1: left out");
  EXPECT_EQ(Get(kSimulated, 1), "none");
  Window().Check(kTakesPart, true);
  EXPECT_TRUE(Window().Press(kSaveToInput));
  person.variableAnswers.emplace_back([](VariableQuestion& q) { q.first = {1, 2}; });
  EXPECT_TRUE(Window().Press(kVariables));
  EXPECT_EQ(Get(kNames), "(Var1 Var2)");
  EXPECT_FALSE(Window().Press(kEditCorrelations)) << "cancelled";
}

TEST_F(Desk, PropertiesThatCannotBeReadAreToldAndReplaced) {
  data.VariableAt(0).SetProperty("zTruncProp", "(1; 0)");
  Open(&data);
  EXPECT_EQ(person.TakeTexts(),
            (Names{"Variable properties error. Truncate property is missing or invalid."}));
  Put(kSimulated, 1, Distribution("Normal", {1, 2}));
  Dialog().Call("SaveDistributionToInput");
  EXPECT_EQ(Property(data, 0, "zTruncProp").substr(0, 6), "(0; 0;");
}

}  // namespace
}  // namespace brenvolt::sra
