#include "host/analysis/analysis_support.h"

#include <gtest/gtest.h>

#include "host/analysis/analysis_dialog.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/ports/headless_user_interface.h"

namespace brenvolt {
namespace {

// A small analysis: 1 starts and goes on to 2; 2 and 3 have no return step, 4 returns to 2, 5 fails.
const DialogTemplate kTemplate{
    1, "test", {{{kControlOk, ControlKind::kButton, ""}, {kControlCancel, ControlKind::kButton, ""}}}, {}};

std::string_view NoStrings(std::int32_t) {
  return "text";
}
const CAnalysisContext kContext(nullptr, NoStrings);

class StepDialog : public CAnalysisModelessDialog {
 public:
  StepDialog(CAnalysisSupport& analysis, std::int32_t next)
      : CAnalysisModelessDialog(analysis, kTemplate), next_(next) {}

 protected:
  bool OnOk() override {
    if (next_ != 0) GoToStep(next_);
    return next_ != 0;
  }

 private:
  std::int32_t next_;
};

template <std::int32_t Next>
std::int32_t Open(CAnalysisSupport& analysis) {
  return CAnalysisModelessDialog::CreateAnalysisDialog(std::make_unique<StepDialog>(analysis, Next)) ? -1 : 0;
}
const SequenceStep kSequence[] = {{1, [](CAnalysisSupport&) { return 1; }, 2, 0},
                                  {2, Open<3>, 0, 0},
                                  {3, Open<4>, 0, 0},
                                  {4, Open<5>, 0, 2},
                                  {5, [](CAnalysisSupport&) { return 0; }, 0, 0},
                                  {0, nullptr, 0, 0}};

class SmallAnalysis : public CAnalysisSupport {
 public:
  explicit SmallAnalysis(CAnalysisDoc* document) : CAnalysisSupport(document, kContext) {
    InstallSequence(kSequence);
  }
};

struct Fixture : testing::Test {
  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", 3, 2};
  CAnalysisDoc document{userInterface, &sheet};
  SmallAnalysis analysis{&document};

  void Press(std::int32_t control) { analysis.GetDialog()->Press(control); }
};

using Sequence = Fixture;

TEST_F(Sequence, FollowOnStepRunsAtOnce) {
  ASSERT_TRUE(analysis.RunSequenceStep(1));
  EXPECT_EQ(analysis.CurrentStep(), 2);
}

TEST_F(Sequence, CancelGoesToTheReturnStepElseToTheOpenerElseEnds) {
  analysis.RunSequenceStep(1);
  Press(kControlOk);
  Press(kControlOk);
  ASSERT_EQ(analysis.CurrentStep(), 4);
  Press(kControlCancel);
  EXPECT_EQ(analysis.CurrentStep(), 2) << "the return step of 4";
  Press(kControlOk);
  ASSERT_EQ(analysis.CurrentStep(), 3);
  Press(kControlCancel);
  EXPECT_EQ(analysis.CurrentStep(), 2) << "the step that opened 3";
  Press(kControlCancel);
  EXPECT_EQ(analysis.CurrentStep(), 0);
  EXPECT_EQ(analysis.GetDialog(), nullptr);
}

TEST_F(Sequence, StepThatFailsLeavesTheDialogOpen) {
  analysis.RunSequenceStep(4);
  const CAnalysisDialog* before = analysis.GetDialog();
  Press(kControlOk);
  EXPECT_EQ(analysis.GetDialog(), before);
  EXPECT_EQ(analysis.CurrentStep(), 4);
}

TEST_F(Sequence, ForwardSequenceKnowsOnlyTheTablesSteps) {
  EXPECT_TRUE(analysis.ForwardSequence(0, 1));
  EXPECT_TRUE(analysis.ForwardSequence(2, 4));
  EXPECT_FALSE(analysis.ForwardSequence(2, 9));
  EXPECT_FALSE(analysis.ForwardSequence(9, 2));
  EXPECT_FALSE(analysis.RunSequenceStep(9));
}

using InputTable = Fixture;

TEST_F(InputTable, EditsRefusePlacesThatTheTableDoesNotHave) {
  EXPECT_TRUE(analysis.SetInputTableValue(3, 2, 1.5));
  EXPECT_EQ(sheet.VariableAt(1).Values()[2], 1.5);
  for (const auto& [row, column] : {std::pair{0, 1}, {4, 1}, {1, 0}, {1, 3}, {-1, 1}}) {
    EXPECT_FALSE(analysis.SetInputTableValue(row, column, 9.0)) << row << ',' << column;
  }
  EXPECT_FALSE(analysis.InputTableTextValueEdit(1, 1.0, "x")) << "no label there yet";
  ASSERT_TRUE(analysis.SetInputTableValue(1, 1, std::string("low")));
  ASSERT_TRUE(analysis.SetInputTableValue(2, 1, std::string("high")));
  ASSERT_TRUE(analysis.SetInputTableValue(3, 1, std::string("low")));
  EXPECT_EQ(sheet.VariableAt(0).Values()[0], sheet.VariableAt(0).Values()[2]);
  EXPECT_NE(sheet.VariableAt(0).Values()[0], sheet.VariableAt(0).Values()[1]);
  EXPECT_TRUE(analysis.InputTableTextValueEdit(1, 1.0, "lowest"));
  EXPECT_EQ(sheet.VariableAt(0).Label(1.0), "lowest");
}

TEST_F(InputTable, AddedCasesAndVariablesAreMissing) {
  sheet.VariableAt(0).SetMissingCode(-9);
  ASSERT_TRUE(analysis.InputTableAddCases(2));
  ASSERT_TRUE(analysis.InputTableAddVariables(1));
  EXPECT_EQ(sheet.CaseCount(), 5U);
  EXPECT_EQ(sheet.VariableAt(0).Values()[4], -9);
  EXPECT_TRUE(sheet.VariableAt(2).IsMissing(0));
  EXPECT_EQ(analysis.get_vn(3), "Var3");
  EXPECT_EQ(analysis.get_md(1), -9);
}

TEST_F(InputTable, VariableListsShortenRuns) {
  EXPECT_EQ(analysis.dsplst({1, 2, 3, 5, 7, 8}), "1-3 5 7-8");
  EXPECT_EQ(analysis.dsplst({3, 2}), "3 2");
  EXPECT_EQ(analysis.dsplst({}), "");
}

TEST(AnalysisMemory, BlocksAreZeroCountedAndFailWhenLimited) {
  const std::size_t before = OutstandingAnalysisBlocks();
  {
    AnalysisArray<double> array(1000);
    EXPECT_EQ(array[999], 0.0);
    EXPECT_EQ(OutstandingAnalysisBlocks(), before + 1);
    AnalysisArray<double> taken = std::move(array);
    EXPECT_EQ(OutstandingAnalysisBlocks(), before + 1);
    EXPECT_THROW(AnalysisArray<double>(SIZE_MAX / 4), std::bad_alloc);
  }
  EXPECT_EQ(OutstandingAnalysisBlocks(), before);
  LimitAnalysisAllocations(1);
  void* first = CAnalysisSupport::AllocMem(8);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(CAnalysisSupport::AllocMem(8), nullptr);
  LimitAnalysisAllocations(kNoAllocationLimit);
  CAnalysisSupport::FreeMem(first);
}

}  // namespace
}  // namespace brenvolt
