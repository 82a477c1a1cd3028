// Progress of long loops, with the poll for cancellation that every long loop owes the user.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace brenvolt {

// Where progress is shown; the front end's side.
class ProgressPort {
 public:
  virtual ~ProgressPort() = default;
  // Called when a bar opens, then at most once a second while it runs.
  virtual void ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) = 0;
  virtual void EndProgress() = 0;
  // True once the user asked to stop.
  virtual bool IsExternallyCancelled() = 0;
  // The least time between two looks at whether they did.
  virtual std::chrono::milliseconds PollInterval() const { return std::chrono::milliseconds(1000); }
};

class ProgressBar {
 public:
  // A bar of `steps` steps on `port`, which must outlive it. Nothing is shown before ShowNow or the first
  // poll.
  ProgressBar(ProgressPort& port, std::string_view caption, std::int64_t steps);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void ShowNow();
  // Advances. When more than the port's interval has passed since the last look, shows the progress and asks
  // for cancellation; throws UserCancelled when the user cancelled.
  void Step(std::int64_t steps = 1);

 private:
  ProgressPort& port_;
  std::string caption_;
  std::int64_t total_;
  std::int64_t done_ = 0;
  bool shown_ = false;
  std::chrono::steady_clock::time_point lastLook_;
};

}  // namespace brenvolt
