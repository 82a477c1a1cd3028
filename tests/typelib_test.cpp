// The printed type library, compiled by another program's interface compiler (widl), against the tables that
// drive the calls.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "host/analysis/ports/headless_user_interface.h"
#include "host/application/application.h"
#include "tests/run_program.h"

namespace brenvolt::test {
namespace {

// What the imports of the text bring in, no more than it needs.
constexpr const char* kAutomationTypes = R"(
typedef unsigned short OLECHAR;
typedef OLECHAR *BSTR;
typedef short VARIANT_BOOL;
typedef long HRESULT;
typedef struct tagVARIANT { long value; } VARIANT;
[object, uuid(00000000-0000-0000-C000-000000000046)] interface IUnknown { HRESULT Release(); }
[object, uuid(00020400-0000-0000-C000-000000000046)] interface IDispatch : IUnknown { HRESULT Invoke(); }
)";
constexpr const char* kStandardLibrary = R"(
import "oaidl.idl";
[uuid(00020430-0000-0000-C000-000000000046), version(2.0)]
library stdole { interface IUnknown; interface IDispatch; }
)";

// A compiled type library in the format that its first four bytes, "MSFT", name: a header, one offset per
// type, a directory of segments; all numbers are 32-bit, little-endian.
class CompiledLibrary {
 public:
  explicit CompiledLibrary(std::string bytes) : bytes_(std::move(bytes)) {
    constexpr std::size_t kHeader = 0x54;
    const std::int32_t types = At(0x20);
    const std::size_t directory = kHeader + static_cast<std::size_t>(types) * 4;
    types_ = static_cast<std::size_t>(At(directory));
    names_ = static_cast<std::size_t>(At(directory + kNameSegment * kSegment));
    count_ = static_cast<std::size_t>(types);
  }
  std::string_view Magic() const { return std::string_view(bytes_).substr(0, 4); }
  std::size_t TypeCount() const { return count_; }
  std::string TypeName(std::size_t type) const { return NameAt(At(Base(type) + 0x34)); }

  struct Member {
    std::string name;
    std::int32_t id;
    int invocation;  // 1 method, 2 get, 4 put; 0 a constant
    std::int32_t value;
    int arguments;
  };
  // The members' records are followed by their identifiers, then their names.
  std::vector<Member> Members(std::size_t type) const {
    const auto counts = static_cast<std::uint32_t>(At(Base(type) + 0x18));
    const std::size_t functions = counts & 0xffff;
    const std::size_t all = functions + (counts >> 16);
    std::vector<Member> members;
    if (all == 0) return members;
    std::size_t record = static_cast<std::size_t>(At(Base(type) + 0x04));
    const std::size_t identifiers = record + 4 + static_cast<std::size_t>(At(record));
    record += 4;
    for (std::size_t i = 0; i < all; ++i) {
      const std::int32_t id = At(identifiers + 4 * i);
      const std::string name = NameAt(At(identifiers + 4 * (all + i)));
      const bool isFunction = i < functions;
      const std::int32_t kind = At(record + 0x10);
      members.push_back({name, id, isFunction ? (kind >> 3) & 0xf : 0, kind & 0x3ffffff,
                         isFunction ? At(record + 0x14) & 0xffff : 0});
      record += static_cast<std::size_t>(At(record) & 0xffff);
    }
    return members;
  }

 private:
  static constexpr std::size_t kSegment = 16;
  static constexpr std::size_t kNameSegment = 7;
  static constexpr std::size_t kTypeRecord = 0x64;

  std::int32_t At(std::size_t offset) const {
    std::int32_t value = 0;
    if (offset + sizeof value > bytes_.size()) throw std::runtime_error("the library ends early");
    std::memcpy(&value, bytes_.data() + offset, sizeof value);
    return value;
  }
  std::size_t Base(std::size_t type) const { return types_ + type * kTypeRecord; }
  std::string NameAt(std::int32_t offset) const {
    if (offset < 0) return {};
    const std::size_t entry = names_ + static_cast<std::size_t>(offset);
    return bytes_.substr(entry + 12, static_cast<std::size_t>(At(entry + 8) & 0xff));
  }

  std::string bytes_;
  std::size_t types_ = 0;
  std::size_t names_ = 0;
  std::size_t count_ = 0;
};

struct TypeLibraryText : testing::Test {
  TemporaryFolder folder;
  HeadlessUserInterface userInterface;
  Application application{userInterface};
  const TypeLibrary* library = nullptr;

  void SetUp() override {
    application.Module();
    library = FindTypeLibrary("BrvSRA");
    ASSERT_NE(library, nullptr);
  }
  int Compile(const std::string& name) const {
    const std::string command = "cd '" + folder.Path().string() +
                                "' && x86_64-w64-mingw32-widl --nostdinc -I . -L . -t -o " + name + ".tlb " +
                                name + ".idl";
    return std::system(command.c_str());
  }
  // Number, kind of call and count of arguments of every call on an interface.
  using Calls = std::set<std::tuple<std::string, std::int32_t, int, int>>;
  static Calls Described(const InterfaceDescription& interface) {
    Calls calls;
    for (const MemberDescription& member : interface.members) {
      const auto indexes = static_cast<int>(member.indexes.size());
      const int returned = member.get != AutomationType::kNone ? 1 : 0;
      const std::string name(member.name);
      if (Allows(member, CallKind::kMethod)) calls.emplace(name, member.id, 1, returned);
      if (Allows(member, CallKind::kGet)) calls.emplace(name, member.id, 2, indexes + 1);
      if (Allows(member, CallKind::kPut)) calls.emplace(name, member.id, 4, indexes + 1);
    }
    return calls;
  }
};

TEST_F(TypeLibraryText, CompiledNumbersAreThoseOfTheCalls) {
  const Outcome printed = RunBrenvolt({"typelib", "--idl"}, folder.Path());
  ASSERT_EQ(printed.status, 0) << printed.err;
  WriteBytes(folder / "oaidl.idl", kAutomationTypes);
  WriteBytes(folder / "stdole2.idl", kStandardLibrary);
  WriteBytes(folder / "brvsra.idl", printed.out);
  ASSERT_EQ(Compile("stdole2"), 0) << "widl comes with the package mingw-w64-tools";
  ASSERT_EQ(Compile("brvsra"), 0);
  const CompiledLibrary compiled(BytesOf(folder.Path() / "brvsra.tlb"));
  ASSERT_EQ(compiled.Magic(), "MSFT");
  std::map<std::string, std::size_t> types;
  for (std::size_t i = 0; i < compiled.TypeCount(); ++i) types[compiled.TypeName(i)] = i;
  for (const InterfaceDescription& interface : library->interfaces) {
    ASSERT_TRUE(types.contains(std::string(interface.name))) << interface.name;
    Calls calls;
    for (const auto& member : compiled.Members(types[std::string(interface.name)])) {
      calls.emplace(member.name, member.id, member.invocation, member.arguments);
    }
    EXPECT_EQ(calls, Described(interface)) << interface.name;
  }
  for (const EnumerationDescription& enumeration : library->enumerations) {
    if (enumeration.unnamed) continue;
    const auto members = compiled.Members(types.at(std::string(enumeration.name)));
    ASSERT_EQ(members.size(), enumeration.constants.size()) << enumeration.name;
    for (std::size_t i = 0; i < members.size(); ++i) {
      EXPECT_EQ(members[i].name, enumeration.constants[i]);
      EXPECT_EQ(members[i].value, static_cast<std::int32_t>(i)) << members[i].name;
    }
  }
}

TEST_F(TypeLibraryText, DocumentationHasTheMembersAsPrinted) {
  const Outcome printed = RunBrenvolt({"typelib"}, folder.Path());
  ASSERT_EQ(printed.status, 0) << printed.err;
  const std::string documentation = BytesOf(BRENVOLT_SOURCE_DIR "/docs/reference/automation.md");
  std::istringstream lines(printed.out);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_NE(documentation.find("\n" + line + "\n"), std::string::npos) << line;
  }
}

TEST_F(TypeLibraryText, CommandShowsInterfacesAndRefusesOthers) {
  const auto json = nlohmann::json::parse(
      RunBrenvolt({"typelib", "SRASimulationProfiler", "--format", "json"}, folder.Path()).out);
  ASSERT_EQ(json["interfaces"].size(), 1U);
  const auto& members = json["interfaces"][0]["members"];
  ASSERT_EQ(members.size(), 28U);
  EXPECT_EQ(members[4]["indexes"][0]["name"], "iID");
  EXPECT_TRUE(members[0]["get"].is_null());
  const Outcome unknown = RunBrenvolt({"typelib", "SRANone"}, folder.Path());
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.err, "brenvolt: no interface called SRANone\n");
  EXPECT_EQ(RunBrenvolt({"typelib", "--idl", "SRAStartup"}, folder.Path()).status, 2);
}

}  // namespace
}  // namespace brenvolt::test
