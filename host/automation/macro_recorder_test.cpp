// The text of recorded macros.
#include "host/automation/macro_recorder.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

using enum AutomationType;
using Array = Variant::Array;

constexpr std::array<std::string_view, 2> kConstants{"scRed", "scBlue"};
constexpr std::array<EnumerationDescription, 1> kEnumerations{{{"RecordedColours", "help", kConstants}}};
constexpr TypeLibrary kLibrary{
    "RecorderTest", "{00000000-0000-0000-0000-0000000000a1}", {1, 0}, "help", kEnumerations, {}};

constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};
constexpr std::array<ArgumentDescription, 2> kPlaceAndName{{{"VarNo", kInteger}, {"sDistrName", kText}}};
constexpr MemberDescription kChecked = Property("Checked", 1, kInteger, kBoolean, "", kPlace);
constexpr MemberDescription kCount = Property("Count", 2, kInteger, kInteger, "");
constexpr MemberDescription kOffset = Property("Offset", 3, kReal, kReal, "");
constexpr MemberDescription kValues = Property("Values", 4, kVariant, kVariant, "", kPlaceAndName);
constexpr MemberDescription kColour{
    "Colour", 5, MemberKind::kProperty, {}, kEnumeration, kEnumeration, "RecordedColours", ""};
constexpr MemberDescription kOk = Method("OK", 6, kInteger, "");
constexpr MemberDescription kTable = Property("Table", 7, kObject, kNone, "");
constexpr MemberDescription kMatrix = Property("Matrix", 8, kVariant, kVariant, "");

struct Thing final : AutomationObject {
  std::string_view InterfaceName() const override { return "Thing"; }
  std::optional<DispatchId> FindMember(std::string_view) const override { return {}; }
  Variant Invoke(DispatchId, CallKind, std::span<const Variant>) override { return {}; }
};

MacroCall Put(const MemberDescription& member, Variant value, std::vector<Variant> indexes = {}) {
  MacroCall call;
  call.member = &member;
  call.kind = CallKind::kPut;
  call.indexes = std::move(indexes);
  call.value = std::move(value);
  return call;
}
MacroCall Got(const MemberDescription& member, CallKind kind, Variant result) {
  MacroCall call;
  call.member = &member;
  call.kind = kind;
  call.result = std::move(result);
  return call;
}

// Everything after the import.
std::string Lines(const MacroRecorder& recorder) {
  const std::string text = recorder.Text("here");
  const std::string head = "# here\nfrom brenvolt import *\n\n";
  EXPECT_TRUE(text.starts_with(head));
  return text.substr(head.size());
}

TEST(MacroRecorder, PutIsWrittenSoThatItReadsBackExactly) {
  AddTypeLibrary(kLibrary);
  const struct {
    MacroCall call;
    const char* line;
  } rows[] = {
      {Put(kChecked, true, {3}), "dialog.Checked[3] = True"},
      {Put(kChecked, false, {3}), "dialog.Checked[3] = False"},
      {Put(kCount, 7), "dialog.Count = 7"},
      {Put(kCount, true), "dialog.Count = True"},
      {Put(kCount, kNotSetCount), "dialog.Count = Nothing"},
      {Put(kOffset, kNotSet), "dialog.Offset = Nothing"},
      {Put(kOffset, 0.1 + 0.2), "dialog.Offset = 0.30000000000000004"},
      {Put(kOffset, 4.0), "dialog.Offset = 4.0"},
      {Put(kOffset, -0.0), "dialog.Offset = -0.0"},
      {Put(kOffset, 1e300), "dialog.Offset = 1e+300"},
      {Put(kOffset, -std::numeric_limits<double>::infinity()), "dialog.Offset = float(\"-inf\")"},
      {Put(kColour, 1), "dialog.Colour = scBlue"},
      {Put(kValues, Array{}, {1, "Normal"}), "dialog.Values[1, \"Normal\"] = Array()"},
      {Put(kValues, Array{0.25, kNotSet, 2, Array{"a", {}}}, {1, "a\"b"}),
       "dialog.Values[1, \"a\\\"b\"] = Array(0.25, Nothing, 2, Array(\"a\", Nothing))"},
      // Only an element and a number can mean what is not set; a value of any type is itself.
      {Put(kValues, kNotSet, {1, "x"}), "dialog.Values[1, \"x\"] = -444.0"},
      {Put(kValues, {}, {1, "x"}), "dialog.Values[1, \"x\"] = Nothing"},
  };
  for (const auto& [call, line] : rows) {
    MacroRecorder recorder;
    recorder.Call(nullptr, 1, call);
    EXPECT_EQ(Lines(recorder), std::string("dialog = analysis.Dialog\n") + line + "\n");
  }
  MacroCall written = Put(kValues, Array{1.0}, {1, "x"});
  written.text = "Array(scNormalDistr)";
  MacroRecorder recorder;
  recorder.Call(nullptr, 1, written);
  EXPECT_NE(Lines(recorder).find("dialog.Values[1, \"x\"] = Array(scNormalDistr)\n"), std::string::npos);
}

// A name of a file cannot end the literal or the comment that it is in.
TEST(MacroRecorder, TextsAreQuotedAsPythonReadsThem) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "\"\""},
      {"a b.csv", "\"a b.csv\""},
      {"C:\\x\"y'z", "\"C:\\\\x\\\"y'z\""},
      {"a\nb\r\t\x7f", "\"a\\x0ab\\x0d\\x09\\x7f\""},
      {"Größe", "\"Größe\""},
      {"a\xff.csv", "\"a\\udcff.csv\""},
  };
  for (const auto& [text, literal] : rows) EXPECT_EQ(PythonText(text), literal);
  MacroRecorder recorder;
  EXPECT_EQ(recorder.Text("a\nb\rimport os\xff"), "# a\n# b?import os?\nfrom brenvolt import *\n\n");
}

TEST(MacroRecorder, DialogIsFetchedAgainWhenAnotherOneIsOpen) {
  MacroRecorder recorder;
  const int first = 0;
  const int second = 0;
  recorder.Assign("analysis", "application.Analysis(sheet)", &first);
  recorder.Assign("analysis", "application.Analysis(sheet)", &second);
  recorder.Call(&first, 1, Put(kCount, 1));
  recorder.Call(&first, 1, Got(kOk, CallKind::kMethod, 1));
  recorder.Call(&first, 2, Put(kCount, 2));
  recorder.Call(&second, 3, Put(kCount, 3));
  EXPECT_EQ(Lines(recorder),
            "analysis = application.Analysis(sheet)\nanalysis2 = application.Analysis(sheet)\n\n"
            "dialog = analysis.Dialog\ndialog.Count = 1\ndialog.OK()\n\n"
            "dialog = analysis.Dialog\ndialog.Count = 2\n\n"
            "dialog = analysis2.Dialog\ndialog.Count = 3\n");
}

TEST(MacroRecorder, ResultGetsANameOnlyWhereItIsUsed) {
  MacroRecorder recorder;
  const Variant::Object unused = std::make_shared<Thing>();
  const Variant::Object used = std::make_shared<Thing>();
  const Variant::Object stranger = std::make_shared<Thing>();
  recorder.Call(nullptr, 1, Got(kTable, CallKind::kGet, unused));
  recorder.Call(nullptr, 1, Got(kTable, CallKind::kGet, used));
  recorder.Call(nullptr, 1, Put(kMatrix, used));
  recorder.Line("application.Append(" + recorder.NameOf(used.get()) + ")");
  EXPECT_EQ(Lines(recorder),
            "dialog = analysis.Dialog\ndialog.Table\ndocument = dialog.Table\n"
            "dialog.Matrix = document\napplication.Append(document)\n");
  EXPECT_THROW(recorder.Call(nullptr, 1, Put(kMatrix, stranger)), Error);
}

}  // namespace
}  // namespace brenvolt
