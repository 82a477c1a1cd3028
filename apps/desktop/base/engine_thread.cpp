#include "apps/desktop/base/engine_thread.h"

#include <QEventLoop>
#include <QTimer>
#include <utility>

namespace brenvolt::desktop {
namespace {

// Input waits so long for a call to end.
constexpr int kMomentInMilliseconds = 150;

}  // namespace

EngineThread::EngineThread() : thread_([this] { Serve([this] { return ends_; }); }) {}

EngineThread::~EngineThread() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void EngineThread::Serve(const std::function<bool()>& stops) {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [&] { return stops() || !tasks_.empty(); });
    if (stops()) return;
    Task& task = *tasks_.front();
    tasks_.pop_front();
    ++running_;
    lock.unlock();
    try {
      (*task.call)();
    } catch (...) {
      task.failure = std::current_exception();
    }
    lock.lock();
    --running_;
    task.done = true;
    // The window's thread waits for events, of which this is one.
    QMetaObject::invokeMethod(
        this, [] {}, Qt::QueuedConnection);
  }
}

bool EngineThread::IsDone(const Task& task) const {
  const std::lock_guard lock(mutex_);
  return task.done;
}

bool EngineThread::IsBusy() const {
  const std::lock_guard lock(mutex_);
  return running_ > waiting_ || !tasks_.empty();
}

void EngineThread::Run(const std::function<void()>& call) {
  Task task;
  task.call = &call;
  {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(&task);
  }
  changed_.notify_all();
  const int depth = ++depth_;
  bool isLong = false;
  QTimer moment;
  // A call that waits for an answer, or for the call that an answer makes, is not what takes long.
  connect(&moment, &QTimer::timeout, this, [&] {
    if (isLong || depth != depth_ || !IsBusy()) return;
    isLong = true;
    emit busyChanged(true);
  });
  moment.start(kMomentInMilliseconds);
  QEventLoop loop;
  while (!IsDone(task)) {
    const auto input = isLong ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents;
    loop.processEvents(input | QEventLoop::WaitForMoreEvents);
  }
  --depth_;
  if (isLong) emit busyChanged(false);
  if (task.failure) std::rethrow_exception(task.failure);
}

void EngineThread::Ask(const std::function<void()>& question) {
  bool answered = false;
  std::exception_ptr failure;
  {
    const std::lock_guard lock(mutex_);
    ++waiting_;
  }
  Tell([&] {
    try {
      question();
    } catch (...) {
      failure = std::current_exception();
    }
    {
      const std::lock_guard lock(mutex_);
      answered = true;
      --waiting_;
    }
    changed_.notify_all();
  });
  Serve([&] { return answered; });
  if (failure) std::rethrow_exception(failure);
}

void EngineThread::Tell(std::function<void()> what) {
  QMetaObject::invokeMethod(this, std::move(what), Qt::QueuedConnection);
}

}  // namespace brenvolt::desktop
