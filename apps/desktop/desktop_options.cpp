#include "apps/desktop/desktop_options.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "apps/base/option_table.h"

namespace brenvolt::desktop {
namespace {

constexpr int kWrongCall = 2;

}  // namespace

std::optional<StartOptions> ReadOptions(int argc, char** argv, int& status) {
  StartOptions options;
  CLI::App program("Fits distributions to data, simulates and profiles, in a window.");
  program.name("brenvolt-desktop");
  AddProgramFlags(program);
  program.add_option("file", options.file, "a project (.bvw) or a file of data to open")
      ->option_text("FILE")
      ->check(CLI::ExistingFile);
  program.add_option("--run-macro", options.macro, "run this macro once the window stands")
      ->option_text("FILE")
      ->check(CLI::ExistingFile);
  program
      .add_option("--screenshot", options.screenshot,
                  "write the window as a picture (PNG) and end, without a display")
      ->option_text("FILE");
  program.footer(
      "Example: brenvolt-desktop project.bvw\n\nExit status: 0 done; 1 there is no display, or what was "
      "asked for at "
      "the start failed; 2 the call was wrong.");
  try {
    program.parse(argc, argv);
    return options;
  } catch (const CLI::Success& answer) {
    status = program.exit(answer);
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "brenvolt-desktop: %s; brenvolt-desktop --help shows what there is\n", error.what());
    status = kWrongCall;
  }
  return std::nullopt;
}

}  // namespace brenvolt::desktop
