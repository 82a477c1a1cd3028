#include "apps/base/option_table.h"

#include <nlohmann/json.hpp>
#include <string>

#include "apps/base/version.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

// The words that stand for a value in the help, or nothing for a flag.
std::string ValueOf(const CLI::Option& option) {
  if (!option.get_option_text().empty()) return option.get_option_text();
  return option.get_expected_max() == 0 ? "" : option.get_type_name();
}

Json OptionAsJson(const CLI::Option& option) {
  Json names = Json::array();
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return {{"names", names},
          {"value", ValueOf(option)},
          {"required", option.get_required()},
          {"repeatable", option.get_expected_max() > 1},
          {"description", option.get_description()}};
}

Json ArgumentAsJson(const CLI::Option& option) {
  return {{"name", option.get_name(true)},
          {"value", ValueOf(option)},
          {"required", option.get_required()},
          {"repeatable", option.get_expected_max() > 1},
          {"description", option.get_description()}};
}

// Groups of options, which are parts without a name, belong to what holds them.
Json CommandAsJson(const CLI::App& command) {
  Json arguments = Json::array();
  Json options = Json::array();
  Json commands = Json::array();
  const auto addOptions = [&](const CLI::App& part) {
    for (const CLI::Option* option : part.get_options()) {
      const bool isNamed = !option->get_snames().empty() || !option->get_lnames().empty();
      if (isNamed) options.push_back(OptionAsJson(*option));
      if (option->get_positional()) arguments.push_back(ArgumentAsJson(*option));
    }
  };
  addOptions(command);
  for (const CLI::App* part : command.get_subcommands({})) {
    if (part->get_name().empty()) {
      addOptions(*part);
    } else {
      commands.push_back(CommandAsJson(*part));
    }
  }
  return {{"name", command.get_name()}, {"description", command.get_description()},
          {"arguments", arguments},     {"options", options},
          {"commands", commands},       {"footer", command.get_footer()}};
}

}  // namespace

void AddProgramFlags(CLI::App& program) {
  const std::string name = program.get_name();
  program.set_version_flag(
      "--version", [name] { return VersionText(name); },
      "Print version, commit, instruction set and the versions of libraries, and exit");
  program.add_flag_callback(
      "--help-json",
      [&program] {
        constexpr int kIndent = 1;
        throw CLI::CallForVersion(CommandAsJson(program).dump(kIndent), 0);
      },
      "Print all commands and options as JSON, for programs, and exit");
}

}  // namespace brenvolt
