// The commands of the program. Each adds itself with its options and help to the program; its job runs after
// parsing.
#pragma once

#include <CLI/CLI.hpp>

namespace brenvolt::cli {

void AddFitCommand(CLI::App& program);
void AddDesignCommand(CLI::App& program);
void AddSimulateCommand(CLI::App& program);
void AddProfileCommand(CLI::App& program);
void AddScoreCommand(CLI::App& program);
void AddCapabilityCommand(CLI::App& program);
void AddShowCommand(CLI::App& program);
void AddImportCommand(CLI::App& program);
void AddExportCommand(CLI::App& program);
// Everything after the file of a macro belongs to the macro; the parser of the command line ensures that.
inline constexpr const char* kMacroVerb = "macro";
void AddMacroCommand(CLI::App& program);
void AddTypelibCommand(CLI::App& program);
// Added last: it explains those that are there.
void AddHelpCommand(CLI::App& program);

}  // namespace brenvolt::cli
