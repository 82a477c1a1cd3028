// Processes that can send each other bytes, whatever carries these.
#pragma once

#include <string>
#include <string_view>

namespace brenvolt {

class Team {
 public:
  virtual ~Team() = default;
  virtual int Rank() const = 0;  // from 0
  virtual int Count() const = 0;
  // Bytes from one process to another arrive in the order in which they were sent. A process that is gone ends the others
  // or makes these throw Error.
  virtual void Send(int to, std::string_view bytes) = 0;
  virtual std::string Receive(int from) = 0;
};

// One process, which has nobody to send to.
class TeamOfOne : public Team {
 public:
  int Rank() const override { return 0; }
  int Count() const override { return 1; }
  void Send(int, std::string_view) override {}
  std::string Receive(int) override { return {}; }
};

}  // namespace brenvolt
