#include "host/controls/progress_bar.h"

#include "host/base/error.h"

namespace brenvolt {

std::unique_ptr<CKroProgressBar> CKroProgressBar::new_ProgressBar(ProgressPort& port,
                                                                  std::string_view caption,
                                                                  std::int64_t steps) {
  return std::unique_ptr<CKroProgressBar>(new CKroProgressBar(port, caption, steps));
}

CKroProgressBar::CKroProgressBar(ProgressPort& port, std::string_view caption, std::int64_t steps)
    : port_(port), caption_(caption), total_(steps), lastLook_(std::chrono::steady_clock::now()) {}

CKroProgressBar::~CKroProgressBar() {
  if (shown_) port_.EndProgress();
}

void CKroProgressBar::ShowNow() {
  shown_ = true;
  port_.ShowProgress(caption_, done_, total_);
}

void CKroProgressBar::Step(std::int64_t steps) {
  done_ += steps;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastLook_ <= port_.PollInterval()) return;
  lastLook_ = now;
  ShowNow();
  if (port_.IsExternallyCancelled()) throw UserCancelled();
}

}  // namespace brenvolt
