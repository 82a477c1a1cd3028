// The frame of automation calls, over a dialog with one member for each way in which a call can end.
#include "host/analysis/dialog_automation.h"

#include <gtest/gtest.h>

#include "host/analysis/ports/headless_user_interface.h"
#include "host/automation/conversion.h"
#include "host/automation/dialog_interface.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

using enum AutomationType;

constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};
constexpr std::array<MemberDescription, 7> kDescribed{{
    Property("Echo", 0x60030000, kInteger, kInteger, "Gives back what was put.", kPlace),
    Property("Silent", 0x60030002, kText, kNone, "Throws without a text."),
    Property("Foreign", 0x60030003, kText, kNone, "Throws what is no exception of the language's library."),
    Property("Refuses", 0x60030004, kNone, kReal, "The control is disabled."),
    Property("Mistyped", 0x60030005, kInteger, kNone, "Gives a text where a number is described."),
    Method("Do", 0x60030006, kText, "Says what it is called in."),
    {"Choice", 0x60030007, MemberKind::kProperty, {}, kEnumeration, kEnumeration, "TestColours", "A colour."},
}};
constexpr InterfaceDescription kInterface{"TestDialog", "{00000000-0000-0000-0000-000000000001}", "help",
                                          kDescribed};
constexpr std::array<std::string_view, 2> kColours{"red", "blue"};
constexpr std::array<EnumerationDescription, 1> kEnumerations{{{"TestColours", "help", kColours}}};
constexpr std::array<InterfaceDescription, 1> kInterfaces{kInterface};
constexpr TypeLibrary kLibrary{
    "TestLibrary", "{00000000-0000-0000-0000-000000000002}", {1, 0}, "help", kEnumerations, kInterfaces};

constexpr std::int32_t kField = 100;
const DialogTemplate kTemplate{
    1,
    "the title",
    {{{kControlOk, ControlKind::kButton, ""}, {kControlCancel, ControlKind::kButton, ""}},
     {{kField, ControlKind::kRealField, ""}}},
    {}};
std::string_view NoStrings(std::int32_t) {
  return {};
}
const CAnalysisContext kContext(nullptr, NoStrings);

class TestDialog : public CAnalysisModelessDialog {
 public:
  explicit TestDialog(CAnalysisSupport& analysis) : CAnalysisModelessDialog(analysis, kTemplate) {}
  std::int32_t echo = 0;
};

using Indexes = std::span<const Variant>;
constexpr std::array<AutomationMember<TestDialog>, 7> kMembers{{
    {"Echo", [](TestDialog& d, Indexes i) { return Variant(d.echo + i[0].ToInteger()); },
     [](TestDialog& d, Indexes, const Variant& value) { d.echo = value.ToInteger(); }},
    {"Silent", [](TestDialog&, Indexes) -> Variant { throw Error("", "the place"); }, nullptr},
    {"Foreign", [](TestDialog&, Indexes) -> Variant { throw 7; }, nullptr},
    {"Refuses", nullptr,
     [](TestDialog& d, Indexes, const Variant& value) {
       d.Controls().Enable(kField, false);
       if (!d.Enter(kField, value.ToText())) ThrowControlRefused("the control is disabled");
     }},
    {"Mistyped", [](TestDialog&, Indexes) { return Variant("many"); }, nullptr},
    {"Do",
     [](TestDialog& d, Indexes) {
       return Variant(d.Analysis().IsUnderAutomation() ? "automation" : "nothing");
     },
     nullptr},
    {"Choice", [](TestDialog& d, Indexes) { return Variant(d.echo); },
     [](TestDialog& d, Indexes, const Variant& value) { d.echo = value.ToInteger(); }},
}};
static_assert(Binds(kInterface, kMembers));
constexpr std::array<AutomationMember<TestDialog>, 7> kWrongOrder{
    kMembers[1], kMembers[0], kMembers[2], kMembers[3], kMembers[4], kMembers[5], kMembers[6]};
static_assert(!Binds(kInterface, kWrongOrder));

struct DialogCalls : testing::Test {
  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", 3, 2};
  CAnalysisDoc document{userInterface, &sheet};
  CAnalysisSupport analysis{&document, kContext};
  AutomationModule module{{}, {}};
  TestDialog dialog{analysis};
  std::shared_ptr<DialogAutomation<TestDialog>> object =
      std::make_shared<DialogAutomation<TestDialog>>(dialog, kInterface, "CTestDialog", kMembers, module);

  DialogCalls() { AddTypeLibrary(kLibrary); }
  // Code and text of the failure of a call, and what the thread knows of it.
  template <class Call>
  std::pair<AutomationCode, std::string> FailureOf(Call call) {
    try {
      call();
    } catch (const AutomationFailure& failure) {
      return {failure.Code(), failure.what()};
    } catch (const AutomationError& error) {
      return {AutomationCode::kException, std::string(error.what()) + ": " + error.Reason()};
    }
    return {AutomationCode::kNone, ""};
  }
};

TEST_F(DialogCalls, EveryEndOfACallHasItsCodeAndText) {
  using enum AutomationCode;
  const std::array<Variant, 1> one{Variant(1)};
  const std::array<Variant, 1> textIndex{Variant("x")};
  struct Row {
    std::function<void()> call;
    AutomationCode code;
    std::string text;
    std::string source;
  };
  const std::string prefix = "Exception in automation method [CTestDialog::";
  const Row rows[] = {
      {[&] { object->Get("Silent"); }, kException, prefix + "get_Silent]: Unexpected Error",
       "CTestDialog::get_Silent"},
      {[&] { object->Get("Foreign"); }, kException, prefix + "get_Foreign]: Unexpected Error",
       "CTestDialog::get_Foreign"},
      {[&] { object->Put("Refuses", 1.5); }, kControlRefused, "the control is disabled",
       "CTestDialog::put_Refuses"},
      {[&] { object->Put("Refuses", "x"); }, kException, prefix + "put_Refuses]: type mismatch: not a number",
       "CTestDialog::put_Refuses"},
      {[&] { object->Get("Mistyped"); }, kException, prefix + "get_Mistyped]: type mismatch: not a number",
       "CTestDialog::get_Mistyped"},
      {[&] { object->Get("Echo"); }, kException, prefix + "get_Echo]: wrong number of arguments",
       "CTestDialog::get_Echo"},
      {[&] { object->Get("Echo", textIndex); }, kException, prefix + "get_Echo]: type mismatch: not a number",
       "CTestDialog::get_Echo"},
      {[&] { object->Put("Echo", 2.5, one); }, kException,
       prefix + "put_Echo]: type mismatch: not a 32-bit integer", "CTestDialog::put_Echo"},
      {[&] { object->Put("Choice", 2); }, kException, prefix + "put_Choice]: no constant 2 of TestColours",
       "CTestDialog::put_Choice"},
      {[&] { object->Put("Choice", "green"); }, kException,
       prefix + "put_Choice]: no constant green of TestColours", "CTestDialog::put_Choice"},
      {[&] { object->Get("Application"); }, kNotAvailable, "is not available",
       "CTestDialog::get_Application"},
      {[&] { object->Put("ResultsVariables", 1); }, kNotAvailable, "is not available",
       "CTestDialog::put_ResultsVariables"},
      {[&] { object->Put("ResultsOption", 1); }, kNotAvailable, "is not available",
       "CTestDialog::put_ResultsOption"},
      {[&] { object->Put("Silent", 1); }, kMemberNotFound, "no such call", ""},
      {[&] { object->Get("Do"); }, kMemberNotFound, "no such call", ""},
      {[&] { object->Invoke(0x77, CallKind::kGet, {}); }, kMemberNotFound, "no such call", ""},
  };
  for (const Row& row : rows) {
    const auto [code, text] = FailureOf(row.call);
    EXPECT_EQ(code, row.code) << row.text;
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(ThreadErrorInfo().source, row.source);
    EXPECT_EQ(ThreadErrorInfo().code, row.source.empty() ? kNone : row.code);
    EXPECT_FALSE(analysis.IsUnderAutomation()) << row.text;
    EXPECT_EQ(dialog.echo, 0) << row.text;
  }
  EXPECT_EQ(analysis.ContextEntry(), 1) << "every call has left the analysis again";
  EXPECT_EQ(object->Call("Do").ToText(), "automation");
  EXPECT_EQ(ThreadErrorInfo().code, kNone) << "cleared by the call";
}

TEST_F(DialogCalls, ArgumentsArriveAsTheDescribedTypes) {
  const Variant two[] = {Variant("2")};
  object->Put("Echo", Variant("40"), two);
  EXPECT_EQ(object->Get("Echo", two).ToInteger(), 42);
  object->Put("Choice", "blue");
  EXPECT_EQ(object->Get("Choice").ToInteger(), 1);
  object->Put("Choice", false);
  EXPECT_EQ(object->Get("Choice").ToInteger(), 0);
  EXPECT_EQ(object->Get("Name").ToText(), "the title");
  EXPECT_EQ(object->Call("OK").ToInteger(), 1);
}

TEST_F(DialogCalls, ClosedDialogFailsBeforeAnythingElse) {
  object->DialogClosed();
  for (const auto& call : {std::function<void()>([&] { object->Get("Echo"); }),
                           {[&] { object->Put("Refuses", "x"); }},
                           {[&] { object->Call("OK"); }},
                           {[&] { object->Get("Parent"); }}}) {
    EXPECT_EQ(FailureOf(call), std::pair(AutomationCode::kDialogClosed, std::string("the dialog is closed")));
    EXPECT_EQ(ThreadErrorInfo().code, AutomationCode::kDialogClosed);
  }
}

TEST_F(DialogCalls, ParentIsTheAnalysisAndOutlivesIt) {
  auto shortLived = std::make_unique<CAnalysisSupport>(&document, kContext);
  TestDialog of(*shortLived);
  DialogAutomation<TestDialog> calls(of, kInterface, "CTestDialog", kMembers, module);
  const auto parent = calls.Get("Parent").ToObject();
  ASSERT_NE(parent, nullptr);
  EXPECT_EQ(parent->InterfaceName(), "BrvAnalysis");
  EXPECT_EQ(parent->Get("InputName").ToText(), "data");
  EXPECT_EQ(parent->Get("CurrentStep").ToInteger(), 0);
  EXPECT_EQ(parent->Get("Dialog").ToObject(), nullptr);
  const Variant name[] = {Variant("TestDialog")};
  const auto unreachable = parent->Get("DialogInterface", name).ToObject();
  EXPECT_EQ(FailureOf([&] { unreachable->Call("Do"); }).first, AutomationCode::kNotAvailable)
      << "never built";
  const Variant nothing[] = {Variant("NoDialog")};
  EXPECT_THROW(parent->Get("DialogInterface", nothing), Error);
  EXPECT_EQ(calls.Get("Parent").ToObject(), parent) << "one object for one analysis";
  shortLived.reset();
  EXPECT_THROW(parent->Get("Name"), Error);
}

TEST(AutomationText, FailuresWithoutADescriptionAreWrittenByTheirCode) {
  struct Row {
    std::uint32_t code;
    const char* text;
  };
  for (const Row& row : {Row{0x80040200, "IDispatch error #0"},
                         {0x80040201, "IDispatch error #1"},
                         {0x8004ffff, "IDispatch error #65023"},
                         {0x80050000, "Unknown error 0x80050000"},
                         {0x800401ff, "Unknown error 0x800401FF"},
                         {0, "Unknown error 0x0"}}) {
    EXPECT_EQ(AutomationText(row.code, ""), row.text);
    EXPECT_EQ(AutomationText(row.code, "described"), "described");
  }
}

}  // namespace
}  // namespace brenvolt
