// Edits as bytes, for the journal: what is read is exactly what was written, NaN payloads included.
#pragma once

#include <QIODevice>

#include "apps/desktop/documents/edit.h"

namespace brenvolt::desktop {

// The edits stay as they are; they are not const since one description of their fields serves both directions. Throws
// Error if the device does not take them all.
void WriteEdits(Edits& edits, QIODevice& device);
// Reads what was written at the place of a device that is not sequential. Throws Error if these are no edits.
Edits ReadEdits(QIODevice& device);

}  // namespace brenvolt::desktop
