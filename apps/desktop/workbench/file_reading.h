// Files are read beside the window's thread, which stays alive, shows how far the reading is, and can end it.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "apps/desktop/base/engine_thread.h"
#include "apps/desktop/port/progress_window.h"

namespace brenvolt::desktop {

class FileReading {
 public:
  // Progress stands over `owner`, which must outlive it.
  explicit FileReading(QWidget& owner);

  // Reads on a thread of its own and returns once that is done. Where it takes longer than a moment, the caption and a
  // cancel are shown, and the rest of the window waits. Throws what `read` throws; UserCancelled once the person has
  // cancelled.
  void Run(const QString& caption, const std::function<void()>& read);

 private:
  ProgressWindow progress_;
  QString caption_;
  EngineThread thread_;
};

}  // namespace brenvolt::desktop
