#include "host/contract/module_contract.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "host/analysis/ports/headless_user_interface.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt {
namespace {

// The place of a virtual operation in the table of virtual functions (Itanium C++ ABI: a pointer to a virtual
// member holds 1 plus the offset of its slot).
template <class Member>
std::size_t SlotOf(Member member) {
  std::ptrdiff_t raw = 0;
  std::memcpy(&raw, &member, sizeof(raw));
  return static_cast<std::size_t>(raw - 1) / sizeof(void*);
}

TEST(ModuleContract, KeepsTheSlotOrderThatModulesAreCompiledAgainst) {
  using S = CAnalysisSupport;
  using SetText = bool (S::*)(int, int, const std::string&);
  using SetNumber = bool (S::*)(int, int, double);
  // The destructor takes the first two slots.
  const std::size_t slots[] = {SlotOf(&S::InitializeAfterFileChanged),
                               SlotOf(&S::Initialize),
                               SlotOf(&S::GetDialog),
                               SlotOf(&S::GetDialgInterface),
                               SlotOf(&S::ContextEntry),
                               SlotOf(&S::ContextExit),
                               SlotOf(&S::ContextWrite),
                               SlotOf(&S::ContextRead),
                               SlotOf(&S::ContextInit),
                               SlotOf(&S::ForwardSequence),
                               SlotOf(&S::GetLibInstance),
                               SlotOf(&S::GetResourceString),
                               SlotOf(&S::GetAnalysisID),
                               SlotOf(&S::GetDialogAutomationInterface),
                               SlotOf(&S::UpdateLastAutomationDefinition),
                               SlotOf(&S::get_md),
                               SlotOf(&S::get_vn),
                               SlotOf(&S::dsplst),
                               SlotOf(&S::SetMessageErrorHandler),
                               SlotOf(&S::GetAnalysisName),
                               SlotOf(&S::GetInputTableDisplayName),
                               SlotOf(&S::GetPlcmprStr),
                               SlotOf(&S::AnalysisQueryUpdate),
                               SlotOf(&S::GetMacroReferences),
                               SlotOf(&S::BeforeRouteOutput),
                               SlotOf(&S::OnCurrentDialogChange),
                               SlotOf(&S::BeforeCallEventHandler),
                               SlotOf(&S::AfterCallEventHandler),
                               SlotOf(static_cast<SetText>(&S::SetInputTableValue)),
                               SlotOf(static_cast<SetNumber>(&S::SetInputTableValue)),
                               SlotOf(&S::SetInputTableTextLabel),
                               SlotOf(&S::InputTableAddCases),
                               SlotOf(&S::InputTableAddVariables),
                               SlotOf(&S::InputTableTextValueEdit),
                               SlotOf(&S::SupportsByGroup),
                               SlotOf(&S::SupportsCaseWeights),
                               SlotOf(&S::AcceptsMatrixInput),
                               SlotOf(&S::BeforeClose)};
  for (std::size_t i = 0; i < std::size(slots); ++i) EXPECT_EQ(slots[i], i + 2) << "operation " << i;
}

std::string_view NoStrings(std::int32_t) {
  return {};
}
const CAnalysisContext kContext(nullptr, NoStrings);

// An analysis as a module built elsewhere declares it.
class OutsideAnalysis : public CAnalysisSupport {
 public:
  explicit OutsideAnalysis(CAnalysisDoc* document) : CAnalysisSupport(document, kContext) {
    static constexpr SEQFUNCTTBL kSequence[] = {
        {1, &OutsideAnalysis::Init, 2, 0}, {2, &OutsideAnalysis::CountTheStep, 0, 1}, {0, nullptr, 0, 0}};
    InstallSequence(kSequence);
  }

  KroTag caseSelection;
  Kro88Tag startupMenus;
  b1_com counts;
  Wght_com weights;
  int stepsCounted = 0;

 private:
  static std::int32_t Init(CAnalysisSupport& analysis) {
    auto& self = static_cast<OutsideAnalysis&>(analysis);
    _AddMenu* const noMenu = nullptr;
    self.InitCommons(&self.caseSelection, &self.startupMenus, &self.counts, &self.weights, noMenu);
    return 1;
  }
  static std::int32_t CountTheStep(CAnalysisSupport& analysis) {
    return ++static_cast<OutsideAnalysis&>(analysis).stepsCounted;
  }
};

TEST(ModuleContract, AnAnalysisBuiltElsewhereSharesItsBlocksWithTheHost) {
  HeadlessUserInterface userInterface;
  Spreadsheet table("Input", 3, 2);
  CAnalysisDoc document(userInterface, &table);
  OutsideAnalysis analysis(&document);
  ASSERT_TRUE(analysis.RunSequenceStep(1));
  EXPECT_EQ(analysis.stepsCounted, 1) << "the follow-on step";
  EXPECT_EQ(analysis.counts.numberOfCases, 3);
  EXPECT_EQ(analysis.counts.numberOfVariables, 2);
  analysis.caseSelection.caseSelectionEnabled = false;
  EXPECT_FALSE(analysis.CaseSelectionEnabled());
  analysis.startupMenus.startupMenusEnabled = false;
  EXPECT_FALSE(analysis.StartupMenusEnabled());
  analysis.weights.caseWeightsEnabled = false;
  EXPECT_FALSE(analysis.CaseWeightsEnabled());
}

TEST(ModuleContract, RandomNumbersComeFromTheProcessStream) {
  const RandomStream stream(-42);
  EXPECT_EQ(rnd_(-42), stream.Uniform(0)) << "seeding draws";
  EXPECT_EQ(rnd_(0), stream.Uniform(1));
  EXPECT_EQ(CRandomizer().GetDouble(), stream.Uniform(2));
  double normal = 0;
  stream.FillNormal(3, 2.0, {&normal, 1});
  EXPECT_EQ(znormal_(2.0), normal);
  inirnd_(0, 0);
  EXPECT_EQ(ProcessStreamPosition(), 0U) << "seeding does not draw";
  EXPECT_EQ(rnd_(0), RandomStream(0).Uniform(0));
}

TEST(ModuleContract, ServicesAnswerUnderTheirNames) {
  double minimum = 1;
  double maximum = 263.25;
  EXPECT_DOUBLE_EQ(scling_double_QUA(minimum, maximum, 50, 20), 10);
  EXPECT_DOUBLE_EQ(minimum, 0);
  EXPECT_DOUBLE_EQ(maximum, 270);

  constexpr LibraryId kLibrary{"{0F5C1A52-1F44-4F0B-9B7A-2B9F5C0D4E11}"};
  EXPECT_TRUE(KroOleRegisterTypeLib(nullptr, kLibrary, nullptr, nullptr));
  EXPECT_EQ(RegisteredTypeLibraries().back(), kLibrary.text);

  HeadlessUserInterface userInterface;
  const auto bar = CKroProgressBar::new_ProgressBar(userInterface, "work", 2);
  bar->ShowNow();
  EXPECT_EQ(userInterface.progressCaptions, std::vector<std::string>{"work"});
  EXPECT_EQ(IID_IMFCPointer.name, "IMFCPointer");
}

}  // namespace
}  // namespace brenvolt
