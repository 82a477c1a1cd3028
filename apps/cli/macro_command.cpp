// brenvolt macro: runs a macro, which is a Python program over the package brenvolt.
#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/wrong_call.h"
#include "host/application/application.h"
#include "host/base/error.h"
#include "host/base/process/dynamic_library.h"
#include "host/base/process/program_start.h"

namespace brenvolt::cli {
namespace {

namespace fs = std::filesystem;

// Takes the place of the interpreter that the package was built for.
constexpr const char* kInterpreterVariable = "BRENVOLT_PYTHON";
constexpr const char* kPathVariable = "PYTHONPATH";

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// Where Debian's packages put theirs.
constexpr const char* kDebianPackages = "python3/dist-packages";

// The folder that holds the package: that of an installation, of a Debian package, or of a built tree.
fs::path PackageFolder() {
  const fs::path libraries =
      LibraryFileOf(reinterpret_cast<const void*>(&Application::DefaultModulePath)).parent_path();
  const std::array<fs::path, 3> places{libraries / BRENVOLT_PYTHON_PACKAGES, libraries / kDebianPackages,
                                       libraries.parent_path() / "python"};
  std::error_code ignored;
  for (const fs::path& place : places) {
    if (fs::exists(place / "brenvolt" / "__init__.py", ignored)) return place;
  }
  throw Error("the Python package brenvolt, which macros need, is not installed", places.front().string());
}

struct MacroArguments {
  std::vector<std::string> all;  // the macro's file and what it is given
  fs::path record;
};

// The package's program that runs a macro and records it.
constexpr const char* kRecordingProgram = "brenvolt._record_macro";

std::vector<std::string> InterpreterArguments(const MacroArguments& macro) {
  if (macro.record.empty()) return macro.all;
  RequireMacroEnding(macro.record);
  std::error_code ignored;
  if (fs::equivalent(macro.record, macro.all.front(), ignored))
    throw WrongCall("--record would replace the macro " + macro.record.string());
  std::vector<std::string> arguments{"-m", kRecordingProgram, macro.record.string()};
  arguments.insert(arguments.end(), macro.all.begin(), macro.all.end());
  return arguments;
}

[[noreturn]] void RunMacro(const MacroArguments& macro) {
  if (macro.all.empty()) throw WrongCall("missing macro file: macro needs FILE.py");
  std::error_code ignored;
  const fs::path file = macro.all.front();
  if (!fs::exists(file, ignored)) throw Error("no such macro", file.string());
  if (fs::is_directory(file, ignored)) throw Error("the macro is a folder", file.string());
  const std::string chosen = Environment(kInterpreterVariable);
  const std::string former = Environment(kPathVariable);
  const std::string path = PackageFolder().string() + (former.empty() ? "" : ":" + former);
  ContinueAs({chosen.empty() ? BRENVOLT_PYTHON_INTERPRETER : chosen,
              InterpreterArguments(macro),
              {{kPathVariable, path}}});
}

}  // namespace

void AddMacroCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand(kMacroVerb, "Run a macro: a Python program over the package brenvolt");
  const auto macro = std::make_shared<MacroArguments>();
  AddRecordOption(*command, macro->record);
  command->add_option("FILE.py ARGUMENT", macro->all, "The macro, and the arguments to pass to it")
      ->type_name("");
  command->footer(
      "The exit status is the macro's. BRENVOLT_PYTHON names another Python interpreter.\n"
      "Example:\n  brenvolt macro examples/sea_level_macro.py sea.bvw");
  command->callback([macro] { RunMacro(*macro); });
}

}  // namespace brenvolt::cli
