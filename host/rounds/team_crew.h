// The crew of a team: every process runs its share of the parts of each round. What they contribute is joined on the way to
// rank 0, pair by pair, and what all go on with returns on the same ways; so no process sends more than a few messages a
// round, however many there are.
//
// A process that cannot do its part says so in place of its contribution, and the job fails on all of them.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/rounds/checkpoint.h"
#include "host/rounds/crew.h"
#include "host/rounds/team.h"

namespace brenvolt {

// A job that failed because of another process: where() names its rank.
class CrewFault : public Error {
 public:
  using Error::Error;
};

// What the processes of a team have sent.
struct BytesOfTeam {
  std::uint64_t all = 0;
  std::uint64_t most = 0;  // by one of them
};

class TeamCrew : public Crew {
 public:
  explicit TeamCrew(Team& team) : team_(team) {}

  // From now on the work is kept in a file about that often, and what it holds already is not done again. Throws Error.
  void KeepCheckpoint(const std::filesystem::path& path, std::chrono::milliseconds every);

  int Rank() const override { return team_.Rank(); }
  int Count() const override { return team_.Count(); }
  bool RunsInOrder() const override { return false; }
  std::string Run(const Round& round) override;

  // That what a text says is the same on all, or throws CrewFault with `otherwise`.
  void RequireSame(const std::string& text, const std::string& otherwise);
  // Ends the work together, once the job is done here; throws CrewFault if another one failed.
  BytesOfTeam End();
  // In place of End, where the job failed here for a reason that the others may not know; nothing if they do.
  void GiveUp(const std::string& why);

 private:
  struct Message;

  std::vector<PartRange> ShareOf(const std::vector<PartRange>& open) const;
  std::vector<Piece> Work(const Round& round, const std::vector<PartRange>& share) const;
  std::string Meet(const Round& round, std::uint64_t label, const std::vector<PartRange>& share);
  std::string Together(Message own, const Round& round, std::exception_ptr failure);
  std::string AnswerTo(Message all, const Round& round);
  [[noreturn]] void FailOnCheckpoint() const;
  std::string Broadcast(std::string bytes);
  void Send(int to, std::string_view bytes);
  void SaveIfDue();

  Team& team_;
  std::uint64_t bytesSent_ = 0;
  bool isOver_ = false;
  std::size_t round_ = 0;  // rounds that were begun
  // On rank 0 what was done, on the others the labels and ranges of it.
  Checkpoint checkpoint_;
  std::filesystem::path file_;
  std::chrono::milliseconds every_{};
  std::chrono::steady_clock::time_point saved_;
};

}  // namespace brenvolt
