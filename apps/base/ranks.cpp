#include "apps/base/ranks.h"

#include <cstdio>
#include <string>

#include "apps/base/version.h"
#include "host/base/error.h"
#include "host/rounds/started_team.h"

namespace brenvolt {
namespace {

void FallSilent() {
  for (std::FILE* stream : {stdout, stderr}) {
    if (std::freopen("/dev/null", "w", stream) == nullptr) throw Error("/dev/null cannot be written");
  }
}

}  // namespace

void Ranks::Join(const std::string& program, int argc, char** argv) {
  program_ = program;
  if (!IsStartedInTeam()) return;
  team_ = StartedTeam();
  if (team_->Count() == 1) return;
  if (team_->Rank() > 0) FallSilent();
  crew_ = std::make_unique<TeamCrew>(*team_);
  scope_ = std::make_unique<CrewScope>(*crew_);
  crew_->RequireSame(
      VersionText(program),
      "is another build, or has another instruction set, than rank 0; brenvolt --version tells");
  std::string call;
  for (int i = 1; i < argc; ++i) call += std::string(argv[i]) + '\0';
  crew_->RequireSame(call, "was given other arguments than rank 0, and all need the same");
}

void Ranks::End() {
  if (crew_ == nullptr) return;
  const BytesOfTeam sent = crew_->End();
  if (crew_->Rank() > 0) return;
  std::fprintf(stderr,
               "%s: done by %d ranks, which sent each other %llu bytes, %llu the one that sent most\n",
               program_.c_str(), crew_->Count(), static_cast<unsigned long long>(sent.all),
               static_cast<unsigned long long>(sent.most));
}

void Ranks::GiveUp(const std::string& complaint) {
  if (crew_ != nullptr) crew_->GiveUp(complaint);
}

}  // namespace brenvolt
