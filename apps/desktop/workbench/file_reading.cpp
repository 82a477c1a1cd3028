#include "apps/desktop/workbench/file_reading.h"

#include <atomic>
#include <chrono>

#include "host/base/error.h"
#include "host/base/work_watch.h"

namespace brenvolt::desktop {
namespace {

using Clock = std::chrono::steady_clock;

// Progress is told no more often than a person sees it.
constexpr std::chrono::milliseconds kInterval{50};

// True once an interval, for one of the threads that ask.
class Paced {
 public:
  bool IsTime() {
    const Clock::rep now = Clock::now().time_since_epoch().count();
    Clock::rep next = next_;
    return now >= next && next_.compare_exchange_strong(next, now + Clock::duration(kInterval).count());
  }

 private:
  std::atomic<Clock::rep> next_ = 0;
};

}  // namespace

FileReading::FileReading(QWidget& owner) : progress_(&owner) {
  progress_.setWindowModality(Qt::ApplicationModal);
  QObject::connect(&thread_, &EngineThread::busyChanged, &progress_, [this](bool isBusy) {
    isBusy ? progress_.ShowProgress(caption_, 0, 0) : progress_.End();
  });
}

void FileReading::Run(const QString& caption, const std::function<void()>& read) {
  caption_ = caption;
  progress_.Forget();
  Paced paced;
  const auto tell = [&](std::int64_t done, std::int64_t total) {
    if (progress_.IsCancelled()) throw UserCancelled();
    if (!paced.IsTime()) return;
    thread_.Tell([this, done, total] {
      if (progress_.isVisible()) progress_.ShowProgress(caption_, done, total);
    });
  };
  thread_.Run([&] {
    const WorkWatch watch(tell);
    read();
  });
  // What was read while the person cancelled is not wanted either.
  if (progress_.IsCancelled()) throw UserCancelled();
}

}  // namespace brenvolt::desktop
