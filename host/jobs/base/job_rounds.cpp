#include "host/jobs/base/job_rounds.h"

#include <array>
#include <chrono>
#include <string_view>
#include <utility>

#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/base/output_files.h"
#include "host/rounds/team_crew.h"

namespace brenvolt {
namespace {

using Milliseconds = std::chrono::milliseconds;

// Nothing for a text that is no time. Numbers alone are seconds.
std::optional<Milliseconds> TimeOf(const std::string& text) {
  constexpr std::array<std::pair<std::string_view, double>, 4> kUnits{
      {{"s", 1e3}, {"min", 6e4}, {"h", 3.6e6}, {"", 1e3}}};
  constexpr double kLongest = 30 * 24 * 3.6e6;
  const std::size_t end = text.find_first_not_of("0123456789.");
  const std::string unit = end == std::string::npos ? "" : text.substr(end);
  const auto number = ParseNumber(text.substr(0, end));
  for (const auto& [name, milliseconds] : kUnits) {
    if (!number || unit != name) continue;
    const double time = *number * milliseconds;
    if (time >= 0 && time <= kLongest) return Milliseconds(static_cast<std::int64_t>(time));
  }
  return std::nullopt;
}

}  // namespace

void JobRounds::Check(JobFaults& faults) const {
  CheckFolder("checkpoint", checkpoint, faults);
  if (!every) return;
  if (checkpoint.empty())
    faults.push_back({"every", "says how often a checkpoint is written, and none is given"});
  if (!TimeOf(*every))
    faults.push_back({"every", "expected a time such as 60s, 5min or 1h, got " + Quoted(*every)});
}

struct KeptRounds::Own {
  TeamOfOne team;
  TeamCrew crew{team};
  CrewScope scope{crew};
};

KeptRounds::KeptRounds(const JobRounds& rounds) {
  if (rounds.checkpoint.empty()) return;
  const Milliseconds every = TimeOf(rounds.every.value_or("")).value_or(std::chrono::minutes(1));
  auto* crew = dynamic_cast<TeamCrew*>(&TheCrew());
  if (crew == nullptr) {
    own_ = std::make_unique<Own>();
    crew = &own_->crew;
  }
  crew->KeepCheckpoint(rounds.checkpoint, every);
}

KeptRounds::~KeptRounds() = default;

void KeptRounds::End() {
  if (own_ != nullptr) own_->crew.End();
}

}  // namespace brenvolt
