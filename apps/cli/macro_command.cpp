// brenvolt macro: runs a macro, which is a Python program over the package brenvolt.
#include <array>
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
#include "host/base/process/environment.h"
#include "host/base/process/program_start.h"

namespace brenvolt::cli {
namespace {

namespace fs = std::filesystem;

// Takes the place of the interpreter that the package was built for.
constexpr const char* kInterpreterVariable = "BRENVOLT_PYTHON";

// Isolated, the interpreter looks for modules in its own folders alone: neither in the working folder nor where the
// environment says. What a program is told first is where the package is.
const std::vector<std::string> kIsolated{
    "-I", "-c",
    "import sys; sys.path.insert(0, sys.argv[1]); from brenvolt import _macro; _macro.main(sys.argv[2:])"};

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
  fs::path checked;  // only looked at
};

// What the package is to do with the macro.
std::vector<std::string> TaskOf(const MacroArguments& macro) {
  if (!macro.checked.empty()) return {"check"};
  if (macro.record.empty()) return {"run"};
  RequireMacroEnding(macro.record);
  std::error_code ignored;
  if (fs::equivalent(macro.record, macro.all.front(), ignored))
    throw WrongCall("--record would replace the macro " + macro.record.string());
  return {"record", macro.record.string()};
}

[[noreturn]] void RunMacro(MacroArguments macro) {
  if (!macro.checked.empty()) macro.all = {macro.checked.string()};
  if (macro.all.empty()) throw WrongCall("missing macro file: macro needs FILE.py");
  std::error_code ignored;
  const fs::path file = macro.all.front();
  if (!fs::exists(file, ignored)) throw Error("no such macro", file.string());
  if (fs::is_directory(file, ignored)) throw Error("the macro is a folder", file.string());
  const std::string chosen = EnvironmentText(kInterpreterVariable);
  std::vector<std::string> arguments = kIsolated;
  arguments.push_back(fs::absolute(PackageFolder()).string());
  for (const auto& words : {TaskOf(macro), macro.all})
    arguments.insert(arguments.end(), words.begin(), words.end());
  ContinueAs({chosen.empty() ? BRENVOLT_PYTHON_INTERPRETER : chosen, arguments});
}

}  // namespace

void AddMacroCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand(kMacroVerb, "Run a macro: a Python program over the package brenvolt");
  const auto macro = std::make_shared<MacroArguments>();
  AddRecordOption(*command, macro->record);
  command->add_option("FILE.py ARGUMENT", macro->all, "The macro, and the arguments to pass to it")
      ->type_name("");
  command
      ->add_option(
          "--check", macro->checked,
          "Run nothing, list what the macro calls, and refuse one that holds anything but calls on dialogs")
      ->type_name("FILE.py");
  command->footer(
      "A macro may do whatever you may do: run only macros that you trust. One that --check accepts, as "
      "recorded ones are, "
      "reads and writes the files that it names, and does nothing else.\n"
      "Python starts isolated: modules come from the interpreter's own folders and, after those, from the "
      "macro's. "
      "The exit status is the macro's. BRENVOLT_PYTHON names another Python interpreter.\n"
      "Example:\n  brenvolt macro examples/sea_level_macro.py sea.bvw");
  command->callback([macro] { RunMacro(*macro); });
}

}  // namespace brenvolt::cli
