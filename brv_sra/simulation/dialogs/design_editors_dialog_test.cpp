// The sub-editors of the design dialog, as a person uses them.
#include <gtest/gtest.h>

#include "brv_sra/resources/design_editor_templates.h"
#include "brv_sra/simulation/dialogs/design_desk_dialog_test.h"
#include "host/analysis/analysis_dialog.h"

namespace brenvolt::sra {
namespace {

struct DesignEditors : DesignDesk {
  using Editor = CAnalysisModalDialog;

  // What a person does in the editor that a button opens; whether the button did something.
  bool Edit(std::int32_t button, const std::function<void(Editor&)>& act) {
    person.modalAnswers.emplace_back(act);
    const bool done = Window().Press(button);
    EXPECT_TRUE(person.modalAnswers.empty()) << "the editor was not opened";
    return done;
  }
  std::string Text(Editor& editor, std::int32_t control) { return editor.Controls().Text(control); }
};

TEST_F(DesignEditors, DistributionIsEnteredWithOffsetAndBounds) {
  using namespace design_distribution;
  Open(&data);
  Window().Select(design_dialog::kVariableList, 1);
  EXPECT_TRUE(Edit(design_dialog::kEditDistribution, [&](Editor& editor) {
    EXPECT_EQ(editor.Controls().At(kTypes).items.size(), 16U);
    EXPECT_EQ(Text(editor, kVariable), "Var2");
    editor.Select(kTypes, static_cast<int>(DistributionCode::kWeibull));
    EXPECT_EQ(Text(editor, kParameterLabel), "Scale:");
    EXPECT_EQ(Text(editor, kParameterLabel + 2), "Offset:");
    EXPECT_FALSE(editor.Controls().At(kParameter + 3).visible);
    EXPECT_FALSE(editor.Press(kControlOk)) << "nothing is entered";
    editor.Enter(kParameter, "3");
    editor.Enter(kParameter + 1, "2");
    editor.Enter(kParameter + 2, "0.5");
    editor.Enter(kMaximum, "9");
    EXPECT_TRUE(editor.Press(kControlOk));
  }));
  EXPECT_EQ(person.TakeTexts().size(), 1U);
  EXPECT_EQ(Get(kOwn, 2), "(scWeibull 3 2 0.5 0 0 1 9)");
  EXPECT_EQ(Get(kSimulated, 2), Get(kOwn, 2));
  EXPECT_EQ(Window().Controls().At(design_dialog::kVariableList).items[1],
            "Var2: Weibull(scale=3.0000, shape=2.0000) + 0.5 [, 9]");
}

// The distributions differ in their fields; the labels are those of the catalogue.
TEST_F(DesignEditors, EveryTypeShowsItsParameters) {
  using namespace design_distribution;
  const char* const labels[kDistributionCount] = {"Location:,Scale:",
                                                  "Scale:,Shape:,Offset:",
                                                  "Location:,Scale:,Offset:",
                                                  "Scale:,Offset:",
                                                  "Scale:,Offset:",
                                                  "Scale:,Shape:,Offset:",
                                                  "Mixing coef. ,Mean ,Std.dev ",
                                                  "Type:,Gamma:,Delta:,Lambda:,xi:",
                                                  "Location:,Scale:,Shape:",
                                                  "Scale:,Shape:,Offset:",
                                                  "Minimum:,Maximum:,Mode:",
                                                  "Proportion:,N:",
                                                  "Mean:",
                                                  "Proportion:",
                                                  "Proportion:",
                                                  "Value:,Proportion"};
  Open(&data);
  EXPECT_FALSE(Edit(design_dialog::kEditDistribution, [&](Editor& editor) {
    for (int code = 0; code < kDistributionCount; ++code) {
      editor.Select(kTypes, code);
      std::string shown;
      for (std::int32_t i = 0; i < 5; ++i) {
        if (editor.Controls().At(kParameterLabel + i).visible)
          shown += (shown.empty() ? "" : ",") + Text(editor, kParameterLabel + i);
      }
      EXPECT_EQ(shown, labels[code]) << code;
    }
  })) << "cancelled";
  EXPECT_EQ(Get(kOwn, 1), "none");
}

TEST_F(DesignEditors, RefusedEntryLeavesWhatWasThere) {
  using namespace design_distribution;
  Open(&data);
  const struct {
    DistributionCode type;
    std::int32_t control;
    const char* valid;
    const char* refused;
    const char* message;
  } rows[] = {
      {DistributionCode::kNormal, kParameter + 1, "2", "-1", "Invalid scale parameter entry for Normal"},
      {DistributionCode::kNormal, kParameter + 1, "2", "two", "Invalid scale parameter entry for Normal"},
      {DistributionCode::kNormal, kParameter, "5", "-444", "Invalid "},
      {DistributionCode::kWeibull, kParameter + 2, "1", "x", "One or more invalid offset values found."},
      {DistributionCode::kBinomial, kParameter, "0.5", "1.5", "Proportion should be between 0 and 1."},
      {DistributionCode::kBinomial, kParameter + 1, "10", "2.5", "Invalid trials parameter entry"},
      {DistributionCode::kPoisson, kParameter, "3", "0", "Invalid mean parameter entry"},
      {DistributionCode::kPoisson, kMinimum, "1", "low", "Minimum value must be less than maximum."},
      {DistributionCode::kGaussianMixture, kMixtures, "20", "21", "Invalid number of mixtures."},
      {DistributionCode::kGaussianMixture, kMixtures, "2", "1", "Invalid number of mixtures."},
      {DistributionCode::kHistogram, kLevels, "3", "0", "Invalid number of levels."},
  };
  Edit(design_dialog::kEditDistribution, [&](Editor& editor) {
    for (const auto& row : rows) {
      editor.Select(kTypes, static_cast<int>(row.type));
      editor.Enter(row.control, row.valid);
      EXPECT_TRUE(person.TakeTexts().empty()) << row.valid;
      editor.Enter(row.control, row.refused);
      const auto texts = person.TakeTexts();
      ASSERT_EQ(texts.size(), 1U) << row.refused;
      EXPECT_NE(texts[0].find(row.message), std::string::npos) << texts[0];
      EXPECT_EQ(Text(editor, row.control), row.valid);
    }
    // What concerns several values is checked by OK, which then stays.
    editor.Select(kTypes, static_cast<int>(DistributionCode::kTriangular));
    for (const auto& [place, text] : {std::pair(0, "1"), std::pair(1, "5"), std::pair(2, "7")})
      editor.Enter(kParameter + place, text);
    EXPECT_FALSE(editor.Press(kControlOk));
    editor.Enter(kParameter + 2, "2");
    editor.Enter(kMinimum, "6");
    EXPECT_FALSE(editor.Press(kControlOk));
  });
  const auto texts = person.TakeTexts();
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_NE(texts[0].find("Invalid mode and/or maximum parameter entry for Triangular"), std::string::npos);
  EXPECT_EQ(texts[1], "The bounds leave nothing of the Triangular distribution.");
  EXPECT_EQ(Get(kOwn, 1), "none");
}

TEST_F(DesignEditors, UserDefinedTypesAreEnteredGroupByGroup) {
  using namespace design_user_defined;
  Open(&data);
  EXPECT_TRUE(Edit(design_dialog::kEditUserDefined, [&](Editor& editor) {
    EXPECT_EQ(Text(editor, kTitle), "Custom Gaussian mixture distribution: GM Parameters");
    EXPECT_EQ(Text(editor, kNote), "(Mixing.Coef.1,Mean 1, Std.Dev 1, Mixing Coef.2,...)");
    editor.Check(kHistogram, true);
    EXPECT_EQ(Text(editor, kTitle), "Custom Histogram distribution: Histogram Parameters");
    editor.Enter(kLevels, "3");
    const char* const classes[3][2] = {{"0", "0.7"}, {"1", "0.2"}, {"5", "0.2"}};
    for (int i = 0; i < 3; ++i) {
      editor.Select(kGroup, i);
      editor.Enter(kParameter, classes[i][0]);
      editor.Enter(kParameter + 1, classes[i][1]);
    }
    EXPECT_EQ(editor.Controls().At(kTable).items[2], "3: Code 5, Proportion 0.2");
    EXPECT_EQ(Text(editor, kTotal), "Total: 1.1");
    EXPECT_FALSE(editor.Press(kControlOk));
    EXPECT_EQ(person.TakeTexts().size(), 1U);
    editor.Enter(kParameter + 1, "0.1");
    EXPECT_EQ(Text(editor, kTotal), "Total: 1");
    EXPECT_TRUE(editor.Press(kControlOk));
  }));
  EXPECT_EQ(Get(kSimulated, 1), "(scDiscrete 0 0.7 1 0.2 5 0.1 0 0 0 0)");
  Edit(design_dialog::kEditUserDefined, [&](Editor& editor) {
    EXPECT_TRUE(editor.Controls().IsChecked(kHistogram)) << "it starts with what the variable has";
    EXPECT_EQ(editor.Controls().At(kTable).items.size(), 3U);
  });
}

TEST_F(DesignEditors, CorrelationsAreMirroredAndJudgedBeforeARun) {
  using namespace design_correlations;
  Open(&data);
  const auto correlate = [](Editor& editor, int i, int j, const char* text) {
    editor.Select(kFirst, i);
    editor.Select(kSecond, j);
    editor.Enter(kCorrelation, text);
  };
  EXPECT_TRUE(Edit(design_dialog::kEditCorrelations, [&](Editor& editor) {
    EXPECT_EQ(Text(editor, kVerdict), "The correlation matrix is positive definite.");
    correlate(editor, 1, 0, "-0.9");
    EXPECT_EQ(Text(editor, kVerdict), "The correlation matrix is positive definite.");
    correlate(editor, 0, 1, "1.5");
    EXPECT_EQ(Text(editor, kCorrelation), "-0.9");
    EXPECT_EQ(person.TakeTexts().size(), 1U);
    correlate(editor, 0, 2, "-0.9");
    correlate(editor, 1, 2, "-0.9");
    EXPECT_EQ(Text(editor, kVerdict),
              "The correlation matrix is not positive definite: its smallest eigenvalue is -0.8. A "
              "simulation repairs it; the largest change is Var1, Var2: -0.9 -> -0.5.");
    EXPECT_EQ(editor.Controls().At(kChanges).items,
              (Names{"Var1, Var2: -0.9 -> -0.5", "Var1, Var3: -0.9 -> -0.5", "Var2, Var3: -0.9 -> -0.5"}));
    // In the matrix the upper triangle counts; an entry that is none leaves all as they were.
    person.matrixAnswers.emplace_back([](MatrixQuestion& question) { question.cells[1] = "2"; });
    EXPECT_FALSE(editor.Press(kEditMatrix));
    EXPECT_EQ(person.TakeTexts(), (Names{"Some of the entries were invalid and reset to original value. "
                                         "Values should be between -1 and 1."}));
    person.matrixAnswers.emplace_back([&](MatrixQuestion& question) {
      // While it is edited the same is said of it.
      const MatrixVerdict verdict = question.judge({1, -0.9, -0.9, -0.9, 1, -0.9, -0.9, -0.9, 1});
      EXPECT_EQ(verdict.text, Text(editor, kVerdict));
      EXPECT_EQ(verdict.changes, editor.Controls().At(kChanges).items);
      ASSERT_EQ(verdict.eigenvalues.size(), 3U);
      EXPECT_NEAR(verdict.eigenvalues[0], -0.8, 1e-12);
      EXPECT_NEAR(verdict.eigenvalues[2], 1.9, 1e-12);
      EXPECT_TRUE(question.judge({1, 0.5, 0, 0.5, 1, 0, 0, 0, 1}).changes.empty());
      question.cells = {"1", "0.4", "0", "0.7", "1", "0.25", "0.7", "0.7", "1"};
    });
    EXPECT_TRUE(editor.Press(kEditMatrix));
    EXPECT_EQ(editor.Controls().At(kPairs).items, (Names{"Var1, Var2: 0.4", "Var2, Var3: 0.25"}));
    EXPECT_TRUE(editor.Controls().At(kChanges).items.empty());
    editor.Select(kVariable, 2);
    editor.Enter(kMean, "12");
    editor.Enter(kDeviation, "2");
    editor.Enter(kDeviation, "0");
    EXPECT_EQ(Text(editor, kDeviation), "2");
    EXPECT_TRUE(editor.Press(kControlOk));
  }));
  EXPECT_EQ(person.TakeTexts(),
            (Names{"The standard deviation of Var3 must be greater than 0, or empty for that of its "
                   "distribution."}));
  EXPECT_EQ(Get(kValues), "((1 0.4 0) (0.4 1 0.25) (0 0.25 1))");
  EXPECT_EQ(Get(kMeans), "(none none 12)");
  EXPECT_EQ(Get(kDeviations), "(none none 2)");
}

TEST_F(DesignEditors, DefaultDistributionsAreTakenOverLeftOrLeftOut) {
  using namespace design_defaults;
  Open(&data);
  EXPECT_TRUE(Edit(design_dialog::kEditDefaults, [&](Editor& editor) {
    EXPECT_EQ(editor.Controls().At(kFitted).items.size(), 2U) << "the saved ones, in their order";
    editor.Select(kFitted, 1);
    EXPECT_TRUE(editor.Press(kTakeOver));
    EXPECT_EQ(editor.Controls().At(kVariables).items[0], "Var1: Weibull(scale=3.0000, shape=2.0000) [-1, ]");
    EXPECT_EQ(Text(editor, kBounds), "Bounds are in force.");
    editor.Check(kUseFitted, true);
    EXPECT_EQ(editor.Controls().At(kVariables).items[0], "Var1: Normal(location=1.0000, scale=2.0000)");
    EXPECT_EQ(Text(editor, kBounds), "Bounds have no effect: Var1.");
    editor.Select(kVariables, 1);
    EXPECT_FALSE(editor.Press(kTakeOver)) << "it has none";
    editor.Check(kTakesPart, false);
    EXPECT_TRUE(editor.Press(kControlOk));
  }));
  EXPECT_EQ(Get(kOwn, 1), "(scWeibull 3 2 0 1 -1 0 0)");
  EXPECT_EQ(Get("UseFittedDistributions"), "1");
  EXPECT_EQ(Get("IsVariableLeftOut", 2), "1");
  EXPECT_TRUE(Edit(design_dialog::kEditDefaults, [&](Editor& editor) {
    EXPECT_TRUE(editor.Press(kLeave));
    EXPECT_TRUE(editor.Press(kControlOk));
  }));
  EXPECT_EQ(Get(kOwn, 1), "none");
  EXPECT_FALSE(Edit(design_dialog::kEditDefaults, [&](Editor& editor) {
    EXPECT_TRUE(editor.Press(kTakeOverAll));
    EXPECT_TRUE(editor.Press(kControlCancel));
  }));
  EXPECT_EQ(Get(kOwn, 1), "none") << "cancelled";
}

}  // namespace
}  // namespace brenvolt::sra
