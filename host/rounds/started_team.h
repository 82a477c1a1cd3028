// The team that this process was started in, by mpirun or a scheduler.
#pragma once

#include <memory>

#include "host/rounds/team.h"

namespace brenvolt {

// The library that knows the team exports this.
inline constexpr const char* kStartedTeamSymbol = "BrenvoltStartedTeam";
using StartedTeamFunction = Team*();

// Whether this process is one of several that were started together.
bool IsStartedInTeam();
// The team; it leaves it when the object goes. Throws Error where this build cannot reach the others.
std::unique_ptr<Team> StartedTeam();

}  // namespace brenvolt
