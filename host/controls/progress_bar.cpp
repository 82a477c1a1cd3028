#include "host/controls/progress_bar.h"

#include "host/base/error.h"

namespace brenvolt {

ProgressBar::ProgressBar(ProgressPort& port, std::string_view caption, std::int64_t steps)
    : port_(port), caption_(caption), total_(steps), lastLook_(std::chrono::steady_clock::now()) {}

ProgressBar::~ProgressBar() {
  if (shown_) port_.EndProgress();
}

void ProgressBar::ShowNow() {
  shown_ = true;
  port_.ShowProgress(caption_, done_, total_);
}

void ProgressBar::Step(std::int64_t steps) {
  done_ += steps;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastLook_ <= port_.PollInterval()) return;
  lastLook_ = now;
  ShowNow();
  if (port_.IsExternallyCancelled()) throw UserCancelled();
}

}  // namespace brenvolt
