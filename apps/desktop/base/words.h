// What a person is told of a failure.
#pragma once

#include <QString>
#include <exception>
#include <new>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"

namespace brenvolt::desktop {

// What failed; of calls to dialogs what the dialog said.
inline QString Reason(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
    return QStringLiteral("There is not enough memory.");
  const auto* const refused = dynamic_cast<const AutomationError*>(&error);
  return Shown(refused != nullptr && !refused->Reason().empty() ? refused->Reason() : error.what());
}

// The same below where, if that is known.
inline QString Explained(const std::exception& error) {
  const auto* const placed = dynamic_cast<const Error*>(&error);
  if (placed == nullptr || placed->Where().empty()) return Reason(error);
  return Shown(placed->Where()) + QStringLiteral(":\n") + Reason(error);
}

}  // namespace brenvolt::desktop
