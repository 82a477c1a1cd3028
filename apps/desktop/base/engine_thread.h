// The thread that analyses run on, so that the window stays alive while they work.
//
// The window's thread hands it calls and waits for each while it handles its own events. What runs there asks the
// window's thread questions, and while it waits for an answer it takes further calls: an editor over a dialog works on
// what the dialog's handler began. All of an analysis, from its start to its end, happens on this thread.
#pragma once

#include <QObject>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace brenvolt::desktop {

class EngineThread : public QObject {
  Q_OBJECT

 public:
  // The thread that makes it is the window's.
  EngineThread();
  ~EngineThread() override;

  // From the window's thread: carries out a call on the engine's thread and returns, or throws what it threw, once it is
  // done. Meanwhile the window handles its events; what the person does with mouse and keys waits for calls that take no
  // longer than a moment, and reaches the window during those that do (busyChanged).
  void Run(const std::function<void()>& call);
  // From the engine's thread: carries out a question on the window's thread and returns once it is answered.
  void Ask(const std::function<void()>& question);
  // From the engine's thread: the window's thread does it when it comes to it.
  void Tell(std::function<void()> what);

  // True while a call is under way that does not wait for an answer: another one has to wait for it.
  bool IsBusy() const;

 signals:
  // A call takes longer than a moment; such a call has ended.
  void busyChanged(bool isBusy);

 private:
  struct Task {
    const std::function<void()>* call = nullptr;
    bool done = false;
    std::exception_ptr failure;
  };
  // Carries out calls until `stops` answers true; for the engine's thread.
  void Serve(const std::function<bool()>& stops);
  bool IsDone(const Task& task) const;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task*> tasks_;
  int running_ = 0;  // calls begun and not ended
  int waiting_ = 0;  // those of them that wait for an answer
  bool ends_ = false;
  int depth_ = 0;  // of calls from the window's thread, which alone counts them
  std::thread thread_;
};

}  // namespace brenvolt::desktop
