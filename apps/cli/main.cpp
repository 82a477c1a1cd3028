// The command brenvolt. Exit status 0: done; 1: the job failed; 2: the call was wrong; 130: interrupted.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "apps/base/example_files.h"
#include "apps/base/option_table.h"
#include "apps/base/ranks.h"
#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/print.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/base/error.h"
#include "host/base/files/file_turn.h"
#include "host/base/nearest_name.h"
#include "host/base/process/interruption.h"
#include "host/base/process/memory_policy.h"
#include "host/base/process/out_of_memory.h"
#include "host/base/quoted.h"
#include "host/jobs/base/analysis_session.h"
#include "host/jobs/base/empty_text.h"

namespace {

constexpr int kJobFailed = 1;
constexpr int kWrongCall = 2;
constexpr int kInterrupted = 130;
const std::string kExitStatuses =
    "\n\nExit status: 0 done; 1 the job failed; 2 the call was wrong, and nothing was done; 130 interrupted.";

// The only option of the command macro that takes a file.
const std::string kRecordOption = "--record";

std::string complaints;  // that were made, for the other ranks

void Complain(const std::string& what, const std::string& where = {}) {
  const std::string complaint = what + (where.empty() ? std::string() : " (" + where + ")");
  brenvolt::cli::PrintMessage(brenvolt::cli::kProgram + (": " + complaint));
  complaints += (complaints.empty() ? "" : "; ") + complaint;
}

void RefuseUnknownVerb(const CLI::App& program, int argc, char** argv) {
  if (argc >= 2 && argv[1][0] == '-') return;
  std::string names;
  std::vector<std::string> known;
  for (const CLI::App* command : program.get_subcommands({})) {
    if (argc >= 2 && command->get_name() == argv[1]) return;
    known.push_back(command->get_name());
    names += (names.empty() ? "" : ", ") + known.back();
  }
  if (argc < 2) throw brenvolt::cli::WrongCall("missing command; the commands are " + names);
  const std::string hint = brenvolt::NearestNameHint(argv[1], known);
  throw brenvolt::cli::WrongCall("unknown command " + brenvolt::Quoted(argv[1]) + hint +
                                 (hint.empty() ? "; the commands are " : " The commands are ") + names);
}

// Also "--save=", and arguments that belong to no option.
void RefuseEmptyTexts(const std::vector<std::string>& arguments) {
  const auto fieldOf = [](std::string_view option) {
    return option.substr(std::min(option.find_first_not_of('-'), option.size()));
  };
  const auto refuse = [](const std::string& where) {
    throw brenvolt::cli::WrongCall(brenvolt::kEmptyText + (" (" + where + ")"));
  };
  std::string option;  // before the argument, if it is one
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument.empty() && option.empty()) refuse("argument " + std::to_string(i + 1));
    if (argument.empty() && !brenvolt::MayBeEmpty(fieldOf(option))) refuse(option);
    const bool isOption = argument.size() > 1 && argument.starts_with('-') && argument != "--";
    const std::string name = argument.substr(0, argument.find('='));
    const bool hasValue = name.size() < argument.size();
    if (isOption && name.size() + 1 == argument.size() && !brenvolt::MayBeEmpty(fieldOf(name))) refuse(name);
    option = isOption && !hasValue ? name : "";
  }
}

// The arguments as the parser takes them, last first. Everything after a macro's file belongs to the macro,
// even if it looks like an option.
std::vector<std::string> Arguments(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool isMacro = !arguments.empty() && arguments[0] == brenvolt::cli::kMacroVerb;
  if (!isMacro) RefuseEmptyTexts(arguments);
  if (isMacro) {
    auto file = arguments.begin() + 1;
    if (file != arguments.end() && *file == kRecordOption)
      file += std::min<std::ptrdiff_t>(2, arguments.end() - file);
    if (file != arguments.end() && file->starts_with(kRecordOption + "=")) ++file;
    if (file != arguments.end() && !file->starts_with('-')) arguments.insert(file, "--");
  }
  std::ranges::reverse(arguments);
  return arguments;
}

// "; did you mean --plot?", where one of the command's options is near; "; MODEL has no option before it", where what comes
// by its place is called so.
std::string NearestOptionHint(const CLI::App& command, const std::string& written) {
  std::vector<std::string> known;
  const auto add = [&known](const CLI::App& options) {
    for (const CLI::Option* option : options.get_options()) {
      for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
    }
  };
  add(command);
  // Groups of options are commands without a name.
  for (const CLI::App* group : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (group->get_name().empty()) add(*group);
  }
  for (const CLI::Option* option : command.get_options()) {
    std::string asOption = "--" + option->get_name(true);
    std::ranges::transform(asOption, asOption.begin(), [](unsigned char c) { return std::tolower(c); });
    if (option->get_positional() && asOption == written)
      return "; " + option->get_name(true) + " stands by its place, without an option before it.";
  }
  return brenvolt::NearestNameHint(written.substr(0, written.find('=')), known);
}

// What the parser found wrong, as a sentence about the command that was called.
std::string Complaint(const CLI::App& program, const CLI::ParseError& error) {
  const auto called = program.get_subcommands();
  const std::string help =
      "; brenvolt " + (called.empty() ? "" : called.front()->get_name() + " ") + "--help shows what there is";
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    const std::vector<std::string> left = program.remaining(true);
    const auto option =
        std::ranges::find_if(left, [](const std::string& word) { return word.starts_with('-'); });
    if (option != left.end()) {
      const std::string hint = NearestOptionHint(called.empty() ? program : *called.front(), *option);
      return "unknown option " + *option + hint + (hint.empty() ? help : help.substr(1));
    }
    return "unexpected argument " + brenvolt::Quoted(left.empty() ? "" : left.front()) + help;
  }
  const std::string what = error.what();
  if (const auto end = what.find(" is required"); end != std::string::npos)
    return "missing " + what.substr(0, end) + help;
  const std::string option = what.substr(0, what.find(':'));
  if (what.find("At Most 1 required") != std::string::npos) return option + " is given more than once";
  if (what.find("required") != std::string::npos && what.find("missing") != std::string::npos)
    return option + " needs a value";
  return what;
}

int Run(int argc, char** argv) {
  CLI::App program("Fits probability distributions to data, ranks the fits, and simulates data from them.");
  program.name(brenvolt::cli::kProgram);
  brenvolt::AddProgramFlags(program);
  program.require_subcommand(1);
  program.footer("brenvolt COMMAND --help gives details and an example." + kExitStatuses);
  brenvolt::cli::AddFitCommand(program);
  brenvolt::cli::AddDesignCommand(program);
  brenvolt::cli::AddSimulateCommand(program);
  brenvolt::cli::AddProfileCommand(program);
  brenvolt::cli::AddScoreCommand(program);
  brenvolt::cli::AddCapabilityCommand(program);
  brenvolt::cli::AddShowCommand(program);
  brenvolt::cli::AddImportCommand(program);
  brenvolt::cli::AddExportCommand(program);
  brenvolt::cli::AddMacroCommand(program);
  brenvolt::cli::AddTypelibCommand(program);
  brenvolt::cli::AddHelpCommand(program);
  for (CLI::App* command : program.get_subcommands({}))
    command->footer(brenvolt::WithInstalledExamples(command->get_footer()) + kExitStatuses);
  RefuseUnknownVerb(program, argc, argv);
  try {
    program.parse(Arguments(argc, argv));
  } catch (const CLI::Success& help) {
    return program.exit(help);
  } catch (const CLI::ParseError& error) {
    Complain(Complaint(program, error));
    return kWrongCall;
  }
  return 0;
}

// A report that is longer than the buffer was written in parts, any of which may have failed.
void RequirePrinted() {
  const bool failedBefore = std::ferror(stdout) != 0;
  if (std::fflush(stdout) == 0 && !failedBefore) return;
  const std::string reason = failedBefore ? "" : std::string(": ") + std::strerror(errno);
  throw brenvolt::Error("the output cannot be written" + reason, "standard output");
}

void SayWaits() {
  brenvolt::TurnPatience patience = brenvolt::CurrentTurnPatience();
  patience.tell = [](const std::string& file) {
    Complain("waiting for another program that uses the project", file);
  };
  brenvolt::SetTurnPatience(std::move(patience));
}

int Interrupted() {
  Complain("interrupted");
  return kInterrupted;
}

// Anything else is done by one process: a job that is not long, or that nobody has split.
void RequireShared(const std::vector<std::string>& arguments) {
  const std::string command = arguments.empty() ? "" : arguments[0];
  static const std::vector<std::string> kShared{"simulate", "profile"};
  for (const std::string& argument : arguments) {
    if (argument.starts_with("--record"))
      throw brenvolt::cli::WrongCall("one process makes a recording (--record): start it without mpirun");
  }
  if (command.empty() || command.starts_with('-') || std::ranges::find(kShared, command) != kShared.end())
    return;
  throw brenvolt::cli::WrongCall(command + " is done by one process: start it without mpirun");
}

// The status, once whatever was wrong has been said.
int CarryOut(const std::function<int()>& work) {
  try {
    return work();
  } catch (const brenvolt::cli::WrongCall& error) {
    Complain(error.what());
    return kWrongCall;
  } catch (const brenvolt::WrongJob& wrong) {
    for (const brenvolt::JobFault& fault : wrong.Faults())
      Complain(fault.message, brenvolt::OptionOf(fault.field));
    return kWrongCall;
  } catch (const brenvolt::JobFailed&) {
    if (brenvolt::InterruptionRequested()) return Interrupted();
    // A dialog that refuses says why, unless there is no memory for the words.
    if (!brenvolt::TerminalUserInterface::HasSpoken()) brenvolt::SayNoMemoryIsLeft();
    return kJobFailed;
  } catch (const brenvolt::UserCancelled&) {
    return Interrupted();
  } catch (const brenvolt::AutomationError& error) {
    if (brenvolt::InterruptionRequested()) return Interrupted();
    Complain(error.Reason(), error.Where());
  } catch (const brenvolt::Error& error) {
    Complain(error.what(), error.Where());
  } catch (const std::bad_alloc&) {
    brenvolt::SayNoMemoryIsLeft();
  } catch (const std::exception& error) {
    Complain(error.what());
  }
  return kJobFailed;
}

}  // namespace

// What libraries take at their start, before main, may be missing as well.
__attribute__((section(".preinit_array"), used)) void (*const kBeforeLibraries)() = [] {
  brenvolt::EndWhereNoMemoryIsLeft(kJobFailed);
};

int main(int argc, char** argv) {
  brenvolt::ReturnLargeBlocksAtOnce();
  const brenvolt::InterruptionCatcher interruptions;
  SayWaits();
  brenvolt::Ranks ranks;
  const int status = CarryOut([&] {
    ranks.Join(brenvolt::cli::kProgram, argc, argv);
    if (ranks.AreSeveral()) RequireShared({argv + 1, argv + argc});
    brenvolt::cli::RememberCall(argc, argv);
    const int done = Run(argc, argv);
    RequirePrinted();
    if (done == 0) ranks.End();
    return done;
  });
  if (status != 0) ranks.GiveUp(complaints.empty() ? "the job failed" : complaints);
  return ranks.StatusOf(status);
}
