// How the main window tells of waiting.
#pragma once

#include <QGuiApplication>

#include "apps/desktop/base/words.h"

namespace brenvolt::desktop {

// What a wait of more than a moment looks like.
class WaitCursor {
 public:
  WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace brenvolt::desktop
