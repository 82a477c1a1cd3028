// The type library against what recorded macros and compiled clients rely on (reference/members.txt).
#include "brv_sra/resources/module_type_library.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>

namespace brenvolt::sra {
namespace {

std::string Name(AutomationType type, std::string_view enumeration = {}) {
  switch (type) {
    case AutomationType::kNone:
      return "-";
    case AutomationType::kBoolean:
      return "boolean";
    case AutomationType::kInteger:
      return "integer";
    case AutomationType::kReal:
      return "real";
    case AutomationType::kText:
      return "text";
    case AutomationType::kVariant:
      return "variant";
    case AutomationType::kObject:
      return "object";
    case AutomationType::kEnumeration:
      break;
  }
  return std::string(enumeration);
}

// A member as a line of the reference.
std::string Line(const InterfaceDescription& interface, const MemberDescription& member) {
  std::string indexes;
  for (const ArgumentDescription& index : member.indexes) {
    indexes += (indexes.empty() ? "" : ",") + std::string(index.name) + ":" + Name(index.type);
  }
  char id[16];
  std::snprintf(id, sizeof id, "0x%x", static_cast<unsigned>(member.id));
  return std::string(interface.name) + " " + std::string(member.name) + " " + id + " " +
         (member.kind == MemberKind::kMethod ? "method " : "property ") + (indexes.empty() ? "-" : indexes) +
         " " + Name(member.get, member.enumeration) + " " + Name(member.put, member.enumeration);
}

TEST(TypeLibrary, MembersThatClientsKnowAreTheFirstOfTheirInterfaces) {
  std::ifstream file(BRENVOLT_SOURCE_DIR "/brv_sra/resources/reference/members.txt");
  std::string line;
  ASSERT_TRUE(std::getline(file, line)) << "the heading";
  std::size_t known = 0;
  std::map<std::string, std::size_t> places;
  while (std::getline(file, line)) {
    const std::string name = line.substr(0, line.find(' '));
    const InterfaceDescription* interface = FindInterface(name);
    ASSERT_NE(interface, nullptr) << name;
    const std::size_t place = places[name]++;
    ASSERT_LT(place, interface->members.size()) << line;
    EXPECT_EQ(Line(*interface, interface->members[place]), line);
    ++known;
  }
  EXPECT_EQ(known, 120U);
}

TEST(TypeLibrary, NumbersRiseAsPropertiesNeedThemAndNamesAreUnique) {
  std::set<std::string_view> identifiers{ModuleTypeLibrary().identifier};
  std::set<std::string_view> constants;
  for (const InterfaceDescription& interface : ModuleTypeLibrary().interfaces) {
    EXPECT_TRUE(identifiers.insert(interface.identifier).second) << interface.name;
    EXPECT_FALSE(interface.help.empty());
    const bool own = interface.name != "BrvAnalysisDialog";
    DispatchId next = own ? 0x60030000 : 0;
    std::set<std::string_view> names;
    for (const MemberDescription& member : interface.members) {
      EXPECT_EQ(member.id, next) << interface.name << "." << member.name;
      const bool both = member.get != AutomationType::kNone && member.put != AutomationType::kNone;
      next += own && both ? 2 : 1;
      EXPECT_TRUE(names.insert(member.name).second) << member.name;
      EXPECT_GT(member.help.size(), 10U) << member.name;
      const bool constant =
          member.get == AutomationType::kEnumeration || member.put == AutomationType::kEnumeration;
      EXPECT_EQ(FindEnumeration(member.enumeration) != nullptr, constant) << member.name;
    }
  }
  for (const EnumerationDescription& enumeration : ModuleTypeLibrary().enumerations) {
    for (const std::string_view constant : enumeration.constants) {
      EXPECT_TRUE(constants.insert(constant).second) << constant;
    }
  }
}

TEST(TypeLibrary, EnumerationsHaveTheConstantsThatMacrosKnow) {
  struct Row {
    const char* enumeration;
    std::size_t first;
    std::size_t count;
  };
  for (const Row& row : {Row{"SupportedDistributionsType", 0, 16},
                         {"BestFit", 0, 16},
                         {"BrenvoltSupportedDistributions", 0, 16},
                         {"Distributions", 0, 11},
                         {"DiscreteDistributions", 11, 5}}) {
    EXPECT_EQ(FindEnumeration(row.enumeration)->constants.size(), row.count) << row.enumeration;
  }
  EXPECT_EQ(FindEnumeration("SimulationMethods")->constants[3], "LHSwImanConover");
  EXPECT_EQ(FindEnumeration("OuptutType")->constants[5], "scQuickDistrSummary");
  EXPECT_EQ(FindEnumeration("ChiSqBinType")->constants[2], "iCustom");
}

TEST(TypeLibrary, IsFoundByNameAndIdentifierOnly) {
  EXPECT_EQ(FindTypeLibrary("BrvSRA"), &ModuleTypeLibrary());
  EXPECT_EQ(FindTypeLibrary(kTypeLibraryIdentifier), &ModuleTypeLibrary());
  EXPECT_EQ(FindTypeLibrary(""), nullptr);
  EXPECT_EQ(FindInterface("srastartup"), nullptr);
  EXPECT_EQ(FindInterface("SRAStartup")->members.size(), 3U);
  EXPECT_EQ(ModuleTypeLibrary().interfaces.front().name, "BrvAnalysisDialog") << "the base is the first";
}

}  // namespace
}  // namespace brenvolt::sra
