// A program as one of several processes that mpirun started: all run the same call, and rank 0 alone speaks.
#pragma once

#include <memory>
#include <string>

#include "host/rounds/crew.h"
#include "host/rounds/team.h"
#include "host/rounds/team_crew.h"

namespace brenvolt {

class Ranks {
 public:
  // Joins the others, if this process was started with others; it prints nothing from now on if it is not rank 0. Throws
  // Error, also if the others are no equals.
  void Join(const std::string& program, int argc, char** argv);
  bool AreSeveral() const { return crew_ != nullptr; }
  // Takes leave of the others, once the call is done. Throws Error if another one failed.
  void End();
  // Tells the others that the call failed here.
  void GiveUp(const std::string& complaint);
  // The status with which this process exits. That of rank 0 counts: another one would have mpirun end it while it speaks.
  int StatusOf(int status) const { return crew_ != nullptr && crew_->Rank() > 0 ? 0 : status; }

 private:
  std::string program_;
  std::unique_ptr<Team> team_;
  std::unique_ptr<TeamCrew> crew_;
  std::unique_ptr<CrewScope> scope_;
};

}  // namespace brenvolt
