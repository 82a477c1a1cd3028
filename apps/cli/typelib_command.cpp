// brenvolt typelib: what the analysis offers to automation.
#include <cstdio>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/application/application.h"
#include "host/automation/interface_text.h"
#include "host/base/error.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct TypelibOptions {
  bool idl = false;
  std::string interface;
  bool hasFormat = false;
  ReportFormat format = ReportFormat::kTable;
};

std::string Hexadecimal(DispatchId id) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(id));
  return text;
}

// "iID, sDistrName"
std::string IndexNames(const MemberDescription& member) {
  std::string text;
  for (const ArgumentDescription& index : member.indexes) {
    text += (text.empty() ? "" : ", ") + std::string(index.name);
  }
  return text;
}

std::string TypeText(const MemberDescription& member, AutomationType type) {
  return std::string(InterfaceTypeName(type, member.enumeration));
}

void ShowAsTable(const InterfaceDescription& interface) {
  TextTable table;
  for (const char* heading : {"Member", "Number", "Index", "Get", "Put"}) {
    table.AddColumn(heading, TextTable::Align::kLeft);
  }
  for (const MemberDescription& member : interface.members) {
    const std::string kind = member.kind == MemberKind::kMethod ? "()" : "";
    table.AddRow({std::string(member.name) + kind, Hexadecimal(member.id), IndexNames(member),
                  TypeText(member, member.get), TypeText(member, member.put)});
  }
  std::printf("%.*s: %.*s\n", static_cast<int>(interface.name.size()), interface.name.data(),
              static_cast<int>(interface.help.size()), interface.help.data());
  if (!interface.members.empty()) std::fputs(table.Text().c_str(), stdout);
  std::fputs("\n", stdout);
}

Json MemberAsJson(const MemberDescription& member) {
  const auto type = [&](AutomationType value) {
    return value == AutomationType::kNone ? Json(nullptr) : Json(TypeText(member, value));
  };
  Json indexes = Json::array();
  for (const ArgumentDescription& index : member.indexes) {
    indexes.push_back({{"name", index.name}, {"type", InterfaceTypeName(index.type)}});
  }
  return {{"name", member.name},
          {"number", member.id},
          {"kind", member.kind == MemberKind::kMethod ? "method" : "property"},
          {"indexes", indexes},
          {"get", type(member.get)},
          {"put", type(member.put)},
          {"help", member.help}};
}

Json LibraryAsJson(const TypeLibrary& library, const std::vector<const InterfaceDescription*>& interfaces) {
  Json report{{"name", library.name}, {"identifier", library.identifier}, {"help", library.help}};
  report["enumerations"] = Json::array();
  for (const EnumerationDescription& enumeration : library.enumerations) {
    report["enumerations"].push_back(
        {{"name", enumeration.name}, {"help", enumeration.help}, {"constants", enumeration.constants}});
  }
  report["interfaces"] = Json::array();
  for (const InterfaceDescription* interface : interfaces) {
    Json members = Json::array();
    for (const MemberDescription& member : interface->members) members.push_back(MemberAsJson(member));
    report["interfaces"].push_back({{"name", interface->name},
                                    {"identifier", interface->identifier},
                                    {"help", interface->help},
                                    {"members", members}});
  }
  return report;
}

// The one that is asked for, or all.
std::vector<const InterfaceDescription*> Chosen(const TypeLibrary& library, const std::string& name) {
  std::vector<const InterfaceDescription*> chosen;
  for (const InterfaceDescription& interface : library.interfaces) {
    if (name.empty() || interface.name == name) chosen.push_back(&interface);
  }
  if (chosen.empty()) throw WrongCall("no interface called " + name);
  return chosen;
}

const TypeLibrary& ModuleLibrary(Application& application) {
  application.Module();
  for (const std::string& identifier : RegisteredTypeLibraries()) {
    if (const TypeLibrary* library = FindTypeLibrary(identifier)) return *library;
  }
  throw Error("the module has no type library", Application::DefaultModulePath().string());
}

void Print(const TypelibOptions& options) {
  TerminalUserInterface userInterface{kProgram};
  Application application(userInterface);
  const TypeLibrary& library = ModuleLibrary(application);
  if (options.idl) {
    if (options.hasFormat) throw WrongCall("--idl is a format of its own: leave --format out");
    if (!options.interface.empty()) throw WrongCall("--idl prints the whole library, not one interface");
    std::fputs(InterfaceText(library).c_str(), stdout);
    return;
  }
  const auto interfaces = Chosen(library, options.interface);
  if (options.format == ReportFormat::kJson) {
    std::fputs(JsonText(LibraryAsJson(library, interfaces)).c_str(), stdout);
    return;
  }
  for (const InterfaceDescription* interface : interfaces) ShowAsTable(*interface);
}

}  // namespace

void AddTypelibCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("typelib", "Show what macros and scripts can call");
  const auto options = std::make_shared<TypelibOptions>();
  command->add_option("INTERFACE", options->interface, "Interface to show; default: all");
  command->add_flag("--idl", options->idl, "Print the type library as interface description text (IDL)");
  AddFormatOption(*command, options->format);
  command->footer("Examples:\n  brenvolt typelib SRAFitDistribution\n  brenvolt typelib --idl > brvsra.idl");
  command->callback([options, command] {
    options->hasFormat = command->count("--format") > 0;
    Print(*options);
  });
}

}  // namespace brenvolt::cli
