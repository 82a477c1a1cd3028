// What is wrong with a job before any work is done, in one form for every front end.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brenvolt {

// `field` is the identifier of a member of the job's structure ("rankBy"), which each front end spells in its
// own way: the command "--rank-by", Python "rank_by".
struct JobFault {
  std::string field;
  std::string message;
};
using JobFaults = std::vector<JobFault>;

// Thrown where a job that has faults is run.
class WrongJob : public std::exception {
 public:
  explicit WrongJob(JobFaults faults) : faults_(std::move(faults)) {}
  WrongJob(std::string field, std::string message) : faults_{{std::move(field), std::move(message)}} {}

  const JobFaults& Faults() const noexcept { return faults_; }
  const char* what() const noexcept override { return faults_.front().message.c_str(); }

 private:
  JobFaults faults_;
};

void Append(JobFaults more, JobFaults& faults);
// The field's words with a separator: "rank-by" for rankBy.
std::string Spelled(std::string_view field, char separator);
// Throws WrongJob if there are faults.
inline void RequireNone(JobFaults faults) {
  if (!faults.empty()) throw WrongJob(std::move(faults));
}

// A choice among radio buttons by its word, and the dialog's member.
using Choices = std::map<std::string, std::string_view, std::less<>>;

// What the checks of all jobs are made of. Each adds its fault, if there is one, to `faults`.
void CheckWord(std::string_view field, const std::string& word, const Choices& choices, JobFaults& faults);
// `about` says which of several entries the number belongs to; it may be empty.
void CheckWholeNumber(std::string_view field, double value, double fewest, double most, JobFaults& faults,
                      const std::string& about = {});
void CheckNumber(std::string_view field, double value, JobFaults& faults, const std::string& about);
// Of two entries for the same thing one would be ignored.
void CheckOnce(std::string_view field, std::vector<std::string> things, JobFaults& faults);

}  // namespace brenvolt
