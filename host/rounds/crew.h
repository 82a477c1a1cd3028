// Long work in rounds of parts, which processes share.
//
// The parts of a round are fixed by the job, never by who works on it: a million rows of a column, a variable, a batch of
// runs. What a range of parts contributes is bytes; the contributions of neighbouring ranges join to that of both, and it
// does not matter in which order neighbours are joined. So whoever splits a round in whatever way gets the same bytes, and
// what all go on with follows from these alone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace brenvolt {

struct PartRange {
  std::uint64_t first = 0;
  std::uint64_t end = 0;

  std::uint64_t Count() const { return end - first; }
};

struct Round {
  // Tells the round from others, of this job or of another one, or with other data.
  std::string name;
  std::uint64_t parts = 0;  // 1 or more
  // The contribution of some parts, 1 or more. Called any number of times.
  std::function<std::string(PartRange)> run;
  // The contribution of two ranges of parts, the second next to the first. Not called for a round of one part.
  std::function<std::string(const std::string& first, const std::string& second)> join;
  // What all go on with, from the contribution of all parts. It is short where it can be: it goes to every process.
  std::function<std::string(const std::string& all)> finish;
};

// Those who work on the rounds of a job. The job runs in every one of them, the same, and only what is done in rounds is
// shared.
class Crew {
 public:
  virtual ~Crew() = default;
  virtual int Rank() const = 0;
  virtual int Count() const = 0;
  // Whether each round is run by this process at once, from the first part to the last.
  virtual bool RunsInOrder() const = 0;
  // Carries out a round: what `finish` gives. Throws Error if any of the crew could not do its part, and what `run` throws.
  virtual std::string Run(const Round& round) = 0;
};

// The crew of this process: it alone, unless a CrewScope has it otherwise.
Crew& TheCrew();

// While it lives, the crew is the one given. Jobs run meanwhile on one thread only.
class CrewScope {
 public:
  explicit CrewScope(Crew& crew);
  ~CrewScope();
  CrewScope(const CrewScope&) = delete;
  CrewScope& operator=(const CrewScope&) = delete;

 private:
  Crew* former_;
};

}  // namespace brenvolt
