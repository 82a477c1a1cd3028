// How the main window tells of failures and of waiting.
#pragma once

#include <QGuiApplication>
#include <QString>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"

namespace brenvolt::desktop {

// What failed, below where.
inline QString Explained(const Error& error) {
  if (error.Where().empty()) return Shown(error.what());
  return Shown(error.Where()) + QStringLiteral(":\n") + Shown(error.what());
}

// What a wait of more than a moment looks like.
class WaitCursor {
 public:
  WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

}  // namespace brenvolt::desktop
