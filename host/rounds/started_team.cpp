#include "host/rounds/started_team.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/base/error.h"
#include "host/base/process/dynamic_library.h"
#include "host/base/process/environment.h"

namespace brenvolt {
namespace {

constexpr const char* kLibrary = "libbrenvolt_ranks.so";

}  // namespace

// What mpirun tells each process that it starts, and schedulers that start processes without it.
bool IsStartedInTeam() {
  constexpr std::array kVariables{"OMPI_COMM_WORLD_SIZE", "PMIX_RANK"};
  return std::ranges::any_of(kVariables, [](const char* name) { return !EnvironmentText(name).empty(); });
}

std::unique_ptr<Team> StartedTeam() {
  const std::filesystem::path file =
      LibraryFileOf(reinterpret_cast<const void*>(&IsStartedInTeam)).parent_path() / kLibrary;
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) {
    throw Error(
        "this build works in one process only; install the Debian packages libopenmpi-dev and openmpi-bin, "
        "and build "
        "again");
  }
  const DynamicLibrary library(file);
  return std::unique_ptr<Team>(library.Symbol<StartedTeamFunction>(kStartedTeamSymbol)());
}

}  // namespace brenvolt
